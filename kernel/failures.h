// From a reason to what the host sees: one line of text.
#pragma once

#include <cstddef>
#include <string_view>

#include "common/status.h"

namespace kernel {

/// Writes the failure as a line without line feed, with file, block, record and what was wrong, into `text`,
/// whose last byte becomes a terminator. Empty for no failure. Takes no memory.
void FAILURE_TEXT(const STATUS& status, std::string_view file_name, char* text, std::size_t room) noexcept;

}  // namespace kernel
