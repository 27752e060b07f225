// The rows of values that a host reads of a node or element from the influence store: how long they are, and
// which of their positions are the columns of which item.
//
// Items have the numbers that a run knows them by. Those of solids, composite and virtual bars, which runs
// don't serve, have the numbers of their positions, and so have those of beams and walls whose forces aren't
// at the points that runs go by: two ends, and two points at each of three stations between. An item whose
// influence line may jump at a point has two columns: the value for a load just before the point, and for one
// just behind it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/m_influence.h"
#include "tools/result_kinds.h"
#include "tools/volume_contents.h"

namespace tools {

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
struct T_INFLUENCE_ROW {
  const T_KIND* kind = nullptr;
  std::int32_t id = 0;
  std::int32_t part = 0;  // of a composite bar, from 1; else 0
  std::vector<T_STORED_RECORD> records{};
  std::int32_t length = 0;
  std::vector<T_ROW_ITEM> items{};
  std::int32_t force_positions = 0;  // the first ones, of a beam or wall: where lines may jump
  bool is_by_place = false;          // of a beam or wall: items have the numbers of their positions

  [[nodiscard]] const T_ROW_ITEM* ITEM(std::int32_t number) const;
};

/// The row of an id that the store has under that kind, as CHECK_STORED tells. Throws T_TOOL_FAILURE for a
/// part that composite bars haven't, and for a record of a size that can't be.
[[nodiscard]] T_INFLUENCE_ROW MAKE_INFLUENCE_ROW(store::INFLUENCE_STORE& store, const T_KIND& kind,
                                                 std::int32_t id, std::int32_t part);

}  // namespace tools
