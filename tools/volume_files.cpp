#include "tools/volume_files.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <system_error>
#include <vector>

#include "common/status.h"
#include "kernel/block_file.h"
#include "store/m_mec_bulk.h"
#include "tools/file_names.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

constexpr std::string_view FIRST_END = "_000.BLK";
constexpr std::string_view CANT_BE_OPENED = ": the file can't be opened";

bool has_volumes(const std::string& base_path) {
  std::error_code ignored;
  const std::string first = store::VOLUME_NAME(base_path, 1);
  return !first.empty() && std::filesystem::exists(PATH_OF(first), ignored);
}

/// What stands in front of "_000.BLK" or another number; none for other names.
std::optional<std::string> base_of_volume(const std::string& name) {
  constexpr std::size_t END = FIRST_END.size();
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

/// A set that must be there.
std::string need_set(const std::string& given) {
  if (std::optional<std::string> base = FIND_VOLUME_SET(given)) return *std::move(base);
  if (store::VOLUME_NAME(given, 1).empty()) {
    const std::string reason =
        fmt::format("the path has {} characters, which no file name can be made of", given.size());
    throw T_TOOL_FAILURE(reason, ADVICE_FOR(reason));
  }
  throw T_TOOL_FAILURE(
      fmt::format("there is no influence volume {}", FIRST_VOLUME(given)),
      "check the path; it is that of the volumes without _000.BLK" + NAMES_BESIDE(given, base_of_volume));
}

}  // namespace

std::string FIRST_VOLUME(const std::string& base_path) {
  return fmt::format("{}{}", base_path, FIRST_END);
}

std::optional<std::string> FIND_VOLUME_SET(const std::string& given) {
  if (has_volumes(given)) return given;
  for (const std::optional<std::string>& base : {base_of_volume(given), base_of_directory_file(given)})
    if (base && has_volumes(*base)) return base;
  return std::nullopt;
}

T_VOLUME_PATHS FIND_VOLUME_PATHS(const std::string& given, const std::string& included) {
  T_VOLUME_PATHS paths{need_set(given)};
  if (included.empty()) return paths;
  paths.included = need_set(included);
  const std::string first = FIRST_VOLUME(paths.base);
  std::error_code ignored;
  // Two halves that are equally long would pass for the whole.
  if (std::filesystem::equivalent(PATH_OF(first), PATH_OF(FIRST_VOLUME(paths.included)), ignored)) {
    throw T_TOOL_FAILURE(fmt::format("{} is of the primary set; --include names the same one", first),
                         "name the set that holds the other unit loads, or leave out --include");
  }
  return paths;
}

void OPEN_VOLUMES(const T_VOLUME_PATHS& paths, store::INFLUENCE_STORE& store) {
  store.SET_INCLUDE(paths.included);
  const STATUS status = store.OPEN(paths.base);
  if (status.OK()) return;
  const std::string line = FAILURE_LINE(status, store.FAULTY_VOLUME());
  throw T_TOOL_FAILURE(line, ADVICE_FOR(line, paths));
}

std::string UNIT_LOADS_FAULT(std::int64_t stored, std::int32_t of_model, const T_MODEL_FILE& file) {
  if (stored == of_model) return "";
  STATUS status = STATUS::FAILED(REASON::UNIT_LOADS_DIFFER, stored);
  status.high = of_model;
  return FAILURE_LINE(status, file.file_name);
}

void CHECK_UNIT_LOADS(std::int32_t stored, std::int32_t of_model, const T_MODEL_FILE& file,
                      const T_VOLUME_PATHS& paths) {
  const std::string fault = UNIT_LOADS_FAULT(stored, of_model, file);
  if (!fault.empty()) throw T_TOOL_FAILURE(fault, ADVICE_FOR(fault, paths));
}

std::string ADVICE_FOR(std::string_view failure_line, const T_VOLUME_PATHS& paths) {
  if (failure_line.find(fmt::format(".BLK{}", CANT_BE_OPENED)) != std::string_view::npos)
    return "a volume of the set is missing or can't be read: put it beside the others, or have the solver "
           "write them again";
  if (failure_line.find("the influence store has") == std::string_view::npos) return ADVICE_FOR(failure_line);
  if (!paths.included.empty())
    return "check that --include names the set that belongs to the model, and that the model has one";
  const auto if_other_set = [&](const std::string& name) {
    std::optional<std::string> base = base_of_volume(name);
    if (base == NAME_OF(PATH_OF(paths.base).filename())) base.reset();
    return base;
  };
  return "name the set that holds the other unit loads: --include BASE" +
         NAMES_BESIDE(paths.base, if_other_set);
}

std::string SOURCES_IN_WORDS(const T_MODEL_FILE& file, const std::optional<T_VOLUME_PATHS>& volumes) {
  std::vector<std::string> files{file.file_name};
  if (volumes && !volumes->included.empty()) files.push_back(FIRST_VOLUME(volumes->included));
  if (volumes) files.push_back(FIRST_VOLUME(volumes->base));
  for (std::string& name : files) name = NAME_OF(PATH_OF(name).filename());
  return fmt::format("{}", fmt::join(files, ", "));
}

}  // namespace tools
