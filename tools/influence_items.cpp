#include "tools/influence_items.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kernel/driver.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

using store::LIST;

constexpr std::array<std::string_view, 5> STATIONS{"at the start", "at 1/4", "at 1/2", "at 3/4",
                                                   "at the end"};

/// Makes the items of a row.
class ROW_MAKER {
 public:
  ROW_MAKER(T_INFLUENCE_ROW& row, std::optional<T_RECORD_SHAPE> forces,
            std::optional<T_RECORD_SHAPE> stresses)
      : row_(row), forces_(forces), stresses_(stresses) {}

  void MAKE() {
    switch (row_.kind->form) {
      case ROW_FORM::NODE:
        return make_node();
      case ROW_FORM::STORED:
        return make_stored("value");
      case ROW_FORM::TRUSS:
        return make_truss();
      case ROW_FORM::BEAM:
        return make_beam();
      case ROW_FORM::WALL:
        return make_wall();
      case ROW_FORM::PLATE:
        return make_plate();
      case ROW_FORM::SOLID:
        return make_solid();
      case ROW_FORM::COMPOSITE_BAR:
        return make_composite();
      case ROW_FORM::VIRTUAL_BAR:
        return make_stored("stress");
    }
  }

 private:
  /// An item whose one column is the next position.
  void add(std::string meaning) {
    ++row_.length;
    row_.items.push_back({row_.length, std::move(meaning), {row_.length}});
  }

  void make_node() {
    constexpr std::array<std::string_view, 7> DIRECTIONS{"along x", "along y", "along z", "about x",
                                                         "about y", "about z", "warping"};
    for (std::int32_t item = 1; item <= forces_->items; ++item) {
      const auto at = static_cast<std::size_t>(item - 1);
      add(at < DIRECTIONS.size() ? std::string(DIRECTIONS[at]) : fmt::format("component {}", item));
    }
  }

  void make_truss() {
    for (std::int32_t p = 1; p <= forces_->points; ++p) add(fmt::format("force at point {}", p));
  }

  void make_stored(std::string_view what) {
    for (std::int32_t p = 1; p <= forces_->points; ++p)
      for (std::int32_t i = 1; i <= forces_->items; ++i)
        add(forces_->points == 1 ? fmt::format("{} {}", what, i)
                                 : fmt::format("{} {} at point {}", what, i, p));
  }

  void make_plate() {
    constexpr std::int32_t MOST_POINTS = 5;
    constexpr std::int32_t FORCES = 8;
    constexpr std::array<std::int32_t, 6> STRESS_ITEMS{5, 6, 7, 1, 2, 3};
    if (forces_) {
      const std::int32_t points = forces_->points > 1 ? MOST_POINTS : 1;
      for (std::int32_t p = 1; p <= points; ++p)
        for (std::int32_t i = 1; i <= FORCES; ++i) add(fmt::format("force {} at point {}", i, p));
    }
    if (!stresses_) return;
    for (std::int32_t p = 1; p <= std::min(stresses_->points, MOST_POINTS); ++p)
      for (const std::int32_t i : STRESS_ITEMS) add(fmt::format("stress {} at point {}", i, p));
  }

  void make_solid() {
    constexpr std::int32_t POINTS = 9;
    for (std::int32_t p = 2; p <= POINTS; ++p)
      for (std::int32_t i = 1; i <= 3; ++i) add(fmt::format("force {} at point {}", i, p));
    for (std::int32_t p = 1; stresses_ && p <= POINTS; ++p)
      for (std::int32_t i = 1; i <= 6; ++i) add(fmt::format("stress {} at point {}", i, p));
  }

  void make_composite() {
    for (const std::string_view station : STATIONS)
      for (std::int32_t i = 1; i <= 3; ++i) add(fmt::format("force {} {}", i, station));
    for (const std::string_view station : STATIONS)
      for (std::int32_t i = 2; i <= 5; ++i) add(fmt::format("stress {} {}", i, station));
  }

  /// The columns of the items 1 to 30 of beams and walls, of which those between the ends have two, and of
  /// the stresses of beams behind them.
  static std::vector<std::int32_t> columns_of(std::int32_t item) {
    if (item <= 6) return {item};
    if (item <= 24) return {2 * item - 7, 2 * item - 6};
    return {item + 18};
  }

  void make_beam() {
    constexpr std::int32_t FORCE_ITEMS = 30;
    constexpr std::int32_t ITEMS = 50;
    row_.length = stresses_ ? 68 : 48;
    for (std::int32_t item = 1; item <= (stresses_ ? ITEMS : FORCE_ITEMS); ++item) {
      row_.items.push_back({item, BEAM_ITEM_MEANING(item), columns_of(item)});
    }
  }

  void make_wall() {
    constexpr std::int32_t ITEMS = 105;
    constexpr std::int32_t FORCES = 30;  // components, as the library numbers them
    constexpr std::int32_t FIRST_STRESS = 46;
    constexpr std::int32_t STRESSES = 12;
    constexpr std::array<std::int32_t, 5> FIRST_PARTS{49, 52, 58, 64, 70};  // positions, by station
    row_.length = stresses_ ? 132 : 72;
    for (std::int32_t item = 1; item <= ITEMS; ++item) {
      const auto [component, part] = kernel::SPLIT_WALL_ITEM(item);
      if (component > FORCES) {
        const std::int32_t place = component - FIRST_STRESS;
        if (stresses_)
          row_.items.push_back({item,
                                fmt::format("stress {} {}", place % STRESSES + 1,
                                            STATIONS[static_cast<std::size_t>(place / STRESSES)]),
                                {73 + place}});
        continue;
      }
      const auto station = static_cast<std::size_t>((component - 1) / 6);
      const std::int32_t force = (component - 1) % 6 + 1;
      std::vector<std::int32_t> positions = columns_of(component);
      std::string meaning = fmt::format("force {} {}", force, STATIONS[station]);
      if (part > 0) {
        const auto columns = static_cast<std::int32_t>(positions.size());
        for (std::int32_t c = 0; c < columns; ++c)
          positions[static_cast<std::size_t>(c)] = FIRST_PARTS[station] + (part - 1) * columns + c;
        meaning = fmt::format("force {}, part {}, {}", force, part, STATIONS[station]);
      }
      row_.items.push_back({item, std::move(meaning), std::move(positions)});
    }
  }

  T_INFLUENCE_ROW& row_;
  std::optional<T_RECORD_SHAPE> forces_;
  std::optional<T_RECORD_SHAPE> stresses_;
};

/// Adds the record that a list has of the id; gives its shape.
std::optional<T_RECORD_SHAPE> add_record(store::INFLUENCE_STORE& store, LIST list, T_INFLUENCE_ROW& row) {
  const std::int32_t place = store.MAPS().FIND_ROW(list, row.id);
  if (place == 0) return std::nullopt;
  T_STORED_RECORD record{.list = list};
  for (std::size_t set = 0; set < store.SETS().size(); ++set) {
    const store::T_NODE* const node = store.NODE(set, list, place);
    record.held.push_back(node != nullptr && node->VOLUME > 0);
    if (node == nullptr) continue;
    record.shape.points = std::max(record.shape.points, node->VALUES_PER_ITEM);
    record.shape.items = std::max(record.shape.items, node->ITEMS);
  }
  row.records.push_back(record);
  return record.shape;
}

/// No solver writes such a record; a damaged set may claim one.
void check_size(const T_INFLUENCE_ROW& row) {
  constexpr std::int64_t MOST_VALUES = 100'000;
  for (const T_STORED_RECORD& record : row.records) {
    const std::int64_t values = std::int64_t{record.shape.points} * record.shape.items;
    if (values <= MOST_VALUES) continue;
    throw T_TOOL_FAILURE(fmt::format("{} {} has {} points of {} items, too many to be shown", row.kind->name,
                                     row.id, record.shape.points, record.shape.items),
                         "the volumes are damaged: have the solver write them again");
  }
}

void check_part(const store::INFLUENCE_STORE& store, const T_INFLUENCE_ROW& row) {
  const std::int32_t parts = store.PRIMARY().N_COMPOSITE_PARTS;
  if (row.kind->form != ROW_FORM::COMPOSITE_BAR || (row.part >= 1 && row.part <= parts)) return;
  throw T_TOOL_FAILURE(fmt::format("composite bars have no part {}", row.part),
                       fmt::format("give a --part of 1 to {}", parts));
}

}  // namespace

const T_ROW_ITEM* T_INFLUENCE_ROW::ITEM(std::int32_t number) const {
  const auto item = std::ranges::find(items, number, &T_ROW_ITEM::number);
  return item == items.end() ? nullptr : &*item;
}

T_INFLUENCE_ROW MAKE_INFLUENCE_ROW(store::INFLUENCE_STORE& store, const T_KIND& kind, std::int32_t id,
                                   std::int32_t part) {
  const bool is_composite = kind.form == ROW_FORM::COMPOSITE_BAR;
  T_INFLUENCE_ROW row{.kind = &kind, .id = id, .part = is_composite ? part : 0};
  const std::optional<T_RECORD_SHAPE> first = add_record(store, kind.lists[0], row);
  const std::optional<T_RECORD_SHAPE> second =
      kind.lists[1] != kind.lists[0] ? add_record(store, kind.lists[1], row) : std::nullopt;
  check_part(store, row);
  check_size(row);
  // Trusses have forces in either list.
  const bool is_truss = kind.form == ROW_FORM::TRUSS;
  ROW_MAKER(row, is_truss && !first ? second : first, second).MAKE();
  return row;
}

}  // namespace tools
