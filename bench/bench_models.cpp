#include "bench/bench_models.h"

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <utility>

#include "modelkit/example_span.h"
#include "modelkit/model.h"
#include "modelkit/model_writer.h"

namespace bench {
namespace {

constexpr std::int32_t POINTS = 1000;
constexpr std::int32_t ENTRIES = 8;
constexpr std::int32_t LOADS = 2000;

/// The folder of the benchmarks' files; removed at the end of the program.
struct T_FOLDER {
  std::filesystem::path PATH =
      std::filesystem::temp_directory_path() / ("movload-bench-" + std::to_string(::getpid()));
  T_FOLDER() { std::filesystem::create_directories(PATH); }
  ~T_FOLDER() {
    std::error_code ignored;
    std::filesystem::remove_all(PATH, ignored);
  }
  T_FOLDER(const T_FOLDER&) = delete;
  T_FOLDER& operator=(const T_FOLDER&) = delete;
};

modelkit::T_LANE deck_lane(std::int32_t lane) {
  modelkit::T_LANE result;
  result.entries_per_point = ENTRIES;
  for (std::int32_t k = 0; k < POINTS; ++k) {
    modelkit::T_INFLUENCE_POINT point;
    point.x = 0.2 * k;
    for (std::int32_t e = 0; e < ENTRIES; ++e) {
      const std::int32_t load = (k * 2 + 37 * lane + e) % (LOADS - 1) + 1;
      const double share = 0.05 + 0.1 * e;
      point.entries.push_back({{load, 1.0 - share}, {load + 1, share}});
    }
    result.points.push_back(std::move(point));
  }
  return result;
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

}  // namespace

const std::string& DECK_FILES(std::int32_t lanes, std::int32_t combinations) {
  static const T_FOLDER folder;
  static std::map<std::pair<std::int32_t, std::int32_t>, std::string> written;
  std::string& base_name = written[{lanes, combinations}];
  if (base_name.empty()) {
    base_name =
        (folder.PATH / ("deck-" + std::to_string(lanes) + "-" + std::to_string(combinations))).string();
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

}  // namespace bench
