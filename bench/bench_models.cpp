#include "bench/bench_models.h"

#include <cmath>
#include <map>
#include <utility>

#include "bench/bench_folder.h"
#include "bench/girder_lines.h"
#include "modelkit/example_span.h"
#include "modelkit/model.h"
#include "modelkit/model_writer.h"

namespace bench {
namespace {

constexpr std::int32_t POINTS = 1000;
constexpr std::int32_t ENTRIES = 8;
constexpr std::int32_t LOADS = 2000;

/// A lane whose entry e at point k, both from 0, is shared by a unit load and the next one.
/// `shared_load(k, e)` gives the load, and the share of the next.
template <class SHARED_LOAD>
modelkit::T_LANE lane_of(SHARED_LOAD shared_load) {
  modelkit::T_LANE lane;
  lane.entries_per_point = ENTRIES;
  for (std::int32_t k = 0; k < POINTS; ++k) {
    modelkit::T_INFLUENCE_POINT point;
    point.x = 0.2 * k;
    for (std::int32_t e = 0; e < ENTRIES; ++e) {
      const std::pair<std::int32_t, double> shared = shared_load(k, e);
      point.entries.push_back({{shared.first, 1.0 - shared.second}, {shared.first + 1, shared.second}});
    }
    lane.points.push_back(std::move(point));
  }
  return lane;
}

/// The loads of an entry lie anywhere.
modelkit::T_LANE deck_lane(std::int32_t lane) {
  return lane_of([lane](std::int32_t k, std::int32_t e) {
    return std::pair((k * 2 + 37 * lane + e) % (LOADS - 1) + 1, 0.05 + 0.1 * e);
  });
}

modelkit::T_MODEL deck(std::int32_t lanes, std::int32_t combinations) {
  modelkit::T_MODEL model;
  model.unit_loads = LOADS;
  for (std::int32_t lane = 0; lane < lanes; ++lane) model.lanes.push_back(deck_lane(lane));
  model.vehicle_groups = {{1, {modelkit::HA_1978_VEHICLE()}}};
  modelkit::T_MOVING_LOAD_CASE mv_case;
  for (std::int32_t c = 0; c < combinations; ++c) {
    modelkit::T_COMBINATION combination;
    for (std::int32_t lane = 0; lane < lanes; ++lane) {
      combination.push_back({1, 0.3 + 0.001 * ((c * 7 + lane * 13) % 700)});
    }
    mv_case.combinations.push_back(std::move(combination));
  }
  model.moving_load_cases = {std::move(mv_case)};
  // Waves of the length of a span, as the displacements of a continuous deck have them.
  for (std::int32_t node = 1; node <= 20; ++node) {
    modelkit::T_RESPONSE response;
    response.id = node;
    response.values.assign(6, std::vector<float>(LOADS));
    for (std::int32_t k = 0; k < LOADS; ++k) {
      response.values[2][static_cast<std::size_t>(k)] = static_cast<float>(std::sin(0.01 * k + 0.1 * node));
    }
    model.disp.push_back(std::move(response));
  }
  return model;
}

/// The lanes run over the three spans; each point leans on the unit loads next to it.
modelkit::T_LANE bridge_lane(std::int32_t lane) {
  return lane_of(
      [lane](std::int32_t k, std::int32_t e) { return std::pair(2 * k + 1, 0.1 * ((lane + e) % 10)); });
}

modelkit::T_MODEL bridge() {
  constexpr std::int32_t CLASSES = 3;
  constexpr std::int32_t COMBINATIONS = 2000;
  constexpr std::int32_t BEAMS = 20;
  constexpr std::size_t BEAM_VALUES = 68;
  modelkit::T_MODEL model;
  model.unit_loads = LOADS;
  for (std::int32_t lane = 0; lane < BRIDGE_LANES; ++lane) model.lanes.push_back(bridge_lane(lane));
  for (std::int32_t c = 1; c <= CLASSES; ++c) {
    modelkit::T_VEHICLE vehicle = modelkit::HA_1978_VEHICLE(25.0 + 5.0 * c);
    vehicle.vehicle_class = c;
    model.vehicle_groups.push_back({c, {vehicle}});
  }
  modelkit::T_MOVING_LOAD_CASE mv_case;
  for (std::int32_t c = 0; c < COMBINATIONS; ++c) {
    modelkit::T_COMBINATION combination;
    for (std::int32_t lane = 0; lane < BRIDGE_LANES; ++lane) {
      const bool has_hb = lane == c % BRIDGE_LANES;
      combination.push_back(
          {4 * (c / BRIDGE_LANES % CLASSES) + (has_hb ? 2 : 1), lane % 3 == c % 3 ? 1.0 : 1.0 / 3});
    }
    mv_case.combinations.push_back(std::move(combination));
  }
  model.moving_load_cases = {std::move(mv_case)};

  const T_GIRDER moment(LOADS, 3, EFFECT::FIELD_MOMENT);
  const T_GIRDER shear(LOADS, 3, EFFECT::SHEAR);
  for (std::int32_t beam = 1; beam <= BEAMS; ++beam) {
    modelkit::T_RESPONSE response;
    response.id = beam;
    // Both values of a component that may jump are the same line here.
    for (std::size_t value = 0; value < BEAM_VALUES; ++value) {
      response.values.push_back((value / 2 % 2 == 0 ? moment : shear).Y);
    }
    model.beams.push_back(std::move(response));
  }
  return model;
}

}  // namespace

const std::string& DECK_FILES(std::int32_t lanes, std::int32_t combinations) {
  static std::map<std::pair<std::int32_t, std::int32_t>, std::string> written;
  std::string& base_name = written[{lanes, combinations}];
  if (base_name.empty()) {
    base_name = FILE_IN_FOLDER("deck-" + std::to_string(lanes) + "-" + std::to_string(combinations));
    modelkit::WRITE_MODEL(deck(lanes, combinations), base_name);
  }
  return base_name;
}

kernel::T_REQUEST DECK_REQUEST(const std::string& base_name) {
  kernel::T_REQUEST request;
  request.FILE_NAME = base_name + ".ZA3";
  request.RESULT_KIND = kernel::RK_DISP;
  request.RESULT_ID = 10;
  request.RESULT_ITEM = 3;
  request.MV_CASE = 1;
  return request;
}

const std::string& BRIDGE_FILES() {
  static std::string base_name;
  if (base_name.empty()) {
    base_name = FILE_IN_FOLDER("bridge");
    modelkit::WRITE_MODEL(bridge(), base_name);
  }
  return base_name;
}

kernel::T_REQUEST BRIDGE_REQUEST() {
  constexpr std::int32_t SHEAR = 7;  // values 7 and 8 of a record

  kernel::T_REQUEST request;
  request.FILE_NAME = BRIDGE_FILES() + ".ZA3";
  request.RESULT_KIND = kernel::RK_BEAM;
  request.RESULT_ID = 10;
  request.RESULT_ITEM = SHEAR;
  request.MV_CASE = 1;
  return request;
}

}  // namespace bench
