// Trimming of the reported ranges. The distance lists are made from the whole influence line;
// on a lane with an HB they are reworked to say what was really loaded:
// no UDL in the HB's zone. Nothing of this changes a value.
#pragma once

#include <array>
#include <cstdint>

#include "common/real.h"
#include "search/ranges.h"

namespace search {

/// The ranges of a lane and side as the host has them.
/// A list of pairs ends at the first pair from the second on whose start is 0.
struct T_REPORTED_RANGES {
  std::array<std::array<real, 2>, MAX_RANGES> PAIRS{};  // start, end
  std::array<std::int32_t, MAX_LOADED> NUMBERS{};       // of loaded ranges, 0 behind the last
  std::int32_t NO_LOADED_RANGE = 0;
};

/// Number of the far piece of a range that the zone splits, and the place of its pair.
inline constexpr std::int32_t FAR_PIECE = MAX_RANGES;

/// Joins ranges whose gap the zone bridges, and leaves the range numbers sorted and each once.
void MERGE_LOADED_RANGES(real far_end, real near_end, T_REPORTED_RANGES& ranges);

/// Takes the zone out of the ranges: merges, splits, cuts, and removes what lies inside. Pairs behind removed
/// ones keep their old numbers.
void TRIM_LOADED_RANGES(real far_end, real near_end, T_REPORTED_RANGES& ranges);

}  // namespace search
