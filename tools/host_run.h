// The part of a host: owns the arrays, asks for the number of lanes, and calls the library's exports.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tools {

enum HOST_SIDE : std::size_t { MAXIMUM = 0, MINIMUM = 1 };

/// What comes back for one side. Lane after lane, as movload.h tells for each array.
struct T_HOST_SIDE_ARRAYS {
  std::vector<std::int32_t> records;                       // K_MXLOAD or K_MNLOAD
  std::array<std::vector<std::int32_t>, 2> plane_records;  // K_MXLOAD1ST, K_MXLOAD2ND or the minimum's
  std::vector<std::int32_t> ranges;                        // K_MAXINFL_S or K_MININFL_S
  std::array<std::vector<std::int32_t>, 2> plane_ranges;   // K_MAXINFL_S1ST, K_MAXINFL_S2ND or ...
  std::vector<float> distances;                            // DISTANCE_MAX_RANGE or DISTANCE_MIN_RANGE
  double value = 0.0;                                      // FINAL_MAX or FINAL_MIN
};

struct T_HOST_ANSWER {
  std::int32_t lanes = 0;
  bool searched = false;  // false: the library found nothing to search and left the values alone
  std::array<T_HOST_SIDE_ARRAYS, 2> sides;
};

struct T_HOST_QUESTION {
  std::string base_name;
  std::int32_t mode_code = 0;
  std::string included_base;  // of influence volumes; empty: none
  std::int32_t result_kind = 0;
  std::int32_t result_id = 0;
  std::int32_t result_item = 0;
  std::int32_t mv_case = 0;
};

/// Throws T_TOOL_FAILURE with the library's own line where its last call has failed.
void CHECK_LAST_CALL();

/// Both calls. Throws T_TOOL_FAILURE with the library's own line where one of them fails.
[[nodiscard]] T_HOST_ANSWER RUN_AS_HOST(const T_HOST_QUESTION& question);

}  // namespace tools
