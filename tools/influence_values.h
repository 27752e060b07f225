// The values of one id under all unit loads, read as a host reads them: through the library's exports.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/influence_items.h"
#include "tools/volume_contents.h"
#include "tools/volume_files.h"

namespace tools {

struct T_INFLUENCE_VALUES {
  T_VOLUME_PATHS paths;
  std::vector<T_VOLUME_SET> sets;
  T_INFLUENCE_ROW row;
  std::vector<std::int32_t> nodes;     // of an element, as far as they are told
  std::int32_t loads = 0;              // unit loads of all sets
  std::vector<std::int32_t> load_ids;  // by load, as the solver calls it
  std::vector<float> values;           // [loads, row length]

  /// A position from 1 of the row of a load from 1.
  [[nodiscard]] float AT(std::int32_t load, std::int32_t position) const {
    return values[static_cast<std::size_t>(std::int64_t{load - 1} * row.length + position - 1)];
  }
};

struct T_INFLUENCE_QUESTION {
  T_VOLUME_PATHS paths;
  const T_KIND* kind = nullptr;
  std::int32_t id = 0;
  std::int32_t part = 1;  // of a composite bar
};

/// Opens the store, reads, and closes it. Throws T_TOOL_FAILURE where the volumes can't be read or haven't
/// the id.
[[nodiscard]] T_INFLUENCE_VALUES READ_INFLUENCE(const T_INFLUENCE_QUESTION& question);

}  // namespace tools
