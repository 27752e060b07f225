#include "search/vehicle_tables.h"

#include <algorithm>

namespace search {

T_VEHICLE_PARAMETERS VEHICLE_PARAMETERS(const T_VEHICLE& vehicle) {
  // Entries that the counts leave out are 0; the geometry has one entry more than its count.
  const auto load = [&](std::int32_t entry) {
    return entry <= vehicle.N_VEHICLE_LOADS ? vehicle.VEHICLE_LOADS[static_cast<std::size_t>(entry - 1)]
                                            : 0.0F;
  };
  const auto geometry = [&](std::int32_t entry) {
    const bool in_use = vehicle.N_VEHICLE_GEOM >= 0 && entry <= vehicle.N_VEHICLE_GEOM + 1;
    return in_use ? vehicle.VEHICLE_GEOM[static_cast<std::size_t>(entry - 1)] : 0.0F;
  };
  T_VEHICLE_PARAMETERS parameters;
  parameters.VEHICLE_CODE = vehicle.VEHICLE_CODE;
  parameters.HA_CURVE = {vehicle.HA_CURVE[0], vehicle.HA_CURVE[1], vehicle.HA_CURVE[2], vehicle.HA_CURVE[3],
                         geometry(1)};
  parameters.KEL_LOAD = load(1);
  parameters.HB_LOAD = load(2);
  parameters.HB_S = geometry(2);
  parameters.HB_B = geometry(3);
  parameters.HB_STEP = geometry(4);
  return parameters;
}

const std::vector<std::int32_t>& T_AXLE_LANES::READ(std::int32_t veh_class, std::int32_t lane) const {
  const auto row = rows_.find({veh_class, lane});
  return row == rows_.end() ? no_entries_ : row->second;
}

T_LANE_SEQUENCE LANE_SEQUENCE(const std::vector<std::int32_t>& axle_list, std::int32_t lane) {
  T_LANE_SEQUENCE sequence;
  for (const std::int32_t named : axle_list) {
    if (named > 0 && named != lane) sequence.LANES.push_back(named);
  }
  std::sort(sequence.LANES.begin(), sequence.LANES.end());
  sequence.LANES.erase(std::unique(sequence.LANES.begin(), sequence.LANES.end()), sequence.LANES.end());
  sequence.LANES.insert(sequence.LANES.begin(), lane);
  for (std::size_t axle = 0; axle < sequence.AXLE_SET.size() && axle < axle_list.size(); ++axle) {
    if (axle_list[axle] <= 0 || axle_list[axle] == lane) continue;
    const auto set = std::find(sequence.LANES.begin() + 1, sequence.LANES.end(), axle_list[axle]);
    sequence.AXLE_SET[axle] = static_cast<std::size_t>(set - sequence.LANES.begin());
  }
  return sequence;
}

bool T_CLASS_LANE_TABLE::ADD(std::int32_t veh_class, std::int32_t lane, std::int32_t class_def_no) {
  if (entries_.size() >= static_cast<std::size_t>(std::max(slots_, 0))) return false;
  entries_.push_back({key(veh_class, lane), class_def_no});
  return true;
}

std::int32_t T_CLASS_LANE_TABLE::FIND(std::int32_t veh_class, std::int32_t lane) const {
  const auto slot =
      std::find_if(entries_.begin(), entries_.end(),
                   [wanted = key(veh_class, lane)](const T_SLOT& entry) { return entry.KEY == wanted; });
  return slot == entries_.end() ? 0 : slot->CLASS_DEF_NO;
}

const T_CLASS_DEFINITION* T_CLASS_DEFINITIONS::FIND_CLASS_DEF(std::int32_t class_def_no) const {
  const auto found =
      std::find_if(CLASS_DEF.begin(), CLASS_DEF.end(),
                   [class_def_no](const T_CLASS_DEFINITION& d) { return d.CLASS_DEF_NO == class_def_no; });
  return found == CLASS_DEF.end() ? nullptr : &*found;
}

const T_CLASS_DEFINITION* T_CLASS_DEFINITIONS::FIND(std::int32_t veh_class, std::int32_t lane) const {
  const std::int32_t class_def_no = CLASS_LANE_TABLE.FIND(veh_class, lane);
  return class_def_no > 0 ? FIND_CLASS_DEF(class_def_no) : nullptr;
}

}  // namespace search
