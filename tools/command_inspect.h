// `movload inspect BASE`: what a model's files hold.
#pragma once

#include <CLI/App.hpp>

namespace tools {

/// Adds the command to the program. It runs when the command line has been read, and throws T_TOOL_FAILURE.
void ADD_INSPECT_COMMAND(CLI::App& program);

}  // namespace tools
