// HA loading of a lane, worked by hand.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "tests/search/random_lines.h"

namespace {

using NUMBERS = std::vector<std::int32_t>;

NUMBERS loaded(const search::T_HA_SIDE& side) {
  return {side.RANGES, side.RANGES + side.LOADED_COUNT};
}

search::T_HA_CURVE curve_of(const plain::HA_CURVE& curve) {
  return {curve.W0, curve.K, curve.WMIN, curve.P, curve.L0};
}

// E = area * 64 / L: what counts is the mean, and every further range lowers the effect.
constexpr search::T_HA_CURVE BY_MEAN{.HA_W0 = 0, .HA_K = 64, .HA_WMIN = 0, .HA_P = 1, .HA_L0 = 0};
// The same intensity for every length: all ranges are loaded.
constexpr search::T_HA_CURVE CONSTANT{.HA_W0 = 1, .HA_K = 0, .HA_WMIN = 0, .HA_P = 0, .HA_L0 = 1e6F};

// Triangles of length 8: area 8 and mean 1, then area 16 and mean 2.
const plain::LINE TWO_TRIANGLES = SIMPLE_LINE({0, 4, 8, 16, 20, 24}, {0, 2, 0, 0, 4, 0});

class ha_search : public testing::Test {
 protected:
  search::T_HA_RESULT lane(const plain::LINE& line, const search::T_HA_CURVE& curve, float kel_load = 0) {
    return (line.JUMP_LAYOUT ? search::HA_SEARCH_LANE_JUMP : search::HA_SEARCH_LANE)(VIEW(line), curve,
                                                                                     kel_load, work);
  }
  search::T_HA_RESULT beside(const plain::LINE& line, const search::T_HA_CURVE& curve,
                             const RANDOM_ZONE& zone) {
    const auto view = VIEW(line);
    const auto place = search::LOCATE_ZONE(zone.FAR_END, zone.NEAR_END, view.LANE_X, view.n);
    return (line.JUMP_LAYOUT ? search::HA_SEARCH_ZONE_JUMP : search::HA_SEARCH_ZONE)(
        view, curve, place, zone.VEHICLE_LENGTH, work);
  }
  search::T_RANGE_WORK work;
};

TEST_F(ha_search, one_range_takes_the_udl_and_the_kel_at_its_peak) {
  // Area 20 at intensity 5, and 3 at the peak of 2. There is nothing to load for the minimum.
  const search::T_HA_CURVE curve{.HA_W0 = 5, .HA_L0 = 20};
  const auto result = lane(SIMPLE_LINE({0, 10, 20}, {0, 2, 0}), curve, 3);
  EXPECT_EQ(result[MAX_SIDE].VALUE, 106.0F);
  EXPECT_EQ(result[MAX_SIDE].W_MILLI, 5000);
  EXPECT_EQ(loaded(result[MAX_SIDE]), NUMBERS{1});
  EXPECT_EQ(result[MIN_SIDE].VALUE, 0.0F);
  EXPECT_EQ(result[MIN_SIDE].W_MILLI, 0);
  EXPECT_EQ(result[MIN_SIDE].LOADED_COUNT, 0);
}

TEST_F(ha_search, a_range_alone_stays_where_both_give_less) {
  // The second triangle: 16 * 64/8 = 128; both: 24 * 64/16 = 96.
  const auto result = lane(TWO_TRIANGLES, BY_MEAN);
  EXPECT_EQ(result[MAX_SIDE].VALUE, 128.0F);
  EXPECT_EQ(result[MAX_SIDE].W_MILLI, 8000);
  EXPECT_EQ(loaded(result[MAX_SIDE]), NUMBERS{2});
}

TEST_F(ha_search, both_ranges_are_loaded_where_they_give_more_and_the_gap_does_not_count) {
  // Area 12 over 12 and, far away, 8 over 4. w = 8 * (1/L) ^ 0.5: 8 * 4 = 32 for the second, 20 * 2 = 40 for
  // both.
  const search::T_HA_CURVE curve{.HA_W0 = 0, .HA_K = 8, .HA_WMIN = 0, .HA_P = 0.5F, .HA_L0 = 0};
  const std::vector<float> x{0, 6, 12, 112, 114, 116};
  const auto up = lane(SIMPLE_LINE(x, {0, 2, 0, 0, 4, 0}), curve);
  EXPECT_EQ(up[MAX_SIDE].VALUE, 40.0F);
  EXPECT_EQ(up[MAX_SIDE].W_MILLI, 2000);
  EXPECT_EQ(loaded(up[MAX_SIDE]), (NUMBERS{2, 1}));
  // The most negative mean comes first on the other side.
  const auto down = lane(SIMPLE_LINE(x, {0, -2, 0, 0, -4, 0}), curve);
  EXPECT_EQ(down[MIN_SIDE].VALUE, -40.0F);
  EXPECT_EQ(loaded(down[MIN_SIDE]), (NUMBERS{2, 1}));
}

TEST_F(ha_search, a_later_prefix_may_pass_the_best_after_a_fall) {
  // 16 * 8 = 128 for the second, 24 * 4 = 96 for the first two, and with 98 over 112 the least intensity: 122
  // * 2.
  search::T_HA_CURVE curve = BY_MEAN;
  curve.HA_WMIN = 2;
  const auto line = SIMPLE_LINE({0, 4, 8, 16, 20, 24, 100, 156, 212}, {0, 2, 0, 0, 4, 0, 0, 1.75F, 0});
  const auto result = lane(line, curve);
  EXPECT_EQ(result[MAX_SIDE].VALUE, 244.0F);
  EXPECT_EQ(result[MAX_SIDE].W_MILLI, 2000);
  EXPECT_EQ(loaded(result[MAX_SIDE]), (NUMBERS{2, 1, 3}));
}

TEST_F(ha_search, an_equal_effect_does_not_replace_the_shorter_prefix) {
  // Equal means, of which the second is ranked first: 8 * 64/8 = 64 alone, 16 * 64/16 = 64 together.
  const auto result = lane(SIMPLE_LINE({0, 4, 8, 16, 20, 24}, {0, 2, 0, 0, 2, 0}), BY_MEAN);
  EXPECT_EQ(result[MAX_SIDE].VALUE, 64.0F);
  EXPECT_EQ(loaded(result[MAX_SIDE]), NUMBERS{2});
}

TEST_F(ha_search, kel_stands_at_the_peak_even_of_a_range_that_is_not_loaded) {
  // Triangle: peak 5, area 20 over 8. Trapezium: peak 3, area 45 over 16, mean above 2.5, so alone 45 * 64/16
  // = 180.
  const auto line = SIMPLE_LINE({0, 4, 8, 16, 17, 31, 32}, {0, 5, 0, 0, 3, 3, 0});
  const auto result = lane(line, BY_MEAN, 10);
  EXPECT_EQ(result[MAX_SIDE].VALUE, 230.0F);
  EXPECT_EQ(loaded(result[MAX_SIDE]), NUMBERS{2});
  // Both columns of every point are peaks, even those in front of the lane and behind it.
  const auto jump = lane(JUMP_LINE({0, 10, 20}, {7, 0, 0}, {0, 0, -9}), CONSTANT, 10);
  EXPECT_EQ(jump[MAX_SIDE].VALUE, 70.0F);
  EXPECT_EQ(jump[MIN_SIDE].VALUE, -90.0F);
}

TEST_F(ha_search, the_vehicle_counts_as_loaded_length_beside_its_zone) {
  // 8 of lane left and 8 of vehicle: 8 * 64/16.
  const auto line = SIMPLE_LINE({0, 8, 16}, {1, 1, 1});
  const auto result = beside(line, BY_MEAN, {16, 8, 8});
  EXPECT_EQ(result[MAX_SIDE].VALUE, 32.0F);
  EXPECT_EQ(result[MAX_SIDE].W_MILLI, 4000);
  EXPECT_EQ(beside(line, BY_MEAN, {16, 0, 8})[MAX_SIDE].VALUE, 0.0F);  // no lane left
}

TEST_F(ha_search, ranges_of_no_real_length_come_last_in_the_pair_search_of_jump_layout) {
  // A sliver of mean 2, just as long as what still counts for none, in front of a triangle of mean 1.
  const auto line = SIMPLE_LINE({0, 1e-5F, 4, 8}, {4, 0, 2, 0});
  const auto view = VIEW(line);
  const auto end = search::LOCATE_ZONE(8, 8, view.LANE_X, view.n);
  search::T_RANGE_WORK work_b;
  const auto simple = search::HA_SEARCH_ZONE_PAIR(view, view, CONSTANT, end, 1, work, work_b);
  EXPECT_EQ(loaded(simple.A[MAX_SIDE]), (NUMBERS{1, 2}));
  const auto jump = search::HA_SEARCH_ZONE_PAIR_JUMP(view, view, CONSTANT, end, 1, work, work_b);
  EXPECT_EQ(loaded(jump.B[MAX_SIDE]), (NUMBERS{2, 1}));
  EXPECT_EQ(loaded(search::HA_SEARCH_ZONE_JUMP(view, CONSTANT, end, 1, work)[MAX_SIDE]), (NUMBERS{1, 2}));
}

TEST_F(ha_search, numbers_that_are_none_do_no_harm) {
  // Any value may come out, but nothing may be read or written outside the lists.
  const float poisons[] = {std::nanf(""), std::numeric_limits<float>::infinity(),
                           -std::numeric_limits<float>::infinity(), 3e38F};
  search::T_RANGE_WORK work_b;
  for (std::uint64_t seed = 1; seed <= 2000; ++seed) {
    RANDOM_CASE c = MAKE_RANDOM_CASE(seed);
    RANDOM random(seed);
    for (plain::LINE* line : {&c.SIMPLE[0], &c.JUMP[0]}) {
      for (int poison = 0; poison < 3 && line->n() > 0; ++poison) {
        plain::LIST<float>* lists[] = {&line->X, &line->BEFORE, &line->AFTER};
        (*lists[random.below(3)])(random.between(1, line->n())) = poisons[random.below(4)];
      }
      search::T_HA_CURVE curve = curve_of(c.CURVE);
      if (random.one_in(4)) curve.HA_P = poisons[random.below(4)];
      const auto view = VIEW(*line);
      std::array<search::T_RANGE_DISTANCES, N_SIDES> sides;
      search::RANGE_DISTANCES(view, sides);
      search::RANGE_DISTANCES_JUMP(view, sides);
      lane(*line, curve, poisons[random.below(4)]);
      if (random.one_in(2)) c.ZONES.push_back({poisons[random.below(4)], poisons[random.below(4)], 1});
      for (const RANDOM_ZONE& zone : c.ZONES) {
        beside(*line, curve, zone);
        const auto place = search::LOCATE_ZONE(zone.FAR_END, zone.NEAR_END, view.LANE_X, view.n);
        search::HA_SEARCH_ZONE_PAIR(view, view, curve, place, poisons[random.below(4)], work, work_b);
        search::HA_SEARCH_ZONE_PAIR_JUMP(view, view, curve, place, 1, work, work_b);
      }
      c.PROBES.insert(c.PROBES.end(), std::begin(poisons), std::end(poisons));
      for (const float probe : c.PROBES) {
        (void)search::ORDINATE_AT<search::SIMPLE_LAYOUT>(probe, view);
        (void)search::ORDINATE_AT<search::JUMP_LAYOUT>(probe, view);
      }
    }
  }
}

}  // namespace
