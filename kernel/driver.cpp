#include "kernel/driver.h"

#include <array>
#include <cstdlib>
#include <limits>
#include <utility>

#include "kernel/input_blocks.h"

namespace kernel {

void* COMBINATION_MEMORY_OF_PROCESS(std::size_t bytes) {
  return std::malloc(bytes);
}

STATUS READ_MODEL(RECORD_FILE& unit, const T_REQUEST& request, std::int32_t host_lanes, T_MODEL& model,
                  COMBINATION_MEMORY memory) {
  const std::string& file = request.FILE_NAME;
  model.FILE_NAME = file;
  T_COUNTS& counts = model.COUNTS;
  if (STATUS status = READ_COUNTS(unit, file, counts); !status.OK()) return status;
  if (STATUS status = CHECK_BOUNDS("NUM_LANE of the host", host_lanes, counts.NUM_LANE,
                                   std::numeric_limits<std::int32_t>::max());
      !status.OK()) {
    return status;
  }
  T_VEHICLES vehicles;
  if (STATUS status = READ_VEHICLES(unit, file, counts, vehicles); !status.OK()) return status;

  // These kinds of analysis alone know lane definitions of a class.
  const bool knows_class_lanes = request.ANALYSIS_CODE < 2 || request.ANALYSIS_CODE == 3;
  if (counts.CLASS_LANES == 1 && knows_class_lanes) {
    STATUS status = READ_CLASS_DEFINITIONS(unit, file, counts, vehicles, model.CLASS_DEFINITIONS);
    if (!status.OK()) return status;
  }
  if (STATUS status = READ_LANES(unit, file, counts, model.LANES); !status.OK()) return status;
  model.POINTS_PER_SEGMENT = POINTS_PER_SEGMENT(model.LANES);
  if (STATUS status = READ_AXLE_LANES(unit, file, counts, model.LANES, model.AXLE_LANES); !status.OK())
    return status;
  model.VEHICLES = std::move(vehicles.COLUMNS);
  T_CODE_BOOK book(model.VEHICLES, counts.N_VEHICLE_CLASS);
  return model.COMBINATIONS.LOAD(unit, file, counts.NUM_LANE, counts.N_COMBINATION, std::move(book), memory);
}

results::T_COMPONENT COMPONENT_OF(const T_REQUEST& request) {
  const bool is_wall = request.RESULT_KIND == RK_WALL;
  return is_wall ? SPLIT_WALL_ITEM(request.RESULT_ITEM) : results::T_COMPONENT{request.RESULT_ITEM, 0};
}

STATUS RUN_LANE_ANALYSIS(const T_MODEL& model, const T_REQUEST& request, RECORD_FILE& unit,
                         T_ENVELOPE& envelope) {
  if (request.RESULT_KIND == RK_LRAC && model.COUNTS.N_LOCAL_REACTION == 0) return {};
  return results::RUN_FAMILY(model, request, COMPONENT_OF(request), unit, envelope);
}

std::int32_t ITEM_MAP(std::int32_t result_item) {
  struct T_STRETCH {
    std::int32_t first;
    std::int32_t last;
    std::int32_t target;  // of the first
  };
  static constexpr std::array<T_STRETCH, 12> STRETCHES{{{1, 30, 1},
                                                        {31, 34, 46},
                                                        {35, 38, 58},
                                                        {39, 42, 70},
                                                        {43, 46, 82},
                                                        {47, 50, 94},
                                                        {51, 65, 31},
                                                        {66, 73, 50},
                                                        {74, 81, 62},
                                                        {82, 89, 74},
                                                        {90, 97, 86},
                                                        {98, 105, 98}}};
  for (const T_STRETCH& stretch : STRETCHES) {
    if (result_item >= stretch.first && result_item <= stretch.last) {
      return stretch.target + result_item - stretch.first;
    }
  }
  return 0;
}

results::T_COMPONENT SPLIT_WALL_ITEM(std::int32_t result_item) {
  constexpr std::int32_t FIRST_PART = 31;
  constexpr std::int32_t LAST_PART = 45;
  constexpr std::array<std::int32_t, 5> COMPONENTS_WITH_PARTS{4, 10, 16, 22, 28};
  const std::int32_t mapped = ITEM_MAP(result_item);
  if (mapped < FIRST_PART || mapped > LAST_PART) return {mapped, 0};
  const std::int32_t place = mapped - FIRST_PART;
  return {COMPONENTS_WITH_PARTS[static_cast<std::size_t>(place / 3)], place % 3 + 1};
}

bool IS_SECTION_ITEM(std::int32_t result_kind, std::int32_t result_item) {
  constexpr std::int32_t BEAM_SECTION_ITEMS = 30;
  constexpr std::int32_t WALL_SECTION_ITEMS = 45;
  if (result_kind == RK_BEAM) return result_item <= BEAM_SECTION_ITEMS;
  const std::int32_t mapped = ITEM_MAP(result_item);
  return result_kind == RK_WALL && mapped >= 1 && mapped <= WALL_SECTION_ITEMS;
}

}  // namespace kernel
