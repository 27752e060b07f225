// The governing loading of one side, from the library's records to plain words and numbers, lane by lane.
//
// A straddling HB has a lane of its own in the records. Here that lane holds the vehicle alone; the HA UDL
// beside it is told of the two parent lanes, on which it stands.
//
// The records number the loaded ranges, and the numbers don't always lead to the right pair in the list of
// distances (docs/records.md). Where the UDL stands is told by drawing it (tools/drawn_loading.h).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "kernel/loading_records.h"
#include "search/hb_placing.h"
#include "search/lane_ordinates.h"
#include "search/vehicle_tables.h"
#include "tools/host_run.h"

namespace tools {

enum class CARRIES : std::uint8_t { NOTHING, HA, HB, STRADDLING_HB, UDL_BESIDE_HB };
/// "nothing", "HA", "HB", "straddling HB" or, on a parent lane of the last, "UDL beside straddling HB".
[[nodiscard]] std::string_view CARRIES_TEXT(CARRIES carries);

enum class PASS : std::uint8_t { NONE = 0, FORWARD = 1, REVERSE = 2 };

struct T_STRETCH {
  double start = 0.0;
  double end = 0.0;
};

/// A point of the lane: its number from 1 and its distance along the lane.
struct T_PLACE {
  std::int32_t point = 0;
  std::optional<double> distance;
};

struct T_HA_UDL {
  double intensity = 0.0;                   // kN/m, for the loaded length
  double portion = 1.0;                     // of it that acts: 1, or 0.3333 beside a straddling HB
  std::vector<std::int32_t> range_numbers;  // of the loaded ranges, as the records name them
  std::vector<T_STRETCH> stretches;         // that they are, along the lane; empty where that isn't known
  double loaded_length = 0.0;               // of the stretches
};

struct T_AXLE {
  double distance = 0.0;  // along the lane
  double load = 0.0;      // kN
};

struct T_HB {
  std::int32_t type = 0;   // 1 to 5
  PASS pass = PASS::NONE;  // the way it drives: FORWARD along the lane, REVERSE against it
  T_PLACE place;           // where its clear stretch begins, 25 m behind the last axle
  std::int32_t plane = 0;  // of the straddle lane, where it stands across the lanes; 0 not known
  // Zeros where the place isn't known, or which of several vehicles the HB is.
  double inner_spacing = 0.0;                    // m between the inner axles
  std::array<T_AXLE, search::HB_AXLES> axles{};  // from the first, the way it drives
  double clear_start = 0.0;                      // the stretch without HA UDL, along the lane
  double clear_end = 0.0;

  [[nodiscard]] bool HAS_AXLES() const noexcept { return clear_end > clear_start; }
};

struct T_LOADING {
  double factor = 0.0;
  std::optional<T_HA_UDL> udl;
  std::optional<T_HB> hb;
};

struct T_LANE_SIDE {
  std::int32_t lane = 0;
  CARRIES carries = CARRIES::NOTHING;
  T_LOADING loading;
  std::optional<T_PLACE> kel;  // of HA alone: none stands beside an HB
  PASS pass = PASS::NONE;

  // Of a straddle lane, zeros of any other: its parent lanes, and the portion of the HA UDL on each.
  std::array<std::int32_t, 2> parents{};
  std::array<double, 2> parent_portions{};
  std::int32_t straddle_lane = 0;  // of a parent lane: the lane of the HB that stands across it

  // As they came.
  std::int32_t combination_type = 0;  // 0 to 4
  std::vector<std::int32_t> record;
  std::array<std::vector<std::int32_t>, 2> plane_records;  // of a straddle lane; empty of any other
};

struct T_SIDE_LOADING {
  std::int32_t vehicle_class = 0;  // 0: no combination governs this side
  std::vector<T_LANE_SIDE> lanes;
};

/// What the records are read with.
struct T_RECORD_TABLES {
  const std::vector<search::T_LANE>& lanes;                // the model's
  kernel::T_POINT_RULES point_rules;                       // in which numbering HB positions come
  std::optional<search::T_VEHICLE_PARAMETERS> hb_vehicle;  // none where vehicles differ in their HB
};

[[nodiscard]] T_SIDE_LOADING GOVERNING_LOADING(const T_HOST_SIDE_ARRAYS& side, const T_RECORD_TABLES& tables);

}  // namespace tools
