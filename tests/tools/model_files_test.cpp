#include "tools/model_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tools/directory_list.h"
#include "tools/inspection.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

/// A folder of its own for every test, gone afterwards.
class ModelFiles : public testing::Test {
 protected:
  ModelFiles() {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    folder_ = fs::path(testing::TempDir()) / ("movload_tools_" + test + std::to_string(getpid()));
    fs::create_directories(folder_);
  }
  ~ModelFiles() override { fs::remove_all(folder_); }

  [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void touch(const std::string& name) const { std::ofstream(path(name)) << "file"; }

 private:
  fs::path folder_;
};

using DirectoryList = ModelFiles;
using Inspection = ModelFiles;

TEST_F(ModelFiles, ABaseNameMeansTheUsualExtensionFirst) {
  touch("bridge.YA3");
  touch("bridge.ZA3");
  const T_MODEL_FILE file = FIND_MODEL_FILE(path("bridge"), std::nullopt);
  EXPECT_EQ(file.analysis_code, 0);
  EXPECT_EQ(file.file_name, path("bridge.ZA3"));
  EXPECT_EQ(FIND_MODEL_FILE(path("bridge"), 1).file_name, path("bridge.YA3"));
}

TEST_F(ModelFiles, WithoutTheUsualFileTheOneThatIsThereCounts) {
  touch("bridge.ZAX3");
  const T_MODEL_FILE file = FIND_MODEL_FILE(path("bridge"), std::nullopt);
  EXPECT_EQ(file.analysis_code, 4);
  EXPECT_EQ(file.base_name, path("bridge"));
  touch("bridge.XA3");
  EXPECT_THROW((void)FIND_MODEL_FILE(path("bridge"), std::nullopt), T_TOOL_FAILURE);
}

TEST_F(ModelFiles, AFullFileNameTellsBaseNameAndCode) {
  touch("bridge.WA3");
  touch("bridge.ZA3");
  const T_MODEL_FILE file = FIND_MODEL_FILE(path("bridge.WA3"), std::nullopt);
  EXPECT_EQ(file.analysis_code, 3);
  EXPECT_EQ(file.base_name, path("bridge"));
}

TEST_F(ModelFiles, AMissingFileIsAnsweredWithThoseBesideIt) {
  touch("bridge.ZA3");
  try {
    (void)FIND_MODEL_FILE(path("brigde"), std::nullopt);
    FAIL() << "no such file";
  } catch (const T_TOOL_FAILURE& failure) {
    EXPECT_NE(std::string(failure.what()).find("brigde.ZA3"), std::string::npos);
    EXPECT_NE(failure.ADVICE().find("bridge.ZA3"), std::string::npos);
  }
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
      bool is_listed = false;
      for (const T_DIRECTORY_ENTRY& entry : directory.entries) {
        if (entry.tag != block.tag || entry.id != block.id) continue;
        is_listed = true;
        EXPECT_EQ(entry.first, block.first);
        EXPECT_EQ(entry.last, block.last);
        EXPECT_EQ(entry.record_words, block.record_words);
        EXPECT_TRUE(entry.lies_in_file);
      }
      EXPECT_TRUE(is_listed) << block.tag;
    }
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

TEST_F(DirectoryList, ABlockBehindTheFilesEndIsMarked) {
  const modelkit::T_FILE_LAYOUT layout = modelkit::WRITE_MODEL(modelkit::SIMPLE_SPAN_MODEL(), path("span"));
  constexpr std::int64_t BLOCK_LAST = 16;
  modelkit::OVERWRITE_WORD_AT(layout, layout.BLOCK("LNIF").entry_offset + BLOCK_LAST, 0x7FFFFFFF);
  kernel::RECORD_FILE unit;
  T_DIRECTORY directory;
  ASSERT_TRUE(READ_DIRECTORY(unit, layout.path, directory).OK());
  for (const T_DIRECTORY_ENTRY& entry : directory.entries) EXPECT_EQ(entry.lies_in_file, entry.tag != "LNIF");
}

TEST_F(Inspection, ADamagedBlockIsToldAndTheRestIsShown) {
  const modelkit::T_FILE_LAYOUT layout = modelkit::WRITE_MODEL(modelkit::SIMPLE_SPAN_MODEL(), path("span"));
  constexpr std::int64_t N_SPREAD = 1;
  modelkit::OVERWRITE_WORD(layout, "LNIF", 1, N_SPREAD, -5);
  const T_INSPECTION inspection = INSPECT(FIND_MODEL_FILE(path("span"), std::nullopt), 6);
  ASSERT_EQ(inspection.failures.size(), 1U);
  EXPECT_NE(inspection.failures[0].find("block LNIF: record 1: N_SPREAD is -5"), std::string::npos)
      << inspection.failures[0];
  EXPECT_FALSE(inspection.lanes);
  EXPECT_TRUE(inspection.counts);
  ASSERT_TRUE(inspection.vehicles);
  EXPECT_EQ(inspection.vehicles->at(0).name, "BS 5400 1978 HA HB");
  ASSERT_TRUE(inspection.cases);
  EXPECT_EQ(inspection.cases->at(0).shown.at(0).at(0).sub_case, 1);
  EXPECT_EQ(inspection.results.at(0).IDS_IN_WORDS(), "1 to 1");
}

TEST_F(Inspection, OfAnOldDirectoryOnlyTheBlocksAreShown) {
  modelkit::T_FILE_FORM form;
  form.directory_version_1 = true;
  modelkit::WRITE_MODEL(modelkit::SIMPLE_SPAN_MODEL(), path("span"), form);
  const T_INSPECTION inspection = INSPECT(FIND_MODEL_FILE(path("span"), std::nullopt), 6);
  EXPECT_FALSE(inspection.directory.entries.empty());
  EXPECT_EQ(inspection.failures.size(), 1U);
}

TEST_F(Inspection, ResultPointsAreThoseOfTheModel) {
  modelkit::T_MODEL model = modelkit::SIMPLE_SPAN_MODEL();
  const std::vector<std::vector<float>> values(6, std::vector<float>(51, 0.0F));
  model.reac = {{.id = 17, .values = values}, {.id = 4, .values = values}};
  model.ldisp = {{.id = 23, .values = values}};
  modelkit::WRITE_MODEL(model, path("span"));
  const T_INSPECTION inspection = INSPECT(FIND_MODEL_FILE(path("span"), std::nullopt), 6);
  EXPECT_TRUE(inspection.failures.empty());
  for (const T_RESULT_POINTS& points : inspection.results) {
    if (points.tag == "REAC") {
      EXPECT_EQ(points.ids, (std::vector<std::int32_t>{17, 4}));
      EXPECT_TRUE(points.HOLDS(17));
      EXPECT_FALSE(points.HOLDS(1));
    }
    if (points.tag == "LDSP") {
      EXPECT_EQ(points.ids, std::vector<std::int32_t>{23});
    }
  }
  EXPECT_EQ(inspection.results.size(), 3U);
}

}  // namespace
}  // namespace tools
