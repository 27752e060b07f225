// From the ID that a host names to what the store holds under it: the row in the lists of a kind of result,
// the categories of an element, and the nodes of an element.
//
// Built while a store is opened, when its lists are merged, and cleared when it is closed. An ID costs 8
// bytes for each kind of result.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "store/m_linked_list.h"

namespace store {

/// Groups of members by key, as the solver lists the nodes of its elements. Groups of one key are joined in
/// the order in which they were added.
class T_GROUP_TABLE {
 public:
  /// Begins a group, to which ADD_MEMBERS adds.
  void ADD_GROUP(std::int32_t key);
  void ADD_MEMBERS(std::span<const std::int32_t> members);
  /// To be called once, when all groups are in and before the first look-up.
  void SORT();

  /// Number of members of the key; 0 for an unknown one.
  [[nodiscard]] std::int32_t COUNT(std::int32_t key) const noexcept;
  /// Copies them; `members` has room for COUNT.
  void COPY(std::int32_t key, std::int32_t* members) const noexcept;

 private:
  struct T_GROUP {
    std::int32_t KEY = 0;
    std::int32_t COUNT = 0;
    std::int64_t FIRST = 0;
  };
  [[nodiscard]] std::span<const T_GROUP> groups_of(std::int32_t key) const noexcept;

  std::vector<T_GROUP> groups_;
  std::vector<std::int32_t> members_;
};

class ID_MAPS {
 public:
  void CLEAR() noexcept;

  /// Gives the IDs of one list of all sets their rows: row r, from 1, is the r-th of the primary set's list,
  /// and an included set's r-th ID has row r too, whatever it is. An ID that comes twice keeps its last row.
  void REGISTER(LIST list, const T_LIST& primary, std::span<const T_LIST* const> included);

  /// The row of an ID, from 1; 0 where there is none.
  [[nodiscard]] std::int32_t FIND_ROW(LIST list, std::int32_t id) const noexcept;
  /// The categories of an element, or-ed together; 0 for an unknown one.
  [[nodiscard]] std::int32_t ELEMENT_FLAGS(std::int32_t id) const noexcept;

  T_GROUP_TABLE ELEMENT_NODES;

 private:
  struct T_ID_ROW {
    std::int32_t ID = 0;
    std::int32_t ROW = 0;
  };
  std::array<std::vector<T_ID_ROW>, N_LISTS> rows_;  // by list, ascending
};

}  // namespace store
