#include "tools/model_files.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <limits>
#include <set>
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

[[noreturn]] void fail_without_file(const std::string& given, const std::vector<std::int32_t>& codes) {
  std::vector<std::string> tried;
  if (code_of_name(given, codes)) {
    tried.push_back(given);
  } else {
    for (const std::int32_t code : codes)
      tried.push_back(tried.empty() ? given + extension_of(code) : extension_of(code));
  }
  const auto if_directory_file = [](const std::string& name) -> std::optional<std::string> {
    if (!code_of_name(name, all_codes())) return std::nullopt;
    return name;
  };
  throw T_TOOL_FAILURE(fmt::format("there is no file {}", fmt::join(tried, ", ")),
                       "check the path; BASE is the file's path without its extension" +
                           NAMES_BESIDE(given, if_directory_file));
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

void READ_MODEL_FILE(const T_MODEL_FILE& file, kernel::RECORD_FILE& unit, kernel::T_MODEL& model) {
  constexpr std::int32_t ANY_NUMBER_OF_LANES = std::numeric_limits<std::int32_t>::max();
  kernel::T_REQUEST request;
  request.FILE_NAME = file.file_name;
  request.ANALYSIS_CODE = file.analysis_code;
  CHECK_STATUS(kernel::READ_MODEL(unit, request, ANY_NUMBER_OF_LANES, model), file.file_name);
}

std::string NAMES_BESIDE(const std::string& path,
                         const std::function<std::optional<std::string>(const std::string&)>& name_of) {
  namespace fs = std::filesystem;
  constexpr std::ptrdiff_t FIRST_FEW = 6;
  std::error_code error;
  const fs::path given = PATH_OF(path);
  const fs::path folder = fs::is_directory(given, error) ? given : given.parent_path();
  std::set<std::string> names;
  for (fs::directory_iterator file(folder.empty() ? "." : folder, error), end; !error && file != end;
       file.increment(error)) {
    if (std::optional<std::string> name = name_of(NAME_OF(file->path().filename())))
      names.insert(*std::move(name));
  }
  if (names.empty()) return "";
  const auto shown = std::next(names.begin(), std::min(std::ssize(names), FIRST_FEW));
  return fmt::format(". In that folder: {}{}", fmt::join(names.begin(), shown, ", "),
                     shown == names.end() ? "" : ", ...");
}

}  // namespace tools
