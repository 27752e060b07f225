// The names of the vehicles. The library has no use for them, so that they are read here; block VEHI holds
// each as 20 characters, blank padded, at offset 8 of the vehicle's record.
#pragma once

#include <string>
#include <vector>

#include "common/status.h"
#include "kernel/control_blocks.h"
#include "kernel/record_file.h"

namespace tools {

/// One name a vehicle column, in block order; empty where there is none. Characters that can't be shown
/// become '?'.
STATUS READ_VEHICLE_NAMES(kernel::RECORD_FILE& unit, const std::string& file_name,
                          const kernel::T_COUNTS& counts, std::vector<std::string>& names);

}  // namespace tools
