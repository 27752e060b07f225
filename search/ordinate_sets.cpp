#include "search/ordinate_sets.h"

namespace search {

void OTHER_LANE_ORDINATES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                          const T_LOAD_ORD& LOAD_ORD, bool by_planes, bool drops_points, T_PLANE_SETS& sets) {
  for (std::size_t set = 1; set < sequence.LANES.size(); ++set) {
    const T_LANE& lane = lanes[static_cast<std::size_t>(sequence.LANES[set] - 1)];
    if (by_planes) {
      PLANE_ORDINATES(lane, LOAD_ORD, sets[set]);
    } else {
      LANE_ORDINATES(lane, LOAD_ORD, sets[set].front());
    }
    if (!drops_points || lane.LANE_KEEP_POINTS) continue;
    for (T_ORDINATES& plane : sets[set]) DROP_ROWS(lane.KEPT, plane);
  }
}

void OTHER_LANE_CLASS_ORDINATES(const std::vector<T_LANE>& lanes, const T_LANE_SEQUENCE& sequence,
                                const T_LOAD_ORD& LOAD_ORD, bool by_planes,
                                const T_CLASS_DEFINITIONS& definitions, std::int32_t veh_class,
                                T_PLANE_SETS& sets) {
  for (std::size_t set = 1; set < sequence.LANES.size(); ++set) {
    const std::int32_t number = sequence.LANES[set];
    const T_LANE& lane = lanes[static_cast<std::size_t>(number - 1)];
    // On the lane in hand only a number above 0 is a definition; here any that the table tells, but 0.
    const std::int32_t class_def_no = definitions.CLASS_LANE_TABLE.FIND(veh_class, number);
    const T_CLASS_DEFINITION* definition =
        class_def_no != 0 ? definitions.FIND_CLASS_DEF(class_def_no) : nullptr;
    if (definition == nullptr) {
      for (T_ORDINATES& plane : sets[set]) plane.CLEAR();
    } else if (by_planes) {
      CLASS_PLANES(*definition, lane.LANE_STATIONS, LOAD_ORD, sets[set]);
    } else {
      CLASS_ORDINATES(*definition, lane.LANE_STATIONS, LOAD_ORD, sets[set].front());
    }
  }
}

}  // namespace search
