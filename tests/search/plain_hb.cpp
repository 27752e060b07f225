#include "tests/search/plain_hb.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>
#include <utility>

namespace plain {

namespace {

constexpr float HB_CLEAR = 25.0F;
constexpr float PORTION = 0.3333F;

/// Whether p stands on point i or behind it in its segment.
bool stands_at(float p, int i, const VIEW& line) {
  return line.X(i) == p || (i < line.n && line.X(i) < p && p < line.X(i + 1));
}

SPAN bracket(float p, const VIEW& line) {
  const int n = line.n;
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
    } else {
      return m == 1 ? SPAN{1, 2} : SPAN{m - 1, m + 1};
    }
    if (hi - lo < 3) break;
  }
  return {lo, hi};
}

}  // namespace

ZONE_PLACE LOCATE_ZONE(float far_end, float near_end, const VIEW& line) {
  ZONE_PLACE zone;
  if (line.n < 2) return zone;
  const auto fraction = [&line](float p, int i) { return (p - line.X(i)) / (line.X(i + 1) - line.X(i)); };
  for (int i = 1; i <= line.n && zone.FAR_INDEX == 0; ++i) {
    if (!stands_at(far_end, i, line)) continue;
    zone.FAR_INDEX = i;
    zone.FAR_FRACTION = line.X(i) == far_end ? 0 : fraction(far_end, i);
  }
  for (int i = 1; i <= line.n && zone.NEAR_INDEX == 0; ++i) {
    if (!stands_at(near_end, i, line)) continue;
    zone.NEAR_INDEX = line.X(i) == near_end ? i : i + 1;
    zone.NEAR_FRACTION = line.X(i) == near_end ? 0 : fraction(near_end, i);
  }
  return zone;
}

ORDINATE ORDINATE_AT(float p, const VIEW& line) {
  if (line.n < 1 || p < line.X(1) || p > line.X(line.n)) return {};
  const SPAN span = bracket(p, line);
  for (int k = span.LO; k <= span.HI; ++k) {
    if (line.X(k) != p) continue;
    ORDINATE at{line.BEFORE(k), line.BEFORE(k)};
    const bool repeated = k < line.n && line.X(k) == line.X(k + 1);
    for (int point = k; line.JUMP_LAYOUT && point <= (repeated ? k + 1 : k); ++point) {
      for (const float value : {line.BEFORE(point), line.AFTER(point)}) {
        if (value > at.UPPER) at.UPPER = value;
        if (value < at.LOWER) at.LOWER = value;
      }
    }
    return at;
  }
  for (int k = span.LO; k <= span.HI && k < line.n; ++k) {
    if (!(line.X(k) <= p && p <= line.X(k + 1))) continue;
    const float difference = line.X(k + 1) - line.X(k);
    const float f = difference > 0 ? (p - line.X(k)) / difference : 0.0F;
    const float value = (1 - f) * line.AFTER(k) + f * line.BEFORE(k + 1);
    return {value, value};
  }
  return {};
}

namespace {

/// A range in hand.
struct IN_HAND {
  float area = 0;
  float length = 0;

  void add(float piece_area, float piece_length) {
    length += piece_length;
    area += piece_area;
  }
  void close(RANKED_RANGES& ranges) {
    const auto r = static_cast<std::size_t>(ranges.COUNT++);
    ranges.AREA[r] = std::exchange(area, 0.0F);
    ranges.LENGTH[r] = std::exchange(length, 0.0F);
  }
};

/// A cut in progress.
struct CUTTING {
  RANKED_RANGES* closed;  // of both signs
  IN_HAND positive;
  IN_HAND negative;

  void segment(float dx, float a, float b) {
    if (a == 0 && b == 0) return;
    if (a >= 0 && b > 0) return positive.add((a + b) * dx * 0.5F, dx);
    if (a <= 0 && b < 0) return negative.add((a + b) * dx * 0.5F, dx);
    const float x0 = std::fabs(a) * dx / (std::fabs(b) + std::fabs(a));
    if (a > 0 && b <= 0) {
      positive.add(a * 0.5F * x0, x0);
      negative.add(b * 0.5F * (dx - x0), dx - x0);
      positive.close(closed[0]);
    } else if (a < 0 && b >= 0) {
      negative.add(a * 0.5F * x0, x0);
      positive.add(b * 0.5F * (dx - x0), dx - x0);
      negative.close(closed[1]);
    }
  }
};

/// One pass along the lane for all lines, which share their positions.
template <std::size_t LINES>
void cut_beside(const std::array<VIEW, LINES>& lines, const ZONE_PLACE& zone, HB_WORK& work) {
  std::array<CUTTING, LINES> cuttings;
  for (std::size_t line = 0; line < LINES; ++line) {
    for (RANKED_RANGES& ranges : work.RANGES[line]) ranges.COUNT = 0;
    cuttings[line].closed = work.RANGES[line].data();
  }
  const bool near_inside = zone.NEAR_FRACTION != 0;
  const bool same_segment = near_inside && zone.FAR_INDEX == zone.NEAR_INDEX - 1;
  for (int i = 1; i < lines[0].n; ++i) {
    const float start = lines[0].X(i);
    const float end = lines[0].X(i + 1);
    const float dx = end - start;
    if (!lines[0].JUMP_LAYOUT && dx == 0) continue;
    if (i < zone.FAR_INDEX && i > zone.NEAR_INDEX) continue;
    const bool ends_at_near = near_inside && i == zone.NEAR_INDEX - 1;
    const bool starts_at_far = i == zone.FAR_INDEX;
    const bool whole = !ends_at_near && !starts_at_far;
    if (whole && i == zone.NEAR_INDEX && !same_segment) continue;
    for (std::size_t line = 0; line < LINES; ++line) {
      const float a = lines[line].AFTER(i);
      const float b = lines[line].BEFORE(i + 1);
      if (ends_at_near) {
        const float f = zone.NEAR_FRACTION;
        cuttings[line].segment((start + dx * f) - start, a, (1 - f) * a + f * b);
      }
      if (starts_at_far) {
        const float f = zone.FAR_FRACTION;
        cuttings[line].segment(end - (start + dx * f), (1 - f) * a + f * b, b);
      }
      if (whole) cuttings[line].segment(dx, a, b);
    }
  }
  for (CUTTING& cutting : cuttings) {
    if (cutting.positive.area > 0) cutting.positive.close(cutting.closed[0]);
    if (cutting.negative.area < 0) cutting.negative.close(cutting.closed[1]);
  }
}

void rank(float* means, int* numbers, int count) {
  const auto swap = [&](int i, int j) {
    std::swap(means[i], means[j]);
    std::swap(numbers[i], numbers[j]);
  };
  int hi = count - 1;
  for (int k = 0; k < (count + 1) / 2 && k < hi; ++k, --hi) {
    int largest = k;
    for (int i = k; i <= hi; ++i)
      if (means[i] > means[largest]) largest = i;
    swap(k, largest);
    int smallest = k;
    for (int i = k; i <= hi; ++i)
      if (means[i] < means[smallest]) smallest = i;
    swap(hi, smallest);
  }
}

bool beyond(std::size_t side, float value, float best) {
  return side == 0 ? value > best : value < best;
}

/// Ranges up to `no_mean_length` have the mean 0; at 0 those of no length alone.
PREFIX best_prefix(RANKED_RANGES& ranges, std::size_t side, float L, const HA_CURVE& curve,
                   float no_mean_length) {
  const auto count = static_cast<std::size_t>(ranges.COUNT);
  for (std::size_t r = 0; r < count; ++r) {
    const float length = ranges.LENGTH[r];
    const bool has_mean = no_mean_length > 0 ? length > no_mean_length : length != 0;
    const float mean = has_mean ? ranges.AREA[r] / length : 0.0F;
    ranges.MEAN[r] = side == 0 ? mean : std::fabs(mean);
    ranges.NUMBER[r] = static_cast<int>(r) + 1;
  }
  rank(ranges.MEAN.data(), ranges.NUMBER.data(), ranges.COUNT);
  PREFIX best;
  float AREA = 0;
  for (std::size_t j = 0; j < count; ++j) {
    const auto r = static_cast<std::size_t>(ranges.NUMBER[j]) - 1;
    AREA += ranges.AREA[r];
    L += ranges.LENGTH[r];
    const float w = HA_INTENSITY(L, curve);
    const float E = AREA * w;
    if (beyond(side, E, best.VALUE)) best = {E, W_MILLI(w), std::min(static_cast<int>(j) + 1, 500)};
  }
  return best;
}

template <std::size_t LINES>
PREFIXES search(const std::array<VIEW, LINES>& lines, const HA_CURVE& curve, const ZONE_PLACE& zone,
                float vehicle_length, HB_WORK& work) {
  cut_beside(lines, zone, work);
  const float no_mean_length = LINES == 2 && lines[0].JUMP_LAYOUT ? 1e-5F : 0.0F;
  PREFIXES best;
  for (std::size_t line = 0; line < LINES; ++line)
    for (const std::size_t side : {0U, 1U})
      best[line][side] = best_prefix(work.RANGES[line][side], side, vehicle_length, curve, no_mean_length);
  return best;
}

}  // namespace

PREFIXES HA_SEARCH_ZONE(const VIEW& line, const HA_CURVE& curve, const ZONE_PLACE& zone, float vehicle_length,
                        HB_WORK& work) {
  return search(std::array{line}, curve, zone, vehicle_length, work);
}
PREFIXES HA_SEARCH_ZONE_PAIR(const VIEW& a, const VIEW& b, const HA_CURVE& curve, const ZONE_PLACE& zone,
                             float vehicle_length, HB_WORK& work) {
  return search(std::array{a, b}, curve, zone, vehicle_length, work);
}

void HB_WORK::MAKE_ROOM(std::size_t points) {
  // A cut closes one range a segment at most, one more in a segment with both ends of a zone, and one at the end.
  for (auto& line : RANGES) {
    for (RANKED_RANGES& ranges : line) {
      for (auto* list : {&ranges.AREA, &ranges.LENGTH, &ranges.MEAN}) list->resize(points + 1);
      ranges.NUMBER.resize(points + 1);
    }
  }
}

namespace {

/// Copies of a pass. Reversed distances start from 0; a reversed row keeps the order of its columns.
void begin_pass(const HB_TASK& task, bool reverse, HB_WORK& work) {
  const std::size_t n = task.X.size();
  const auto copy = [reverse](const std::vector<float>& from, std::vector<float>& to) {
    reverse ? to.assign(from.rbegin(), from.rend()) : to.assign(from.begin(), from.end());
  };
  copy(task.X, work.X);
  if (reverse) work.X[0] = 0;
  for (std::size_t k = 1; reverse && k < n; ++k)
    work.X[k] = work.X[k - 1] + task.X[n - k] - task.X[n - k - 1];
  work.SETS.resize(task.SETS.size());
  for (std::size_t set = 0; set < task.SETS.size(); ++set) {
    work.SETS[set].resize(task.SETS[set].size());
    for (std::size_t plane = 0; plane < task.SETS[set].size(); ++plane)
      for (const auto column : {&ORDINATES::BEFORE, &ORDINATES::AFTER})
        copy(task.SETS[set][plane].*column, work.SETS[set][plane].*column);
  }
  work.MAKE_ROOM(n);
}

void add_parents(HB_WORK& work) {
  const PLANES& own = work.SETS[0];
  for (const auto column : {&ORDINATES::BEFORE, &ORDINATES::AFTER}) {
    (work.SUM.*column).resize(work.X.size());
    for (std::size_t i = 0; i < work.X.size(); ++i)
      (work.SUM.*column)[i] = (own[1].*column)[i] + (own[2].*column)[i];
  }
}

VIEW view_of(const HB_TASK& task, const HB_WORK& work, const ORDINATES& line) {
  return {static_cast<int>(task.X.size()), task.JUMP_LAYOUT, work.X.data(), line.BEFORE.data(),
          line.AFTER.data()};
}

/// Upper and lower sum of the four axles on one plane of the sets that they run on.
std::array<float, 2> axle_sums(const HB_TASK& task, const HB_WORK& work, const float* axles,
                               std::size_t plane) {
  std::array<float, 2> S{};
  for (std::size_t j = 0; j < 4; ++j) {
    const ORDINATE at = ORDINATE_AT(axles[j], view_of(task, work, work.SETS[task.AXLE_SET[j]][plane]));
    S[0] += at.UPPER;
    S[1] += at.LOWER;
  }
  return S;
}

enum class FORM { LANE, SUM, THIRD };

struct PLACEMENT {
  int pass;
  int position;
  int type;
  float axles[4];
  ZONE_PLACE zone;
};

/// One placement: the HB's effect, the HA beside it, and what is kept of both.
void try_placement(FORM form, const HB_TASK& task, HB_WORK& work, const PLACEMENT& p, HB_RESULT& result) {
  std::array<float, 2> S{};
  std::array<int, 2> codes{};
  if (form == FORM::LANE) S = axle_sums(task, work, p.axles, 0);
  const std::size_t planes = form == FORM::LANE ? 0 : work.SETS[0].size();
  for (std::size_t plane = 0; plane < planes; ++plane) {
    const std::array<float, 2> of_plane = axle_sums(task, work, p.axles, plane);
    const int factor = form == FORM::SUM && task.JUMP_LAYOUT ? 100 : 1000;
    for (const std::size_t side : {0U, 1U}) {
      if (!beyond(side, of_plane[side], S[side])) continue;
      S[side] = of_plane[side];
      codes[side] = task.LANE_NUMBER * factor + static_cast<int>(plane) + 1;
    }
  }

  const PLANES& own = work.SETS[0];
  const VIEW line = view_of(task, work, form == FORM::LANE ? own[0] : form == FORM::SUM ? work.SUM : own[1]);
  const float vehicle_length = p.axles[0] - p.axles[3];
  const PREFIXES ha = form != FORM::THIRD ? HA_SEARCH_ZONE(line, task.CURVE, p.zone, vehicle_length, work)
                                          : HA_SEARCH_ZONE_PAIR(line, view_of(task, work, own[2]), task.CURVE,
                                                                p.zone, vehicle_length, work);
  for (const std::size_t side : {0U, 1U}) {
    const float A = ha[0][side].VALUE;
    const float B = ha[1][side].VALUE;
    const float first_full = A + PORTION * B;
    const float second_full = PORTION * A + B;
    const bool takes_second = form == FORM::THIRD && beyond(side, second_full, first_full);
    const float of_ha = form != FORM::THIRD ? A : takes_second ? second_full : first_full;
    const float total = of_ha + S[side] * task.HB_LOAD;
    HB_SIDE& kept = result[side];
    if (!beyond(side, total, kept.VALUE)) continue;
    kept.VALUE = total;
    kept.PASS_REC = p.pass;
    for (std::size_t part = 0; part < (form == FORM::THIRD ? 2U : 1U); ++part) {
      const PREFIX& best = ha[part][side];
      const RANKED_RANGES& ranges = work.RANGES[part][side];
      const int digit = (part == 1) == takes_second ? 1 : 0;
      const int code = form == FORM::THIRD ? codes[side] * 10 + digit : codes[side];
      const std::vector<int>& numbers = ranges.NUMBER;
      HB_PART& of = kept.PARTS[part];
      of.NUMBERS.assign(numbers.begin(), numbers.begin() + best.LOADED_COUNT);
      std::tie(of.W_MILLI, of.LOADED_COUNT, of.HB_TYPE, of.HB_POSITION, of.HB_CODE, of.NUMBERED) =
          std::tuple(best.W_MILLI, best.LOADED_COUNT, p.type, p.position, code, ranges.COUNT);
    }
  }
}

HB_RESULT place(FORM form, const HB_TASK& task, HB_WORK& work) {
  HB_RESULT result;
  const auto n = static_cast<int>(task.X.size());
  float offsets[5][4];
  for (int k = 0; k < 5; ++k) {
    const float T = task.HB_B + task.HB_S + static_cast<float>(k) * task.HB_STEP;
    offsets[k][0] = T + HB_CLEAR + task.HB_S;
    offsets[k][1] = T + HB_CLEAR;
    offsets[k][2] = HB_CLEAR + task.HB_S;
    offsets[k][3] = HB_CLEAR;
  }
  for (int pass = 1; pass <= 2 && n >= 2; ++pass) {
    if (pass == 1 ? task.LANE_DIRECTION == 1 : task.LANE_DIRECTION == 0) continue;
    begin_pass(task, pass == 2, work);
    if (form == FORM::SUM) add_parents(work);
    const VIEW line = view_of(task, work, work.SETS[0][0]);
    for (int i = 1; i <= n; ++i) {
      for (int k = 0; k < 5; ++k) {
        PLACEMENT p{pass, pass == 1 ? i : n - i + 1, k + 1, {}, {}};
        for (int j = 0; j < 4; ++j) p.axles[j] = line.X(i) + offsets[k][j];
        const float far_end = p.axles[0] + HB_CLEAR;
        const float near_end = p.axles[3] - HB_CLEAR;
        if (far_end > line.X(n) || line.X(1) > near_end) break;
        p.zone = LOCATE_ZONE(far_end, near_end, line);
        try_placement(form, task, work, p, result);
      }
    }
  }
  return result;
}

}  // namespace

HB_RESULT HB_LANE(const HB_TASK& task, HB_WORK& work) {
  return place(FORM::LANE, task, work);
}
HB_RESULT HB_STRADDLE_SUM(const HB_TASK& task, HB_WORK& work) {
  return place(FORM::SUM, task, work);
}
HB_RESULT HB_STRADDLE_THIRD(const HB_TASK& task, HB_WORK& work) {
  return place(FORM::THIRD, task, work);
}

namespace {

float& start(std::array<float, 200>& flat, int pair) {
  return flat.at(static_cast<std::size_t>(2 * pair - 2));
}
float& end(std::array<float, 200>& flat, int pair) {
  return flat.at(static_cast<std::size_t>(2 * pair - 1));
}

}  // namespace

void MERGE_LOADED_RANGES(float far_end, float near_end, REPORTED& ranges) {
  std::array<float, 200> merged{ranges.FLAT[0], ranges.FLAT[1]};
  int d = 1;
  for (int e = 2; e <= 100 && start(ranges.FLAT, e) != 0; ++e) {
    if (end(ranges.FLAT, e - 1) >= near_end && far_end >= start(ranges.FLAT, e)) {
      for (int& number : ranges.NUMBERS)
        if (number > d) --number;
    } else {
      ++d;
      start(merged, d) = start(ranges.FLAT, e);
    }
    end(merged, d) = end(ranges.FLAT, e);
  }
  std::set<int> marked(ranges.NUMBERS.begin(), ranges.NUMBERS.end());
  marked.erase(marked.begin(), marked.upper_bound(0));
  ranges.NUMBERS = {};
  std::copy(marked.begin(), marked.end(), ranges.NUMBERS.begin());
  ranges.FLAT = merged;
}

void TRIM_LOADED_RANGES(float far_end, float near_end, REPORTED& ranges) {
  MERGE_LOADED_RANGES(far_end, near_end, ranges);
  auto& flat = ranges.FLAT;
  const auto first_pair = [&flat](auto fits) {
    for (int e = 1; e <= 100; ++e)
      if (fits(start(flat, e), end(flat, e))) return e;
    return 0;
  };
  const int split = first_pair([=](float s, float e) { return near_end > s && e > far_end; });
  const float split_end = split > 0 ? end(flat, split) : 0;
  const int near_hit = first_pair([=](float s, float e) { return near_end - s > 0 && e - near_end > 0; });
  if (near_hit > 0) end(flat, near_hit) = near_end;
  const int far_hit = first_pair([=](float s, float e) { return far_end - s > 0 && e - far_end > 0; });
  if (far_hit > 0) start(flat, far_hit) = far_end;

  std::size_t count = 0;
  int first = 0;  // place from 1
  for (int place = 200; place >= 1; --place) {
    const float value = flat[static_cast<std::size_t>(place) - 1];
    if (value > near_end && value < far_end) first = place, ++count;
  }
  for (int e = 1; e <= 100 && (e == 1 || start(flat, e) != 0); ++e) {
    if (near_hit == 0 && start(flat, e) == near_end) --first, ++count;
    if (far_hit == 0 && end(flat, e) == far_end) ++count;
  }
  for (auto place = static_cast<std::size_t>(std::max(first, 0)); first > 0 && place + count <= 200; ++place)
    flat[place - 1] = flat[place + count - 1];
  if (split > 0) {
    ranges.NUMBERS.at(static_cast<std::size_t>(ranges.NO_LOADED_RANGE++)) = 100;
    start(flat, 100) = far_end;
    end(flat, 100) = split_end;
  }
}

}  // namespace plain
