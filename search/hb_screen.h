// Screening of the placements of a pass: which of them can't win is told by bounds, and needs no exact value.
// Inside the folder.
//
// Only a placement whose upper bound reaches the best lower bound of the pass can be the pass's best, and the
// first of equal bests is among these, for its bound reaches too. So a pass is screened first, and the exact
// search runs in plain order over the placements that are left.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "search/hb_passes.h"

namespace search {

/// A place on ascending points that only moves forward, with the placements of one offset.
class CURSOR {
 public:
  /// The first point that doesn't lie below the position, which must lie on the lane.
  std::int32_t ADVANCE(const T_PASS& pass, real position) {
    while (at_ < pass.n && pass.X(at_) < position) ++at_;
    return at_;
  }
  /// Finds what FIND_POSITION finds. Field by field into its place: a copied record would wait for its parts.
  void FIND(const T_PASS& pass, real position, T_POSITION& found) {
    const std::int32_t at = ADVANCE(pass, position);
    const real above = pass.X(at);
    if (above != position) {
      const real below = pass.X(at - 1);
      found.POINT_INDEX = at - 1;
      found.FRACTION = (position - below) / (above - below);
      found.ON_POINT = false;
    } else if (at > 1 && at < pass.n && pass.X(at + 1) == position) {
      found = FIND_POSITION(position, pass.X, pass.n);  // of equal points, the way of bracketing decides
    } else {
      found.POINT_INDEX = at;
      found.FRACTION = 0;
      found.ON_POINT = true;
    }
  }

 private:
  std::int32_t at_ = 1;
};

/// Walks over the placements of a pass whose points ascend. Positions are those of T_PLACEMENT::FIND, but at
/// a cost that doesn't grow with the points.
template <LAYOUT L, bool STRADDLES>
class PLACEMENT_WALK {
 public:
  PLACEMENT_WALK(const T_PASS& pass, const T_OFFSETS& offsets, T_REAR_ORDINATES& rear)
      : pass_(pass), offsets_(offsets), rear_(rear) {}

  /// Calls visit(placement, axle sums) for every `step`-th point and every type that fits, in plain order.
  /// The zone is left to PLACE_ZONE.
  template <class VISIT>
  void RUN(std::int32_t step, VISIT visit) {
    for (std::int32_t i = 1; i <= pass_.n; i += step) {
      T_PLACEMENT placement(pass_, offsets_, i);
      for (std::int32_t k = 1; k <= HB_TYPES; ++k) {
        placement.TAKE_TYPE(pass_, offsets_, k);
        if (!placement.FITS(pass_)) break;  // the longer types won't fit either
        if (k == 1) {
          third_.FIND(pass_, placement.AXLE[2], placement.POSITIONS[2]);
          fourth_.FIND(pass_, placement.AXLE[3], placement.POSITIONS[3]);
          FIND_REAR_ORDINATES<L>(pass_, placement, rear_);
        }
        T_FRONT& front = front_of(placement);
        front.FIRST.FIND(pass_, placement.AXLE[0], placement.POSITIONS[0]);
        front.SECOND.FIND(pass_, placement.AXLE[1], placement.POSITIONS[1]);
        visit(placement, AXLE_SUMS<L, STRADDLES>(pass_, placement, rear_));
      }
    }
  }

  /// Places the zone of the placement in hand.
  void PLACE_ZONE(T_PLACEMENT& placement) {
    const auto fraction = [this](real end, std::int32_t above) {
      return (end - pass_.X(above - 1)) / (pass_.X(above) - pass_.X(above - 1));
    };
    const std::int32_t above_near = near_.ADVANCE(pass_, placement.NEAR_END);
    const std::int32_t above_far = front_of(placement).FAR.ADVANCE(pass_, placement.FAR_END);
    T_ZONE_PLACE& zone = placement.ZONE;
    zone = {above_far, 0, above_near, 0};
    if (pass_.X(above_near) != placement.NEAR_END)
      zone.NEAR_FRACTION = fraction(placement.NEAR_END, above_near);
    if (pass_.X(above_far) == placement.FAR_END) return;
    zone.FAR_INDEX = above_far - 1;
    zone.FAR_FRACTION = fraction(placement.FAR_END, above_far);
  }

 private:
  struct T_FRONT {
    CURSOR FIRST, SECOND, FAR;
  };
  T_FRONT& front_of(const T_PLACEMENT& placement) {
    return front_[static_cast<std::size_t>(placement.HB_TYPE - 1)];
  }

  const T_PASS& pass_;
  const T_OFFSETS& offsets_;
  T_REAR_ORDINATES& rear_;
  CURSOR third_, fourth_, near_;
  std::array<T_FRONT, HB_TYPES> front_;
};

/// PLANES tells where the HB stands and how HA UDL lies beside it; see hb_placing.cpp.
template <class PLANES>
class SCREEN {
 public:
  SCREEN(const T_PASS& pass, const T_HB_INPUT& input, const T_OFFSETS& offsets, PLANES& planes,
         T_HB_WORK& work)
      : pass_(pass), input_(input), offsets_(offsets), planes_(planes), work_(work) {}

  /// False where bounds can't be relied on for this line and vehicle.
  [[nodiscard]] bool PREPARE() {
    constexpr real LARGEST = 1e15F;
    if (!(std::fabs(input_.VEHICLE->HB_LOAD) <= LARGEST)) return false;
    const double lane = static_cast<double>(pass_.X(pass_.n)) - static_cast<double>(pass_.X(1));
    const real shortest = offsets_.LENGTH(1);
    if (!(shortest > 0.1F) || !(std::fabs(pass_.X(pass_.n)) < 1e4F * shortest)) return false;
    const double longest = static_cast<double>(offsets_.OF_TYPE.back()[0]) + 2 * lane;
    return work_.INTENSITY.PREPARE(input_.VEHICLE->HA_CURVE, OFF * static_cast<double>(shortest), longest) &&
           planes_.PREPARE_BOUNDS();
  }

  /// Screens the pass and calls attempt(placement) for what is left, in plain order; what it keeps stands in
  /// `result`.
  template <class ATTEMPT>
  void RUN(const T_SEARCH_RESULT& result, ATTEMPT attempt) {
    constexpr std::int32_t COARSE_STEP = 8;
    take_best(result);
    for (std::int32_t k = 1; k <= HB_TYPES; ++k) {
      for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
        anywhere_[static_cast<std::size_t>(k - 1)][side] =
            planes_.ANYWHERE_BOUND(side, OFF * static_cast<double>(offsets_.LENGTH(k)));
      }
    }
    // A coarse walk first, which tells how high the best reaches at least.
    for (const std::int32_t step : {COARSE_STEP, 1}) {
      work_.LEFT.clear();
      WALK walk(pass_, offsets_, work_.REAR);
      walk.RUN(step, [&](T_PLACEMENT& placement, const T_AXLE_SUMS& sums) { screen(walk, placement, sums); });
    }
    for (const T_HB_WORK::T_LEFT& left : work_.LEFT) {
      if (!can_win(left.HIGH)) continue;
      T_PLACEMENT placement(pass_, offsets_, left.POINT_INDEX);
      placement.TAKE_TYPE(pass_, offsets_, left.HB_TYPE);
      attempt(placement);
      take_best(result);
    }
  }

 private:
  using WALK = PLACEMENT_WALK<typename PLANES::ROWS, PLANES::STRADDLES>;
  static constexpr double ROUNDING = 1.3e-7;  // of the effect of the axles, and of the total
  static constexpr double SMALLEST = 1e-44;
  static constexpr double OFF = 0.99;  // the vehicle is a difference of positions, and shorter by a rounding

  /// What is strictly better than the best so far can win, where it may be the best of the pass.
  void take_best(const T_SEARCH_RESULT& result) {
    best_ = {static_cast<double>(result[MAX_SIDE].VALUE), -static_cast<double>(result[MIN_SIDE].VALUE)};
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) reach_[side] = std::max(reach_[side], best_[side]);
  }
  [[nodiscard]] bool can_win(SIDE side, double high) const {
    return high >= reach_[side] && high > best_[side];
  }
  [[nodiscard]] bool can_win(const std::array<double, N_SIDES>& high) const {
    return can_win(MAX_SIDE, high[MAX_SIDE]) || can_win(MIN_SIDE, high[MIN_SIDE]);
  }

  void screen(WALK& walk, T_PLACEMENT& placement, const T_AXLE_SUMS& sums) {
    // The effect of the axles, exact as the placing has it, turned so that large counts.
    const real load = input_.VEHICLE->HB_LOAD;
    const std::array<double, N_SIDES> hb{static_cast<double>(sums.SUM.UPPER * load),
                                         -static_cast<double>(sums.SUM.LOWER * load)};
    const auto rounding = [&hb](SIDE side, double ha) { return ROUNDING * (std::fabs(hb[side]) + ha); };
    const auto highest = [&](SIDE side, double ha) {
      return ha == 0 ? hb[side] : hb[side] + ha + rounding(side, ha) + SMALLEST;
    };
    // From cheap to dear: the whole line's area, the area outside the zone, the ranges.
    const auto& anywhere = anywhere_[static_cast<std::size_t>(placement.HB_TYPE - 1)];
    std::array<bool, N_SIDES> open{};
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) open[side] = can_win(side, highest(side, anywhere[side]));
    if (!open[MAX_SIDE] && !open[MIN_SIDE]) return;
    walk.PLACE_ZONE(placement);
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      open[side] = open[side] && can_win(side, highest(side, planes_.QUICK_BOUND(side, placement)));
    }
    if (!open[MAX_SIDE] && !open[MIN_SIDE]) return;
    planes_.CUT(placement);
    std::array<double, N_SIDES> high{CANT_WIN, CANT_WIN};
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      if (!open[side]) continue;
      const T_BOUNDS ha = planes_.BOUND(side, placement, reach_[side] - hb[side]);
      high[side] = highest(side, ha.HIGH);
      const double low = hb[side] + ha.LOW - rounding(side, ha.LOW) - SMALLEST;
      reach_[side] = std::max(reach_[side], low);
    }
    if (can_win(high)) work_.LEFT.push_back({placement.POINT_INDEX, placement.HB_TYPE, high});
  }

  static constexpr double CANT_WIN = -std::numeric_limits<double>::infinity();
  const T_PASS& pass_;
  const T_HB_INPUT& input_;
  const T_OFFSETS& offsets_;
  PLANES& planes_;
  T_HB_WORK& work_;
  std::array<std::array<double, N_SIDES>, HB_TYPES> anywhere_{};  // HA UDL at most, wherever the zone is
  std::array<double, N_SIDES> best_{};                            // so far, as magnitudes
  std::array<double, N_SIDES> reach_{};  // what the best of the pass reaches at least
};

}  // namespace search
