#include "search/hb_placing.h"

#include "search/hb_screen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace search {
namespace {

constexpr real ONE_THIRD = 0.3333F;  // the portion of HA UDL as the records know it, not 1 / 3

// --------------------------------------------------------------------------------- the HA UDL beside it

/// What every kept placement records of its HA search and its place.
void record_placement(const T_HA_SIDE& ha, std::int32_t numbered, const T_PASS& pass,
                      const T_PLACEMENT& placement, std::int32_t code, T_HB_REC& record,
                      std::vector<std::int32_t>& numbers) {
  const std::int32_t i = placement.POINT_INDEX;
  // In the lane's own numbering.
  const std::int32_t position = pass.DIRECTION == FORWARD_PASS ? i : pass.n - i + 1;
  record = {ha.W_MILLI, ha.LOADED_COUNT, placement.HB_TYPE, position, code, numbered};
  numbers.assign(ha.RANGES, ha.RANGES + ha.LOADED_COUNT);
}

/// HA UDL on one line: the lane's own, or the sum of the two parent lanes'. One HB_CODE, of the plane.
template <LAYOUT L>
class HA_ON_LINE {
 public:
  HA_ON_LINE(const T_HB_INPUT& input, T_HB_WORK& work) : input_(input), work_(work) {}

  void BEGIN_PASS(const T_LINE& line) {
    line_ = line;
    is_known_ = false;
  }
  void SEARCH(const T_PLACEMENT& placement) {
    ha_ = HA_SEARCH_ZONE_OF<L>(line_, input_.VEHICLE->HA_CURVE, placement.ZONE, placement.VEHICLE_LENGTH,
                               work_.RANGES[0], is_known_ ? work_.BOUNDS.data() : nullptr);
  }
  [[nodiscard]] real VALUE(SIDE side) const { return ha_[side].VALUE; }
  void RECORD(SIDE side, const T_PASS& pass, const T_PLACEMENT& placement, std::int32_t plane,
              T_SIDE_RESULT& result) const {
    const std::int32_t code = plane == 0 ? 0 : input_.LANE_NUMBER * L::SUM_CODE_FACTOR + plane;
    record_placement(ha_[side], work_.RANGES[0].SIDES[side].COUNT, pass, placement, code, result.HB_REC,
                     result.INFL_REC);
  }

  [[nodiscard]] bool PREPARE_BOUNDS(double shortest_vehicle) {
    is_known_ = work_.BOUNDS[0].PREPARE<L>(line_, work_.INTENSITY, 0, shortest_vehicle);
    return is_known_;
  }
  [[nodiscard]] double ANYWHERE_BOUND(SIDE side, double vehicle_length) const {
    return work_.BOUNDS[0].ANYWHERE_BOUND(side, vehicle_length);
  }
  [[nodiscard]] double QUICK_BOUND(SIDE side, const T_PLACEMENT& placement) const {
    return work_.BOUNDS[0].QUICK_BOUND(side, placement.ZONE, static_cast<double>(placement.VEHICLE_LENGTH));
  }
  void CUT(const T_PLACEMENT& placement) { cut_ = work_.BOUNDS[0].CUT<L>(line_, placement.ZONE); }
  [[nodiscard]] T_BOUNDS BOUND(SIDE side, const T_PLACEMENT& placement, double needed) {
    return work_.BOUNDS[0].BOUND(side, cut_, static_cast<double>(placement.VEHICLE_LENGTH), needed);
  }

 private:
  const T_HB_INPUT& input_;
  T_HB_WORK& work_;
  T_LINE line_;
  bool is_known_ = false;  // the line's bounds are prepared
  T_HA_RESULT ha_;
  T_ZONE_CUT cut_;
};

/// HA UDL on the two parent lanes apart, full on one and a third on the other: chosen afresh at every
/// placement and on each side; the first parent lane takes the full one in a tie.
template <LAYOUT L>
class HA_ON_PAIR {
 public:
  HA_ON_PAIR(const T_HB_INPUT& input, T_HB_WORK& work) : input_(input), work_(work) {}

  void BEGIN_PASS(const T_LINE& first, const T_LINE& second) {
    lines_ = {first, second};
    are_known_ = false;
  }
  void SEARCH(const T_PLACEMENT& placement) {
    ha_ = HA_SEARCH_ZONE_PAIR_OF<L>(lines_[0], lines_[1], input_.VEHICLE->HA_CURVE, placement.ZONE,
                                    placement.VEHICLE_LENGTH, work_.RANGES[0], work_.RANGES[1],
                                    are_known_ ? work_.BOUNDS.data() : nullptr,
                                    are_known_ ? work_.BOUNDS.data() + 1 : nullptr);
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      const real first_full = ha_.A[side].VALUE + ONE_THIRD * ha_.B[side].VALUE;
      const real second_full = ONE_THIRD * ha_.A[side].VALUE + ha_.B[side].VALUE;
      first_is_full_[side] = side == MAX_SIDE ? first_full >= second_full : second_full >= first_full;
      values_[side] = first_is_full_[side] ? first_full : second_full;
    }
  }
  [[nodiscard]] real VALUE(SIDE side) const { return values_[side]; }
  void RECORD(SIDE side, const T_PASS& pass, const T_PLACEMENT& placement, std::int32_t plane,
              T_SIDE_RESULT& result) const {
    constexpr std::int32_t CODE_FACTOR = 1000;
    const std::int32_t code = plane == 0 ? 0 : (input_.LANE_NUMBER * CODE_FACTOR + plane) * 10;
    const std::array<const T_HA_RESULT*, 2> parents{&ha_.A, &ha_.B};
    for (std::size_t parent = 0; parent < 2; ++parent) {
      const bool is_full = first_is_full_[side] == (parent == 0);
      record_placement((*parents[parent])[side], work_.RANGES[parent].SIDES[side].COUNT, pass, placement,
                       code + (is_full ? 1 : 0), result.HB_REC_PLANES[parent],
                       result.INFL_REC_PLANES[parent]);
    }
  }

  [[nodiscard]] bool PREPARE_BOUNDS(double shortest_vehicle) {
    are_known_ = work_.BOUNDS[0].PREPARE<L>(lines_[0], work_.INTENSITY, L::SHORT_RANGE, shortest_vehicle) &&
                 work_.BOUNDS[1].PREPARE<L>(lines_[1], work_.INTENSITY, L::SHORT_RANGE, shortest_vehicle);
    return are_known_;
  }
  [[nodiscard]] double ANYWHERE_BOUND(SIDE side, double vehicle_length) const {
    return larger_sum(work_.BOUNDS[0].ANYWHERE_BOUND(side, vehicle_length),
                      work_.BOUNDS[1].ANYWHERE_BOUND(side, vehicle_length)) *
           (1 + PAIR_ROUNDING);
  }
  [[nodiscard]] double QUICK_BOUND(SIDE side, const T_PLACEMENT& placement) const {
    const auto length = static_cast<double>(placement.VEHICLE_LENGTH);
    return larger_sum(work_.BOUNDS[0].QUICK_BOUND(side, placement.ZONE, length),
                      work_.BOUNDS[1].QUICK_BOUND(side, placement.ZONE, length)) *
           (1 + PAIR_ROUNDING);
  }
  void CUT(const T_PLACEMENT& placement) {
    for (std::size_t parent = 0; parent < 2; ++parent) {
      cuts_[parent] = work_.BOUNDS[parent].CUT<L>(lines_[parent], placement.ZONE);
    }
  }
  [[nodiscard]] T_BOUNDS BOUND(SIDE side, const T_PLACEMENT& placement, double /*needed*/) {
    const auto length = static_cast<double>(placement.VEHICLE_LENGTH);
    const T_BOUNDS a = work_.BOUNDS[0].BOUND(side, cuts_[0], length, 0);
    const T_BOUNDS b = work_.BOUNDS[1].BOUND(side, cuts_[1], length, 0);
    return {larger_sum(a.LOW, b.LOW) * (1 - PAIR_ROUNDING), larger_sum(a.HIGH, b.HIGH) * (1 + PAIR_ROUNDING)};
  }

 private:
  static constexpr double PAIR_ROUNDING = 3e-7;
  [[nodiscard]] static double larger_sum(double a, double b) {
    const auto third = static_cast<double>(ONE_THIRD);
    return std::max(a + third * b, third * a + b);
  }

  const T_HB_INPUT& input_;
  T_HB_WORK& work_;
  std::array<T_LINE, 2> lines_;
  bool are_known_ = false;
  T_HA_PAIR ha_;
  std::array<bool, N_SIDES> first_is_full_{};
  std::array<real, N_SIDES> values_{};
  std::array<T_ZONE_CUT, 2> cuts_;
};

// --------------------------------------------------------------------------------- where the HB stands

/// In a lane.
template <LAYOUT L>
struct OWN_SET : HA_ON_LINE<L> {
  using HA_ON_LINE<L>::HA_ON_LINE;
  using ROWS = L;
  static constexpr bool STRADDLES = false;
  void BEGIN(const T_PASS& pass, T_HB_WORK&) { this->BEGIN_PASS(pass.LINE(pass.OWN->front())); }
};

/// Across two parent lanes, planes 2 and 3, that both carry full HA UDL:
/// their ordinates are added up once a pass.
template <LAYOUT L>
struct PLANE_SUM : HA_ON_LINE<L> {
  using HA_ON_LINE<L>::HA_ON_LINE;
  using ROWS = L;
  static constexpr bool STRADDLES = true;
  void BEGIN(const T_PASS& pass, T_HB_WORK& work) {
    const T_ORDINATES& first = (*pass.OWN)[1];
    const T_ORDINATES& second = (*pass.OWN)[2];
    if (work.SUM.POINTS() < pass.n || work.SUM.COLUMNS() != first.COLUMNS()) {
      work.SUM = T_ORDINATES(pass.n, first.COLUMNS());
    }
    for (std::int32_t column = 1; column <= first.COLUMNS(); ++column) {
      for (std::int32_t k = 1; k <= pass.n; ++k) work.SUM(k, column) = first(k, column) + second(k, column);
    }
    this->BEGIN_PASS(pass.LINE(work.SUM));
  }
};

/// Across two parent lanes of which one carries full HA UDL and the other a third.
template <LAYOUT L>
struct PLANE_PAIR : HA_ON_PAIR<L> {
  using HA_ON_PAIR<L>::HA_ON_PAIR;
  using ROWS = L;
  static constexpr bool STRADDLES = true;
  void BEGIN(const T_PASS& pass, T_HB_WORK&) {
    this->BEGIN_PASS(pass.LINE((*pass.OWN)[1]), pass.LINE((*pass.OWN)[2]));
  }
};

// --------------------------------------------------------------------------------- the search

/// Works a placement out and keeps it on the sides where it is strictly better.
template <class PLANES>
void try_placement(const T_PASS& pass, const T_HB_INPUT& input, const T_PLACEMENT& placement,
                   const T_AXLE_SUMS& sums, PLANES& planes, T_SEARCH_RESULT& result) {
  planes.SEARCH(placement);
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    const real total = planes.VALUE(side) + sums.OF(side) * input.VEHICLE->HB_LOAD;
    T_SIDE_RESULT& best = result[side];
    if (side == MAX_SIDE ? !(total > best.VALUE) : !(total < best.VALUE)) continue;
    best.VALUE = total;
    best.PASS_REC = pass.DIRECTION;
    planes.RECORD(side, pass, placement, sums.PLANE_OF(side), best);
  }
}

/// All placements of a pass, or those that screening leaves.
template <class PLANES>
void place_in_pass(T_PASS pass, const T_HB_INPUT& input, const T_OFFSETS& offsets, PLANES& planes,
                   T_HB_WORK& work, T_SEARCH_RESULT& result) {
  using ROWS = typename PLANES::ROWS;
  if (pass.n < 2) return;
  pass.BEGIN(work.AXLE_LINES);
  planes.BEGIN(pass, work);
  const auto attempt = [&](T_PLACEMENT& placement) {
    placement.FIND(pass);
    FIND_REAR_ORDINATES<ROWS>(pass, placement, work.REAR);
    const T_AXLE_SUMS sums = AXLE_SUMS<ROWS, PLANES::STRADDLES>(pass, placement, work.REAR);
    try_placement(pass, input, placement, sums, planes, result);
  };
  if (!pass.ASCENDS || !offsets.ARE_IN_ORDER()) {
    for (std::int32_t i = 1; i <= pass.n; ++i) {
      T_PLACEMENT placement(pass, offsets, i);
      for (std::int32_t k = 1; k <= HB_TYPES; ++k) {
        placement.TAKE_TYPE(pass, offsets, k);
        if (!placement.FITS(pass)) break;  // the longer types won't fit either
        attempt(placement);
      }
    }
    return;
  }
  SCREEN<PLANES> screen(pass, input, offsets, planes, work);
  if (screen.PREPARE()) {
    screen.RUN(result, attempt);
    return;
  }
  PLACEMENT_WALK<ROWS, PLANES::STRADDLES> walk(pass, offsets, work.REAR);
  walk.RUN(
      1, [](const T_PLACEMENT&) { return true; },
      [&](T_PLACEMENT& placement, const T_AXLE_SUMS& sums) {
        walk.PLACE_ZONE(placement);
        try_placement(pass, input, placement, sums, planes, result);
      });
}

template <class PLANES>
void place_hb(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  constexpr std::int32_t FORWARD_ONLY = 0;
  constexpr std::int32_t REVERSE_ONLY = 1;
  const T_OFFSETS offsets(*input.VEHICLE);
  PLANES planes(input, work);
  if (input.LANE_DIRECTION != REVERSE_ONLY) {
    const T_PASS pass{FORWARD_PASS, input.n, input.LANE_X, input.OWN, input.AXLES, false, nullptr};
    place_in_pass(pass, input, offsets, planes, work, result);
  }
  if (input.LANE_DIRECTION != FORWARD_ONLY) {
    place_in_pass(TURN_ROUND(input, work), input, offsets, planes, work, result);
  }
}

/// The form whose axles all run on the lane itself:
/// the same search, with the lane's own set given four times.
template <class PLANES>
void place_hb_on_own_lane(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  T_HB_INPUT own = input;
  own.AXLES.fill(input.OWN);
  place_hb<PLANES>(own, work, result);
}

}  // namespace

// The twelve searches: where the HB stands, whose ordinates its axles read, and the layout.

void HB_LANE(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb_on_own_lane<OWN_SET<SIMPLE_LAYOUT>>(input, work, result);
}

void HB_LANE_JUMP(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb_on_own_lane<OWN_SET<JUMP_LAYOUT>>(input, work, result);
}

void HB_LANE_MULTI(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb<OWN_SET<SIMPLE_LAYOUT>>(input, work, result);
}

void HB_LANE_MULTI_JUMP(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb<OWN_SET<JUMP_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_SUM(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb_on_own_lane<PLANE_SUM<SIMPLE_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_SUM_JUMP(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb_on_own_lane<PLANE_SUM<JUMP_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_SUM_MULTI(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb<PLANE_SUM<SIMPLE_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_SUM_MULTI_JUMP(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb<PLANE_SUM<JUMP_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_THIRD(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb_on_own_lane<PLANE_PAIR<SIMPLE_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_THIRD_JUMP(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb_on_own_lane<PLANE_PAIR<JUMP_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_THIRD_MULTI(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb<PLANE_PAIR<SIMPLE_LAYOUT>>(input, work, result);
}

void HB_STRADDLE_THIRD_MULTI_JUMP(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  place_hb<PLANE_PAIR<JUMP_LAYOUT>>(input, work, result);
}

}  // namespace search
