// The command line program: five commands over the library.
//
// Exit codes: 0 done, 1 the work failed, 2 the command line is wrong. Results go to standard output, messages
// to standard error: what went wrong in one line, what to do about it in the next.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "movload.h"
#include "tools/command_envelope.h"
#include "tools/command_example.h"
#include "tools/command_influence.h"
#include "tools/command_inspect.h"
#include "tools/command_plot.h"
#include "tools/tool_failure.h"

namespace {

enum EXIT_CODE : int { DONE = 0, FAILED = 1, WRONG_USAGE = 2 };

/// The message of a wrong command line.
std::string usage_text(const CLI::App* program, const CLI::Error& error) {
  std::string command = program->get_name();
  for (const CLI::App* chosen : program->get_subcommands()) command += " " + chosen->get_name();
  const std::vector<std::string> unknown = program->remaining();
  const bool is_unknown_command = program->get_subcommands().empty() && !unknown.empty();
  return fmt::format("movload: {}\nwhat to do: run `{} --help`\n",
                     is_unknown_command ? fmt::format("'{}' is no command", unknown.front()) : error.what(),
                     command);
}

int failed(const std::string& reason, const std::string& advice) {
  fmt::print(stderr, "movload: {}\nwhat to do: {}\n", reason, advice);
  return FAILED;
}

int run(int argc, char** argv) {
  CLI::App program("Moving-load analysis of bridges under BS 5400 HA and HB loading", "movload");
  program.set_version_flag("--version", std::string("movload ") + movload_version());
  program.require_subcommand(1);
  program.allow_windows_style_options(false);  // a path may begin with a slash there too
  program.failure_message(usage_text);
  program.footer(
      "Example:\n"
      "  movload example demo\n"
      "  movload inspect demo/bridge\n"
      "  movload envelope demo/bridge --kind simb --id 3 --item 3 --case 1\n"
      "  movload plot demo/bridge --kind simb --id 3 --item 3 --case 1 -o moment.svg\n"
      "  movload influence demo/bridge --kind simb --id 3 --item 3\n"
      "Each command has a --help of its own. Exit codes: 0 done, 1 failed, 2 wrong usage.");
  tools::ADD_EXAMPLE_COMMAND(program);
  tools::ADD_INSPECT_COMMAND(program);
  tools::ADD_INFLUENCE_COMMAND(program);
  tools::ADD_ENVELOPE_COMMAND(program);
  tools::ADD_PLOT_COMMAND(program);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (program.exit(error) != 0) return WRONG_USAGE;
  }
  std::cout.flush();
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    return failed("the output can't be written", "make room on the disk, or write somewhere else");
  return DONE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const tools::T_TOOL_FAILURE& failure) {
    return failed(failure.what(), failure.ADVICE());
  } catch (const std::bad_alloc&) {
    return failed("memory can't be had", tools::ADVICE_FOR("memory can't be had"));
  } catch (const std::exception& error) {
    return failed(error.what(), tools::ADVICE_FOR("unexpected failure"));
  }
}
