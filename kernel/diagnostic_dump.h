// A run's records as text, for those who look for a fault.
// Written by builds with MOVLOAD_DIAGNOSTIC_DUMP only.
#pragma once

#include <cstdint>
#include <string>

#include "kernel/diagnostic_unit.h"
#include "kernel/loading_records.h"

namespace kernel {

/// The text: distances, records and range lists of both sides, then the two values. Integers and reals stand
/// right in their fields; a number too wide for its field is written as asterisks.
[[nodiscard]] std::string DIAGNOSTIC_TEXT(const T_HOST_RECORDS& host, std::int32_t num_lane, double final_max,
                                          double final_min);

/// Writes the text to unit 78, behind what stands there since it was last closed, and closes it.
void WRITE_DIAGNOSTIC_FILE(const T_HOST_RECORDS& host, std::int32_t num_lane, double final_max,
                           double final_min, DIAGNOSTIC_UNIT& unit);

}  // namespace kernel
