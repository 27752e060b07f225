// Placing of the HB vehicle: every type at every influence point, in the directions that the lane allows,
// with HA UDL on what remains of the lane outside the vehicle's zone (BS 5400-2 clauses 6.3 and 6.4.2).
//
// The vehicle has four axles of the load HB_LOAD: two bogies of axles HB_S apart. Its five types differ by
// the distance of the bogies, HB_B between the inner axles of the shortest and HB_STEP more from type to
// type. HB_CLEAR ahead of the first axle and behind the last stays free of HA UDL and must lie on the lane:
//
//      NEAR_END   axle 4  axle 3              axle 2  axle 1   FAR_END        -> lane
//         |--------o--------o------------------o--------o---------|
//          HB_CLEAR   HB_S    inner distance      HB_S    HB_CLEAR
//
// A placement must be strictly better to replace the best so far, so that of equal ones the first stays:
// forward before reverse, low points before high, short types before long. The two sides are independent.
//
// Twelve searches come of three axes of variation: where the HB stands (in a lane; across two parent lanes
// with full HA UDL on both, or with 0.3333 on one), whether its axles run on other lanes' ordinate sets, and
// the layout. All are one routine over types for these; see the end of hb_placing.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "search/ha_bounds.h"
#include "search/ha_search.h"
#include "search/lane_ordinates.h"
#include "search/search_result.h"
#include "search/vehicle_tables.h"

namespace search {

inline constexpr std::int32_t HB_TYPES = 5;
inline constexpr real HB_CLEAR = 25.0F;
inline constexpr std::size_t HB_AXLES = 4;

/// What an HB is placed on. Ordinates are given by planes: one for an ordinary lane, N_PLANE for a straddle
/// lane, whose planes 2 and 3 are the ordinates of its parent lanes.
struct T_HB_INPUT {
  std::int32_t n = 0;                             // points
  TABLE<const real, POINT> LANE_X;                // their positions
  const std::vector<T_ORDINATES>* OWN = nullptr;  // the lane's own planes, on which HA UDL stands
  /// The planes that axle j runs on: OWN, or another lane's.
  std::array<const std::vector<T_ORDINATES>*, HB_AXLES> AXLES{};
  const T_VEHICLE_PARAMETERS* VEHICLE = nullptr;
  std::int32_t LANE_DIRECTION = 0;  // 0 forward only, 1 reverse only, other both
  std::int32_t LANE_NUMBER = 0;     // of a straddle lane; goes into HB_CODE
};

/// Arrays of a search, kept between searches so that none allocates after the first lines.
struct T_HB_WORK {
  struct T_REVERSED_SET {
    const std::vector<T_ORDINATES>* SOURCE = nullptr;
    std::vector<T_ORDINATES> PLANES;
  };
  struct T_EXTREMES {
    std::vector<real> HIGHEST;
    std::vector<real> LOWEST;
  };
  std::vector<real> REVERSED_X;
  std::vector<T_REVERSED_SET> REVERSED;         // one for each set in hand
  std::vector<T_LINE> AXLE_LINES;               // of the pass in hand
  T_ORDINATES SUM;                              // planes 2 and 3 added
  std::vector<T_EXTREMES> EXTREMES;             // of the front axles' lines
  std::vector<std::array<T_ORDINATE, 2>> REAR;  // ordinates of the rear axles by plane
  // Screening: bounds of the HA UDL by line, and the placements that it leaves.
  struct T_LEFT {
    std::int32_t POINT_INDEX = 0;
    std::int32_t HB_TYPE = 0;
    std::array<double, N_SIDES> HIGH{};  // upper bounds of the totals' magnitudes
  };
  T_INTENSITY_BOUNDS INTENSITY;
  std::array<T_HA_BOUNDS, 2> BOUNDS;
  std::vector<T_LEFT> LEFT;

  std::array<T_RANGE_WORK, 2> RANGES;  // of the HA search; two for a pair of parent lanes
};

using HB_SEARCH = void(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result);

/// HB in a lane. The result is cleared by the caller;
/// where nothing fits, or no total goes beyond 0, it stays so.
HB_SEARCH HB_LANE, HB_LANE_MULTI, HB_LANE_JUMP, HB_LANE_MULTI_JUMP;

/// HB across two parent lanes that both carry full HA UDL
/// on the same ranges. The vehicle takes the best plane.
HB_SEARCH HB_STRADDLE_SUM, HB_STRADDLE_SUM_MULTI, HB_STRADDLE_SUM_JUMP, HB_STRADDLE_SUM_MULTI_JUMP;

/// HB across two parent lanes of which one carries full
/// HA UDL and the other 0.3333 of it, whichever is worse.
HB_SEARCH HB_STRADDLE_THIRD, HB_STRADDLE_THIRD_MULTI, HB_STRADDLE_THIRD_JUMP, HB_STRADDLE_THIRD_MULTI_JUMP;

}  // namespace search
