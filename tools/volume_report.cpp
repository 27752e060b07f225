#include "tools/volume_report.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tools/file_names.h"
#include "tools/result_kinds.h"
#include "tools/text_layout.h"

namespace tools {
namespace {

using nlohmann::ordered_json;

std::string file_of(const std::string& path) {
  return NAME_OF(PATH_OF(path).filename());
}

std::string sets_text(const T_VOLUME_CONTENTS& contents) {
  constexpr std::size_t FIRST_FEW = 6;
  std::string text;
  for (const T_VOLUME_SET& set : contents.sets) {
    if (contents.sets.size() > 1) text += "  " + SET_IN_WORDS(set) + '\n';
    const std::size_t indent = contents.sets.size() > 1 ? 4 : 2;
    const std::string blanks(indent, ' ');
    T_TEXT_TABLE table({"<", "", "<"});
    std::int64_t bytes = 0;
    for (std::size_t i = 0; i < set.volumes.size(); ++i) {
      bytes += set.volumes[i].bytes;
      if (i < FIRST_FEW)
        table.ADD({file_of(set.volumes[i].file_name), fmt::to_string(set.volumes[i].bytes), "bytes"});
    }
    text += table.TEXT(indent);
    if (set.volumes.size() > FIRST_FEW)
      text += fmt::format("{}and {} more, {} bytes in all\n", blanks, set.volumes.size() - FIRST_FEW, bytes);
    text += blanks + UNIT_LOADS_IN_WORDS(set) + '\n';
  }
  return text;
}

std::string shapes_text(const std::vector<T_RECORD_SHAPE>& shapes, std::int32_t T_RECORD_SHAPE::*count) {
  constexpr std::size_t FIRST_FEW = 3;
  std::vector<std::string> words;
  for (const T_RECORD_SHAPE& shape : shapes) {
    const std::string word = fmt::to_string(shape.*count);
    if (words.empty() || words.back() != word) words.push_back(word);
  }
  const bool more = words.size() > FIRST_FEW;
  if (more) words.resize(FIRST_FEW);
  return fmt::format("{}{}", fmt::join(words, ", "), more ? ", ..." : "");
}

std::string lists_text(const T_VOLUME_CONTENTS& contents) {
  if (contents.lists.empty()) return "  no results\n";
  const bool is_merged = contents.sets.size() > 1;
  std::vector<std::string> headings{"category", "<holds", "<--kind", "points", "items", "ids"};
  if (is_merged) headings.insert(headings.end(), {"included", "primary"});
  headings.emplace_back("<--id");
  T_TEXT_TABLE table(headings);
  for (const T_STORED_LIST& list : contents.lists) {
    const std::vector<std::string_view> kinds = LIST_KINDS(list.list);
    std::vector<std::string> cells{fmt::to_string(store::CATEGORY(list.list)),
                                   std::string(LIST_MEANING(list.list)),
                                   kinds.empty() ? "-" : fmt::format("{}", fmt::join(kinds, ", ")),
                                   shapes_text(list.shapes, &T_RECORD_SHAPE::points),
                                   shapes_text(list.shapes, &T_RECORD_SHAPE::items),
                                   fmt::to_string(list.count)};
    if (is_merged)
      for (const std::int64_t held : list.held) cells.push_back(fmt::to_string(held));
    cells.push_back(RUNS_IN_WORDS(list.runs, is_merged ? 1 : 2));
    table.ADD(std::move(cells));
  }
  return table.TEXT();
}

ordered_json runs_json(const std::vector<T_IDS>& runs) {
  ordered_json json = ordered_json::array();
  for (const T_IDS& run : runs) json.push_back({run.first, run.last});
  return json;
}

ordered_json set_json(const T_VOLUME_SET& set) {
  ordered_json volumes = ordered_json::array();
  for (const T_VOLUME& volume : set.volumes)
    volumes.push_back({{"file", volume.file_name}, {"bytes", volume.bytes}});
  return {{"base", set.base_path},         {"included", set.is_included},
          {"volumes", std::move(volumes)}, {"first_load", set.first_load},
          {"loads", set.load_ids.size()},  {"load_id_runs", runs_json(RUNS_OF(set.load_ids))}};
}

ordered_json list_json(const T_STORED_LIST& list) {
  ordered_json shapes = ordered_json::array();
  for (const T_RECORD_SHAPE& shape : list.shapes)
    shapes.push_back({{"points", shape.points}, {"items", shape.items}});
  return {{"category", store::CATEGORY(list.list)},
          {"holds", LIST_MEANING(list.list)},
          {"kinds", LIST_KINDS(list.list)},
          {"records", std::move(shapes)},
          {"ids", list.count},
          {"ids_by_set", list.held},
          {"id_runs", runs_json(list.runs)}};
}

}  // namespace

std::string SET_IN_WORDS(const T_VOLUME_SET& set) {
  return fmt::format("{} set {}", set.is_included ? "included" : "primary", set.base_path);
}

std::string UNIT_LOADS_IN_WORDS(const T_VOLUME_SET& set) {
  if (set.load_ids.empty()) return "no unit loads";
  const std::int32_t last = set.first_load + static_cast<std::int32_t>(set.load_ids.size()) - 1;
  const std::vector<T_IDS> runs = RUNS_OF(set.load_ids);
  const bool same = runs.size() == 1 && runs.front().first == set.first_load;
  return fmt::format("unit loads {} to {}{}", set.first_load, last,
                     same ? "" : ", which the solver calls " + RUNS_IN_WORDS(runs));
}

std::string VOLUMES_TEXT(const T_VOLUME_CONTENTS& contents) {
  std::string text = "Influence volumes\n" + sets_text(contents) + '\n' + lists_text(contents);
  if (contents.composite_parts > 0)
    text += fmt::format("  Composite bars have {} part{} each.\n", contents.composite_parts,
                        contents.composite_parts == 1 ? "" : "s");
  if (contents.virtual_bar_mark > 0)
    text += fmt::format("  Virtual bars have the mark {}.\n", contents.virtual_bar_mark);
  if (contents.elements_with_nodes > 0)
    text += fmt::format("  Of {} elements the nodes are told.\n", contents.elements_with_nodes);
  for (const std::string& note : contents.notes) {
    std::istringstream words("NOTE: " + note);
    std::vector<std::string> pieces;
    for (std::string word; words >> word;) pieces.push_back(word);
    for (const std::string& line : WRAP(pieces, " ", TEXT_WIDTH - 2)) text += "  " + line + '\n';
  }
  return text;
}

ordered_json VOLUMES_JSON(const T_VOLUME_CONTENTS& contents) {
  ordered_json sets = ordered_json::array();
  for (const T_VOLUME_SET& set : contents.sets) sets.push_back(set_json(set));
  ordered_json lists = ordered_json::array();
  for (const T_STORED_LIST& list : contents.lists) lists.push_back(list_json(list));
  return {{"sets", std::move(sets)},
          {"loads", contents.N_LOADS()},
          {"lists", std::move(lists)},
          {"composite_parts", contents.composite_parts},
          {"virtual_bar_mark", contents.virtual_bar_mark},
          {"elements_with_nodes", contents.elements_with_nodes},
          {"notes", contents.notes}};
}

}  // namespace tools
