// The governing loading of one side, from the library's records to plain words and numbers, lane by lane.
//
// A loaded range is named by its number among the ranges that the search cut. The list of distances counts
// its ranges by points, and joins two that meet in a single point at 0 where the search parts them. On a lane
// with such a point the numbers run apart, and a distance can belong to a neighbouring range.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "search/lane_ordinates.h"
#include "tools/host_run.h"

namespace tools {

enum class CARRIES : std::uint8_t { NOTHING, HA, HB, STRADDLING_HB };
/// "nothing", "HA", "HB" or "straddling HB".
[[nodiscard]] std::string_view CARRIES_TEXT(CARRIES carries);

enum class PASS : std::uint8_t { NONE = 0, FORWARD = 1, REVERSE = 2 };

struct T_LOADED_RANGE {
  std::int32_t number = 0;
  bool has_distance = false;  // false: the list of distances has no such range
  double start = 0.0;
  double end = 0.0;
};

/// A point of the lane: its number from 1 and its distance along the lane.
struct T_PLACE {
  std::int32_t point = 0;
  std::optional<double> distance;
};

struct T_HA_UDL {
  double intensity = 0.0;              // kN/m
  std::vector<T_LOADED_RANGE> ranges;  // in the order in which the search took them up
  double loaded_length = 0.0;          // of the ranges with a distance
};

struct T_HB {
  std::int32_t type = 0;  // 1 to 5
  T_PLACE place;
};

/// What one record says of a lane, or of one plane of a straddle lane.
struct T_LOADING {
  double factor = 0.0;
  std::int32_t portion = 0;  // HA_UDL_PORTION as it comes
  std::optional<T_HA_UDL> udl;
  std::optional<T_HB> hb;
};

struct T_LANE_SIDE {
  std::int32_t lane = 0;
  std::array<std::int32_t, 2> parents{};  // of a straddle lane; zeros of any other
  CARRIES carries = CARRIES::NOTHING;
  T_LOADING loading;
  std::optional<T_PLACE> kel;
  std::vector<T_LOADING> planes;  // two where a straddling HB is recorded by plane, else none
  PASS pass = PASS::NONE;
  std::int32_t combination_type = 0;  // 0 to 4
  std::vector<std::int32_t> record;   // the ten values as they came
};

struct T_SIDE_LOADING {
  std::int32_t vehicle_class = 0;  // 0: no combination governs this side
  std::vector<T_LANE_SIDE> lanes;
};

/// `lanes` are the model's: positions of their points, and which of them are straddle lanes.
[[nodiscard]] T_SIDE_LOADING GOVERNING_LOADING(const T_HOST_SIDE_ARRAYS& side,
                                               const std::vector<search::T_LANE>& lanes);

}  // namespace tools
