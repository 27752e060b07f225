// The rows of values that a host reads of a node or element from the influence store: how long they are, and
// which of their positions are the columns of which item.
//
// Items have the numbers that a run knows them by; solids, composite and virtual bars, which runs don't
// serve, have those of the positions. An item whose influence line may jump at a point has two columns: the
// value for a load just before the point, and for one just behind it.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "store/m_influence.h"
#include "tools/volume_contents.h"

namespace tools {

/// Which read of a host serves a kind, and what its rows hold.
enum class ROW_FORM : std::uint8_t {
  NODE,
  STORED,
  TRUSS,
  BEAM,
  WALL,
  PLATE,
  SOLID,
  COMPOSITE_BAR,
  VIRTUAL_BAR
};

/// A kind of result by its name on the command line.
struct T_STORED_KIND {
  std::string_view name;
  std::string_view meaning;
  std::int32_t result_kind;  // of runs; 0: runs don't serve it
  ROW_FORM form;
  std::array<store::LIST, 2> lists;  // that an id may stand in; the same one twice where there is one
};

[[nodiscard]] std::span<const T_STORED_KIND> ALL_STORED_KINDS();
/// A kind by its name, or by the number that runs have for it; null for neither.
[[nodiscard]] const T_STORED_KIND* FIND_STORED_KIND(std::string_view name_or_number);

struct T_ROW_ITEM {
  std::int32_t number = 0;
  std::string meaning;                  // "shear at 1/2"
  std::vector<std::int32_t> positions;  // in the row, from 1: one, or two where its line may jump
};

/// A record of an id.
struct T_STORED_RECORD {
  store::LIST list{};
  T_RECORD_SHAPE shape{};
  std::vector<bool> held{};  // by set, whether it has one
};

/// What the store has of one id, and the row in which a host reads it.
struct T_STORED_POINT {
  const T_STORED_KIND* kind = nullptr;
  std::int32_t id = 0;
  std::int32_t part = 0;  // of a composite bar, from 1; else 0
  std::vector<T_STORED_RECORD> records{};
  std::int32_t row_length = 0;
  std::vector<T_ROW_ITEM> items{};

  [[nodiscard]] const T_ROW_ITEM* ITEM(std::int32_t number) const;
};

/// Throws T_TOOL_FAILURE, with ids that are there, where the store hasn't the id; `base_path` is for its
/// text.
[[nodiscard]] T_STORED_POINT FIND_STORED_POINT(store::INFLUENCE_STORE& store, const T_STORED_KIND& kind,
                                               std::int32_t id, std::int32_t part,
                                               const std::string& base_path);

}  // namespace tools
