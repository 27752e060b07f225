#include "search/ordinate_sets.h"

namespace search {
namespace {

/// Calls `fill(lane number, lane, set)` for every set behind the first.
template <class SETS, class FILL>
void for_other_lanes(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence, SETS& sets,
                     FILL fill) {
  for (std::size_t set = 1; set < sequence.LANES.size(); ++set) {
    const std::int32_t number = sequence.LANES[set];
    fill(number, lanes[static_cast<std::size_t>(number - 1)], sets[set]);
  }
}

}  // namespace

void OTHER_LANE_ORDINATES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                          const T_LOAD_ORD& LOAD_ORD, bool drops_points, T_ORDINATE_SETS& sets) {
  for_other_lanes(lanes, sequence, sets, [&](std::int32_t, const T_LANE& lane, T_ORDINATES& ordinates) {
    LANE_ORDINATES(lane, LOAD_ORD, ordinates);
    if (drops_points && !lane.LANE_KEEP_POINTS) DROP_ROWS(lane.KEPT, ordinates);
  });
}

void OTHER_LANE_PLANES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                       const T_LOAD_ORD& LOAD_ORD, bool drops_points, T_PLANE_SETS& sets) {
  for_other_lanes(lanes, sequence, sets,
                  [&](std::int32_t, const T_LANE& lane, std::vector<T_ORDINATES>& planes) {
                    PLANE_ORDINATES(lane, LOAD_ORD, planes);
                    if (!drops_points || lane.LANE_KEEP_POINTS) return;
                    for (T_ORDINATES& ordinates : planes) DROP_ROWS(lane.KEPT, ordinates);
                  });
}

void OTHER_LANE_CLASS_ORDINATES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                                const T_LOAD_ORD& LOAD_ORD, const T_CLASS_DEFINITIONS& definitions,
                                std::int32_t veh_class, T_ORDINATE_SETS& sets) {
  for_other_lanes(lanes, sequence, sets,
                  [&](std::int32_t number, const T_LANE& lane, T_ORDINATES& ordinates) {
                    ordinates.CLEAR();
                    const T_CLASS_DEFINITION* definition = definitions.FIND(veh_class, number);
                    if (definition != nullptr)
                      CLASS_ORDINATES(*definition, lane.LANE_STATIONS, LOAD_ORD, ordinates);
                  });
}

void OTHER_LANE_CLASS_PLANES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                             const T_LOAD_ORD& LOAD_ORD, const T_CLASS_DEFINITIONS& definitions,
                             std::int32_t veh_class, T_PLANE_SETS& sets) {
  for_other_lanes(lanes, sequence, sets,
                  [&](std::int32_t number, const T_LANE& lane, std::vector<T_ORDINATES>& planes) {
                    for (T_ORDINATES& ordinates : planes) ordinates.CLEAR();
                    const T_CLASS_DEFINITION* definition = definitions.FIND(veh_class, number);
                    if (definition != nullptr)
                      CLASS_PLANES(*definition, lane.LANE_STATIONS, LOAD_ORD, planes);
                  });
}

}  // namespace search
