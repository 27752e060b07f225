#include "tools/volumes.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <vector>

#include "results/result_members.h"
#include "store/influence_reads.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

constexpr std::string_view FIRST_END = "_000.BLK";
constexpr std::string_view CANT_BE_OPENED = ": the file can't be opened";

/// The base name of a set that is given by it or by its first volume. The library takes a name of blanks, or
/// a longer one, for none.
std::string included_base(std::string given) {
  constexpr std::size_t LONGEST_BASE_NAME = 1016;
  if (given.size() > FIRST_END.size() && given.ends_with(FIRST_END))
    given.resize(given.size() - FIRST_END.size());
  if (given.find_first_not_of(' ') == std::string::npos)
    throw CLI::ValidationError("--include", "the name of the included set is empty");
  if (given.size() > LONGEST_BASE_NAME)
    throw CLI::ValidationError("--include", fmt::format("the name has {} characters, of which {} are taken",
                                                        given.size(), LONGEST_BASE_NAME));
  return given;
}

/// Other sets in the folder of a model, by base name.
std::vector<std::string> sets_beside(const std::string& base_name) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::path(base_name).parent_path();
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator file(folder.empty() ? "." : folder, error), end; !error && file != end;
       file.increment(error)) {
    std::string name = file->path().filename().string();
    if (!name.ends_with(FIRST_END)) continue;
    name = (folder / name.substr(0, name.size() - FIRST_END.size())).string();
    if (name != base_name) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string advice_on_forgotten_set(const std::string& base_name) {
  constexpr std::size_t MOST_NAMES = 4;
  std::vector<std::string> others = sets_beside(base_name);
  std::string advice = "name the set that holds the other unit loads: --include BASE";
  if (others.empty()) return advice;
  const bool more = others.size() > MOST_NAMES;
  if (more) others.resize(MOST_NAMES);
  return advice + fmt::format(". In that folder: {}{}", fmt::join(others, ", "), more ? ", ..." : "");
}

/// Tells ascending ids as runs without gaps, where these are few.
void tell_as_runs(T_RESULT_POINTS& points) {
  constexpr std::size_t MOST_RUNS = 8;
  for (const std::int32_t id : points.ids) {
    if (points.runs.empty() || points.runs.back().last + 1 != id) points.runs.push_back({id, id});
    points.runs.back().last = id;
  }
  points.listed = points.runs.size() > MOST_RUNS;
}

/// The lists of an index in which a kind stands.
std::vector<store::LIST> lists_of(std::int32_t result_kind) {
  using store::LIST;
  switch (result_kind) {
    case kernel::RK_DISP:
      return {LIST::DISP};
    case kernel::RK_LDSP:
      return {LIST::LDISP};
    case kernel::RK_REAC:
      return {LIST::REAC};
    case kernel::RK_LRAC:
      return {LIST::LREAC};
    case kernel::RK_SIMB:
      return {LIST::N_32800};
    case kernel::RK_ELNK:
    case kernel::RK_NLNK:
      return {LIST::N_1056};
    case kernel::RK_TRUSS:
      return {LIST::N_16416, LIST::N_65568};
    case kernel::RK_BEAM:
      return {LIST::N_544, LIST::N_640};
    case kernel::RK_PLATE:
      return {LIST::N_4128, LIST::N_4224};
    case kernel::RK_WALL:
      return {LIST::N_288, LIST::N_384};
    default:
      return {};
  }
}

}  // namespace

void ADD_VOLUME_OPTIONS(CLI::App& command, T_RESPONSE_SOURCE& source) {
  CLI::Option* const store =
      command.add_flag("--store", source.in_volumes,
                       "Take the responses from the model's influence volumes, BASE_000.BLK\n"
                       "and so on, in place of blocks and element files");
  command
      .add_option_function<std::string>(
          "--include", [&source](const std::string& given) { source.included_base = included_base(given); },
          "Included set of influence volumes with the model's first unit loads:\n"
          "path and stem, or the full name of its first volume")
      ->needs(store)
      ->type_name("BASE");
}

std::string FIRST_VOLUME(const std::string& base_name) {
  return fmt::format("{}{}", base_name, FIRST_END);
}

std::string ADVICE_FOR(std::string_view failure_line, const T_MODEL_FILE& file,
                       const T_RESPONSE_SOURCE& source) {
  const auto cant_open = [&](const std::string& volume) {
    return failure_line == fmt::format("{}{}", volume, CANT_BE_OPENED);
  };
  if (!source.in_volumes) return ADVICE_FOR(failure_line);
  if (!source.included_base.empty() && cant_open(FIRST_VOLUME(source.included_base)))
    return "check --include: it is the path of the set's volumes without _000.BLK";
  if (cant_open(FIRST_VOLUME(file.base_name)))
    return "have the solver write influence volumes for the model, or leave out --store to use its blocks "
           "and "
           "element files";
  if (failure_line.find(".BLK: the file can't be opened") != std::string_view::npos)
    return "a volume of the set is missing: put it beside the others, or have the solver write them again";
  if (failure_line.find("the influence store has") != std::string_view::npos)
    return source.included_base.empty()
               ? advice_on_forgotten_set(file.base_name)
               : "check that --include names the set that belongs to the model, and that the model has one";
  return ADVICE_FOR(failure_line);
}

void OPEN_VOLUMES(const T_MODEL_FILE& file, const T_RESPONSE_SOURCE& source, const kernel::T_COUNTS& counts,
                  store::INFLUENCE_STORE& store) {
  store.SET_INCLUDE(source.included_base);
  if (const STATUS status = store.OPEN(file.base_name); !status.OK()) {
    const std::string line = FAILURE_LINE(status, store.FAULTY_VOLUME());
    throw T_TOOL_FAILURE(line, ADVICE_FOR(line, file, source));
  }
  if (store.N_TOTAL_LOADS() == counts.N_UNIT_LOAD) return;
  throw T_TOOL_FAILURE(fmt::format("{}: the files have changed while they were read", file.file_name),
                       "run the command again when nothing writes to them");
}

T_RESULT_POINTS STORED_POINTS(const store::INFLUENCE_STORE& store, const kernel::T_COUNTS& counts,
                              const T_KIND& kind) {
  T_RESULT_POINTS points;
  points.kind = &kind;
  points.items = results::ITEMS_OF(kind.result_kind, counts);
  for (const store::LIST list : lists_of(kind.result_kind))
    for (const store::T_NODE& node : store.ROWS(list)) points.ids.push_back(node.ID);
  std::sort(points.ids.begin(), points.ids.end());
  points.ids.erase(std::unique(points.ids.begin(), points.ids.end()), points.ids.end());
  points.held = !points.ids.empty();
  tell_as_runs(points);
  return points;
}

void CHECK_ELEMENT(const store::INFLUENCE_STORE& store, const T_RESULT_POINTS& points, std::int32_t id) {
  if (results::FIND_FAMILY(points.kind->result_kind)->STORE_READ != store::READ::ELEMENT) return;
  if (!points.HOLDS(id)) {
    throw T_TOOL_FAILURE(fmt::format("the influence volumes hold no {} {}", points.kind->name, id),
                         points.held ? "give an --id that they hold: " + points.IDS_IN_WORDS()
                                     : std::string("ask for a kind that they hold, or leave out --store"));
  }
  if (!store::IS_STORED(store, store::READ::ELEMENT, id)) {
    throw T_TOOL_FAILURE(
        fmt::format("the influence volumes have the number {} for elements of several kinds", id),
        "have the solver number the elements of all kinds apart: the library reads none of these");
  }
}

}  // namespace tools
