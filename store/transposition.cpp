#include "store/transposition.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace store {
namespace {

constexpr std::int64_t WORD_BYTES = 4;
constexpr std::size_t WIDTH = 4;
constexpr std::int64_t LOADS_OF_SQUARE = 4;

using FOUR = float __attribute__((vector_size(WIDTH * sizeof(float))));

/// Neighbouring positions whose components are at hand.
struct T_GROUP {
  std::int64_t POSITION = 0;
  std::size_t COUNT = 0;  // up to WIDTH
  std::array<const std::byte*, WIDTH> VALUES{};
};

FOUR load(const std::byte* from) noexcept {
  FOUR values;
  std::memcpy(&values, from, sizeof values);
  return values;
}

void store(const FOUR& values, float* to) noexcept {
  std::memcpy(to, &values, sizeof values);
}

/// Four components under the loads from `first_load` on, four loads at a time. Gives the first load that is
/// left.
std::int64_t copy_squares(const T_GROUP& group, std::int64_t first_load, std::int64_t end_load,
                          std::int64_t row_length, float* rows) noexcept {
  // Copies, since what is written might otherwise be taken for the group.
  const auto [at_a, at_b, at_c, at_d] = group.VALUES;
  float* to = rows + first_load * row_length + group.POSITION;
  std::int64_t load_number = first_load;
  for (; load_number + LOADS_OF_SQUARE <= end_load; load_number += LOADS_OF_SQUARE) {
    const std::int64_t at = WORD_BYTES * load_number;
    const FOUR a = load(at_a + at);
    const FOUR b = load(at_b + at);
    const FOUR c = load(at_c + at);
    const FOUR d = load(at_d + at);
    const FOUR ab_low = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const FOUR ab_high = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const FOUR cd_low = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const FOUR cd_high = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    store(__builtin_shufflevector(ab_low, cd_low, 0, 1, 4, 5), to);
    store(__builtin_shufflevector(ab_low, cd_low, 2, 3, 6, 7), to + row_length);
    store(__builtin_shufflevector(ab_high, cd_high, 0, 1, 4, 5), to + 2 * row_length);
    store(__builtin_shufflevector(ab_high, cd_high, 2, 3, 6, 7), to + 3 * row_length);
    to += LOADS_OF_SQUARE * row_length;
  }
  return load_number;
}

void copy_columns(const T_GROUP& group, std::int64_t first_load, std::int64_t end_load,
                  std::int64_t row_length, float* rows) noexcept {
  for (std::size_t i = 0; i < group.COUNT; ++i) {
    float* to = rows + first_load * row_length + group.POSITION + static_cast<std::int64_t>(i);
    for (std::int64_t load_number = first_load; load_number < end_load; ++load_number, to += row_length) {
      std::memcpy(to, group.VALUES[i] + WORD_BYTES * load_number, sizeof *to);
    }
  }
}

/// Goes through the loads in blocks whose rows stay in the nearest cache while all groups are copied.
void copy_groups(std::span<const T_GROUP> groups, std::int64_t loads, std::int64_t row_length,
                 float* rows) noexcept {
  constexpr std::int64_t BLOCK = 16;
  for (std::int64_t first = 0; first < loads; first += BLOCK) {
    const std::int64_t end = std::min(first + BLOCK, loads);
    for (const T_GROUP& group : groups) {
      const std::int64_t load_number =
          group.COUNT == WIDTH ? copy_squares(group, first, end, row_length, rows) : first;
      if (load_number < end) copy_columns(group, load_number, end, row_length, rows);
    }
  }
}

}  // namespace

void TRANSPOSE(const std::byte* values, const T_STRETCH& stretch, std::span<const std::int32_t> sources,
               std::int64_t row_length, float* rows) noexcept {
  std::array<T_GROUP, 64> groups;
  std::size_t n_groups = 0;
  const auto is_at_hand = [&](std::size_t position) {
    return sources[position] >= stretch.FIRST && sources[position] <= stretch.LAST;
  };
  for (std::size_t position = 0; position < sources.size();) {
    if (!is_at_hand(position)) {
      ++position;
      continue;
    }
    if (n_groups == groups.size()) {
      copy_groups({groups.data(), n_groups}, stretch.LOADS, row_length, rows);
      n_groups = 0;
    }
    T_GROUP& group = groups[n_groups++];
    group.POSITION = static_cast<std::int64_t>(position);
    group.COUNT = 0;
    while (group.COUNT < WIDTH && position < sources.size() && is_at_hand(position)) {
      const std::int64_t before = std::int64_t{sources[position++]} - stretch.FIRST;
      group.VALUES[group.COUNT++] = values + WORD_BYTES * before * stretch.SPACING;
    }
  }
  copy_groups({groups.data(), n_groups}, stretch.LOADS, row_length, rows);
}

}  // namespace store
