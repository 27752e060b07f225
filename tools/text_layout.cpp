#include "tools/text_layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <span>

namespace tools {

void PRINT(std::string_view text) noexcept {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

std::string VALUE_TEXT(double value) {
  return fmt::format("{:.7g}", value);
}

double SHORT_DECIMAL(float value) {
  const std::string text = fmt::format("{}", value);
  auto decimal = static_cast<double>(value);
  std::from_chars(text.data(), text.data() + text.size(), decimal);
  return decimal;
}

std::vector<std::string> WRAP(const std::vector<std::string>& pieces, std::string_view separator,
                              std::size_t width) {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const bool is_last = i + 1 == pieces.size();
    const std::string piece = pieces[i] + (is_last ? "" : std::string(separator));
    // The blank that ends a separator may stand beyond the width: it is cut off.
    const std::size_t length = piece.find_last_not_of(' ') + 1;
    if (lines.empty() || lines.back().size() + length > width) lines.emplace_back();
    lines.back() += piece;
  }
  for (std::string& line : lines) line.erase(line.find_last_not_of(' ') + 1);
  return lines;
}

T_TEXT_TABLE::T_TEXT_TABLE(const std::vector<std::string>& headings) {
  std::vector<std::string> names;
  for (const std::string& heading : headings) {
    left_.push_back(heading.starts_with('<'));
    names.push_back(heading.substr(left_.back() ? 1 : 0));
  }
  rows_.push_back(std::move(names));
}

std::string T_TEXT_TABLE::TEXT(std::size_t indent) const {
  std::vector<std::size_t> widths(left_.size(), 0);
  for (const auto& row : rows_)
    for (std::size_t c = 0; c < row.size(); ++c) widths[c] = std::max(widths[c], row[c].size());
  std::string text;
  const bool has_headings =
      std::ranges::any_of(rows_.front(), [](const std::string& heading) { return !heading.empty(); });
  for (const auto& row : std::span(rows_).subspan(has_headings ? 0 : 1)) {
    std::string line(indent, ' ');
    for (std::size_t c = 0; c < row.size(); ++c) {
      line += left_[c] ? fmt::format("{:<{}}", row[c], widths[c]) : fmt::format("{:>{}}", row[c], widths[c]);
      line += "  ";
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

}  // namespace tools
