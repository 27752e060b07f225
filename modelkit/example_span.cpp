#include "modelkit/example_span.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

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
  T_LANE lane;
  lane.direction = form.direction;
  const double deck_end = form.overrun + stations.back();
  const int metres = static_cast<int>(std::floor(form.overrun - form.abutment_gap));
  if (form.overrun > 0.0) {
    for (int i = 0; i <= metres; ++i) lane.points.push_back(off_the_deck(i));
    if (form.overrun - form.abutment_gap > metres)
      lane.points.push_back(off_the_deck(form.overrun - form.abutment_gap));
  }
  std::int32_t load = 0;
  for (const double station : stations) {
    const T_TRANSVERSE_ENTRY under_the_point{.a = {.load = ++load, .weight = 1.0}};
    lane.points.push_back({.x = form.overrun + station, .impact = 0.0, .entries = {under_the_point}});
  }
  if (form.overrun > 0.0) {
    if (form.overrun - form.abutment_gap > metres)
      lane.points.push_back(off_the_deck(deck_end + form.abutment_gap));
    for (int i = metres; i >= 0; --i) lane.points.push_back(off_the_deck(deck_end + form.overrun - i));
  }
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

/// Moment at x of a simply supported span under a unit load at a.
double simple_moment(double span, double x, double a) {
  return std::min(x, a) * (span - std::max(x, a)) / span;
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
  return one_lane_model(stations, lane, [span](double a) {
    return std::vector<double>{simple_moment(span, 0.5 * span, a), 1.0 - a / span};
  });
}

T_MODEL TWO_SPAN_MODEL(double first_span, double second_span, int points, const T_SPAN_LANE& lane) {
  std::vector<double> stations;
  append_stations(stations, 0.0, first_span, points);
  append_stations(stations, first_span, second_span, points);
  return one_lane_model(stations, lane, [first_span, second_span](double a) {
    // The loaded span, and the load's distances from its outer and its inner support. Three moments about the
    // inner support give its moment.
    const bool in_first = a <= first_span;
    const double span = in_first ? first_span : second_span;
    const double outer = in_first ? a : first_span + second_span - a;
    const double inner = span - outer;
    const double total = first_span + second_span;
    const double support_moment = -outer * (span * span - outer * outer) / (2.0 * span * total);

    const double loaded_middle = simple_moment(span, 0.5 * span, outer) + 0.5 * support_moment;
    const double other_middle = 0.5 * support_moment;
    const double loaded_reaction = inner / span + support_moment / span;
    const double other_reaction = support_moment / (total - span);
    const double first_reaction = in_first ? loaded_reaction : other_reaction;
    const double last_reaction = in_first ? other_reaction : loaded_reaction;
    return std::vector<double>{
        support_moment, in_first ? loaded_middle : other_middle, in_first ? other_middle : loaded_middle,
        first_reaction, 1.0 - first_reaction - last_reaction,    last_reaction};
  });
}

}  // namespace modelkit
