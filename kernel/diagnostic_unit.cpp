#include "kernel/diagnostic_unit.h"

namespace kernel {

void DIAGNOSTIC_UNIT::WRITE(std::string_view lines) noexcept {
  if (file_ == nullptr) file_ = std::fopen("fort.78", "wb");
  if (file_ != nullptr) std::fwrite(lines.data(), 1, lines.size(), file_);
}

void DIAGNOSTIC_UNIT::FLUSH() noexcept {
  if (file_ != nullptr) std::fflush(file_);
}

void DIAGNOSTIC_UNIT::CLOSE() noexcept {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
}

namespace {

void append_field(std::string& text, std::string_view number, std::size_t width) {
  if (number.size() > width) {
    text.append(width, '*');
  } else {
    text.append(width - number.size(), ' ').append(number);
  }
}

}  // namespace

void APPEND_INTEGER(std::string& text, std::int32_t value, std::size_t width) {
  char number[16];
  std::snprintf(number, sizeof number, "%d", value);
  append_field(text, number, width);
}

void APPEND_REAL(std::string& text, double value, std::size_t width, int decimals) {
  char number[400];
  std::snprintf(number, sizeof number, "%.*f", decimals, value);
  append_field(text, number, width);
}

}  // namespace kernel
