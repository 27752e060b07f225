#include "tests/search/plain_hb.h"

#include <algorithm>
#include <set>

namespace plain {

namespace {

constexpr float HB_CLEAR = 25.0F;
constexpr float PORTION = 0.3333F;

/// The lines of a pass by set and plane. Reversed distances start from 0; a reversed row keeps the order of
/// its columns.
using LINES = std::vector<std::vector<LINE>>;

LINES lines_of_pass(const HB_TASK& task, bool reverse) {
  const std::size_t n = task.X.size();
  std::vector<float> x = task.X;
  if (reverse) x[0] = 0;
  for (std::size_t k = 1; reverse && k < n; ++k) x[k] = x[k - 1] + task.X[n - k] - task.X[n - k - 1];
  LINES lines;
  for (const PLANES& set : task.SETS) {
    lines.emplace_back();
    for (const ORDINATES& rows : set) {
      LINE& line = lines.back().emplace_back();
      line = {task.JUMP_LAYOUT, task.TWO_COLUMNS, {x}, {rows.BEFORE}, {rows.AFTER}};
      if (!reverse) continue;
      std::ranges::reverse(line.BEFORE.values);
      std::ranges::reverse(line.AFTER.values);
    }
  }
  return lines;
}

LINE sum_of(const LINE& a, const LINE& b) {
  LINE sum = a;
  for (int i = 1; i <= a.n(); ++i) {
    sum.BEFORE(i) += b.BEFORE(i);
    sum.AFTER(i) += b.AFTER(i);
  }
  return sum;
}

enum class FORM { LANE, SUM, THIRD };

struct PLACEMENT {
  int pass;
  int position;
  int type;
  float axles[4];
  ZONE_PLACE zone;
};

bool beyond(std::size_t side, float value, float best) {
  return side == 0 ? value > best : value < best;
}

/// Upper and lower sum of the four axles on one plane of the sets that they run on.
std::array<float, 2> axle_sums(const HB_TASK& task, const LINES& lines, const float* axles,
                               std::size_t plane) {
  std::array<float, 2> S{};
  for (std::size_t j = 0; j < 4; ++j) {
    const ORDINATE at = ORDINATE_AT(axles[j], lines[task.AXLE_SET[j]][plane]);
    S[0] += at.UPPER;
    S[1] += at.LOWER;
  }
  return S;
}

/// One placement: the HB's effect, the HA beside it (`sum` is the line of both parents), and what is kept.
void try_placement(FORM form, const HB_TASK& task, const LINES& lines, const LINE& sum, const PLACEMENT& p,
                   HB_RESULT& result) {
  const std::vector<LINE>& own = lines[0];
  std::array<float, 2> S{};
  std::array<int, 2> codes{};
  if (form == FORM::LANE) S = axle_sums(task, lines, p.axles, 0);
  const std::size_t planes = form == FORM::LANE ? 0 : own.size();
  for (std::size_t plane = 0; plane < planes; ++plane) {
    const std::array<float, 2> of_plane = axle_sums(task, lines, p.axles, plane);
    const int factor = form == FORM::SUM && task.JUMP_LAYOUT ? 100 : 1000;
    for (const std::size_t side : {0U, 1U}) {
      if (!beyond(side, of_plane[side], S[side])) continue;
      S[side] = of_plane[side];
      codes[side] = task.LANE_NUMBER * factor + static_cast<int>(plane) + 1;
    }
  }

  const float vehicle_length = p.axles[0] - p.axles[3];
  HA_PAIR ha;
  if (form == FORM::LANE) ha.A = HA_SEARCH_ZONE(own[0], task.CURVE, p.zone, vehicle_length);
  if (form == FORM::SUM) ha.A = HA_SEARCH_ZONE(sum, task.CURVE, p.zone, vehicle_length);
  if (form == FORM::THIRD) ha = HA_SEARCH_ZONE_PAIR(own[1], own[2], task.CURVE, p.zone, vehicle_length);
  for (const std::size_t side : {0U, 1U}) {
    const HA_SIDE* const parts[] = {side == 0 ? &ha.A.MAX : &ha.A.MIN, side == 0 ? &ha.B.MAX : &ha.B.MIN};
    const float A = parts[0]->VALUE;
    const float B = parts[1]->VALUE;
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
      const HA_SIDE& best = *parts[part];
      const int digit = (part == 1) == takes_second ? 1 : 0;
      const int code = form == FORM::THIRD ? codes[side] * 10 + digit : codes[side];
      kept.PARTS[part] = {best.W_MILLI, best.LOADED_COUNT, p.type,      p.position,
                          code,         best.RANGE_COUNT,  best.NUMBERS};
    }
  }
}

HB_RESULT place(FORM form, const HB_TASK& task) {
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
    const LINES lines = lines_of_pass(task, pass == 2);
    const LINE& line = lines[0][0];
    const LINE sum = form == FORM::SUM ? sum_of(lines[0][1], lines[0][2]) : LINE{};
    for (int i = 1; i <= n; ++i) {
      for (int k = 0; k < 5; ++k) {
        PLACEMENT p{pass, pass == 1 ? i : n - i + 1, k + 1, {}, {}};
        for (int j = 0; j < 4; ++j) p.axles[j] = line.X(i) + offsets[k][j];
        const float far_end = p.axles[0] + HB_CLEAR;
        const float near_end = p.axles[3] - HB_CLEAR;
        if (far_end > line.X(n) || line.X(1) > near_end) break;
        p.zone = LOCATE_ZONE(far_end, near_end, line);
        try_placement(form, task, lines, sum, p, result);
      }
    }
  }
  return result;
}

}  // namespace

HB_RESULT HB_LANE(const HB_TASK& task) {
  return place(FORM::LANE, task);
}
HB_RESULT HB_STRADDLE_SUM(const HB_TASK& task) {
  return place(FORM::SUM, task);
}
HB_RESULT HB_STRADDLE_THIRD(const HB_TASK& task) {
  return place(FORM::THIRD, task);
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
