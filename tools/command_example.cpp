#include "tools/command_example.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "kernel/control_blocks.h"
#include "modelkit/beam_results.h"
#include "modelkit/example_bridge.h"
#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "modelkit/volume_writer.h"
#include "tools/file_names.h"
#include "tools/progress.h"
#include "tools/result_kinds.h"
#include "tools/text_layout.h"
#include "tools/tool_failure.h"
#include "tools/volume_files.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

struct T_EXAMPLE_OPTIONS {
  std::string folder;
  std::string which = "bridge";
  std::vector<double> spans;
  bool included_set = false;
  bool force = false;
};

/// One command to try on an example.
struct T_SUGGESTION {
  std::string meaning;
  std::string kind;
  int id = 0;
  int item = 0;
  int mv_case = 1;
};

struct T_EXAMPLE_FILES {
  std::string stem;
  std::string title;
  modelkit::T_MODEL model;
  std::vector<T_SUGGESTION> suggestions;
};

struct T_WRITTEN_FILES {
  fs::path directory_file;
  int element_files = 0;
  std::vector<fs::path> volumes;  // one of each set, the primary one first
};

constexpr const char* INCLUDED_SET = "_included";  // behind the model's base name

T_EXAMPLE_FILES bridge() {
  modelkit::T_EXAMPLE example = modelkit::EXAMPLE_BRIDGE();
  T_EXAMPLE_FILES files;
  files.stem = "bridge";
  files.title = example.title;
  for (std::size_t mv_case = 0; mv_case < example.case_names.size(); ++mv_case)
    files.title += fmt::format("\n  moving load case {}: {}", mv_case + 1, example.case_names[mv_case]);
  std::vector<modelkit::T_NAMED_RESULT> results = std::move(example.results);
  results.insert(results.end(), example.element_results.begin(), example.element_results.end());
  for (const modelkit::T_NAMED_RESULT& result : results) {
    const T_KIND* kind = FIND_KIND(std::to_string(result.kind));
    files.suggestions.push_back({fmt::format("{}, in {}", result.name, result.unit), std::string(kind->name),
                                 result.id, result.item});
  }
  files.suggestions.push_back({"moment over pier 1, inner beam, with an HB on the bridge, in kNm", "simb", 3,
                               modelkit::BRIDGE_MOMENT_FIRST_PIER, modelkit::BRIDGE_CASE_HB_ANY});
  files.model = std::move(example.model);
  return files;
}

/// The midspan moment under HA: the UDL over the whole span and the knife edge at its middle.
double moment_by_hand(double span) {
  const modelkit::T_VEHICLE vehicle = modelkit::HA_1978_VEHICLE();
  const double full_intensity_up_to = vehicle.geometry[0];
  const double falling = vehicle.ha_k * std::pow(1.0 / span, vehicle.ha_p);
  const double w = std::max(span <= full_intensity_up_to ? vehicle.ha_w0 : falling, vehicle.ha_wmin);
  return w * span * span / 8.0 + vehicle.loads[0] * span / 4.0;
}

T_EXAMPLE_FILES simple_span(double span) {
  T_EXAMPLE_FILES files;
  files.stem = "span";
  files.title = fmt::format("Simply supported span of {} m, one lane under HA", span);
  files.model = modelkit::SIMPLE_SPAN_MODEL(span);
  files.suggestions = {{fmt::format("moment at midspan, in kNm; by hand {:.2f}", moment_by_hand(span)),
                        "simb", 1, modelkit::SPAN_MIDSPAN_MOMENT},
                       {"shear at the lane's start, in kN", "simb", 1, modelkit::SPAN_END_SHEAR},
                       {"shear at midspan, in kN", "beam", modelkit::SPAN_BEAM,
                        modelkit::BEAM_FORCE_ITEM(modelkit::BEAM_MIDDLE, modelkit::BEAM_SHEAR)}};
  return files;
}

/// Room for the longest HB to drive off the span, and points at the places where its axles may stand best.
T_EXAMPLE_FILES hb_span(double span) {
  constexpr double OVERRUN = 80.0;
  constexpr double STEP = 0.2;
  const int steps_of_half = std::max(1, static_cast<int>(std::lround(0.5 * span / STEP)));
  T_EXAMPLE_FILES files;
  files.stem = "hb_span";
  files.title = fmt::format(
      "Simply supported span of {} m, one lane\n  moving load case 1: HA\n  moving load case 2: HB", span);
  files.model = modelkit::SIMPLE_SPAN_MODEL(span, 2 * steps_of_half + 1, {.overrun = OVERRUN});
  files.model.moving_load_cases.push_back({.combinations = {{{.code = 2, .scale = 1.0}}}});
  files.suggestions = {{"moment at midspan under HB, in kNm", "simb", 1, modelkit::SPAN_MIDSPAN_MOMENT, 2},
                       {"shear at the span's start under HB, in kN", "simb", 1, modelkit::SPAN_END_SHEAR, 2}};
  return files;
}

T_EXAMPLE_FILES two_spans(double first, double second) {
  T_EXAMPLE_FILES files;
  files.stem = "two_span";
  files.title =
      fmt::format("Continuous beam over two spans of {} and {} m, one lane under HA", first, second);
  files.model = modelkit::TWO_SPAN_MODEL(first, second);
  files.suggestions = {
      {"moment over the inner support, in kNm", "simb", 1, modelkit::TWO_SPAN_SUPPORT_MOMENT},
      {"moment at the middle of the first span, in kNm", "simb", 1, modelkit::TWO_SPAN_FIRST_MOMENT},
      {"reaction of the inner support, in kN", "simb", 1, modelkit::TWO_SPAN_INNER_REACTION}};
  return files;
}

T_EXAMPLE_FILES make_example(const T_EXAMPLE_OPTIONS& options) {
  const auto span = [&](std::size_t place, double usual) {
    return place < options.spans.size() ? options.spans[place] : usual;
  };
  if (options.which == "span") return simple_span(span(0, 25.0));
  if (options.which == "hb-span") return hb_span(span(0, 90.0));
  if (options.which == "two-span") return two_spans(span(0, 20.0), span(1, 30.0));
  return bridge();
}

std::string contents(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// What stands behind the stem in the names of the files that a model may have. The block directory file, by
/// which all others are found, comes last.
std::vector<std::string> name_ends() {
  const std::string extension = modelkit::FILE_EXTENSION(0);
  std::vector<std::string> ends;
  for (const char family : kernel::ELEMENT_FAMILIES)
    for (const char number : std::string_view("123456789")) ends.push_back(extension + family + number);
  ends.push_back(FIRST_VOLUME(""));
  ends.push_back(FIRST_VOLUME(INCLUDED_SET));
  ends.push_back(extension);
  return ends;
}

/// Block directory file, element files and influence volumes under one base name.
void write_model(const modelkit::T_MODEL& model, bool has_included_set, const std::string& base_name) {
  modelkit::WRITE_MODEL(model, base_name);
  modelkit::WRITE_VOLUMES(model, base_name, {.included_loads = has_included_set ? model.unit_loads / 2 : 0},
                          base_name + INCLUDED_SET);
}

/// Writes beside the files' place and then moves there, so that a file of other contents is never lost.
T_WRITTEN_FILES write_files(const T_EXAMPLE_FILES& files, const T_EXAMPLE_OPTIONS& options) {
  const fs::path folder = PATH_OF(options.folder);
  const auto target = [&](const std::string& end) { return folder / (files.stem + end); };
  const auto new_file = [&](const std::string& end) { return folder / (files.stem + ".new" + end); };
  std::error_code error;
  const auto fail = [&](const std::string& reason, const std::string& advice) {
    for (const std::string& end : name_ends()) fs::remove(new_file(end), error);
    throw T_TOOL_FAILURE(reason, advice);
  };
  fs::create_directories(folder, error);
  if (error) {
    throw T_TOOL_FAILURE(fmt::format("{}: the folder can't be made: {}", options.folder, error.message()),
                         "name a folder in which you may write");
  }
  try {
    write_model(files.model, options.included_set, NAME_OF(new_file("")));
  } catch (const std::runtime_error& failure) {
    fail(failure.what(), "name a folder in which you may write, with room on its disk");
  }
  for (const std::string& end : name_ends()) {
    const bool is_other = fs::exists(target(end), error) && contents(target(end)) != contents(new_file(end));
    if (is_other && !options.force)
      fail(fmt::format("{}: there is already a file of this name, with other contents", NAME_OF(target(end))),
           "name another folder, or add --force to replace the file");
  }
  T_WRITTEN_FILES written;
  for (const std::string& end : name_ends()) {
    if (!fs::exists(new_file(end), error)) {
      fs::remove(target(end), error);  // that the model before had
      continue;
    }
    fs::rename(new_file(end), target(end), error);
    if (error)
      fail(fmt::format("{}: the file can't be put there: {}", NAME_OF(target(end)), error.message()),
           "name another folder");
    if (end.ends_with(FIRST_VOLUME(""))) {
      written.volumes.push_back(target(end));
    } else if (end == modelkit::FILE_EXTENSION(0)) {
      written.directory_file = target(end);
    } else {
      ++written.element_files;
    }
  }
  return written;
}

/// A word of a command line, in quotes where it needs them.
std::string shell_word(const std::string& text) {
  constexpr std::string_view PLAIN =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+:,@%";
  if (text.find_first_not_of(PLAIN) == std::string::npos) return text;
  std::string quoted = "'";
  for (const char character : text) quoted += character == '\'' ? "'\\''" : std::string(1, character);
  return quoted + "'";
}

std::string name_and_size(const fs::path& file) {
  return fmt::format("{} ({} bytes)", NAME_OF(file), fs::file_size(file));
}

std::string written_text(const T_WRITTEN_FILES& written) {
  std::string text = "Written: " + name_and_size(written.directory_file);
  if (written.element_files > 0)
    text +=
        fmt::format(" and {} element file{}", written.element_files, written.element_files == 1 ? "" : "s");
  text += ",\n  and the same responses as influence volumes: ";
  for (const fs::path& volume : written.volumes)
    text += (&volume == written.volumes.data() ? "" : ",\n  the first unit loads in an included set: ") +
            name_and_size(volume);
  return text;
}

std::string envelope_command(const T_SUGGESTION& suggestion, const std::string& base) {
  return fmt::format("  movload envelope {} --kind {} --id {} --item {} --case {}", base, suggestion.kind,
                     suggestion.id, suggestion.item, suggestion.mv_case);
}

void run(const T_EXAMPLE_OPTIONS& options) {
  T_EXAMPLE_FILES files;
  T_WRITTEN_FILES written;
  {
    const T_PROGRESS progress("working out the example's responses");
    files = make_example(options);
    written = write_files(files, options);
  }
  const std::string path = NAME_OF(written.directory_file.parent_path() / files.stem);
  const std::string base = shell_word(path);
  std::string text = fmt::format("{}\n\n{}\n\nTo try next:\n  movload inspect {}\n\n", files.title,
                                 written_text(written), base);
  for (const T_SUGGESTION& suggestion : files.suggestions)
    text += fmt::format("  # {}\n{}\n", suggestion.meaning, envelope_command(suggestion, base));
  text += fmt::format("  # the last one from the influence volumes\n{} --store",
                      envelope_command(files.suggestions.back(), base));
  if (options.included_set) text += " --include " + shell_word(fmt::format("{}{}", path, INCLUDED_SET));
  PRINT(text + '\n');
}

/// Spans go with the examples that have them: none with the bridge, one or two with the others. What is no
/// number lies within any range.
void check_spans(const T_EXAMPLE_OPTIONS& options) {
  const std::size_t most = options.which == "bridge" ? 0 : options.which == "two-span" ? 2 : 1;
  if (options.spans.size() > most) {
    throw CLI::ValidationError("--span",
                               fmt::format("the example '{}' takes {} length{}", options.which,
                                           most == 0 ? "no" : std::to_string(most), most == 1 ? "" : "s"));
  }
  if (std::ranges::any_of(options.spans, [](double span) { return std::isnan(span); }))
    throw CLI::ValidationError("--span", "a length is no number");
}

}  // namespace

void ADD_EXAMPLE_COMMAND(CLI::App& program) {
  const auto options = std::make_shared<T_EXAMPLE_OPTIONS>();
  CLI::App& command = *program.add_subcommand("example", "Write the files of a model to try the program on");
  command.add_option("DIR", options->folder, "Folder for the files; made where there is none")
      ->type_name("")
      ->required();
  command
      .add_option("--which", options->which,
                  "bridge: three spans, five beams, three lanes;\n"
                  "span: one simple span; hb-span: one under HB;\n"
                  "two-span: two continuous spans")
      ->check(CLI::IsMember({"bridge", "span", "hb-span", "two-span"}))
      ->type_name("NAME")
      ->capture_default_str();
  command
      .add_option("--span", options->spans,
                  "Length of the span in m (25; 90 under HB), or of two spans with a\n"
                  "comma (20,30)")
      ->delimiter(',')
      ->expected(1, 2)
      ->check(CLI::Range(1.0, 1000.0))
      ->type_name("METRES");
  command.add_flag("--included-set", options->included_set,
                   "Put the first half of the unit loads into influence volumes of their\n"
                   "own, which runs on the others then need beside them");
  command.add_flag("--force", options->force, "Replace a file of the same name that has other contents");
  command.footer(
      "Every model is written in both forms: block directory file and element files, and the same responses\n"
      "in influence volumes beside them.\n"
      "Examples:\n"
      "  movload example demo                          writes demo/bridge.ZA3 with its element files and\n"
      "                                                demo/bridge_000.BLK\n"
      "  movload example demo --which span --span 50   writes demo/span.ZA3 and demo/span_000.BLK\n"
      "  movload example split --included-set          writes split/bridge_included_000.BLK too");
  command.callback([options] {
    check_spans(*options);
    run(*options);
  });
}

}  // namespace tools
