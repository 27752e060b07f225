// Runs gnuplot, which draws the pictures.
#pragma once

#include <string>

namespace tools {

/// What gnuplot writes to its standard output for a script, which it gets by its standard input: no shell and
/// no file name takes part. Throws T_TOOL_FAILURE where gnuplot isn't installed or can't draw the script.
[[nodiscard]] std::string RUN_GNUPLOT(const std::string& script);

}  // namespace tools
