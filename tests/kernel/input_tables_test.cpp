// What a run works out from its tables before any search: segments, vehicles, axle lists and ordinates.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "kernel/driver.h"
#include "kernel/input_blocks.h"
namespace kernel {
namespace {

using positions = std::vector<double>;

std::int32_t points_per_segment(const std::vector<positions>& lines) {
  std::vector<search::T_LANE> lanes(lines.size());
  for (std::size_t l = 0; l < lines.size(); ++l) {
    lanes[l].LANE_STATIONS = static_cast<std::int32_t>(lines[l].size());
    lanes[l].POINT_X = lines[l];
  }
  return POINTS_PER_SEGMENT(lanes);
}

TEST(points_per_segment, is_the_first_repeat_of_lane_1_that_the_other_lanes_confirm) {
  const positions plain{0, 1, 2, 3, 4};
  const positions threes{0, 1, 2, 2, 3, 4};
  const positions twos{0, 1, 1, 2, 2, 3, 3};
  const std::pair<std::vector<positions>, std::int32_t> CASES[] = {
      {{}, 3},
      {{plain}, 5},
      {{{7}}, 1},
      {{{7, 7, 8}}, 1},
      {{threes}, 3},
      {{{}, plain}, 5},
      {{{}, threes}, 3},
      {{{}, twos}, 7},      // lane 1 alone chooses
      {{twos, threes}, 6},  // nothing confirms 2
      {{threes, {}, {0, 0, 1, 1, 2}}, 3},
      {{threes, {0, 0, 1, 2, 2}}, 5},
      {{{0, 1, 2, 2 - 1e-11, 3}}, 3},
      {{{0, 1, 2, 2 + 1e-9, 3}}, 5},
  };
  for (const auto& [lines, points] : CASES) EXPECT_EQ(points_per_segment(lines), points);
}

TEST(vehicles, entries_beyond_the_counts_are_zero) {
  search::T_VEHICLE vehicle;
  vehicle.HA_CURVE = {1, 2, 3, 4};
  vehicle.VEHICLE_LOADS = {120, 450, 77};
  vehicle.VEHICLE_GEOM = {30, 1.5F, 6, 5, 9};
  const auto check = [&](std::int32_t loads, std::int32_t geometry, std::array<real, 6> expected) {
    vehicle.N_VEHICLE_LOADS = loads;
    vehicle.N_VEHICLE_GEOM = geometry;
    const search::T_VEHICLE_PARAMETERS p = search::VEHICLE_PARAMETERS(vehicle);
    EXPECT_EQ((std::array{p.KEL_LOAD, p.HB_LOAD, p.HA_CURVE.HA_L0, p.HB_S, p.HB_B, p.HB_STEP}), expected)
        << loads << " " << geometry;
    EXPECT_EQ(p.HA_CURVE.HA_P, 4);
  };
  check(100, 100, {120, 450, 30, 1.5F, 6, 5});
  check(2, 3, {120, 450, 30, 1.5F, 6, 5});
  check(1, 2, {120, 0, 30, 1.5F, 6, 0});
  check(0, 0, {0, 0, 30, 0, 0, 0});
  check(0, -1, {0, 0, 0, 0, 0, 0});
}

TEST(lane_sequence, numbers_the_other_lanes_in_lane_order) {
  using sets = std::array<std::size_t, 4>;
  const std::tuple<std::vector<std::int32_t>, std::int32_t, std::vector<std::int32_t>, sets> CASES[] = {
      {{}, 4, {4}, {0, 0, 0, 0}},
      {{0, 0, 0, 0}, 4, {4}, {0, 0, 0, 0}},
      {{4, -1, 0, 4}, 4, {4}, {0, 0, 0, 0}},
      {{5, 0, 3, 5}, 4, {4, 3, 5}, {2, 0, 1, 2}},
      {{2}, 1, {1, 2}, {1, 0, 0, 0}},
      {{1, 2, 2, 1, 9, 7}, 1, {1, 2, 7, 9}, {0, 1, 1, 0}},  // entries behind the axles count as named
  };
  for (const auto& [list, lane, lanes, axles] : CASES) {
    const search::T_LANE_SEQUENCE sequence = search::LANE_SEQUENCE(list, lane);
    EXPECT_EQ(sequence.LANES, lanes);
    EXPECT_EQ(sequence.AXLE_SET, axles);
    EXPECT_EQ(sequence.NAMES_OTHERS(), lanes.size() > 1);
  }
}

TEST(class_lane_table, the_first_entry_of_a_key_counts_and_slots_run_out) {
  search::T_CLASS_LANE_TABLE table(3, 10);
  EXPECT_TRUE(table.ADD(2, 1, 50));
  EXPECT_TRUE(table.ADD(2, 1, 51));
  EXPECT_TRUE(table.ADD(1, 10, 52));
  EXPECT_FALSE(table.ADD(1, 3, 53));
  EXPECT_EQ(table.FIND(2, 1), 50);
  EXPECT_EQ(table.FIND(1, 10), 52);
  EXPECT_EQ(table.FIND(1, 3), 0);
}

TEST(repeated_points, each_point_loses_at_most_one_repeat) {
  const std::pair<std::vector<real>, std::vector<std::int32_t>> CASES[] = {
      {{}, {}},
      {{0, 5, 5, 10}, {1, 2, 4}},
      {{0, 5, 5, 10, 10, 15, 15}, {1, 2, 4, 6}},
      {{5, 5, 5}, {1, 3}},
      {{5, 5, 5, 5}, {1, 3}},
      {{5, 5, 5, 5, 5}, {1, 3, 5}},
      {{0, 5, 10, 5, 0, 5}, {1, 2, 3, 6}},
      {{0, -0.0F, 1}, {1, 3}},
      {{0, 1, std::nextafter(1.0F, 2.0F)}, {1, 2, 3}},
  };
  for (const auto& [line, rows] : CASES) {
    const search::T_KEPT_POINTS kept = search::DROP_REPEATED_POINTS(line);
    EXPECT_EQ(std::vector(kept.SOURCE.begin(), kept.SOURCE.begin() + kept.COUNT), rows);
    search::T_ORDINATES ordinates(static_cast<std::int32_t>(line.size()), 2);
    for (std::int32_t i = 1; i <= std::ssize(line); ++i) ordinates(i, 2) = static_cast<real>(i);
    search::DROP_ROWS(kept, ordinates);
    for (std::int32_t i = 1; const std::int32_t row : rows)
      EXPECT_EQ(ordinates(i++, 2), static_cast<real>(row));
  }
}

TEST(repeated_points, the_rows_behind_hold_what_shifting_row_by_row_leaves_there) {
  std::mt19937 random(3);
  for (int line = 0; line < 2000; ++line) {
    std::vector<real> line_x(random() % 12);
    for (real& x : line_x) x = static_cast<real>(random() % 6);
    if (line % 2 == 0) std::sort(line_x.begin(), line_x.end());

    std::vector<real> x = line_x;
    std::vector<std::int32_t> rows(x.size());
    std::iota(rows.begin(), rows.end(), 1);
    std::size_t count = x.size();
    for (std::size_t i = 0; i + 1 < count; ++i) {
      std::size_t j = i + 1;
      while (j < count && x[j] != x[i]) ++j;
      if (j == count) continue;
      for (--count; j < count; ++j) {
        x[j] = x[j + 1];
        rows[j] = rows[j + 1];
      }
    }
    const search::T_KEPT_POINTS kept = search::DROP_REPEATED_POINTS(line_x);
    EXPECT_EQ(kept.COUNT, static_cast<std::int32_t>(count));
    EXPECT_EQ(kept.SOURCE, rows);
  }
}

/// Unit load u answers u in the first column and -10 u in the second.
search::T_LOAD_ORD response(std::int32_t columns) {
  search::T_LOAD_ORD LOAD_ORD;
  LOAD_ORD.COLUMNS = columns;
  LOAD_ORD.VALUES.RESIZE(columns, 8);
  for (std::int32_t load = 1; load <= 8; ++load)
    for (std::int32_t column = 1; column <= columns; ++column)
      LOAD_ORD.VALUES(column, load) = static_cast<real>(column == 1 ? load : -10 * load);
  return LOAD_ORD;
}

/// The rows of the first column, 0 behind them.
void expect_rows(const search::T_ORDINATES& ordinates, std::vector<real> rows) {
  rows.resize(static_cast<std::size_t>(ordinates.POINTS()));
  for (std::int32_t i = 1; const real value : rows) {
    EXPECT_EQ(ordinates(i, 1), value) << i;
    EXPECT_EQ(ordinates(i++, ordinates.COLUMNS()), ordinates.COLUMNS() == 2 ? -10 * value : value);
  }
}

TEST(ordinates, of_a_lane_are_averaged_and_those_of_its_planes_are_not) {
  for (const std::int32_t columns : {1, 2}) {
    search::T_LANE lane;
    lane.LANE_STATIONS = lane.N_TRANSVERSE = 2;
    lane.N_PER_PLANE = 1;
    lane.POINT_IMPACT = {0, 0.25};
    lane.SPREAD_TABLE = {{2, {3, 5, 8}, {0.5, 0.25, 9}}, {0, {8}, {9}}};
    lane.LANE_LINKS.RESIZE(2, 2, 2);
    for (const std::int32_t entry : {1, 2}) lane.LANE_LINKS(1, entry, 1) = {1.5, 4};
    // A spread row's own weights stand in place of the link's; a row of no pairs adds nothing.
    lane.LANE_LINKS(2, 2, 1) = {77, -1};
    lane.LANE_LINKS(2, 1, 1) = {77, -2};
    lane.LANE_LINKS(1, 1, 2) = {2.0, 1};
    lane.LANE_LINKS(2, 1, 2) = {1.0, 6};
    search::T_ORDINATES ordinates(3, columns);
    ordinates(3, 1) = 99;  // cleared first
    search::LANE_ORDINATES(lane, response(columns), ordinates);
    expect_rows(ordinates, {1.5F * 4 + 0.5F * (0.5F * 3 + 0.25F * 5), 0.5F * (2 + 6) * 1.25F});
    // Planes of one entry each; the third has none.
    std::vector<search::T_ORDINATES> planes(3, ordinates);
    search::PLANE_ORDINATES(lane, response(columns), planes);
    expect_rows(planes[0], {1.5F * 4, (2 + 6) * 1.25F});
    expect_rows(planes[1], {1.5F * 4 + 0.5F * 3 + 0.25F * 5});
    expect_rows(planes[2], {});
  }
}

TEST(ordinates, of_a_class_definition_hold_its_weights_whole_and_end_with_lane_or_definition) {
  // Three points of two entries: unit load p with weight e, and one share of load 8 more at the first.
  search::T_CLASS_DEFINITION definition{
      .N_POINTS = 3, .N_ENTRIES = 2, .CLASS_LINKS = {{8, 0.5F}}, .FIRST_SHARE = {0}};
  for (std::int32_t share = 2; share <= 7; ++share) {
    definition.CLASS_LINKS.push_back({share / 2, static_cast<real>(share % 2 + 1)});
    definition.FIRST_SHARE.push_back(definition.CLASS_LINKS.size());
  }
  for (const std::int32_t columns : {1, 2}) {
    std::vector<search::T_ORDINATES> planes(3, search::T_ORDINATES(5, columns));
    definition.N_PER_PLANE = 1;
    search::CLASS_ORDINATES(definition, 2, response(columns), planes[0]);
    expect_rows(planes[0], {1 + 4 + 2, 2 + 4});
    search::CLASS_PLANES(definition, 4, response(columns), planes);
    expect_rows(planes[0], {5, 2, 3});
    expect_rows(planes[1], {2, 4, 6});
    definition.N_PER_PLANE = 2;
    search::CLASS_PLANES(definition, 4, response(columns), planes);
    expect_rows(planes[0], {3.5F, 3, 4.5F});
    expect_rows(planes[1], {});
  }
}

}  // namespace
}  // namespace kernel
