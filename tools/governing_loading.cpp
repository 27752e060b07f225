#include "tools/governing_loading.h"

#include <algorithm>
#include <span>

#include "movload.h"

namespace tools {
namespace {

using T_RECORD_VIEW = std::span<const std::int32_t>;

/// The part of an array that belongs to one lane, counted from 0.
template <class T>
std::span<const T> of_lane(const std::vector<T>& values, std::size_t lane, std::size_t per_lane) {
  return std::span(values).subspan(lane * per_lane, per_lane);
}

T_PLACE place_of(std::int32_t point, const search::T_LANE& lane) {
  T_PLACE place{point, std::nullopt};
  const auto at = static_cast<std::size_t>(point);
  if (point >= 1 && at <= lane.POINT_X.size()) place.distance = lane.POINT_X[at - 1];
  return place;
}

T_LOADED_RANGE loaded_range(std::int32_t number, std::span<const float> distances) {
  T_LOADED_RANGE range;
  range.number = number;
  const std::size_t pairs = distances.size() / 2;
  if (number < 1 || static_cast<std::size_t>(number) > pairs) return range;
  const std::size_t at = 2 * static_cast<std::size_t>(number - 1);
  range.start = static_cast<double>(distances[at]);
  range.end = static_cast<double>(distances[at + 1]);
  range.has_distance = range.end > range.start;  // zeros stand behind the last range
  return range;
}

/// Fields 2 to 7, which the records of lanes and of planes have in common.
T_LOADING loading_of(T_RECORD_VIEW record, std::span<const std::int32_t> numbers,
                     std::span<const float> distances, const search::T_LANE& lane) {
  constexpr double INTENSITY_UNIT = 1000.0;
  constexpr double FACTOR_UNIT = 1.0e7;
  T_LOADING loading;
  loading.factor = record[MOVLOAD_FACTOR] / FACTOR_UNIT;
  loading.portion = record[MOVLOAD_HA_UDL_PORTION];
  if (record[MOVLOAD_W_HA_UDL] != 0) {
    T_HA_UDL& udl = loading.udl.emplace();
    udl.intensity = record[MOVLOAD_W_HA_UDL] / INTENSITY_UNIT;
    const auto in_use = static_cast<std::size_t>(record[MOVLOAD_NO_LOADED_RANGE]);
    for (const std::int32_t number : numbers.first(std::min(in_use, numbers.size()))) {
      const T_LOADED_RANGE range = loaded_range(number, distances);
      if (range.has_distance) udl.loaded_length += range.end - range.start;
      udl.ranges.push_back(range);
    }
  }
  if (record[MOVLOAD_TYPE_OF_HB] != 0)
    loading.hb = T_HB{record[MOVLOAD_TYPE_OF_HB], place_of(record[MOVLOAD_POSITION_OF_HB], lane)};
  return loading;
}

/// An HA lane has a forward pass in its record whatever it adds; an HB that adds nothing stands nowhere and
/// has none.
CARRIES carries_of(const T_LANE_SIDE& side, bool is_straddle) {
  const bool is_loaded = side.loading.factor != 0.0 || side.loading.udl || side.loading.hb || side.kel;
  if (!side.planes.empty()) return CARRIES::STRADDLING_HB;
  if (!is_loaded) return CARRIES::NOTHING;
  if (is_straddle) return CARRIES::STRADDLING_HB;
  if (side.loading.hb || side.pass == PASS::NONE) return CARRIES::HB;
  return CARRIES::HA;
}

T_LANE_SIDE lane_side(const T_HOST_SIDE_ARRAYS& side, const search::T_LANE& lane, std::size_t at) {
  const auto record = of_lane(side.records, at, MOVLOAD_RECORD_FIELDS);
  const auto distances = of_lane(side.distances, at, MOVLOAD_RANGE_DISTANCES);
  T_LANE_SIDE result;
  result.lane = static_cast<std::int32_t>(at) + 1;
  if (lane.IS_STRADDLE) result.parents = {lane.STRADDLE_LEFT, lane.STRADDLE_RIGHT};
  result.record.assign(record.begin(), record.end());
  result.loading = loading_of(record, of_lane(side.ranges, at, MOVLOAD_RANGE_NUMBERS), distances, lane);
  if (record[MOVLOAD_POS_OF_HA_KEL] != 0) result.kel = place_of(record[MOVLOAD_POS_OF_HA_KEL], lane);
  const std::int32_t type = record[MOVLOAD_COMB_TYPE];
  result.combination_type = type % 100;
  if (type / 100 == 1) result.pass = PASS::FORWARD;
  if (type / 100 == 2) result.pass = PASS::REVERSE;

  for (std::size_t plane = 0; plane < side.plane_records.size(); ++plane) {
    const auto plane_record = of_lane(side.plane_records[plane], at, MOVLOAD_RECORD_FIELDS);
    if (plane_record[MOVLOAD_FACTOR] == 0) continue;
    // A plane has no list of distances of its own: its ranges are known by number alone.
    const auto numbers = of_lane(side.plane_ranges[plane], at, MOVLOAD_RANGE_NUMBERS);
    result.planes.push_back(loading_of(plane_record, numbers, distances, lane));
  }
  result.carries = carries_of(result, lane.IS_STRADDLE);
  return result;
}

}  // namespace

std::string_view CARRIES_TEXT(CARRIES carries) {
  switch (carries) {
    case CARRIES::NOTHING:
      break;
    case CARRIES::HA:
      return "HA";
    case CARRIES::HB:
      return "HB";
    case CARRIES::STRADDLING_HB:
      return "straddling HB";
  }
  return "nothing";
}

T_SIDE_LOADING GOVERNING_LOADING(const T_HOST_SIDE_ARRAYS& side, const std::vector<search::T_LANE>& lanes) {
  T_SIDE_LOADING loading;
  const std::size_t count = side.records.size() / MOVLOAD_RECORD_FIELDS;
  if (count > 0) loading.vehicle_class = side.records[MOVLOAD_VEHI_NO];
  for (std::size_t at = 0; at < count && at < lanes.size(); ++at)
    loading.lanes.push_back(lane_side(side, lanes[at], at));
  return loading;
}

}  // namespace tools
