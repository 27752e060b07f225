// From what the user typed to the model's block directory file and its tables.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "kernel/driver.h"

namespace tools {

/// Analysis codes of the extensions .ZA3, .YA3, .XA3, .WA3 and .ZAX3.
inline constexpr std::int32_t FIRST_ANALYSIS_CODE = 0;
inline constexpr std::int32_t LAST_ANALYSIS_CODE = 4;

struct T_MODEL_FILE {
  std::string base_name;  // as a host passes it
  std::int32_t analysis_code = 0;
  std::string file_name;  // base name and extension
};

/// Whether FIND_MODEL_FILE has a file to find.
[[nodiscard]] bool HAS_MODEL_FILE(const std::string& given, std::optional<std::int32_t> analysis_code);

/// Finds the file of a base name, or of a full file name. Without an analysis code the extension tells it;
/// where the name has none, .ZA3 comes first, and else the one file that is there counts.
/// Throws T_TOOL_FAILURE where no file fits, or more than one does.
[[nodiscard]] T_MODEL_FILE FIND_MODEL_FILE(const std::string& given,
                                           std::optional<std::int32_t> analysis_code);

/// Reads its tables, which a host doesn't get; `unit` may read on. Throws T_TOOL_FAILURE where it can't.
void READ_MODEL_FILE(const T_MODEL_FILE& file, kernel::RECORD_FILE& unit, kernel::T_MODEL& model);

/// For advice on a path that leads nowhere: ". In that folder: a, b" with the first few of the names that
/// `name_of` makes of the files beside it, or in it where it is a folder; or nothing.
[[nodiscard]] std::string NAMES_BESIDE(
    const std::string& path, const std::function<std::optional<std::string>(const std::string&)>& name_of);

}  // namespace tools
