// Failing calls and damaged files: a call answers or fails with a reason, and one that fails leaves
// everything but MODE_CODE as it was. No file crashes, hangs or takes memory that its records don't hold.
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>

#include "modelkit/model_writer.h"
#include "tests/host/host_call.h"
#include "tests/host/tiny_model.h"
#include "tests/temporary_directory.h"

#if __has_include(<sys/resource.h>) && !defined(__SANITIZE_ADDRESS__)
#include <sys/resource.h>
#define LIMITS_MEMORY 1
#else
#define LIMITS_MEMORY 0
#endif

namespace {

/// Holds the process to so many bytes, 0: to none.
void limit_memory([[maybe_unused]] std::uint64_t bytes) {
#if LIMITS_MEMORY
  const rlimit limit{.rlim_cur = bytes == 0 ? RLIM_INFINITY : bytes, .rlim_max = RLIM_INFINITY};
  setrlimit(RLIMIT_AS, &limit);
#endif
}

using std::string;
using std::to_string;

constexpr std::int32_t INT_TOP = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t INT_BOTTOM = std::numeric_limits<std::int32_t>::min();
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr int LANES = host::TINY_LANES;

struct QUESTION {
  std::int32_t kind;
  std::int32_t id;
  const char* block;
  std::int32_t items;
};
constexpr QUESTION SIMB{12, 1, "SIMB", 12};
constexpr QUESTION LDSP{16, 4, "LDSP", 6};
constexpr QUESTION DISP{1, 2, "DISP", 6};
// clang-format off
constexpr QUESTION QUESTIONS[] = {SIMB, LDSP, DISP, {2, 5, "REAC", 6}, {6, 3, "LRAC", 6}, {13, 1, "ELNK", 12},
                                  {14, 1, "NLNK", 12}};
// clang-format on

host::ARGUMENTS ask(const string& base, const QUESTION& question, int lanes = LANES, std::int32_t mode = 0) {
  return host::RUN(lanes, base, mode, question.kind, question.id, 3, 1);
}

host::ARGUMENTS nothing_written(int lanes = LANES) {
  host::ARGUMENTS untouched(lanes);
  untouched.MODE_CODE = -1;
  return untouched;
}

/// The tiny model in two files: one that stays sound and one to be damaged.
class damage : public testing::Test {
 protected:
  damage() {
    modelkit::WRITE_MODEL(host::TINY_MODEL(), sound_base_);
    for (const QUESTION& question : QUESTIONS)
      EXPECT_GT(sound_.insert_or_assign(question.kind, ask(sound_base_, question)).first->second.FINAL_MAX,
                0.0);
    WRITE({});
  }
  void WRITE(const modelkit::T_FILE_FORM& form) {
    layout_ = modelkit::WRITE_MODEL(host::TINY_MODEL(), base_, form);
  }
  [[nodiscard]] const host::ARGUMENTS& SOUND(const QUESTION& question) const {
    return sound_.at(question.kind);
  }

  template <class T>
  void PUT(std::int64_t offset, T value) const {
    std::fstream file(layout_.path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(offset);
    ASSERT_TRUE(file.write(reinterpret_cast<const char*>(&value), sizeof value).flush());
  }
  void PUT(const char* tag, std::int64_t record, std::int64_t word, auto value) const {
    PUT(layout_.BLOCK(tag).OFFSET(record, word), value);
  }
  void REPAIR() const {
    std::filesystem::remove(layout_.path);  // GCC's copy_file doesn't overwrite on Windows
    std::filesystem::copy_file(sound_base_ + ".ZA3", layout_.path);
  }

  /// The last call has failed with this text and written nothing, and the next one isn't affected.
  void EXPECT_FAILED(const host::ARGUMENTS& got, const string& text, int lanes = LANES) const {
    EXPECT_EQ(movload_last_failure(), text);
    EXPECT_TRUE(host::SAME(nothing_written(lanes), got));
    EXPECT_TRUE(host::SAME(SOUND(SIMB), ask(sound_base_, SIMB)));
    EXPECT_STREQ(movload_last_failure(), "");
  }
  void EXPECT_FAILS(const string& text, const QUESTION& question = SIMB) const {
    EXPECT_FAILED(ask(base_, question), layout_.path + ": " + text);
  }
  void EXPECT_FAILS_IN(const string& tag) const {
    const host::ARGUMENTS got = ask(base_, SIMB);
    const string text = movload_last_failure();
    EXPECT_TRUE(text.starts_with(layout_.path + ": block " + tag + ": ") &&
                text.find("memory") == string::npos)
        << tag << ": " << text;
    EXPECT_TRUE(host::SAME(nothing_written(), got));
  }

  TEMPORARY_DIRECTORY directory_;
  string base_ = directory_.NAME("damaged");
  string sound_base_ = directory_.NAME("sound");
  modelkit::T_FILE_LAYOUT layout_;
  std::map<std::int32_t, host::ARGUMENTS> sound_;  // by kind
};

TEST_F(damage, a_request_that_no_model_can_answer_fails_and_says_why) {
  const auto fails = [&](std::int32_t mode_code, const string& text) {
    EXPECT_FAILED(ask(base_, SIMB, LANES, mode_code), text);
    const host::LANE_COUNT count = host::NUM_LANE(base_, mode_code);
    EXPECT_TRUE(count.MODE_CODE == -1 && count.NUM_LANE == host::UNTOUCHED);
    EXPECT_EQ(movload_last_failure(), text);
  };
  for (const std::int32_t code : {5, 99, -1, INT_BOTTOM})
    fails(code, "analysis code " + to_string(code) + " is unknown (0 to 4 and 101 are known)");
  fails(105, "analysis code 5 is unknown (0 to 4 and 101 are known)");
  fails(4, base_ + ".ZAX3: block MVIF: the file can't be opened");
  for (const std::int32_t code : {101, 201})
    fails(code, base_ + ".YA3: block IFSV: the file can't be opened");
  std::filesystem::create_directory(base_ + ".XA3");
  fails(2, base_ + ".XA3: block MVIF: the file can't be opened");
  std::ofstream(base_ + ".WA3").close();
  fails(3, base_ + ".WA3: block MVIF: the directory can't be read to its end");

  const string long_base = base_ + string(1025 - base_.size(), 'x');
  for (const std::int32_t length : {0, -1, INT_BOTTOM, 1025, 1021}) {
    host::LANE_COUNT count;
    _MOV_KRNL_BS_5400_NUM_LANE(long_base.data(), length, &count.MODE_CODE, &count.NUM_LANE);
    EXPECT_EQ(count.MODE_CODE, -1);
    EXPECT_TRUE(string(movload_last_failure())
                    .ends_with("the path has " + to_string(length) +
                               " characters, which no file name can be made of"));
  }
  std::int32_t mode_code = 0;
  _MOV_KRNL_BS_5400_NUM_LANE(base_.data(), 5, &mode_code, nullptr);
  EXPECT_EQ(mode_code, -1);
  EXPECT_STREQ(movload_last_failure(), "an argument of the call is a null pointer");
  REMOVE_MOVING_INFLUENCE();
  EXPECT_STREQ(movload_last_failure(), "");
  INIT_MOVING_INFLUENCE(nullptr, nullptr, nullptr, nullptr);
  EXPECT_STREQ(movload_last_failure(), "an argument of the call is a null pointer");

  const string path = layout_.path + ": ";
  for (const int few : {2, 0})
    EXPECT_FAILED(ask(base_, SIMB, few),
                  path + "NUM_LANE of the host is " + to_string(few) + ", outside 3 to 2147483647", few);
  for (const QUESTION& asked : QUESTIONS)
    for (const std::int32_t item : {INT_BOTTOM, 0, asked.items + 1, INT_TOP})
      EXPECT_FAILED(host::RUN(LANES, base_, 0, asked.kind, asked.id, item, 1),
                    path + "RESULT_ITEM is " + to_string(item) + ", outside 1 to " + to_string(asked.items));

  // Influence volumes aren't read; their format is told first.
  const auto store = [&](const string& text) { EXPECT_FAILED(ask(base_, SIMB, LANES, 100), path + text); };
  EXPECT_FAILED(ask(base_, SIMB, LANES, 100), base_ + "_000.BLK: the file can't be opened");
  EXPECT_EQ(host::NUM_LANE(base_, 100).NUM_LANE, LANES);
  WRITE({.format_number = 9500});
  store("block IFSV: record 1: format number 9500, where 9600 is expected");
  WRITE({.left_out = {"IFSV"}});
  store("block IFSV: the block isn't in the directory");
}

TEST_F(damage, of_a_path_over_260_characters_a_run_takes_the_first_260) {
#ifdef _WIN32
  GTEST_SKIP() << "Windows opens no file by a name of more than 259 characters, the extension among them";
#endif
  std::filesystem::path folder = std::filesystem::path(base_).parent_path();
  while (folder.string().size() + 102 < 260) folder /= string(100, 'd');
  std::filesystem::create_directories(folder);
  const string long_base = (folder / string(259 - folder.string().size(), 'm')).string();
  std::filesystem::copy_file(layout_.path, long_base + ".ZA3");
  for (const string tail : {"", "x", "/nowhere/at/all"})
    EXPECT_TRUE(host::SAME(SOUND(SIMB), ask(long_base + tail, SIMB)));
}

TEST_F(damage, an_absent_block_fails_the_run) {
  const auto without = [&](const string& tag, const QUESTION& question) {
    WRITE({.left_out = {tag}});
    EXPECT_FAILS("block " + tag + ": the block isn't in the directory", question);
  };
  for (const string tag : {"MVIF", "MLDI", "MVLC", "VEHI", "LNIF", "LVPF"}) without(tag, SIMB);
  for (const QUESTION& question : QUESTIONS)
    if (question.kind != LDSP.kind) without(question.block, question);
}

/// A count or index of the files and its bounds; the last stands in a case that no test asks for.
struct BOUNDED {
  const char* block;
  int record, word;
  const char* name;
  std::int32_t low, high;
};
// clang-format off
constexpr BOUNDED BOUNDED_WORDS[] = {
    {"MVIF", 1, 0, "N_VEHICLE_GROUP", 0, INT_TOP},       {"MVIF", 1, 1, "NUM_LANE", 0, INT_TOP},
    {"MVIF", 1, 2, "N_MV_CASE", 0, INT_TOP},             {"MVIF", 1, 3, "N_UNIT_LOAD", 1, INT_TOP},
    {"MVIF", 1, 4, "MAX_POINTS", 0, INT_TOP - 1},        {"MVIF", 1, 5, "N_REAC_NODE", 0, INT_TOP},
    {"MVIF", 1, 9, "N_VEHICLE_COLUMN", 0, 100},          {"MVIF", 1, 10, "N_VEHICLE_CLASS", 0, INT_TOP},
    {"MVIF", 1, 13, "N_LOCAL_REACTION", 0, INT_TOP},     {"MVIF", 1, 15, "N_STRADDLE", 0, INT_TOP},
    {"MVIF", 1, 16, "MAX_LANE_EXTRA", 0, INT_TOP},       {"MVIF", 1, 17, "MAX_SPREAD", 0, INT_TOP},
    {"MVIF", 1, 20, "N_COMBINATION", 0, INT_TOP},        {"MVIF", 1, 23, "MAX_TRANSVERSE", 0, INT_TOP},
    {"VEHI", 1, 1, "N_GROUP_VEHICLE", 0, 1},             {"VEHI", 2, 0, "VEH_CLASS", 0, 1},
    {"VEHI", 2, 15, "N_VEHICLE_LOADS", 0, 100},          {"VEHI", 2, 216, "N_VEHICLE_GEOM", INT_BOTTOM, 100},
    {"PHSL", 1, 0, "N_CLASS_DEF", 0, INT_TOP},           {"PHSL", 1, 1, "MAX_DEF_ENTRIES", 0, INT_TOP},
    {"PHSL", 2, 0, "group row", 1, 1},                   {"PHSL", 2, 2, "lane", 1, 3},
    {"PHSL", 3, 1, "points of a class definition", 0, 3},
    {"PHSL", 3, 2, "entries of a class definition", 0, 3},
    {"PHSL", 3, 6, "entries per plane of a class definition", 1, INT_TOP},
    {"LNIF", 1, 1, "N_SPREAD", 0, 1},                    {"LNIF", 1, 2, "LANE_STATIONS", 0, 3},
    {"LNIF", 1, 3, "N_LANE_EXTRA", 0, 1},                {"LNIF", 1, 8, "N_TRANSVERSE", 0, 3},
    {"LNIF", 2, 0, "count of a spread row", 0, 4},       {"LNIF", 2, 1, "unit load of a spread row", 1, 6},
    {"LNIF", 11, 9, "N_PER_PLANE", 1, 1},                {"LNIF", 12, 0, "STRADDLE_LEFT", 1, 3},
    {"LNIF", 12, 1, "STRADDLE_RIGHT", 1, 3},             {"MLIF", 1, 0, "MAX_AXLE_LIST", 4, INT_TOP},
    {"MLIF", 1, 1, "N_AXLE_LIST", 0, INT_TOP},           {"MLIF", 2, 1, "class of an axle list", 1, 1},
    {"MLIF", 2, 2, "lane of an axle list", 1, 3},        {"MLIF", 2, 3, "length of an axle list", 0, 4},
    {"MLIF", 2, 4, "lane of an axle", INT_BOTTOM, 3},    {"MVLC", 2, 0, "LANE_CODE", 0, 4},
    {"MVLC", 4, 2, "LANE_CODE", 0, 4},
};
// clang-format on

TEST_F(damage, counts_and_indices_outside_their_bounds_fail_with_their_name) {
  const auto fails = [&](const BOUNDED& field, auto written, std::int64_t value) {
    PUT(field.block, field.record, field.word, written);
    EXPECT_FAILS(string("block ") + field.block + ": record " + to_string(field.record) + ": " + field.name +
                 " is " + to_string(value) + ", outside " + to_string(field.low) + " to " +
                 to_string(field.high));
    REPAIR();
  };
  for (const BOUNDED& field : BOUNDED_WORDS)
    for (const std::int64_t value : {field.low - 1LL, field.high + 1LL, -(1LL << 31), (1LL << 31) - 1})
      if ((value < field.low || value > field.high) && value == static_cast<std::int32_t>(value))
        fails(field, static_cast<std::int32_t>(value), value);
  // References that the files hold as reals are truncated; what doesn't fit gives -2147483648.
  for (const auto& [written, value] :
       {std::pair{7.5, 7}, {0.5, 0}, {1e300, INT_BOTTOM}, {INFINITE, INT_BOTTOM}})
    fails({"LNIF", 4, 8, "unit load of a link", 1, 6}, written, value);
  for (const auto& [written, value] : {std::pair{-2.0, 2LL}, {-0.5, 0LL}, {-1e300, 1LL << 31}})
    fails({"LNIF", 4, 12, "spread row of a link", 1, 1}, written, value);
  for (const auto& [written, value] : {std::pair{-1.0, -1}, {2.0, 2}, {std::nan(""), INT_BOTTOM}})
    fails({"LVPF", 2, 0, "count of a class entry", 0, 1}, written, value);
  for (const auto& [written, value] : {std::pair{0.0, 0}, {7.0, 7}, {std::nan(""), INT_BOTTOM}})
    fails({"LVPF", 2, 2, "unit load of a class entry", 1, 6}, written, value);
}

TEST_F(damage, blocks_that_contradict_each_other_fail_the_run) {
  const string not_the_last = ": the straddle lanes aren't just the last ";
  const string misplaced_2 = "block LNIF: record 7: lane 2" + not_the_last;
  const string misplaced_3 = "block LNIF: record 11: lane 3" + not_the_last;
  const string no_planes =
      "block MLIF: record 2: the axle list of straddle lane 3 names lane 1, which lacks entries for its "
      "planes";
  const string outside = ": the record lies outside the block";
  const std::tuple<const char*, int, int, std::int32_t, string> CONTRADICTIONS[] = {
      {"LNIF", 7, 7, 1, misplaced_2 + "1 lanes"},
      {"LNIF", 11, 7, 0, misplaced_3 + "1 lanes"},
      {"MVIF", 1, 15, 0, misplaced_3 + "0 lanes"},
      {"MVIF", 1, 15, 2, misplaced_2 + "2 lanes"},
      {"MVIF", 1, 15, 4, "block MVIF: record 1: N_STRADDLE is 4, outside 0 to 3"},
      {"LNIF", 1, 9, 0, no_planes},
      {"LNIF", 1, 9, 2, no_planes},
      {"MVIF", 1, 0, 2, "block VEHI: record 3" + outside},
      {"MVIF", 1, 9, 0, "block VEHI: record 1: N_GROUP_VEHICLE is 1, outside 0 to 0"},
      {"MVIF", 1, 20, 2, "block MVLC: record 5" + outside},
      {"PHSL", 1, 0, 2, "block PHSL: record 5" + outside},
      {"PHSL", 1, 1, 2, "block LVPF: record 1: a record has 24 bytes where 40 are read"},
      {"MLIF", 1, 1, 2, "block MLIF: record 3" + outside},
  };
  for (const auto& [block, record, word, value, text] : CONTRADICTIONS) {
    PUT(block, record, word, value);
    EXPECT_FAILS(text);
    REPAIR();
  }
}

TEST_F(damage, a_count_beyond_the_records_neither_takes_memory_nor_time) {
  using word_at = std::tuple<const char*, int, int>;
  const word_at max_points{"MVIF", 1, 4}, max_spread{"MVIF", 1, 17}, max_extra{"MVIF", 1, 16};
  const word_at max_transverse{"MVIF", 1, 23};
  const std::pair<std::vector<word_at>, const char*> CASES[] = {
      // clang-format off
      {{{"MVIF", 1, 0}}, "VEHI"}, {{{"MVIF", 1, 2}}, "MVIF"}, {{{"MVIF", 1, 20}}, "MVLC"},
      {{max_spread, {"LNIF", 1, 1}}, "LNIF"}, {{max_points, {"LNIF", 1, 2}}, "LNIF"},
      {{max_extra, {"LNIF", 1, 3}}, "LNIF"}, {{max_transverse, {"LNIF", 1, 8}}, "LNIF"},
      {{max_points, max_transverse, {"LNIF", 11, 2}, {"LNIF", 11, 8}}, "LNIF"},
      {{{"PHSL", 1, 0}}, "PHSL"}, {{{"PHSL", 1, 1}}, "LVPF"}, {{max_points, {"PHSL", 3, 1}}, "LVPF"},
      {{max_points, max_transverse, {"PHSL", 3, 1}, {"PHSL", 3, 2}}, "LVPF"},
      {{{"MLIF", 1, 1}}, "MLIF"}, {{{"MLIF", 1, 0}, {"MLIF", 2, 3}}, "MLIF"},
      // clang-format on
  };
  limit_memory(512 << 20);
  const auto start = std::chrono::steady_clock::now();
  for (const std::int32_t huge : {1 << 30, INT_TOP - 1}) {
    for (const auto& [words, tag] : CASES) {
      for (const auto& [block, record, word] : words) PUT(block, record, word, huge);
      EXPECT_FAILS_IN(tag);
      REPAIR();
    }
    for (const int word : {4, 5, 10, 13, 16, 17, 23}) PUT("MVIF", 1, word, huge);  // upper bounds only
    for (const QUESTION& question : QUESTIONS) EXPECT_TRUE(host::SAME(SOUND(question), ask(base_, question)));
    REPAIR();
    // A run of so many records lies outside the block, as does that of a result the block hasn't.
    for (const QUESTION& question : QUESTIONS) {
      for (const std::int32_t id : {question.id, 0, -1, 77, INT_TOP, INT_BOTTOM}) {
        if (id == question.id) PUT("MVIF", 1, 3, huge);
        const host::ARGUMENTS got = ask(base_, {question.kind, id, "", 0});
        EXPECT_EQ(got.MODE_CODE, 0) << question.block << " " << id << ": " << movload_last_failure();
        EXPECT_EQ(got.FINAL_MAX, question.kind == LDSP.kind ? host::UNTOUCHED : 0.0);
        if (id == question.id) REPAIR();
      }
    }
    // A host that believes the count.
    PUT("MVIF", 1, 1, huge);
    host::ARGUMENTS arguments(LANES);
    arguments.NUM_LANE = INT_TOP;
    arguments.RUN(base_, 0, SIMB.kind, SIMB.id, 1, 1);
    EXPECT_EQ(movload_last_failure(), layout_.path + ": block LNIF: record " + to_string(huge) +
                                          ": the record lies outside the block");
    REPAIR();
  }
  limit_memory(0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
