#include "tests/search/plain_search.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <utility>

namespace plain {

// Every operation rounds to single precision at once.
static_assert(FLT_EVAL_METHOD == 0);

namespace {

constexpr int MAX_RANGES = 100;
constexpr int MAX_LOADED = 500;

/// The range in hand of one sign.
struct ACCUMULATOR {
  float area = 0;
  float length = 0;
};

void close_range(RANGES& ranges, ACCUMULATOR& in_hand) {
  ranges.AREA.add(in_hand.area);
  ranges.LENGTH.add(in_hand.length);
  in_hand = {};
}

/// Which row a segment falls under; 0 for one without ordinates.
enum ROW { NOTHING, ALL_POSITIVE, ALL_NEGATIVE, FALLING, RISING };

ROW row_of(float a, float b) {
  if (a == 0 && b == 0) return NOTHING;
  if (a >= 0 && b > 0) return ALL_POSITIVE;
  if (a <= 0 && b < 0) return ALL_NEGATIVE;
  if (a > 0 && b <= 0) return FALLING;
  if (a < 0 && b >= 0) return RISING;
  return NOTHING;  // not a number
}

struct ACCUMULATORS {
  ACCUMULATOR positive;
  ACCUMULATOR negative;

  /// Adds a segment; gives the length from its start to the crossing in the rows that have one.
  float add(ROW row, float dx, float a, float b) {
    if (row == ALL_POSITIVE) {
      positive.length += dx;
      positive.area += (a + b) * dx * 0.5F;
    } else if (row == ALL_NEGATIVE) {
      negative.length += dx;
      negative.area += (a + b) * dx * 0.5F;
    } else if (row == FALLING || row == RISING) {
      ACCUMULATOR& first = row == FALLING ? positive : negative;
      ACCUMULATOR& second = row == FALLING ? negative : positive;
      const float x0 = std::fabs(a) * dx / (std::fabs(b) + std::fabs(a));
      first.length += x0;
      first.area += a * 0.5F * x0;
      second.length += dx - x0;
      second.area += b * 0.5F * (dx - x0);
      return x0;
    }
    return 0;
  }
};

/// A cut in progress.
struct CUTTING {
  CUT cut;
  ACCUMULATORS in_hand;

  void segment(float dx, float a, float b) {
    const ROW row = row_of(a, b);
    in_hand.add(row, dx, a, b);
    if (row == FALLING) close_range(cut.POSITIVE, in_hand.positive);
    if (row == RISING) close_range(cut.NEGATIVE, in_hand.negative);
  }
  void jump(float a, float b, float c) {
    if (row_of(a, b) == ALL_POSITIVE && c < 0) close_range(cut.POSITIVE, in_hand.positive);
    if (row_of(a, b) == ALL_NEGATIVE && c > 0) close_range(cut.NEGATIVE, in_hand.negative);
  }
  CUT end() {
    if (in_hand.positive.area > 0) close_range(cut.POSITIVE, in_hand.positive);
    if (in_hand.negative.area < 0) close_range(cut.NEGATIVE, in_hand.negative);
    return cut;
  }
};

/// A zone at no points, as it is by default, leaves the lane whole.
CUT cut_ranges(const LINE& line, const ZONE_PLACE& zone, bool closes_at_jumps) {
  const bool near_inside = zone.NEAR_FRACTION != 0;  // NEAR_END stands inside segment NEAR_INDEX - 1
  const bool same_segment = near_inside && zone.FAR_INDEX == zone.NEAR_INDEX - 1;
  CUTTING cutting;
  for (int i = 1; i <= line.n() - 1; ++i) {
    const float start = line.X(i);
    const float end = line.X(i + 1);
    const float dx = end - start;
    const float a = line.AFTER(i);
    const float b = line.BEFORE(i + 1);
    if (!line.JUMP_LAYOUT && dx == 0) continue;
    if (i < zone.FAR_INDEX && i > zone.NEAR_INDEX) continue;

    bool is_cut = false;
    if (near_inside && i == zone.NEAR_INDEX - 1) {
      const float f = zone.NEAR_FRACTION;
      const float near_end = start + dx * f;
      cutting.segment(near_end - start, a, (1 - f) * a + f * b);
      is_cut = true;
    }
    if (i == zone.FAR_INDEX) {
      const float f = zone.FAR_FRACTION;
      const float far_end = start + dx * f;
      cutting.segment(end - far_end, (1 - f) * a + f * b, b);
      is_cut = true;
    }
    if (is_cut) continue;
    if (i == zone.NEAR_INDEX && !same_segment) continue;
    cutting.segment(dx, a, b);
    if (closes_at_jumps) cutting.jump(a, b, line.TWO_COLUMNS ? line.AFTER(i + 1) : 0.0F);
  }
  return cutting.end();
}

}  // namespace

CUT CUT_RANGES(const LINE& line) {
  return cut_ranges(line, {}, line.JUMP_LAYOUT);
}
CUT CUT_RANGES(const LINE& line, const ZONE_PLACE& zone) {
  return cut_ranges(line, zone, false);
}

void SORT_RANGE_MEANS(LIST<float>& means, LIST<int>& numbers, int mode) {
  const int n = means.count();
  const auto swap = [&](int i, int j) {
    std::swap(means(i), means(j));
    std::swap(numbers(i), numbers(j));
  };
  if (mode == 2)
    for (float& mean : means.values) mean = std::fabs(mean);
  int hi = n;
  for (int k = 1; k <= (n + 1) / 2 && k < hi; ++k, --hi) {
    int largest = k;
    for (int i = k; i <= hi; ++i)
      if (means(i) > means(largest)) largest = i;
    swap(k, largest);
    int smallest = k;
    for (int i = k; i <= hi; ++i)
      if (means(i) < means(smallest)) smallest = i;
    swap(hi, smallest);
  }
}

float HA_INTENSITY(float L, const HA_CURVE& curve) {
  float w = curve.W0;
  if (!(L <= curve.L0)) {
    const float reciprocal = 1.0F / L;
    w = curve.K * std::pow(reciprocal, curve.P);
  }
  return curve.WMIN > w ? curve.WMIN : w;
}

int W_MILLI(float w) {
  const float milli = w * 1000.0F;
  if (milli > -2147483648.0F && milli < 2147483648.0F) return static_cast<int>(milli);
  return INT_MIN;  // too large, or not a number
}

SPAN BRACKET_POINT(float p, const LINE& line) {
  const int n = line.n();
  if (p == line.X(1)) return {1, n};
  if (p == line.X(n)) return {n, n};
  int lo = 1;
  int hi = n;
  int m = n / 2;
  for (int pass = 1; pass <= 1000; ++pass) {
    if (p > line.X(m)) {
      lo = m;
      m = static_cast<int>(double(lo) + double(hi - lo) * 0.5 + 1.0);
    } else if (p < line.X(m)) {
      hi = m;
      m = static_cast<int>(double(lo) + double(m - lo) * 0.5 - 1.0);
    } else if (p == line.X(m)) {
      if (m == 1) return {1, 2};
      return {m - 1, m + 1};
    }
    if (hi - lo < 3) break;
  }
  return {lo, hi};
}

namespace {

ORDINATE ordinate_at_point(int k, const LINE& line) {
  if (!line.JUMP_LAYOUT) return {line.BEFORE(k), line.BEFORE(k)};
  const bool repeated = k < line.n() && line.X(k) == line.X(k + 1);
  LIST<float> columns;
  for (int point = k; point <= (repeated ? k + 1 : k); ++point) {
    columns.add(line.BEFORE(point));
    if (line.TWO_COLUMNS) columns.add(line.AFTER(point));
  }
  ORDINATE at{columns(1), columns(1)};
  for (const float value : columns.values) {
    if (value > at.UPPER) at.UPPER = value;
    if (value < at.LOWER) at.LOWER = value;
  }
  return at;
}

}  // namespace

ORDINATE ORDINATE_AT(float p, const LINE& line) {
  const int n = line.n();
  if (n < 1 || p < line.X(1) || p > line.X(n)) return {};
  const SPAN span = BRACKET_POINT(p, line);
  for (int k = span.LO; k <= span.HI; ++k)
    if (line.X(k) == p) return ordinate_at_point(k, line);
  for (int k = span.LO; k <= span.HI && k < n; ++k) {
    if (!(line.X(k) <= p && p <= line.X(k + 1))) continue;
    const float difference = line.X(k + 1) - line.X(k);
    const float f = difference > 0 ? (p - line.X(k)) / difference : 0.0F;
    const float value = (1 - f) * line.AFTER(k) + f * line.BEFORE(k + 1);
    return {value, value};
  }
  return {};
}

ZONE_PLACE LOCATE_ZONE(float far_end, float near_end, const LINE& line) {
  ZONE_PLACE zone;
  const int n = line.n();
  if (n < 2) return zone;
  const auto fraction = [&line](float end, int i) { return (end - line.X(i)) / (line.X(i + 1) - line.X(i)); };
  const auto stands_at = [&line, n](float end, int i) {  // on point i, or behind it in its segment
    return line.X(i) == end || (i < n && line.X(i) < end && end < line.X(i + 1));
  };
  for (int i = 1; i <= n && zone.FAR_INDEX == 0; ++i) {
    if (!stands_at(far_end, i)) continue;
    zone.FAR_INDEX = i;
    zone.FAR_FRACTION = line.X(i) == far_end ? 0 : fraction(far_end, i);
  }
  for (int i = 1; i <= n && zone.NEAR_INDEX == 0; ++i) {
    if (!stands_at(near_end, i)) continue;
    zone.NEAR_INDEX = line.X(i) == near_end ? i : i + 1;
    zone.NEAR_FRACTION = line.X(i) == near_end ? 0 : fraction(near_end, i);
  }
  return zone;
}

namespace {

void add_pair(DISTANCES& side, float start, float end) {
  side.RANGE_COUNT += 1;
  if (side.RANGE_COUNT <= MAX_RANGES) side.PAIRS.push_back({start, end});
}

/// One side by points. The negative side mirrors the positive in every comparison, so it is the positive side
/// of the line with the other sign.
DISTANCES distances_by_points(const LINE& line, float sign) {
  const int n = line.n();
  const auto y = [&line, sign](int i) { return sign * line.BEFORE(i); };
  LIST<int> START;
  LIST<int> END;
  int s = 1;
  while (s <= n) {
    int start = 0;
    if (y(s) > 0) {
      start = s;
    } else {
      for (int t = s; t <= n && start == 0; ++t)
        if ((t < n && y(t) == 0 && y(t + 1) > 0) || y(t) > 0) start = t;
    }
    if (start == 0) break;
    int end = 0;
    for (int t = start; t <= n; ++t) {
      if (y(t) < 0) {
        end = t - 1;
        break;
      }
      end = t;
      if (t < n && y(t) == 0 && y(t + 1) == 0) break;
    }
    if (end == 0) break;
    START.add(start);
    END.add(end);
    s = end + 1;
  }

  DISTANCES side;
  for (int r = 1; r <= START.count(); ++r) {
    const int e = END(r);
    float end_distance = 0;
    if (y(e) == 0) end_distance = line.X(e);
    if (y(e) > 0 && e < n) {
      end_distance =
          line.X(e) + (line.X(e + 1) - line.X(e)) * std::fabs(y(e)) / (std::fabs(y(e)) + std::fabs(y(e + 1)));
    }
    if (y(e) > 0 && e == n) end_distance = line.X(e);

    const int b = START(r);
    float start_distance = 0;
    if (y(b) == 0) start_distance = line.X(b);
    if (y(b) > 0 && b >= 2) {
      start_distance = line.X(b - 1) + (line.X(b) - line.X(b - 1)) * std::fabs(y(b - 1)) /
                                           (std::fabs(y(b - 1)) + std::fabs(y(b)));
    }
    add_pair(side, start_distance, end_distance);
  }
  return side;
}

BOTH_DISTANCES distances_by_segments(const LINE& line) {
  BOTH_DISTANCES both;
  ACCUMULATORS in_hand;
  const auto close_at = [](DISTANCES& side, ACCUMULATOR& range, float end) {
    add_pair(side, end - range.length, end);
    range = {};
  };
  for (int i = 1; i <= line.n() - 1; ++i) {
    const float dx = line.X(i + 1) - line.X(i);
    const float a = line.AFTER(i);
    const float b = line.BEFORE(i + 1);
    const ROW row = row_of(a, b);
    if (row == ALL_POSITIVE && in_hand.negative.area != 0 && in_hand.negative.length != 0)
      close_at(both.NEGATIVE, in_hand.negative, line.X(i));
    if (row == ALL_NEGATIVE && in_hand.positive.area != 0 && in_hand.positive.length != 0)
      close_at(both.POSITIVE, in_hand.positive, line.X(i));
    const float x0 = in_hand.add(row, dx, a, b);
    if (row == FALLING) close_at(both.POSITIVE, in_hand.positive, line.X(i) + x0);
    if (row == RISING) close_at(both.NEGATIVE, in_hand.negative, line.X(i) + x0);
  }
  if (in_hand.positive.area > 0) close_at(both.POSITIVE, in_hand.positive, line.X(line.n()));
  if (in_hand.negative.area < 0) close_at(both.NEGATIVE, in_hand.negative, line.X(line.n()));
  return both;
}

}  // namespace

BOTH_DISTANCES RANGE_DISTANCES(const LINE& line) {
  if (line.JUMP_LAYOUT) return distances_by_segments(line);
  return {distances_by_points(line, 1.0F), distances_by_points(line, -1.0F)};
}

namespace {

/// Ranks the ranges of one sign and walks the prefixes. Ranges up to `no_mean_length` have the mean 0; at 0
/// that is the length 0 alone, for rounding may leave a length a little below it.
HA_SIDE best_prefix(const RANGES& ranges, int mode, float L, const HA_CURVE& curve, float no_mean_length) {
  const int count = ranges.AREA.count();
  LIST<float> means;
  LIST<int> numbers;
  for (int r = 1; r <= count; ++r) {
    const float length = ranges.LENGTH(r);
    const bool has_mean = no_mean_length > 0 ? length > no_mean_length : length != 0;
    means.add(has_mean ? ranges.AREA(r) / length : 0.0F);
    numbers.add(r);
  }
  SORT_RANGE_MEANS(means, numbers, mode);

  HA_SIDE best;
  best.RANGE_COUNT = count;
  float AREA = 0;
  for (int j = 1; j <= count; ++j) {
    const int r = numbers(j);
    AREA += ranges.AREA(r);
    L += ranges.LENGTH(r);
    const float w = HA_INTENSITY(L, curve);
    const float E = AREA * w;
    const bool better = mode == 1 ? E > best.VALUE : E < best.VALUE;
    if (!better) continue;
    best.VALUE = E;
    best.W_MILLI = W_MILLI(w);
    best.LOADED_COUNT = j < MAX_LOADED ? j : MAX_LOADED;
    best.NUMBERS.assign(numbers.values.begin(), numbers.values.begin() + best.LOADED_COUNT);
  }
  return best;
}

HA_RESULT best_prefixes(const CUT& cut, float L, const HA_CURVE& curve, float no_mean_length = 0) {
  return {best_prefix(cut.POSITIVE, 1, L, curve, no_mean_length),
          best_prefix(cut.NEGATIVE, 2, L, curve, no_mean_length)};
}

}  // namespace

HA_RESULT HA_SEARCH_LANE(const LINE& line, const HA_CURVE& curve, float kel_load) {
  float PEAK_MAX = 0;
  float PEAK_MIN = 0;
  const auto offer = [&](float value) {
    if (value > PEAK_MAX) PEAK_MAX = value;
    if (value < PEAK_MIN) PEAK_MIN = value;
  };
  for (int i = 1; i <= line.n(); ++i) {
    offer(line.BEFORE(i));
    if (line.TWO_COLUMNS) offer(line.AFTER(i));
  }
  HA_RESULT result = best_prefixes(CUT_RANGES(line), 0, curve);
  result.MAX.VALUE = PEAK_MAX * kel_load + result.MAX.VALUE;
  result.MIN.VALUE = PEAK_MIN * kel_load + result.MIN.VALUE;
  return result;
}

HA_RESULT HA_SEARCH_ZONE(const LINE& line, const HA_CURVE& curve, const ZONE_PLACE& zone,
                         float vehicle_length) {
  return best_prefixes(CUT_RANGES(line, zone), vehicle_length, curve);
}

HA_PAIR HA_SEARCH_ZONE_PAIR(const LINE& a, const LINE& b, const HA_CURVE& curve, const ZONE_PLACE& zone,
                            float vehicle_length) {
  const float no_mean_length = a.JUMP_LAYOUT ? 1e-5F : 0.0F;
  return {best_prefixes(CUT_RANGES(a, zone), vehicle_length, curve, no_mean_length),
          best_prefixes(CUT_RANGES(b, zone), vehicle_length, curve, no_mean_length)};
}

}  // namespace plain
