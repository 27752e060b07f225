// The answer of `movload envelope`, as a table for engineers and as JSON for programs.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/governing_loading.h"
#include "tools/model_files.h"
#include "tools/result_points.h"
#include "tools/volume_files.h"

namespace tools {

struct T_ENVELOPE_REPORT {
  T_MODEL_FILE file;
  std::optional<T_VOLUME_PATHS> volumes;  // where responses come from; none: blocks and element files
  const T_KIND* kind = nullptr;
  std::int32_t id = 0;
  std::int32_t item = 0;
  std::int32_t mv_case = 0;
  std::int32_t cases = 0;         // of the model
  std::int32_t combinations = 0;  // of the case
  bool searched = false;
  std::array<double, 2> values{};  // by HOST_SIDE
  std::array<T_SIDE_LOADING, 2> sides;
  bool has_several_classes = false;          // the model, of vehicles
  std::array<std::string, 2> vehicle_names;  // of the sides' vehicle classes
  std::optional<double> kel_load;            // kN, where all vehicles of the model agree on it
  std::vector<std::string> notes;            // what the user should know beside the answer

  [[nodiscard]] bool IS_GOVERNED() const noexcept {
    return sides[MAXIMUM].vehicle_class != 0 || sides[MINIMUM].vehicle_class != 0;
  }
};

/// Maximum and minimum side by side, lane by lane, at most 100 columns wide. Without the notes.
[[nodiscard]] std::string ENVELOPE_TEXT(const T_ENVELOPE_REPORT& report);

/// One object, with the notes.
[[nodiscard]] std::string ENVELOPE_JSON(const T_ENVELOPE_REPORT& report);

}  // namespace tools
