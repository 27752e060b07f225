#include "search/ranges.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

#include "search/range_cutter.h"

namespace search {

void T_RANGE_LIST::RESERVE(std::int32_t n) {
  const auto room = static_cast<std::size_t>(std::max(n, 1));
  if (RANGE_AREA.size() >= room) return;
  RANGE_AREA.resize(room);
  RANGE_LENGTH.resize(room);
  RANGE_MEAN.resize(room);
  RANGE_NUMBER.resize(room);
}

namespace {

/// A jump across zero at the end of a segment from a to b, behind which the line goes on at c.
template <class CLOSED>
void close_at_jump(real a, real b, real c, T_OPEN_RANGES& open, CLOSED closed) {
  if (a >= 0 && b > 0) {
    if (c < 0) open.CLOSE(MAX_SIDE, closed);
  } else if (a <= 0 && b < 0) {
    if (c > 0) open.CLOSE(MIN_SIDE, closed);
  }
}

}  // namespace

template <LAYOUT L>
void CUT_RANGES(const T_LINE& line, T_RANGE_WORK& work) {
  const RANGE_SINK closed(work, line.n);
  T_OPEN_RANGES open;
  if (L::CLOSES_AT_JUMPS && line.TWO_COLUMNS) {
    for (std::int32_t i = 1; i < line.n; ++i) {
      ADD_SEGMENTS<L>(line, i, i, open, closed);
      close_at_jump(line.AFTER(i), line.BEFORE(i + 1), line.AFTER(i + 1), open, closed);
    }
  } else {
    ADD_SEGMENTS<L>(line, 1, line.n - 1, open, closed);
  }
  open.END(closed);
}

template <LAYOUT L>
void CUT_RANGES_BESIDE_ZONE(const T_LINE& line, const T_ZONE_PLACE& zone, T_RANGE_WORK& work) {
  const RANGE_SINK closed(work, line.n);
  T_OPEN_RANGES open;
  const std::int32_t last = line.n - 1;
  const std::int32_t near_segment = NEAR_SEGMENT(zone);
  ADD_SEGMENTS<L>(line, 1, std::min({near_segment - 1, zone.FAR_INDEX - 1, last}), open, closed);
  if (near_segment <= zone.FAR_INDEX) {
    ADD_NEAR_PIECE<L>(line, zone, open, closed);
    ADD_FAR_PIECE<L>(line, zone, open, closed);
    ADD_SEGMENTS<L>(line, zone.FAR_INDEX + 1, last, open, closed);
  } else {
    // The ends of a vehicle that no model has, or of positions
    // that don't ascend: by the same rules, in lane order.
    ADD_FAR_PIECE<L>(line, zone, open, closed);
    ADD_SEGMENTS<L>(line, std::max(zone.FAR_INDEX + 1, 1), std::min(near_segment - 1, last), open, closed);
    ADD_NEAR_PIECE<L>(line, zone, open, closed);
    ADD_SEGMENTS<L>(line, std::max(zone.NEAR_INDEX + 1, 1), last, open, closed);
  }
  open.END(closed);
}

namespace {

/// The steps of the ranking: a selection from both ends at once.
void select_means(std::int32_t count, real* means, std::int32_t* numbers) {
  const auto exchange = [&](std::int32_t i, std::int32_t j) {
    std::swap(means[i], means[j]);
    std::swap(numbers[i], numbers[j]);
  };
  // The largest to the front of the span, the smallest to its back.
  for (std::int32_t front = 0, back = count - 1; front < back; ++front, --back) {
    std::int32_t largest = front;
    for (std::int32_t i = front + 1; i <= back; ++i) {
      if (means[i] > means[largest]) largest = i;
    }
    exchange(front, largest);
    std::int32_t smallest = front;
    for (std::int32_t i = front + 1; i <= back; ++i) {
      if (means[i] < means[smallest]) smallest = i;
    }
    exchange(back, smallest);
  }
}

/// From how many ranges on the next largest and smallest are looked up in a tree instead of searched for.
constexpr std::int32_t TREE_FROM = 2000;
/// From how many ranges on means that all differ are sorted in the usual way, whose order then is the same.
constexpr std::int32_t SORT_FROM = 48;

/// The same steps for a great many ranges, in n log n: the tree holds the means of the span with their
/// places, the largest first and of equal ones the lowest place first.
void sort_many_means(std::int32_t count, real* means, std::int32_t* numbers) {
  const auto rank = [](real mean) {
    return std::isnan(mean) ? -std::numeric_limits<real>::infinity() : mean;
  };
  struct T_ENTRY {
    real mean;
    std::int32_t place;
    bool operator<(const T_ENTRY& other) const {
      return mean != other.mean ? mean > other.mean : place < other.place;
    }
  };
  std::set<T_ENTRY> span;
  for (std::int32_t i = 0; i < count; ++i) span.insert({rank(means[i]), i});
  // Takes an entry out to an end of the span; what stood at that end takes its place.
  const auto take_out = [&](std::set<T_ENTRY>::iterator entry, std::int32_t end) {
    const std::int32_t place = entry->place;
    span.erase(entry);
    if (place == end) return;
    span.erase({rank(means[end]), end});
    std::swap(means[place], means[end]);
    std::swap(numbers[place], numbers[end]);
    span.insert({rank(means[place]), place});
  };
  for (std::int32_t front = 0, back = count - 1; front < back; ++front, --back) {
    take_out(span.begin(), front);
    // The smallest is looked for in the span with its front, where the largest stands now.
    const real smallest = span.rbegin()->mean;
    if (rank(means[front]) <= smallest) {
      std::swap(means[front], means[back]);
      std::swap(numbers[front], numbers[back]);
      span.erase({rank(means[front]), back});
      continue;
    }
    take_out(span.lower_bound({smallest, 0}), back);
  }
}

}  // namespace

void SORT_RANGE_MEANS(std::int32_t count, real* means, std::int32_t* numbers, bool by_magnitude,
                      std::vector<T_RANGE_MEAN>& work) {
  if (count <= 0) return;
  if (by_magnitude) {
    for (std::int32_t i = 0; i < count; ++i) means[i] = std::fabs(means[i]);
  }
  if (count >= SORT_FROM) {
    work.clear();
    for (std::int32_t i = 0; i < count; ++i) work.push_back({means[i], numbers[i]});
    const auto has_number = [](const T_RANGE_MEAN& range) { return !std::isnan(range.MEAN); };
    const auto is_above = [](const T_RANGE_MEAN& a, const T_RANGE_MEAN& b) { return a.MEAN > b.MEAN; };
    const auto is_equal = [](const T_RANGE_MEAN& a, const T_RANGE_MEAN& b) { return a.MEAN == b.MEAN; };
    if (std::all_of(work.begin(), work.end(), has_number)) {
      std::sort(work.begin(), work.end(), is_above);
      if (std::adjacent_find(work.begin(), work.end(), is_equal) == work.end()) {
        for (std::int32_t i = 0; i < count; ++i) {
          means[i] = work[static_cast<std::size_t>(i)].MEAN;
          numbers[i] = work[static_cast<std::size_t>(i)].NUMBER;
        }
        return;
      }
    }
  }
  if (count >= TREE_FROM) {
    sort_many_means(count, means, numbers);
  } else {
    select_means(count, means, numbers);
  }
}

real HA_INTENSITY(real loaded_length, const T_HA_CURVE& curve) {
  const real w =
      loaded_length <= curve.HA_L0 ? curve.HA_W0 : curve.HA_K * std::pow(1.0F / loaded_length, curve.HA_P);
  return curve.HA_WMIN > w ? curve.HA_WMIN : w;
}

T_SPAN BRACKET_POINT(real position, TABLE<const real, POINT> LANE_X, std::int32_t n) {
  if (position == LANE_X(1)) return {1, n};
  if (position == LANE_X(n)) return {n, n};
  std::int32_t lo = 1;
  std::int32_t hi = n;
  std::int32_t probe = n / 2;
  constexpr int MAX_PASSES = 1000;
  for (int pass = 0; pass < MAX_PASSES; ++pass) {
    if (position > LANE_X(probe)) {
      lo = probe;
      probe = static_cast<std::int32_t>(lo + (hi - lo) * 0.5 + 1.0);
    } else if (position < LANE_X(probe)) {
      hi = probe;
      probe = static_cast<std::int32_t>(lo + (probe - lo) * 0.5 - 1.0);
    } else if (position == LANE_X(probe)) {
      return probe == 1 ? T_SPAN{1, 2} : T_SPAN{probe - 1, probe + 1};
    }
    if (hi - lo < 3) break;
  }
  return {lo, hi};
}

T_POSITION FIND_POSITION(real position, TABLE<const real, POINT> LANE_X, std::int32_t n) {
  // Written so that a position that isn't a number lies off the lane.
  if (n < 1 || !(position >= LANE_X(1) && position <= LANE_X(n))) return {};
  const T_SPAN span = BRACKET_POINT(position, LANE_X, n);
  const std::int32_t last = std::min(span.HI, n);

  // A point at the position goes before any segment that ends there,
  // so that an axle on a jump counts its worse side.
  for (std::int32_t k = span.LO; k <= last; ++k) {
    if (position == LANE_X(k)) return {k, 0, true};
  }
  for (std::int32_t k = span.LO; k <= last && k < n; ++k) {
    if (LANE_X(k) <= position && position <= LANE_X(k + 1)) return POSITION_IN_SEGMENT(position, LANE_X, k);
  }
  return {};
}

T_ZONE_PLACE LOCATE_ZONE(real far_end, real near_end, TABLE<const real, POINT> LANE_X, std::int32_t n) {
  T_ZONE_PLACE zone;
  if (n < 2) return zone;
  struct PLACE {
    std::int32_t lower;
    real fraction;
    bool on_point;
  };
  const auto place = [&](real position) -> PLACE {
    for (std::int32_t i = 1; i <= n; ++i) {
      if (position == LANE_X(i)) return {i, 0, true};
      if (i < n && LANE_X(i) < position && position < LANE_X(i + 1)) {
        return {i, (position - LANE_X(i)) / (LANE_X(i + 1) - LANE_X(i)), false};
      }
    }
    return {0, 0, true};
  };
  const PLACE far_place = place(far_end);
  const PLACE near_place = place(near_end);
  zone.FAR_INDEX = far_place.lower;
  zone.FAR_FRACTION = far_place.fraction;
  zone.NEAR_INDEX = near_place.on_point ? near_place.lower : near_place.lower + 1;
  zone.NEAR_FRACTION = near_place.fraction;
  return zone;
}

namespace {

void add_pair(T_RANGE_DISTANCES& side, real start, real end) {
  if (side.RANGE_COUNT < MAX_RANGES) side.PAIRS[static_cast<std::size_t>(side.RANGE_COUNT)] = {start, end};
  ++side.RANGE_COUNT;
}

/// One side by points. The negative side is the positive one
/// with the line turned over, which changes no magnitude.
template <class ORDINATE>
void distances_of_side(const T_LINE& line, ORDINATE y, T_RANGE_DISTANCES& side) {
  const std::int32_t n = line.n;
  const auto x = line.LANE_X;
  std::int32_t scan = 1;
  while (scan <= n) {
    std::int32_t start = scan;
    while (start <= n && !(y(start) > 0 || (y(start) == 0 && start < n && y(start + 1) > 0))) ++start;
    if (start > n) return;

    std::int32_t end = start;
    for (std::int32_t t = start; t <= n; ++t) {
      if (y(t) < 0) {
        end = t - 1;
        break;
      }
      end = t;
      if (t < n && y(t) == 0 && y(t + 1) == 0) break;
    }

    real start_distance = 0;
    if (y(start) == 0) {
      start_distance = x(start);
    } else if (y(start) > 0 && start >= 2) {
      const real before = std::fabs(y(start - 1));
      start_distance = x(start - 1) + (x(start) - x(start - 1)) * before / (before + std::fabs(y(start)));
    }
    real end_distance = 0;
    if (y(end) == 0 || (y(end) > 0 && end == n)) {
      end_distance = x(end);
    } else if (y(end) > 0) {
      const real here = std::fabs(y(end));
      end_distance = x(end) + (x(end + 1) - x(end)) * here / (here + std::fabs(y(end + 1)));
    }
    add_pair(side, start_distance, end_distance);
    scan = end + 1;
  }
}

}  // namespace

void RANGE_DISTANCES(const T_LINE& line, std::array<T_RANGE_DISTANCES, N_SIDES>& sides) {
  sides = {};
  distances_of_side(
      line, [&](std::int32_t i) { return line.BEFORE(i); }, sides[MAX_SIDE]);
  distances_of_side(
      line, [&](std::int32_t i) { return -line.BEFORE(i); }, sides[MIN_SIDE]);
}

void RANGE_DISTANCES_JUMP(const T_LINE& line, std::array<T_RANGE_DISTANCES, N_SIDES>& sides) {
  sides = {};
  T_OPEN_RANGES open;
  real end = 0;  // where the range that closes next ends
  const auto closed = [&](SIDE side, const T_OPEN_RANGE& range) {
    add_pair(sides[side], end - range.LENGTH, end);
  };
  const auto has_begun = [](const T_OPEN_RANGE& range) { return range.AREA != 0 && range.LENGTH != 0; };
  for (std::int32_t i = 1; i < line.n; ++i) {
    const real dx = line.LANE_X(i + 1) - line.LANE_X(i);
    const real a = line.AFTER(i);
    const real b = line.BEFORE(i + 1);
    end = line.LANE_X(i);
    if (a >= 0 && b > 0) {
      if (has_begun(open.NEGATIVE)) open.CLOSE(MIN_SIDE, closed);
    } else if (a <= 0 && b < 0) {
      if (has_begun(open.POSITIVE)) open.CLOSE(MAX_SIDE, closed);
    } else {
      end = line.LANE_X(i) + T_OPEN_RANGES::CROSSING(dx, a, b);
    }
    open.SEGMENT(dx, a, b, closed);
  }
  if (line.n < 1) return;
  end = line.LANE_X(line.n);
  open.END(closed);
}

template void CUT_RANGES<SIMPLE_LAYOUT>(const T_LINE&, T_RANGE_WORK&);
template void CUT_RANGES<JUMP_LAYOUT>(const T_LINE&, T_RANGE_WORK&);
template void CUT_RANGES_BESIDE_ZONE<SIMPLE_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&, T_RANGE_WORK&);
template void CUT_RANGES_BESIDE_ZONE<JUMP_LAYOUT>(const T_LINE&, const T_ZONE_PLACE&, T_RANGE_WORK&);

}  // namespace search
