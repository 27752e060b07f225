// What a model's block directory file, its element files and its influence volumes hold, as far as it can be
// read: a damaged part is told, and the rest is shown all the same.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kernel/control_blocks.h"
#include "search/lane_ordinates.h"
#include "search/vehicle_tables.h"
#include "tools/directory_list.h"
#include "tools/model_files.h"
#include "tools/moving_load_cases.h"
#include "tools/result_points.h"
#include "tools/volume_contents.h"

namespace tools {

/// A vehicle column with its name.
struct T_NAMED_VEHICLE {
  std::string name;
  search::T_VEHICLE vehicle;
};

struct T_INSPECTION {
  T_MODEL_FILE file;  // without a name where there are volumes alone
  T_DIRECTORY directory;
  std::optional<kernel::T_COUNTS> counts;
  std::optional<std::vector<search::T_LANE>> lanes;
  std::optional<std::vector<T_NAMED_VEHICLE>> vehicles;  // columns that hold one
  std::optional<std::size_t> class_definitions;
  std::optional<bool> has_axle_lists;
  std::optional<std::vector<T_CASE>> cases;
  std::vector<T_RESULT_POINTS> results;  // kinds whose block or element files are there
  std::optional<T_VOLUME_CONTENTS> volumes;
  std::vector<std::string> failures;  // a line for each part that can't be read
};

/// Reads everything; of each moving load case up to `most_shown` combinations. Throws T_TOOL_FAILURE only
/// where there is no file.
[[nodiscard]] T_INSPECTION INSPECT(const T_MODEL_FILE& file, std::int32_t most_shown);

/// Adds what influence volumes hold.
void INSPECT_VOLUMES(const T_VOLUME_PATHS& paths, T_INSPECTION& inspection);

}  // namespace tools
