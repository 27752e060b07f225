#include "search/trimming.h"

#include <algorithm>

namespace search {
namespace {

using T_PAIRS = std::array<std::array<real, 2>, MAX_RANGES>;

constexpr std::size_t START = 0;
constexpr std::size_t END = 1;

/// Pairs in the list: up to the first from the second on that starts at 0.
std::size_t length_of_list(const T_PAIRS& pairs) {
  const auto end =
      std::find_if(pairs.begin() + 1, pairs.end(), [](const auto& pair) { return pair[START] == 0; });
  return static_cast<std::size_t>(end - pairs.begin());
}

/// The first pair that holds the position strictly inside; past the end where there is none.
T_PAIRS::iterator pair_around(T_PAIRS& pairs, real position) {
  return std::find_if(pairs.begin(), pairs.end(), [position](const auto& pair) {
    return position - pair[START] > 0 && pair[END] - position > 0;
  });
}

/// The values of the pairs one after the other, as the host's list has them.
constexpr std::size_t VALUES = 2 * MAX_RANGES;
real& value_at(T_PAIRS& pairs, std::size_t at) {
  return pairs[at / 2][at % 2];
}

/// Removes the values inside the zone, and those of a range that begins or ends just where the zone does. The
/// values behind move down; the last ones stay in place behind.
void remove_inside_values(real far_end, real near_end, bool near_is_cut, bool far_is_cut, T_PAIRS& pairs) {
  std::int32_t first = 0;  // from 1; 0 none
  std::int32_t count = 0;
  for (std::size_t at = 0; at < VALUES; ++at) {
    const real value = value_at(pairs, at);
    if (!(value > near_end && value < far_end)) continue;
    if (first == 0) first = static_cast<std::int32_t>(at) + 1;
    ++count;
  }
  const std::size_t length = length_of_list(pairs);
  for (std::size_t e = 0; e < length; ++e) {
    if (!near_is_cut && pairs[e][START] == near_end) {
      --first;
      ++count;
    }
    if (!far_is_cut && pairs[e][END] == far_end) ++count;
  }
  if (first <= 0) return;
  const auto gap = static_cast<std::size_t>(count);
  for (auto at = static_cast<std::size_t>(first - 1); at + gap < VALUES; ++at) {
    value_at(pairs, at) = value_at(pairs, at + gap);
  }
}

}  // namespace

void MERGE_LOADED_RANGES(real far_end, real near_end, T_REPORTED_RANGES& ranges) {
  T_PAIRS merged{};
  merged[0] = ranges.PAIRS[0];
  std::size_t d = 0;
  const std::size_t length = length_of_list(ranges.PAIRS);
  for (std::size_t e = 1; e < length; ++e) {
    if (ranges.PAIRS[e - 1][END] >= near_end && far_end >= ranges.PAIRS[e][START]) {
      merged[d][END] = ranges.PAIRS[e][END];
      for (std::int32_t& number : ranges.NUMBERS) {
        if (number > static_cast<std::int32_t>(d) + 1) --number;
      }
    } else {
      merged[++d] = ranges.PAIRS[e];
    }
  }
  ranges.PAIRS = merged;

  auto& numbers = ranges.NUMBERS;
  auto end = std::remove_if(numbers.begin(), numbers.end(), [](std::int32_t number) { return number <= 0; });
  std::sort(numbers.begin(), end);
  end = std::unique(numbers.begin(), end);
  std::fill(end, numbers.end(), 0);
}

void TRIM_LOADED_RANGES(real far_end, real near_end, T_REPORTED_RANGES& ranges) {
  MERGE_LOADED_RANGES(far_end, near_end, ranges);
  T_PAIRS& pairs = ranges.PAIRS;

  const auto split = std::find_if(pairs.begin(), pairs.end(), [=](const auto& pair) {
    return near_end > pair[START] && pair[END] > far_end;
  });
  const bool splits = split != pairs.end();
  const real split_end = splits ? (*split)[END] : 0.0F;

  const auto near_cut = pair_around(pairs, near_end);
  if (near_cut != pairs.end()) (*near_cut)[END] = near_end;
  const auto far_cut = pair_around(pairs, far_end);
  if (far_cut != pairs.end()) (*far_cut)[START] = far_end;
  remove_inside_values(far_end, near_end, near_cut != pairs.end(), far_cut != pairs.end(), pairs);

  if (!splits) return;
  const auto behind = static_cast<std::size_t>(std::max(ranges.NO_LOADED_RANGE, 0));
  if (behind < ranges.NUMBERS.size()) ranges.NUMBERS[behind] = FAR_PIECE;
  ++ranges.NO_LOADED_RANGE;
  pairs[FAR_PIECE - 1] = {far_end, split_end};
}

}  // namespace search
