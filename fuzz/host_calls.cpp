#include "fuzz/host_calls.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "fuzz/target.h"
#include "tests/host/result_items.h"

namespace fuzz {
namespace {

using modelkit::T_MODEL;
using plain::KINDS;

constexpr std::array<std::int32_t, 14> ODD{0,
                                           -1,
                                           4,
                                           7,
                                           51,
                                           106,
                                           1000,
                                           1001,
                                           9001,
                                           1 << 20,
                                           std::numeric_limits<std::int32_t>::max(),
                                           std::numeric_limits<std::int32_t>::min(),
                                           std::numeric_limits<std::int32_t>::max() - 1,
                                           std::numeric_limits<std::int32_t>::min() + 1};

std::int32_t odd(std::uint16_t number) {
  return ODD[number % ODD.size()];
}
bool is_odd(std::uint16_t number) {
  return number % 16 == 15;
}

void expect_untouched_behind(const host::ARGUMENTS& got, int lanes) {
  got.EACH_ARRAY(got, [&](const char* name, const auto& array, const auto&) {
    const auto guard = array.LANE(lanes + 1);
    EXPECT(std::ranges::all_of(guard, [](auto value) { return value == host::UNTOUCHED; }),
           std::string("behind the last lane of ") + name);
  });
}

void expect_records(const host::ARGUMENTS& got) {
  for (int lane = 1; lane <= got.NUM_LANE; ++lane) {
    for (const auto* records : {&got.K_MXLOAD, &got.K_MNLOAD}) {
      const auto field = [&](int number) { return (*records)(number + 1, lane); };
      // The far piece of a range that the HB splits comes on top of the 500 in the list.
      EXPECT(field(MOVLOAD_NO_LOADED_RANGE) >= 0 && field(MOVLOAD_NO_LOADED_RANGE) <= 501,
             "NO_LOADED_RANGE outside 0 to 501");
      EXPECT(field(MOVLOAD_TYPE_OF_HB) >= 0 && field(MOVLOAD_TYPE_OF_HB) <= 5, "TYPE_OF_HB outside 0 to 5");
      EXPECT(field(MOVLOAD_POSITION_OF_HB) >= 0 && field(MOVLOAD_POS_OF_HA_KEL) >= 0, "a negative point");
    }
  }
}

}  // namespace

T_QUESTION QUESTION_OF(const T_MODEL& model, const T_STEP& step) {
  const plain::KIND& kind = KINDS[step.TARGET % KINDS.size()];
  T_QUESTION question{.KIND = kind.RESULT_KIND, .IS_OF_MODEL = true};
  const auto& responses = model.*kind.RESPONSES;
  if (responses.empty() || is_odd(step.A)) {
    question.ID = odd(static_cast<std::uint16_t>(step.A / 16U));
    question.IS_OF_MODEL = false;
  } else {
    question.ID = responses[step.A % responses.size()].id;
  }
  question.ITEM = 1 + step.B % std::max(plain::ITEMS_OF(kind, model), 1);
  if (step.B >= 0xF000) {
    question.ITEM = odd(step.B);
    question.IS_OF_MODEL = false;
  }
  const auto cases = static_cast<std::int32_t>(model.moving_load_cases.size());
  question.MV_CASE =
      is_odd(step.C) ? odd(static_cast<std::uint16_t>(step.C / 16U)) : 1 + step.C % std::max(cases, 1);
  if (step.TARGET >= 240) {
    question.KIND = odd(step.TARGET);
    question.IS_OF_MODEL = false;
  }
  return question;
}

host::ARGUMENTS RUN(const std::string& base, std::int32_t mode_code, const T_QUESTION& question, int lanes) {
  if (TELLS())
    std::fprintf(stderr, "run    mode %d, kind %d, id %d, item %d, case %d, %d lanes\n", mode_code,
                 question.KIND, question.ID, question.ITEM, question.MV_CASE, lanes);
  host::ARGUMENTS got =
      host::RUN(lanes, base, mode_code, question.KIND, question.ID, question.ITEM, question.MV_CASE);
  const std::string reason = movload_last_failure();
  if (TELLS())
    std::fprintf(stderr, "       mode %d, %.9g, %.9g; %s\n", got.MODE_CODE, got.FINAL_MAX, got.FINAL_MIN,
                 reason.c_str());
  EXPECT((got.MODE_CODE == -1) == !reason.empty(), "MODE_CODE is -1 where there is a reason, and only there");
  EXPECT(reason.find("memory") == std::string::npos, "no memory: " + reason);
  if (got.MODE_CODE == -1) {
    host::ARGUMENTS before(lanes);
    before.MODE_CODE = -1;
    const std::string difference = host::DIFFERENCE(before, got);
    EXPECT(difference.empty(), "a failed run has written " + difference);
    return got;
  }
  EXPECT(got.MODE_CODE == mode_code, "MODE_CODE isn't what it was");
  EXPECT(got.NUM_LANE >= 0 && got.NUM_LANE <= std::max(lanes, 0), "NUM_LANE outside the arrays");
  expect_untouched_behind(got, lanes);
  if (got.FINAL_MAX == host::UNTOUCHED) return got;
  EXPECT(!(got.FINAL_MAX < 0.0) && !(got.FINAL_MIN > 0.0), "a value beyond 0 on the wrong side");
  expect_records(got);
  return got;
}

void QUERY_NUM_LANE(const std::string& base, std::int32_t mode_code) {
  const host::LANE_COUNT count = host::NUM_LANE(base, mode_code);
  const bool failed = movload_last_failure()[0] != '\0';
  EXPECT(failed == (count.MODE_CODE == -1), "MODE_CODE is -1 where there is a reason, and only there");
  EXPECT(failed ? count.NUM_LANE == host::UNTOUCHED : count.NUM_LANE >= 0 && count.MODE_CODE == mode_code,
         "the number of lanes");
}

SOUND_RUNS::SOUND_RUNS(bool volumes) : files_({.BLOCKS = true, .VOLUMES = volumes}), volumes_(volumes) {
  constexpr std::uint8_t STRADDLE_AND_AXLES = 0x53;
  files_.BEGIN({.FEATURES = STRADDLE_AND_AXLES, .SEED = 56, .POINTS = 15, .STEP = 2});
  for (std::uint8_t kind = 0; kind < KINDS.size(); ++kind)
    questions_.push_back(QUESTION_OF(files_.SOUND().MODEL, {.TARGET = kind, .B = 2}));
  for (std::size_t number = 0; number < questions_.size(); ++number) {
    answers_.push_back(run(number));
    EXPECT(answers_.back().MODE_CODE != -1, movload_last_failure());
  }
}

host::ARGUMENTS SOUND_RUNS::run(std::size_t number) {
  const std::int32_t code = files_.SOUND().ANALYSIS_CODE + (volumes_ ? 100 : 0);
  return RUN(files_.BASE(), code, questions_[number], static_cast<int>(files_.SOUND().MODEL.lanes.size()));
}

void SOUND_RUNS::CHECK() {
  if (++calls_ % EVERY != 0) return;
  const std::size_t number = calls_ / EVERY % questions_.size();
  const std::string difference = host::DIFFERENCE(answers_[number], run(number));
  EXPECT(difference.empty(), "the sound model no longer gives what it gave: " + difference);
}

}  // namespace fuzz
