// HA loading of a lane: a knife-edge load at the peak of the influence line, and a UDL whose intensity falls
// with the loaded length (BS 5400-2 clauses 6.2.1 and 6.2.2).
//
// Because the intensity depends on how much is loaded, adding a range raises the area but may lower the
// effect, so which ranges to load is a search: the ranges of a sign are ranked once by mean ordinate, and the
// prefixes of that ranking are tried. A prefix must be strictly better to replace the best so far; the walk
// always runs to the end, for a later prefix may pass the best.
#pragma once

#include <array>
#include <cstdint>

#include "search/ha_bounds.h"
#include "search/ranges.h"

namespace search {

/// The best loading of one side. With no range the value is 0 (or the KEL's part alone) and the rest is 0.
/// RANGES is good until the caller's work lists are used again.
struct T_HA_SIDE {
  real VALUE = 0;
  std::int32_t W_MILLI = 0;              // intensity * 1000, truncated
  std::int32_t LOADED_COUNT = 0;         // at most MAX_LOADED
  const std::int32_t* RANGES = nullptr;  // their sequence numbers in order of ranking, in the work lists
};
using T_HA_RESULT = std::array<T_HA_SIDE, N_SIDES>;

/// A whole lane with the KEL at the peak of each side, whatever ranges are loaded.
T_HA_RESULT HA_SEARCH_LANE(const T_LINE& line, const T_HA_CURVE& curve, real kel_load, T_RANGE_WORK& work);
T_HA_RESULT HA_SEARCH_LANE_JUMP(const T_LINE& line, const T_HA_CURVE& curve, real kel_load,
                                T_RANGE_WORK& work);

/// The rest of a lane beside an HB: no KEL, and the vehicle's length counts as loaded length from the start.
/// `known`, where it isn't null, is prepared for the line and spares a walk over all of it.
template <LAYOUT L>
T_HA_RESULT HA_SEARCH_ZONE_OF(const T_LINE& line, const T_HA_CURVE& curve, const T_ZONE_PLACE& zone,
                              real vehicle_length, T_RANGE_WORK& work, const T_HA_BOUNDS* known = nullptr);
T_HA_RESULT HA_SEARCH_ZONE(const T_LINE& line, const T_HA_CURVE& curve, const T_ZONE_PLACE& zone,
                           real vehicle_length, T_RANGE_WORK& work);
T_HA_RESULT HA_SEARCH_ZONE_JUMP(const T_LINE& line, const T_HA_CURVE& curve, const T_ZONE_PLACE& zone,
                                real vehicle_length, T_RANGE_WORK& work);

/// The same for the two parent lanes A and B of a straddling HB, which share their positions. The choice
/// between them is the caller's. Each set has work lists of its own.
struct T_HA_PAIR {
  T_HA_RESULT A;
  T_HA_RESULT B;
};
template <LAYOUT L>
T_HA_PAIR HA_SEARCH_ZONE_PAIR_OF(const T_LINE& a, const T_LINE& b, const T_HA_CURVE& curve,
                                 const T_ZONE_PLACE& zone, real vehicle_length, T_RANGE_WORK& work_a,
                                 T_RANGE_WORK& work_b, const T_HA_BOUNDS* known_a = nullptr,
                                 const T_HA_BOUNDS* known_b = nullptr);
T_HA_PAIR HA_SEARCH_ZONE_PAIR(const T_LINE& a, const T_LINE& b, const T_HA_CURVE& curve,
                              const T_ZONE_PLACE& zone, real vehicle_length, T_RANGE_WORK& work_a,
                              T_RANGE_WORK& work_b);
T_HA_PAIR HA_SEARCH_ZONE_PAIR_JUMP(const T_LINE& a, const T_LINE& b, const T_HA_CURVE& curve,
                                   const T_ZONE_PLACE& zone, real vehicle_length, T_RANGE_WORK& work_a,
                                   T_RANGE_WORK& work_b);

}  // namespace search
