// The number types of the search and the few conversions that are behaviour, not taste.
#pragma once

#include <cstdint>
#include <limits>

/// Search arithmetic is single precision throughout; wider steps say so at the variable.
using real = float;

/// The two envelopes. As a last index the side stands for the pair everywhere.
enum SIDE : unsigned { MAX_SIDE = 0, MIN_SIDE = 1, N_SIDES = 2 };

/// A real truncated toward 0. What doesn't fit, or isn't a number, gives -2147483648: a conversion of such a
/// value is undefined in C++, and the records need one answer on every platform.
[[nodiscard]] constexpr std::int32_t TRUNCATE(double value) noexcept {
  constexpr std::int32_t NOT_REPRESENTABLE = std::numeric_limits<std::int32_t>::min();
  return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : NOT_REPRESENTABLE;
}
