// The library against the judge on random lines: every value, count, record and list, bit for bit.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

#include "tests/search/fields.h"
#include "tests/search/random_lines.h"

namespace {

constexpr std::uint64_t N_CASES = 21000;

/// What the random lines have reached, so that a change of the generator can't quietly lose what it is there
/// for.
struct T_SEEN {
  int over_100_distances = 0, over_500_loaded = 0, near_inside = 0, ends_in_one_segment = 0;
  int later_prefix_best = 0, jump_closings = 0, pair_short_ranges = 0;

  void count(const plain::LINE& line, const plain::HA_RESULT& ha, const plain::DISTANCES& distances) {
    over_100_distances += distances.RANGE_COUNT > 100;
    over_500_loaded += ha.MAX.LOADED_COUNT == 500;
    later_prefix_best += ha.MIN.LOADED_COUNT > 1;
    // Without a zone the zone form differs by the jumps alone.
    jump_closings += plain::CUT_RANGES(line).POSITIVE.AREA.count() -
                     plain::CUT_RANGES(line, plain::ZONE_PLACE{}).POSITIVE.AREA.count();
  }
  void count(const plain::LINE& line, const plain::ZONE_PLACE& place) {
    near_inside += place.NEAR_FRACTION != 0;
    ends_in_one_segment += place.NEAR_FRACTION != 0 && place.FAR_INDEX == place.NEAR_INDEX - 1;
    for (const float length : plain::CUT_RANGES(line, place).POSITIVE.LENGTH.values)
      pair_short_ranges += line.JUMP_LAYOUT && length <= 1e-5F;
  }
};

void add_result(FIELD_LIST& fields, const search::T_HA_RESULT& result) {
  for (const search::T_HA_SIDE& side : result) {
    fields.ADD("value", side.VALUE);
    fields.ADD("W_MILLI", side.W_MILLI);
    fields.ADD("loaded ranges", std::vector(side.RANGES, side.RANGES + side.LOADED_COUNT));
  }
}
void add_result(FIELD_LIST& fields, const plain::HA_RESULT& result) {
  for (const plain::HA_SIDE& side : {result.MAX, result.MIN}) {
    fields.ADD("value", side.VALUE);
    fields.ADD("W_MILLI", side.W_MILLI);
    fields.ADD("loaded ranges", side.NUMBERS);
  }
}

template <search::LAYOUT L>
FIELD_LIST library_fields(const RANDOM_CASE& c, const plain::LINE* sets) {
  static search::T_RANGE_WORK work_a, work_b;
  const bool is_jump = sets[0].JUMP_LAYOUT;
  const search::T_LINE lines[] = {VIEW(sets[0]), VIEW(sets[1])};
  const search::T_HA_CURVE curve = CURVE_OF(c.CURVE);
  FIELD_LIST fields;
  for (const search::T_LINE& line : lines) {
    auto* const search_lane = is_jump ? search::HA_SEARCH_LANE_JUMP : search::HA_SEARCH_LANE;
    add_result(fields, search_lane(line, curve, c.KEL_LOAD, work_a));
    for (const float probe : c.PROBES) {
      const search::T_ORDINATE at = search::ORDINATE_AT<L>(probe, line);
      fields.ADD("upper ordinate", at.UPPER);
      fields.ADD("lower ordinate", at.LOWER);
    }
    std::array<search::T_RANGE_DISTANCES, N_SIDES> sides;
    for (auto& side : sides) side.PAIRS.fill({1.0F, 1.0F});  // what an earlier lane left
    (is_jump ? search::RANGE_DISTANCES_JUMP : search::RANGE_DISTANCES)(line, sides);
    for (const auto& side : sides) {
      fields.ADD("RANGE_COUNT", side.RANGE_COUNT);
      for (const auto& pair : side.PAIRS)
        for (const float end : pair) fields.ADD("end of a range", end);
    }
  }
  for (const RANDOM_ZONE& zone : c.ZONES) {
    const auto place = search::LOCATE_ZONE(zone.FAR_END, zone.NEAR_END, lines[0].LANE_X, lines[0].n);
    auto* const one = is_jump ? search::HA_SEARCH_ZONE_JUMP : search::HA_SEARCH_ZONE;
    auto* const pair = is_jump ? search::HA_SEARCH_ZONE_PAIR_JUMP : search::HA_SEARCH_ZONE_PAIR;
    add_result(fields, one(lines[0], curve, place, zone.VEHICLE_LENGTH, work_a));
    const auto both = pair(lines[0], lines[1], curve, place, zone.VEHICLE_LENGTH, work_a, work_b);
    add_result(fields, both.A);
    add_result(fields, both.B);
  }
  return fields;
}

FIELD_LIST judged_fields(const RANDOM_CASE& c, const plain::LINE* sets, T_SEEN& seen) {
  FIELD_LIST fields;
  for (const plain::LINE& line : {sets[0], sets[1]}) {
    const plain::HA_RESULT ha = plain::HA_SEARCH_LANE(line, c.CURVE, c.KEL_LOAD);
    add_result(fields, ha);
    for (const float probe : c.PROBES) {
      const plain::ORDINATE at = plain::ORDINATE_AT(probe, line);
      fields.ADD("upper ordinate", at.UPPER);
      fields.ADD("lower ordinate", at.LOWER);
    }
    const plain::BOTH_DISTANCES sides = plain::RANGE_DISTANCES(line);
    for (plain::DISTANCES side : {sides.POSITIVE, sides.NEGATIVE}) {
      side.PAIRS.resize(search::MAX_RANGES);
      fields.ADD("RANGE_COUNT", side.RANGE_COUNT);
      for (const auto& pair : side.PAIRS)
        for (const float end : pair) fields.ADD("end of a range", end);
    }
    seen.count(line, ha, sides.POSITIVE);
  }
  for (const RANDOM_ZONE& zone : c.ZONES) {
    const auto place = plain::LOCATE_ZONE(zone.FAR_END, zone.NEAR_END, sets[0]);
    add_result(fields, plain::HA_SEARCH_ZONE(sets[0], c.CURVE, place, zone.VEHICLE_LENGTH));
    const auto both = plain::HA_SEARCH_ZONE_PAIR(sets[0], sets[1], c.CURVE, place, zone.VEHICLE_LENGTH);
    add_result(fields, both.A);
    add_result(fields, both.B);
    seen.count(sets[0], place);
  }
  return fields;
}

TEST(bitwise, ranges_and_ha_search_equal_the_plain_steps_in_both_layouts) {
  T_SEEN seen;
  for (std::uint64_t seed = 1; seed <= N_CASES; ++seed) {
    const RANDOM_CASE c = MAKE_RANDOM_CASE(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + ", " + c.KIND);
    ASSERT_EQ(
        DIFFERENCE(library_fields<search::SIMPLE_LAYOUT>(c, c.SIMPLE), judged_fields(c, c.SIMPLE, seen)), "");
    ASSERT_EQ(DIFFERENCE(library_fields<search::JUMP_LAYOUT>(c, c.JUMP), judged_fields(c, c.JUMP, seen)), "")
        << "with jumps";
  }
  EXPECT_GT(seen.over_100_distances, 100);
  EXPECT_GT(seen.over_500_loaded, 20);
  EXPECT_GT(seen.near_inside, 1000);
  EXPECT_GT(seen.ends_in_one_segment, 1000);
  EXPECT_GT(seen.later_prefix_best, 1000);
  EXPECT_GT(seen.jump_closings, 1000);
  EXPECT_GT(seen.pair_short_ranges, 100);
}

}  // namespace
