// How a command ends when it can't do its work: the reason, and what the user can do about it. The program
// prints both and exits with 1.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "common/status.h"

namespace tools {

class T_TOOL_FAILURE : public std::runtime_error {
 public:
  T_TOOL_FAILURE(const std::string& reason, std::string advice)
      : std::runtime_error(reason), advice_(std::move(advice)) {}

  [[nodiscard]] const std::string& ADVICE() const noexcept { return advice_; }

 private:
  std::string advice_;
};

/// A failure of the library's readers as the line of text that a host gets for it.
[[nodiscard]] std::string FAILURE_LINE(const STATUS& status, std::string_view file_name);

/// Throws T_TOOL_FAILURE where a reader of the library has failed.
void CHECK_STATUS(const STATUS& status, std::string_view file_name);

/// What to do about a failure that the library tells by its line of text.
[[nodiscard]] std::string ADVICE_FOR(std::string_view failure_line);

}  // namespace tools
