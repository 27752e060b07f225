// Names of files as the platform has them: with blanks, with letters beyond ASCII, and of files that another
// program reads at the same time.
#include <filesystem>
#include <fstream>

#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "modelkit/volume_writer.h"
#include "tests/host/host_call.h"
#include "tests/temporary_directory.h"

namespace {

/// The same name as std::filesystem and as the library takes it: in the ANSI code page on Windows, and in
/// UTF-8 elsewhere.
constexpr char8_t FOLDER[] = u8"Brücke über den Fluß 1";
#ifdef _WIN32
constexpr char FOLDER_OF_THE_HOST[] =
    "Br\xFC"
    "cke \xFC"
    "ber den Flu\xDF 1";
#else
constexpr char FOLDER_OF_THE_HOST[] =
    "Br\xC3\xBC"
    "cke \xC3\xBC"
    "ber den Flu\xC3\x9F 1";
#endif

TEST(paths, a_model_in_a_folder_with_blanks_and_umlauts_is_read_while_others_read_it) {
  const TEMPORARY_DIRECTORY files;
  const modelkit::T_MODEL model = modelkit::NUMBER_ELEMENTS_APART(modelkit::SIMPLE_SPAN_MODEL());
  modelkit::WRITE_MODEL(model, files.NAME());
  modelkit::WRITE_VOLUMES(model, files.NAME());
  const auto ask = [](const std::string& base, int mode) {
    return host::RUN(1, base, mode, MOVLOAD_RK_SIMB, 1, modelkit::SPAN_MIDSPAN_MOMENT, 1);
  };
  const host::ARGUMENTS expected = ask(files.NAME(), 0);
  const host::ARGUMENTS expected_of_volumes = ask(files.NAME(), 100);
  ASSERT_TRUE(expected.MODE_CODE == 0 && expected_of_volumes.MODE_CODE == 100) << movload_last_failure();

  const std::filesystem::path folder = std::filesystem::path(files.NAME()).parent_path() / FOLDER;
  std::filesystem::create_directory(folder);
  for (const char* end : {".ZA3", "_000.BLK"})
    std::filesystem::rename(files.NAME() + end, folder / (std::string("a model") + end));
  const std::string base = files.NAME("") + FOLDER_OF_THE_HOST + "/a model";
  std::ifstream directory_file(folder / "a model.ZA3");
  std::ifstream volume(folder / "a model_000.BLK");
  ASSERT_TRUE(directory_file && volume);
  if (!std::ifstream(base + ".ZA3")) GTEST_SKIP() << "another code page than 1252";
  EXPECT_TRUE(host::SAME(expected, ask(base, 0)));
  EXPECT_TRUE(host::SAME(expected_of_volumes, ask(base, 100)));

  volume.close();
  const auto length = static_cast<std::int32_t>(base.size());
  REMOVE_MOVING_INFLUENCE_FILE_PATH(&length, base.data());
  EXPECT_FALSE(std::filesystem::exists(folder / "a model_000.BLK"));
}

}  // namespace
