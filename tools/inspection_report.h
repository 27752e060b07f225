// What `movload inspect` found, as tables for people and as JSON for programs.
#pragma once

#include <string>

#include "tools/inspection.h"

namespace tools {

/// All that was read, section by section. Without the failures.
[[nodiscard]] std::string INSPECTION_TEXT(const T_INSPECTION& inspection);

/// One object, with the failures; null for a section that couldn't be read.
[[nodiscard]] std::string INSPECTION_JSON(const T_INSPECTION& inspection);

}  // namespace tools
