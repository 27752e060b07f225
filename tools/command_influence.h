// `movload influence BASE ...`: the influence values of a node or element, as a host reads them.
#pragma once

#include <CLI/App.hpp>

namespace tools {

/// Adds the command to the program. It runs when the command line has been read, and throws T_TOOL_FAILURE.
void ADD_INFLUENCE_COMMAND(CLI::App& program);

}  // namespace tools
