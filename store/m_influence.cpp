#include "store/m_influence.h"

#include <algorithm>
#include <limits>

namespace store {
namespace {

/// Merges the lists of two sets, and what they say of bars.
void merge_sets(T_MEC& a, T_MEC& b) {
  a.N_COMPOSITE_PARTS = b.N_COMPOSITE_PARTS = std::max(a.N_COMPOSITE_PARTS, b.N_COMPOSITE_PARTS);
  a.VIRTUAL_BAR_MARK = b.VIRTUAL_BAR_MARK = std::max(a.VIRTUAL_BAR_MARK, b.VIRTUAL_BAR_MARK);
  for (std::size_t i = 0; i < N_LISTS; ++i) {
    const LIST list{static_cast<std::uint8_t>(i)};
    MERGE_LISTS(a.NODES(list), b.NODES(list));
  }
}

}  // namespace

void INFLUENCE_STORE::SET_INCLUDE(std::string_view path) {
  const std::size_t first = path.find_first_not_of(' ');
  if (path.size() > T_PATH::ROOM || first == std::string_view::npos) return;
  include_path_.SET(path.substr(first, path.find_last_not_of(' ') - first + 1));
}

STATUS INFLUENCE_STORE::OPEN(std::string_view base_path) {
  CLOSE();
  faulty_volume_ = {};
  // Stands where something is thrown on the way, too.
  state_ = STATE::FAILED;
  STATUS status = load(base_path);
  if (status.OK()) state_ = STATE::OPEN;
  return status;
}

void INFLUENCE_STORE::CLOSE() noexcept {
  state_ = STATE::NONE;
  std::vector<T_MEC>().swap(sets_);
  n_total_loads_ = 0;
  maps_.CLEAR();
  read_spaces_ = {};
}

STATUS INFLUENCE_STORE::load_set(T_MEC& set, std::string_view base_path, T_GROUP_TABLE* element_nodes) {
  STATUS status = set.LOAD(base_path, element_nodes);
  if (!status.OK()) faulty_volume_.SET(set.FAULTY_VOLUME());
  return status;
}

STATUS INFLUENCE_STORE::load(std::string_view base_path) {
  const std::size_t included = include_path_.TEXT().empty() ? 0 : 1;
  sets_ = std::vector<T_MEC>(included + 1);
  // The element nodes of an included set count for nothing.
  for (std::size_t i = 0; i < included; ++i) {
    if (STATUS status = load_set(sets_[i], include_path_.TEXT(), nullptr); !status.OK()) return status;
  }
  if (STATUS status = load_set(sets_.back(), base_path, &maps_.ELEMENT_NODES); !status.OK()) return status;
  maps_.ELEMENT_NODES.SORT();

  std::int64_t total_loads = 0;
  for (const T_MEC& set : sets_) total_loads += set.N_LOADS;
  STATUS status = CHECK_BOUNDS("number of unit loads of all sets", total_loads, 0,
                               std::numeric_limits<std::int32_t>::max());
  if (!status.OK()) return status;
  merge();
  register_ids();
  n_total_loads_ = static_cast<std::int32_t>(total_loads);
  return {};
}

void INFLUENCE_STORE::merge() {
  T_MEC& primary = sets_.back();
  const std::span<T_MEC> included(sets_.data(), sets_.size() - 1);
  for (T_MEC& set : included) merge_sets(primary, set);
  for (T_MEC& set : included) {
    merge_sets(set, primary);
    // A set may lack supports behind its last one too.
    for (const LIST list : {LIST::REAC, LIST::LREAC}) {
      if (!primary.NODES(list).empty()) COMPLETE_LIST(set.NODES(list), primary.NODES(list));
    }
  }
}

void INFLUENCE_STORE::register_ids() {
  std::int64_t most_components = LONGEST_FIXED_ROW;
  for (std::size_t i = 0; i < N_LISTS; ++i) {
    const LIST list{static_cast<std::uint8_t>(i)};
    for (const T_MEC& set : sets_) {
      // Without loads nothing is read.
      if (set.N_LOADS == 0) continue;
      for (const T_NODE& node : set.NODES(list)) {
        if (node.VOLUME != 0) most_components = std::max(most_components, node.COMPONENTS());
      }
    }
    if (!IS_READ(list)) continue;
    std::vector<const T_LIST*> included;
    for (std::size_t set = 0; set + 1 < sets_.size(); ++set) included.push_back(&sets_[set].NODES(list));
    maps_.REGISTER(list, PRIMARY().NODES(list), included);
  }
  for (T_READ_SPACE& space : read_spaces_) {
    space.POSITIONS.resize(static_cast<std::size_t>(most_components));
    space.COMPONENTS.resize(static_cast<std::size_t>(most_components));
  }
}

std::span<const T_NODE> INFLUENCE_STORE::ROWS(LIST list) const noexcept {
  if (!IS_OPEN()) return {};
  return PRIMARY().NODES(list);
}

const T_NODE* INFLUENCE_STORE::NODE(std::size_t set, LIST list, std::int32_t row) const noexcept {
  const T_LIST& nodes = sets_[set].NODES(list);
  return row >= 1 && static_cast<std::size_t>(row) <= nodes.size() ? &nodes[static_cast<std::size_t>(row - 1)]
                                                                   : nullptr;
}

}  // namespace store
