// The influence line that a search works on, and the two layouts of an ordinate row.
//
// The line of one component may jump at an influence point: it then has one value just before the point and
// another just after it. Which of both a search reads, and how it treats a segment of no length, is all that
// the layouts differ in. Each layout is a type without state whose members are exactly that list of
// differences; everything else is written once.
#pragma once

#include <concepts>
#include <cstdint>

#include "common/real.h"
#include "common/table.h"

namespace search {

/// A lane's influence line for one component: n points, positions ascending (repeats possible), in the
/// solver's units. A segment i runs from AFTER(i) at point i to BEFORE(i + 1) at point i + 1. Without jumps
/// both name the same column. The line is a view; it lives as long as the arrays behind it.
struct T_LINE {
  std::int32_t n = 0;
  TABLE<const real, POINT> LANE_X;
  TABLE<const real, POINT> BEFORE;
  TABLE<const real, POINT> AFTER;
  bool TWO_COLUMNS = false;  // a component with a value on either side of each point
};

/// Upper value of an ordinate, which serves maxima, and lower value, which serves minima.
struct T_ORDINATE {
  real UPPER = 0;
  real LOWER = 0;
};

/// Rows with one value a point: all results but the section forces of beams and walls.
/// Repeated points are dropped before the search.
struct SIMPLE_LAYOUT {
  static constexpr bool SKIPS_ZERO_LENGTH = true;  // a segment without length is passed over
  static constexpr bool CLOSES_AT_JUMPS = false;   // a jump across zero closes a range (whole lane only)
  static constexpr real SHORT_RANGE = 0.0F;  // in the pair search, ranges up to this length have the mean 0
  /// HB_CODE of an HB across two parent lanes with full HA UDL: lane * this + plane.
  static constexpr std::int32_t SUM_CODE_FACTOR = 1000;

  /// What an axle that stands exactly on point k counts.
  static T_ORDINATE AT_POINT(const T_LINE& line, std::int32_t k) noexcept {
    return {line.BEFORE(k), line.BEFORE(k)};
  }
};

/// Rows of section forces of beams and walls, whose influence lines may jump. Repeated points stay, for a jump can
/// stand between them; an axle that stands on a jump counts with its worse side.
struct JUMP_LAYOUT {
  static constexpr bool SKIPS_ZERO_LENGTH = false;
  static constexpr bool CLOSES_AT_JUMPS = true;
  static constexpr real SHORT_RANGE = 1e-5F;
  static constexpr std::int32_t SUM_CODE_FACTOR = 100;

  static T_ORDINATE AT_POINT(const T_LINE& line, std::int32_t k) noexcept {
    T_ORDINATE at{line.BEFORE(k), line.BEFORE(k)};
    const auto widen = [&at](real value) {
      if (value > at.UPPER) at.UPPER = value;
      if (value < at.LOWER) at.LOWER = value;
    };
    widen(line.AFTER(k));
    if (k < line.n && line.LANE_X(k) == line.LANE_X(k + 1)) {
      widen(line.BEFORE(k + 1));
      widen(line.AFTER(k + 1));
    }
    return at;
  }
};

template <class L>
concept LAYOUT = requires(const T_LINE& line) {
  { L::SKIPS_ZERO_LENGTH } -> std::convertible_to<bool>;
  { L::CLOSES_AT_JUMPS } -> std::convertible_to<bool>;
  { L::SHORT_RANGE } -> std::convertible_to<real>;
  { L::SUM_CODE_FACTOR } -> std::convertible_to<std::int32_t>;
  { L::AT_POINT(line, 1) } -> std::same_as<T_ORDINATE>;
};

}  // namespace search
