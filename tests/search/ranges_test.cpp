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
using T_CUT = std::array<RANGES, N_SIDES>;

template <search::LAYOUT L>
T_CUT CUT(const plain::LINE& line, const float* near_and_far_end = nullptr) {
  search::T_RANGE_WORK work;
  const auto view = VIEW(line);
  if (near_and_far_end == nullptr) {
    search::CUT_RANGES<L>(view, work);
  } else {
    const auto zone = search::LOCATE_ZONE(near_and_far_end[1], near_and_far_end[0], view.LANE_X, view.n);
    search::CUT_RANGES_BESIDE_ZONE<L>(view, zone, work);
  }
  T_CUT cut;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE})
    for (std::size_t r = 0; r < static_cast<std::size_t>(work.SIDES[side].COUNT); ++r)
      cut[side].emplace_back(work.SIDES[side].RANGE_AREA[r], work.SIDES[side].RANGE_LENGTH[r]);
  return cut;
}

template <search::LAYOUT L>
T_CUT CUT_BESIDE(const plain::LINE& line, float near_end, float far_end) {
  return CUT<L>(line, std::array{near_end, far_end}.data());
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
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(falling), (T_CUT{RANGES{{0.5F, 1.0F}}, RANGES{{-4.5F, 3.0F}}}));
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 4}, {-3, 1})),
            (T_CUT{RANGES{{0.5F, 1.0F}}, RANGES{{-4.5F, 3.0F}}}));
}

TEST(cut, zero_at_a_point_closes_a_range_and_an_empty_rest_never_enters) {
  // Touching zero from above: two ranges here, one for the host's distances. The start of a range that begins
  // with the lane stays 0, wherever the lane starts.
  const auto touching = SIMPLE_LINE({5, 15, 25}, {2, 0, 2});
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(touching), (T_CUT{RANGES{{10, 10}, {10, 10}}, RANGES{}}));
  EXPECT_EQ(DISTANCES(touching), (std::array<PAIRS, 2>{PAIRS{{0, 25}}, PAIRS{}}));
  // Sign change on a point: the positive range ends there, nothing of it is left over.
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 10, 20}, {1, 0, -1})),
            (T_CUT{RANGES{{5, 10}}, RANGES{{-5, 10}}}));
  // Ending on zero from below leaves a positive range of no area.
  EXPECT_EQ(CUT<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 10}, {-1, 0})), (T_CUT{RANGES{}, RANGES{{-5, 10}}}));
}

TEST(cut, jump_across_zero_closes_a_range_of_the_whole_lane_but_not_beside_a_zone) {
  const auto line = JUMP_LINE({0, 10, 20, 30}, {9, 1, -1, 1}, {1, -1, 1, 9});
  EXPECT_EQ(CUT<JUMP_LAYOUT>(line), (T_CUT{RANGES{{10, 10}, {10, 10}}, RANGES{{-10, 10}}}));
  EXPECT_EQ(CUT_BESIDE<JUMP_LAYOUT>(line, 30, 30), (T_CUT{RANGES{{20, 20}}, RANGES{{-10, 10}}}));
  // The distances close at the point of the jump.
  EXPECT_EQ(DISTANCES(line), (std::array<PAIRS, 2>{PAIRS{{0, 10}, {20, 30}}, PAIRS{{10, 20}}}));
}

TEST(cut, ends_of_a_zone_inside_segments_cut_them) {
  // 0 to 5 rising to 2 and 15 to 20 falling from 2: 5 each.
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 10, 20}, {0, 4, 0}), 5, 15),
            (T_CUT{RANGES{{10, 10}}, RANGES{}}));
  // Both ends in the first segment: 0 to 2, 4 to 8 and the whole second segment.
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 8, 16}, {1, 1, 1}), 2, 4),
            (T_CUT{RANGES{{14, 14}}, RANGES{}}));
  // The first range closes at 1 in front of the zone: -1 * 0.5 * 1 from 1 to 2, then on from the value -3
  // at 4.
  EXPECT_EQ(CUT_BESIDE<SIMPLE_LAYOUT>(SIMPLE_LINE({0, 8}, {1, -7}), 2, 4),
            (T_CUT{RANGES{{0.5F, 1}}, RANGES{{-20.5F, 5}}}));
}

TEST(sort, equal_means_come_out_in_the_order_of_the_double_ended_selection) {
  const auto ranking = [](std::vector<float> means, bool by_magnitude = false) {
    std::vector<std::int32_t> numbers;
    for (std::size_t i = 1; i <= means.size(); ++i) numbers.push_back(static_cast<std::int32_t>(i));
    std::vector<search::T_RANGE_MEAN> work;
    search::SORT_RANGE_MEANS(static_cast<std::int32_t>(means.size()), means.data(), numbers.data(),
                             by_magnitude, work);
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
  std::vector<search::T_RANGE_MEAN> work;
  for (const auto& [count, values] :
       {std::pair{60, 40}, {60, 1 << 24}, {2002, 2}, {2001, 40}, {2001, 1 << 24}}) {
    plain::LIST<float> judged;
    plain::LIST<int> judged_numbers;
    for (int i = 1; i <= count; ++i) {
      judged.values.push_back(static_cast<float>(static_cast<int>(random() % static_cast<unsigned>(values))));
      judged_numbers.values.push_back(i);
    }
    std::vector<real> means = judged.values;
    std::vector<std::int32_t> numbers = judged_numbers.values;
    search::SORT_RANGE_MEANS(count, means.data(), numbers.data(), false, work);
    plain::SORT_RANGE_MEANS(judged, judged_numbers, 1);
    EXPECT_EQ(means, judged.values) << count << " of " << values << " values";
    EXPECT_EQ(numbers, judged_numbers.values) << count << " of " << values << " values";
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

TEST(distances, single_zero_inside_a_range_does_not_end_it_and_two_do) {
  // Crossing of 1 and -1 halfway between 40 and 50.
  const auto line = SIMPLE_LINE({0, 10, 20, 30, 40, 50, 60, 70}, {0, 0, 1, 0, 1, -1, 0, 0});
  EXPECT_EQ(DISTANCES(line), (std::array<PAIRS, 2>{PAIRS{{10, 45}}, PAIRS{{45, 60}}}));
}

}  // namespace
