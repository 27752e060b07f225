#include "tools/model_files.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "kernel/block_file.h"
#include "tools/file_names.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

bool exists(const std::string& file_name) {
  std::error_code ignored;
  return std::filesystem::exists(PATH_OF(file_name), ignored);
}

std::string extension_of(std::int32_t analysis_code) {
  return kernel::MAKE_BLOCK_FILE_NAME("", analysis_code);
}

std::vector<std::int32_t> all_codes() {
  std::vector<std::int32_t> codes;
  for (std::int32_t code = FIRST_ANALYSIS_CODE; code <= LAST_ANALYSIS_CODE; ++code) codes.push_back(code);
  return codes;
}

T_MODEL_FILE model_file(std::string base_name, std::int32_t analysis_code) {
  std::string file_name = kernel::MAKE_BLOCK_FILE_NAME(base_name, analysis_code);
  return {std::move(base_name), analysis_code, std::move(file_name)};
}

/// The code whose extension a name ends with.
std::optional<std::int32_t> code_of_name(std::string_view name, const std::vector<std::int32_t>& codes) {
  for (const std::int32_t code : codes) {
    const std::string extension = extension_of(code);
    if (name.size() > extension.size() && name.ends_with(extension)) return code;
  }
  return std::nullopt;
}

/// Block directory files in the folder of a name that wasn't found.
std::vector<std::string> files_beside(const std::string& given) {
  namespace fs = std::filesystem;
  fs::path folder = PATH_OF(given).parent_path();
  if (folder.empty()) folder = ".";
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
    const std::string name = NAME_OF(file->path().filename());
    if (code_of_name(name, all_codes())) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

[[noreturn]] void fail_without_file(const std::string& given, const std::vector<std::int32_t>& codes) {
  constexpr std::size_t MOST_NAMES = 6;
  std::vector<std::string> tried;
  if (code_of_name(given, codes)) {
    tried.push_back(given);
  } else {
    for (const std::int32_t code : codes)
      tried.push_back(tried.empty() ? given + extension_of(code) : extension_of(code));
  }
  std::vector<std::string> others = files_beside(given);
  std::string advice = "check the path; BASE is the file's path without its extension";
  if (!others.empty()) {
    const bool more = others.size() > MOST_NAMES;
    if (more) others.resize(MOST_NAMES);
    advice += fmt::format(". In that folder: {}{}", fmt::join(others, ", "), more ? ", ..." : "");
  }
  throw T_TOOL_FAILURE(fmt::format("there is no file {}", fmt::join(tried, ", ")), advice);
}

/// Runs cut a longer path, and would then look for another file.
void check_length(const std::string& base_name) {
  constexpr std::size_t LONGEST_BASE_NAME = 260;
  if (base_name.size() <= LONGEST_BASE_NAME) return;
  const std::string reason = fmt::format("the path has {} characters, of which the library takes {}: {}",
                                         base_name.size(), LONGEST_BASE_NAME, base_name);
  throw T_TOOL_FAILURE(reason, ADVICE_FOR(reason));
}

std::vector<std::int32_t> codes_to_try(std::optional<std::int32_t> analysis_code) {
  return analysis_code ? std::vector{*analysis_code} : all_codes();
}

T_MODEL_FILE find(const std::string& given, std::optional<std::int32_t> analysis_code) {
  const std::vector<std::int32_t> codes = codes_to_try(analysis_code);
  const std::optional<std::int32_t> named = code_of_name(given, codes);
  if (named && exists(given))
    return model_file(given.substr(0, given.size() - extension_of(*named).size()), *named);

  std::vector<T_MODEL_FILE> found;
  std::vector<std::string> names;
  for (const std::int32_t code : codes) {
    T_MODEL_FILE file = model_file(given, code);
    if (!exists(file.file_name)) continue;
    names.push_back(file.file_name);
    found.push_back(std::move(file));
  }
  if (found.empty()) fail_without_file(given, codes);
  const bool is_usual_one = found.front().analysis_code == FIRST_ANALYSIS_CODE;
  if (found.size() > 1 && !is_usual_one) {
    throw T_TOOL_FAILURE(fmt::format("several files have this base name: {}", fmt::join(names, ", ")),
                         "give the full name of the one you mean");
  }
  return found.front();
}

}  // namespace

bool HAS_MODEL_FILE(const std::string& given, std::optional<std::int32_t> analysis_code) {
  const std::vector<std::int32_t> codes = codes_to_try(analysis_code);
  if (code_of_name(given, codes) && exists(given)) return true;
  return std::ranges::any_of(codes,
                             [&given](std::int32_t code) { return exists(given + extension_of(code)); });
}

T_MODEL_FILE FIND_MODEL_FILE(const std::string& given, std::optional<std::int32_t> analysis_code) {
  T_MODEL_FILE file = find(given, analysis_code);
  check_length(file.base_name);
  return file;
}

}  // namespace tools
