// Ranges, ranking, intensity and reading of a line, worked by hand.

#include <gtest/gtest.h>

#include <random>

#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "tests/search/random_lines.h"

namespace {

using search::JUMP_LAYOUT;
using search::SIMPLE_LAYOUT;

using RANGES = std::vector<std::pair<float, float>>;  // area, length
struct T_CUT {
  RANGES POSITIVE;
  RANGES NEGATIVE;
  bool operator==(const T_CUT&) const = default;
};

T_CUT lists_of(const search::T_RANGE_WORK& work) {
  T_CUT cut;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    const auto& list = work.SIDES[side];
    auto& ranges = side == MAX_SIDE ? cut.POSITIVE : cut.NEGATIVE;
    for (std::size_t r = 0; r < static_cast<std::size_t>(list.COUNT); ++r)
      ranges.emplace_back(list.RANGE_AREA[r], list.RANGE_LENGTH[r]);
  }
  return cut;
}

template <search::LAYOUT L>
T_CUT CUT(const plain::LINE& line) {
  search::T_RANGE_WORK work;
  search::CUT_RANGES<L>(VIEW(line), work);
  return lists_of(work);
}

template <search::LAYOUT L>
T_CUT CUT_BESIDE(const plain::LINE& line, float near_end, float far_end) {
  search::T_RANGE_WORK work;
  const auto view = VIEW(line);
  search::CUT_RANGES_BESIDE_ZONE<L>(view, search::LOCATE_ZONE(far_end, near_end, view.LANE_X, view.n), work);
  return lists_of(work);
}

using PAIRS = std::vector<std::array<float, 2>>;  // start, end

std::array<PAIRS, N_SIDES> DISTANCES(const plain::LINE& line) {
  std::array<search::T_RANGE_DISTANCES, N_SIDES> sides;
  (line.JUMP_LAYOUT ? search::RANGE_DISTANCES_JUMP : search::RANGE_DISTANCES)(VIEW(line), sides);
  std::array<PAIRS, N_SIDES> pairs;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE})
    pairs[side].assign(sides[side].PAIRS.begin(), sides[side].PAIRS.begin() + sides[side].RANGE_COUNT);
  return pairs;
}

TEST(cut, segment_across_zero_is_split_in_proportion_to_its_ends) {
  // Crossing at 1 * 4 / (3 + 1) = 1: 1 * 0.5 * 1 in front of it, -3 * 0.5 * 3 behind.
  const auto falling = SIMPLE_LINE({0, 4}, {1, -3});
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(falling), (T_CUT{{{0.5F, 1.0F}}, {{-4.5F, 3.0F}}}));
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 4}, {-3, 1})), (T_CUT{{{0.5F, 1.0F}}, {{-4.5F, 3.0F}}}));
}

TEST(cut, zero_at_a_point_closes_a_range_and_an_empty_rest_never_enters) {
  // Touching zero from above: two ranges here, one for the host's distances. The start of a range that begins
  // with the lane stays 0, wherever the lane starts.
  const auto touching = SIMPLE_LINE({5, 15, 25}, {2, 0, 2});
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(touching), (T_CUT{{{10, 10}, {10, 10}}, {}}));
  EXPECT_EQ(DISTANCES(touching), (std::array<PAIRS, 2>{PAIRS{{0, 25}}, PAIRS{}}));
  // Sign change on a point: the positive range ends there, nothing of it is left over.
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 10, 20}, {1, 0, -1})), (T_CUT{{{5, 10}}, {{-5, 10}}}));
  // Ending on zero from below leaves a positive range of no area.
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 10}, {-1, 0})), (T_CUT{{}, {{-5, 10}}}));
}

TEST(cut, lines_without_effect_have_no_ranges) {
  for (const auto& line :
       {SIMPLE_LINE({}, {}), SIMPLE_LINE({3}, {7}), SIMPLE_LINE({0, 1, 2}, {0, -0.0F, 0})}) {
    EXPECT_EQ(CUT<SIMPLE_LAYOUT>(line), T_CUT{});
    EXPECT_EQ(CUT<JUMP_LAYOUT>(line), T_CUT{});
  }
  EXPECT_EQ(DISTANCES(SIMPLE_LINE({}, {})), (std::array<PAIRS, 2>{}));
}

TEST(cut, segment_without_length_closes_ranges_in_jump_layout_only) {
  // Down and up again on one spot: the dip is a negative range of length 0 where jumps count.
  auto line = SIMPLE_LINE({0, 10, 10, 10, 20}, {1, 1, -1, 1, 1});
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(line), (T_CUT{{{20, 20}}, {}}));
  line.JUMP_LAYOUT = true;
  EXPECT_EQ(CUT<JUMP_LAYOUT>(line), (T_CUT{{{10, 10}, {10, 10}}, {{-0.0F, 0}}}));
}

TEST(cut, jump_across_zero_closes_a_range_of_the_whole_lane_but_not_beside_a_zone) {
  const auto line = JUMP_LINE({0, 10, 20, 30}, {9, 1, -1, 1}, {1, -1, 1, 9});
  EXPECT_EQ(CUT<JUMP_LAYOUT>(line), (T_CUT{{{10, 10}, {10, 10}}, {{-10, 10}}}));
  EXPECT_EQ(CUT_BESIDE<JUMP_LAYOUT>(line, 30, 30), (T_CUT{{{20, 20}}, {{-10, 10}}}));
  // The distances close at the point of the jump.
  EXPECT_EQ(DISTANCES(line), (std::array<PAIRS, 2>{PAIRS{{0, 10}, {20, 30}}, PAIRS{{10, 20}}}));
}

TEST(cut, zone_joins_what_stands_on_both_sides_of_it) {
  const auto line = SIMPLE_LINE({0, 10, 20, 30, 40}, {1, 1, -1, 1, 1});
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(line, 10, 30), (T_CUT{{{20, 20}}, {}}));
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(line, 10, 40), (T_CUT{{{10, 10}}, {}}));  // nothing behind the far end
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(line, 0, 40), T_CUT{});
}

TEST(cut, ends_of_a_zone_inside_segments_cut_them) {
  // 0 to 5 rising to 2 and 15 to 20 falling from 2: 5 each.
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 10, 20}, {0, 4, 0}), 5, 15), (T_CUT{{{10, 10}}, {}}));
  // Both ends in the first segment: 0 to 2, 4 to 8 and the whole second segment.
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 8, 16}, {1, 1, 1}), 2, 4), (T_CUT{{{14, 14}}, {}}));
  // The first range closes at 1 in front of the zone: -1 * 0.5 * 1 from 1 to 2, then on from the value -3
  // at 4.
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 8}, {1, -7}), 2, 4),
            (T_CUT{{{0.5F, 1}}, {{-20.5F, 5}}}));
}

TEST(sort, equal_means_come_out_in_the_order_of_the_double_ended_selection) {
  const auto ranking = [](std::vector<float> means, bool by_magnitude = false) {
    std::vector<std::int32_t> numbers;
    for (std::size_t i = 1; i <= means.size(); ++i) numbers.push_back(static_cast<std::int32_t>(i));
    search::SORT_RANGE_MEANS(static_cast<std::int32_t>(means.size()), means.data(), numbers.data(),
                             by_magnitude);
    return numbers;
  };
  using NUMBERS = std::vector<std::int32_t>;
  EXPECT_EQ(ranking({5, 5, 5, 5}), (NUMBERS{4, 3, 2, 1}));
  EXPECT_EQ(ranking({2, 2, 1, 2}), (NUMBERS{1, 4, 2, 3}));
  // 1 2 3 2 1: the 3 to the front (3 2 1 4 5), the first 1 to the back (3 2 5 4 1); then the first 2 stays
  // and the 1 in the middle changes places with the second 2 (3 2 4 5 1).
  EXPECT_EQ(ranking({1, 2, 3, 2, 1}), (NUMBERS{3, 2, 4, 5, 1}));
  EXPECT_EQ(ranking({-1, -3, -2}, true), (NUMBERS{2, 3, 1}));
  EXPECT_EQ(ranking({}), NUMBERS{});
}

TEST(sort, very_many_means_come_out_in_the_same_order_as_few) {
  std::mt19937 random(5);
  for (const int values : {2, 40, 100000}) {
    const int count = 2000 + values % 3;
    plain::LIST<float> judged;
    plain::LIST<int> judged_numbers;
    for (int i = 1; i <= count; ++i) {
      judged.values.push_back(static_cast<float>(static_cast<int>(random() % static_cast<unsigned>(values))));
      judged_numbers.values.push_back(i);
    }
    std::vector<real> means = judged.values;
    std::vector<std::int32_t> numbers = judged_numbers.values;
    search::SORT_RANGE_MEANS(count, means.data(), numbers.data(), false);
    plain::SORT_RANGE_MEANS(judged, judged_numbers, 1);
    EXPECT_EQ(means, judged.values) << values << " values";
    EXPECT_EQ(numbers, judged_numbers.values) << values << " values";
  }
}

TEST(intensity, follows_the_curve_beyond_the_short_lengths_and_never_falls_below_the_least) {
  const search::T_HA_CURVE curve{.HA_W0 = 30, .HA_K = 80, .HA_WMIN = 9, .HA_P = 0.5F, .HA_L0 = 16};
  EXPECT_EQ(search::HA_INTENSITY(16, curve), 30.0F);  // up to and with HA_L0
  EXPECT_EQ(search::HA_INTENSITY(64, curve), 10.0F);  // 80 * (1/64) ^ 0.5
  EXPECT_EQ(search::HA_INTENSITY(256, curve), 9.0F);  // 5 by the curve
  EXPECT_EQ(search::HA_INTENSITY(1, {.HA_W0 = 3, .HA_WMIN = 9, .HA_L0 = 16}), 9.0F);
}

TEST(intensity, is_recorded_in_thousandths_without_rounding_up) {
  EXPECT_EQ(search::W_MILLI(9.9996F), 9999);
  EXPECT_EQ(search::W_MILLI(30.0F), 30000);
  for (const float not_recordable : {3e6F, std::numeric_limits<float>::infinity(), std::nanf("")})
    EXPECT_EQ(search::W_MILLI(not_recordable), std::numeric_limits<std::int32_t>::min());
}

template <search::LAYOUT L>
std::pair<float, float> AT(float position, const plain::LINE& line) {
  const auto at = search::ORDINATE_AT<L>(position, VIEW(line));
  return {at.UPPER, at.LOWER};
}

TEST(ordinate, is_interpolated_between_points_and_zero_off_the_lane) {
  const auto line = SIMPLE_LINE({10, 20, 30, 40, 50, 60, 70}, {1, 2, 4, 8, 16, 32, 64});
  for (const auto& [position, value] :
       {std::pair{9.0F, 0.0F}, {10, 1}, {15, 1.5F}, {40, 8}, {47.5F, 14}, {62.5F, 40}, {70, 64}, {71, 0}}) {
    EXPECT_EQ(AT<SIMPLE_LAYOUT>(position, line), std::pair(value, value)) << position;
    EXPECT_EQ(AT<JUMP_LAYOUT>(position, line), std::pair(value, value)) << position;
  }
}

TEST(ordinate, on_a_jump_or_a_repeated_point_has_an_upper_and_a_lower_value) {
  const auto jump = JUMP_LINE({0, 10, 20}, {0, 3, 5}, {1, -3, 7});
  EXPECT_EQ(AT<JUMP_LAYOUT>(10, jump), std::pair(3.0F, -3.0F));
  EXPECT_EQ(AT<JUMP_LAYOUT>(5, jump), std::pair(2.0F, 2.0F));   // from 1 after the first point to 3
  EXPECT_EQ(AT<JUMP_LAYOUT>(15, jump), std::pair(1.0F, 1.0F));  // from -3 to 5
  EXPECT_EQ(AT<JUMP_LAYOUT>(20, jump), std::pair(7.0F, 5.0F));
  // Of a point that stands three times the first two count, and without jump layout the first.
  const auto repeated = SIMPLE_LINE({0, 10, 10, 10, 20}, {0, 3, -2, 9, 1});
  EXPECT_EQ(AT<JUMP_LAYOUT>(10, repeated), std::pair(3.0F, -2.0F));
  EXPECT_EQ(AT<SIMPLE_LAYOUT>(10, repeated), std::pair(3.0F, 3.0F));
}

TEST(zone, far_end_goes_to_the_lower_point_of_its_segment_and_near_end_to_the_upper) {
  const auto line = SIMPLE_LINE({0, 10, 10, 20}, {0, 0, 0, 0});
  const auto place = [&](float far_end, float near_end, std::int32_t n = 4) {
    const auto zone = search::LOCATE_ZONE(far_end, near_end, VIEW(line).LANE_X, n);
    return std::vector<float>{static_cast<float>(zone.FAR_INDEX), zone.FAR_FRACTION,
                              static_cast<float>(zone.NEAR_INDEX), zone.NEAR_FRACTION};
  };
  EXPECT_EQ(place(15, 2.5F), (std::vector<float>{3, 0.5F, 2, 0.25F}));
  EXPECT_EQ(place(20, 0), (std::vector<float>{4, 0, 1, 0}));
  EXPECT_EQ(place(10, 10), (std::vector<float>{2, 0, 2, 0}));  // the first of a repeated point
  EXPECT_EQ(place(0, 0, 1), (std::vector<float>{0, 0, 0, 0}));
}

TEST(distances, single_zero_inside_a_range_does_not_end_it_and_two_do) {
  // Crossing of 1 and -1 halfway between 40 and 50.
  const auto line = SIMPLE_LINE({0, 10, 20, 30, 40, 50, 60, 70}, {0, 0, 1, 0, 1, -1, 0, 0});
  EXPECT_EQ(DISTANCES(line), (std::array<PAIRS, 2>{PAIRS{{10, 45}}, PAIRS{{45, 60}}}));
}

TEST(distances, keep_a_hundred_ranges_and_count_all) {
  // +1 and -1 by turns, 2 apart: the r-th positive range lies 1 to either side of 4 * (r - 1).
  std::vector<float> x, y;
  for (int i = 0; i < 401; ++i) {
    x.push_back(2.0F * static_cast<float>(i));
    y.push_back(i % 2 == 0 ? 1.0F : -1.0F);
  }
  auto line = SIMPLE_LINE(x, y);
  for (auto* form : {search::RANGE_DISTANCES, search::RANGE_DISTANCES_JUMP}) {
    std::array<search::T_RANGE_DISTANCES, N_SIDES> sides;
    form(VIEW(line), sides);
    EXPECT_EQ(sides[MAX_SIDE].RANGE_COUNT, 201);
    EXPECT_EQ(sides[MIN_SIDE].RANGE_COUNT, 200);
    EXPECT_EQ(sides[MAX_SIDE].PAIRS.front(), (std::array{0.0F, 1.0F}));
    EXPECT_EQ(sides[MAX_SIDE].PAIRS.back(), (std::array{395.0F, 397.0F}));
    EXPECT_EQ(sides[MIN_SIDE].PAIRS.back(), (std::array{397.0F, 399.0F}));
  }
}

}  // namespace
