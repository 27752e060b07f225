#include "tools/envelope_question.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "kernel/driver.h"
#include "results/result_members.h"
#include "tools/host_run.h"
#include "tools/progress.h"
#include "tools/tool_failure.h"
#include "tools/vehicle_names.h"
#include "tools/volume_files.h"

namespace tools {
namespace {

/// What the answer is told with: tables that a host doesn't get, and the responses in volumes.
struct T_BACKGROUND {
  kernel::T_MODEL model;
  std::vector<std::string> vehicle_names;
  T_RESULT_POINTS points;
  store::INFLUENCE_STORE store;  // open where responses come from volumes
};

/// The sets of a model whose responses are to come from volumes.
T_VOLUME_PATHS find_volumes(const T_MODEL_FILE& file, const std::string& included) {
  if (FIND_VOLUME_SET(file.base_name) == file.base_name) return FIND_VOLUME_PATHS(file.base_name, included);
  throw T_TOOL_FAILURE(fmt::format("there is no influence volume {}", FIRST_VOLUME(file.base_name)),
                       "have the solver write influence volumes for the model, or leave out --store to use "
                       "its blocks and element files");
}

void read_background(const T_ENVELOPE_REPORT& report, T_BACKGROUND& background) {
  const std::string& file_name = report.file.file_name;
  const T_KIND& kind = *report.kind;
  kernel::RECORD_FILE unit;
  READ_MODEL_FILE(report.file, unit, background.model);
  const kernel::T_COUNTS& counts = background.model.COUNTS;
  CHECK_STATUS(READ_VEHICLE_NAMES(unit, file_name, counts, background.vehicle_names), file_name);
  if (!report.volumes) {
    CHECK_STATUS(READ_RESULT_POINTS(unit, file_name, counts, kind, background.points), file_name);
    return;
  }
  OPEN_VOLUMES(*report.volumes, background.store);
  CHECK_UNIT_LOADS(background.store.N_TOTAL_LOADS(), counts.N_UNIT_LOAD, report.file, *report.volumes);
  background.points = STORED_RESULT_POINTS(background.store, counts, kind);
  // A run finds an element by its number alone: of another kind it takes what stands in the places of the
  // kind that is asked for.
  if (results::FIND_FAMILY(kind.result_kind)->STORE_READ == store::READ::ELEMENT)
    CHECK_STORED(background.store, kind, report.id, report.volumes->base);
}

/// The numbers of the model's BS 5400 vehicles, where they agree in what `same` compares; the records don't
/// tell of each lane which class it carries. A class has the numbers of its first vehicle.
template <class SAME>
std::optional<search::T_VEHICLE_PARAMETERS> common_vehicle(const std::vector<search::T_VEHICLE>& vehicles,
                                                           SAME same) {
  std::optional<search::T_VEHICLE_PARAMETERS> common;
  std::set<std::int32_t> classes{0};
  for (const search::T_VEHICLE& vehicle : vehicles) {
    if (!classes.insert(vehicle.VEH_CLASS).second || vehicle.VEHICLE_CODE != search::BS_5400_VEHICLE)
      continue;
    const search::T_VEHICLE_PARAMETERS parameters = search::VEHICLE_PARAMETERS(vehicle);
    if (common && !same(*common, parameters)) return std::nullopt;
    common = parameters;
  }
  return common;
}

std::optional<double> kel_load(const std::vector<search::T_VEHICLE>& vehicles) {
  const auto common =
      common_vehicle(vehicles, [](const auto& a, const auto& b) { return a.KEL_LOAD == b.KEL_LOAD; });
  if (!common) return std::nullopt;
  return static_cast<double>(common->KEL_LOAD);
}

std::optional<search::T_VEHICLE_PARAMETERS> hb_vehicle(const std::vector<search::T_VEHICLE>& vehicles) {
  return common_vehicle(vehicles, [](const auto& a, const auto& b) {
    return std::tie(a.HB_LOAD, a.HB_S, a.HB_B, a.HB_STEP) == std::tie(b.HB_LOAD, b.HB_S, b.HB_B, b.HB_STEP);
  });
}

/// Name of the first vehicle of a class, whose values the search takes.
std::string vehicle_name(const T_BACKGROUND& background, std::int32_t veh_class) {
  const std::vector<search::T_VEHICLE>& vehicles = background.model.VEHICLES;
  const auto vehicle = std::find_if(vehicles.begin(), vehicles.end(), [veh_class](const auto& candidate) {
    return candidate.VEH_CLASS == veh_class;
  });
  return veh_class == 0 || vehicle == vehicles.end()
             ? ""
             : background.vehicle_names[static_cast<std::size_t>(vehicle - vehicles.begin())];
}

/// Why an answer may not be what was meant: the library takes a question beyond the files for one without
/// loading. And what the records leave open.
std::vector<std::string> notes_on(const T_ENVELOPE_QUESTION& question, const T_BACKGROUND& background,
                                  const std::array<T_SIDE_LOADING, 2>& sides) {
  std::vector<std::string> notes;
  const T_RESULT_POINTS& points = background.points;
  const kernel::T_COUNTS& counts = background.model.COUNTS;
  if (!points.HOLDS(question.id)) {
    notes.push_back(fmt::format("the files hold no {} {}; ids: {}", points.kind->name, question.id,
                                points.IDS_IN_WORDS()));
  }
  if (question.item > points.items)
    notes.push_back(fmt::format("a {} has items 1 to {}", points.kind->name, points.items));
  if (question.mv_case < 1 || question.mv_case > counts.N_MV_CASE) {
    notes.push_back(fmt::format("the files hold no moving load case {}; cases: {}", question.mv_case,
                                counts.N_MV_CASE == 0 ? "none" : fmt::format("1 to {}", counts.N_MV_CASE)));
    return notes;
  }
  const auto has_hb = [](const T_LANE_SIDE& lane) { return lane.loading.hb.has_value(); };
  if (background.model.AXLE_LANES.EXISTS() && std::ranges::any_of(sides, [&](const T_SIDE_LOADING& side) {
        return std::ranges::any_of(side.lanes, has_hb);
      }))
    notes.emplace_back("the model has axle lists: axles of an HB may run on other lanes than its own");
  return notes;
}

/// Asks the library. Of an element beyond the files it can only say which record is missing.
T_HOST_ANSWER ask(const T_HOST_QUESTION& question, const T_ENVELOPE_REPORT& report) {
  try {
    return RUN_AS_HOST(question);
  } catch (const T_TOOL_FAILURE& failure) {
    if (report.volumes) throw T_TOOL_FAILURE(failure.what(), ADVICE_FOR(failure.what(), *report.volumes));
    kernel::RECORD_FILE unit;
    kernel::T_COUNTS counts;
    T_RESULT_POINTS points;
    const bool is_element =
        kernel::READ_COUNTS(unit, report.file.file_name, counts).OK() &&
        READ_RESULT_POINTS(unit, report.file.file_name, counts, *report.kind, points).OK() &&
        points.IS_IN_ELEMENT_FILES();
    if (!is_element || points.HOLDS(question.result_id)) throw;
    throw T_TOOL_FAILURE(
        failure.what(),
        points.runs.empty()
            ? fmt::format("the files hold no {} results: see `movload inspect`", report.kind->name)
            : fmt::format("give an --id that the files hold: {}", points.IDS_IN_WORDS()));
  }
}

}  // namespace

void ADD_QUESTION_OPTIONS(CLI::App& command, T_ENVELOPE_QUESTION& question) {
  ADD_MODEL_OPTIONS(command, question.model);
  CLI::Option* const store =
      command.add_flag("--store", question.in_volumes,
                       "Take the responses from the model's influence volumes, BASE_000.BLK\n"
                       "and so on, in place of blocks and element files");
  ADD_INCLUDE_OPTION(command, question.included).needs(store);
  ADD_KIND_OPTION(command, question.kind, RUN_KINDS());
  command.add_option("--id", question.id, "Number of the node, support or element")->required();
  command.add_option("--item", question.item, "Component, from 1")->required();
  command.add_option("--case", question.mv_case, "Moving load case, from 1")->required();
}

T_ENVELOPE_ANSWER ANSWER_TO(const T_ENVELOPE_QUESTION& question) {
  const T_KIND& kind = *FIND_KIND(question.kind, RUN_KINDS());
  T_ENVELOPE_ANSWER result;
  T_ENVELOPE_REPORT& report = result.report;
  report.file = question.model.FIND_FILE();
  if (question.in_volumes) report.volumes = find_volumes(report.file, question.included);
  report.kind = &kind;
  report.id = question.id;
  report.item = question.item;
  report.mv_case = question.mv_case;

  constexpr std::int32_t STORE_MODE = 100;
  const T_PROGRESS progress(
      fmt::format("searching {} {} of {}", kind.name, question.id, report.file.file_name));
  const T_HOST_ANSWER answer =
      ask({.base_name = report.file.base_name,
           .mode_code = report.file.analysis_code + (report.volumes ? STORE_MODE : 0),
           .included_base = report.volumes ? report.volumes->included : "",
           .result_kind = kind.result_kind,
           .result_id = question.id,
           .result_item = question.item,
           .mv_case = question.mv_case},
          report);
  T_BACKGROUND background;
  read_background(report, background);
  const kernel::T_COUNTS& counts = background.model.COUNTS;
  report.searched = answer.searched;
  report.cases = counts.N_MV_CASE;
  if (question.mv_case >= 1 && question.mv_case <= counts.N_MV_CASE)
    report.combinations = counts.N_COMBINATION[static_cast<std::size_t>(question.mv_case - 1)];
  report.has_several_classes = background.model.COMBINATIONS.BOOK().CLASSES().size() > 1;
  report.kel_load = kel_load(background.model.VEHICLES);
  const T_RECORD_TABLES tables{
      background.model.LANES,
      {background.model.POINTS_PER_SEGMENT, counts.KEEP_POINTS, counts.CLASS_LANES != 0,
       kernel::IS_SECTION_ITEM(kind.result_kind, question.item)},
      hb_vehicle(background.model.VEHICLES)};
  for (const HOST_SIDE side : {MAXIMUM, MINIMUM}) {
    report.values[side] = answer.sides[side].value;
    report.sides[side] = GOVERNING_LOADING(answer.sides[side], tables);
    report.vehicle_names[side] = vehicle_name(background, report.sides[side].vehicle_class);
  }
  report.notes = notes_on(question, background, report.sides);
  result.model = std::move(background.model);
  result.drawn = DRAW_LOADING(report, result.model, background.store);
  for (const HOST_SIDE side : {MAXIMUM, MINIMUM}) TELL_STRETCHES(result.drawn[side], report.sides[side]);
  return result;
}

}  // namespace tools
