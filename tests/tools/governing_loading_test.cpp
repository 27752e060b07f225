#include "tools/governing_loading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <initializer_list>

#include "movload.h"

namespace tools {
namespace {

/// Arrays of a host for a few lanes of five points.
struct HOST_ARRAYS {
  explicit HOST_ARRAYS(std::size_t count) : lanes(count) {
    for (search::T_LANE& lane : lanes) {
      lane.POINT_X = {0.0, 10.0, 20.0, 20.0, 30.0};
      lane.KEPT = search::DROP_REPEATED_POINTS({0.0F, 10.0F, 20.0F, 20.0F, 30.0F});
    }
    side.records.assign(MOVLOAD_RECORD_FIELDS * count, 0);
    side.plane_records.fill(side.records);
    side.ranges.assign(MOVLOAD_RANGE_NUMBERS * count, 0);
    side.plane_ranges.fill(side.ranges);
  }
  [[nodiscard]] T_SIDE_LOADING LOADING() const {
    search::T_VEHICLE_PARAMETERS vehicle;
    vehicle.HB_LOAD = 450.0F;
    vehicle.HB_S = 1.8F;
    vehicle.HB_B = 6.0F;
    vehicle.HB_STEP = 5.0F;
    return GOVERNING_LOADING(side, {lanes, {.POINTS_PER_SEGMENT = 3}, vehicle});
  }

  std::vector<search::T_LANE> lanes;
  T_HOST_SIDE_ARRAYS side;
};

void RECORD(std::vector<std::int32_t>& records, std::size_t lane,
            std::initializer_list<std::int32_t> record) {
  std::ranges::copy(record,
                    records.begin() + static_cast<std::ptrdiff_t>((lane - 1) * MOVLOAD_RECORD_FIELDS));
}

/// Without the rounding of their sums.
std::vector<float> AXLES(const T_HB& hb) {
  std::vector<float> distances;
  for (const T_AXLE& axle : hb.axles) distances.push_back(static_cast<float>(axle.distance));
  return distances;
}

TEST(GoverningLoading, AnHbLaneHasTypePlaceDirectionAndAxles) {
  HOST_ARRAYS arrays(2);
  // Point 5 of all points, 4 without the repeated one.
  RECORD(arrays.side.records, 1, {1, 20000, 3, 2, 5, 10000000, 1, 0, 202, 0});
  RECORD(arrays.side.records, 2, {1, 0, 0, 0, 0, 10000000, 1, 0, 2, 0});
  // Two ranges joined into one across the HB, then split by it.
  std::ranges::copy(std::array{1, 0, 100}, arrays.side.ranges.begin());
  T_SIDE_LOADING side = arrays.LOADING();
  EXPECT_EQ(side.lanes[0].carries, CARRIES::HB);
  const T_HB hb = *side.lanes[0].loading.hb;
  EXPECT_EQ(hb.type, 2);
  EXPECT_EQ(hb.pass, PASS::REVERSE);
  EXPECT_EQ(hb.place.distance, 30.0);
  EXPECT_DOUBLE_EQ(hb.inner_spacing, 11.0);
  EXPECT_EQ(AXLES(hb), (std::vector{-9.6F, -7.8F, 3.2F, 5.0F}));
  EXPECT_DOUBLE_EQ(hb.clear_start, -34.6);
  EXPECT_DOUBLE_EQ(hb.clear_end, 30.0);
  EXPECT_EQ(side.lanes[0].loading.udl->range_numbers, (std::vector{1, 100}));
  // Loaded, but without a pass: an HB that adds nothing and stands nowhere.
  EXPECT_EQ(side.lanes[1].carries, CARRIES::HB);
  EXPECT_FALSE(side.lanes[1].loading.hb);

  // Three lanes with an HB: their positions come as the search counted them.
  RECORD(arrays.side.records, 1, {1, 0, 0, 2, 4, 10000000, 0, 0, 100, 0});
  side = arrays.LOADING();
  EXPECT_EQ(side.lanes[0].loading.hb->place.distance, 30.0);
  EXPECT_EQ(AXLES(*side.lanes[0].loading.hb), (std::vector{69.6F, 67.8F, 56.8F, 55.0F}));
}

TEST(GoverningLoading, AStraddlingHbWithAPortionForEachParentIsToldOnceAndItsUdlOnTheParents) {
  HOST_ARRAYS arrays(3);
  arrays.lanes[2].IS_STRADDLE = true;
  arrays.lanes[2].STRADDLE_LEFT = 1;
  arrays.lanes[2].STRADDLE_RIGHT = 2;
  arrays.lanes[2].N_TRANSVERSE = 3;  // planes
  arrays.lanes[2].N_PER_PLANE = 1;
  RECORD(arrays.side.records, 3, {1, 0, 0, 0, 0, 0, 0, 0, 100, 0});
  RECORD(arrays.side.plane_records[0], 3, {1, 30000, 1, 1, 4, 10000000, 30011});
  RECORD(arrays.side.plane_records[1], 3, {1, 10000, 1, 1, 4, 10000000, 30010});
  for (std::vector<std::int32_t>& numbers : arrays.side.plane_ranges) numbers[2 * MOVLOAD_RANGE_NUMBERS] = 2;
  for (const bool is_folded : {true, false}) {
    SCOPED_TRACE(is_folded);
    if (is_folded) {
      RECORD(arrays.side.records, 1, {1, 30000, 1, 1, 5, 10000000, 30011, 0, 104, 0});
      RECORD(arrays.side.records, 2, {1, 10000, 1, 1, 5, 10000000, 30010, 0, 104, 0});
      arrays.side.ranges[0] = arrays.side.ranges[MOVLOAD_RANGE_NUMBERS] = 2;
    } else {
      // One parent without UDL: the library leaves the parents alone.
      arrays.side.plane_records[0][2 * MOVLOAD_RECORD_FIELDS + 1] = 0;
      RECORD(arrays.side.records, 1, {1, 0, 0, 0, 0, 0, 0, 0, 1, 0});
      RECORD(arrays.side.records, 2, {1, 0, 0, 0, 0, 0, 0, 0, 1, 0});
    }
    const T_SIDE_LOADING side = arrays.LOADING();
    EXPECT_EQ(side.lanes[2].carries, CARRIES::STRADDLING_HB);
    EXPECT_DOUBLE_EQ(side.lanes[2].loading.factor, 1.0);
    EXPECT_EQ(side.lanes[2].loading.hb->plane, 1);
    EXPECT_EQ(side.lanes[2].loading.hb->place.distance, 30.0);
    EXPECT_EQ(side.lanes[2].parents, (std::array{1, 2}));
    EXPECT_EQ(side.lanes[2].parent_portions, (std::array{1.0, 0.3333}));
    for (const std::size_t parent : {0U, 1U}) {
      EXPECT_EQ(side.lanes[parent].carries, CARRIES::UDL_BESIDE_HB);
      EXPECT_EQ(side.lanes[parent].straddle_lane, 3);
      EXPECT_FALSE(side.lanes[parent].loading.hb);
    }
    EXPECT_EQ(side.lanes[0].loading.udl.has_value(), is_folded);
    ASSERT_TRUE(side.lanes[1].loading.udl);
    EXPECT_DOUBLE_EQ(side.lanes[1].loading.udl->intensity, 10.0);
    EXPECT_DOUBLE_EQ(side.lanes[1].loading.udl->portion, 0.3333);
    EXPECT_EQ(side.lanes[1].loading.udl->range_numbers, std::vector{2});
  }
}

}  // namespace
}  // namespace tools
