#include "search/ha_bounds.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>

namespace search {
namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double ROUNDING = 0x1p-24;        // of one single precision operation, relative
constexpr double SMALLEST_STEP = 0x1p-148;  // of one operation among the smallest numbers, absolute
constexpr double MARGIN = 1.01;             // for products of roundings and for the bounds' own arithmetic
constexpr int CELL_BITS = 8;                // 256 cells an octave
constexpr int FRACTION_BITS = 23 - CELL_BITS;
constexpr double LAW_ROUNDING = 1e-6;  // of the power law in single precision, narrowed lengths included
constexpr T_BOUNDS NO_BOUNDS{0, INFINITE};

std::uint32_t cell_of(float length) {
  return std::bit_cast<std::uint32_t>(length) >> FRACTION_BITS;
}
float edge_of(std::uint32_t cell) {
  return std::bit_cast<float>(cell << FRACTION_BITS);
}

/// No area of such ordinates overflows, and the places of their zeros have all their digits: among the
/// smallest numbers a crossing may lie off by metres.
bool is_bounded_ordinate(real ordinate) {
  constexpr real LARGEST = 1e12F;
  constexpr real LEAST = 1e-35F;
  const real magnitude = std::fabs(ordinate);
  return magnitude <= LARGEST && (magnitude >= LEAST || magnitude == 0);
}

}  // namespace

// ---------------------------------------------------------------------------------------- intensity

bool T_INTENSITY_BOUNDS::PREPARE(const T_HA_CURVE& curve, double shortest, double longest) {
  // Within these no effect overflows, and no intensity of the law loses digits at the small end.
  constexpr real MOST = 1e12F;
  constexpr real LEAST_K = 1e-10F;
  constexpr real STEEPEST = 3;
  const auto within = [](real value, real most) { return value >= 0 && value <= most; };
  const bool falls = within(curve.HA_W0, MOST) && within(curve.HA_K, MOST) && within(curve.HA_P, STEEPEST) &&
                     std::fabs(curve.HA_WMIN) <= MOST && std::fabs(curve.HA_L0) <= MOST;
  if (!falls || (curve.HA_K > 0 && curve.HA_K < LEAST_K)) return false;
  if (!(shortest > 1e-6) || !(longest < 1e9) || !(shortest < longest)) return false;

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

double T_INTENSITY_BOUNDS::chord(double length) const noexcept {
  const auto narrowed = static_cast<float>(length);
  const std::uint32_t cell = cell_of(narrowed) - first_cell_;
  if (cell >= cells_) return INFINITE;
  constexpr std::uint32_t FRACTION_MASK = (1U << FRACTION_BITS) - 1;
  constexpr double FRACTION_UNIT = 1.0 / (1 << FRACTION_BITS);
  const double t =
      FRACTION_UNIT * static_cast<double>(std::bit_cast<std::uint32_t>(narrowed) & FRACTION_MASK);
  return edges_[cell] + t * (edges_[cell + 1] - edges_[cell]);
}

double T_INTENSITY_BOUNDS::HIGHEST_FROM(double length) const noexcept {
  const double from = std::max(length, LIMIT());
  const double initial = length <= LIMIT() ? static_cast<double>(curve_.HA_W0) : 0.0;
  // Beyond the table no length is asked for but the limit.
  const bool falls_off = from < static_cast<double>(edge_of(first_cell_ + cells_));
  const double highest = std::max(initial, falls_off ? chord(from) * (1 + LAW_ROUNDING) : 0.0);
  return std::max(highest, static_cast<double>(curve_.HA_WMIN));
}

double T_INTENSITY_BOUNDS::LOWEST_BETWEEN(double shortest, double longest) const noexcept {
  double lowest = INFINITE;
  if (shortest <= LIMIT()) lowest = static_cast<double>(curve_.HA_W0);
  if (longest > LIMIT()) {
    const double chord_there = chord(longest);
    const double law = chord_there < INFINITE ? chord_there * (1 - below_chord_ - LAW_ROUNDING) : 0.0;
    lowest = std::min(lowest, law);
  }
  return std::max(lowest, static_cast<double>(curve_.HA_WMIN));
}

// ---------------------------------------------------------------------------------------- the line

T_HA_BOUNDS::T_RANKED T_HA_BOUNDS::ranked(SIDE side, const T_OPEN_RANGE& range) const noexcept {
  // As the search forms the mean, in single precision.
  const bool has_mean = short_range_ > 0 ? range.LENGTH > short_range_ : range.LENGTH != 0;
  real mean = has_mean ? range.AREA / range.LENGTH : 0.0F;
  if (side == MIN_SIDE) mean = std::fabs(mean);
  const auto area = static_cast<double>(range.AREA);
  return {side == MAX_SIDE ? area : -area, static_cast<double>(range.LENGTH), static_cast<double>(mean),
          static_cast<double>(mean), 0};
}

template <LAYOUT L>
bool T_HA_BOUNDS::PREPARE(const T_LINE& line, const T_INTENSITY_BOUNDS& intensity, real short_range,
                          double shortest_vehicle) {
  segments_ = line.n - 1;
  intensity_ = &intensity;
  short_range_ = short_range;
  if (segments_ < 1) return false;
  const auto length = static_cast<double>(line.LANE_X(line.n) - line.LANE_X(1));
  if (!(length > 1e-6 && length < 1e9) || !walk<L>(line)) return false;

  sum_error_ = segments_ * 0x1p-52;
  roundings_ = 3 * (segments_ + 64) * ROUNDING * MARGIN;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    std::sort(ranges_[side].begin(), ranges_[side].end(),
              [](const T_RANKED& a, const T_RANKED& b) { return a.HIGHEST_MEAN > b.HIGHEST_MEAN; });
    std::int32_t next = 0;
    for (std::int32_t s = segments_; s >= 0; --s) {
      T_STATE& state = states_[side][static_cast<std::size_t>(s)];
      state.NEXT_CLOSE = next;
      if (s > 0 && state.CLOSED != states_[side][static_cast<std::size_t>(s - 1)].CLOSED) next = s;
    }
    find_offsets(line, side);
    find_steps(line, side, shortest_vehicle);
  }
  return true;
}

/// Cuts the whole line and notes how it stands behind every segment. False where it is no line to bound.
template <LAYOUT L>
bool T_HA_BOUNDS::walk(const T_LINE& line) {
  T_OPEN_RANGES open;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    states_[side].resize(static_cast<std::size_t>(segments_) + 1);
    states_[side].front() = {};
    closed_[side].clear();
    ranges_[side].clear();
    slivers_[side] = {};
  }
  bool bounded = true;
  std::array<real, N_SIDES> largest{};
  const auto note_range = [&](SIDE side, const T_OPEN_RANGE& range) {
    T_RANKED its = ranked(side, range);
    bounded = bounded && its.AREA >= 0 && its.LENGTH >= 0;  // rounding can make a range negative
    if (!bounded) return;
    closed_[side].push_back(range);
    its.NUMBER = static_cast<std::int32_t>(closed_[side].size());
    ranges_[side].push_back(its);
  };
  for (std::int32_t segment = 1; segment <= segments_ && bounded; ++segment) {
    const auto at = static_cast<std::size_t>(segment);
    const real dx = line.LANE_X(segment + 1) - line.LANE_X(segment);
    const real a = line.AFTER(segment);
    const real b = line.BEFORE(segment + 1);
    bounded = dx >= 0 && is_bounded_ordinate(a) && is_bounded_ordinate(b);
    largest[MAX_SIDE] = std::max({largest[MAX_SIDE], a, b});
    largest[MIN_SIDE] = std::max({largest[MIN_SIDE], -a, -b});
    std::array<T_OPEN_RANGE, N_SIDES> added;
    if (!(L::SKIPS_ZERO_LENGTH && dx == 0)) {
      // From empty accumulators a segment leaves just what it adds.
      T_OPEN_RANGES terms;
      terms.SEGMENT(dx, a, b, [&added](SIDE side, const T_OPEN_RANGE& term) { added[side] = term; });
      if (terms.POSITIVE.LENGTH != 0 || terms.POSITIVE.AREA != 0) added[MAX_SIDE] = terms.POSITIVE;
      if (terms.NEGATIVE.LENGTH != 0 || terms.NEGATIVE.AREA != 0) added[MIN_SIDE] = terms.NEGATIVE;
      open.SEGMENT(dx, a, b, note_range);
    }
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      // Rounding can put a crossing just behind its segment, so that a sliver is taken away instead of added.
      const auto magnitude = static_cast<double>(side == MAX_SIDE ? added[side].AREA : -added[side].AREA);
      const auto length = static_cast<double>(added[side].LENGTH);
      slivers_[side].AREA += std::max(-magnitude, 0.0);
      slivers_[side].LENGTH += std::max(-length, 0.0);
      T_STATE& state = states_[side][at];
      state.OPEN = side == MAX_SIDE ? open.POSITIVE : open.NEGATIVE;
      state.CLOSED = static_cast<std::int32_t>(closed_[side].size());
      state.TERMS = states_[side][at - 1].TERMS + (magnitude != 0 || length != 0 ? 1 : 0);
      state.AREA_SUM = states_[side][at - 1].AREA_SUM + magnitude;
      state.LENGTH_SUM = states_[side][at - 1].LENGTH_SUM + length;
    }
  }
  if (bounded) open.END(note_range);
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) quick_[side].HIGHEST = static_cast<double>(largest[side]);
  return bounded;
}

/// What rounding may add to the areas beside a zone, and take away from the lengths.
void T_HA_BOUNDS::find_offsets(const T_LINE& line, SIDE side) {
  // A cut segment lies a rounding of the positions beside the line.
  const double reach =
      std::fabs(static_cast<double>(line.LANE_X(1))) + std::fabs(static_cast<double>(line.LANE_X(line.n)));
  const T_STATE& whole = states_[side].back();
  const double smallest_steps = segments_ * SMALLEST_STEP;
  T_QUICK& quick = quick_[side];
  quick.AREA_OFFSET = 16 * ROUNDING * quick.HIGHEST * reach + 2 * slivers_[side].AREA +
                      whole.AREA_SUM * sum_error_ + smallest_steps;
  // Each range that joins a loaded length may lose a rounding of it.
  const auto loaded = static_cast<double>(ranges_[side].size() + T_OWN_RANGES::MOST);
  quick.LENGTH_OFFSET = (16 + loaded) * ROUNDING * reach + 2 * slivers_[side].LENGTH +
                        whole.LENGTH_SUM * roundings_ + smallest_steps;
}

/// The steps of a side; none where an area tells nothing of a length.
void T_HA_BOUNDS::find_steps(const T_LINE& line, SIDE side, double shortest_vehicle) {
  T_QUICK& quick = quick_[side];
  const double highest = quick.HIGHEST;
  quick.STEPS = {};
  quick.LOST_LENGTH = INFINITE;
  if (!intensity_->GROWS_WITH_LENGTH() || !(highest > 1e-30)) return;
  std::array<double, LEVELS> areas{};
  const double per_level = LEVELS / highest;
  for (std::int32_t segment = 1; segment <= segments_; ++segment) {
    const auto a = static_cast<double>(side == MAX_SIDE ? line.AFTER(segment) : -line.AFTER(segment));
    const auto b =
        static_cast<double>(side == MAX_SIDE ? line.BEFORE(segment + 1) : -line.BEFORE(segment + 1));
    const double top = std::max(a, b);
    if (!(top > 0)) continue;
    const auto level = static_cast<std::size_t>((highest - top) * per_level * (1 - 1e-9));
    const auto at = static_cast<std::size_t>(segment);
    areas[level] += states_[side][at].AREA_SUM - states_[side][at - 1].AREA_SUM;
  }
  quick.LOST_LENGTH = quick.AREA_OFFSET * per_level + quick.LENGTH_OFFSET;
  const double vehicle = shortest_vehicle - quick.LOST_LENGTH;
  for (std::size_t level = 0; level < LEVELS; ++level) {
    T_STEP& step = quick.STEPS[level];
    T_STEP& next = quick.STEPS[level + 1];
    const double top = highest * static_cast<double>(LEVELS - level) / LEVELS;
    step.LENGTH_A_AREA = 1 / (top * (1 + 2 * roundings_));
    next.AREA = step.AREA + std::max(areas[level], 0.0);
    next.LENGTH = step.LENGTH + (next.AREA - step.AREA) * step.LENGTH_A_AREA;
    next.BEST = std::max(step.BEST, effect_within(step, vehicle, next.AREA, next.LENGTH));
  }
}

/// The largest effect of areas from a step to `area`, which has this length. Between both it can only be
/// larger where the intensity falls by a step: elsewhere the effect falls and then grows, if it falls at all.
double T_HA_BOUNDS::effect_within(const T_STEP& from, double vehicle, double area,
                                  double length) const noexcept {
  const double limit = intensity_->LIMIT();
  double effect = area * intensity_->HIGHEST_FROM(vehicle + length);
  if (vehicle + from.LENGTH <= limit && vehicle + length > limit) {
    const double at_limit = from.AREA + (limit - vehicle - from.LENGTH) / from.LENGTH_A_AREA;
    effect = std::max(effect, std::min(at_limit, area) * intensity_->HIGHEST_FROM(limit));
  }
  return effect;
}

/// The effect of an area of at most this much: a large area means a long length and a low intensity.
double T_HA_BOUNDS::area_bound(SIDE side, double area, double vehicle_length) const noexcept {
  const T_QUICK& quick = quick_[side];
  double effect = 0;
  if (quick.LOST_LENGTH < vehicle_length) {
    std::size_t level = LEVELS;
    while (level > 0 && quick.STEPS[level].AREA >= area) --level;
    const T_STEP& step = quick.STEPS[level];
    const double length = step.LENGTH + (area - step.AREA) * step.LENGTH_A_AREA;
    effect = std::max(step.BEST, effect_within(step, vehicle_length - quick.LOST_LENGTH, area, length));
  } else {
    effect = area * intensity_->HIGHEST_FROM(vehicle_length);
  }
  return effect * (1 + roundings_) + SMALLEST_STEP;
}

double T_HA_BOUNDS::ANYWHERE_BOUND(SIDE side, double vehicle_length) const noexcept {
  if (quick_[side].HIGHEST == 0) return 0;
  return area_bound(side, states_[side].back().AREA_SUM + quick_[side].AREA_OFFSET, vehicle_length);
}

double T_HA_BOUNDS::QUICK_BOUND(SIDE side, const T_ZONE_PLACE& zone, double vehicle_length) const noexcept {
  const T_QUICK& quick = quick_[side];
  if (quick.HIGHEST == 0) return 0;
  if (zone.NEAR_INDEX < 1 || zone.FAR_INDEX < zone.NEAR_INDEX) return INFINITE;
  // Of the segments that the zone cuts, the whole area counts, and no length.
  const auto& states = states_[side];
  const auto sums = [&states](std::int32_t segments) -> const T_STATE& {
    return states[static_cast<std::size_t>(segments)];
  };
  const double inside = sums(zone.FAR_INDEX - 1).AREA_SUM - sums(zone.NEAR_INDEX - 1).AREA_SUM;
  const double area = states.back().AREA_SUM - inside + quick.AREA_OFFSET;
  if (ranges_[side].size() > 1) return area_bound(side, area, vehicle_length);
  // The one range is loaded in its whole length, on both sides of the zone.
  const double cut_away = sums(std::min(zone.FAR_INDEX, segments_)).LENGTH_SUM -
                          sums(std::max(NEAR_SEGMENT(zone) - 1, 0)).LENGTH_SUM;
  const double loaded = states.back().LENGTH_SUM - cut_away - quick.LENGTH_OFFSET;
  const double intensity = intensity_->HIGHEST_FROM(vehicle_length + std::max(loaded, 0.0));
  return area * intensity * (1 + roundings_) + SMALLEST_STEP;
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

template <LAYOUT L>
void T_HA_BOUNDS::RANGES_BESIDE(const T_LINE& line, const T_ZONE_PLACE& zone, const T_ZONE_CUT& cut,
                                T_RANGE_WORK& work) const {
  if (!cut.KNOWN) {
    CUT_RANGES_BESIDE_ZONE<L>(line, zone, work);
    return;
  }
  const RANGE_SINK closed(work, line.n);
  const auto take_whole = [&](SIDE side, std::int32_t from, std::int32_t to) {
    for (std::int32_t r = from; r < to; ++r) closed(side, closed_[side][static_cast<std::size_t>(r)]);
  };
  const auto state = [this](SIDE side, std::int32_t segments) -> const T_STATE& {
    return states_[side][static_cast<std::size_t>(segments)];
  };
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) take_whole(side, 0, state(side, cut.BEFORE).CLOSED);
  for (std::int32_t c = 0; c < cut.N_CLOSED; ++c) {
    const T_ZONE_CUT::T_CLOSED& its = cut.CLOSED[static_cast<std::size_t>(c)];
    closed(its.RANGE_SIDE, its.RANGE);
  }
  // Once both open ranges hold what they hold on the whole line, all that follows is the whole line's.
  T_OPEN_RANGES open = cut.OPEN;
  std::int32_t segment = cut.BEHIND;
  const auto is_as_whole = [&](SIDE side, const T_OPEN_RANGE& range) {
    const T_OPEN_RANGE& whole = state(side, segment).OPEN;
    return range.AREA == whole.AREA && range.LENGTH == whole.LENGTH;
  };
  constexpr std::int32_t STEP = 16;  // looked at now and then, for what is the same stays the same
  while (segment < segments_ &&
         !(is_as_whole(MAX_SIDE, open.POSITIVE) && is_as_whole(MIN_SIDE, open.NEGATIVE))) {
    const std::int32_t last = std::min(segment + STEP, segments_);
    ADD_SEGMENTS<L>(line, segment + 1, last, open, closed);
    segment = last;
  }
  if (segment == segments_) {
    open.END(closed);
    return;
  }
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    take_whole(side, state(side, segment).CLOSED, static_cast<std::int32_t>(closed_[side].size()));
  }
}

/// Those that the cut segments close, and the one joined across the zone.
/// Not sure where rounding may decide on what there is.
T_HA_BOUNDS::T_OWN_RANGES T_HA_BOUNDS::own_ranges(SIDE side, const T_ZONE_CUT& cut) const noexcept {
  const auto& states = states_[side];
  const T_STATE& before = states[static_cast<std::size_t>(cut.BEFORE)];
  const T_STATE& behind = states[static_cast<std::size_t>(cut.BEHIND)];
  const bool reaches_end = behind.NEXT_CLOSE == 0;
  const std::int32_t last_segment = reaches_end ? segments_ : behind.NEXT_CLOSE;
  const T_STATE& closing = states[static_cast<std::size_t>(last_segment)];

  T_OWN_RANGES own;
  own.FIRST_GONE = before.CLOSED + 1;
  own.LAST_GONE = reaches_end ? std::numeric_limits<std::int32_t>::max() : closing.CLOSED;
  for (std::int32_t c = 0; c < cut.N_CLOSED; ++c) {
    const T_ZONE_CUT::T_CLOSED& closed = cut.CLOSED[static_cast<std::size_t>(c)];
    if (closed.RANGE_SIDE != side) continue;
    T_RANKED& its = own.RANGES[own.COUNT++];
    its = ranked(side, closed.RANGE);
    if (its.AREA < 0 || its.LENGTH < 0) return own;
  }

  const T_OPEN_RANGE& open = side == MAX_SIDE ? cut.OPEN.POSITIVE : cut.OPEN.NEGATIVE;
  const double open_area =
      side == MAX_SIDE ? static_cast<double>(open.AREA) : -static_cast<double>(open.AREA);
  const double few_roundings = 64 * ROUNDING;
  own.AREA_ERROR = few_roundings * slivers_[side].AREA;
  own.LENGTH_ERROR = few_roundings * slivers_[side].LENGTH;
  const bool is_empty = open.AREA == 0 && closing.TERMS == behind.TERMS;
  if (!(reaches_end && is_empty)) {
    T_RANKED& joined = own.RANGES[own.COUNT++];
    joined.AREA = open_area + (closing.AREA_SUM - behind.AREA_SUM);
    joined.LENGTH = static_cast<double>(open.LENGTH) + (closing.LENGTH_SUM - behind.LENGTH_SUM);
    const double terms = 2.0 + last_segment - cut.BEHIND;
    const auto rounded = [&](double magnitude) {
      return (magnitude * terms * ROUNDING + terms * SMALLEST_STEP) * MARGIN;
    };
    own.AREA_ERROR += rounded(joined.AREA + slivers_[side].AREA) + states.back().AREA_SUM * sum_error_;
    own.LENGTH_ERROR +=
        rounded(joined.LENGTH + slivers_[side].LENGTH) + states.back().LENGTH_SUM * sum_error_;
    // Too small to be told from rounding.
    const bool is_sure = joined.AREA > 100 * own.AREA_ERROR && joined.LENGTH > 100 * own.LENGTH_ERROR &&
                         joined.LENGTH - own.LENGTH_ERROR > static_cast<double>(short_range_) &&
                         open_area >= 0 && open.LENGTH >= 0;
    if (!is_sure) return own;
    const double per_length = 1 / joined.LENGTH;
    const double mean = joined.AREA * per_length;
    const double mean_error =
        ((own.AREA_ERROR + mean * own.LENGTH_ERROR) * per_length + mean * 2 * ROUNDING) * 1.1 + SMALLEST_STEP;
    joined.LOWEST_MEAN = mean - mean_error;
    joined.HIGHEST_MEAN = mean + mean_error;
  }
  for (std::size_t i = 1; i < own.COUNT; ++i) {
    for (std::size_t j = i; j > 0 && own.RANGES[j].HIGHEST_MEAN > own.RANGES[j - 1].HIGHEST_MEAN; --j) {
      std::swap(own.RANGES[j], own.RANGES[j - 1]);
    }
  }
  own.ARE_SURE = true;
  return own;
}

/// The prefixes of a ranking. Ranges are taken from the highest that their means may be on; those any of
/// which may come first wait in a group. Once it is complete, none of those that follow can reach into it.
class T_HA_BOUNDS::PREFIXES {
 public:
  PREFIXES(const T_INTENSITY_BOUNDS& intensity, double vehicle_length, const T_OWN_RANGES& own, double needed,
           T_GROUP& group)
      : intensity_(intensity), own_(own), needed_(needed), group_(group), length_(vehicle_length) {
    group_.MEMBERS.clear();
  }

  void TAKE(const T_RANKED& range) {
    if (!group_.MEMBERS.empty() && range.HIGHEST_MEAN < lowest_mean_) end_group();
    lowest_mean_ = group_.MEMBERS.empty() ? range.LOWEST_MEAN : std::min(lowest_mean_, range.LOWEST_MEAN);
    group_.MEMBERS.push_back(&range);
  }
  [[nodiscard]] T_BOUNDS END() {
    if (!group_.MEMBERS.empty()) end_group();
    return best_;
  }

 private:
  /// One prefix; what lies below the effect counts only where it is sure that there is this one.
  void bound_prefix(double area, double length, std::size_t ranges, bool is_sure) {
    const double off = (16 + static_cast<double>(ranges)) * ROUNDING * MARGIN;
    const double shortest = length * (1 - off) - own_.LENGTH_ERROR;
    const double highest =
        (area * (1 + off) + own_.AREA_ERROR) * intensity_.HIGHEST_FROM(shortest) * (1 + off);
    best_.HIGH = std::max(best_.HIGH, highest + SMALLEST_STEP * (1 + highest));
    if (!is_sure || highest <= needed_) return;
    const double lowest = intensity_.LOWEST_BETWEEN(shortest, length * (1 + off) + own_.LENGTH_ERROR);
    best_.LOW =
        std::max(best_.LOW, (area * (1 - off) - own_.AREA_ERROR) * lowest * (1 - off) - SMALLEST_STEP);
  }

  /// A prefix that ends inside the group has at most its largest areas and at least its shortest lengths.
  void bound_inside_group() {
    group_.AREAS.clear();
    group_.LENGTHS.clear();
    for (const T_RANKED* range : group_.MEMBERS) {
      group_.AREAS.push_back(range->AREA);
      group_.LENGTHS.push_back(range->LENGTH);
    }
    std::sort(group_.AREAS.begin(), group_.AREAS.end(), std::greater<>());
    std::sort(group_.LENGTHS.begin(), group_.LENGTHS.end());
    double most_area = area_;
    double least_length = length_;
    for (std::size_t m = 0; m + 1 < group_.MEMBERS.size(); ++m) {
      most_area += group_.AREAS[m];
      least_length += group_.LENGTHS[m];
      bound_prefix(most_area, least_length, loaded_ + m + 1, false);
    }
  }

  void end_group() {
    if (group_.MEMBERS.size() > 1) bound_inside_group();
    for (const T_RANKED* range : group_.MEMBERS) {
      area_ += range->AREA;
      length_ += range->LENGTH;
    }
    loaded_ += group_.MEMBERS.size();
    group_.MEMBERS.clear();
    bound_prefix(area_, length_, loaded_, true);
  }

  const T_INTENSITY_BOUNDS& intensity_;
  const T_OWN_RANGES& own_;
  const double needed_;
  T_GROUP& group_;
  double lowest_mean_ = 0;  // of the group
  double area_ = 0;         // of all groups that are complete
  double length_;
  std::size_t loaded_ = 0;
  T_BOUNDS best_;
};

T_BOUNDS T_HA_BOUNDS::BOUND(SIDE side, const T_ZONE_CUT& cut, double vehicle_length, double needed) {
  if (quick_[side].HIGHEST == 0) return {};
  if (!cut.KNOWN) return NO_BOUNDS;
  const T_OWN_RANGES own = own_ranges(side, cut);
  if (!own.ARE_SURE) return NO_BOUNDS;
  PREFIXES prefixes(*intensity_, vehicle_length, own, needed, group_);
  std::size_t next_own = 0;
  for (const T_RANKED& range : ranges_[side]) {
    if (range.NUMBER >= own.FIRST_GONE && range.NUMBER <= own.LAST_GONE) continue;
    while (next_own < own.COUNT && own.RANGES[next_own].HIGHEST_MEAN > range.HIGHEST_MEAN) {
      prefixes.TAKE(own.RANGES[next_own++]);
    }
    prefixes.TAKE(range);
  }
  while (next_own < own.COUNT) prefixes.TAKE(own.RANGES[next_own++]);
  return prefixes.END();
}

template bool T_HA_BOUNDS::PREPARE<SIMPLE_LAYOUT>(const T_LINE&, const T_INTENSITY_BOUNDS&, real, double);
template bool T_HA_BOUNDS::PREPARE<JUMP_LAYOUT>(const T_LINE&, const T_INTENSITY_BOUNDS&, real, double);
template T_ZONE_CUT T_HA_BOUNDS::CUT<SIMPLE_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&) const noexcept;
template T_ZONE_CUT T_HA_BOUNDS::CUT<JUMP_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&) const noexcept;
template void T_HA_BOUNDS::RANGES_BESIDE<SIMPLE_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&, const T_ZONE_CUT&,
                                                        T_RANGE_WORK&) const;
template void T_HA_BOUNDS::RANGES_BESIDE<JUMP_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&, const T_ZONE_CUT&,
                                                      T_RANGE_WORK&) const;

}  // namespace search
