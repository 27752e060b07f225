// The kinds of result by the names that the command line knows.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "store/m_linked_list.h"

namespace tools {

/// How the rows are made up in which a host reads a kind from the influence store.
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

struct T_KIND {
  std::string_view name;
  std::int32_t result_kind;          // of runs; 0: runs don't serve it
  std::string_view meaning;          // of one result point
  ROW_FORM form;                     // in influence volumes
  std::array<store::LIST, 2> lists;  // there, that an id may stand in; the same one twice where there is one
};

/// All kinds that influence volumes may hold, and those of them that a run can be asked for.
[[nodiscard]] std::span<const T_KIND> ALL_KINDS();
[[nodiscard]] std::span<const T_KIND> RUN_KINDS();

/// One of these kinds by its name or its number; null for neither.
[[nodiscard]] const T_KIND* FIND_KIND(std::string_view name_or_number,
                                      std::span<const T_KIND> kinds = ALL_KINDS());

/// A beam's item in the order in which modelkit writes them, which the library doesn't know of: "shear at
/// 1/2". Empty for an item that beams haven't.
[[nodiscard]] std::string BEAM_ITEM_MEANING(std::int32_t item);

/// What a component stands for, as far as it can be told: "result of a beam element: shear at 1/2".
[[nodiscard]] std::string RESULT_MEANING(const T_KIND& kind, std::int32_t item);

}  // namespace tools
