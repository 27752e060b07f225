#include "store/m_linked_list.h"

#include <algorithm>

namespace store {
namespace {

bool by_id(const T_NODE& left, const T_NODE& right) noexcept {
  return left.ID < right.ID;
}

T_NODE without_data(T_NODE node) noexcept {
  node.VOLUME = 0;
  return node;
}

}  // namespace

void MERGE_LISTS(T_LIST& a, T_LIST& b) {
  if (b.empty()) return;
  if (a.empty()) {
    a.resize(b.size());
    std::transform(b.begin(), b.end(), a.begin(), without_data);
    return;
  }
  if (a.size() == b.size() && a.front().ID == b.front().ID && a.back().ID == b.back().ID) return;

  T_LIST merged_a;
  T_LIST merged_b;
  merged_a.reserve(a.size() + b.size());
  merged_b.reserve(a.size() + b.size());
  auto at_a = a.begin();
  auto at_b = b.begin();
  while (at_a != a.end() && at_b != b.end()) {
    const bool from_a = at_a->ID <= at_b->ID;
    const bool from_b = at_a->ID >= at_b->ID;
    merged_a.push_back(from_a ? *at_a : without_data(*at_b));
    merged_b.push_back(from_b ? *at_b : without_data(*at_a));
    if (from_a) ++at_a;
    if (from_b) ++at_b;
  }
  // Behind the last ID of the one list the other keeps what it has.
  merged_a.insert(merged_a.end(), at_a, a.end());
  merged_b.insert(merged_b.end(), at_b, b.end());
  a = std::move(merged_a);
  b = std::move(merged_b);
  a.shrink_to_fit();
  b.shrink_to_fit();
}

void COMPLETE_LIST(T_LIST& list, const T_LIST& other) {
  if (list.size() == other.size()) return;
  std::sort(list.begin(), list.end(), by_id);
  const auto own = static_cast<std::ptrdiff_t>(list.size());
  for (T_NODE node : other) {
    if (std::binary_search(list.begin(), list.begin() + own, node, by_id)) continue;
    node.VOLUME = 0;
    node.DATA_OFFSET = 0;
    list.push_back(node);
  }
  std::sort(list.begin(), list.end(), by_id);
}

}  // namespace store
