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

/// Of the records that runs go by: a point at either end of a beam or wall, and two at each station between,
/// where lines may jump.
constexpr std::int32_t USUAL_POINTS = 8;

constexpr std::size_t N_STATIONS = 5;

/// Where the point stands that a record of so many has for one of the five stations; empty where it has none.
std::string station_name(std::size_t station, std::int32_t points) {
  constexpr std::array<std::string_view, N_STATIONS> NAMES{"at the start", "at 1/4", "at 1/2", "at 3/4",
                                                           "at the end"};
  if (points == USUAL_POINTS) return std::string(NAMES[station]);
  if (station == 0) return "at point 1";
  if (station + 1 == N_STATIONS) return fmt::format("at point {}", points);
  const auto pair = static_cast<std::int32_t>(station);
  return pair <= (points - 1) / 2 ? fmt::format("at point {}", 2 * pair) : "";
}

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
    const auto add_at_stations = [this](std::string_view what, std::int32_t first, std::int32_t last,
                                        const std::optional<T_RECORD_SHAPE>& record) {
      for (std::size_t station = 0; station < N_STATIONS; ++station) {
        const std::string point = station_name(station, record ? record->points : USUAL_POINTS);
        for (std::int32_t i = first; i <= last; ++i) {
          ++row_.length;
          add_at(row_.length, point.empty() ? "" : fmt::format("{} {} {}", what, i, point), row_.length);
        }
      }
    };
    add_at_stations("force", 1, 3, forces_);
    add_at_stations("stress", 2, 5, stresses_);
  }

  /// An item of one column; none without a meaning, as where the record has no such point.
  void add_at(std::int32_t number, std::string meaning, std::int32_t position) {
    if (!meaning.empty()) row_.items.push_back({number, std::move(meaning), {position}});
  }

  /// The columns of the items 1 to 30 of beams and walls, of which those between the ends have two.
  static std::vector<std::int32_t> columns_of(std::int32_t item) {
    if (item <= 6) return {item};
    if (item <= 24) return {2 * item - 7, 2 * item - 6};
    return {item + 18};
  }

  /// Items by their places, where the record isn't of the shape that runs go by: so many positions of forces
  /// from `first_item` on, in which points 2 and 3, 4 and 5 and so on stand value by value, the later one
  /// first.
  void add_pairs(std::int32_t first_position, std::int32_t positions, std::int32_t per_point,
                 std::int32_t first_item) {
    row_.is_by_place = true;
    for (std::int32_t at = 0; per_point > 0 && at < positions; ++at) {
      const std::int32_t slot = at / per_point;
      const std::int32_t pair = slot + slot % 2;  // the even point of the two
      const bool is_paired = pair > 0 && pair < forces_->points;
      const std::int32_t in_pair = at - (pair - 1) * per_point;
      const std::int32_t point = is_paired ? pair + 1 - in_pair % 2 : slot + 1;
      const std::int32_t item = first_item + (is_paired ? in_pair / 2 : at % per_point);
      const bool is_stored = point <= forces_->points && item <= forces_->items;
      add_at(first_position + at, is_stored ? fmt::format("force {} at point {}", item, point) : "",
             first_position + at);
    }
  }

  void make_beam() {
    constexpr std::int32_t FORCE_ITEMS = 30;
    constexpr std::int32_t FORCE_POSITIONS = 48;
    constexpr std::int32_t STRESSES = 4;
    constexpr std::int32_t FIRST_STRESS = 4;  // of the record's items
    row_.force_positions = FORCE_POSITIONS;
    row_.length = stresses_ ? 68 : FORCE_POSITIONS;
    if (forces_ && *forces_ != T_RECORD_SHAPE{USUAL_POINTS, 6}) {
      add_pairs(1, FORCE_POSITIONS, forces_->items, 1);
    } else {
      for (std::int32_t item = 1; item <= FORCE_ITEMS; ++item)
        row_.items.push_back({item, BEAM_ITEM_MEANING(item), columns_of(item)});
    }
    for (std::int32_t place = 0; place < row_.length - FORCE_POSITIONS; ++place) {
      const std::int32_t item = FORCE_ITEMS + 1 + place;
      const std::int32_t position = FORCE_POSITIONS + 1 + place;
      const std::string point = station_name(static_cast<std::size_t>(place / STRESSES), stresses_->points);
      std::string meaning = BEAM_ITEM_MEANING(item);
      if (stresses_->points != USUAL_POINTS)
        meaning = point.empty() ? "" : fmt::format("stress {} {}", FIRST_STRESS + place % STRESSES, point);
      add_at(row_.is_by_place ? position : item, std::move(meaning), position);
    }
  }

  void make_wall() {
    constexpr std::int32_t ITEMS = 105;
    constexpr std::int32_t FORCES = 30;  // components, as the library numbers them
    constexpr std::int32_t FIRST_STRESS = 46;
    constexpr std::int32_t FORCE_POSITIONS = 72;
    constexpr std::array<std::int32_t, N_STATIONS> FIRST_PARTS{49, 52, 58, 64, 70};  // positions, by station
    row_.force_positions = FORCE_POSITIONS;
    row_.length = stresses_ ? 132 : FORCE_POSITIONS;
    if (forces_ && forces_->points != USUAL_POINTS) {
      add_pairs(1, 48, 6, 1);
      add_pairs(49, 24, 3, 7);
      for (std::int32_t place = 0; place < row_.length - FORCE_POSITIONS; ++place)
        add_wall_stress(FORCE_POSITIONS + 1 + place, place);
      return;
    }
    for (std::int32_t item = 1; item <= ITEMS; ++item) {
      const auto [component, part] = kernel::SPLIT_WALL_ITEM(item);
      if (component > FORCES) {
        if (stresses_) add_wall_stress(item, component - FIRST_STRESS);
        continue;
      }
      const auto station = static_cast<std::size_t>((component - 1) / 6);
      const std::string at = station_name(station, USUAL_POINTS);
      const std::int32_t force = (component - 1) % 6 + 1;
      std::vector<std::int32_t> positions = columns_of(component);
      std::string meaning = fmt::format("force {} {}", force, at);
      if (part > 0) {
        const auto columns = static_cast<std::int32_t>(positions.size());
        for (std::int32_t c = 0; c < columns; ++c)
          positions[static_cast<std::size_t>(c)] = FIRST_PARTS[station] + (part - 1) * columns + c;
        meaning = fmt::format("force {}, part {}, {}", force, part, at);
      }
      row_.items.push_back({item, std::move(meaning), std::move(positions)});
    }
  }

  void add_wall_stress(std::int32_t number, std::int32_t place) {
    constexpr std::array<std::int32_t, 12> STRESS_ITEMS{5, 6, 7, 8, 12, 13, 14, 15, 16, 17, 18, 19};
    const auto at = static_cast<std::size_t>(place);
    const std::string point = station_name(at / STRESS_ITEMS.size(), stresses_->points);
    add_at(number,
           point.empty() ? "" : fmt::format("stress {} {}", STRESS_ITEMS[at % STRESS_ITEMS.size()], point),
           row_.force_positions + 1 + place);
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
  std::optional<T_RECORD_SHAPE> first = add_record(store, kind.lists[0], row);
  std::optional<T_RECORD_SHAPE> second =
      kind.lists[1] != kind.lists[0] ? add_record(store, kind.lists[1], row) : std::nullopt;
  check_part(store, row);
  check_size(row);
  if (is_composite)  // a record has the points of all parts
    for (std::optional<T_RECORD_SHAPE>* record : {&first, &second})
      if (*record) (*record)->points /= store.PRIMARY().N_COMPOSITE_PARTS;
  // Trusses have forces in either list.
  const bool is_truss = kind.form == ROW_FORM::TRUSS;
  ROW_MAKER(row, is_truss && !first ? second : first, second).MAKE();
  return row;
}

}  // namespace tools
