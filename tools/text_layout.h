// Plain text for a terminal of 100 columns: tables, wrapped lists, and numbers as an engineer reads them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

inline constexpr std::size_t TEXT_WIDTH = 100;

/// Writes to standard output. Whether all of it could be written is asked at the program's end.
void PRINT(std::string_view text) noexcept;

/// A value in seven digits, as many as single precision has.
[[nodiscard]] std::string VALUE_TEXT(double value);

/// A single precision number as the decimal that it was written from, where there is a short one: 0.475, not
/// 0.4749999940395355.
[[nodiscard]] double SHORT_DECIMAL(float value);

/// Pieces set one after another with `separator` between them, broken into lines of at most `width`. A piece
/// that is longer than that has a line of its own.
[[nodiscard]] std::vector<std::string> WRAP(const std::vector<std::string>& pieces,
                                            std::string_view separator, std::size_t width);

/// A table whose columns are as wide as their widest cell. Headings that begin with '<' set their column to
/// the left, without the mark; all others stand right.
class T_TEXT_TABLE {
 public:
  explicit T_TEXT_TABLE(const std::vector<std::string>& headings);
  void ADD(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  /// One line for each row, the headings first unless all are empty; every line begins with `indent` blanks
  /// and ends with a line feed.
  [[nodiscard]] std::string TEXT(std::size_t indent = 2) const;

 private:
  std::vector<bool> left_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace tools
