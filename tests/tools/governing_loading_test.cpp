#include "tools/governing_loading.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "movload.h"

namespace tools {
namespace {

/// Arrays of a host for a few lanes, filled by the line.
class HOST_ARRAYS {
 public:
  explicit HOST_ARRAYS(std::size_t lanes) : lanes_(lanes) {
    side_.records.assign(MOVLOAD_RECORD_FIELDS * lanes, 0);
    side_.plane_records.fill(side_.records);
    side_.ranges.assign(MOVLOAD_RANGE_NUMBERS * lanes, 0);
    side_.plane_ranges.fill(side_.ranges);
    side_.distances.assign(MOVLOAD_RANGE_DISTANCES * lanes, 0.0F);
  }
  void RECORD(std::size_t lane, std::initializer_list<std::int32_t> record) {
    std::copy(record.begin(), record.end(), side_.records.begin() + at(lane, MOVLOAD_RECORD_FIELDS));
  }
  void PLANE_RECORD(std::size_t lane, std::size_t plane, std::initializer_list<std::int32_t> record) {
    std::copy(record.begin(), record.end(),
              side_.plane_records[plane].begin() + at(lane, MOVLOAD_RECORD_FIELDS));
  }
  void RANGES(std::size_t lane, std::initializer_list<std::int32_t> numbers) {
    std::copy(numbers.begin(), numbers.end(), side_.ranges.begin() + at(lane, MOVLOAD_RANGE_NUMBERS));
  }
  void DISTANCES(std::size_t lane, std::initializer_list<float> pairs) {
    std::copy(pairs.begin(), pairs.end(), side_.distances.begin() + at(lane, MOVLOAD_RANGE_DISTANCES));
  }
  [[nodiscard]] T_SIDE_LOADING LOADING(const std::vector<search::T_LANE>& lanes) const {
    return GOVERNING_LOADING(side_, lanes);
  }
  [[nodiscard]] std::vector<search::T_LANE> LANES() const {
    search::T_LANE lane;
    lane.POINT_X = {0.0, 10.0, 20.0, 20.0, 30.0};
    return std::vector(lanes_, lane);
  }

 private:
  static std::ptrdiff_t at(std::size_t lane, std::size_t per_lane) {
    return static_cast<std::ptrdiff_t>((lane - 1) * per_lane);
  }
  std::size_t lanes_;
  T_HOST_SIDE_ARRAYS side_;
};

TEST(GoverningLoading, AnHaLaneHasItsIntensityItsRangesAndItsKnifeEdge) {
  HOST_ARRAYS arrays(2);
  arrays.RECORD(1, {1, 0, 0, 0, 0, 0, 0, 0, 1, 0});
  arrays.RECORD(2, {1, 23548, 2, 0, 0, 3333333, 0, 4, 101, 0});
  arrays.RANGES(2, {2, 1, 7});
  arrays.DISTANCES(2, {0.0F, 5.5F, 12.0F, 30.0F});
  const T_SIDE_LOADING side = arrays.LOADING(arrays.LANES());

  EXPECT_EQ(side.vehicle_class, 1);
  ASSERT_EQ(side.lanes.size(), 2U);
  EXPECT_EQ(side.lanes[0].carries, CARRIES::NOTHING);
  const T_LANE_SIDE& lane = side.lanes[1];
  EXPECT_EQ(lane.lane, 2);
  EXPECT_EQ(lane.carries, CARRIES::HA);
  EXPECT_NEAR(lane.loading.factor, 1.0 / 3.0, 1e-7);
  ASSERT_TRUE(lane.loading.udl);
  EXPECT_DOUBLE_EQ(lane.loading.udl->intensity, 23.548);
  EXPECT_DOUBLE_EQ(lane.loading.udl->loaded_length, 23.5);
  ASSERT_EQ(lane.loading.udl->ranges.size(), 2U);  // the third number isn't in use
  EXPECT_EQ(lane.loading.udl->ranges[0].number, 2);
  EXPECT_DOUBLE_EQ(lane.loading.udl->ranges[0].start, 12.0);
  EXPECT_DOUBLE_EQ(lane.loading.udl->ranges[0].end, 30.0);
  EXPECT_DOUBLE_EQ(lane.loading.udl->ranges[1].end, 5.5);
  ASSERT_TRUE(lane.kel);
  EXPECT_EQ(lane.kel->point, 4);
  EXPECT_EQ(lane.kel->distance, 20.0);
  EXPECT_FALSE(lane.loading.hb);
}

TEST(GoverningLoading, ARangeThatTheDistancesDontListHasItsNumberAlone) {
  HOST_ARRAYS arrays(1);
  arrays.RECORD(1, {1, 30000, 3, 0, 0, 10000000, 0, 9, 101, 0});
  arrays.RANGES(1, {1, 2, 101});
  arrays.DISTANCES(1, {0.0F, 10.0F});
  const T_LANE_SIDE lane = arrays.LOADING(arrays.LANES()).lanes.at(0);
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
  arrays.RECORD(1, {1, 0, 0, 3, 2, 10000000, 1, 0, 202, 0});
  arrays.RECORD(2, {1, 0, 0, 0, 0, 10000000, 1, 0, 2, 0});
  const T_SIDE_LOADING side = arrays.LOADING(arrays.LANES());
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
  std::vector<search::T_LANE> lanes = arrays.LANES();
  lanes[2].IS_STRADDLE = true;
  lanes[2].STRADDLE_LEFT = 1;
  lanes[2].STRADDLE_RIGHT = 2;
  arrays.RECORD(3, {1, 0, 0, 0, 0, 0, 0, 0, 100, 0});
  arrays.PLANE_RECORD(3, 0, {1, 30000, 1, 2, 5, 10000000, 1});
  arrays.PLANE_RECORD(3, 1, {1, 10000, 1, 2, 5, 10000000, 0});
  const T_LANE_SIDE lane = arrays.LOADING(lanes).lanes.at(2);
  EXPECT_EQ(lane.carries, CARRIES::STRADDLING_HB);
  EXPECT_EQ(lane.parents, (std::array<std::int32_t, 2>{1, 2}));
  ASSERT_EQ(lane.planes.size(), 2U);
  EXPECT_DOUBLE_EQ(lane.planes[0].udl->intensity, 30.0);
  EXPECT_DOUBLE_EQ(lane.planes[1].udl->intensity, 10.0);
  EXPECT_EQ(lane.planes[1].hb->place.distance, 30.0);
}

TEST(GoverningLoading, NothingGovernsWhereTheVehicleClassIsZero) {
  const HOST_ARRAYS arrays(1);
  const T_SIDE_LOADING side = arrays.LOADING(arrays.LANES());
  EXPECT_EQ(side.vehicle_class, 0);
  EXPECT_EQ(side.lanes.at(0).carries, CARRIES::NOTHING);
  EXPECT_TRUE(HOST_ARRAYS(0).LOADING({}).lanes.empty());
}

}  // namespace
}  // namespace tools
