// What a search of one lane, class and sub-case hands back, and how it is filed.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "common/real.h"

namespace search {

/// The record of one side.
struct T_HB_REC {
  std::int32_t W_MILLI = 0;       // HA UDL intensity * 1000, truncated
  std::int32_t LOADED_COUNT = 0;  // loaded ranges
  std::int32_t HB_TYPE = 0;       // 1 to 5, 0 no HB
  std::int32_t HB_POSITION = 0;   // influence point, 0 no HB
  std::int32_t HB_CODE = 0;       // plane of a straddling HB and portion of the HA UDL
  std::int32_t NUMBERED = 0;      // ranges that the HA search beside the HB numbered on this side
};

/// One side: the value, which begins at 0, and how it comes about.
struct T_SIDE_RESULT {
  real VALUE = 0;
  std::int32_t PASS_REC = 0;  // 1 forward, 2 reverse, 0 neither
  T_HB_REC HB_REC;
  std::vector<std::int32_t> INFL_REC;     // sequence numbers of the loaded ranges in order of ranking
  std::array<T_HB_REC, 2> HB_REC_PLANES;  // by parent lane of a straddling HB
  std::array<std::vector<std::int32_t>, 2> INFL_REC_PLANES;
};
using T_SEARCH_RESULT = std::array<T_SIDE_RESULT, N_SIDES>;

}  // namespace search
