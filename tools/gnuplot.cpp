#include "tools/gnuplot.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/filter_program.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

/// The first of gnuplot's messages that tells something; its own echo of the line stands around it.
std::string first_message(const std::string& messages) {
  std::size_t start = 0;
  std::string last;
  while (start < messages.size()) {
    const std::size_t end = std::min(messages.find('\n', start), messages.size());
    const std::string line = messages.substr(start, end - start);
    const std::size_t text = line.find_first_not_of(" \t^");
    if (text != std::string::npos) last = line.substr(text);
    if (last.starts_with("line ")) return last;
    start = end + 1;
  }
  return last.empty() ? "no reason given" : last;
}

}  // namespace

std::string RUN_GNUPLOT(const std::string& script) {
  // Without the user's own settings, which would change the picture.
  T_FILTERED drawn = RUN_FILTER("gnuplot", "--default-settings", script,
                                "install gnuplot, on Debian with `apt-get install gnuplot-nox`");
  if (!drawn.succeeded || drawn.output.empty()) {
    throw T_TOOL_FAILURE(
        fmt::format("gnuplot can't draw the picture: {}", first_message(drawn.messages)),
        "movload needs gnuplot 5 with the terminals svg and pngcairo, on Debian from gnuplot-nox; "
        "`movload plot --script FILE` keeps a script to see what it stumbles over");
  }
  return std::move(drawn.output);
}

}  // namespace tools
