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
    for (search::T_LANE& lane : lanes) lane.POINT_X = {0.0, 10.0, 20.0, 20.0, 30.0};
    side.records.assign(MOVLOAD_RECORD_FIELDS * count, 0);
    side.plane_records.fill(side.records);
    side.ranges.assign(MOVLOAD_RANGE_NUMBERS * count, 0);
    side.plane_ranges.fill(side.ranges);
    side.distances.assign(MOVLOAD_RANGE_DISTANCES * count, 0.0F);
  }
  [[nodiscard]] T_SIDE_LOADING LOADING() const { return GOVERNING_LOADING(side, lanes); }

  std::vector<search::T_LANE> lanes;
  T_HOST_SIDE_ARRAYS side;
};

void RECORD(std::vector<std::int32_t>& records, std::size_t lane,
            std::initializer_list<std::int32_t> record) {
  std::ranges::copy(record,
                    records.begin() + static_cast<std::ptrdiff_t>((lane - 1) * MOVLOAD_RECORD_FIELDS));
}

TEST(GoverningLoading, ARangeThatTheDistancesDontListHasItsNumberAlone) {
  HOST_ARRAYS arrays(1);
  RECORD(arrays.side.records, 1, {1, 30000, 3, 0, 0, 10000000, 0, 9, 101, 0});
  std::ranges::copy(std::array{1, 2, 101}, arrays.side.ranges.begin());
  std::ranges::copy(std::array{0.0F, 10.0F}, arrays.side.distances.begin());
  const T_LANE_SIDE lane = arrays.LOADING().lanes.at(0);
  ASSERT_EQ(lane.loading.udl->ranges.size(), 3U);
  EXPECT_TRUE(lane.loading.udl->ranges[0].has_distance);
  EXPECT_FALSE(lane.loading.udl->ranges[1].has_distance);
  EXPECT_FALSE(lane.loading.udl->ranges[2].has_distance);
  EXPECT_DOUBLE_EQ(lane.loading.udl->loaded_length, 10.0);
  EXPECT_EQ(lane.kel->point, 9);
  EXPECT_FALSE(lane.kel->distance);  // the lane has five points
}

TEST(GoverningLoading, AnHbLaneHasTypePlaceAndDirection) {
  HOST_ARRAYS arrays(2);
  RECORD(arrays.side.records, 1, {1, 0, 0, 3, 2, 10000000, 1, 0, 202, 0});
  RECORD(arrays.side.records, 2, {1, 0, 0, 0, 0, 10000000, 1, 0, 2, 0});
  const T_SIDE_LOADING side = arrays.LOADING();
  EXPECT_EQ(side.lanes[0].carries, CARRIES::HB);
  EXPECT_EQ(side.lanes[0].loading.hb->type, 3);
  EXPECT_EQ(side.lanes[0].loading.hb->place.distance, 10.0);
  EXPECT_EQ(side.lanes[0].pass, PASS::REVERSE);
  EXPECT_EQ(side.lanes[0].combination_type, 2);
  EXPECT_FALSE(side.lanes[0].loading.udl);
  // Loaded, but without a pass: an HB that adds nothing and stands nowhere.
  EXPECT_EQ(side.lanes[1].carries, CARRIES::HB);
  EXPECT_FALSE(side.lanes[1].loading.hb);
}

TEST(GoverningLoading, AStraddlingHbIsToldByPlane) {
  HOST_ARRAYS arrays(3);
  arrays.lanes[2].IS_STRADDLE = true;
  arrays.lanes[2].STRADDLE_LEFT = 1;
  arrays.lanes[2].STRADDLE_RIGHT = 2;
  RECORD(arrays.side.records, 3, {1, 0, 0, 0, 0, 0, 0, 0, 100, 0});
  RECORD(arrays.side.plane_records[0], 3, {1, 30000, 1, 2, 5, 10000000, 1});
  RECORD(arrays.side.plane_records[1], 3, {1, 10000, 1, 2, 5, 10000000, 0});
  const T_LANE_SIDE lane = arrays.LOADING().lanes.at(2);
  EXPECT_EQ(lane.carries, CARRIES::STRADDLING_HB);
  EXPECT_EQ(lane.parents, (std::array<std::int32_t, 2>{1, 2}));
  ASSERT_EQ(lane.planes.size(), 2U);
  EXPECT_DOUBLE_EQ(lane.planes[0].udl->intensity, 30.0);
  EXPECT_DOUBLE_EQ(lane.planes[1].udl->intensity, 10.0);
  EXPECT_EQ(lane.planes[1].hb->place.distance, 30.0);
}

}  // namespace
}  // namespace tools
