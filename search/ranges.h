// Ranges of an influence line, and what every search needs to know of one.
//
// A range is a maximal stretch of the line of one sign. CUT_RANGES cuts a line into positive and negative
// ranges with area and length; SORT_RANGE_MEANS ranks them; HA_INTENSITY gives the intensity of the HA UDL
// for a loaded length; ORDINATE_AT reads the line at any position; LOCATE_ZONE places the ends of an HB's
// zone among the points; RANGE_DISTANCES tells the host where the ranges lie. All arithmetic is single
// precision, rounded as written.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "search/layouts.h"

namespace search {

inline constexpr std::int32_t MAX_RANGES = 100;  // ranges of a lane and side in the host's distance lists
inline constexpr std::int32_t MAX_LOADED = 500;  // range numbers in the host's list of loaded ranges

/// A range among others while they are ranked.
struct T_RANGE_MEAN {
  real MEAN = 0;
  std::int32_t NUMBER = 0;
};

/// The ranges of one sign, numbered from 1 in the order in which they close along the lane, and the ranking
/// of a search: MEAN and NUMBER stand side by side. Vectors are kept sized for the longest line seen.
struct T_RANGE_LIST {
  std::int32_t COUNT = 0;
  std::vector<real> RANGE_AREA;            // signed
  std::vector<real> RANGE_LENGTH;          // never negative but for rounding
  std::vector<real> RANGE_MEAN;            // area / length, in order of ranking after the sort
  std::vector<std::int32_t> RANGE_NUMBER;  // from 1, in the same order
  std::vector<T_RANGE_MEAN> SORT_WORK;

  /// Room for the ranges of a line of n points: at most one closes a segment, and one at the end.
  void RESERVE(std::int32_t n);
};

/// Work lists of a search. Owned by the caller, so that no search allocates after its first lines; several
/// searches may run at once on work lists of their own.
struct T_RANGE_WORK {
  std::array<T_RANGE_LIST, N_SIDES> SIDES;  // positive, negative
};

/// Where the ends of an HB zone fall among the influence points. FAR_INDEX is the lower point of its segment,
/// NEAR_INDEX the upper point of its own; a fraction of 0 means that the end stands on the point.
struct T_ZONE_PLACE {
  std::int32_t FAR_INDEX = 0;
  real FAR_FRACTION = 0;
  std::int32_t NEAR_INDEX = 0;
  real NEAR_FRACTION = 0;
};

/// Cuts a whole line into ranges.
template <LAYOUT L>
void CUT_RANGES(const T_LINE& line, T_RANGE_WORK& work);

/// Cuts a line with the stretch of an HB left out. Nothing closes at the zone: stretches of one sign on both
/// sides of it make one range, whatever the sign inside. Jumps close no range here.
template <LAYOUT L>
void CUT_RANGES_BESIDE_ZONE(const T_LINE& line, const T_ZONE_PLACE& zone, T_RANGE_WORK& work);

/// Ranks means from the largest to the smallest and carries the sequence numbers along; `by_magnitude` first
/// replaces every mean by its absolute value (negative ranges). The order of equal means follows from the way
/// of sorting and is behaviour: it decides which range joins a loaded set first. `work` is a work list.
void SORT_RANGE_MEANS(std::int32_t count, real* means, std::int32_t* numbers, bool by_magnitude,
                      std::vector<T_RANGE_MEAN>& work);

/// The curve of HA UDL intensity over loaded length,
/// BS 5400-2 clause 6.2.1; its numbers come with the vehicle.
struct T_HA_CURVE {
  real HA_W0 = 0;    // intensity up to the loaded length HA_L0
  real HA_K = 0;     // beyond: HA_K * (1 / L) ^ HA_P
  real HA_WMIN = 0;  // never below
  real HA_P = 0;
  real HA_L0 = 0;
};

/// Intensity for a loaded length above 0. The library's one call of the power function, whose last bit is the
/// only one that may differ between platforms.
[[nodiscard]] real HA_INTENSITY(real loaded_length, const T_HA_CURVE& curve);

/// An intensity as the records hold it: times 1000 in single precision, truncated.
[[nodiscard]] inline std::int32_t W_MILLI(real intensity) noexcept {
  return TRUNCATE(static_cast<double>(intensity * 1000.0F));
}

/// The span of points among which ORDINATE_AT looks for a position; n at least 1, position within the lane.
struct T_SPAN {
  std::int32_t LO = 0;
  std::int32_t HI = 0;
};
[[nodiscard]] T_SPAN BRACKET_POINT(real position, TABLE<const real, POINT> LANE_X, std::int32_t n);

/// A position among the influence points of a lane.
struct T_POSITION {
  std::int32_t POINT_INDEX = 0;  // the point, or the lower point of the segment; 0 off the lane
  real FRACTION = 0;             // of the segment
  bool ON_POINT = false;
};
[[nodiscard]] T_POSITION FIND_POSITION(real position, TABLE<const real, POINT> LANE_X, std::int32_t n);

/// A position known to lie within segment k.
[[nodiscard]] inline T_POSITION POSITION_IN_SEGMENT(real position, TABLE<const real, POINT> LANE_X,
                                                    std::int32_t k) {
  const real length = LANE_X(k + 1) - LANE_X(k);
  return {k, length > 0 ? (position - LANE_X(k)) / length : 0.0F, false};
}

/// The ordinate at a position: 0 off the lane, the point's own value on a point, interpolated between two. In
/// SIMPLE_LAYOUT upper and lower value are the same.
template <LAYOUT L>
[[nodiscard]] T_ORDINATE ORDINATE_OF(const T_POSITION& position, const T_LINE& line) {
  const std::int32_t k = position.POINT_INDEX;
  if (k == 0) return {};
  if (position.ON_POINT) return L::AT_POINT(line, k);
  const real f = position.FRACTION;
  const real ordinate = (1 - f) * line.AFTER(k) + f * line.BEFORE(k + 1);
  return {ordinate, ordinate};
}
template <LAYOUT L>
[[nodiscard]] T_ORDINATE ORDINATE_AT(real position, const T_LINE& line) {
  return ORDINATE_OF<L>(FIND_POSITION(position, line.LANE_X, line.n), line);
}

/// Places the ends of a zone. The first point for which either test holds decides, so that of a repeated
/// position the first is taken. A line of fewer than two points leaves all at 0.
[[nodiscard]] T_ZONE_PLACE LOCATE_ZONE(real far_end, real near_end, TABLE<const real, POINT> LANE_X,
                                       std::int32_t n);

/// Ranges of one side as the host gets them: (start, end) pairs in lane distance, 0 behind the last, and how
/// many ranges there are, which may be more than the list holds.
struct T_RANGE_DISTANCES {
  std::array<std::array<real, 2>, MAX_RANGES> PAIRS{};
  std::int32_t RANGE_COUNT = 0;
};

/// Both sides of a line, cleared first. The simple form goes by points (a single zero inside a range doesn't
/// end it), the jump form by segments; both number their ranges apart from CUT_RANGES.
void RANGE_DISTANCES(const T_LINE& line, std::array<T_RANGE_DISTANCES, N_SIDES>& sides);
void RANGE_DISTANCES_JUMP(const T_LINE& line, std::array<T_RANGE_DISTANCES, N_SIDES>& sides);

}  // namespace search
