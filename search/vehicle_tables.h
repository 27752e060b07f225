// What the search is told about vehicles and lanes beside the ordinates: a vehicle's numbers, the lanes on
// which the axles of a class run (axle lists), and the lane definitions that belong to one class only.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "search/lane_ordinates.h"
#include "search/ranges.h"

namespace search {

inline constexpr std::int32_t MAX_VEHICLES = 100;    // vehicle columns of a model
inline constexpr std::int32_t BS_5400_VEHICLE = 20;  // the one VEHICLE_CODE that is searched
inline constexpr std::int32_t VEHICLE_LIST = 100;    // entries of VEHICLE_LOADS and VEHICLE_GEOM in the files
/// Kinds of loading of a lane: HA, HB, and a straddling HB in two forms.
inline constexpr std::int32_t SUB_CASES = 4;

/// One column of the vehicle table. A column without a vehicle is all zeros.
struct T_VEHICLE {
  std::int32_t VEH_GROUP = 0;
  std::int32_t VEH_CLASS = 0;
  std::int32_t VEHICLE_CODE = 0;
  std::array<real, 4> HA_CURVE{};  // HA_W0, HA_K, HA_WMIN, HA_P
  std::int32_t N_VEHICLE_LOADS = 0;
  std::array<real, VEHICLE_LIST> VEHICLE_LOADS{};  // entry 2 already times entry 100
  std::int32_t N_VEHICLE_GEOM = 0;  // one more entry than this is in use; none where it is negative
  std::array<real, VEHICLE_LIST> VEHICLE_GEOM{};
};

/// A vehicle's numbers as the searches take them. Entries beyond the counts are 0.
struct T_VEHICLE_PARAMETERS {
  std::int32_t VEHICLE_CODE = 0;
  T_HA_CURVE HA_CURVE;  // with HA_L0 of the geometry
  real KEL_LOAD = 0;
  real HB_LOAD = 0;  // one axle
  real HB_S = 0;     // distance of the two axles of a bogie
  real HB_B = 0;     // distance of the inner axles of the shortest type
  real HB_STEP = 0;  // its growth from type to type
};
[[nodiscard]] T_VEHICLE_PARAMETERS VEHICLE_PARAMETERS(const T_VEHICLE& vehicle);

/// The lanes on which the axles of a class run, for a class on a lane;
/// 0 is the lane itself. EXISTS tells whether the model has axle lists at all:
/// a class and lane without a row of their own then have one of zeros.
class T_AXLE_LANES {
 public:
  void CREATE() { exists_ = true; }
  void STORE(std::int32_t veh_class, std::int32_t lane, std::vector<std::int32_t> axle_list) {
    rows_[{veh_class, lane}] = std::move(axle_list);
  }
  [[nodiscard]] bool EXISTS() const noexcept { return exists_; }

  /// The row's leading entries, without the zeros behind them; empty where none was stored.
  [[nodiscard]] const std::vector<std::int32_t>& READ(std::int32_t veh_class, std::int32_t lane) const;

 private:
  bool exists_ = false;
  std::map<std::pair<std::int32_t, std::int32_t>, std::vector<std::int32_t>> rows_;
  std::vector<std::int32_t> no_entries_;
};

/// Which lanes the ordinate sets of a class on a lane belong to: the lane itself is set 1, the other lanes
/// that its axle list names follow in lane order.
struct T_LANE_SEQUENCE {
  std::vector<std::int32_t> LANES;                  // lane of each set; one element: no other lane is named
  std::array<std::size_t, 4> AXLE_SET{0, 0, 0, 0};  // index into LANES of each axle
  [[nodiscard]] bool NAMES_OTHERS() const noexcept { return LANES.size() > 1; }
};
[[nodiscard]] T_LANE_SEQUENCE LANE_SEQUENCE(const std::vector<std::int32_t>& axle_list, std::int32_t lane);

/// From a vehicle class on a lane to its definition: a map of as many slots as there are definitions, in the
/// order in which they were added; the first that fits counts.
class T_CLASS_LANE_TABLE {
 public:
  T_CLASS_LANE_TABLE() = default;
  T_CLASS_LANE_TABLE(std::int32_t slots, std::int32_t num_lane) : slots_(slots), num_lane_(num_lane) {}

  /// False where all slots are taken: the run then fails.
  [[nodiscard]] bool ADD(std::int32_t veh_class, std::int32_t lane, std::int32_t class_def_no);
  /// The definition's number, 0 where there is none.
  [[nodiscard]] std::int32_t FIND(std::int32_t veh_class, std::int32_t lane) const;

 private:
  struct T_SLOT {
    std::int64_t KEY;
    std::int32_t CLASS_DEF_NO;
  };
  [[nodiscard]] std::int64_t key(std::int32_t veh_class, std::int32_t lane) const noexcept {
    return (std::int64_t{veh_class} - 1) * num_lane_ + lane;
  }
  std::int32_t slots_ = 0;
  std::int32_t num_lane_ = 0;
  std::vector<T_SLOT> entries_;
};

/// The class definitions of a model; empty where it has none.
struct T_CLASS_DEFINITIONS {
  std::vector<T_CLASS_DEFINITION> CLASS_DEF;
  T_CLASS_LANE_TABLE CLASS_LANE_TABLE;

  /// The first definition of this number, or null.
  [[nodiscard]] const T_CLASS_DEFINITION* FIND_CLASS_DEF(std::int32_t class_def_no) const;
  /// The definition of a class on a lane, or null.
  [[nodiscard]] const T_CLASS_DEFINITION* FIND(std::int32_t veh_class, std::int32_t lane) const;
};

}  // namespace search
