#include "tools/model_options.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <vector>

#include "tools/text_layout.h"

namespace tools {

void ADD_MODEL_OPTIONS(CLI::App& command, T_MODEL_OPTIONS& options) {
  command.add_option("BASE", options.base, "The model's files: path and stem, or the full file name")
      ->type_name("")
      ->required();
  command
      .add_option("--analysis-code", options.analysis_code,
                  "Chooses the extension: 0 .ZA3, 1 .YA3, 2 .XA3, 3 .WA3, 4 .ZAX3;\n"
                  "without it the file that is there counts")
      ->check(CLI::Range(FIRST_ANALYSIS_CODE, LAST_ANALYSIS_CODE))
      ->type_name("CODE");
}

CLI::Option& ADD_INCLUDE_OPTION(CLI::App& command, std::string& included) {
  const auto fault = [](const std::string& path) -> std::string {
    const bool has_blanks = path.empty() || path.front() == ' ' || path.back() == ' ';
    return has_blanks ? "the library takes no empty path, and none with a blank at either end" : "";
  };
  return *command
              .add_option("--include", included,
                          "Included set of influence volumes with the model's first unit loads:\n"
                          "path and stem, or the full name of its first volume")
              ->check(CLI::Validator(fault, ""))
              ->type_name("BASE");
}

void ADD_KIND_OPTION(CLI::App& command, std::string& kind, std::span<const T_KIND> kinds) {
  std::vector<std::string> names;
  for (const T_KIND& row : kinds)
    names.push_back(row.result_kind == 0 ? std::string(row.name)
                                         : fmt::format("{} ({})", row.name, row.result_kind));
  const auto fault = [kinds](const std::string& text) {
    return FIND_KIND(text, kinds) == nullptr ? fmt::format("'{}' is no kind of result", text) : std::string();
  };
  command
      .add_option(
          "--kind", kind,
          fmt::format("Kind of result, by name or number:\n{}", fmt::join(WRAP(names, ", ", 64), "\n")))
      ->required()
      ->check(CLI::Validator(fault, ""))
      ->type_name("KIND");
}

}  // namespace tools
