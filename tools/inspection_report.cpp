#include "tools/inspection_report.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/text_layout.h"
#include "tools/volume_report.h"

namespace tools {
namespace {

using nlohmann::ordered_json;

// ----------------------------------------------------------------------------------- what both forms say

std::string_view block_meaning(std::string_view tag) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 17> MEANINGS{
      {{"MVIF", "counts"},
       {"IFSV", "format of the influence files"},
       {"MLDI", "storage of element results"},
       {"MVLC", "moving load cases"},
       {"VEHI", "vehicles"},
       {"PHSL", "lane definitions of classes"},
       {"LVPF", "links of class definitions"},
       {"LNIF", "lanes"},
       {"MLIF", "axle lists"},
       {"NLAX", "local axes of nodes"},
       {"DISP", "displacements"},
       {"LDSP", "displacements in local axes"},
       {"REAC", "reactions"},
       {"LRAC", "reactions in local axes"},
       {"SIMB", "SIMB results"},
       {"ELNK", "elastic links"},
       {"NLNK", "nonlinear links"}}};
  const auto* const found =
      std::find_if(MEANINGS.begin(), MEANINGS.end(), [tag](const auto& row) { return row.first == tag; });
  return found == MEANINGS.end() ? "not read by the library" : found->second;
}

std::string_view direction_text(std::int32_t direction) {
  if (direction == 0) return "forward";
  return direction == 1 ? "reverse" : "both";
}

std::size_t repeated_points(const search::T_LANE& lane) {
  std::size_t repeated = 0;
  for (std::size_t i = 1; i < lane.POINT_X_REAL.size(); ++i)
    if (lane.POINT_X_REAL[i] == lane.POINT_X_REAL[i - 1]) ++repeated;
  return repeated;
}

/// Distances between the inner axles of the five HB types.
std::array<double, 5> inner_axle_spacings(const search::T_VEHICLE_PARAMETERS& parameters) {
  std::array<double, 5> spacings{};
  for (std::size_t type = 0; type < spacings.size(); ++type)
    spacings[type] = SHORT_DECIMAL(parameters.HB_B + static_cast<real>(type) * parameters.HB_STEP);
  return spacings;
}

struct T_COUNT {
  std::string_view key;
  std::string_view meaning;
  std::int32_t kernel::T_COUNTS::*count;
};
constexpr std::array<T_COUNT, 11> COUNTS{{
    {"lanes", "lanes, straddle lanes included", &kernel::T_COUNTS::NUM_LANE},
    {"straddle_lanes", "straddle lanes", &kernel::T_COUNTS::N_STRADDLE},
    {"moving_load_cases", "moving load cases", &kernel::T_COUNTS::N_MV_CASE},
    {"unit_loads", "unit loads", &kernel::T_COUNTS::N_UNIT_LOAD},
    {"max_points", "influence points of a lane, at most", &kernel::T_COUNTS::MAX_POINTS},
    {"max_transverse_entries", "transverse entries of a point, at most", &kernel::T_COUNTS::MAX_TRANSVERSE},
    {"vehicle_groups", "vehicle groups", &kernel::T_COUNTS::N_VEHICLE_GROUP},
    {"vehicle_columns", "vehicle columns", &kernel::T_COUNTS::N_VEHICLE_COLUMN},
    {"vehicle_classes", "vehicle classes", &kernel::T_COUNTS::N_VEHICLE_CLASS},
    {"support_nodes", "support nodes", &kernel::T_COUNTS::N_REAC_NODE},
    {"degrees_of_freedom", "degrees of freedom of a node", &kernel::T_COUNTS::N_DOF},
}};

// ---------------------------------------------------------------------------------------------------- text

std::string directory_text(const T_DIRECTORY& directory) {
  if (directory.version == 0) return "";
  T_TEXT_TABLE table({"<tag", "id", "first record", "last", "records", "words each", "bytes", "<holds"});
  for (const T_DIRECTORY_ENTRY& entry : directory.entries) {
    std::string holds(block_meaning(entry.tag));
    if (!entry.lies_in_file) holds += "; THE FILE ENDS BEFORE";
    table.ADD({entry.tag, fmt::to_string(entry.id), fmt::to_string(entry.first), fmt::to_string(entry.last),
               fmt::to_string(entry.RECORDS()), fmt::to_string(entry.record_words),
               entry.lies_in_file ? fmt::to_string(entry.BYTES()) : "-", holds});
  }
  return fmt::format("\nBlocks (directory of version {}.0)\n", directory.version) + table.TEXT();
}

std::string counts_text(const T_INSPECTION& inspection) {
  if (!inspection.counts) return "";
  T_TEXT_TABLE table({"", "<"});
  const auto add = [&table](std::string value, std::string_view meaning) {
    table.ADD({std::move(value), std::string(meaning)});
  };
  for (const T_COUNT& count : COUNTS) add(fmt::to_string((*inspection.counts).*count.count), count.meaning);
  add(inspection.counts->KEEP_POINTS ? "yes" : "no", "repeated points are kept in all lanes");
  if (inspection.class_definitions)
    add(fmt::to_string(*inspection.class_definitions), "lane definitions of a vehicle class");
  if (inspection.has_axle_lists) add(*inspection.has_axle_lists ? "yes" : "no", "axle lists");
  return "\nCounts\n" + table.TEXT();
}

std::string lanes_text(const T_INSPECTION& inspection) {
  if (!inspection.lanes) return "";
  T_TEXT_TABLE table({"lane", "points", "from", "to", "entries", "spread rows", "<direction",
                      "<repeated points", "<straddles"});
  std::int32_t number = 0;
  for (const search::T_LANE& lane : *inspection.lanes) {
    const bool has_points = !lane.POINT_X.empty();
    const bool keeps = lane.LANE_KEEP_POINTS || inspection.counts->KEEP_POINTS;
    const std::size_t repeated = repeated_points(lane);
    table.ADD(
        {fmt::to_string(++number), fmt::to_string(lane.LANE_STATIONS),
         has_points ? fmt::format("{:.3f}", lane.POINT_X.front()) : "-",
         has_points ? fmt::format("{:.3f}", lane.POINT_X.back()) : "-", fmt::to_string(lane.N_TRANSVERSE),
         fmt::to_string(lane.SPREAD_TABLE.size()), std::string(direction_text(lane.LANE_DIRECTION)),
         repeated == 0 ? "none" : fmt::format("{}, {}", repeated, keeps ? "kept" : "dropped"),
         lane.IS_STRADDLE
             ? fmt::format("{} and {}, {} planes", lane.STRADDLE_LEFT, lane.STRADDLE_RIGHT, lane.N_PLANE())
             : "-"});
  }
  return "\nLanes\n" + table.TEXT();
}

std::string vehicle_text(const T_NAMED_VEHICLE& named) {
  const search::T_VEHICLE& vehicle = named.vehicle;
  const search::T_VEHICLE_PARAMETERS parameters = search::VEHICLE_PARAMETERS(vehicle);
  std::string text = fmt::format("  class {}, group {}, code {}{}{}\n", vehicle.VEH_CLASS, vehicle.VEH_GROUP,
                                 vehicle.VEHICLE_CODE, named.name.empty() ? "" : ": ", named.name);
  if (vehicle.VEHICLE_CODE != search::BS_5400_VEHICLE)
    return text + "    not searched: the library searches vehicles of code 20\n";
  const search::T_HA_CURVE& curve = parameters.HA_CURVE;
  const std::array<double, 5> spacings = inner_axle_spacings(parameters);
  text += fmt::format(
      "    HA  {:.5g} kN/m up to a length of {:.5g}, then {:.5g} (1/L)^{:.5g}, "
      "at least {:.5g}; KEL {:.5g} kN\n",
      curve.HA_W0, curve.HA_L0, curve.HA_K, curve.HA_P, curve.HA_WMIN, parameters.KEL_LOAD);
  return text + fmt::format(
                    "    HB  four axles of {:.5g} kN, {:.5g} apart in a bogie\n"
                    "        inner axles {:.5g} apart, by type\n",
                    parameters.HB_LOAD, parameters.HB_S, fmt::join(spacings, ", "));
}

std::string vehicles_text(const T_INSPECTION& inspection) {
  if (!inspection.vehicles) return "";
  std::string text = "\nVehicles\n";
  for (const T_NAMED_VEHICLE& vehicle : *inspection.vehicles) text += vehicle_text(vehicle);
  return inspection.vehicles->empty() ? text + "  none\n" : text;
}

/// The loaded lanes of a combination: "lane 1 HA x 1.0000, lane 2 ...".
std::string combination_text(std::size_t number, const std::vector<T_LANE_LOAD>& loads, bool with_class) {
  constexpr std::size_t INDENT = 10;
  std::vector<std::string> pieces;
  pieces.reserve(loads.size());
  for (const T_LANE_LOAD& load : loads) {
    pieces.push_back(fmt::format("lane {} {}{} x {:.4f}", load.lane, SUB_CASE_NAME(load.sub_case),
                                 with_class ? fmt::format(" of class {}", load.veh_class) : "", load.factor));
  }
  if (pieces.empty()) pieces.emplace_back("all lanes empty");
  std::string text;
  for (const std::string& line : WRAP(pieces, ", ", TEXT_WIDTH - INDENT))
    text += fmt::format("{:>{}}  {}\n", text.empty() ? fmt::to_string(number) : "", INDENT - 2, line);
  return text;
}

std::string cases_text(const T_INSPECTION& inspection) {
  if (!inspection.cases) return "";
  const std::vector<T_NAMED_VEHICLE>& vehicles = *inspection.vehicles;
  const bool with_class = std::any_of(vehicles.begin(), vehicles.end(), [&](const T_NAMED_VEHICLE& other) {
    return other.vehicle.VEH_CLASS != vehicles.front().vehicle.VEH_CLASS;
  });
  std::string text = "\nMoving load cases\n";
  for (const T_CASE& mv_case : *inspection.cases) {
    text += fmt::format("  case {}, {} combination{}\n", mv_case.number, mv_case.combinations,
                        mv_case.combinations == 1 ? "" : "s");
    std::size_t number = 0;
    for (const auto& loads : mv_case.shown) text += combination_text(++number, loads, with_class);
    const std::size_t left = static_cast<std::size_t>(mv_case.combinations) - mv_case.shown.size();
    if (left > 0) text += fmt::format("          and {} more; --all shows them\n", left);
  }
  return inspection.cases->empty() ? text + "  none\n" : text;
}

std::string element_files_text(const T_INSPECTION& inspection) {
  T_TEXT_TABLE table(
      {"<file", "<holds", "elements", "records each", "words each", "elements per file", "bytes"});
  bool has_files = false;
  for (const T_RESULT_POINTS& points : inspection.results) {
    for (const T_ELEMENT_FILE& file : points.files) {
      has_files = true;
      table.ADD({"..." + file.name_end, std::string(points.kind->name), fmt::to_string(file.elements),
                 fmt::to_string(inspection.counts->N_UNIT_LOAD), fmt::to_string(points.record_words),
                 fmt::to_string(points.elements_per_file), fmt::to_string(file.bytes)});
    }
  }
  return has_files ? "\nElement files\n" + table.TEXT() : "";
}

/// The order in which modelkit writes them.
constexpr std::string_view BEAM_ITEMS_TEXT =
    "  Items of a beam, as movload names them: at its start 1 axial force, 2 shear sideways, 3 shear,\n"
    "  4 torsion, 5 moment, 6 moment sideways; so too at 1/4 from 7, at 1/2 from 13, at 3/4 from 19, at\n"
    "  its end from 25. From 31 four stresses at each: top left and right, bottom left and right.\n";

std::string results_text(const T_INSPECTION& inspection) {
  if (!inspection.counts) return "";
  T_TEXT_TABLE table({"<--kind", "<from", "<--item", "<--id"});
  for (const T_RESULT_POINTS& points : inspection.results) {
    const char* const from = points.IS_IN_ELEMENT_FILES() ? "files" : "block";
    table.ADD({std::string(points.kind->name), fmt::format("{} {}", from, points.tag),
               fmt::format("1 to {}", points.items), points.IDS_IN_WORDS()});
  }
  std::string text =
      "\nResults to ask for\n" + (inspection.results.empty() ? std::string("  none\n") : table.TEXT());
  if (std::ranges::any_of(inspection.results, [](const auto& points) { return points.kind->name == "beam"; }))
    text += BEAM_ITEMS_TEXT;
  return text;
}

// ---------------------------------------------------------------------------------------------------- JSON

ordered_json directory_json(const T_DIRECTORY& directory) {
  if (directory.version == 0) return nullptr;
  ordered_json blocks = ordered_json::array();
  for (const T_DIRECTORY_ENTRY& entry : directory.entries) {
    blocks.push_back({{"tag", entry.tag},
                      {"id", entry.id},
                      {"first_record", entry.first},
                      {"last_record", entry.last},
                      {"record_words", entry.record_words},
                      {"records", entry.RECORDS()},
                      {"in_file", entry.lies_in_file}});
  }
  return {{"version", directory.version}, {"headers", directory.headers}, {"blocks", std::move(blocks)}};
}

ordered_json counts_json(const T_INSPECTION& inspection) {
  if (!inspection.counts) return nullptr;
  ordered_json json;
  for (const T_COUNT& count : COUNTS) json[std::string(count.key)] = (*inspection.counts).*count.count;
  json["keep_points"] = inspection.counts->KEEP_POINTS;
  json["class_definitions"] = nullptr;
  if (inspection.class_definitions) json["class_definitions"] = *inspection.class_definitions;
  json["axle_lists"] = nullptr;
  if (inspection.has_axle_lists) json["axle_lists"] = *inspection.has_axle_lists;
  return json;
}

ordered_json lanes_json(const T_INSPECTION& inspection) {
  if (!inspection.lanes) return nullptr;
  ordered_json lanes = ordered_json::array();
  std::int32_t number = 0;
  for (const search::T_LANE& lane : *inspection.lanes) {
    ordered_json json{{"lane", ++number},
                      {"points", lane.LANE_STATIONS},
                      {"repeated_points", repeated_points(lane)},
                      {"from", nullptr},
                      {"to", nullptr},
                      {"transverse_entries", lane.N_TRANSVERSE},
                      {"entries_per_plane", lane.N_PER_PLANE},
                      {"planes", lane.IS_STRADDLE ? lane.N_PLANE() : 1},
                      {"spread_rows", lane.SPREAD_TABLE.size()},
                      {"direction", direction_text(lane.LANE_DIRECTION)},
                      {"keep_points", lane.LANE_KEEP_POINTS},
                      {"straddles", nullptr}};
    if (!lane.POINT_X.empty()) {
      json["from"] = lane.POINT_X.front();
      json["to"] = lane.POINT_X.back();
    }
    if (lane.IS_STRADDLE) json["straddles"] = {lane.STRADDLE_LEFT, lane.STRADDLE_RIGHT};
    lanes.push_back(std::move(json));
  }
  return lanes;
}

ordered_json vehicles_json(const T_INSPECTION& inspection) {
  if (!inspection.vehicles) return nullptr;
  ordered_json vehicles = ordered_json::array();
  for (const T_NAMED_VEHICLE& named : *inspection.vehicles) {
    const search::T_VEHICLE_PARAMETERS parameters = search::VEHICLE_PARAMETERS(named.vehicle);
    const search::T_HA_CURVE& curve = parameters.HA_CURVE;
    vehicles.push_back({{"name", named.name},
                        {"class", named.vehicle.VEH_CLASS},
                        {"group", named.vehicle.VEH_GROUP},
                        {"code", named.vehicle.VEHICLE_CODE},
                        {"searched", named.vehicle.VEHICLE_CODE == search::BS_5400_VEHICLE},
                        {"ha",
                         {{"w0", SHORT_DECIMAL(curve.HA_W0)},
                          {"l0", SHORT_DECIMAL(curve.HA_L0)},
                          {"k", SHORT_DECIMAL(curve.HA_K)},
                          {"p", SHORT_DECIMAL(curve.HA_P)},
                          {"wmin", SHORT_DECIMAL(curve.HA_WMIN)},
                          {"kel", SHORT_DECIMAL(parameters.KEL_LOAD)}}},
                        {"hb",
                         {{"axle_load", SHORT_DECIMAL(parameters.HB_LOAD)},
                          {"bogie_axle_spacing", SHORT_DECIMAL(parameters.HB_S)},
                          {"inner_axle_spacings", inner_axle_spacings(parameters)}}}});
  }
  return vehicles;
}

ordered_json cases_json(const T_INSPECTION& inspection) {
  if (!inspection.cases) return nullptr;
  ordered_json cases = ordered_json::array();
  for (const T_CASE& mv_case : *inspection.cases) {
    ordered_json shown = ordered_json::array();
    for (const auto& loads : mv_case.shown) {
      ordered_json lanes = ordered_json::array();
      for (const T_LANE_LOAD& load : loads) {
        lanes.push_back({{"lane", load.lane},
                         {"class", load.veh_class},
                         {"sub_case", load.sub_case},
                         {"carries", SUB_CASE_NAME(load.sub_case)},
                         {"factor", SHORT_DECIMAL(static_cast<float>(load.factor))}});
      }
      shown.push_back(std::move(lanes));
    }
    cases.push_back({{"case", mv_case.number},
                     {"combination_count", mv_case.combinations},
                     {"combinations", std::move(shown)}});
  }
  return cases;
}

ordered_json element_files_json(const T_INSPECTION& inspection) {
  ordered_json files = ordered_json::array();
  for (const T_RESULT_POINTS& points : inspection.results) {
    for (const T_ELEMENT_FILE& file : points.files) {
      files.push_back({{"file", inspection.file.file_name + file.name_end},
                       {"kind", points.kind->name},
                       {"bytes", file.bytes},
                       {"elements", file.elements},
                       {"elements_per_file", points.elements_per_file},
                       {"record_words", points.record_words}});
    }
  }
  return files;
}

ordered_json results_json(const T_INSPECTION& inspection) {
  ordered_json results = ordered_json::array();
  for (const T_RESULT_POINTS& points : inspection.results) {
    const bool is_in_block = !points.IS_IN_ELEMENT_FILES();
    ordered_json json{{"kind", points.kind->name}, {"result_kind", points.kind->result_kind},
                      {"block", nullptr},          {"items", points.items},
                      {"last_id", nullptr},        {"ids", nullptr}};
    if (is_in_block) json["block"] = points.tag;
    if (points.listed) {
      json["ids"] = points.ids;
    } else {
      json["last_id"] = points.runs.empty() ? 0 : points.runs.back().last;
    }
    results.push_back(std::move(json));
  }
  return results;
}

}  // namespace

std::string INSPECTION_TEXT(const T_INSPECTION& inspection) {
  std::string volumes = inspection.volumes ? VOLUMES_TEXT(*inspection.volumes) : "";
  if (inspection.file.file_name.empty()) return volumes;
  return fmt::format("{}: {} bytes, analysis code {}\n", inspection.file.file_name,
                     inspection.directory.file_bytes, inspection.file.analysis_code) +
         directory_text(inspection.directory) + counts_text(inspection) + lanes_text(inspection) +
         vehicles_text(inspection) + cases_text(inspection) + element_files_text(inspection) +
         results_text(inspection) + (volumes.empty() ? "" : "\n" + volumes);
}

std::string INSPECTION_JSON(const T_INSPECTION& inspection) {
  ordered_json volumes;
  if (inspection.volumes) volumes = VOLUMES_JSON(*inspection.volumes);
  ordered_json json{{"file", inspection.file.file_name},
                    {"bytes", inspection.directory.file_bytes},
                    {"analysis_code", inspection.file.analysis_code},
                    {"directory", directory_json(inspection.directory)},
                    {"counts", counts_json(inspection)},
                    {"lanes", lanes_json(inspection)},
                    {"vehicles", vehicles_json(inspection)},
                    {"moving_load_cases", cases_json(inspection)},
                    {"element_files", element_files_json(inspection)},
                    {"results", results_json(inspection)},
                    {"influence_volumes", std::move(volumes)},
                    {"failures", inspection.failures}};
  if (inspection.file.file_name.empty()) json["file"] = json["bytes"] = json["analysis_code"] = nullptr;
  // File names and tags may hold any bytes; what isn't UTF-8 is replaced.
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace tools
