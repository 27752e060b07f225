#include "tools/influence_items.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <optional>

#include "kernel/driver.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

using store::LIST;

constexpr std::array<LIST, 2> one(LIST list) {
  return {list, list};
}

constexpr std::array<T_STORED_KIND, 14> KINDS{{
    {"disp", "displacement of a node", kernel::RK_DISP, ROW_FORM::NODE, one(LIST::DISP)},
    {"ldisp", "displacement of a node in its local axes", kernel::RK_LDSP, ROW_FORM::NODE, one(LIST::LDISP)},
    {"reac", "reaction of a support node", kernel::RK_REAC, ROW_FORM::NODE, one(LIST::REAC)},
    {"lreac", "reaction of a support node in its local axes", kernel::RK_LRAC, ROW_FORM::NODE,
     one(LIST::LREAC)},
    {"simb", "result of block SIMB", kernel::RK_SIMB, ROW_FORM::STORED, one(LIST::N_32800)},
    {"elink", "force of a link", kernel::RK_ELNK, ROW_FORM::STORED, one(LIST::N_1056)},
    {"nlink", "force of a link", kernel::RK_NLNK, ROW_FORM::STORED, one(LIST::N_1056)},
    {"truss", "result of a truss element", kernel::RK_TRUSS, ROW_FORM::TRUSS, {LIST::N_16416, LIST::N_65568}},
    {"beam", "result of a beam element", kernel::RK_BEAM, ROW_FORM::BEAM, {LIST::N_544, LIST::N_640}},
    {"plate", "result of a plate element", kernel::RK_PLATE, ROW_FORM::PLATE, {LIST::N_4128, LIST::N_4224}},
    {"wall", "result of a wall element", kernel::RK_WALL, ROW_FORM::WALL, {LIST::N_288, LIST::N_384}},
    {"solid", "result of a solid element", 0, ROW_FORM::SOLID, {LIST::N_8224, LIST::N_8320}},
    {"composite", "result of a composite bar", 0, ROW_FORM::COMPOSITE_BAR, {LIST::N_2080, LIST::N_2176}},
    {"virtual", "stress of a virtual bar", 0, ROW_FORM::VIRTUAL_BAR, one(LIST::N_1152)},
}};

constexpr std::array<std::string_view, 5> STATIONS{"at the start", "at 1/4", "at 1/2", "at 3/4",
                                                   "at the end"};

/// Makes the items of a row.
class ROW_MAKER {
 public:
  ROW_MAKER(T_STORED_POINT& point, std::optional<T_RECORD_SHAPE> forces,
            std::optional<T_RECORD_SHAPE> stresses)
      : point_(point), forces_(forces), stresses_(stresses) {}

  void MAKE() {
    switch (point_.kind->form) {
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
    ++point_.row_length;
    point_.items.push_back({point_.row_length, std::move(meaning), {point_.row_length}});
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

  /// The columns of the items 1 to 30 of beams and walls: between the ends they have two.
  static std::vector<std::int32_t> columns_of(std::int32_t item) {
    if (item <= 6) return {item};
    if (item <= 24) return {2 * item - 7, 2 * item - 6};
    return {item + 18};
  }

  void make_beam() {
    constexpr std::int32_t FORCE_ITEMS = 30;
    constexpr std::int32_t ITEMS = 50;
    point_.row_length = stresses_ ? 68 : 48;
    const T_KIND& kind = *FIND_KIND("beam");
    for (std::int32_t item = 1; item <= (stresses_ ? ITEMS : FORCE_ITEMS); ++item) {
      std::string meaning = RESULT_MEANING(kind, item);
      meaning.erase(0, meaning.find(": ") + 2);
      point_.items.push_back({item, std::move(meaning),
                              item <= FORCE_ITEMS ? columns_of(item) : std::vector{item + FORCE_ITEMS - 12}});
    }
  }

  void make_wall() {
    constexpr std::int32_t ITEMS = 105;
    constexpr std::int32_t FORCES = 30;  // components, as the library numbers them
    constexpr std::int32_t FIRST_STRESS = 46;
    constexpr std::int32_t STRESSES = 12;
    constexpr std::array<std::int32_t, 5> FIRST_PARTS{49, 52, 58, 64, 70};  // positions, by station
    point_.row_length = stresses_ ? 132 : 72;
    for (std::int32_t item = 1; item <= ITEMS; ++item) {
      const auto [component, part] = kernel::SPLIT_WALL_ITEM(item);
      if (component > FORCES) {
        const std::int32_t place = component - FIRST_STRESS;
        if (stresses_)
          point_.items.push_back({item,
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
      point_.items.push_back({item, std::move(meaning), std::move(positions)});
    }
  }

  T_STORED_POINT& point_;
  std::optional<T_RECORD_SHAPE> forces_;
  std::optional<T_RECORD_SHAPE> stresses_;
};

/// Adds the record that a list has of the id; gives its shape.
std::optional<T_RECORD_SHAPE> add_record(store::INFLUENCE_STORE& store, LIST list, T_STORED_POINT& point) {
  const std::int32_t row = store.MAPS().FIND_ROW(list, point.id);
  if (row == 0) return std::nullopt;
  T_STORED_RECORD record{.list = list};
  for (std::size_t set = 0; set < store.SETS().size(); ++set) {
    const store::T_NODE* const node = store.NODE(set, list, row);
    record.held.push_back(node != nullptr && node->VOLUME > 0);
    if (node == nullptr) continue;
    record.shape.points = std::max(record.shape.points, node->VALUES_PER_ITEM);
    record.shape.items = std::max(record.shape.items, node->ITEMS);
  }
  point.records.push_back(record);
  return record.shape;
}

bool is_element(const T_STORED_KIND& kind) {
  return kind.form != ROW_FORM::NODE;
}

/// The kind of an element that was asked for under another one.
const T_STORED_KIND* other_kind(const store::INFLUENCE_STORE& store, std::int32_t id) {
  const auto is_kind = [&](const T_STORED_KIND& kind) {
    return is_element(kind) &&
           std::ranges::any_of(kind.lists, [&](LIST list) { return store.MAPS().FIND_ROW(list, id) > 0; });
  };
  const auto kind = std::ranges::find_if(KINDS, is_kind);
  return kind == KINDS.end() ? nullptr : &*kind;
}

[[noreturn]] void fail_without_id(const store::INFLUENCE_STORE& store, const T_STORED_POINT& point,
                                  const std::string& base_path) {
  const T_STORED_KIND& kind = *point.kind;
  std::vector<std::int32_t> ids;
  for (const LIST list : kind.lists)
    for (const store::T_NODE& node : store.ROWS(list)) ids.push_back(node.ID);
  std::ranges::sort(ids);
  const auto rest = std::ranges::unique(ids);
  ids.erase(rest.begin(), rest.end());
  std::string reason =
      fmt::format("the influence volumes of {} hold no {} {}", base_path, kind.name, point.id);
  if (const T_STORED_KIND* other = is_element(kind) ? other_kind(store, point.id) : nullptr)
    reason += fmt::format("; that number is of kind {}", other->name);
  throw T_TOOL_FAILURE(
      reason, ids.empty()
                  ? fmt::format("they hold none of this kind; run `movload inspect {}` to see what they hold",
                                base_path)
                  : fmt::format("give an --id that they hold: {}; `movload inspect {}` lists them by kind",
                                RUNS_IN_WORDS(RUNS_OF(ids)), base_path));
}

/// No solver writes such a record; a damaged set may claim one.
void check_size(const T_STORED_POINT& point) {
  constexpr std::int64_t MOST_VALUES = 100'000;
  for (const T_STORED_RECORD& record : point.records) {
    const std::int64_t values = std::int64_t{record.shape.points} * record.shape.items;
    if (values <= MOST_VALUES) continue;
    throw T_TOOL_FAILURE(fmt::format("{} {} has {} points of {} items, too many to be shown",
                                     point.kind->name, point.id, record.shape.points, record.shape.items),
                         "the volumes are damaged: have the solver write them again");
  }
}

/// An element of two families has no row, and a composite bar no part beyond its last.
void check_readable(const store::INFLUENCE_STORE& store, const T_STORED_POINT& point) {
  constexpr std::int32_t FAMILY_BITS = 0x1F700;
  const ROW_FORM form = point.kind->form;
  const std::int32_t parts = store.PRIMARY().N_COMPOSITE_PARTS;
  if (form == ROW_FORM::COMPOSITE_BAR && (point.part < 1 || point.part > parts)) {
    throw T_TOOL_FAILURE(fmt::format("composite bars have no part {}", point.part),
                         fmt::format("give a --part of 1 to {}", parts));
  }
  if (form == ROW_FORM::NODE || form == ROW_FORM::COMPOSITE_BAR || form == ROW_FORM::VIRTUAL_BAR) return;
  const auto flags = static_cast<std::uint32_t>(store.MAPS().ELEMENT_FLAGS(point.id) & FAMILY_BITS);
  if (std::has_single_bit(flags)) return;
  throw T_TOOL_FAILURE(
      fmt::format("element {} stands in lists of several kinds, and reads as 0 throughout", point.id),
      "have the solver number its elements through all kinds");
}

}  // namespace

std::span<const T_STORED_KIND> ALL_STORED_KINDS() {
  return KINDS;
}

const T_STORED_KIND* FIND_STORED_KIND(std::string_view name_or_number) {
  const auto kind = std::ranges::find_if(KINDS, [name_or_number](const T_STORED_KIND& row) {
    return row.name == name_or_number ||
           (row.result_kind != 0 && fmt::to_string(row.result_kind) == name_or_number);
  });
  return kind == KINDS.end() ? nullptr : &*kind;
}

const T_ROW_ITEM* T_STORED_POINT::ITEM(std::int32_t number) const {
  const auto item = std::ranges::find(items, number, &T_ROW_ITEM::number);
  return item == items.end() ? nullptr : &*item;
}

T_STORED_POINT FIND_STORED_POINT(store::INFLUENCE_STORE& store, const T_STORED_KIND& kind, std::int32_t id,
                                 std::int32_t part, const std::string& base_path) {
  const bool is_composite = kind.form == ROW_FORM::COMPOSITE_BAR;
  T_STORED_POINT point{.kind = &kind, .id = id, .part = is_composite ? part : 0};
  const std::optional<T_RECORD_SHAPE> first = add_record(store, kind.lists[0], point);
  const std::optional<T_RECORD_SHAPE> second =
      kind.lists[1] != kind.lists[0] ? add_record(store, kind.lists[1], point) : std::nullopt;
  if (point.records.empty()) fail_without_id(store, point, base_path);
  check_readable(store, point);
  check_size(point);
  // Trusses have forces in either list.
  const bool is_truss = kind.form == ROW_FORM::TRUSS;
  ROW_MAKER(point, is_truss && !first ? second : first, second).MAKE();
  return point;
}

}  // namespace tools
