// Reading of a line, ranges, ranking, intensity and HA loading of a lane, worked by hand.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "tests/search/random_lines.h"

namespace {

using namespace search;
using NUMBERS = std::vector<std::int32_t>;
using PAIRS = std::vector<std::array<float, 2>>;

class lane_search : public testing::Test {
 protected:
  static T_ZONE_PLACE place_of(const plain::LINE& line, float near_end, float far_end) {
    return LOCATE_ZONE(far_end, near_end, VIEW(line).LANE_X, line.n());
  }
  T_HA_RESULT ha(const plain::LINE& line, const T_HA_CURVE& curve, float kel_load = 0) {
    return (line.JUMP_LAYOUT ? HA_SEARCH_LANE_JUMP : HA_SEARCH_LANE)(VIEW(line), curve, kel_load, work);
  }

  T_RANGE_WORK work;
};

NUMBERS loaded(const T_HA_SIDE& side) {
  return {side.RANGES, side.RANGES + side.LOADED_COUNT};
}

TEST_F(lane_search, cuts_a_line_into_ranges_of_either_sign) {
  struct {
    plain::LINE line;
    std::vector<float> zone;              // near and far end; none: the whole lane
    std::array<PAIRS, N_SIDES> expected;  // area and length
  } const cases[] = {
      // Crossing at 1 * 4 / (3 + 1) = 1: 1 * 0.5 * 1 in front of it, -3 * 0.5 * 3 behind.
      {SIMPLE_LINE({0, 4}, {1, -3}), {}, {PAIRS{{0.5F, 1}}, PAIRS{{-4.5F, 3}}}},
      {SIMPLE_LINE({0, 4}, {-3, 1}), {}, {PAIRS{{0.5F, 1}}, PAIRS{{-4.5F, 3}}}},
      // Zero at a point ends a range, and a rest of no area never becomes one.
      {SIMPLE_LINE({5, 15, 25}, {2, 0, 2}), {}, {PAIRS{{10, 10}, {10, 10}}, PAIRS{}}},
      {SIMPLE_LINE({0, 10, 20}, {1, 0, -1}), {}, {PAIRS{{5, 10}}, PAIRS{{-5, 10}}}},
      {SIMPLE_LINE({0, 10}, {-1, 0}), {}, {PAIRS{}, PAIRS{{-5, 10}}}},
      // A zone cuts segments: 0 to 5 rising to 2 and 15 to 20 falling from 2; both ends in the first segment.
      {SIMPLE_LINE({0, 10, 20}, {0, 4, 0}), {5, 15}, {PAIRS{{10, 10}}, PAIRS{}}},
      {SIMPLE_LINE({0, 8, 16}, {1, 1, 1}), {2, 4}, {PAIRS{{14, 14}}, PAIRS{}}},
      // A jump across zero ends a range of the whole lane, but not beside a zone.
      {JUMP_LINE({0, 10, 20, 30}, {9, 1, -1, 1}, {1, -1, 1, 9}),
       {},
       {PAIRS{{10, 10}, {10, 10}}, PAIRS{{-10, 10}}}},
      {JUMP_LINE({0, 10, 20, 30}, {9, 1, -1, 1}, {1, -1, 1, 9}),
       {30, 30},
       {PAIRS{{20, 20}}, PAIRS{{-10, 10}}}},
  };
  for (const auto& [line, zone, expected] : cases) {
    SCOPED_TRACE(testing::PrintToString(line.BEFORE.values));
    if (zone.empty()) {
      (line.JUMP_LAYOUT ? CUT_RANGES<JUMP_LAYOUT> : CUT_RANGES<SIMPLE_LAYOUT>)(VIEW(line), work);
    } else {
      (line.JUMP_LAYOUT
           ? CUT_RANGES_BESIDE_ZONE<JUMP_LAYOUT>
           : CUT_RANGES_BESIDE_ZONE<SIMPLE_LAYOUT>)(VIEW(line), place_of(line, zone[0], zone[1]), work);
    }
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      PAIRS ranges;
      for (std::size_t r = 0; r < static_cast<std::size_t>(work.SIDES[side].COUNT); ++r)
        ranges.push_back({work.SIDES[side].RANGE_AREA[r], work.SIDES[side].RANGE_LENGTH[r]});
      EXPECT_EQ(ranges, expected[side]);
    }
  }
}

TEST_F(lane_search, tells_where_ranges_start_and_end) {
  const std::pair<plain::LINE, std::array<PAIRS, N_SIDES>> cases[] = {
      // A single zero inside a range doesn't end it and two do. 1 and -1 cross halfway between 40 and 50.
      {SIMPLE_LINE({0, 10, 20, 30, 40, 50, 60, 70}, {0, 0, 1, 0, 1, -1, 0, 0}),
       {PAIRS{{10, 45}}, PAIRS{{45, 60}}}},
      // The start of a range that begins with the lane is 0, wherever the lane starts.
      {SIMPLE_LINE({5, 15, 25}, {2, 0, 2}), {PAIRS{{0, 25}}, PAIRS{}}},
      {JUMP_LINE({0, 10, 20, 30}, {9, 1, -1, 1}, {1, -1, 1, 9}), {PAIRS{{0, 10}, {20, 30}}, PAIRS{{10, 20}}}},
  };
  for (const auto& [line, expected] : cases) {
    std::array<T_RANGE_DISTANCES, N_SIDES> sides;
    (line.JUMP_LAYOUT ? RANGE_DISTANCES_JUMP : RANGE_DISTANCES)(VIEW(line), sides);
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      const auto& pairs = sides[side].PAIRS;
      EXPECT_EQ(PAIRS(pairs.begin(), pairs.begin() + sides[side].RANGE_COUNT), expected[side]);
    }
  }
}

TEST_F(lane_search, ranks_equal_means_in_the_order_of_the_double_ended_selection) {
  const std::pair<std::vector<float>, NUMBERS> cases[] = {
      {{5, 5, 5, 5}, {4, 3, 2, 1}},
      {{2, 2, 1, 2}, {1, 4, 2, 3}},
      // The 3 to the front (3 2 1 4 5), the first 1 to the back (3 2 5 4 1); then the first 2 stays and the 1
      // in the middle changes places with the second 2 (3 2 4 5 1).
      {{1, 2, 3, 2, 1}, {3, 2, 4, 5, 1}},
      {{-1, -3, -2}, {2, 3, 1}},  // by magnitude
  };
  for (auto [means, expected] : cases) {
    NUMBERS numbers;
    for (const float& mean : means) numbers.push_back(static_cast<std::int32_t>(&mean - means.data()) + 1);
    std::vector<T_RANGE_MEAN> ranking;
    SORT_RANGE_MEANS(static_cast<std::int32_t>(means.size()), means.data(), numbers.data(), means[0] < 0,
                     ranking);
    EXPECT_EQ(numbers, expected);
  }
}

TEST_F(lane_search, ranks_very_many_means_as_the_plain_steps_rank_them) {
  RANDOM random(5);
  std::vector<T_RANGE_MEAN> ranking;
  for (const auto& [count, values] : {std::pair{2002, 2}, {2001, 40}, {2001, 1 << 24}}) {
    plain::LIST<float> judged;
    plain::LIST<int> judged_numbers;
    for (int i = 1; i <= count; ++i) {
      judged.add(static_cast<float>(random.below(values)));
      judged_numbers.add(i);
    }
    std::vector<real> means = judged.values;
    NUMBERS numbers = judged_numbers.values;
    SORT_RANGE_MEANS(count, means.data(), numbers.data(), false, ranking);
    plain::SORT_RANGE_MEANS(judged, judged_numbers, 1);
    EXPECT_EQ(means, judged.values) << values;
    EXPECT_EQ(numbers, judged_numbers.values) << values;
  }
}

TEST_F(lane_search, intensity_follows_the_curve_beyond_short_lengths_and_is_recorded_without_rounding_up) {
  const T_HA_CURVE curve{.HA_W0 = 30, .HA_K = 80, .HA_WMIN = 9, .HA_P = 0.5F, .HA_L0 = 16};
  EXPECT_EQ(HA_INTENSITY(16, curve), 30.0F);  // up to and with HA_L0
  EXPECT_EQ(HA_INTENSITY(64, curve), 10.0F);  // 80 * (1/64) ^ 0.5
  EXPECT_EQ(HA_INTENSITY(256, curve), 9.0F);  // 5 by the curve
  EXPECT_EQ(HA_INTENSITY(1, {.HA_W0 = 3, .HA_WMIN = 9, .HA_L0 = 16}), 9.0F);
  EXPECT_EQ(W_MILLI(9.9996F), 9999);
  for (const float not_recordable : {3e6F, std::numeric_limits<float>::infinity(), std::nanf("")})
    EXPECT_EQ(W_MILLI(not_recordable), std::numeric_limits<std::int32_t>::min());
}

TEST_F(lane_search, reads_an_upper_and_a_lower_value_on_a_jump_or_a_repeated_point) {
  const auto jump = JUMP_LINE({0, 10, 20}, {0, 3, 5}, {1, -3, 7});
  // Of a point that stands three times the first two count, and without jump layout the first.
  const auto repeated = SIMPLE_LINE({0, 10, 10, 10, 20}, {0, 3, -2, 9, 1});
  const auto expect = [](const T_ORDINATE& at, float upper, float lower) {
    EXPECT_EQ(std::pair(at.UPPER, at.LOWER), std::pair(upper, lower));
  };
  expect(ORDINATE_AT<JUMP_LAYOUT>(10, VIEW(jump)), 3, -3);
  expect(ORDINATE_AT<JUMP_LAYOUT>(5, VIEW(jump)), 2, 2);   // from 1 after the first point to 3
  expect(ORDINATE_AT<JUMP_LAYOUT>(15, VIEW(jump)), 1, 1);  // from -3 to 5
  expect(ORDINATE_AT<JUMP_LAYOUT>(20, VIEW(jump)), 7, 5);
  expect(ORDINATE_AT<JUMP_LAYOUT>(10, VIEW(repeated)), 3, -2);
  expect(ORDINATE_AT<SIMPLE_LAYOUT>(10, VIEW(repeated)), 3, 3);
}

// E = area * 64 / L: what counts is the mean, and every further range lowers the effect.
constexpr T_HA_CURVE BY_MEAN{.HA_W0 = 0, .HA_K = 64, .HA_WMIN = 0, .HA_P = 1, .HA_L0 = 0};
// The same intensity for every length: all ranges are loaded.
constexpr T_HA_CURVE CONSTANT{.HA_W0 = 1, .HA_K = 0, .HA_WMIN = 0, .HA_P = 0, .HA_L0 = 1e6F};

TEST_F(lane_search, a_later_prefix_may_pass_the_best_after_a_fall_and_an_equal_one_does_not) {
  // Triangles of length 8, area 8 and 16, and one of 98 over 112: 16 * 8 = 128 for the second, 24 * 4 = 96
  // for the first two, and with the third the least intensity: 122 * 2.
  T_HA_CURVE curve = BY_MEAN;
  curve.HA_WMIN = 2;
  const auto result =
      ha(SIMPLE_LINE({0, 4, 8, 16, 20, 24, 100, 156, 212}, {0, 2, 0, 0, 4, 0, 0, 1.75F, 0}), curve);
  EXPECT_EQ(result[MAX_SIDE].VALUE, 244.0F);
  EXPECT_EQ(result[MAX_SIDE].W_MILLI, 2000);
  EXPECT_EQ(loaded(result[MAX_SIDE]), (NUMBERS{2, 1, 3}));
  // Equal means, of which the second is ranked first: 8 * 64/8 = 64 alone, 16 * 64/16 = 64 together.
  const auto equal = ha(SIMPLE_LINE({0, 4, 8, 16, 20, 24}, {0, 2, 0, 0, 2, 0}), BY_MEAN);
  EXPECT_EQ(equal[MAX_SIDE].VALUE, 64.0F);
  EXPECT_EQ(loaded(equal[MAX_SIDE]), NUMBERS{2});
}

TEST_F(lane_search, kel_stands_at_the_peak_even_of_a_range_that_is_not_loaded) {
  // Triangle: peak 5, area 20 over 8. Trapezium: peak 3, area 45 over 16, so alone 45 * 64/16 = 180.
  const auto result = ha(SIMPLE_LINE({0, 4, 8, 16, 17, 31, 32}, {0, 5, 0, 0, 3, 3, 0}), BY_MEAN, 10);
  EXPECT_EQ(result[MAX_SIDE].VALUE, 230.0F);
  EXPECT_EQ(loaded(result[MAX_SIDE]), NUMBERS{2});
  // Both columns of every point are peaks, even those in front of the lane and behind it.
  const auto jump = ha(JUMP_LINE({0, 10, 20}, {7, 0, 0}, {0, 0, -9}), CONSTANT, 10);
  EXPECT_EQ(jump[MAX_SIDE].VALUE, 70.0F);
  EXPECT_EQ(jump[MIN_SIDE].VALUE, -90.0F);
}

TEST_F(lane_search, ranges_of_no_real_length_come_last_in_the_pair_search_of_jump_layout) {
  // A sliver of mean 2, just as long as what still counts for none, in front of a triangle of mean 1.
  const auto line = SIMPLE_LINE({0, 1e-5F, 4, 8}, {4, 0, 2, 0});
  const auto view = VIEW(line);
  const auto end = place_of(line, 8, 8);
  T_RANGE_WORK work_b;
  const auto simple = HA_SEARCH_ZONE_PAIR(view, view, CONSTANT, end, 1, work, work_b);
  EXPECT_EQ(loaded(simple.A[MAX_SIDE]), (NUMBERS{1, 2}));
  const auto jump = HA_SEARCH_ZONE_PAIR_JUMP(view, view, CONSTANT, end, 1, work, work_b);
  EXPECT_EQ(loaded(jump.B[MAX_SIDE]), (NUMBERS{2, 1}));
  EXPECT_EQ(loaded(HA_SEARCH_ZONE_JUMP(view, CONSTANT, end, 1, work)[MAX_SIDE]), (NUMBERS{1, 2}));
}

TEST_F(lane_search, of_repeated_points_each_loses_one_and_the_rows_behind_hold_what_moving_up_leaves) {
  struct {
    std::vector<float> x;
    std::int32_t count;
    NUMBERS rows;
  } const cases[] = {{{}, 0, {}},
                     {{0, 5, 5, 10, 10, 15, 15}, 4, {1, 2, 4, 6, 7, 7, 7}},
                     {{5, 5, 5, 5, 6}, 3, {1, 3, 5, 5, 5}},
                     {{0, 5, 5, 0}, 2, {1, 2, 3, 4}},
                     {{0, 1, std::nextafter(1.0F, 2.0F)}, 3, {1, 2, 3}}};
  for (const auto& [x, count, rows] : cases) {
    const T_KEPT_POINTS kept = DROP_REPEATED_POINTS(x);
    EXPECT_EQ(kept.COUNT, count);
    EXPECT_EQ(kept.SOURCE, rows);
  }
}

TEST_F(lane_search, numbers_that_are_none_do_no_harm) {
  // Any value may come out, but nothing may be read or written outside the lists.
  constexpr float INFINITE = std::numeric_limits<float>::infinity();
  const std::vector<float> poisons{std::nanf(""), INFINITE, -INFINITE, 3e38F};
  T_HB_WORK hb_work;
  for (std::uint64_t seed = 1; seed <= 2000; ++seed) {
    RANDOM_HB_CASE c = MAKE_RANDOM_HB_CASE(seed);
    RANDOM random(seed);
    for (plain::HB_TASK* task : {&c.SIMPLE, &c.JUMP}) {
      for (int poison = 0; poison < 3 && !task->X.empty(); ++poison) {
        plain::ORDINATES& rows = task->SETS[0][static_cast<std::size_t>(random.below(3))];
        std::vector<float>* lists[] = {&task->X, &rows.BEFORE, &rows.AFTER};
        (*lists[random.below(3)])[static_cast<std::size_t>(random.below(static_cast<int>(task->X.size())))] =
            random.one_of(poisons);
      }
      if (random.one_in(4)) task->CURVE.P = random.one_of(poisons);
      if (random.one_in(8)) task->HB_S = random.one_of(poisons);
      const plain::LINE line = OWN_LINE(*task);
      ha(line, CURVE_OF(task->CURVE), random.one_of(poisons));
      std::array<T_RANGE_DISTANCES, N_SIDES> sides;
      (task->JUMP_LAYOUT ? RANGE_DISTANCES_JUMP : RANGE_DISTANCES)(VIEW(line), sides);
      for (HB_SEARCH* form :
           {HB_LANE_MULTI, HB_LANE_MULTI_JUMP, HB_STRADDLE_THIRD_MULTI, HB_STRADDLE_SUM_MULTI_JUMP})
        SEARCH_HB(form, *task, task->SETS[0].size(), 0, hb_work);
    }
  }
}

}  // namespace
