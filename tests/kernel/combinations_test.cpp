// Combinations on disk against combinations in memory.
#include "kernel/combinations.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

#include "kernel/driver.h"
#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "tests/temporary_directory.h"

namespace kernel {
namespace {

int requests_for_memory = 0;
template <bool FIRST_FAILS, bool SECOND_FAILS>
void* scarce_memory(std::size_t bytes) {
  const bool fails = ++requests_for_memory == 1 ? FIRST_FAILS : SECOND_FAILS;
  return fails ? nullptr : std::malloc(bytes);
}

/// What of an envelope comes from combinations.
using T_ANSWER = std::tuple<double, double, std::vector<T_RECORD>, std::vector<T_RANGE_NUMBERS>>;
T_ANSWER answer_of(const T_ENVELOPE& envelope) {
  T_ANSWER answer{envelope.FINAL_MAX, envelope.FINAL_MIN, {}, {}};
  for (const auto& lanes : envelope.LANES) {
    for (const T_LANE_LOADING& loading : lanes) {
      std::get<2>(answer).push_back(loading.MLOAD);
      std::get<3>(answer).push_back(loading.INFL_S);
    }
  }
  return answer;
}

TEST(combinations, on_disk_they_give_the_same_envelopes_as_in_memory) {
  const TEMPORARY_DIRECTORY files;
  std::mt19937_64 random(11);
  int loaded = 0;
  for (int i = 0; i < 12; ++i) {
    const modelkit::T_MODEL written = modelkit::RANDOM_MODEL(
        random, {.max_cases = 4, .straddle_lanes = 0.5, .axle_lists = 0.4, .class_definitions = 0.4});
    T_REQUEST request;
    request.FILE_NAME = modelkit::WRITE_MODEL(written, files.NAME("model")).path;
    request.RESULT_ITEM = 1 + i % 6;
    std::vector<T_ANSWER> in_memory;
    for (const COMBINATION_MEMORY memory : {COMBINATION_MEMORY_OF_PROCESS, scarce_memory<true, false>,
                                            scarce_memory<false, true>, scarce_memory<true, true>}) {
      RECORD_FILE unit;
      T_MODEL model;
      requests_for_memory = 0;
      ASSERT_TRUE(READ_MODEL(unit, request, 1000, model, memory).OK());
      ASSERT_EQ(model.COMBINATIONS.ON_DISK_MVLC(), memory != COMBINATION_MEMORY_OF_PROCESS);
      std::vector<T_ANSWER> answers;
      for (const auto& [kind, responses] :
           {std::pair{RK_DISP, &written.disp}, {RK_REAC, &written.reac}, {RK_SIMB, &written.simb}}) {
        request.RESULT_KIND = kind;
        request.RESULT_ID = responses->front().id;
        // Cases that don't exist have no combinations.
        for (request.MV_CASE = 0; request.MV_CASE <= model.COUNTS.N_MV_CASE + 1; ++request.MV_CASE) {
          T_ENVELOPE envelope(model.COUNTS.NUM_LANE);
          ASSERT_TRUE(RUN_LANE_ANALYSIS(model, request, unit, envelope).OK());
          loaded += envelope.FINAL_MAX > 0 ? 1 : 0;
          answers.push_back(answer_of(envelope));
        }
      }
      if (in_memory.empty()) in_memory = answers;
      ASSERT_EQ(answers, in_memory) << i;
    }
  }
  EXPECT_GT(loaded, 100);
}

TEST(combinations, on_disk_a_block_that_changes_under_a_run_fails_it) {
  const TEMPORARY_DIRECTORY files;
  const modelkit::T_MODEL written{.lanes = {{}},
                                  .moving_load_cases = {{.combinations = {{{.code = 0, .scale = 1.0}}}}}};
  const auto layout = modelkit::WRITE_MODEL(written, files.NAME("model"));
  T_REQUEST request;
  request.FILE_NAME = layout.path;
  RECORD_FILE unit;
  T_MODEL model;
  requests_for_memory = 0;
  ASSERT_TRUE(READ_MODEL(unit, request, 1, model, scarce_memory<true, true>).OK());
  modelkit::OVERWRITE_WORD(layout, "MVLC", 2, 0, 5);
  T_COMBINATION_CURSOR cursor(model.COMBINATIONS);
  T_COMBINATION_VIEW combination;
  ASSERT_TRUE(cursor.BEGIN(1).OK());
  const STATUS status = cursor.NEXT(combination);
  EXPECT_TRUE(status.reason == REASON::OUT_OF_BOUNDS && status.record == 2 && status.value == 5);
  std::filesystem::rename(layout.path, files.NAME("gone"));
  EXPECT_EQ(cursor.BEGIN(1).reason, REASON::FILE_NOT_OPENED);
}

}  // namespace
}  // namespace kernel
