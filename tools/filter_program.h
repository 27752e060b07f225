// Runs another program that turns its standard input into standard output. One source file a platform.
#pragma once

#include <string>

namespace tools {

struct T_FILTERED {
  bool succeeded = false;  // ended with exit code 0
  std::string output;      // what it wrote to standard output
  std::string messages;    // and to standard error
};

/// Runs a program of the search path with one argument, and waits for its end. No shell and no file name
/// takes part. Throws T_TOOL_FAILURE where it can't be run; `advice` then tells how to install it.
[[nodiscard]] T_FILTERED RUN_FILTER(const std::string& program, const std::string& argument,
                                    const std::string& input, const std::string& advice);

}  // namespace tools
