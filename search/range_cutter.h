// The rules by which one stretch of an influence line joins the open range
// of its sign or ends it. Inside the folder: the cut of a whole line,
// the cut beside a zone and the bounds of the latter all walk by these rules.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "common/real.h"
#include "search/ranges.h"

namespace search {

struct T_OPEN_RANGE {
  real AREA = 0;    // signed
  real LENGTH = 0;  // never negative but for rounding
};

/// The open range of either sign. CLOSED is called with the side and the range wherever one ends; the
/// accumulators of that sign begin at 0 again.
class T_OPEN_RANGES {
 public:
  /// One stretch of length dx that runs straight from ordinate a to ordinate b.
  template <class CLOSED>
  void SEGMENT(real dx, real a, real b, CLOSED closed) {
    if (a >= 0 && b > 0) {
      POSITIVE.LENGTH += dx;
      POSITIVE.AREA += (a + b) * dx * 0.5F;
    } else if (a <= 0 && b < 0) {
      NEGATIVE.LENGTH += dx;
      NEGATIVE.AREA += (a + b) * dx * 0.5F;
    } else if (a > 0 && b <= 0) {
      cross(POSITIVE, NEGATIVE, dx, a, b);
      CLOSE(MAX_SIDE, closed);
    } else if (a < 0 && b >= 0) {
      cross(NEGATIVE, POSITIVE, dx, a, b);
      CLOSE(MIN_SIDE, closed);
    }
  }

  /// The end of the lane closes what has an area.
  template <class CLOSED>
  void END(CLOSED closed) {
    if (POSITIVE.AREA > 0) CLOSE(MAX_SIDE, closed);
    if (NEGATIVE.AREA < 0) CLOSE(MIN_SIDE, closed);
  }

  template <class CLOSED>
  void CLOSE(SIDE side, CLOSED closed) {
    T_OPEN_RANGE& open = side == MAX_SIDE ? POSITIVE : NEGATIVE;
    closed(side, open);
    open = {};
  }

  T_OPEN_RANGE POSITIVE;
  T_OPEN_RANGE NEGATIVE;

  /// Where a segment from a to b crosses zero, from its start on.
  [[nodiscard]] static real CROSSING(real dx, real a, real b) {
    return std::fabs(a) * dx / (std::fabs(b) + std::fabs(a));
  }

 private:
  static void cross(T_OPEN_RANGE& ending, T_OPEN_RANGE& beginning, real dx, real a, real b) {
    const real x0 = CROSSING(dx, a, b);
    ending.LENGTH += x0;
    ending.AREA += a * 0.5F * x0;
    beginning.LENGTH += dx - x0;
    beginning.AREA += b * 0.5F * (dx - x0);
  }
};

/// The lists that ranges join when they close.
class RANGE_SINK {
 public:
  RANGE_SINK(T_RANGE_WORK& work, std::int32_t n) : work_(work) {
    for (T_RANGE_LIST& list : work_.SIDES) {
      list.RESERVE(n);
      list.COUNT = 0;
    }
  }
  void operator()(SIDE side, const T_OPEN_RANGE& range) const {
    T_RANGE_LIST& list = work_.SIDES[side];
    const auto at = static_cast<std::size_t>(list.COUNT++);
    list.RANGE_AREA[at] = range.AREA;
    list.RANGE_LENGTH[at] = range.LENGTH;
  }

 private:
  T_RANGE_WORK& work_;
};

/// The segments from point i on, as long as their ends have the sign of the side beyond 0; the line has one
/// column. Returns the point at which the next segment begins.
template <LAYOUT L, SIDE SIGN>
std::int32_t ADD_RUN(const T_LINE& line, std::int32_t i, std::int32_t last, T_OPEN_RANGE& open) {
  T_OPEN_RANGE range = open;
  const auto y = line.BEFORE;
  real a = y(i);
  real x = line.LANE_X(i);
  if (SIGN == MAX_SIDE ? a >= 0 : a <= 0) {
    for (; i <= last; ++i) {
      const real b = y(i + 1);
      if (!(SIGN == MAX_SIDE ? b > 0 : b < 0)) break;
      const real next_x = line.LANE_X(i + 1);
      const real dx = next_x - x;
      if (L::SKIPS_ZERO_LENGTH && dx == 0) break;
      range.LENGTH += dx;
      range.AREA += (a + b) * dx * 0.5F;
      a = b;
      x = next_x;
    }
  }
  open = range;
  return i;
}

/// The whole segments first to last, without a rule for jumps.
template <LAYOUT L, class CLOSED>
void ADD_SEGMENTS(const T_LINE& line, std::int32_t first, std::int32_t last, T_OPEN_RANGES& open,
                  CLOSED closed) {
  for (std::int32_t i = first; i <= last; ++i) {
    // Most segments only lengthen the range of their sign; that much is done at once.
    if (!line.TWO_COLUMNS) {
      i = line.AFTER(i) < 0 ? ADD_RUN<L, MIN_SIDE>(line, i, last, open.NEGATIVE)
                            : ADD_RUN<L, MAX_SIDE>(line, i, last, open.POSITIVE);
      if (i > last) return;
    }
    const real dx = line.LANE_X(i + 1) - line.LANE_X(i);
    if (L::SKIPS_ZERO_LENGTH && dx == 0) continue;
    open.SEGMENT(dx, line.AFTER(i), line.BEFORE(i + 1), closed);
  }
}

/// The segment in which the near end of a zone lies, or which begins there.
[[nodiscard]] inline std::int32_t NEAR_SEGMENT(const T_ZONE_PLACE& zone) {
  return zone.NEAR_FRACTION != 0 ? zone.NEAR_INDEX - 1 : zone.NEAR_INDEX;
}

/// The part of segment i in front of a fraction of it, or behind; cut from the whole segment's values.
template <LAYOUT L, class CLOSED>
void ADD_PART(const T_LINE& line, std::int32_t i, real fraction, bool in_front, T_OPEN_RANGES& open,
              CLOSED closed) {
  if (i < 1 || i >= line.n) return;
  const real start = line.LANE_X(i);
  const real end = line.LANE_X(i + 1);
  const real dx = end - start;
  if (L::SKIPS_ZERO_LENGTH && dx == 0) return;
  const real a = line.AFTER(i);
  const real b = line.BEFORE(i + 1);
  const real at = start + dx * fraction;
  const real ordinate = (1 - fraction) * a + fraction * b;
  if (in_front) {
    open.SEGMENT(at - start, a, ordinate, closed);
  } else {
    open.SEGMENT(end - at, ordinate, b, closed);
  }
}

/// What the zone leaves of the segment that its near end lies in.
/// Rounding of the end brings this about at every eighth point or so.
template <LAYOUT L, class CLOSED>
void ADD_NEAR_PIECE(const T_LINE& line, const T_ZONE_PLACE& zone, T_OPEN_RANGES& open, CLOSED closed) {
  if (zone.NEAR_FRACTION != 0) ADD_PART<L>(line, zone.NEAR_INDEX - 1, zone.NEAR_FRACTION, true, open, closed);
}

/// What the zone leaves of the segment that its far end lies in.
template <LAYOUT L, class CLOSED>
void ADD_FAR_PIECE(const T_LINE& line, const T_ZONE_PLACE& zone, T_OPEN_RANGES& open, CLOSED closed) {
  ADD_PART<L>(line, zone.FAR_INDEX, zone.FAR_FRACTION, false, open, closed);
}

}  // namespace search
