// The lists of result nodes: where the data of every ID lie, by kind of result.
//
// A list is a stretch of memory, not a chain: an ID costs 24 bytes and a place in it is a row number. IDs
// ascend, as the solver writes them, and the same list of all sets of a store holds the same IDs once the
// sets are merged. Lists change while a store is opened and stand still after that.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace store {

/// Where an ID's data record lies: VALUES_PER_ITEM points of ITEMS items, for each of them one float32 for
/// each load case. The load case runs fastest, then the item, then the point.
struct T_NODE {
  std::int32_t ID = 0;
  std::int32_t VOLUME = 0;       // from 1; 0: the set has nothing for the ID
  std::int64_t DATA_OFFSET = 0;  // of the record in its volume
  std::int32_t VALUES_PER_ITEM = 0;
  std::int32_t ITEMS = 0;

  [[nodiscard]] std::int64_t COMPONENTS() const noexcept { return std::int64_t{VALUES_PER_ITEM} * ITEMS; }
};
static_assert(sizeof(T_NODE) == 24, "an index may hold millions");

using T_LIST = std::vector<T_NODE>;

/// The lists of a set. Those of element results come in pairs of a family's forces and stresses; the number
/// is their result category.
enum class LIST : std::uint8_t {
  DISP,
  LDISP,
  REAC,
  LREAC,
  N_288,
  N_544,
  N_1056,
  N_2080,
  N_4128,
  N_8224,
  N_16416,
  N_32800,
  N_65568,
  N_16512,
  N_384,
  N_640,
  N_2176,
  N_1152,
  N_4224,
  N_8320,
  N_65664,
};
inline constexpr std::size_t N_LISTS = 21;

/// The result category of a list. Of an element list it holds one bit for the family, and 0x20 for forces or
/// 0x80 for stresses.
[[nodiscard]] constexpr std::int32_t CATEGORY(LIST list) noexcept {
  constexpr std::array<std::int32_t, N_LISTS> CATEGORIES{1,    2,    4,    8,     288,   544,   1056,
                                                         2080, 4128, 8224, 16416, 32800, 65568, 16512,
                                                         384,  640,  2176, 1152,  4224,  8320,  65664};
  return CATEGORIES[static_cast<std::size_t>(list)];
}

[[nodiscard]] constexpr bool IS_NODE_LIST(LIST list) noexcept {
  return list <= LIST::LREAC;
}
/// No read reaches these two.
[[nodiscard]] constexpr bool IS_READ(LIST list) noexcept {
  return list != LIST::N_16512 && list != LIST::N_65664;
}

/// Gives both lists the IDs that occur in either, up to the lower of the two last IDs; what is added is a
/// copy without data. Two lists of one count with the same first and last ID are taken for the same. An empty
/// `b` stays empty, so that two sets are merged in both orders.
void MERGE_LISTS(T_LIST& a, T_LIST& b);

/// Appends what the list lacks of the other's IDs, without data, and sorts it by ID.
void COMPLETE_LIST(T_LIST& list, const T_LIST& other);

}  // namespace store
