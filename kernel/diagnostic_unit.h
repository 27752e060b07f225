// Unit 78: text for those who look for a fault, in the file "fort.78" of the working folder.
//
// No run opens the file beforehand: the first text after it was last closed replaces an older file. It stays
// open from run to run until it is closed or the process ends. An aid for looking into a run must not fail
// it, so that a file that can't be written is passed over.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace kernel {

class DIAGNOSTIC_UNIT {
 public:
  constexpr DIAGNOSTIC_UNIT() noexcept = default;
  ~DIAGNOSTIC_UNIT() { CLOSE(); }
  DIAGNOSTIC_UNIT(const DIAGNOSTIC_UNIT&) = delete;
  DIAGNOSTIC_UNIT& operator=(const DIAGNOSTIC_UNIT&) = delete;

  /// Writes whole lines, each with its line feed.
  void WRITE(std::string_view lines) noexcept;
  /// Hands what was written to the system. To be called at the end of a list.
  void FLUSH() noexcept;
  void CLOSE() noexcept;

 private:
  std::FILE* file_ = nullptr;
};

/// Appends a number, right in a field of `width` characters; one too wide for it becomes asterisks.
void APPEND_INTEGER(std::string& text, std::int32_t value, std::size_t width);
void APPEND_REAL(std::string& text, double value, std::size_t width, int decimals);

}  // namespace kernel
