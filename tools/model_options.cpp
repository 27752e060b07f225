#include "tools/model_options.h"

#include <CLI/CLI.hpp>

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

}  // namespace tools
