#include "tools/command_envelope.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "tools/envelope_question.h"
#include "tools/text_layout.h"

namespace tools {
namespace {

struct T_ENVELOPE_OPTIONS {
  T_ENVELOPE_QUESTION question;
  bool json = false;
};

void run(const T_ENVELOPE_OPTIONS& options) {
  const T_ENVELOPE_REPORT report = ANSWER_TO(options.question).report;
  PRINT(options.json ? ENVELOPE_JSON(report) : ENVELOPE_TEXT(report));
  for (const std::string& note : report.notes) fmt::print(stderr, "note: {}\n", note);
}

}  // namespace

void ADD_ENVELOPE_COMMAND(CLI::App& program) {
  const auto options = std::make_shared<T_ENVELOPE_OPTIONS>();
  CLI::App& command =
      *program.add_subcommand("envelope", "Work out the envelope of one result and its governing loading");
  ADD_QUESTION_OPTIONS(command, options->question);
  command.add_flag("--json", options->json, "Print JSON, for programs");
  command.footer(
      "Example, the moment at midspan of the inner beam of the example bridge under HA loading:\n"
      "  movload example demo\n"
      "  movload envelope demo/bridge --kind simb --id 3 --item 3 --case 1\n"
      "`movload inspect BASE` lists ids, items and moving load cases.");
  command.callback([options] { run(*options); });
}

}  // namespace tools
