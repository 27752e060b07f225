#include "tools/model_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tests/temporary_directory.h"
#include "tools/directory_list.h"
#include "tools/inspection.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

struct ModelFiles : testing::Test {
  [[nodiscard]] std::string path(const std::string& name) const { return files_.NAME(name); }
  void touch(const std::string& name) const { std::ofstream(path(name)) << "file"; }

 private:
  TEMPORARY_DIRECTORY files_;
};

using DirectoryList = ModelFiles;
using Inspection = ModelFiles;

TEST_F(ModelFiles, ABaseNameMeansTheUsualExtensionFirstAndElseTheOneThatIsThere) {
  touch("bridge.ZAX3");
  EXPECT_EQ(FIND_MODEL_FILE(path("bridge"), std::nullopt).analysis_code, 4);
  touch("bridge.WA3");
  EXPECT_THROW((void)FIND_MODEL_FILE(path("bridge"), std::nullopt), T_TOOL_FAILURE);
  touch("bridge.ZA3");
  EXPECT_EQ(FIND_MODEL_FILE(path("bridge"), std::nullopt).file_name, path("bridge.ZA3"));
  EXPECT_EQ(FIND_MODEL_FILE(path("bridge"), 3).file_name, path("bridge.WA3"));
  const T_MODEL_FILE file = FIND_MODEL_FILE(path("bridge.WA3"), std::nullopt);
  EXPECT_EQ(file.analysis_code, 3);
  EXPECT_EQ(file.base_name, path("bridge"));
}

TEST_F(DirectoryList, EveryGroupOfEitherVersionIsListed) {
  for (const bool is_version_1 : {false, true}) {
    modelkit::T_FILE_FORM form;
    form.directory_version_1 = is_version_1;
    form.unused_groups = 2;
    form.header_groups_behind = true;
    const modelkit::T_FILE_LAYOUT layout =
        modelkit::WRITE_MODEL(modelkit::SIMPLE_SPAN_MODEL(), path("span"), form);
    kernel::RECORD_FILE unit;
    T_DIRECTORY directory;
    ASSERT_TRUE(READ_DIRECTORY(unit, layout.path, directory).OK());
    EXPECT_EQ(directory.version, is_version_1 ? 1 : 2);
    EXPECT_EQ(directory.headers, std::ssize(layout.header_offsets));
    for (const modelkit::T_WRITTEN_BLOCK& block : layout.blocks) {
      const auto same = [&block](const T_DIRECTORY_ENTRY& entry) {
        return entry.tag == block.tag && entry.id == block.id && entry.first == block.first &&
               entry.last == block.last && entry.record_words == block.record_words && entry.lies_in_file;
      };
      EXPECT_EQ(std::ranges::count_if(directory.entries, same), 1) << block.tag;
    }
    const T_INSPECTION inspection = INSPECT(FIND_MODEL_FILE(path("span"), std::nullopt), 6);
    EXPECT_EQ(inspection.failures.size(), is_version_1 ? 1U : 0U);  // of an old one only the blocks are shown
  }
}

TEST_F(DirectoryList, ADirectoryThatRunsInACircleEnds) {
  modelkit::T_FILE_FORM form;
  form.unused_groups = 1;
  const modelkit::T_FILE_LAYOUT layout =
      modelkit::WRITE_MODEL(modelkit::SIMPLE_SPAN_MODEL(), path("span"), form);
  constexpr std::int64_t DIR_NEXT = 16;
  modelkit::OVERWRITE_WORD_AT(layout, layout.header_offsets.at(0) + DIR_NEXT, 1);
  kernel::RECORD_FILE unit;
  T_DIRECTORY directory;
  EXPECT_EQ(READ_DIRECTORY(unit, layout.path, directory).reason, REASON::DIRECTORY_CUT);
}

TEST_F(Inspection, ElementsAreThoseThatTheElementFilesHold) {
  modelkit::T_MODEL model = modelkit::SIMPLE_SPAN_MODEL();
  model.elements_per_file = 2;
  model.walls = {{.id = 1}, {.id = 5}, {.id = 7}, {.id = 9}};  // none in the second file
  const std::string files = modelkit::WRITE_MODEL(model, path("span")).path;
  std::filesystem::resize_file(files + "W4", 2 * 51 * 133 * 4 - 1);
  const T_INSPECTION inspection = INSPECT(FIND_MODEL_FILE(path("span"), std::nullopt), 6);
  EXPECT_EQ(inspection.failures,
            std::vector<std::string>{files + "W4: the file ends within the records of an element"});
  const T_RESULT_POINTS& walls = inspection.results.back();
  EXPECT_EQ(walls.IDS_IN_WORDS(), "1 to 2, 5 to 7, 9");
  for (const int id : {0, 3, 4, 8, 10}) EXPECT_FALSE(walls.HOLDS(id)) << id;
  for (const int id : {1, 2, 5, 6, 7, 9}) EXPECT_TRUE(walls.HOLDS(id)) << id;
  EXPECT_EQ(walls.items, 105);
  EXPECT_EQ(walls.record_words, 133);
}

}  // namespace
}  // namespace tools
