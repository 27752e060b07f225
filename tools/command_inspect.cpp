#include "tools/command_inspect.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "tools/inspection.h"
#include "tools/inspection_report.h"
#include "tools/model_options.h"
#include "tools/progress.h"
#include "tools/text_layout.h"
#include "tools/tool_failure.h"
#include "tools/volume_files.h"

namespace tools {
namespace {

struct T_INSPECT_OPTIONS {
  T_MODEL_OPTIONS model;
  std::string included;
  bool all = false;
  bool json = false;
};

T_INSPECTION inspect(const T_INSPECT_OPTIONS& options) {
  constexpr std::int32_t FIRST_FEW = 6;
  const std::string& given = options.model.base;
  std::optional<T_VOLUME_PATHS> volumes;
  if (!options.included.empty() || FIND_VOLUME_SET(given))
    volumes = FIND_VOLUME_PATHS(given, options.included);
  // An analysis code asks for a block directory file.
  const bool has_volumes_alone =
      volumes && !options.model.analysis_code && !HAS_MODEL_FILE(given, std::nullopt);
  T_INSPECTION inspection;
  if (!has_volumes_alone) {
    const T_MODEL_FILE file = options.model.FIND_FILE();
    const T_PROGRESS progress("reading " + file.file_name);
    inspection = INSPECT(file, options.all ? std::numeric_limits<std::int32_t>::max() : FIRST_FEW);
  }
  if (volumes) {
    const T_PROGRESS progress("reading the influence volumes of " + volumes->base);
    INSPECT_VOLUMES(*volumes, inspection);
  }
  return inspection;
}

/// What could be read is shown also where something couldn't; the command fails afterwards.
void run(const T_INSPECT_OPTIONS& options) {
  const T_INSPECTION inspection = inspect(options);
  PRINT(options.json ? INSPECTION_JSON(inspection) : INSPECTION_TEXT(inspection));
  if (inspection.failures.empty()) return;
  for (std::size_t i = 0; i + 1 < inspection.failures.size(); ++i)
    fmt::print(stderr, "movload: {}\n", inspection.failures[i]);
  throw T_TOOL_FAILURE(inspection.failures.back(),
                       ADVICE_FOR(inspection.failures.back(), {options.model.base, options.included}));
}

}  // namespace

void ADD_INSPECT_COMMAND(CLI::App& program) {
  const auto options = std::make_shared<T_INSPECT_OPTIONS>();
  CLI::App& command = *program.add_subcommand(
      "inspect", "Show what a model's files hold: lanes, vehicles, load cases, results, influence volumes");
  ADD_MODEL_OPTIONS(command, options->model);
  ADD_INCLUDE_OPTION(command, options->included);
  command.add_flag("--all", options->all, "Show every combination, not the first six of each case");
  command.add_flag("--json", options->json, "Print JSON, for programs");
  command.footer(
      "Example:\n"
      "  movload example demo\n"
      "  movload inspect demo/bridge\n"
      "BASE may have a block directory file, influence volumes, or both.");
  command.callback([options] { run(*options); });
}

}  // namespace tools
