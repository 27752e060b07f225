#include "tools/influence_report.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numeric>
#include <string_view>

#include "tools/text_layout.h"
#include "tools/volume_report.h"

namespace tools {
namespace {

using nlohmann::ordered_json;

constexpr std::array<std::string_view, 2> FACES{"before", "behind"};

/// A column of the answer.
struct T_VALUE_COLUMN {
  const T_ROW_ITEM* item;
  std::size_t face;  // of an item that may jump

  [[nodiscard]] std::int32_t POSITION() const { return item->positions[face]; }
  [[nodiscard]] bool HAS_FACES() const { return item->positions.size() > 1; }
};

std::vector<T_VALUE_COLUMN> columns_of(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  std::vector<T_VALUE_COLUMN> columns;
  for (const T_ROW_ITEM& item : values.row.items) {
    if (view.item && *view.item != item.number) continue;
    for (std::size_t face = 0; face < item.positions.size(); ++face) columns.push_back({&item, face});
  }
  return columns;
}

std::vector<std::int32_t> loads_of(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  if (!view.loads.empty()) return view.loads;
  std::vector<std::int32_t> loads(static_cast<std::size_t>(values.loads));
  std::iota(loads.begin(), loads.end(), 1);
  return loads;
}

std::int32_t load_id(const T_INFLUENCE_VALUES& values, std::int32_t load) {
  return values.load_ids[static_cast<std::size_t>(load - 1)];
}

// ---------------------------------------------------------------------------------------------------- text

std::string value_text(float value) {
  return VALUE_TEXT(static_cast<double>(value));
}

std::string record_text(const T_STORED_RECORD& record) {
  return fmt::format("{} (category {}, {} point{} of {} item{})", LIST_MEANING(record.list),
                     store::CATEGORY(record.list), record.shape.points, record.shape.points == 1 ? "" : "s",
                     record.shape.items, record.shape.items == 1 ? "" : "s");
}

/// What the id is, and what the sets have of it.
std::string heading(const T_INFLUENCE_VALUES& values) {
  const T_INFLUENCE_ROW& row = values.row;
  std::string text = fmt::format("{} {}", row.kind->name, row.id);
  if (row.part > 0) text += fmt::format(", part {}", row.part);
  text += fmt::format(" ({}) of {}\n", row.kind->meaning, values.paths.base);
  if (!values.nodes.empty()) text += fmt::format("  nodes {}\n", fmt::join(values.nodes, ", "));
  for (const T_STORED_RECORD& record : row.records) text += fmt::format("  {}\n", record_text(record));
  if (row.is_by_place)
    text += "  not of the shape that runs go by: items are numbered by their place in the row\n";
  for (std::size_t s = 0; s < values.sets.size(); ++s) {
    const T_VOLUME_SET& set = values.sets[s];
    text += "  ";
    if (values.sets.size() > 1) text += SET_IN_WORDS(set) + ": ";
    text += UNIT_LOADS_IN_WORDS(set);
    const auto held = [s](const T_STORED_RECORD& record) -> bool { return record.held[s]; };
    if (std::ranges::none_of(row.records, held)) text += "; it has nothing of this id: 0 throughout";
    text += '\n';
  }
  return text + '\n';
}

std::string face_text(const T_VALUE_COLUMN& column) {
  return column.HAS_FACES() ? std::string(FACES[column.face]) : "";
}

bool any_has_faces(const std::vector<T_VALUE_COLUMN>& columns) {
  return std::ranges::any_of(columns, &T_VALUE_COLUMN::HAS_FACES);
}

/// The cells that name a column.
std::vector<std::string> name_cells(const T_VALUE_COLUMN& column, bool with_faces) {
  std::vector<std::string> cells{fmt::to_string(column.item->number), column.item->meaning};
  if (with_faces) cells.push_back(face_text(column));
  return cells;
}

std::vector<std::string> name_headings(bool with_faces) {
  std::vector<std::string> headings{"item", "<what"};
  if (with_faces) headings.emplace_back("<face");
  return headings;
}

constexpr std::string_view FACES_TEXT = "  faces: the load just before the point, and just behind it\n";

std::string rest_text(std::size_t rows, std::size_t shown) {
  return rows > shown ? fmt::format("  and {} more; --all shows them, --csv and --json too\n", rows - shown)
                      : "";
}

/// The values of an item, load by load.
std::string item_text(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  constexpr std::size_t FIRST_FEW = 30;
  const std::vector<T_VALUE_COLUMN> columns = columns_of(values, view);
  const std::vector<std::int32_t> loads = loads_of(values, view);
  const bool with_ids =
      std::ranges::any_of(loads, [&](std::int32_t load) { return load_id(values, load) != load; });
  std::vector<std::string> headings{"load"};
  if (with_ids) headings.emplace_back("solver's id");
  for (const T_VALUE_COLUMN& column : columns)
    headings.push_back(column.HAS_FACES() ? face_text(column) : "value");
  T_TEXT_TABLE table(headings);
  const std::size_t shown = view.all ? loads.size() : std::min(FIRST_FEW, loads.size());
  for (std::size_t i = 0; i < shown; ++i) {
    std::vector<std::string> cells{fmt::to_string(loads[i])};
    if (with_ids) cells.push_back(fmt::to_string(load_id(values, loads[i])));
    for (const T_VALUE_COLUMN& column : columns)
      cells.push_back(value_text(values.AT(loads[i], column.POSITION())));
    table.ADD(std::move(cells));
  }
  std::string text =
      fmt::format("Item {}: {}\n", columns.front().item->number, columns.front().item->meaning);
  if (any_has_faces(columns)) text += FACES_TEXT;
  return text + table.TEXT() + rest_text(loads.size(), shown);
}

/// The rows of a table of items: as many as a terminal has patience for, and none of 0 throughout.
struct T_SHOWN_ITEMS {
  std::vector<T_VALUE_COLUMN> columns;
  bool with_faces = false;
  std::string rest;  // what is said of the others

  T_SHOWN_ITEMS(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
    constexpr std::size_t MOST_ROWS = 150;
    std::size_t zeros = 0;
    std::size_t more = 0;
    const std::vector<std::int32_t> loads = loads_of(values, view);
    for (const T_VALUE_COLUMN& column : columns_of(values, view)) {
      const auto is_zero = [&](std::int32_t load) { return values.AT(load, column.POSITION()) == 0; };
      if (!view.all && std::ranges::all_of(loads, is_zero))
        ++zeros;
      else if (view.all || columns.size() < MOST_ROWS)
        columns.push_back(column);
      else
        ++more;
    }
    with_faces = std::ranges::any_of(columns, &T_VALUE_COLUMN::HAS_FACES);
    if (with_faces) rest += FACES_TEXT;
    if (zeros > 0) rest += fmt::format("  {} rows of 0 throughout are left out; --all shows them\n", zeros);
    if (more > 0) rest += fmt::format("  and {} more; --all shows them, --csv and --json too\n", more);
  }
};

/// The values of all items under some loads, a few loads side by side.
std::string loads_text(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  constexpr std::size_t SIDE_BY_SIDE = 4;
  const T_SHOWN_ITEMS items(values, view);
  std::string text;
  for (std::size_t first = 0; first < view.loads.size(); first += SIDE_BY_SIDE) {
    const std::size_t end = std::min(first + SIDE_BY_SIDE, view.loads.size());
    std::vector<std::string> headings = name_headings(items.with_faces);
    for (std::size_t i = first; i < end; ++i) headings.push_back(fmt::format("load {}", view.loads[i]));
    T_TEXT_TABLE table(headings);
    for (const T_VALUE_COLUMN& column : items.columns) {
      std::vector<std::string> cells = name_cells(column, items.with_faces);
      for (std::size_t i = first; i < end; ++i)
        cells.push_back(value_text(values.AT(view.loads[i], column.POSITION())));
      table.ADD(std::move(cells));
    }
    text += (text.empty() ? "" : "\n") + table.TEXT();
  }
  return text + items.rest;
}

/// Of each item the greatest and the least value; of one that somewhere is no number, that in place of both.
std::string overview_text(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  const T_SHOWN_ITEMS items(values, view);
  std::vector<std::string> headings = name_headings(items.with_faces);
  headings.insert(headings.end(), {"greatest", "at load", "least", "at load"});
  T_TEXT_TABLE table(headings);
  for (const T_VALUE_COLUMN& column : items.columns) {
    std::int32_t greatest = 1;
    std::int32_t least = 1;
    const auto at = [&](std::int32_t load) { return values.AT(load, column.POSITION()); };
    for (std::int32_t load = 1; load <= values.loads; ++load) {
      if (std::isnan(at(load))) {
        greatest = least = load;
        break;
      }
      if (at(load) > at(greatest)) greatest = load;
      if (at(load) < at(least)) least = load;
    }
    std::vector<std::string> cells = name_cells(column, items.with_faces);
    cells.insert(cells.end(), {value_text(at(greatest)), fmt::to_string(greatest), value_text(at(least)),
                               fmt::to_string(least)});
    table.ADD(std::move(cells));
  }
  return table.TEXT() + items.rest +
         "  --item N shows an item load by load, --load L the items under a load; --csv and --json all "
         "values\n";
}

// ----------------------------------------------------------------------------------------------------- CSV

std::string csv_name(const T_VALUE_COLUMN& column) {
  return fmt::format("item_{}{}{}", column.item->number, column.HAS_FACES() ? "_" : "", face_text(column));
}

// ---------------------------------------------------------------------------------------------------- JSON

ordered_json value_json(float value) {
  if (!std::isfinite(value)) return nullptr;
  return SHORT_DECIMAL(value);
}

ordered_json sets_json(const T_INFLUENCE_VALUES& values) {
  ordered_json sets = ordered_json::array();
  for (std::size_t s = 0; s < values.sets.size(); ++s) {
    const T_VOLUME_SET& set = values.sets[s];
    const auto held = [s](const T_STORED_RECORD& record) -> bool { return record.held[s]; };
    sets.push_back({{"base", set.base_path},
                    {"included", set.is_included},
                    {"first_load", set.first_load},
                    {"loads", set.load_ids.size()},
                    {"has_values", std::ranges::any_of(values.row.records, held)}});
  }
  return sets;
}

}  // namespace

std::string INFLUENCE_TEXT(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  const std::string text = heading(values);
  if (values.loads == 0) return text + "  no values\n";
  if (view.item) return text + item_text(values, view);
  return text + (view.loads.empty() ? overview_text(values, view) : loads_text(values, view));
}

std::string INFLUENCE_CSV(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  const std::vector<T_VALUE_COLUMN> columns = columns_of(values, view);
  std::string text = "load,load_id";
  for (const T_VALUE_COLUMN& column : columns) text += "," + csv_name(column);
  text += '\n';
  for (const std::int32_t load : loads_of(values, view)) {
    text += fmt::format("{},{}", load, load_id(values, load));
    for (const T_VALUE_COLUMN& column : columns)
      text += fmt::format(",{}", values.AT(load, column.POSITION()));
    text += '\n';
  }
  return text;
}

std::string INFLUENCE_JSON(const T_INFLUENCE_VALUES& values, const T_INFLUENCE_VIEW& view) {
  const T_INFLUENCE_ROW& row = values.row;
  const std::vector<std::int32_t> loads = loads_of(values, view);
  ordered_json records = ordered_json::array();
  for (const T_STORED_RECORD& record : row.records)
    records.push_back({{"category", store::CATEGORY(record.list)},
                       {"holds", LIST_MEANING(record.list)},
                       {"points", record.shape.points},
                       {"items", record.shape.items}});
  ordered_json columns = ordered_json::array();
  ordered_json rows = ordered_json::array();
  const std::vector<T_VALUE_COLUMN> shown = columns_of(values, view);
  for (const T_VALUE_COLUMN& column : shown) {
    ordered_json json{{"item", column.item->number},
                      {"meaning", column.item->meaning},
                      {"face", nullptr},
                      {"position", column.POSITION()}};
    if (column.HAS_FACES()) json["face"] = face_text(column);
    columns.push_back(std::move(json));
  }
  ordered_json load_ids = ordered_json::array();
  for (const std::int32_t load : loads) {
    load_ids.push_back(load_id(values, load));
    ordered_json of_load = ordered_json::array();
    for (const T_VALUE_COLUMN& column : shown)
      of_load.push_back(value_json(values.AT(load, column.POSITION())));
    rows.push_back(std::move(of_load));
  }
  ordered_json json{{"base", values.paths.base},
                    {"kind", row.kind->name},
                    {"id", row.id},
                    {"part", nullptr},
                    {"nodes", values.nodes},
                    {"sets", sets_json(values)},
                    {"records", std::move(records)},
                    {"row_length", row.length},
                    {"columns", std::move(columns)},
                    {"shape", {loads.size(), shown.size()}},
                    {"loads", loads},
                    {"load_ids", std::move(load_ids)},
                    {"values", std::move(rows)}};
  if (row.part > 0) json["part"] = row.part;
  return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace tools
