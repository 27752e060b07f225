#include "tools/volume_files.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

#include "kernel/block_file.h"
#include "store/m_mec_bulk.h"
#include "tools/model_files.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

bool has_volumes(const std::string& base_path) {
  std::error_code ignored;
  const std::string first = store::VOLUME_NAME(base_path, 1);
  return !first.empty() && fs::exists(first, ignored);
}

/// What stands in front of "_000.BLK"; none for other names.
std::optional<std::string> base_of_volume(const std::string& name) {
  constexpr std::size_t END = std::string_view("_000.BLK").size();
  if (name.size() <= END || !name.ends_with(".BLK") || name[name.size() - END] != '_') return std::nullopt;
  const std::string digits = name.substr(name.size() - END + 1, 3);
  if (digits.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
  return name.substr(0, name.size() - END);
}

std::optional<std::string> base_of_directory_file(const std::string& name) {
  for (std::int32_t code = FIRST_ANALYSIS_CODE; code <= LAST_ANALYSIS_CODE; ++code) {
    const std::string extension = kernel::MAKE_BLOCK_FILE_NAME("", code);
    if (name.size() > extension.size() && name.ends_with(extension))
      return name.substr(0, name.size() - extension.size());
  }
  return std::nullopt;
}

std::set<std::string> sets_beside(const std::string& given) {
  fs::path folder = fs::path(given).parent_path();
  if (folder.empty()) folder = ".";
  std::set<std::string> bases;
  std::error_code error;
  for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error))
    if (const auto base = base_of_volume(file->path().filename().string())) bases.insert(*base);
  return bases;
}

}  // namespace

std::optional<std::string> FIND_VOLUMES(const std::string& given) {
  if (has_volumes(given)) return given;
  for (const std::optional<std::string>& base : {base_of_volume(given), base_of_directory_file(given)})
    if (base && has_volumes(*base)) return base;
  return std::nullopt;
}

std::string FIND_VOLUME_SET(const std::string& given) {
  constexpr std::size_t MOST_NAMES = 6;
  if (const std::optional<std::string> base = FIND_VOLUMES(given)) return *base;
  if (store::VOLUME_NAME(given, 1).empty()) {
    const std::string reason =
        fmt::format("the path has {} characters, which no file name can be made of", given.size());
    throw T_TOOL_FAILURE(reason, ADVICE_FOR(reason));
  }
  std::string advice = "check the path; BASE is the volumes' path without _000.BLK";
  const std::set<std::string> others = sets_beside(given);
  if (!others.empty()) {
    const auto shown = static_cast<std::ptrdiff_t>(std::min(MOST_NAMES, others.size()));
    advice += fmt::format(". In that folder: {}{}",
                          fmt::join(others.begin(), std::next(others.begin(), shown), ", "),
                          others.size() > MOST_NAMES ? ", ..." : "");
  }
  throw T_TOOL_FAILURE(fmt::format("there is no influence volume {}_000.BLK", given), advice);
}

}  // namespace tools
