// `movload plot BASE --kind K --id N --item I --case C -o FILE`: a picture of the influence lines of one
// result with the loading that governs it.
#pragma once

#include <CLI/App.hpp>

namespace tools {

/// Adds the command to the program. It runs when the command line has been read, and throws T_TOOL_FAILURE.
void ADD_PLOT_COMMAND(CLI::App& program);

}  // namespace tools
