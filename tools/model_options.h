// The part of the command line that names a model's files: the same for every command that reads them.
#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/model_files.h"

namespace tools {

struct T_MODEL_OPTIONS {
  std::string base;
  std::optional<std::int32_t> analysis_code;

  [[nodiscard]] T_MODEL_FILE FIND_FILE() const { return FIND_MODEL_FILE(base, analysis_code); }
};

/// Adds BASE and --analysis-code to a command. The options must outlive it.
void ADD_MODEL_OPTIONS(CLI::App& command, T_MODEL_OPTIONS& options);

/// Adds --include, which names an included set of influence volumes, to a command. The string must outlive it.
CLI::Option& ADD_INCLUDE_OPTION(CLI::App& command, std::string& included);

}  // namespace tools
