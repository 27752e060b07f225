// Trimming of the reported ranges, worked by hand for a zone from 30 to 60.
#include "search/trimming.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

namespace {

using PAIRS = std::vector<std::array<float, 2>>;
using NUMBERS = std::vector<std::int32_t>;

search::T_REPORTED_RANGES ranges_of(const PAIRS& pairs, const NUMBERS& numbers) {
  search::T_REPORTED_RANGES ranges;
  std::copy(pairs.begin(), pairs.end(), ranges.PAIRS.begin());
  ranges.NO_LOADED_RANGE = static_cast<std::int32_t>(numbers.size());
  std::copy(numbers.begin(), numbers.end(), ranges.NUMBERS.begin());
  return ranges;
}

/// All ranges are loaded. The first pairs and numbers are as told and 0 behind them.
struct T_TRIMMED {
  PAIRS before, after;
  std::array<float, 2> far_piece;  // stands last
  NUMBERS numbers;
  int loaded;
};
// clang-format off
const T_TRIMMED CASES[] = {
    // Ends that reach into the zone are cut. A gap inside it is bridged first, so only one range may reach
    // into it.
    {{{10, 40}, {70, 90}}, {{10, 30}, {70, 90}}, {0, 0}, {1, 2}, 2},
    {{{10, 20}, {40, 90}}, {{10, 20}, {60, 90}}, {0, 0}, {1, 2}, 2},
    {{{10, 20}, {70, 90}}, {{10, 20}, {70, 90}}, {0, 0}, {1, 2}, 2},
    // A zone inside a range splits it, and the far piece is number 100.
    {{{10, 90}, {120, 150}}, {{10, 30}, {120, 150}}, {60, 90}, {1, 2, 100}, 3},
    // Joined across the zone and split as one: fewer ranges, yet the count of loaded ones only grows by the
    // far piece.
    {{{10, 40}, {50, 90}, {120, 150}}, {{10, 30}, {120, 150}}, {60, 90}, {1, 2, 0, 100}, 4},
    {{{10, 30}, {60, 90}}, {{10, 30}}, {60, 90}, {1, 0, 100}, 3},  // ends exactly at the zone
    // A range inside the zone leaves and the numbers stay, also where it starts or ends with the zone.
    {{{10, 20}, {35, 50}, {70, 90}}, {{10, 20}, {70, 90}}, {0, 0}, {1, 2, 3}, 3},
    {{{10, 20}, {30, 50}, {70, 90}}, {{10, 20}, {70, 90}}, {0, 0}, {1, 2, 3}, 3},
    {{{10, 20}, {35, 60}, {70, 90}}, {{10, 20}, {70, 90}}, {0, 0}, {1, 2, 3}, 3},
};
// clang-format on

TEST(trimming, gives_what_was_worked_by_hand) {
  for (T_TRIMMED c : CASES) {
    NUMBERS all(c.before.size());
    for (std::size_t r = 0; r < all.size(); ++r) all[r] = static_cast<std::int32_t>(all.size() - r);
    auto ranges = ranges_of(c.before, all);
    search::TRIM_LOADED_RANGES(60, 30, ranges);
    c.after.resize(5);
    c.numbers.resize(5);
    EXPECT_EQ(PAIRS(ranges.PAIRS.begin(), ranges.PAIRS.begin() + 5), c.after);
    EXPECT_EQ(ranges.PAIRS.back(), c.far_piece);
    EXPECT_EQ(NUMBERS(ranges.NUMBERS.begin(), ranges.NUMBERS.begin() + 5), c.numbers);
    EXPECT_EQ(ranges.NO_LOADED_RANGE, c.loaded);
  }
}

TEST(trimming, merging_alone_sorts_the_numbers_and_leaves_each_once) {
  auto ranges = ranges_of({{10, 20}, {70, 90}, {100, 110}}, {3, 1, 3});
  search::MERGE_LOADED_RANGES(60, 30, ranges);
  EXPECT_EQ(NUMBERS(ranges.NUMBERS.begin(), ranges.NUMBERS.begin() + 4), (NUMBERS{1, 3, 0, 0}));
  EXPECT_EQ(ranges.NO_LOADED_RANGE, 3);
}

}  // namespace
