// `movload example DIR`: writes the files of a model to try the program on.
#pragma once

#include <CLI/App.hpp>

namespace tools {

/// Adds the command to the program. It runs when the command line has been read, and throws T_TOOL_FAILURE.
void ADD_EXAMPLE_COMMAND(CLI::App& program);

}  // namespace tools
