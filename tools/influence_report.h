// The influence values of one id as tables for a terminal, as CSV and as JSON.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/influence_values.h"

namespace tools {

/// What is shown.
struct T_INFLUENCE_VIEW {
  std::optional<std::int32_t> item;  // else all
  std::vector<std::int32_t> loads;   // none: all
  bool all = false;                  // in text every row, however many
};

/// An item: its values load by load. Loads: a column each. Neither: of each item the greatest and the least
/// value.
[[nodiscard]] std::string INFLUENCE_TEXT(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view);

/// A line for each load; a column for each item, two for one that may jump.
[[nodiscard]] std::string INFLUENCE_CSV(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view);
[[nodiscard]] std::string INFLUENCE_JSON(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view);

}  // namespace tools
