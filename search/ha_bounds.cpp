#include "search/ha_bounds.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace search {
namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double ROUNDING = 0x1p-24;        // of one single precision operation, relative
constexpr double SMALLEST_STEP = 0x1p-148;  // of one operation among the smallest numbers, absolute
constexpr double MARGIN = 1.01;             // for products of roundings and for the bounds' own arithmetic
constexpr int CELL_BITS = 8;                // 256 cells an octave
constexpr int FRACTION_BITS = 23 - CELL_BITS;
constexpr std::size_t MOST_RANGES = 24;
constexpr T_BOUNDS NO_BOUNDS{0, INFINITE};

std::uint32_t cell_of(float length) {
  return std::bit_cast<std::uint32_t>(length) >> FRACTION_BITS;
}
float edge_of(std::uint32_t cell) {
  return std::bit_cast<float>(cell << FRACTION_BITS);
}

}  // namespace

// ---------------------------------------------------------------------------------------- intensity

bool T_INTENSITY_BOUNDS::PREPARE(const T_HA_CURVE& curve, double shortest, double longest) {
  constexpr real MOST = 1e15F;
  constexpr real STEEPEST = 4;
  const auto within = [](real value, real most) { return value >= 0 && value <= most; };
  const bool falls = within(curve.HA_W0, MOST) && within(curve.HA_K, MOST) && within(curve.HA_P, STEEPEST) &&
                     std::fabs(curve.HA_WMIN) <= MOST && std::fabs(curve.HA_L0) <= MOST;
  if (!falls || !(shortest > 1e-6) || !(longest < 1e9) || !(shortest < longest)) return false;

  const std::uint32_t first = cell_of(static_cast<float>(shortest * 0.99));
  const std::uint32_t cells = cell_of(static_cast<float>(longest * 1.01)) - first + 1;
  const bool same_law = curve.HA_K == curve_.HA_K && curve.HA_P == curve_.HA_P;
  const bool covered = first >= first_cell_ && first + cells <= first_cell_ + cells_;
  curve_ = curve;
  if (same_law && covered) return true;

  first_cell_ = first;
  cells_ = cells;
  edges_.resize(cells + 1);
  const auto power = static_cast<double>(curve.HA_P);
  for (std::uint32_t cell = 0; cell <= cells; ++cell) {
    edges_[cell] =
        static_cast<double>(curve.HA_K) * std::pow(1.0 / static_cast<double>(edge_of(first + cell)), power);
  }
  // A chord lies above a convex curve, by at most an eighth of the square of its width times the curvature.
  constexpr double CELL_WIDTH = 1.0 / (1 << CELL_BITS);
  below_chord_ = power * (power + 1) * CELL_WIDTH * CELL_WIDTH / 8 * MARGIN + 1e-12;
  return true;
}

T_BOUNDS T_INTENSITY_BOUNDS::power_law(double length) const noexcept {
  const auto narrowed = static_cast<float>(length);
  const std::uint32_t cell = cell_of(narrowed) - first_cell_;
  if (cell >= cells_) return NO_BOUNDS;
  constexpr std::uint32_t FRACTION_MASK = (1U << FRACTION_BITS) - 1;
  constexpr double FRACTION_UNIT = 1.0 / (1 << FRACTION_BITS);
  const double t =
      FRACTION_UNIT * static_cast<double>(std::bit_cast<std::uint32_t>(narrowed) & FRACTION_MASK);
  const double chord = edges_[cell] + t * (edges_[cell + 1] - edges_[cell]);
  return {chord * (1 - below_chord_), chord * (1 + 1e-12)};
}

T_BOUNDS T_INTENSITY_BOUNDS::OF(double length, double relative_error) const noexcept {
  const auto initial = static_cast<double>(curve_.HA_W0);
  const auto limit = static_cast<double>(curve_.HA_L0);
  const auto least = static_cast<double>(curve_.HA_WMIN);
  T_BOUNDS w{initial, initial};
  const double error = length * relative_error;
  if (length + error > limit) {
    w = power_law(length);
    // The error of the length, narrowing included, moves the power law by its steepness at most.
    const double moved = 4.5 * (relative_error + ROUNDING);
    w = {w.LOW * (1 - moved), w.HIGH * (1 + moved)};
    if (length - error <= limit) w = {std::min(w.LOW, initial), std::max(w.HIGH, initial)};
  }
  return {std::max(w.LOW, least), std::max(w.HIGH, least)};
}

double T_INTENSITY_BOUNDS::HIGHEST_FROM(double length) const noexcept {
  const auto limit = static_cast<double>(curve_.HA_L0);
  const double from = std::max(length, limit) * (1 - 1e-3);
  const double initial = length <= limit ? static_cast<double>(curve_.HA_W0) : 0.0;
  // Beyond the table no length is asked for.
  const bool falls_off = from < static_cast<double>(edge_of(first_cell_ + cells_));
  const double highest = std::max(initial, falls_off ? power_law(from).HIGH : 0.0);
  return std::max(highest, static_cast<double>(curve_.HA_WMIN)) * (1 + 1e-6);
}

// ---------------------------------------------------------------------------------------- the
// line

T_HA_BOUNDS::T_RANKED T_HA_BOUNDS::ranked(SIDE side, const T_OPEN_RANGE& range) const noexcept {
  // As the search forms the mean, in single precision.
  const bool has_mean = short_range_ > 0 ? range.LENGTH > short_range_ : range.LENGTH != 0;
  real mean = has_mean ? range.AREA / range.LENGTH : 0.0F;
  if (side == MIN_SIDE) mean = std::fabs(mean);
  const auto area = static_cast<double>(range.AREA);
  return {side == MAX_SIDE ? area : -area, static_cast<double>(range.LENGTH), static_cast<double>(mean), 0,
          0};
}

bool T_HA_BOUNDS::rank(SIDE side) noexcept {
  auto& ranges = ranges_[side];
  std::sort(ranges.begin(), ranges.end(),
            [](const T_RANKED& a, const T_RANKED& b) { return a.MEAN > b.MEAN; });
  // The order of unlike ranges with one mean follows from all means of a placement; that is left to the
  // search.
  for (std::size_t r = 1; r < ranges.size(); ++r) {
    const T_RANKED& a = ranges[r - 1];
    const T_RANKED& b = ranges[r];
    if (a.MEAN == b.MEAN && (a.AREA != b.AREA || a.LENGTH != b.LENGTH)) return false;
  }
  return true;
}

template <LAYOUT L>
bool T_HA_BOUNDS::PREPARE(const T_LINE& line, const T_INTENSITY_BOUNDS& intensity, real short_range) {
  constexpr real LARGEST = 1e15F;
  segments_ = line.n - 1;
  intensity_ = &intensity;
  short_range_ = short_range;
  if (segments_ < 1) return false;
  T_OPEN_RANGES open;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    states_[side].assign(static_cast<std::size_t>(segments_) + 1, {});
    ranges_[side].clear();
    slivers_[side] = {};
  }
  bool bounded = true;
  real largest = 0;
  std::array<std::int32_t, N_SIDES> closed{};
  std::int32_t segment = 0;
  const auto note_range = [&](SIDE side, const T_OPEN_RANGE& range) {
    if (ranges_[side].size() < MOST_RANGES) {
      ranges_[side].push_back(ranked(side, range));
      ranges_[side].back().NUMBER = ++closed[side];
    } else {
      bounded = false;
    }
  };
  for (segment = 1; segment <= segments_ && bounded; ++segment) {
    const auto at = static_cast<std::size_t>(segment);
    const real dx = line.LANE_X(segment + 1) - line.LANE_X(segment);
    const real a = line.AFTER(segment);
    const real b = line.BEFORE(segment + 1);
    bounded = dx >= 0 && std::fabs(a) <= LARGEST && std::fabs(b) <= LARGEST;
    std::array<T_OPEN_RANGE, N_SIDES> added;
    if (!(L::SKIPS_ZERO_LENGTH && dx == 0)) {
      // From empty accumulators a segment leaves just what it adds.
      T_OPEN_RANGES terms;
      terms.SEGMENT(dx, a, b, [&added](SIDE side, const T_OPEN_RANGE& term) { added[side] = term; });
      if (terms.POSITIVE.LENGTH != 0 || terms.POSITIVE.AREA != 0) added[MAX_SIDE] = terms.POSITIVE;
      if (terms.NEGATIVE.LENGTH != 0 || terms.NEGATIVE.AREA != 0) added[MIN_SIDE] = terms.NEGATIVE;
      open.SEGMENT(dx, a, b, note_range);
    }
    largest = std::max({largest, std::fabs(a), std::fabs(b)});
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      // Rounding can put a crossing just behind its segment, so that a sliver is taken away instead of added.
      const auto magnitude = static_cast<double>(side == MAX_SIDE ? added[side].AREA : -added[side].AREA);
      const auto length = static_cast<double>(added[side].LENGTH);
      slivers_[side].AREA += std::max(-magnitude, 0.0);
      slivers_[side].LENGTH += std::max(-length, 0.0);
      T_STATE& state = states_[side][at];
      state.OPEN = side == MAX_SIDE ? open.POSITIVE : open.NEGATIVE;
      state.CLOSED = closed[side];
      state.AREA_SUM = states_[side][at - 1].AREA_SUM + magnitude;
      state.LENGTH_SUM = states_[side][at - 1].LENGTH_SUM + length;
    }
  }
  const auto length = static_cast<double>(line.LANE_X(line.n) - line.LANE_X(1));
  if (!bounded || !(length > 1e-6 && length < 1e9)) return false;
  open.END(note_range);

  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    std::int32_t next = 0;
    for (std::int32_t s = segments_; s >= 0; --s) {
      T_STATE& state = states_[side][static_cast<std::size_t>(s)];
      state.NEXT_CLOSE = next;
      if (s > 0 && state.CLOSED != states_[side][static_cast<std::size_t>(s - 1)].CLOSED) next = s;
    }
    if (!rank(side)) return false;
  }
  sum_error_ = segments_ * 0x1p-52;
  // A cut segment lies a rounding of the positions beside the line.
  const double reach =
      std::fabs(static_cast<double>(line.LANE_X(1))) + std::fabs(static_cast<double>(line.LANE_X(line.n)));
  const double piece_error = 16 * ROUNDING * static_cast<double>(largest) * reach;
  quick_factor_ = 1 + 3 * (segments_ + 64) * ROUNDING * MARGIN;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    quick_offset_[side] = piece_error + 2 * slivers_[side].AREA + states_[side].back().AREA_SUM * sum_error_ +
                          segments_ * SMALLEST_STEP;
  }
  return bounded;
}

double T_HA_BOUNDS::QUICK_BOUND(SIDE side, const T_ZONE_PLACE& zone,
                                double highest_intensity) const noexcept {
  if (zone.NEAR_INDEX < 1 || zone.FAR_INDEX < zone.NEAR_INDEX - 1) return INFINITE;
  // Segments that the zone cuts count whole.
  const auto& states = states_[side];
  const double before = states[static_cast<std::size_t>(zone.NEAR_INDEX - 1)].AREA_SUM;
  const double inside = states[static_cast<std::size_t>(std::max(zone.FAR_INDEX - 1, 0))].AREA_SUM - before;
  return (states.back().AREA_SUM - inside + quick_offset_[side]) * highest_intensity * quick_factor_ +
         SMALLEST_STEP;
}

template <LAYOUT L>
T_ZONE_CUT T_HA_BOUNDS::CUT(const T_LINE& line, const T_ZONE_PLACE& zone) const noexcept {
  T_ZONE_CUT cut;
  cut.BEFORE = NEAR_SEGMENT(zone) - 1;
  cut.BEHIND = std::min(zone.FAR_INDEX, segments_);
  cut.KNOWN = cut.BEFORE >= 0 && zone.FAR_INDEX >= zone.NEAR_INDEX;
  if (!cut.KNOWN) return cut;
  const auto before = static_cast<std::size_t>(cut.BEFORE);
  cut.OPEN.POSITIVE = states_[MAX_SIDE][before].OPEN;
  cut.OPEN.NEGATIVE = states_[MIN_SIDE][before].OPEN;
  const auto closed = [&cut](SIDE side, const T_OPEN_RANGE& range) {
    cut.CLOSED[static_cast<std::size_t>(cut.N_CLOSED++)] = {side, range};
  };
  ADD_NEAR_PIECE<L>(line, zone, cut.OPEN, closed);
  ADD_FAR_PIECE<L>(line, zone, cut.OPEN, closed);
  return cut;
}

T_BOUNDS T_HA_BOUNDS::BOUND(SIDE side, const T_ZONE_CUT& cut, double vehicle_length) const noexcept {
  if (!cut.KNOWN) return NO_BOUNDS;
  const auto& states = states_[side];
  const T_STATE& before = states[static_cast<std::size_t>(cut.BEFORE)];
  const T_STATE& behind = states[static_cast<std::size_t>(cut.BEHIND)];
  const T_STATE& closing =
      states[static_cast<std::size_t>(behind.NEXT_CLOSE > 0 ? behind.NEXT_CLOSE : segments_)];

  // Ranges beside the whole line's: those of the cut segments, and the one joined across the zone.
  std::array<T_RANKED, 3> own;
  std::size_t n_own = 0;
  for (std::int32_t c = 0; c < cut.N_CLOSED; ++c) {
    const T_ZONE_CUT::T_CLOSED& closed = cut.CLOSED[static_cast<std::size_t>(c)];
    if (closed.RANGE_SIDE == side) own[n_own++] = ranked(side, closed.RANGE);
  }
  const T_OPEN_RANGE& open = side == MAX_SIDE ? cut.OPEN.POSITIVE : cut.OPEN.NEGATIVE;
  const double terms = 2.0 + (behind.NEXT_CLOSE > 0 ? behind.NEXT_CLOSE : segments_) - cut.BEHIND;
  const double open_area =
      side == MAX_SIDE ? static_cast<double>(open.AREA) : -static_cast<double>(open.AREA);
  const double tail_area = closing.AREA_SUM - behind.AREA_SUM;
  const double tail_length = closing.LENGTH_SUM - behind.LENGTH_SUM;
  const double few_roundings = 64 * ROUNDING;
  double area_error = few_roundings * slivers_[side].AREA;
  double length_error = few_roundings * slivers_[side].LENGTH;
  const bool reaches_end = behind.NEXT_CLOSE == 0;
  const bool is_empty = open.AREA == 0 && tail_area == 0;
  if (!(reaches_end && is_empty)) {
    T_RANKED joined;
    joined.AREA = open_area + tail_area;
    joined.LENGTH = static_cast<double>(open.LENGTH) + tail_length;
    area_error += ((joined.AREA + slivers_[side].AREA) * terms * ROUNDING + terms * SMALLEST_STEP) * MARGIN +
                  states.back().AREA_SUM * sum_error_;
    length_error +=
        ((joined.LENGTH + slivers_[side].LENGTH) * terms * ROUNDING + terms * SMALLEST_STEP) * MARGIN +
        states.back().LENGTH_SUM * sum_error_;
    // Too small to be told from rounding.
    const bool is_sure = joined.AREA > 100 * area_error && joined.LENGTH > 100 * length_error &&
                         joined.LENGTH - length_error > static_cast<double>(short_range_) && open_area >= 0 &&
                         open.LENGTH >= 0;
    if (!is_sure) return NO_BOUNDS;
    joined.MEAN = joined.AREA / joined.LENGTH;
    joined.MEAN_ERROR =
        joined.MEAN * (area_error / joined.AREA + length_error / joined.LENGTH + 2 * ROUNDING) * 1.1 +
        SMALLEST_STEP;
    own[n_own++] = joined;
  }
  for (std::size_t i = 1; i < n_own; ++i) {
    for (std::size_t j = i; j > 0 && own[j].MEAN > own[j - 1].MEAN; --j) std::swap(own[j], own[j - 1]);
  }
  const auto is_clear = [](const T_RANKED& a, const T_RANKED& b) {
    return std::fabs(a.MEAN - b.MEAN) > a.MEAN_ERROR + b.MEAN_ERROR;
  };
  for (std::size_t i = 1; i < n_own; ++i) {
    if (!is_clear(own[i - 1], own[i])) return NO_BOUNDS;
  }

  // The prefixes of the ranking, merged of the whole line's ranges that stand and the own ones.
  const std::int32_t first_gone = before.CLOSED + 1;
  const std::int32_t last_gone = reaches_end ? std::numeric_limits<std::int32_t>::max() : closing.CLOSED;
  T_BOUNDS best;
  double area = 0;
  double length = vehicle_length;
  std::size_t next_own = 0;
  double roundings = 16;
  const auto take = [&](const T_RANKED& range) {
    area += range.AREA;
    length += range.LENGTH;
    roundings += 1;
    const double off = roundings * ROUNDING * MARGIN;
    const T_BOUNDS w = intensity_->OF(length, off + length_error / length);
    best.LOW = std::max(best.LOW, (area * (1 - off) - area_error) * w.LOW * (1 - off) - SMALLEST_STEP);
    best.HIGH = std::max(best.HIGH,
                         (area * (1 + off) + area_error) * w.HIGH * (1 + off) + SMALLEST_STEP * (1 + w.HIGH));
  };
  for (const T_RANKED& range : ranges_[side]) {
    if (range.NUMBER >= first_gone && range.NUMBER <= last_gone) continue;
    while (next_own < n_own) {
      if (!is_clear(own[next_own], range)) return NO_BOUNDS;
      if (own[next_own].MEAN < range.MEAN) break;
      take(own[next_own++]);
    }
    take(range);
  }
  while (next_own < n_own) take(own[next_own++]);
  return best;
}

template bool T_HA_BOUNDS::PREPARE<SIMPLE_LAYOUT>(const T_LINE&, const T_INTENSITY_BOUNDS&, real);
template bool T_HA_BOUNDS::PREPARE<JUMP_LAYOUT>(const T_LINE&, const T_INTENSITY_BOUNDS&, real);
template T_ZONE_CUT T_HA_BOUNDS::CUT<SIMPLE_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&) const noexcept;
template T_ZONE_CUT T_HA_BOUNDS::CUT<JUMP_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&) const noexcept;

}  // namespace search
