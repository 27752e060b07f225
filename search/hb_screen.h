// Screening of the placements of a pass: which of them can't win
// is told by bounds, and needs no exact value. Inside the folder.
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
#include <utility>

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
  /// The first point beyond the position; the last point where there is none.
  std::int32_t ADVANCE_BEYOND(const T_PASS& pass, real position) {
    while (at_ < pass.n && pass.X(at_) <= position) ++at_;
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

  /// At every `step`-th point where a type fits, calls enter(placement) with the shortest type, whose rear
  /// axles stand in their place, and where that says yes visit(placement, axle sums) for every type that
  /// fits, in plain order. The zone is left to PLACE_ZONE.
  template <class ENTER, class VISIT>
  void RUN(std::int32_t step, ENTER enter, VISIT visit) {
    for (std::int32_t i = 1; i <= pass_.n; i += step) {
      T_PLACEMENT placement(pass_, offsets_, i);
      placement.TAKE_TYPE(pass_, offsets_, 1);
      if (!placement.FITS(pass_)) continue;  // the longer types won't fit either
      third_.FIND(pass_, placement.AXLE[2], placement.POSITIONS[2]);
      fourth_.FIND(pass_, placement.AXLE[3], placement.POSITIONS[3]);
      FIND_REAR_ORDINATES<L>(pass_, placement, rear_);
      if (!enter(placement)) continue;
      for (std::int32_t k = 1; k <= HB_TYPES; ++k) {
        if (k > 1) placement.TAKE_TYPE(pass_, offsets_, k);
        if (!placement.FITS(pass_)) break;
        T_FRONT& front = front_of(placement);
        front.FIRST.FIND(pass_, placement.AXLE[0], placement.POSITIONS[0]);
        front.SECOND.FIND(pass_, placement.AXLE[1], placement.POSITIONS[1]);
        visit(placement, AXLE_SUMS<L, STRADDLES>(pass_, placement, rear_));
      }
    }
  }

  /// The points between which the front axles of all types stand. Of points at one place all count, for the
  /// way of bracketing decides which of them an axle reads.
  std::pair<std::int32_t, std::int32_t> FRONT_AXLES(const T_PLACEMENT& placement) {
    const real rearmost = placement.AXLE[1];
    const real foremost = pass_.X(placement.POINT_INDEX) + offsets_.OF_TYPE.back()[0];
    const std::int32_t first = front_.front().SECOND.ADVANCE(pass_, rearmost) - 1;
    return {std::max(first, 1), foremost_.ADVANCE_BEYOND(pass_, foremost)};
  }

  /// Places the zone of the placement in hand.
  void PLACE_ZONE(T_PLACEMENT& placement) {
    placement.SET_ZONE(pass_, near_.ADVANCE(pass_, placement.NEAR_END),
                       front_of(placement).FAR.ADVANCE(pass_, placement.FAR_END));
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
  CURSOR third_, fourth_, near_, foremost_;
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
    if (!(input_.VEHICLE->HB_LOAD >= 0 && input_.VEHICLE->HB_LOAD <= LARGEST)) return false;
    const real shortest = offsets_.LENGTH(1);
    const real farthest = std::max(std::fabs(pass_.X(1)), std::fabs(pass_.X(pass_.n)));
    if (!(shortest > 0.1F) || !(farthest < 1e4F * shortest)) return false;
    const double longest = static_cast<double>(offsets_.OF_TYPE.back()[0]) + 2 * lane_length();
    return work_.INTENSITY.PREPARE(input_.VEHICLE->HA_CURVE, shortest_vehicle(), longest) &&
           planes_.PREPARE_BOUNDS(shortest_vehicle());
  }

  /// Screens the pass and calls attempt(placement) for what is left,
  /// in plain order; what it keeps stands in `result`.
  template <class ATTEMPT>
  void RUN(const T_SEARCH_RESULT& result, ATTEMPT attempt) {
    constexpr std::int32_t COARSE_STEP = 8;
    take_best(result);
    find_extremes();
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      ha_anywhere_[side] = planes_.ANYWHERE_BOUND(side, shortest_vehicle());
    }
    // A coarse walk first, which tells how high the best reaches at least; a pass before this one has told.
    const bool has_best = best_[MAX_SIDE] > 0 || best_[MIN_SIDE] > 0;
    for (const std::int32_t step : {COARSE_STEP, 1}) {
      if (step > 1 && has_best) continue;
      work_.LEFT.clear();
      WALK walk(pass_, offsets_, work_.REAR);
      walk.RUN(
          step, [&](T_PLACEMENT& placement) { return may_win_at_point(walk, placement); },
          [&](T_PLACEMENT& placement, const T_AXLE_SUMS& sums) { screen(walk, placement, sums); });
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

  [[nodiscard]] double lane_length() const {
    return static_cast<double>(pass_.X(pass_.n)) - static_cast<double>(pass_.X(1));
  }
  /// A vehicle's length is a difference of positions, and may come out shorter by a rounding.
  [[nodiscard]] double shortest_vehicle() const { return 0.99 * static_cast<double>(offsets_.LENGTH(1)); }

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

  /// Extremes of the front axles' lines over about as many points as the front axles of all types span, from
  /// each point on; by doubling the span.
  void find_extremes() {
    const auto n = static_cast<std::size_t>(pass_.n);
    const double front = static_cast<double>(offsets_.OF_TYPE.back()[0] - offsets_.OF_TYPE.front()[1]);
    const double points = front / lane_length() * static_cast<double>(n);
    for (extent_ = 1; 2 * static_cast<double>(extent_) <= points && 2 * extent_ < n;) extent_ *= 2;
    work_.EXTREMES.resize(2 * pass_.OWN->size());
    for (std::size_t plane = 0; plane < pass_.OWN->size(); ++plane) {
      for (const std::size_t axle : {0U, 1U}) {
        if (axle == 1 && pass_.AXLES[0] == pass_.AXLES[1]) continue;
        find_extremes_of(pass_.AXLE_LINES[HB_AXLES * plane + axle], work_.EXTREMES[2 * plane + axle]);
      }
    }
  }
  void find_extremes_of(const T_LINE& line, T_HB_WORK::T_EXTREMES& extremes) const {
    const auto n = static_cast<std::size_t>(pass_.n);
    extremes.HIGHEST.resize(n);
    extremes.LOWEST.resize(n);
    real* highest = extremes.HIGHEST.data();
    real* lowest = extremes.LOWEST.data();
    for (std::size_t i = 0; i < n; ++i) {
      const auto k = static_cast<std::int32_t>(i) + 1;
      highest[i] = std::max(number_or(line.BEFORE(k), -INFINITE), number_or(line.AFTER(k), -INFINITE));
      lowest[i] = std::min(number_or(line.BEFORE(k), INFINITE), number_or(line.AFTER(k), INFINITE));
    }
    for (std::size_t span = 1; span < extent_; span *= 2) {
      for (std::size_t i = 0; i + span < n; ++i) {
        highest[i] = std::max(highest[i], highest[i + span]);
        lowest[i] = std::min(lowest[i], lowest[i + span]);
      }
    }
  }
  static constexpr real INFINITE = std::numeric_limits<real>::infinity();
  /// Ordinates of another lane may be no numbers. An axle that reads one wins nothing.
  static real number_or(real value, real other) { return std::isnan(value) ? other : value; }

  /// Extremes of a front axle's line between two points.
  [[nodiscard]] T_ORDINATE front_extremes(std::size_t plane, std::size_t axle, std::int32_t first,
                                          std::int32_t last) const {
    if (pass_.AXLES[0] == pass_.AXLES[1]) axle = 0;
    const T_HB_WORK::T_EXTREMES& extremes = work_.EXTREMES[2 * plane + axle];
    auto i = static_cast<std::size_t>(first - 1);
    T_ORDINATE found{extremes.HIGHEST[i], extremes.LOWEST[i]};
    for (i += extent_; i < static_cast<std::size_t>(last); i += extent_) {
      found = {std::max(found.UPPER, extremes.HIGHEST[i]), std::min(found.LOWER, extremes.LOWEST[i])};
    }
    return found;
  }

  /// The largest effects that the axles of any type can have at the point in hand, as magnitudes, with the
  /// front axles somewhere between two points.
  [[nodiscard]] std::array<double, N_SIDES> highest_hb(std::int32_t first, std::int32_t last) const {
    constexpr double SUM_ROUNDING = 1e-6;
    constexpr double LARGEST_SUM = 1e30;  // beyond, sums may overflow on the way
    const auto load = static_cast<double>(input_.VEHICLE->HB_LOAD);
    std::array<double, N_SIDES> highest;
    highest.fill(PLANES::STRADDLES ? 0 : CANT_WIN);
    for (std::size_t plane = 0; plane < work_.REAR.size(); ++plane) {
      const std::array<T_ORDINATE, HB_AXLES> axles{front_extremes(plane, 0, first, last),
                                                   front_extremes(plane, 1, first, last),
                                                   work_.REAR[plane][0], work_.REAR[plane][1]};
      for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
        double sum = 0;
        double magnitude = 0;
        for (const T_ORDINATE& axle : axles) {
          const auto ordinate = static_cast<double>(side == MAX_SIDE ? axle.UPPER : -axle.LOWER);
          sum += ordinate;
          magnitude += std::fabs(ordinate);
        }
        const double hb = (sum + SUM_ROUNDING * magnitude) * load + SMALLEST * (1 + load);
        highest[side] = std::max(highest[side], hb);
        if (!(magnitude <= LARGEST_SUM)) highest[side] = std::numeric_limits<double>::infinity();
      }
    }
    return highest;
  }

  /// The most that both can give together, as a magnitude.
  /// HA UDL of 0 leaves the effect of the axles as it is.
  [[nodiscard]] static double highest_total(double hb, double ha) {
    return ha == 0 ? hb : hb + ha + ROUNDING * (std::fabs(hb) + ha) + SMALLEST;
  }

  /// Whether any type can win at the point of the placement, which is of the shortest type: the others keep
  /// more of the lane free, and their length alone lowers the intensity.
  [[nodiscard]] bool may_win_at_point(WALK& walk, T_PLACEMENT& placement) {
    const auto [first, last] = walk.FRONT_AXLES(placement);
    const std::array<double, N_SIDES> hb = highest_hb(first, last);
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      may_win_[side] = can_win(side, highest_total(hb[side], ha_anywhere_[side]));
    }
    if (!may_win_[MAX_SIDE] && !may_win_[MIN_SIDE]) return false;
    walk.PLACE_ZONE(placement);
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      if (!may_win_[side]) continue;
      ha_at_point_[side] = planes_.QUICK_BOUND(side, placement);
      may_win_[side] = can_win(side, highest_total(hb[side], ha_at_point_[side]));
    }
    return may_win_[MAX_SIDE] || may_win_[MIN_SIDE];
  }

  void screen(WALK& walk, T_PLACEMENT& placement, const T_AXLE_SUMS& sums) {
    // The effect of the axles, exact as the placing has it, turned so that large counts.
    const real load = input_.VEHICLE->HB_LOAD;
    const std::array<double, N_SIDES> hb{static_cast<double>(sums.SUM.UPPER * load),
                                         -static_cast<double>(sums.SUM.LOWER * load)};
    // From cheap to dear: what HA UDL gives at the point at most, the area outside the zone, the ranges.
    std::array<bool, N_SIDES> open{};
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      open[side] = may_win_[side] && can_win(side, highest_total(hb[side], ha_at_point_[side]));
    }
    if (!open[MAX_SIDE] && !open[MIN_SIDE]) return;
    walk.PLACE_ZONE(placement);
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      open[side] = open[side] && can_win(side, highest_total(hb[side], planes_.QUICK_BOUND(side, placement)));
    }
    if (!open[MAX_SIDE] && !open[MIN_SIDE]) return;
    planes_.CUT(placement);
    std::array<double, N_SIDES> high{CANT_WIN, CANT_WIN};
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      if (!open[side]) continue;
      const T_BOUNDS ha = planes_.BOUND(side, placement, reach_[side] - hb[side]);
      high[side] = highest_total(hb[side], ha.HIGH);
      const double low = hb[side] + ha.LOW - ROUNDING * (std::fabs(hb[side]) + ha.LOW) - SMALLEST;
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
  std::size_t extent_ = 1;                     // points that an entry of the extremes covers
  std::array<double, N_SIDES> best_{};         // so far, as magnitudes
  std::array<double, N_SIDES> reach_{};        // what the best of the pass reaches at least
  std::array<double, N_SIDES> ha_anywhere_{};  // HA UDL at most, wherever the vehicle stands
  std::array<double, N_SIDES> ha_at_point_{};  // HA UDL at most, of all types at the point in hand
  std::array<bool, N_SIDES> may_win_{};        // whether any type can win there
};

}  // namespace search
