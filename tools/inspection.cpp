#include "tools/inspection.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "kernel/driver.h"
#include "kernel/input_blocks.h"
#include "tools/tool_failure.h"
#include "tools/vehicle_names.h"

namespace tools {
namespace {

class INSPECTOR {
 public:
  INSPECTOR(const T_MODEL_FILE& file, std::int32_t most_shown) : most_shown_(most_shown) {
    inspection_.file = file;
  }

  T_INSPECTION READ() && {
    // Of a file without a sound directory of the version that is read, nothing more can be told.
    if (!is_read(READ_DIRECTORY(unit_, file_name(), inspection_.directory))) return std::move(inspection_);
    if (inspection_.directory.version != 2) {
      note(fmt::format("{}: the directory is of version 1.0, of which the library reads none", file_name()));
      return std::move(inspection_);
    }
    read_counts();
    if (!inspection_.counts) return std::move(inspection_);
    read_lanes();
    read_vehicles();
    read_cases();
    read_results();
    return std::move(inspection_);
  }

 private:
  [[nodiscard]] const std::string& file_name() const { return inspection_.file.file_name; }
  [[nodiscard]] const kernel::T_COUNTS& counts() const { return *inspection_.counts; }

  void note(std::string line) {
    std::vector<std::string>& failures = inspection_.failures;
    if (std::find(failures.begin(), failures.end(), line) == failures.end())
      failures.push_back(std::move(line));
  }
  bool is_read(const STATUS& status) {
    if (!status.OK()) note(FAILURE_LINE(status, file_name()));
    return status.OK();
  }

  void read_counts() {
    kernel::T_COUNTS read;
    if (is_read(kernel::READ_COUNTS(unit_, file_name(), read))) inspection_.counts = std::move(read);
  }

  void read_lanes() {
    std::vector<search::T_LANE> lanes;
    if (!is_read(kernel::READ_LANES(unit_, file_name(), counts(), lanes))) return;
    search::T_AXLE_LANES axle_lanes;
    if (is_read(kernel::READ_AXLE_LANES(unit_, file_name(), counts(), lanes, axle_lanes)))
      inspection_.has_axle_lists = axle_lanes.EXISTS();
    inspection_.lanes = std::move(lanes);
  }

  void read_vehicles() {
    std::vector<std::string> names;
    if (!is_read(kernel::READ_VEHICLES(unit_, file_name(), counts(), vehicles_))) return;
    if (!is_read(READ_VEHICLE_NAMES(unit_, file_name(), counts(), names))) return;
    std::vector<T_NAMED_VEHICLE>& shown = inspection_.vehicles.emplace();
    for (std::size_t j = 0; j < vehicles_.COLUMNS.size(); ++j) {
      const search::T_VEHICLE& vehicle = vehicles_.COLUMNS[j];
      const bool is_empty = vehicle.VEH_GROUP == 0 && vehicle.VEH_CLASS == 0 && vehicle.VEHICLE_CODE == 0;
      if (!is_empty) shown.push_back({names[j], vehicle});
    }
    search::T_CLASS_DEFINITIONS definitions;
    const bool reads_definitions = counts().CLASS_LANES;
    if (!reads_definitions ||
        is_read(kernel::READ_CLASS_DEFINITIONS(unit_, file_name(), counts(), vehicles_, definitions)))
      inspection_.class_definitions = definitions.CLASS_DEF.size();
  }

  void read_cases() {
    if (!inspection_.vehicles) return;
    kernel::T_COMBINATIONS combinations;
    kernel::T_CODE_BOOK book(vehicles_.COLUMNS, counts().N_VEHICLE_CLASS);
    if (!is_read(combinations.LOAD(unit_, file_name(), counts().NUM_LANE, counts().N_COMBINATION,
                                   std::move(book), kernel::COMBINATION_MEMORY_OF_PROCESS)))
      return;
    std::vector<T_CASE>& cases = inspection_.cases.emplace();
    for (std::int32_t number = 1; number <= counts().N_MV_CASE; ++number) {
      if (!is_read(READ_CASE(combinations, number, most_shown_, cases.emplace_back()))) return;
    }
  }

  void read_results() {
    for (const T_KIND& kind : RUN_KINDS()) {
      T_RESULT_POINTS points;
      if (!is_read(READ_RESULT_POINTS(unit_, file_name(), counts(), kind, points)) || !points.held) continue;
      for (const T_ELEMENT_FILE& file : points.files)
        if (file.has_rest)
          note(fmt::format("{}{}: the file ends within the records of an element", file_name(),
                           file.name_end));
      inspection_.results.push_back(std::move(points));
    }
  }

  T_INSPECTION inspection_;
  std::int32_t most_shown_;
  kernel::RECORD_FILE unit_;
  kernel::T_VEHICLES vehicles_;
};

}  // namespace

T_INSPECTION INSPECT(const T_MODEL_FILE& file, std::int32_t most_shown) {
  return INSPECTOR(file, most_shown).READ();
}

void INSPECT_VOLUMES(const T_VOLUME_PATHS& paths, T_INSPECTION& inspection) {
  try {
    store::INFLUENCE_STORE store;
    OPEN_VOLUMES(paths, store);
    inspection.volumes = READ_VOLUME_CONTENTS(store, paths);
    if (!inspection.counts) return;
    const std::string fault =
        UNIT_LOADS_FAULT(inspection.volumes->N_LOADS(), inspection.counts->N_UNIT_LOAD, inspection.file);
    if (!fault.empty()) inspection.volumes->notes.push_back(fault);
  } catch (const T_TOOL_FAILURE& failure) {
    inspection.failures.emplace_back(failure.what());
  }
}

}  // namespace tools
