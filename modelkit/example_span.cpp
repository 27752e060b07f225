#include "modelkit/example_span.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

#include "modelkit/beam_results.h"

namespace modelkit {
namespace {

constexpr std::size_t SIMB_COMPONENTS = 12;

/// Ordinates of all components under a unit load at distance a from the deck's start.
using line_of_components = std::function<std::vector<double>(double a)>;

T_INFLUENCE_POINT off_the_deck(double x) {
  return {.x = x, .impact = 0.0, .entries = {T_TRANSVERSE_ENTRY{}}};
}

/// A lane with unit load k at the k-th of the `stations`, which are counted from the deck's start.
T_LANE lane_over(const std::vector<double>& stations, const T_SPAN_LANE& form) {
  // Points off the deck from either end of the lane, the last of them abutment_gap from the deck.
  std::vector<double> from_the_end;
  if (form.overrun > 0.0) {
    const double gap_start = form.overrun - form.abutment_gap;
    for (int i = 0; i * form.overrun_step < gap_start; ++i) from_the_end.push_back(i * form.overrun_step);
    from_the_end.push_back(gap_start);
  }

  T_LANE lane;
  lane.direction = form.direction;
  for (const double x : from_the_end) lane.points.push_back(off_the_deck(x));
  std::int32_t load = 0;
  for (const double station : stations) {
    const T_TRANSVERSE_ENTRY under_the_point{.a = {.load = ++load, .weight = 1.0}};
    lane.points.push_back({.x = form.overrun + station, .impact = 0.0, .entries = {under_the_point}});
  }
  const double lane_end = form.overrun + stations.back() + form.overrun;
  for (std::size_t i = from_the_end.size(); i > 0; --i)
    lane.points.push_back(off_the_deck(lane_end - from_the_end[i - 1]));
  return lane;
}

T_MODEL one_lane_model(const std::vector<double>& stations, const T_SPAN_LANE& form,
                       const line_of_components& ordinates) {
  T_MODEL model;
  model.unit_loads = static_cast<std::int32_t>(stations.size());
  model.lanes = {lane_over(stations, form)};
  model.vehicle_groups = {{.group = 1, .vehicles = {HA_1978_VEHICLE()}}};
  model.moving_load_cases = {{.combinations = {{T_LANE_LOAD{.code = 1, .scale = 1.0}}}}};

  T_RESPONSE response{.id = 1};
  response.values.assign(SIMB_COMPONENTS, std::vector<float>(stations.size(), 0.0F));
  for (std::size_t load = 0; load < stations.size(); ++load) {
    const std::vector<double> column = ordinates(stations[load]);
    for (std::size_t item = 0; item < column.size(); ++item)
      response.values[item][load] = static_cast<float>(column[item]);
  }
  model.simb = {std::move(response)};
  return model;
}

/// The lane with one transverse entry for each share, in place of its one.
T_LANE with_shares(T_LANE lane, const std::vector<double>& shares) {
  lane.entries_per_point = static_cast<std::int32_t>(shares.size());
  for (T_INFLUENCE_POINT& point : lane.points) {
    const T_LOAD_SHARE whole = point.entries.front().a;
    point.entries.clear();
    for (const double share : shares)
      point.entries.push_back({.a = {.load = whole.load, .weight = share * whole.weight}});
  }
  return lane;
}

/// Moment at x of a simply supported span under a unit load at a.
double simple_moment(double span, double x, double a) {
  return std::min(x, a) * (span - std::max(x, a)) / span;
}

/// Section forces at x of a simply supported span under a unit load at a.
T_BEAM_SECTION simple_forces(double span, double x, double a) {
  const double moment = simple_moment(span, x, a);
  const auto shear = [&](bool is_before) { return is_before ? -a / span : 1.0 - a / span; };
  return {.load_before = {.shear = shear(a <= x), .moment = moment},
          .load_behind = {.shear = shear(a < x), .moment = moment}};
}

void append_stations(std::vector<double>& stations, double start, double span, int points) {
  for (int i = stations.empty() ? 0 : 1; i < points; ++i) stations.push_back(start + span * i / (points - 1));
}

}  // namespace

T_VEHICLE HA_1978_VEHICLE(double hb_units) {
  constexpr std::size_t HB_UNITS_ENTRY = 100;
  T_VEHICLE vehicle;
  vehicle.name = "BS 5400 1978 HA HB";
  vehicle.ha_w0 = 30.0;
  vehicle.ha_k = 151.0;
  vehicle.ha_wmin = 9.0;
  vehicle.ha_p = 0.475;
  vehicle.loads.assign(HB_UNITS_ENTRY, 0.0);
  vehicle.loads[0] = 120.0;
  vehicle.loads[1] = 10.0;
  vehicle.loads[HB_UNITS_ENTRY - 1] = hb_units;
  vehicle.geometry = {30.0, 1.8, 6.0, 5.0};
  return vehicle;
}

T_MODEL SIMPLE_SPAN_MODEL(double span, int points, const T_SPAN_LANE& lane) {
  std::vector<double> stations;
  append_stations(stations, 0.0, span, points);
  T_MODEL model = one_lane_model(stations, lane, [span](double a) {
    return std::vector<double>{simple_moment(span, 0.5 * span, a), 1.0 - a / span};
  });
  const std::vector<LOAD_SIDE> sides(stations.size(), LOAD_SIDE::BOTH);
  model.elements_per_file = 1;
  model.beams = {BEAM_RESPONSE(SPAN_BEAM, sides, {}, [&](int load, double part) {
    return simple_forces(span, part * span, stations[static_cast<std::size_t>(load) - 1]);
  })};
  return model;
}

T_MODEL TWO_SPAN_MODEL(double first_span, double second_span, int points, const T_SPAN_LANE& lane,
                       const T_TWO_SECTIONS& sections) {
  std::vector<double> stations;
  append_stations(stations, 0.0, first_span, points);
  append_stations(stations, first_span, second_span, points);
  return one_lane_model(stations, lane, [=](double a) {
    // The loaded span, and the load's distances from its outer and its inner support. Three moments about the
    // inner support give its moment.
    const bool in_first = a <= first_span;
    const double span = in_first ? first_span : second_span;
    const double outer = in_first ? a : first_span + second_span - a;
    const double inner = span - outer;
    const double total = first_span + second_span;
    const double support_moment = -outer * (span * span - outer * outer) / (2.0 * span * total);

    // Each span alone, and its end moment on top of that.
    const double first_x = sections.first * first_span;
    const double second_x = sections.second * second_span;
    const double first_moment = in_first ? simple_moment(first_span, first_x, outer) : 0.0;
    const double second_moment = in_first ? 0.0 : simple_moment(second_span, second_x, inner);
    const double first_reaction = (in_first ? inner / span : 0.0) + support_moment / first_span;
    const double last_reaction = (in_first ? 0.0 : inner / span) + support_moment / second_span;
    return std::vector<double>{support_moment,
                               first_moment + sections.first * support_moment,
                               second_moment + (1.0 - sections.second) * support_moment,
                               first_reaction,
                               1.0 - first_reaction - last_reaction,
                               last_reaction,
                               first_reaction - (in_first ? 1.0 : 0.0),
                               (in_first ? 0.0 : 1.0) - last_reaction};
  });
}

void STRADDLE_TWO_LANES(T_MODEL& model, const std::vector<double>& shares) {
  const T_LANE one = model.lanes.front();
  T_LANE straddle = with_shares(one, shares);
  straddle.is_straddle = true;
  straddle.left_parent = 1;
  straddle.right_parent = 2;
  model.lanes = {with_shares(one, {shares[1]}), with_shares(one, {shares[2]}), straddle};
}

}  // namespace modelkit
