// What several commands have in their command lines: options that name a model's files, and a kind of result.
#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/model_files.h"
#include "tools/result_kinds.h"

namespace tools {

struct T_MODEL_OPTIONS {
  std::string base;
  std::optional<std::int32_t> analysis_code;

  [[nodiscard]] T_MODEL_FILE FIND_FILE() const { return FIND_MODEL_FILE(base, analysis_code); }
};

/// Adds BASE and --analysis-code to a command. The options must outlive it.
void ADD_MODEL_OPTIONS(CLI::App& command, T_MODEL_OPTIONS& options);

/// Adds --include, which names an included set of influence volumes, to a command. The string must outlive
/// it.
CLI::Option& ADD_INCLUDE_OPTION(CLI::App& command, std::string& included);

/// Adds --kind, one of these kinds by name or number, to a command. The string must outlive it.
void ADD_KIND_OPTION(CLI::App& command, std::string& kind, std::span<const T_KIND> kinds);

}  // namespace tools
