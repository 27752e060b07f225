#include "tools/governing_loading.h"

#include <algorithm>
#include <span>

#include "movload.h"
#include "tools/text_layout.h"

namespace tools {
namespace {

using T_RECORD_VIEW = std::span<const std::int32_t>;
using T_NUMBERS = std::span<const std::int32_t>;

constexpr double ONE_THIRD = 0.3333;  // as the search takes it

/// The part of an array that belongs to one lane, counted from 0.
template <class T>
std::span<const T> of_lane(const std::vector<T>& values, std::size_t lane, std::size_t per_lane) {
  return std::span(values).subspan(lane * per_lane, per_lane);
}

double factor_of(T_RECORD_VIEW record) {
  constexpr double FACTOR_UNIT = 1.0e7;
  return record[MOVLOAD_FACTOR] / FACTOR_UNIT;
}

T_PLACE place_of(std::int32_t point, const search::T_LANE& lane) {
  T_PLACE place{point, std::nullopt};
  const auto at = static_cast<std::size_t>(point);
  if (point >= 1 && at <= lane.POINT_X.size()) place.distance = lane.POINT_X[at - 1];
  return place;
}

// ------------------------------------------------------------------------------------------ the HA UDL

std::optional<T_HA_UDL> udl_of(T_RECORD_VIEW record, T_NUMBERS numbers) {
  constexpr double INTENSITY_UNIT = 1000.0;
  if (record[MOVLOAD_W_HA_UDL] == 0) return std::nullopt;
  T_HA_UDL udl;
  udl.intensity = record[MOVLOAD_W_HA_UDL] / INTENSITY_UNIT;
  const auto in_use = static_cast<std::size_t>(std::max(record[MOVLOAD_NO_LOADED_RANGE], 0));
  for (const std::int32_t number : numbers.first(std::min(in_use, numbers.size()))) {
    if (number != 0) udl.range_numbers.push_back(number);  // 0 is left where ranges were joined across an HB
  }
  return udl;
}

// ------------------------------------------------------------------------------------------ the HB

/// The point at which an HB's clear stretch begins. The search counts the points that are left when repeated
/// ones are dropped; the library brings positions of ordinary lanes to the numbering of all points, where no
/// more than two lanes have an HB.
T_PLACE hb_place(std::int32_t position, std::int32_t combination_type, const search::T_LANE& lane,
                 const kernel::T_POINT_RULES& rules) {
  const bool may_drop = !rules.SECTION_ITEM && !rules.CLASS_LANES;
  const bool is_expanded = may_drop && !rules.KEEP_POINTS && rules.POINTS_PER_SEGMENT > 1 &&
                           !lane.IS_STRADDLE && combination_type >= 2 && combination_type <= 4;
  const std::int32_t counted = is_expanded ? position - (position - 1) / rules.POINTS_PER_SEGMENT : position;
  const std::vector<std::int32_t>& left = lane.KEPT.SOURCE;
  const bool is_dropped = may_drop && !lane.LANE_KEEP_POINTS && counted >= 1 && counted <= lane.KEPT.COUNT;
  const T_PLACE place = place_of(is_dropped ? left[static_cast<std::size_t>(counted - 1)] : counted, lane);
  // Of a repeated point the library may name the other one.
  const T_PLACE as_named = place_of(position, lane);
  return as_named.distance == place.distance ? as_named : place;
}

/// Type and place of the HB of a record; none where it has none.
std::optional<T_HB> hb_of(T_RECORD_VIEW record, const T_LANE_SIDE& side, const search::T_LANE& lane,
                          const T_RECORD_TABLES& tables) {
  if (record[MOVLOAD_TYPE_OF_HB] == 0) return std::nullopt;
  T_HB hb;
  hb.type = record[MOVLOAD_TYPE_OF_HB];
  hb.pass = side.pass;
  hb.place = hb_place(record[MOVLOAD_POSITION_OF_HB], side.combination_type, lane, tables.point_rules);
  if (!tables.hb_vehicle || !hb.place.distance) return hb;

  const search::T_VEHICLE_PARAMETERS& vehicle = *tables.hb_vehicle;
  const double bogie = SHORT_DECIMAL(vehicle.HB_S);
  const double load = SHORT_DECIMAL(vehicle.HB_LOAD);
  hb.inner_spacing = SHORT_DECIMAL(vehicle.HB_B) + (hb.type - 1) * SHORT_DECIMAL(vehicle.HB_STEP);
  const double clear = static_cast<double>(search::HB_CLEAR);
  const double last_to_first = 2.0 * bogie + hb.inner_spacing;
  const double way = hb.pass == PASS::REVERSE ? -1.0 : 1.0;
  const double begin = *hb.place.distance;
  const std::array<double, search::HB_AXLES> behind_first{0.0, bogie, bogie + hb.inner_spacing,
                                                          last_to_first};
  for (std::size_t axle = 0; axle < hb.axles.size(); ++axle)
    hb.axles[axle] = {begin + way * (clear + last_to_first - behind_first[axle]), load};
  const double end = begin + way * (last_to_first + 2.0 * clear);
  hb.clear_start = std::min(begin, end);
  hb.clear_end = std::max(begin, end);
  return hb;
}

// ------------------------------------------------------------------------------------------ the lanes

T_LANE_SIDE read_lane(const T_HOST_SIDE_ARRAYS& arrays, const T_RECORD_TABLES& tables, std::size_t at) {
  const search::T_LANE& lane = tables.lanes[at];
  const auto record = of_lane(arrays.records, at, MOVLOAD_RECORD_FIELDS);
  T_LANE_SIDE side;
  side.lane = static_cast<std::int32_t>(at) + 1;
  side.record.assign(record.begin(), record.end());
  const std::int32_t type = record[MOVLOAD_COMB_TYPE];
  side.combination_type = type % 100;
  if (type / 100 == 1) side.pass = PASS::FORWARD;
  if (type / 100 == 2) side.pass = PASS::REVERSE;
  side.loading.factor = factor_of(record);
  side.loading.hb = hb_of(record, side, lane, tables);
  if (lane.IS_STRADDLE) return side;

  side.loading.udl = udl_of(record, of_lane(arrays.ranges, at, MOVLOAD_RANGE_NUMBERS));
  if (record[MOVLOAD_POS_OF_HA_KEL] != 0) side.kel = place_of(record[MOVLOAD_POS_OF_HA_KEL], lane);
  const bool is_loaded = side.loading.factor != 0.0 || side.loading.udl || side.loading.hb || side.kel;
  // An HA lane has a forward pass in its record whatever it adds; an HB that adds nothing stands nowhere and
  // has none.
  if (is_loaded) side.carries = side.loading.hb || side.pass == PASS::NONE ? CARRIES::HB : CARRIES::HA;
  return side;
}

/// A straddle lane, and through it its parents. Where each parent has a portion of its own, the vehicle
/// stands in the records of the planes; else in the lane's own, and the parents' records are empty.
class STRADDLE_READER {
 public:
  STRADDLE_READER(const T_HOST_SIDE_ARRAYS& arrays, const T_RECORD_TABLES& tables, std::size_t at,
                  std::vector<T_LANE_SIDE>& sides)
      : arrays_(arrays), tables_(tables), at_(at), lane_(tables.lanes[at]), side_(sides[at]), sides_(sides) {}

  void READ() {
    side_.parents = {lane_.STRADDLE_LEFT, lane_.STRADDLE_RIGHT};
    for (std::size_t parent = 0; parent < 2; ++parent) {
      const T_RECORD_VIEW record = plane_record(parent);
      side_.plane_records[parent].assign(record.begin(), record.end());
    }
    const bool by_parent = plane_record(0)[MOVLOAD_FACTOR] != 0;
    if (!by_parent && side_.loading.factor == 0.0) return;
    side_.carries = CARRIES::STRADDLING_HB;
    if (by_parent) {
      side_.loading.factor = factor_of(plane_record(0));
      side_.loading.hb = hb_of(plane_record(0), side_, lane_, tables_);
    }
    if (!side_.loading.hb) return;
    side_.loading.hb->plane = by_parent ? plane_by_parent() : plane_of_both();
    for (std::size_t parent = 0; parent < 2; ++parent) {
      const bool is_full = !by_parent || plane_record(parent)[MOVLOAD_HA_UDL_PORTION] % 10 == 1;
      side_.parent_portions[parent] = is_full ? 1.0 : ONE_THIRD;
      tell_parent(parent, by_parent);
    }
  }

 private:
  [[nodiscard]] T_RECORD_VIEW plane_record(std::size_t parent) const {
    return of_lane(arrays_.plane_records[parent], at_, MOVLOAD_RECORD_FIELDS);
  }
  [[nodiscard]] T_NUMBERS plane_numbers(std::size_t parent) const {
    return of_lane(arrays_.plane_ranges[parent], at_, MOVLOAD_RANGE_NUMBERS);
  }

  /// Field 7 is (lane * 1000 + plane) * 10 + portion digit; 0 in front of the digit where no plane has an
  /// effect.
  [[nodiscard]] std::int32_t plane_by_parent() const {
    constexpr std::int32_t CODES_PER_LANE = 1000;
    return plane_record(0)[MOVLOAD_HA_UDL_PORTION] / 10 % CODES_PER_LANE;
  }

  /// Field 7 has kept only the last digit of the plane, in front of a 1.
  [[nodiscard]] std::int32_t plane_of_both() const {
    const std::int32_t code = side_.record[MOVLOAD_HA_UDL_PORTION];
    constexpr std::int32_t PLANES_TOLD_APART = 9;
    return lane_.N_PLANE() <= PLANES_TOLD_APART ? code / 10 % 10 : 0;
  }

  void tell_parent(std::size_t parent, bool by_parent) {
    const auto number = static_cast<std::size_t>(side_.parents[parent]);
    if (number < 1 || number > sides_.size()) return;
    T_LANE_SIDE& told = sides_[number - 1];
    const bool is_folded =
        by_parent && plane_record(0)[MOVLOAD_W_HA_UDL] >= 1 && plane_record(1)[MOVLOAD_W_HA_UDL] >= 1;
    if (!is_folded && told.carries != CARRIES::NOTHING) return;  // loaded for itself besides
    told.carries = CARRIES::UDL_BESIDE_HB;
    told.straddle_lane = side_.lane;
    told.pass = side_.pass;
    told.loading.factor = side_.loading.factor;
    told.loading.hb.reset();  // it stands in the straddle lane
    if (!by_parent) {
      told.loading.udl = udl_of(side_.record, of_lane(arrays_.ranges, at_, MOVLOAD_RANGE_NUMBERS));
    } else if (!is_folded) {
      told.loading.udl = udl_of(plane_record(parent), plane_numbers(parent));
    }
    if (told.loading.udl) told.loading.udl->portion = side_.parent_portions[parent];
  }

  const T_HOST_SIDE_ARRAYS& arrays_;
  const T_RECORD_TABLES& tables_;
  std::size_t at_;
  const search::T_LANE& lane_;
  T_LANE_SIDE& side_;
  std::vector<T_LANE_SIDE>& sides_;
};

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
    case CARRIES::UDL_BESIDE_HB:
      return "UDL beside straddling HB";
  }
  return "nothing";
}

T_SIDE_LOADING GOVERNING_LOADING(const T_HOST_SIDE_ARRAYS& side, const T_RECORD_TABLES& tables) {
  T_SIDE_LOADING loading;
  const std::size_t count = std::min(side.records.size() / MOVLOAD_RECORD_FIELDS, tables.lanes.size());
  if (count > 0) loading.vehicle_class = side.records[MOVLOAD_VEHI_NO];
  for (std::size_t at = 0; at < count; ++at) loading.lanes.push_back(read_lane(side, tables, at));
  for (std::size_t at = 0; at < count; ++at) {
    if (tables.lanes[at].IS_STRADDLE) STRADDLE_READER(side, tables, at, loading.lanes).READ();
  }
  return loading;
}

}  // namespace tools
