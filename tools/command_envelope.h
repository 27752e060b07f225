// `movload envelope BASE --kind K --id N --item I --case C`: the two values of one result, and the loading
// that governs each.
#pragma once

#include <CLI/App.hpp>

namespace tools {

/// Adds the command to the program. It runs when the command line has been read, and throws T_TOOL_FAILURE.
void ADD_ENVELOPE_COMMAND(CLI::App& program);

}  // namespace tools
