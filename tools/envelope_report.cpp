#include "tools/envelope_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/text_layout.h"

namespace tools {
namespace {

using nlohmann::ordered_json;
using T_LINES = std::vector<std::string>;

// ---------------------------------------------------------------------------------------------------- text

constexpr std::size_t LABEL_WIDTH = 10;
constexpr std::size_t SIDE_WIDTH = 44;
constexpr std::size_t GAP = TEXT_WIDTH - LABEL_WIDTH - 2 * SIDE_WIDTH;

constexpr std::string_view NO_DISTANCE = "(*)";
constexpr std::string_view NO_DISTANCE_MEANING =
    "(*) The library's records number this range and don't tell where it lies.\n";
constexpr std::string_view HB_MEANING =
    "HB: axles from the front; clear of UDL to 25 m beyond the outer ones. Beside it the vehicle's length\n"
    "counts as loaded length too, and there is no KEL.\n";
constexpr std::string_view PLANE_MEANING =
    "Planes: the places of a straddling HB across its lanes; the second and third are these lanes' own.\n";

std::string distance_text(double distance) {
  return fmt::format("{:.3f}", distance);
}

/// " at 115.000 (point 73)"
std::string place_text(const T_PLACE& place) {
  return place.distance ? fmt::format(" at {} (point {})", distance_text(*place.distance), place.point)
                        : fmt::format(" at point {}", place.point);
}

/// Pieces with commas between them, in lines behind an indent.
void append_indented(T_LINES& lines, const std::vector<std::string>& pieces) {
  constexpr std::size_t INDENT = 4;
  for (const std::string& line : WRAP(pieces, ", ", SIDE_WIDTH - INDENT))
    lines.push_back(std::string(INDENT, ' ') + line);
}

/// The loaded stretches as they follow each other along the lane.
T_LINES stretch_pieces(const T_HA_UDL& udl) {
  T_LINES pieces;
  for (const T_STRETCH& stretch : udl.stretches)
    pieces.push_back(fmt::format("{} to {}", distance_text(stretch.start), distance_text(stretch.end)));
  if (!pieces.empty()) return pieces;
  for (const std::int32_t number : udl.range_numbers)
    pieces.push_back(fmt::format("range {} {}", number, NO_DISTANCE));
  return pieces;
}

/// "clear 85.000 (point 182) to 144.600"; in a reverse pass the point stands behind.
std::string clear_text(const T_HB& hb) {
  const bool is_reverse = hb.pass == PASS::REVERSE;
  const std::string point = fmt::format(" (point {})", hb.place.point);
  return fmt::format("clear {}{} to {}{}", distance_text(hb.clear_start), is_reverse ? "" : point,
                     distance_text(hb.clear_end), is_reverse ? point : "");
}

void append_hb(T_LINES& lines, const T_HB& hb) {
  const std::string_view way = hb.pass == PASS::REVERSE ? "drives in reverse" : "drives forward";
  if (!hb.HAS_AXLES()) {
    lines.push_back(fmt::format("type {}, {}", hb.type, way));
    lines.push_back("clear from" + place_text(hb.place).substr(std::string_view(" at").size()));
    return;
  }
  lines.push_back(fmt::format("type {}, {:.5g} m between inner axles", hb.type, hb.inner_spacing));
  lines.push_back(fmt::format("{}; axles of {:.5g} kN at", way, hb.axles[0].load));
  T_LINES axles;
  for (const T_AXLE& axle : hb.axles) axles.push_back(distance_text(axle.distance));
  append_indented(lines, axles);
  lines.push_back(clear_text(hb));
}

/// Where a straddling HB stands across its lanes, and how much HA UDL they have beside it.
void append_straddling(T_LINES& lines, const T_LANE_SIDE& side) {
  constexpr std::int32_t PLANE_OF_FIRST_PARENT = 2;
  const std::int32_t plane = side.loading.hb->plane;
  const std::int32_t parent = plane - PLANE_OF_FIRST_PARENT;
  if (parent == 0 || parent == 1) {
    lines.push_back(
        fmt::format("on plane {}, that of lane {}", plane, side.parents[static_cast<std::size_t>(parent)]));
  } else if (plane != 0) {
    lines.push_back(fmt::format("on plane {}", plane));
  }
  const auto portion = [&side](std::size_t at) {
    return side.parent_portions[at] < 1.0 ? "a third" : "full";
  };
  lines.push_back(fmt::format("UDL {} on lane {}, {} on lane {}", portion(0), side.parents[0], portion(1),
                              side.parents[1]));
}

void append_udl(T_LINES& lines, const T_HA_UDL& udl) {
  const std::string portion = udl.portion < 1.0 ? fmt::format("{:.4f} x ", udl.portion) : "";
  const std::string length = udl.stretches.empty() ? "" : " over " + distance_text(udl.loaded_length);
  lines.push_back(fmt::format("UDL {}{:.3f} kN/m{}", portion, udl.intensity, length));
  append_indented(lines, stretch_pieces(udl));
}

T_LINES lane_lines(const T_LANE_SIDE& side, std::optional<double> kel_load) {
  if (side.carries == CARRIES::NOTHING) return {"-"};
  T_LINES lines;
  if (side.carries == CARRIES::UDL_BESIDE_HB) {
    lines.push_back(
        fmt::format("beside the HB of lane {}, factor {:.4f}", side.straddle_lane, side.loading.factor));
  } else {
    lines.push_back(fmt::format("{}, factor {:.4f}", CARRIES_TEXT(side.carries), side.loading.factor));
  }
  if (side.loading.hb) append_hb(lines, *side.loading.hb);
  if (side.loading.hb && side.carries == CARRIES::STRADDLING_HB) append_straddling(lines, side);
  if (side.loading.udl) append_udl(lines, *side.loading.udl);
  if (side.kel) {
    const std::string load = kel_load ? fmt::format("KEL {} kN", VALUE_TEXT(*kel_load)) : "KEL";
    lines.push_back(load + place_text(*side.kel));
  }
  if (lines.size() == 1)
    lines.emplace_back(side.carries == CARRIES::UDL_BESIDE_HB ? "no UDL" : "adds nothing on this side");
  return lines;
}

/// A label and the two sides, each a block of lines of its own.
std::string side_by_side(const T_LINES& label, const std::array<T_LINES, 2>& sides) {
  const auto line_of = [](const T_LINES& lines, std::size_t at) {
    return at < lines.size() ? lines[at] : std::string();
  };
  std::string text;
  const std::size_t rows = std::max({label.size(), sides[MAXIMUM].size(), sides[MINIMUM].size()});
  for (std::size_t row = 0; row < rows; ++row) {
    std::string line =
        fmt::format("{:<{}}{:<{}}{:{}}{}", line_of(label, row), LABEL_WIDTH, line_of(sides[MAXIMUM], row),
                    SIDE_WIDTH, "", GAP, line_of(sides[MINIMUM], row));
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

bool is_in_files(const T_ENVELOPE_REPORT& report) {
  return report.mv_case >= 1 && report.mv_case <= report.cases;
}

std::string rule() {
  return std::string(TEXT_WIDTH, '-') + '\n';
}

std::array<T_LINES, 2> head_lines(const T_ENVELOPE_REPORT& report) {
  std::array<T_LINES, 2> heads{T_LINES{"MAXIMUM  " + VALUE_TEXT(report.values[MAXIMUM])},
                               T_LINES{"MINIMUM  " + VALUE_TEXT(report.values[MINIMUM])}};
  for (const HOST_SIDE side : {MAXIMUM, MINIMUM}) {
    const std::int32_t vehicle_class = report.sides[side].vehicle_class;
    const std::string& name = report.vehicle_names[side];
    if (vehicle_class == 0) {
      heads[side].push_back(fmt::format("no combination goes {} 0", side == MAXIMUM ? "above" : "below"));
    } else if (report.has_several_classes) {
      // The records name one class alone, that of the last loaded lane.
      heads[side].push_back(fmt::format("vehicle class {} on the last loaded lane", vehicle_class));
    } else {
      heads[side].push_back(
          fmt::format("vehicle class {}{}{}", vehicle_class, name.empty() ? "" : ", ", name));
    }
  }
  return heads;
}

T_LINES lane_label(const T_LANE_SIDE& side) {
  T_LINES label{fmt::format("lane {}", side.lane)};
  if (side.parents[0] != 0) label.push_back(fmt::format("({} and {})", side.parents[0], side.parents[1]));
  return label;
}

// ---------------------------------------------------------------------------------------------------- JSON

ordered_json place_json(const T_PLACE& place) {
  ordered_json json{{"point", place.point}, {"distance", nullptr}};
  if (place.distance) json["distance"] = *place.distance;
  return json;
}

ordered_json udl_json(const T_HA_UDL& udl) {
  ordered_json json{{"intensity", udl.intensity},
                    {"portion", udl.portion},
                    {"loaded_length", nullptr},
                    {"stretches", nullptr},
                    {"range_numbers", udl.range_numbers}};
  if (udl.stretches.empty()) return json;
  json["loaded_length"] = udl.loaded_length;
  json["stretches"] = ordered_json::array();
  for (const T_STRETCH& stretch : udl.stretches)
    json["stretches"].push_back({{"start", stretch.start}, {"end", stretch.end}});
  return json;
}

ordered_json pass_json(PASS pass) {
  return pass == PASS::NONE ? ordered_json() : pass == PASS::FORWARD ? "forward" : "reverse";
}

ordered_json hb_json(const T_HB& hb) {
  ordered_json json{{"type", hb.type}, {"drives", pass_json(hb.pass)}};
  json.update(place_json(hb.place));
  json["plane"] = hb.plane == 0 ? ordered_json() : ordered_json(hb.plane);
  json["inner_axle_spacing"] = nullptr;
  json["axles"] = nullptr;
  json["clear_of_udl"] = nullptr;
  if (hb.HAS_AXLES()) {
    json["inner_axle_spacing"] = hb.inner_spacing;
    json["axles"] = ordered_json::array();
    for (const T_AXLE& axle : hb.axles)
      json["axles"].push_back({{"distance", axle.distance}, {"load", axle.load}});
    json["clear_of_udl"] = {{"start", hb.clear_start}, {"end", hb.clear_end}};
  }
  return json;
}

ordered_json lane_json(const T_LANE_SIDE& side, std::optional<double> kel_load) {
  ordered_json json{{"lane", side.lane},
                    {"straddles", nullptr},
                    {"beside_hb_of_lane", nullptr},
                    {"carries", CARRIES_TEXT(side.carries)},
                    {"factor", side.loading.factor},
                    {"udl", nullptr},
                    {"hb", nullptr},
                    {"kel", nullptr},
                    {"pass", pass_json(side.pass)},
                    {"combination_type", side.combination_type},
                    {"record", side.record},
                    {"plane_records", nullptr}};
  if (side.parents[0] != 0) {
    json["straddles"] = side.parents;
    json["plane_records"] = side.plane_records;
  }
  if (side.straddle_lane != 0) json["beside_hb_of_lane"] = side.straddle_lane;
  if (side.loading.udl) json["udl"] = udl_json(*side.loading.udl);
  if (side.loading.hb) json["hb"] = hb_json(*side.loading.hb);
  if (side.kel) {
    json["kel"] = {{"load", nullptr}};
    if (kel_load) json["kel"]["load"] = *kel_load;
    json["kel"].update(place_json(*side.kel));
  }
  return json;
}

ordered_json side_json(const T_ENVELOPE_REPORT& report, HOST_SIDE side) {
  ordered_json lanes = ordered_json::array();
  for (const T_LANE_SIDE& lane : report.sides[side].lanes) lanes.push_back(lane_json(lane, report.kel_load));
  ordered_json json{{"value", nullptr},
                    {"governed", report.sides[side].vehicle_class != 0},
                    {"vehicle_class", report.sides[side].vehicle_class},
                    {"vehicle_name", report.vehicle_names[side]},
                    {"lanes", std::move(lanes)}};
  if (report.searched) json["value"] = report.values[side];
  return json;
}

}  // namespace

std::string ENVELOPE_TEXT(const T_ENVELOPE_REPORT& report) {
  std::string text = fmt::format("{}: {} {}, item {} ({})\n", report.file.file_name, report.kind->name,
                                 report.id, report.item, RESULT_MEANING(*report.kind, report.item));
  if (report.volumes) {
    text += "Responses: influence volumes " + FIRST_VOLUME(report.volumes->base);
    if (!report.volumes->included.empty())
      text += " and the included " + FIRST_VOLUME(report.volumes->included);
    text += '\n';
  }
  if (!report.searched) return text + "Nothing was searched.\n";
  text += is_in_files(report)
              ? fmt::format("Moving load case {} of {}, {} combination{}\n\n", report.mv_case, report.cases,
                            report.combinations, report.combinations == 1 ? "" : "s")
              : fmt::format("Moving load case {}: not in the files\n\n", report.mv_case);
  text += side_by_side({}, head_lines(report));
  if (!report.IS_GOVERNED()) return text;
  const std::vector<T_LANE_SIDE>& max_lanes = report.sides[MAXIMUM].lanes;
  const std::vector<T_LANE_SIDE>& min_lanes = report.sides[MINIMUM].lanes;
  for (std::size_t lane = 0; lane < max_lanes.size(); ++lane) {
    text +=
        rule() + side_by_side(lane_label(max_lanes[lane]), {lane_lines(max_lanes[lane], report.kel_load),
                                                            lane_lines(min_lanes[lane], report.kel_load)});
  }
  text +=
      rule() +
      "UDL: intensity over the loaded length, and the loaded stretches of the lane. KEL: knife-edge load.\n";
  const auto says = [&text](std::string_view word) { return text.find(word) != std::string::npos; };
  if (says("clear ")) text += HB_MEANING;
  if (says("on plane ")) text += PLANE_MEANING;
  text += "Distances run along each lane from its start; the two values are in the solver's units.\n";
  if (says(NO_DISTANCE)) text += NO_DISTANCE_MEANING;
  return text;
}

std::string ENVELOPE_JSON(const T_ENVELOPE_REPORT& report) {
  const std::string included = report.volumes ? report.volumes->included : "";
  const ordered_json json{{"file", report.file.file_name},
                          {"analysis_code", report.file.analysis_code},
                          {"responses", report.volumes ? "influence volumes" : "block files"},
                          {"included_set", included.empty() ? ordered_json() : ordered_json(included)},
                          {"kind", report.kind->name},
                          {"result_kind", report.kind->result_kind},
                          {"id", report.id},
                          {"item", report.item},
                          {"meaning", RESULT_MEANING(*report.kind, report.item)},
                          {"moving_load_case", report.mv_case},
                          {"combinations", report.combinations},
                          {"searched", report.searched},
                          {"maximum", side_json(report, MAXIMUM)},
                          {"minimum", side_json(report, MINIMUM)},
                          {"notes", report.notes}};
  // File names may hold any bytes; what isn't UTF-8 is replaced.
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace tools
