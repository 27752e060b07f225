#include "store/id_maps.h"

#include <algorithm>

namespace store {

void T_GROUP_TABLE::ADD_GROUP(std::int32_t key) {
  groups_.push_back({key, 0, static_cast<std::int64_t>(members_.size())});
}

void T_GROUP_TABLE::ADD_MEMBERS(std::span<const std::int32_t> members) {
  members_.insert(members_.end(), members.begin(), members.end());
  groups_.back().COUNT += static_cast<std::int32_t>(members.size());
}

void T_GROUP_TABLE::SORT() {
  const auto by_key = [](const T_GROUP& left, const T_GROUP& right) { return left.KEY < right.KEY; };
  if (!std::is_sorted(groups_.begin(), groups_.end(), by_key)) {
    std::stable_sort(groups_.begin(), groups_.end(), by_key);
  }
}

std::span<const T_GROUP_TABLE::T_GROUP> T_GROUP_TABLE::groups_of(std::int32_t key) const noexcept {
  const auto first = std::partition_point(groups_.begin(), groups_.end(),
                                          [key](const T_GROUP& group) { return group.KEY < key; });
  const auto last =
      std::partition_point(first, groups_.end(), [key](const T_GROUP& group) { return group.KEY == key; });
  return {first, last};
}

std::int32_t T_GROUP_TABLE::COUNT(std::int32_t key) const noexcept {
  std::int32_t count = 0;
  for (const T_GROUP& group : groups_of(key)) count += group.COUNT;
  return count;
}

void T_GROUP_TABLE::COPY(std::int32_t key, std::int32_t* members) const noexcept {
  for (const T_GROUP& group : groups_of(key)) {
    members = std::copy_n(members_.begin() + group.FIRST, group.COUNT, members);
  }
}

void ID_MAPS::CLEAR() noexcept {
  *this = {};
}

void ID_MAPS::REGISTER(LIST list, const T_LIST& primary, std::span<const T_LIST* const> included) {
  std::vector<T_ID_ROW>& rows = rows_[static_cast<std::size_t>(list)];
  rows.clear();
  rows.reserve(primary.size());
  const auto add = [&](const T_LIST& nodes) {
    for (std::size_t i = 0; i < nodes.size() && i < primary.size(); ++i) {
      rows.push_back({nodes[i].ID, static_cast<std::int32_t>(i + 1)});
    }
  };
  const auto same_id = [](const T_NODE& left, const T_NODE& right) { return left.ID == right.ID; };
  add(primary);
  for (const T_LIST* nodes : included) {
    if (!std::equal(nodes->begin(), nodes->end(), primary.begin(), primary.end(), same_id)) add(*nodes);
  }

  const auto by_id = [](const T_ID_ROW& left, const T_ID_ROW& right) { return left.ID < right.ID; };
  const auto not_above = [](const T_ID_ROW& left, const T_ID_ROW& right) { return left.ID >= right.ID; };
  if (std::adjacent_find(rows.begin(), rows.end(), not_above) == rows.end()) return;
  std::stable_sort(rows.begin(), rows.end(), by_id);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (kept > 0 && rows[kept - 1].ID == rows[i].ID) --kept;
    rows[kept++] = rows[i];
  }
  rows.resize(kept);
}

std::int32_t ID_MAPS::FIND_ROW(LIST list, std::int32_t id) const noexcept {
  const std::vector<T_ID_ROW>& rows = rows_[static_cast<std::size_t>(list)];
  const auto found =
      std::partition_point(rows.begin(), rows.end(), [id](const T_ID_ROW& entry) { return entry.ID < id; });
  return found != rows.end() && found->ID == id ? found->ROW : 0;
}

std::int32_t ID_MAPS::ELEMENT_FLAGS(std::int32_t id) const noexcept {
  std::int32_t flags = 0;
  for (std::size_t i = 0; i < N_LISTS; ++i) {
    const LIST list{static_cast<std::uint8_t>(i)};
    if (!IS_NODE_LIST(list) && FIND_ROW(list, id) > 0) flags |= CATEGORY(list);
  }
  return flags;
}

}  // namespace store
