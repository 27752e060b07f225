// Placing of the HB, worked by hand.

#include <gtest/gtest.h>

#include <vector>

#include "tests/search/random_lines.h"

namespace {

using namespace search;
using VALUES = std::vector<float>;
using NUMBERS = std::vector<std::int32_t>;

// Axles of 10 at 25, 27, 33 and 35 from the near end in a zone of 60; one type, for a longer one fits
// nowhere. The UDL is 1 for every length.
plain::HB_TASK task_on(const VALUES& x, const std::vector<VALUES>& planes) {
  plain::HB_TASK task;
  task.X = x;
  task.SETS.emplace_back();
  for (const VALUES& y : planes) task.SETS[0].push_back({y, y});
  task.CURVE = {.W0 = 1, .L0 = 1e6F};
  task.HB_LOAD = 10;
  task.HB_S = 2;
  task.HB_B = 6;
  task.HB_STEP = 1000;
  task.LANE_NUMBER = 7;
  return task;
}

T_SEARCH_RESULT search_hb(HB_SEARCH* form, const plain::HB_TASK& task) {
  T_HB_WORK work;
  return SEARCH_HB(form, task, task.SETS[0].size(), 0, work);
}

bool is_empty(const T_SIDE_RESULT& side) {
  return side.VALUE == 0 && side.PASS_REC == 0 && side.HB_REC.HB_TYPE == 0 && side.HB_REC.HB_POSITION == 0 &&
         side.HB_REC.W_MILLI == 0 && side.HB_REC.LOADED_COUNT == 0;
}

TEST(hb_placing, types_end_with_the_first_that_does_not_fit) {
  // On y = x a longer type is worth more: the fourth of 75 has 25 + 27 + 48 + 50, the fifth needs 80.
  plain::HB_TASK task = task_on({0, 75}, {{0, 75}});
  task.CURVE = {};
  task.HB_STEP = 5;
  const auto result = search_hb(HB_LANE, task);
  EXPECT_FLOAT_EQ(result[MAX_SIDE].VALUE, 1500);
  EXPECT_EQ(result[MAX_SIDE].HB_REC.HB_TYPE, 4);
  EXPECT_EQ(result[MAX_SIDE].HB_REC.HB_POSITION, 1);
}

TEST(hb_placing, equal_placements_leave_the_first) {
  // All fractions are sixteenths, so that every placement sums to 4 exactly.
  plain::HB_TASK task = task_on({0, 16, 32, 48, 64, 80, 96, 112, 128}, {VALUES(9, 1.0F)});
  task.CURVE = {};
  task.HB_STEP = 16;
  for (const int direction : {0, 1, 2}) {
    task.LANE_DIRECTION = direction;
    const auto result = search_hb(HB_LANE, task);
    EXPECT_EQ(result[MAX_SIDE].VALUE, 40);
    EXPECT_EQ(result[MAX_SIDE].PASS_REC, direction == 1 ? 2 : 1);
    EXPECT_EQ(result[MAX_SIDE].HB_REC.HB_POSITION, direction == 1 ? 9 : 1);
    EXPECT_EQ(result[MAX_SIDE].HB_REC.HB_TYPE, 1);
  }
}

TEST(hb_placing, a_total_below_zero_never_enters_the_maximum) {
  const auto negative = search_hb(HB_LANE, task_on({0, 30, 60}, {{-1, -1, -1}}));
  EXPECT_TRUE(is_empty(negative[MAX_SIDE]));
  EXPECT_FLOAT_EQ(negative[MIN_SIDE].VALUE, -40);
  // UDL of 1 + 40 beyond the zone less the HB's 40: the vehicle stays though the UDL alone gives more.
  const auto result = search_hb(HB_LANE, task_on({0, 60, 64, 104}, {{-1, -1, 1, 1}}));
  EXPECT_FLOAT_EQ(result[MAX_SIDE].VALUE, 1);
  EXPECT_EQ(result[MAX_SIDE].HB_REC.W_MILLI, 1000);
  EXPECT_EQ(result[MAX_SIDE].INFL_REC, NUMBERS{1});
  EXPECT_FLOAT_EQ(result[MIN_SIDE].VALUE, -41);
}

TEST(hb_placing, axles_run_on_other_lanes_and_the_udl_stays) {
  // Axles 1 and 4 on a lane of 2, axles 2 and 3 on the lane's own 1, and 40 of UDL beyond the zone.
  plain::HB_TASK task = task_on({0, 60, 100}, {{1, 1, 1}});
  task.SETS.push_back({{{2, 2, 2}, {2, 2, 2}}});
  task.AXLE_SET = {1, 0, 0, 1};
  EXPECT_FLOAT_EQ(search_hb(HB_LANE_MULTI, task)[MAX_SIDE].VALUE, 100);
}

// Constant planes; beyond the zone 40 are left, so that a parent of ordinate 1 takes a UDL of 40.
plain::HB_TASK straddle(const VALUES& planes) {
  std::vector<VALUES> lines;
  for (const float y : planes) lines.push_back({y, y, y});
  return task_on({0, 60, 100}, lines);
}

TEST(straddling_hb, takes_the_first_of_the_best_planes_beside_the_sum_of_both_parents) {
  plain::HB_TASK task = straddle({0.5F, 1, 1, 1});
  const auto result = search_hb(HB_STRADDLE_SUM, task);
  EXPECT_FLOAT_EQ(result[MAX_SIDE].VALUE, 40 + 80);
  EXPECT_EQ(result[MAX_SIDE].HB_REC.HB_CODE, 7002);
  EXPECT_EQ(result[MAX_SIDE].INFL_REC, NUMBERS{1});
  EXPECT_TRUE(is_empty(result[MIN_SIDE]));
  task.JUMP_LAYOUT = true;
  EXPECT_EQ(search_hb(HB_STRADDLE_SUM_JUMP, task)[MAX_SIDE].HB_REC.HB_CODE, 702);
}

TEST(straddling_hb, gives_the_full_udl_to_the_worse_parent_and_to_the_first_of_equal_ones) {
  struct {
    VALUES planes;
    SIDE side;
    float value;
    int first_code, second_code;
  } const cases[] = {{{0.5F, 1, 1, 1}, MAX_SIDE, 40 + 40 + 0.3333F * 40, 70021, 70020},
                     {{0, 1, 2}, MAX_SIDE, 80 + 0.3333F * 40 + 80, 70030, 70031},
                     {{0, -2, -1}, MIN_SIDE, -80 - 80 - 0.3333F * 40, 70021, 70020},
                     // Either parent has one side only: each is full on its own.
                     {{0, 1, -1}, MAX_SIDE, 40 + 40, 70021, 70020},
                     {{0, 1, -1}, MIN_SIDE, -40 - 40, 70030, 70031}};
  for (const auto& c : cases) {
    const auto result = search_hb(HB_STRADDLE_THIRD, straddle(c.planes));
    EXPECT_FLOAT_EQ(result[c.side].VALUE, c.value);
    EXPECT_EQ(result[c.side].HB_REC_PLANES[0].HB_CODE, c.first_code);
    EXPECT_EQ(result[c.side].HB_REC_PLANES[1].HB_CODE, c.second_code);
    EXPECT_EQ(result[c.side].HB_REC.HB_TYPE, 0);  // the record is the parents' alone
  }
}

TEST(straddling_hb, names_no_plane_where_none_goes_beyond_zero) {
  // -1 under the vehicle and 1 beyond the zone: the UDL alone makes the maximum.
  const VALUES y{-1, -1, 1, 1};
  const plain::HB_TASK task = task_on({0, 60, 60, 100}, {y, y, y});
  const auto sum = search_hb(HB_STRADDLE_SUM, task);
  EXPECT_FLOAT_EQ(sum[MAX_SIDE].VALUE, 80);
  EXPECT_EQ(sum[MAX_SIDE].HB_REC.HB_CODE, 0);
  EXPECT_EQ(sum[MAX_SIDE].HB_REC.HB_POSITION, 1);
  const auto third = search_hb(HB_STRADDLE_THIRD, task);
  EXPECT_FLOAT_EQ(third[MAX_SIDE].VALUE, 40 + 0.3333F * 40);
  EXPECT_EQ(third[MAX_SIDE].HB_REC_PLANES[0].HB_CODE, 1);
  EXPECT_EQ(third[MAX_SIDE].HB_REC_PLANES[1].HB_CODE, 0);
}

}  // namespace
