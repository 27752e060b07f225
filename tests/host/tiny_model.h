// Models of a few records, for damage of their files and for answers that can be told at sight.
#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "modelkit/example_span.h"
#include "modelkit/model.h"

namespace host {

inline constexpr int TINY_LANES = 3;

/// Responses of so many values to the six unit loads of the tiny model.
inline std::vector<modelkit::T_RESPONSE> TINY_RESPONSES(std::initializer_list<std::int32_t> ids,
                                                        std::size_t values = 12) {
  std::vector<modelkit::T_RESPONSE> list;
  for (const std::int32_t id : ids) {
    list.push_back({.id = id, .values = std::vector(values, std::vector<float>(6))});
    for (std::size_t value = 0; value < values; ++value)
      for (std::size_t load = 0; load < 6; ++load)
        list.back().values[value][load] =
            std::sin(static_cast<float>(load + 2 * value) + static_cast<float>(id));
  }
  return list;
}

/// Two ordinary lanes of three points and a straddle lane of three planes, with every block that a file can
/// have. Records of LNIF: lane 1 head 1, spread row 2, points 3 to 5, extra 6; lane 2 head 7, points 8 to 10;
/// lane 3 head 11, parents 12, points 13 to 15.
inline modelkit::T_MODEL TINY_MODEL() {
  modelkit::T_MODEL model{.unit_loads = 6, .lanes = std::vector<modelkit::T_LANE>(TINY_LANES)};
  for (std::int32_t point = 1; point <= 3; ++point)
    for (std::int32_t lane = 0; lane < TINY_LANES; ++lane)
      model.lanes[static_cast<std::size_t>(lane)].points.push_back(
          {.x = 9.0 * point, .entries = {{.a = {.load = point + lane, .weight = 1.0}}}});
  model.lanes[0].spread_rows = {{{.load = 4, .weight = 0.5}, {.load = 5, .weight = 0.5}}};
  model.lanes[0].points[1].entries[0].b = {.load = -1, .weight = 1.0};
  model.lanes[0].extra_records = 1;
  model.lanes[2].is_straddle = true;
  model.lanes[2].left_parent = 1;
  model.lanes[2].right_parent = 2;
  model.lanes[2].entries_per_point = 3;
  model.vehicle_groups = {{.group = 1, .vehicles = {modelkit::HA_1978_VEHICLE()}}};
  model.moving_load_cases = {{.combinations = {{{1, 1.0}, {1, 0.5}, {0, 1.0}}}},
                             {.combinations = {{{0, 0.0}, {2, 1.0}, {4, 1.0}}}}};
  model.class_lanes = true;
  model.class_definitions = {{.number = 7, .lane = 1, .links = {{{{1, 0.7}}}, {{{2, 0.7}}}, {{{3, 0.7}}}}}};
  model.axle_lists = {{.vehicle_class = 1, .lane = 3, .lanes = {1, 0, 2, 3}}};
  model.disp = TINY_RESPONSES({2});
  model.reac = TINY_RESPONSES({12, 5});
  model.lrac = TINY_RESPONSES({3});
  model.ldisp = TINY_RESPONSES({8, 4});
  model.simb = model.elnk = model.nlnk = TINY_RESPONSES({1});
  return model;
}

/// One lane over two unit loads under a knife edge of 1: both values are an ordinate.
inline modelkit::T_MODEL TWO_LOADS_MODEL() {
  modelkit::T_MODEL model{.unit_loads = 2};
  model.lanes = {
      {.points = {{.x = 0.0, .entries = {{.a = {1, 1.0}}}}, {.x = 9.0, .entries = {{.a = {2, 1.0}}}}}}};
  model.vehicle_groups = {{.vehicles = {{.loads = {1.0}}}}};
  model.moving_load_cases = {{.combinations = {{{1, 1.0}}}}};
  return model;
}

}  // namespace host
