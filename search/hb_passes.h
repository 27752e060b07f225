// The passes of an HB along a lane, its placements in a pass, and what its axles give there. Inside the
// folder: the placing and its screening stand on it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "search/hb_placing.h"

namespace search {

inline constexpr std::int32_t FORWARD_PASS = 1;
inline constexpr std::int32_t REVERSE_PASS = 2;

/// Distances of the axles from NEAR_END for each type. The rear bogie stands alike in all of them.
struct T_OFFSETS {
  std::array<std::array<real, HB_AXLES>, HB_TYPES> OF_TYPE;

  explicit T_OFFSETS(const T_VEHICLE_PARAMETERS& vehicle) {
    for (std::size_t k = 0; k < OF_TYPE.size(); ++k) {
      const real bogies = vehicle.HB_B + vehicle.HB_S + static_cast<real>(k) * vehicle.HB_STEP;
      OF_TYPE[k] = {bogies + HB_CLEAR + vehicle.HB_S, bogies + HB_CLEAR, HB_CLEAR + vehicle.HB_S, HB_CLEAR};
    }
  }
  /// Of type k, but for the rounding of positions.
  [[nodiscard]] real LENGTH(std::int32_t k) const {
    const auto& offset = OF_TYPE[static_cast<std::size_t>(k - 1)];
    return offset[0] - offset[3];
  }
  /// Whether the axles of every type follow each other and no type is shorter than the first: what a vehicle
  /// is like, but not what a file must hold.
  [[nodiscard]] bool ARE_IN_ORDER() const {
    return std::all_of(OF_TYPE.begin(), OF_TYPE.end(), [this](const auto& offset) {
      return offset[0] >= offset[1] && offset[1] >= offset[2] && offset[2] >= offset[3] &&
             offset[0] - offset[3] >= LENGTH(1) && offset[0] <= 1e6F;
    });
  }
};

/// The lane as one pass sees it: as it is, or turned round.
struct T_PASS {
  std::int32_t DIRECTION = FORWARD_PASS;
  std::int32_t n = 0;
  TABLE<const real, POINT> X;
  const std::vector<T_ORDINATES>* OWN = nullptr;
  std::array<const std::vector<T_ORDINATES>*, HB_AXLES> AXLES{};
  bool ASCENDS = false;
  const T_LINE* AXLE_LINES = nullptr;  // of axle j on plane p, four to a plane

  [[nodiscard]] T_LINE LINE(const T_ORDINATES& ordinates) const { return ordinates.LINE(X, n); }

  /// The first point that doesn't lie below a position on the lane, of points that ascend.
  [[nodiscard]] std::int32_t FIRST_NOT_BELOW(real position) const {
    return static_cast<std::int32_t>(std::lower_bound(&X(1), &X(1) + n, position) - &X(1)) + 1;
  }

  /// Builds the views that every placement of the pass reads, and looks whether the points ascend.
  void BEGIN(std::vector<T_LINE>& lines) {
    ASCENDS = true;
    for (std::int32_t i = 1; i < n; ++i) ASCENDS = ASCENDS && X(i) <= X(i + 1);
    lines.clear();
    for (std::size_t plane = 0; plane < OWN->size(); ++plane) {
      for (const std::vector<T_ORDINATES>* planes : AXLES) lines.push_back(LINE((*planes)[plane]));
    }
    AXLE_LINES = lines.data();
  }
};

/// The lane turned round: distances from 0 on, rows in reverse order, columns of a row in the same order.
T_PASS TURN_ROUND(const T_HB_INPUT& input, T_HB_WORK& work);

/// One placement: where the vehicle stands and what it keeps free. The rear bogie and the near end of the
/// zone stand alike for all types at a point.
struct T_PLACEMENT {
  std::int32_t POINT_INDEX = 0;
  std::int32_t HB_TYPE = 0;
  std::array<real, HB_AXLES> AXLE{};
  real VEHICLE_LENGTH = 0;
  real FAR_END = 0;
  real NEAR_END = 0;
  std::array<T_POSITION, HB_AXLES> POSITIONS{};  // filled, like ZONE, by whoever walks over placements
  T_ZONE_PLACE ZONE;

  /// At point i; no type yet.
  T_PLACEMENT(const T_PASS& pass, const T_OFFSETS& offsets, std::int32_t i) : POINT_INDEX(i) {
    AXLE[2] = pass.X(i) + offsets.OF_TYPE[0][2];
    AXLE[3] = pass.X(i) + offsets.OF_TYPE[0][3];
    NEAR_END = AXLE[3] - HB_CLEAR;
  }
  /// Makes it one of type k.
  void TAKE_TYPE(const T_PASS& pass, const T_OFFSETS& offsets, std::int32_t k) {
    const auto& offset = offsets.OF_TYPE[static_cast<std::size_t>(k - 1)];
    HB_TYPE = k;
    AXLE[0] = pass.X(POINT_INDEX) + offset[0];
    AXLE[1] = pass.X(POINT_INDEX) + offset[1];
    VEHICLE_LENGTH = AXLE[0] - AXLE[3];
    FAR_END = AXLE[0] + HB_CLEAR;
  }
  [[nodiscard]] bool FITS(const T_PASS& pass) const {
    return !(FAR_END > pass.X(pass.n)) && !(pass.X(1) > NEAR_END);
  }
  /// Places the axles and the ends of the zone among the points.
  void FIND(const T_PASS& pass) {
    for (std::size_t j = 0; j < HB_AXLES; ++j) POSITIONS[j] = FIND_POSITION(AXLE[j], pass.X, pass.n);
    const bool is_on_lane = NEAR_END >= pass.X(1) && NEAR_END <= FAR_END && FAR_END <= pass.X(pass.n);
    if (pass.ASCENDS && is_on_lane) {
      SET_ZONE(pass, pass.FIRST_NOT_BELOW(NEAR_END), pass.FIRST_NOT_BELOW(FAR_END));
    } else {
      ZONE = LOCATE_ZONE(FAR_END, NEAR_END, pass.X, pass.n);
    }
  }
  /// What LOCATE_ZONE gives where the points ascend, from the first points that don't lie below the ends.
  void SET_ZONE(const T_PASS& pass, std::int32_t at_near, std::int32_t at_far) {
    const auto fraction = [&pass](real end, std::int32_t above) {
      return (end - pass.X(above - 1)) / (pass.X(above) - pass.X(above - 1));
    };
    ZONE = {at_far, 0, at_near, 0};
    if (pass.X(at_near) != NEAR_END) ZONE.NEAR_FRACTION = fraction(NEAR_END, at_near);
    if (pass.X(at_far) == FAR_END) return;
    ZONE.FAR_INDEX = at_far - 1;
    ZONE.FAR_FRACTION = fraction(FAR_END, at_far);
  }
};

/// Sums of the four axle ordinates that serve maxima and minima, and the planes that gave them; 0 is none.
struct T_AXLE_SUMS {
  T_ORDINATE SUM;
  std::int32_t MAX_PLANE = 0;
  std::int32_t MIN_PLANE = 0;
  [[nodiscard]] real OF(SIDE side) const noexcept { return side == MAX_SIDE ? SUM.UPPER : SUM.LOWER; }
  [[nodiscard]] std::int32_t PLANE_OF(SIDE side) const noexcept {
    return side == MAX_SIDE ? MAX_PLANE : MIN_PLANE;
  }
};

/// Ordinates of the rear axles by plane, which stand still from type to type.
using T_REAR_ORDINATES = std::vector<std::array<T_ORDINATE, 2>>;

template <LAYOUT L>
[[nodiscard]] T_ORDINATE AXLE_ORDINATE(const T_PASS& pass, std::size_t plane, std::size_t axle,
                                       const T_PLACEMENT& placement) {
  return ORDINATE_OF<L>(placement.POSITIONS[axle], pass.AXLE_LINES[HB_AXLES * plane + axle]);
}

template <LAYOUT L>
void FIND_REAR_ORDINATES(const T_PASS& pass, const T_PLACEMENT& placement, T_REAR_ORDINATES& rear) {
  rear.resize(pass.OWN->size());
  for (std::size_t plane = 0; plane < rear.size(); ++plane) {
    rear[plane] = {AXLE_ORDINATE<L>(pass, plane, 2, placement), AXLE_ORDINATE<L>(pass, plane, 3, placement)};
  }
}

template <LAYOUT L>
[[nodiscard]] T_ORDINATE AXLE_SUM(const T_PASS& pass, std::size_t plane, const T_PLACEMENT& placement,
                                  const T_REAR_ORDINATES& rear) {
  T_ORDINATE sum = AXLE_ORDINATE<L>(pass, plane, 0, placement);
  const auto add = [&sum](const T_ORDINATE& ordinate) {
    sum.UPPER += ordinate.UPPER;
    sum.LOWER += ordinate.LOWER;
  };
  add(AXLE_ORDINATE<L>(pass, plane, 1, placement));
  add(rear[plane][0]);
  add(rear[plane][1]);
  return sum;
}

/// A straddling HB takes the best plane of each side; a side that no plane takes beyond 0 keeps 0. An HB in a
/// lane has one plane, whose sum counts on both sides, whatever its sign.
template <LAYOUT L, bool STRADDLES>
[[nodiscard]] T_AXLE_SUMS AXLE_SUMS(const T_PASS& pass, const T_PLACEMENT& placement,
                                    const T_REAR_ORDINATES& rear) {
  T_AXLE_SUMS best;
  if constexpr (!STRADDLES) {
    best.SUM = AXLE_SUM<L>(pass, 0, placement, rear);
    return best;
  }
  for (std::size_t p = 0; p < rear.size(); ++p) {
    const T_ORDINATE sum = AXLE_SUM<L>(pass, p, placement, rear);
    if (sum.UPPER > best.SUM.UPPER) {
      best.SUM.UPPER = sum.UPPER;
      best.MAX_PLANE = static_cast<std::int32_t>(p) + 1;
    }
    if (sum.LOWER < best.SUM.LOWER) {
      best.SUM.LOWER = sum.LOWER;
      best.MIN_PLANE = static_cast<std::int32_t>(p) + 1;
    }
  }
  return best;
}

}  // namespace search
