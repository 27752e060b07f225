#include "tools/command_plot.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "movload.h"
#include "tools/drawn_loading.h"
#include "tools/envelope_question.h"
#include "tools/file_names.h"
#include "tools/gnuplot.h"
#include "tools/picture_file.h"
#include "tools/plot_sheet.h"
#include "tools/text_layout.h"
#include "tools/tool_failure.h"
#include "tools/volume_files.h"

namespace tools {
namespace {

struct T_PLOT_OPTIONS {
  T_ENVELOPE_QUESTION question;
  std::optional<std::int32_t> lane;
  std::string side = "both";
  std::string title;
  std::string unit;
  std::string picture_file;
  std::string script_file;
};

bool is_loaded(const T_DRAWN_LANE& lane) {
  return lane.carries != CARRIES::NOTHING;
}

/// The lanes that are asked for, or else those that carry something on either side; the same lanes in all
/// columns.
void choose_lanes(std::optional<std::int32_t> wanted, std::int32_t count,
                  std::vector<T_SHEET_COLUMN>& columns) {
  std::vector<std::vector<T_DRAWN_LANE>> chosen(columns.size());
  for (std::int32_t number = 1; number <= count; ++number) {
    const auto is_this = [number](const T_DRAWN_LANE& lane) { return lane.lane == number; };
    // A parent lane goes with the straddling HB.
    const auto goes_with = [wanted](const T_DRAWN_LANE& lane) { return lane.straddle_lane == wanted; };
    bool is_drawn = wanted == number;
    std::size_t rows = 0;
    for (const T_SHEET_COLUMN& column : columns) {
      std::size_t entries = 0;
      for (const T_DRAWN_LANE& lane : column.drawn.lanes) {
        if (!is_this(lane)) continue;
        ++entries;
        is_drawn = is_drawn || (wanted ? goes_with(lane) : is_loaded(lane));
      }
      rows = std::max(rows, entries);
    }
    if (!is_drawn) continue;
    for (std::size_t c = 0; c < columns.size(); ++c) {
      const std::vector<T_DRAWN_LANE>& lanes = columns[c].drawn.lanes;
      const std::size_t before = chosen[c].size();
      std::ranges::copy_if(lanes, std::back_inserter(chosen[c]), is_this);
      while (chosen[c].size() < before + rows) {
        T_DRAWN_LANE empty;
        empty.lane = number;
        chosen[c].push_back(std::move(empty));
      }
    }
  }
  for (std::size_t c = 0; c < columns.size(); ++c) columns[c].drawn.lanes = std::move(chosen[c]);
}

/// The vehicle, and where the HB of a side stands.
std::string subheading(const T_ENVELOPE_REPORT& report, const T_DRAWN_SIDE& drawn) {
  if (!drawn.governed)
    return fmt::format("no combination goes {} 0", drawn.side == MAXIMUM ? "above" : "below");
  std::vector<std::string> words;
  const T_SIDE_LOADING& loading = report.sides[drawn.side];
  words.push_back(fmt::format("vehicle class {}{}", loading.vehicle_class,
                              report.has_several_classes ? " on the last loaded lane" : ""));
  const std::string& name = report.vehicle_names[drawn.side];
  if (!name.empty()) words.push_back(name);
  for (const T_DRAWN_LANE& lane : drawn.lanes) {
    if (!lane.hb) continue;
    words.push_back(lane.carries == CARRIES::STRADDLING_HB
                        ? fmt::format("HB type {} across lanes {} and {}", lane.hb->type, lane.parents[0],
                                      lane.parents[1])
                        : fmt::format("HB type {} in lane {}", lane.hb->type, lane.lane));
  }
  return fmt::format("{}", fmt::join(words, ", "));
}

std::vector<std::string> footnotes(const T_ENVELOPE_REPORT& report,
                                   const std::vector<T_SHEET_COLUMN>& columns) {
  std::vector<std::string> notes{
      "Influence lines: ordinates as the solver gives them, upward where positive; distances run along each "
      "lane from its start.",
      "Each lane adds factor × (UDL × shaded area + KEL × ordinate + axle load × sum Σ of the four "
      "ordinates)."};
  const auto has_clear = [](const T_DRAWN_LANE& lane) { return lane.clear.has_value(); };
  if (std::ranges::any_of(
          columns, [&](const auto& column) { return std::ranges::any_of(column.drawn.lanes, has_clear); }))
    notes.emplace_back(
        "Grey: clear stretch of the HB, without UDL. The vehicle's length counts as loaded length for the "
        "intensity.");
  const auto jumps = [](const T_DRAWN_LANE& lane) { return JUMP_OF(lane.line).has_value(); };
  if (std::ranges::any_of(columns,
                          [&](const auto& column) { return std::ranges::any_of(column.drawn.lanes, jumps); }))
    notes.emplace_back(
        "A knife edge or an axle where the line jumps counts with the worse of the two values.");
  for (const T_SHEET_COLUMN& column : columns) {
    if (column.drawn.ADDS_UP()) continue;
    notes.push_back(
        fmt::format("The loads drawn don't add up to the {}: the records don't tell the whole loading.",
                    column.drawn.side == MAXIMUM ? "maximum" : "minimum"));
  }
  notes.push_back(
      fmt::format("movload {}, {}", movload_version(), SOURCES_IN_WORDS(report.file, report.volumes)));
  return notes;
}

T_SHEET make_sheet(const T_PLOT_OPTIONS& options, const T_ENVELOPE_ANSWER& answer) {
  const T_ENVELOPE_REPORT& report = answer.report;
  T_SHEET sheet;
  sheet.unit = options.unit;
  const std::string result = fmt::format("{} {}, item {}", report.kind->name, report.id, report.item);
  const std::string meaning = fmt::format("{} ({})", result, RESULT_MEANING(*report.kind, report.item));
  sheet.title = options.title.empty() ? meaning : options.title;
  sheet.subtitle = fmt::format("{}oving load case {} of {}", options.title.empty() ? "M" : meaning + ", m",
                               report.mv_case, report.cases);
  for (const T_DRAWN_SIDE& drawn : answer.drawn) {
    const bool is_wanted = options.side == "both" || (options.side == "max") == (drawn.side == MAXIMUM);
    if (!is_wanted) continue;
    sheet.columns.push_back({drawn, subheading(report, drawn)});
  }
  sheet.footnotes = footnotes(report, sheet.columns);
  choose_lanes(options.lane, answer.model.COUNTS.NUM_LANE, sheet.columns);
  return sheet;
}

void check_answer(const T_PLOT_OPTIONS& options, const T_ENVELOPE_ANSWER& answer) {
  const std::int32_t lanes = answer.model.COUNTS.NUM_LANE;
  if (options.lane && (*options.lane < 1 || *options.lane > lanes)) {
    throw T_TOOL_FAILURE(
        fmt::format("the files hold no lane {}", *options.lane),
        lanes == 0 ? "the model has no lanes" : fmt::format("give a --lane of 1 to {}", lanes));
  }
  const T_ENVELOPE_REPORT& report = answer.report;
  if (report.IS_GOVERNED()) return;
  throw T_TOOL_FAILURE(report.notes.empty()
                           ? "there is no loading to draw: no combination has a value beyond 0"
                           : report.notes.front(),
                       "run `movload inspect` to see which results and cases the files hold");
}

/// A side without a governing loading has no lanes, and a straddle lane has a line where it is loaded alone.
void check_sheet(const T_PLOT_OPTIONS& options, const T_SHEET& sheet) {
  const auto has_line = [](const T_DRAWN_LANE& lane) { return !lane.line.empty(); };
  if (std::ranges::any_of(sheet.columns, [&](const T_SHEET_COLUMN& column) {
        return std::ranges::any_of(column.drawn.lanes, has_line);
      }))
    return;
  throw T_TOOL_FAILURE("there is nothing to draw: no load, and no influence line",
                       fmt::format("choose another --{}; `movload envelope` shows what is loaded",
                                   options.lane ? "lane" : "side"));
}

void run(const T_PLOT_OPTIONS& options) {
  const PICTURE format = *PICTURE_FORMAT(options.picture_file);
  const T_ENVELOPE_ANSWER answer = ANSWER_TO(options.question);
  check_answer(options, answer);
  const T_SHEET sheet = make_sheet(options, answer);
  check_sheet(options, sheet);
  const std::string script = SHEET_SCRIPT(sheet, format);
  if (!options.script_file.empty()) WRITE_PICTURE_FILE(options.script_file, script);
  WRITE_PICTURE_FILE(options.picture_file, RUN_GNUPLOT(script));
  PRINT(fmt::format("Written: {}\n", options.picture_file));
  for (const std::string& note : answer.report.notes) fmt::print(stderr, "note: {}\n", note);
}

}  // namespace

void ADD_PLOT_COMMAND(CLI::App& program) {
  const auto options = std::make_shared<T_PLOT_OPTIONS>();
  CLI::App& command = *program.add_subcommand(
      "plot", "Draw the influence lines of one result with its governing loading, by gnuplot");
  ADD_QUESTION_OPTIONS(command, options->question);
  command.add_option("-o,--output", options->picture_file, "Picture to write, .svg or .png")
      ->required()
      ->check(CLI::Validator(PICTURE_FILE_FAULT, ""))
      ->type_name("FILE");
  command.add_option("--lane", options->lane, "Draw this lane alone; else all that carry something");
  command.add_option("--side", options->side, "Maximum, minimum or both")
      ->check(CLI::IsMember({"max", "min", "both"}))
      ->type_name("SIDE")
      ->capture_default_str();
  command.add_option("--title", options->title, "What the result is, to stand above the picture");
  command.add_option("--unit", options->unit, "Unit of the result, such as kNm; the files don't tell");
  command.add_option("--script", options->script_file, "Keep the gnuplot script in this file")
      ->type_name("FILE");
  command.footer(
      "Example, the moment at midspan of the inner beam of the example bridge with an HB in one lane:\n"
      "  movload example demo\n"
      "  movload plot demo/bridge --kind simb --id 3 --item 3 --case 4 --unit kNm -o moment.svg\n"
      "The picture has a column for each side and a panel for each lane: above, what stands on the lane;\n"
      "below, its influence line with the area under the UDL, the knife edge and the axles. gnuplot must be\n"
      "installed.");
  command.callback([options] {
    if (options->script_file == options->picture_file)
      throw CLI::ValidationError("--script", "the picture goes into this file");
    run(*options);
  });
}

}  // namespace tools
