// The combinations of the moving load cases in words: which lane carries which kind of loading of which
// vehicle class, and how much of it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "common/status.h"
#include "kernel/combinations.h"

namespace tools {

/// What a loaded lane carries.
struct T_LANE_LOAD {
  std::int32_t lane = 0;
  std::int32_t veh_class = 0;
  std::int32_t sub_case = 0;  // 1 to 4
  double factor = 0.0;
};

/// A moving load case and its first combinations; empty lanes are left out.
struct T_CASE {
  std::int32_t number = 0;
  std::int32_t combinations = 0;  // in all
  std::vector<std::vector<T_LANE_LOAD>> shown;
};

/// One case, with up to `most_shown` of its combinations.
STATUS READ_CASE(const kernel::T_COMBINATIONS& combinations, std::int32_t number, std::int32_t most_shown,
                 T_CASE& mv_case);

/// "HA", "HB", or a straddling HB with the HA UDL beside it: "straddling HB (UDL full, third)".
[[nodiscard]] std::string_view SUB_CASE_NAME(std::int32_t sub_case);

}  // namespace tools
