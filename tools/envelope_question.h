// One question to the library, as the commands ask it: the options that make it, and its answer with the
// tables that a host doesn't get and the loading drawn from them.
#pragma once

#include <CLI/App.hpp>
#include <array>
#include <cstdint>
#include <string>

#include "kernel/run_state.h"
#include "tools/drawn_loading.h"
#include "tools/envelope_report.h"
#include "tools/model_options.h"

namespace tools {

struct T_ENVELOPE_QUESTION {
  T_MODEL_OPTIONS model;
  bool in_volumes = false;  // the responses
  std::string included;     // set of volumes; empty: none
  std::string kind;         // by name or number
  std::int32_t id = 0;
  std::int32_t item = 0;
  std::int32_t mv_case = 0;
};

/// Adds BASE, --store, --include, --kind, --id, --item and --case to a command. The question must outlive it.
void ADD_QUESTION_OPTIONS(CLI::App& command, T_ENVELOPE_QUESTION& question);

struct T_ENVELOPE_ANSWER {
  T_ENVELOPE_REPORT report;
  kernel::T_MODEL model;
  std::array<T_DRAWN_SIDE, 2> drawn;  // by HOST_SIDE
};

/// Asks the library as a host does. Throws T_TOOL_FAILURE where it fails.
[[nodiscard]] T_ENVELOPE_ANSWER ANSWER_TO(const T_ENVELOPE_QUESTION& question);

}  // namespace tools
