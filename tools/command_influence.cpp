#include "tools/command_influence.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "movload.h"
#include "tools/gnuplot.h"
#include "tools/influence_picture.h"
#include "tools/influence_report.h"
#include "tools/influence_values.h"
#include "tools/model_options.h"
#include "tools/picture_file.h"
#include "tools/progress.h"
#include "tools/text_layout.h"
#include "tools/tool_failure.h"
#include "tools/volume_files.h"

namespace tools {
namespace {

struct T_INFLUENCE_OPTIONS {
  std::string base;
  std::string included;
  std::string kind;
  std::int32_t id = 0;
  std::optional<std::int32_t> part;
  T_INFLUENCE_VIEW view;
  bool csv = false;
  bool json = false;
  std::string picture_file;
  std::int32_t lane = 0;
  std::optional<std::int32_t> analysis_code;
  std::string title;
  std::string unit;
};

T_INFLUENCE_VALUES read_values(const T_INFLUENCE_OPTIONS& options) {
  T_INFLUENCE_QUESTION question;
  question.kind = FIND_KIND(options.kind);
  if (options.part && question.kind->form != ROW_FORM::COMPOSITE_BAR)
    throw CLI::ValidationError("--part", fmt::format("results of kind {} have no parts, those of composite "
                                                     "bars alone",
                                                     question.kind->name));
  question.paths = FIND_VOLUME_PATHS(options.base, options.included);
  question.id = options.id;
  question.part = options.part.value_or(1);
  const T_PROGRESS progress("reading the influence volumes of " + question.paths.base);
  return READ_INFLUENCE(question);
}

/// Items and loads that are asked for must be there, or a table of nothing would look like an answer.
void check_view(const T_INFLUENCE_OPTIONS& options, const T_INFLUENCE_VALUES& values) {
  const T_INFLUENCE_ROW& row = values.row;
  if (options.view.item && row.ITEM(*options.view.item) == nullptr) {
    throw T_TOOL_FAILURE(fmt::format("{} {} has no item {}", row.kind->name, row.id, *options.view.item),
                         row.items.empty()
                             ? "the volumes hold no items for it"
                             : fmt::format("give an --item of 1 to {}", row.items.back().number));
  }
  for (const std::int32_t load : options.view.loads) {
    if (load >= 1 && load <= values.loads) continue;
    throw T_TOOL_FAILURE(fmt::format("there is no unit load {}", load),
                         values.loads == 0 ? "the volumes hold no unit loads"
                                           : fmt::format("give a --load of 1 to {}", values.loads));
  }
}

/// The model's block directory file, where the volumes have one beside them or the user has named it.
T_MODEL_FILE find_model_file(const T_INFLUENCE_OPTIONS& options, const T_INFLUENCE_VALUES& values) {
  const bool is_named = HAS_MODEL_FILE(options.base, options.analysis_code);
  return FIND_MODEL_FILE(is_named ? options.base : values.paths.base, options.analysis_code);
}

/// The values of one set of two look complete. The model that has more unit loads than they tells of it.
void tell_of_forgotten_set(const T_INFLUENCE_OPTIONS& options, const T_INFLUENCE_VALUES& values) {
  if (!HAS_MODEL_FILE(values.paths.base, options.analysis_code)) return;
  const T_MODEL_FILE file = find_model_file(options, values);
  kernel::RECORD_FILE unit;
  kernel::T_COUNTS counts;
  if (!kernel::READ_COUNTS(unit, file.file_name, counts).OK()) return;
  const std::string fault = UNIT_LOADS_FAULT(values.loads, counts.N_UNIT_LOAD, file);
  if (!fault.empty())
    fmt::print(stderr, "note: {}\nwhat to do: {}\n", fault, ADVICE_FOR(fault, values.paths));
}

void draw(const T_INFLUENCE_OPTIONS& options, const T_INFLUENCE_VALUES& values) {
  const T_MODEL_FILE file = find_model_file(options, values);
  kernel::RECORD_FILE unit;
  kernel::T_MODEL model;
  READ_MODEL_FILE(file, unit, model);
  CHECK_UNIT_LOADS(values.loads, model.COUNTS.N_UNIT_LOAD, file, values.paths);
  const T_ROW_ITEM& item = *values.row.ITEM(*options.view.item);
  const std::string result = fmt::format("{} {}, item {}", values.row.kind->name, values.row.id, item.number);
  const std::string meaning = fmt::format("{} ({}: {})", result, values.row.kind->meaning, item.meaning);
  T_LINE_PICTURE picture;
  picture.title = options.title.empty() ? meaning : options.title;
  picture.subtitle =
      fmt::format("{}nfluence line along lane {} of {}", options.title.empty() ? "I" : meaning + ", i",
                  options.lane, model.LANES.size());
  picture.unit = options.unit;
  picture.lines = LINES_ALONG_LANE(values, item, model, options.lane);
  if (picture.lines.empty() || picture.lines.front().empty()) {
    throw T_TOOL_FAILURE(fmt::format("lane {} has no points to draw a line over", options.lane),
                         "run `movload inspect` to see the lanes");
  }
  picture.footnotes = {
      "Ordinates as the solver gives them, upward where positive; distances run along the lane from its "
      "start.",
      fmt::format("movload {}, {}", movload_version(), SOURCES_IN_WORDS(file, values.paths))};
  WRITE_PICTURE_FILE(options.picture_file,
                     RUN_GNUPLOT(LINE_PICTURE_SCRIPT(picture, *PICTURE_FORMAT(options.picture_file))));
  PRINT(fmt::format("Written: {}\n", options.picture_file));
}

void run(const T_INFLUENCE_OPTIONS& options) {
  const T_INFLUENCE_VALUES values = read_values(options);
  check_view(options, values);
  if (!options.picture_file.empty()) return draw(options, values);
  if (options.csv)
    PRINT(INFLUENCE_CSV(values, options.view));
  else
    PRINT(options.json ? INFLUENCE_JSON(values, options.view) : INFLUENCE_TEXT(values, options.view));
  tell_of_forgotten_set(options, values);
}

void add_picture_options(CLI::App& command, T_INFLUENCE_OPTIONS& options, CLI::Option* item) {
  CLI::Option* const lane = command.add_option("--lane", options.lane, "Lane of the picture, from 1");
  CLI::Option* const picture = command
                                   .add_option("--picture", options.picture_file,
                                               "Draw the influence line of --item along --lane, .svg or .png")
                                   ->check(CLI::Validator(PICTURE_FILE_FAULT, ""))
                                   ->type_name("FILE")
                                   ->needs(item, lane)
                                   ->excludes("--json", "--csv", "--load");
  lane->needs(picture);
  command.add_option("--title", options.title, "What the item is, to stand above the picture")
      ->needs(picture);
  command.add_option("--unit", options.unit, "Unit of the item, such as kNm; the files don't tell")
      ->needs(picture);
  command
      .add_option("--analysis-code", options.analysis_code,
                  "Chooses the block directory file with the lanes, as for the other\n"
                  "commands")
      ->check(CLI::Range(FIRST_ANALYSIS_CODE, LAST_ANALYSIS_CODE))
      ->type_name("CODE")
      ->needs(picture);
}

}  // namespace

void ADD_INFLUENCE_COMMAND(CLI::App& program) {
  const auto options = std::make_shared<T_INFLUENCE_OPTIONS>();
  CLI::App& command =
      *program.add_subcommand("influence", "Show the influence values of a node or element under unit loads");
  command
      .add_option("BASE", options->base,
                  "Influence volumes: path and stem, or the full name of the first one")
      ->type_name("")
      ->required();
  ADD_KIND_OPTION(command, options->kind, ALL_KINDS());
  command.add_option("--id", options->id, "Number of the node, support or element")->required();
  CLI::Option* const item = command.add_option("--item", options->view.item, "Component, from 1; else all");
  command.add_option("--load", options->view.loads, "Unit loads, from 1; else all")
      ->delimiter(',')
      ->type_name("LOAD");
  command.add_option("--part", options->part, "Part of a composite bar, from 1; else the first");
  ADD_INCLUDE_OPTION(command, options->included);
  command.add_flag("--all", options->view.all, "Show every row of a long table");
  CLI::Option* const json = command.add_flag("--json", options->json, "Print JSON, for programs");
  command.add_flag("--csv", options->csv, "Print comma-separated values, a line for each unit load")
      ->excludes(json);
  add_picture_options(command, *options, item);
  command.footer(
      "Examples:\n"
      "  movload influence demo/bridge --kind beam --id 18\n"
      "  movload influence demo/bridge --kind beam --id 18 --item 15 --csv\n"
      "  movload influence demo/bridge --kind beam --id 18 --item 15 --lane 2 --picture line.svg\n"
      "`movload inspect BASE` lists kinds and ids; elink and nlink stand in one list.");
  command.callback([options] { run(*options); });
}

}  // namespace tools
