// The ordinate sets of a class whose axles run on several lanes: one set a lane of its LANE_SEQUENCE. Set 0
// is the lane's own and the caller's; the routines here fill the others, each with the lane's own points at
// their own places, so that the lanes must have their points at the same stations.
#pragma once

#include <cstdint>
#include <vector>

#include "search/lane_ordinates.h"
#include "search/vehicle_tables.h"

namespace search {

/// By set, as LANE_SEQUENCE numbers them, then plane; an ordinary lane has one plane.
using T_PLANE_SETS = std::vector<std::vector<T_ORDINATES>>;

/// Fills the sets behind the first from the lanes' own links: by planes for a straddle lane, else each lane's
/// entries averaged. `drops_points` tells whether repeated points are dropped on lanes that don't keep
/// theirs; rows behind the points left hold what the shifting left there.
void OTHER_LANE_ORDINATES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                          const T_LOAD_ORD& LOAD_ORD, bool by_planes, bool drops_points, T_PLANE_SETS& sets);

/// The same from the definitions of a class; a lane without one has zero ordinates. Nothing is dropped.
void OTHER_LANE_CLASS_ORDINATES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                                const T_LOAD_ORD& LOAD_ORD, bool by_planes,
                                const T_CLASS_DEFINITIONS& definitions, std::int32_t veh_class,
                                T_PLANE_SETS& sets);

}  // namespace search
