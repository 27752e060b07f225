// Ordinate sets of lanes that axles of a class run on.
#include <gtest/gtest.h>

#include "search/ordinate_sets.h"

namespace {

using search::T_LANE;

/// A lane whose entry e of point k takes unit load 1 with the factor 10 * k + e.
T_LANE lane_of(const std::vector<real>& positions, std::int32_t entries, std::int32_t per_plane) {
  T_LANE lane;
  lane.LANE_STATIONS = static_cast<std::int32_t>(positions.size());
  lane.N_TRANSVERSE = entries;
  lane.N_PER_PLANE = per_plane;
  lane.POINT_X_REAL = positions;
  lane.POINT_X.assign(positions.begin(), positions.end());
  lane.POINT_IMPACT.assign(positions.size(), 0.0);
  lane.LANE_LINKS.RESIZE(2, entries, lane.LANE_STATIONS);
  for (std::int32_t k = 1; k <= lane.LANE_STATIONS; ++k) {
    for (std::int32_t e = 1; e <= entries; ++e) lane.LANE_LINKS(1, e, k) = {10.0 * k + e, 1};
  }
  lane.KEPT = search::DROP_REPEATED_POINTS(positions);
  return lane;
}

search::T_LOAD_ORD unit_response() {
  search::T_LOAD_ORD LOAD_ORD;
  LOAD_ORD.VALUES.RESIZE(1, 1);
  LOAD_ORD.VALUES(1, 1) = 1;
  return LOAD_ORD;
}

std::vector<real> rows(const search::T_ORDINATES& ordinates, std::int32_t count) {
  std::vector<real> result;
  for (std::int32_t k = 1; k <= count; ++k) result.push_back(ordinates(k, 1));
  return result;
}

TEST(ordinate_sets, other_lanes_fill_the_sets_behind_the_first_and_drop_their_own_repeats) {
  std::vector<T_LANE> lanes{lane_of({0, 1}, 1, 1), lane_of({0, 5, 5, 10}, 1, 1), lane_of({0, 0, 3}, 1, 1)};
  lanes[2].LANE_KEEP_POINTS = true;
  const search::T_LANE_SEQUENCE sequence = search::LANE_SEQUENCE({3, 0, 2, 3}, 1);
  ASSERT_EQ(sequence.LANES, (std::vector<std::int32_t>{1, 2, 3}));

  search::T_PLANE_SETS sets(3, std::vector<search::T_ORDINATES>(1, search::T_ORDINATES(5, 1)));
  sets[0][0](1, 1) = 7;
  search::OTHER_LANE_ORDINATES(lanes, sequence, unit_response(), false, true, sets);
  EXPECT_EQ(sets[0][0](1, 1), 7);  // the lane's own set is the caller's
  // The third point goes; the last place keeps what stood there before the shift.
  EXPECT_EQ(rows(sets[1][0], 5), (std::vector<real>{11, 21, 41, 41, 0}));
  EXPECT_EQ(rows(sets[2][0], 4), (std::vector<real>{11, 21, 31, 0}));

  search::OTHER_LANE_ORDINATES(lanes, sequence, unit_response(), false, false, sets);
  EXPECT_EQ(rows(sets[1][0], 4), (std::vector<real>{11, 21, 31, 41}));
}

TEST(ordinate_sets, planes_of_another_lane_take_its_own_entries_and_are_empty_beyond_them) {
  // Three planes of two entries each, of which the other lane has five entries: the last plane has one.
  const std::vector<T_LANE> lanes{lane_of({0, 1}, 6, 2), lane_of({0, 1}, 5, 2)};
  const search::T_LANE_SEQUENCE sequence = search::LANE_SEQUENCE({2}, 1);
  search::T_PLANE_SETS sets(2, std::vector<search::T_ORDINATES>(3, search::T_ORDINATES(3, 1)));
  search::OTHER_LANE_ORDINATES(lanes, sequence, unit_response(), true, true, sets);
  EXPECT_EQ(rows(sets[1][0], 2), (std::vector<real>{11.5F, 21.5F}));
  EXPECT_EQ(rows(sets[1][1], 2), (std::vector<real>{13.5F, 23.5F}));
  EXPECT_EQ(rows(sets[1][2], 2), (std::vector<real>{7.5F, 12.5F}));
}

TEST(ordinate_sets, a_named_lane_without_class_definition_has_zero_ordinates) {
  const std::vector<T_LANE> lanes{lane_of({0, 1}, 1, 1), lane_of({0, 1}, 1, 1), lane_of({0, 1}, 1, 1)};
  search::T_CLASS_DEFINITIONS definitions;
  definitions.CLASS_DEF.resize(1);
  search::T_CLASS_DEFINITION& definition = definitions.CLASS_DEF[0];
  definition.CLASS_DEF_NO = 9;
  definition.N_POINTS = 1;
  definition.N_ENTRIES = 2;
  definition.N_PER_PLANE = 2;
  definition.CLASS_LINKS = {{1, 3.0F}, {1, 5.0F}, {1, 8.0F}};
  definition.FIRST_SHARE = {0, 2, 3};
  definitions.CLASS_LANE_TABLE = search::T_CLASS_LANE_TABLE(1, 3);
  ASSERT_TRUE(definitions.CLASS_LANE_TABLE.ADD(4, 3, 9));
  ASSERT_FALSE(definitions.CLASS_LANE_TABLE.ADD(4, 2, 9));  // as many slots as definitions

  const search::T_LANE_SEQUENCE sequence = search::LANE_SEQUENCE({2, 3}, 1);
  search::T_PLANE_SETS sets(3, std::vector<search::T_ORDINATES>(1, search::T_ORDINATES(3, 1)));
  sets[1][0](1, 1) = 7;
  search::OTHER_LANE_CLASS_ORDINATES(lanes, sequence, unit_response(), false, definitions, 4, sets);
  EXPECT_EQ(rows(sets[1][0], 2), (std::vector<real>{0, 0}));
  EXPECT_EQ(rows(sets[2][0], 2),
            (std::vector<real>{8, 0}));  // (3 + 5 + 8) / 2; the definition lacks the second point

  search::T_PLANE_SETS plane_sets(3, std::vector<search::T_ORDINATES>(2, search::T_ORDINATES(3, 1)));
  search::OTHER_LANE_CLASS_ORDINATES(lanes, sequence, unit_response(), true, definitions, 4, plane_sets);
  EXPECT_EQ(rows(plane_sets[2][0], 1), (std::vector<real>{8}));
  EXPECT_EQ(rows(plane_sets[2][1], 1), (std::vector<real>{0}));
}

}  // namespace
