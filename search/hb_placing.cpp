#include "search/hb_placing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace search {
namespace {

constexpr std::int32_t FORWARD_PASS = 1;
constexpr std::int32_t REVERSE_PASS = 2;
constexpr real ONE_THIRD = 0.3333F;  // the portion of HA UDL as the records know it, not 1 / 3

// ---------------------------------------------------------------------------------------- passes and
// placements

/// Distances of the axles from NEAR_END for each type. The rear bogie stands alike in all of them.
struct T_OFFSETS {
  std::array<std::array<real, HB_AXLES>, HB_TYPES> OF_TYPE;

  explicit T_OFFSETS(const T_VEHICLE_PARAMETERS& vehicle) {
    for (std::size_t k = 0; k < OF_TYPE.size(); ++k) {
      const real bogies = vehicle.HB_B + vehicle.HB_S + static_cast<real>(k) * vehicle.HB_STEP;
      OF_TYPE[k] = {bogies + HB_CLEAR + vehicle.HB_S, bogies + HB_CLEAR, HB_CLEAR + vehicle.HB_S, HB_CLEAR};
    }
  }
};

/// The lane as one pass sees it: as it is, or turned round.
struct T_PASS {
  std::int32_t DIRECTION = FORWARD_PASS;
  std::int32_t n = 0;
  TABLE<const real, POINT> X;
  const std::vector<T_ORDINATES>* OWN = nullptr;
  std::array<const std::vector<T_ORDINATES>*, HB_AXLES> AXLES{};
  const T_LINE* AXLE_LINES = nullptr;  // of axle j on plane p, four to a plane; see BEGIN_LINES

  [[nodiscard]] T_LINE LINE(const T_ORDINATES& ordinates) const { return ordinates.LINE(X, n); }

  /// Builds the views that every placement of the pass reads.
  void BEGIN_LINES(std::vector<T_LINE>& lines) {
    lines.clear();
    for (std::size_t plane = 0; plane < OWN->size(); ++plane) {
      for (const std::vector<T_ORDINATES>* planes : AXLES) lines.push_back(LINE((*planes)[plane]));
    }
    AXLE_LINES = lines.data();
  }
};

/// One placement: where the vehicle stands and what it keeps free.
struct T_PLACEMENT {
  std::int32_t POINT_INDEX = 0;
  std::int32_t HB_TYPE = 0;
  std::array<real, HB_AXLES> AXLE{};
  real VEHICLE_LENGTH = 0;
  real FAR_END = 0;
  real NEAR_END = 0;
  std::array<T_POSITION, HB_AXLES> POSITIONS{};
  T_ZONE_PLACE ZONE;

  T_PLACEMENT(const T_PASS& pass, const T_OFFSETS& offsets, std::int32_t i, std::int32_t k)
      : POINT_INDEX(i), HB_TYPE(k) {
    for (std::size_t j = 0; j < HB_AXLES; ++j) {
      AXLE[j] = pass.X(i) + offsets.OF_TYPE[static_cast<std::size_t>(k - 1)][j];
    }
    VEHICLE_LENGTH = AXLE[0] - AXLE[3];
    FAR_END = AXLE[0] + HB_CLEAR;
    NEAR_END = AXLE[3] - HB_CLEAR;
  }
  [[nodiscard]] bool FITS(const T_PASS& pass) const {
    return !(FAR_END > pass.X(pass.n)) && !(pass.X(1) > NEAR_END);
  }

  /// Places the axles and the ends of the zone among the points.
  void FIND(const T_PASS& pass) {
    for (std::size_t j = 0; j < HB_AXLES; ++j) POSITIONS[j] = FIND_POSITION(AXLE[j], pass.X, pass.n);
    ZONE = LOCATE_ZONE(FAR_END, NEAR_END, pass.X, pass.n);
  }
};

void reverse_rows(const T_ORDINATES& from, std::int32_t n, T_ORDINATES& to) {
  if (to.POINTS() < n || to.COLUMNS() != from.COLUMNS()) to = T_ORDINATES(n, from.COLUMNS());
  for (std::int32_t column = 1; column <= from.COLUMNS(); ++column) {
    for (std::int32_t k = 1; k <= n; ++k) to(k, column) = from(n + 1 - k, column);
  }
}

/// The lane turned round: distances from 0 on, rows in reverse order, columns of a row in the same order.
T_PASS reverse_pass(const T_HB_INPUT& input, T_HB_WORK& work) {
  const std::int32_t n = input.n;
  work.REVERSED_X.assign(static_cast<std::size_t>(n), 0.0F);
  for (std::int32_t k = 1; k < n; ++k) {
    const auto at = static_cast<std::size_t>(k);
    work.REVERSED_X[at] = work.REVERSED_X[at - 1] + input.LANE_X(n - k + 1) - input.LANE_X(n - k);
  }
  std::size_t sets = 0;
  work.REVERSED.resize(1 + HB_AXLES);
  const auto reversed = [&](const std::vector<T_ORDINATES>* source) -> const std::vector<T_ORDINATES>* {
    for (std::size_t s = 0; s < sets; ++s) {
      if (work.REVERSED[s].SOURCE == source) return &work.REVERSED[s].PLANES;
    }
    T_HB_WORK::T_REVERSED_SET& set = work.REVERSED[sets++];
    set.SOURCE = source;
    set.PLANES.resize(source->size());
    for (std::size_t p = 0; p < source->size(); ++p) reverse_rows((*source)[p], n, set.PLANES[p]);
    return &set.PLANES;
  };
  T_PASS pass{REVERSE_PASS, n, {work.REVERSED_X.data(), {n}}, reversed(input.OWN), {}, nullptr};
  for (std::size_t j = 0; j < HB_AXLES; ++j) pass.AXLES[j] = reversed(input.AXLES[j]);
  return pass;
}

// ---------------------------------------------------------------------------------------- the vehicle's
// axles

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

template <LAYOUT L>
T_ORDINATE axle_sum(const T_PASS& pass, std::size_t plane, const T_PLACEMENT& placement) {
  T_ORDINATE sum;
  for (std::size_t j = 0; j < HB_AXLES; ++j) {
    const T_ORDINATE ordinate = ORDINATE_OF<L>(placement.POSITIONS[j], pass.AXLE_LINES[HB_AXLES * plane + j]);
    sum.UPPER += ordinate.UPPER;
    sum.LOWER += ordinate.LOWER;
  }
  return sum;
}

/// A straddling HB takes the best plane of each side; a side that no plane takes beyond 0 keeps 0. An HB in a
/// lane has one plane, whose sum counts on both sides, whatever its sign.
template <LAYOUT L, bool STRADDLES>
T_AXLE_SUMS axle_sums(const T_PASS& pass, const T_PLACEMENT& placement) {
  T_AXLE_SUMS best;
  if constexpr (!STRADDLES) {
    best.SUM = axle_sum<L>(pass, 0, placement);
    return best;
  }
  for (std::size_t p = 0; p < pass.OWN->size(); ++p) {
    const T_ORDINATE sum = axle_sum<L>(pass, p, placement);
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

// ---------------------------------------------------------------------------------------- the HA UDL
// beside it

/// What every kept placement records of its HA search and its place.
void record_placement(const T_HA_SIDE& ha, std::int32_t numbered, const T_PASS& pass,
                      const T_PLACEMENT& placement, std::int32_t code, T_HB_REC& record,
                      std::vector<std::int32_t>& numbers) {
  const std::int32_t i = placement.POINT_INDEX;
  const std::int32_t position =
      pass.DIRECTION == FORWARD_PASS ? i : pass.n - i + 1;  // in the lane's own numbering
  record = {ha.W_MILLI, ha.LOADED_COUNT, placement.HB_TYPE, position, code, numbered};
  numbers.assign(ha.RANGES, ha.RANGES + ha.LOADED_COUNT);
}

/// HA UDL on one line: the lane's own, or the sum of the two parent lanes'. One HB_CODE, of the plane.
template <LAYOUT L>
class HA_ON_LINE {
 public:
  HA_ON_LINE(const T_HB_INPUT& input, T_HB_WORK& work) : input_(input), work_(work) {}

  void BEGIN_PASS(const T_LINE& line) { line_ = line; }
  void SEARCH(const T_PLACEMENT& placement) {
    ha_ = HA_SEARCH_ZONE_OF<L>(line_, input_.VEHICLE->HA_CURVE, placement.ZONE, placement.VEHICLE_LENGTH,
                               work_.RANGES[0]);
  }
  [[nodiscard]] real VALUE(SIDE side) const { return ha_[side].VALUE; }
  void RECORD(SIDE side, const T_PASS& pass, const T_PLACEMENT& placement, std::int32_t plane,
              T_SIDE_RESULT& result) const {
    const std::int32_t code = plane == 0 ? 0 : input_.LANE_NUMBER * L::SUM_CODE_FACTOR + plane;
    record_placement(ha_[side], work_.RANGES[0].SIDES[side].COUNT, pass, placement, code, result.HB_REC,
                     result.INFL_REC);
  }

  [[nodiscard]] bool PREPARE_BOUNDS() { return work_.BOUNDS[0].PREPARE<L>(line_, work_.INTENSITY, 0); }
  [[nodiscard]] double QUICK_BOUND(SIDE side, const T_ZONE_PLACE& zone, double highest_intensity) const {
    return work_.BOUNDS[0].QUICK_BOUND(side, zone, highest_intensity);
  }
  void CUT(const T_PLACEMENT& placement) { cut_ = work_.BOUNDS[0].CUT<L>(line_, placement.ZONE); }
  [[nodiscard]] T_BOUNDS BOUND(SIDE side, const T_PLACEMENT& placement) const {
    return work_.BOUNDS[0].BOUND(side, cut_, static_cast<double>(placement.VEHICLE_LENGTH));
  }

 private:
  const T_HB_INPUT& input_;
  T_HB_WORK& work_;
  T_LINE line_;
  T_HA_RESULT ha_;
  T_ZONE_CUT cut_;
};

/// HA UDL on the two parent lanes apart, full on one and a third on the other: chosen afresh at every
/// placement and on each side; the first parent lane takes the full one in a tie.
template <LAYOUT L>
class HA_ON_PAIR {
 public:
  HA_ON_PAIR(const T_HB_INPUT& input, T_HB_WORK& work) : input_(input), work_(work) {}

  void BEGIN_PASS(const T_LINE& first, const T_LINE& second) { lines_ = {first, second}; }
  void SEARCH(const T_PLACEMENT& placement) {
    ha_ = HA_SEARCH_ZONE_PAIR_OF<L>(lines_[0], lines_[1], input_.VEHICLE->HA_CURVE, placement.ZONE,
                                    placement.VEHICLE_LENGTH, work_.RANGES[0], work_.RANGES[1]);
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

  [[nodiscard]] bool PREPARE_BOUNDS() {
    return work_.BOUNDS[0].PREPARE<L>(lines_[0], work_.INTENSITY, L::SHORT_RANGE) &&
           work_.BOUNDS[1].PREPARE<L>(lines_[1], work_.INTENSITY, L::SHORT_RANGE);
  }
  [[nodiscard]] double QUICK_BOUND(SIDE side, const T_ZONE_PLACE& zone, double highest_intensity) const {
    return larger_sum(work_.BOUNDS[0].QUICK_BOUND(side, zone, highest_intensity),
                      work_.BOUNDS[1].QUICK_BOUND(side, zone, highest_intensity)) *
           (1 + PAIR_ROUNDING);
  }
  void CUT(const T_PLACEMENT& placement) {
    for (std::size_t parent = 0; parent < 2; ++parent) {
      cuts_[parent] = work_.BOUNDS[parent].CUT<L>(lines_[parent], placement.ZONE);
    }
  }
  [[nodiscard]] T_BOUNDS BOUND(SIDE side, const T_PLACEMENT& placement) const {
    const auto length = static_cast<double>(placement.VEHICLE_LENGTH);
    const T_BOUNDS a = work_.BOUNDS[0].BOUND(side, cuts_[0], length);
    const T_BOUNDS b = work_.BOUNDS[1].BOUND(side, cuts_[1], length);
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
  T_HA_PAIR ha_;
  std::array<bool, N_SIDES> first_is_full_{};
  std::array<real, N_SIDES> values_{};
  std::array<T_ZONE_CUT, 2> cuts_;
};

// ---------------------------------------------------------------------------------------- where the HB
// stands

/// In a lane.
template <LAYOUT L>
struct OWN_SET : HA_ON_LINE<L> {
  using HA_ON_LINE<L>::HA_ON_LINE;
  using ROWS = L;
  static constexpr bool STRADDLES = false;
  void BEGIN(const T_PASS& pass, T_HB_WORK&) { this->BEGIN_PASS(pass.LINE(pass.OWN->front())); }
};

/// Across two parent lanes, planes 2 and 3, that both carry full HA UDL: their ordinates are added up once a
/// pass.
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

// ---------------------------------------------------------------------------------------- exact placing

/// Works a placement out and keeps it on the sides where it is strictly better.
template <class PLANES>
void try_placement(const T_PASS& pass, const T_HB_INPUT& input, const T_PLACEMENT& placement, PLANES& planes,
                   T_SEARCH_RESULT& result) {
  const T_AXLE_SUMS sums = axle_sums<typename PLANES::ROWS, PLANES::STRADDLES>(pass, placement);
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

/// The plain road: every placement of a pass.
template <class PLANES>
void try_all(const T_PASS& pass, const T_HB_INPUT& input, const T_OFFSETS& offsets, PLANES& planes,
             T_SEARCH_RESULT& result) {
  for (std::int32_t i = 1; i <= pass.n; ++i) {
    for (std::int32_t k = 1; k <= HB_TYPES; ++k) {
      T_PLACEMENT placement(pass, offsets, i, k);
      if (!placement.FITS(pass)) break;  // the longer types won't fit either
      placement.FIND(pass);
      try_placement(pass, input, placement, planes, result);
    }
  }
}

// ---------------------------------------------------------------------------------------- screening
//
// Only a placement whose upper bound reaches the best lower bound of the pass can be the pass's best, and the
// first of equal bests is among these, for its bound reaches too. So a pass is screened first, and the exact
// search runs in plain order over the placements that are left.

/// A place on ascending points that only moves forward, with the placements of one offset.
class CURSOR {
 public:
  /// The first point that doesn't lie below the position, which must lie on the lane.
  std::int32_t ADVANCE(const T_PASS& pass, real position) {
    while (at_ < pass.n && pass.X(at_) < position) ++at_;
    return at_;
  }
  /// The same as FIND_POSITION.
  T_POSITION FIND(const T_PASS& pass, real position) {
    if (!(position >= pass.X(1) && position <= pass.X(pass.n))) return {};
    const std::int32_t at = ADVANCE(pass, position);
    if (pass.X(at) != position) return POSITION_IN_SEGMENT(position, pass.X, at - 1);
    if (position == pass.X(1)) return {1, 0, true};
    if (position == pass.X(pass.n)) return {pass.n, 0, true};
    // Of three equal positions and more, the way of bracketing decides.
    const bool many = at + 2 <= pass.n && pass.X(at + 2) == position;
    return many ? FIND_POSITION(position, pass.X, pass.n) : T_POSITION{at, 0, true};
  }

 private:
  std::int32_t at_ = 1;
};

/// Walks over placements from point to point, with the axles and the zone placed by cursors.
class PLACEMENT_WALK {
 public:
  PLACEMENT_WALK(const T_PASS& pass, const T_OFFSETS& offsets) : pass_(pass), offsets_(offsets) {}

  /// Calls visit(placement) for every `step`-th point and every type that fits.
  template <class VISIT>
  void RUN(std::int32_t step, VISIT visit) {
    for (std::int32_t i = 1; i <= pass_.n; i += step) {
      T_PLACEMENT shared(pass_, offsets_, i, 1);
      if (!shared.FITS(pass_)) continue;
      // The rear bogie and the near end are the same for all types.
      const T_POSITION third = rear_[0].FIND(pass_, shared.AXLE[2]);
      const T_POSITION fourth = rear_[1].FIND(pass_, shared.AXLE[3]);
      place_near_end(shared);
      for (std::int32_t k = 1; k <= HB_TYPES; ++k) {
        T_PLACEMENT placement(pass_, offsets_, i, k);
        if (!placement.FITS(pass_)) break;
        auto& front = front_[static_cast<std::size_t>(k - 1)];
        placement.POSITIONS = {front[0].FIND(pass_, placement.AXLE[0]),
                               front[1].FIND(pass_, placement.AXLE[1]), third, fourth};
        placement.ZONE = shared.ZONE;
        place_far_end(front[2], placement);
        visit(placement);
      }
    }
  }

 private:
  void place_near_end(T_PLACEMENT& placement) {
    const std::int32_t at = near_.ADVANCE(pass_, placement.NEAR_END);
    placement.ZONE.NEAR_INDEX = at;
    if (pass_.X(at) == placement.NEAR_END) return;
    placement.ZONE.NEAR_FRACTION = (placement.NEAR_END - pass_.X(at - 1)) / (pass_.X(at) - pass_.X(at - 1));
  }
  void place_far_end(CURSOR& cursor, T_PLACEMENT& placement) {
    const std::int32_t at = cursor.ADVANCE(pass_, placement.FAR_END);
    placement.ZONE.FAR_INDEX = at;
    placement.ZONE.FAR_FRACTION = 0;
    if (pass_.X(at) == placement.FAR_END) return;
    placement.ZONE.FAR_INDEX = at - 1;
    placement.ZONE.FAR_FRACTION = (placement.FAR_END - pass_.X(at - 1)) / (pass_.X(at) - pass_.X(at - 1));
  }

  const T_PASS& pass_;
  const T_OFFSETS& offsets_;
  std::array<CURSOR, 2> rear_;
  CURSOR near_;
  std::array<std::array<CURSOR, 3>, HB_TYPES> front_;  // axles 1 and 2, far end
};

template <class PLANES>
class SCREEN {
 public:
  SCREEN(const T_PASS& pass, const T_HB_INPUT& input, const T_OFFSETS& offsets, PLANES& planes,
         T_HB_WORK& work)
      : pass_(pass), input_(input), offsets_(offsets), planes_(planes), work_(work) {}

  /// False where bounds can't be relied on for this line and vehicle.
  [[nodiscard]] bool PREPARE() {
    constexpr real LARGEST = 1e15F;
    if (pass_.n < 2 || !(std::fabs(input_.VEHICLE->HB_LOAD) <= LARGEST)) return false;
    const real shortest = offsets_.OF_TYPE.front()[0] - offsets_.OF_TYPE.front()[3];
    for (std::size_t k = 0; k < HB_TYPES; ++k) {
      const auto& offsets = offsets_.OF_TYPE[k];
      const bool in_order = offsets[0] >= offsets[1] && offsets[1] >= offsets[2] &&
                            offsets[2] >= offsets[3] && offsets[0] - offsets[3] >= shortest &&
                            offsets[0] <= 1e6F;
      if (!in_order) return false;
    }
    const double lane = static_cast<double>(pass_.X(pass_.n)) - static_cast<double>(pass_.X(1));
    // The vehicle is a difference of positions, and shorter or longer by a rounding of these.
    shortest_ = static_cast<double>(shortest) * 0.99;
    if (!(shortest > 0.1F) || !(std::fabs(pass_.X(pass_.n)) < 1e4F * shortest)) return false;
    const double longest = static_cast<double>(offsets_.OF_TYPE.back()[0]) + 2 * lane;
    return work_.INTENSITY.PREPARE(input_.VEHICLE->HA_CURVE, shortest_, longest) && planes_.PREPARE_BOUNDS();
  }

  /// Screens the pass and tries what is left, in plain order.
  void RUN(T_SEARCH_RESULT& result) {
    constexpr std::int32_t COARSE_STEP = 8;
    reach_ = {static_cast<double>(result[MAX_SIDE].VALUE), -static_cast<double>(result[MIN_SIDE].VALUE)};
    highest_intensity_ = work_.INTENSITY.HIGHEST_FROM(shortest_);
    const T_ZONE_PLACE no_zone{1, 0, 1, 0};
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      most_[side] = planes_.QUICK_BOUND(side, no_zone, highest_intensity_);
    }
    PLACEMENT_WALK(pass_, offsets_).RUN(COARSE_STEP, [this](const T_PLACEMENT& placement) {
      const T_AXLE_SUMS sums = sums_of(placement);
      planes_.CUT(placement);
      for (const SIDE side : {MAX_SIDE, MIN_SIDE}) bound(side, placement, sums);
    });
    work_.LEFT.clear();
    PLACEMENT_WALK(pass_, offsets_).RUN(1, [this](const T_PLACEMENT& placement) { screen(placement); });
    for (const T_HB_WORK::T_LEFT& left : work_.LEFT) {
      const bool can_win = left.HIGH[MAX_SIDE] >= reach_[MAX_SIDE] || left.HIGH[MIN_SIDE] >= reach_[MIN_SIDE];
      if (!can_win) continue;
      T_PLACEMENT placement(pass_, offsets_, left.POINT_INDEX, left.HB_TYPE);
      placement.POSITIONS = left.POSITIONS;
      placement.ZONE = left.ZONE;
      try_placement(pass_, input_, placement, planes_, result);
    }
  }

 private:
  [[nodiscard]] T_AXLE_SUMS sums_of(const T_PLACEMENT& placement) const {
    return axle_sums<typename PLANES::ROWS, PLANES::STRADDLES>(pass_, placement);
  }

  static constexpr double ROUNDING = 1.3e-7;  // of the effect of the axles, and of the total
  static constexpr double SMALLEST = 1e-44;

  /// The effect of the axles, exact as the placing has it, turned so that large counts.
  [[nodiscard]] double hb_effect(SIDE side, const T_AXLE_SUMS& sums) const {
    const auto effect = static_cast<double>(sums.OF(side) * input_.VEHICLE->HB_LOAD);
    return side == MAX_SIDE ? effect : -effect;
  }
  [[nodiscard]] double highest_total(SIDE side, const T_AXLE_SUMS& sums, double ha) const {
    const double hb = hb_effect(side, sums);
    return hb + ha + ROUNDING * (std::fabs(hb) + ha) + SMALLEST;
  }
  [[nodiscard]] double lowest_total(SIDE side, const T_AXLE_SUMS& sums, double ha) const {
    const double hb = hb_effect(side, sums);
    return hb + ha - ROUNDING * (std::fabs(hb) + ha) - SMALLEST;
  }

  /// Bounds a side and notes how far the best of the pass reaches at least.
  double bound(SIDE side, const T_PLACEMENT& placement, const T_AXLE_SUMS& sums) {
    const T_BOUNDS ha = planes_.BOUND(side, placement);
    reach_[side] = std::max(reach_[side], lowest_total(side, sums, ha.LOW));
    return highest_total(side, sums, ha.HIGH);
  }

  void screen(const T_PLACEMENT& placement) {
    constexpr double CANT_WIN = -std::numeric_limits<double>::infinity();
    const T_AXLE_SUMS sums = sums_of(placement);
    T_HB_WORK::T_LEFT left{
        placement.POINT_INDEX, placement.HB_TYPE, placement.POSITIONS, placement.ZONE, {CANT_WIN, CANT_WIN}};
    bool is_cut = false;
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      // From cheap to dear: the whole line's area, the area outside the zone, the ranges.
      if (highest_total(side, sums, most_[side]) < reach_[side]) continue;
      const double quick = planes_.QUICK_BOUND(side, placement.ZONE, highest_intensity_);
      if (highest_total(side, sums, quick) < reach_[side]) continue;
      if (!is_cut) planes_.CUT(placement);
      is_cut = true;
      left.HIGH[side] = bound(side, placement, sums);
    }
    const bool can_win = left.HIGH[MAX_SIDE] >= reach_[MAX_SIDE] || left.HIGH[MIN_SIDE] >= reach_[MIN_SIDE];
    if (can_win) work_.LEFT.push_back(left);
  }

  const T_PASS& pass_;
  const T_HB_INPUT& input_;
  const T_OFFSETS& offsets_;
  PLANES& planes_;
  T_HB_WORK& work_;
  double shortest_ = 0;
  double highest_intensity_ = 0;
  std::array<double, N_SIDES> most_{};   // what HA UDL gives at most, wherever the zone is
  std::array<double, N_SIDES> reach_{};  // what the best of each side reaches at least, as a magnitude
};

// ---------------------------------------------------------------------------------------- the search

template <class PLANES>
void place_in_pass(T_PASS pass, const T_HB_INPUT& input, const T_OFFSETS& offsets, PLANES& planes,
                   T_HB_WORK& work, T_SEARCH_RESULT& result) {
  pass.BEGIN_LINES(work.AXLE_LINES);
  planes.BEGIN(pass, work);
  SCREEN<PLANES> screen(pass, input, offsets, planes, work);
  if (screen.PREPARE()) {
    screen.RUN(result);
  } else {
    try_all(pass, input, offsets, planes, result);
  }
}

template <class PLANES>
void place_hb(const T_HB_INPUT& input, T_HB_WORK& work, T_SEARCH_RESULT& result) {
  constexpr std::int32_t FORWARD_ONLY = 0;
  constexpr std::int32_t REVERSE_ONLY = 1;
  const T_OFFSETS offsets(*input.VEHICLE);
  PLANES planes(input, work);
  if (input.LANE_DIRECTION != REVERSE_ONLY) {
    const T_PASS pass{FORWARD_PASS, input.n, input.LANE_X, input.OWN, input.AXLES, nullptr};
    place_in_pass(pass, input, offsets, planes, work, result);
  }
  if (input.LANE_DIRECTION != FORWARD_ONLY) {
    place_in_pass(reverse_pass(input, work), input, offsets, planes, work, result);
  }
}

/// The form whose axles all run on the lane itself: the same search, with the lane's own set given four
/// times.
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
