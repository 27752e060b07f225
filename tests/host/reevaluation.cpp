#include "tests/host/reevaluation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <set>

namespace reevaluation {

using namespace modelkit;

namespace {

// Intensities are cut off to thousandths, which is allowed for apart. What is left is single precision: some
// ten roundings of up to 6e-8 in an ordinate and as many in the sums. Few of 18000 runs were off by more than
// 1e-6 of the sum of all effects' magnitudes. An ordinate that is a small difference of large terms may be
// off by as much of these.
constexpr double ROUNDING = 1e-5;
constexpr double ROUNDING_OF_TERMS = 2e-7;

constexpr double CLEAR = 25;  // free of UDL before and behind an HB
constexpr double THIRD = 0.3333;
constexpr double NOWHERE = std::numeric_limits<double>::infinity();

/// Entry i of a list, from 1.
template <class T>
const T& entry(const std::vector<T>& list, int i) {
  return list.at(static_cast<std::size_t>(i) - 1);
}

/// Distances are rounded as the library's: between close points a line may be too steep for any other.
double single(double x) {
  return static_cast<double>(static_cast<float>(x));
}

struct T_POINT {
  double X = 0, BEFORE = 0, AFTER = 0;
};
using T_LINE = std::vector<T_POINT>;

std::size_t place_of(double x, const T_LINE& line) {
  return static_cast<std::size_t>(std::ranges::lower_bound(line, x, {}, &T_POINT::X) - line.begin());
}

T_LINE turned_round(const T_LINE& line) {
  T_LINE turned(line.rbegin(), line.rend());
  double x = 0;
  for (std::size_t k = 0, left = line.size() - 1; k < line.size(); ++k, --left) {
    if (k > 0) x = single(single(x + line[left + 1].X) - line[left].X);
    turned[k].X = x;
  }
  return turned;
}

struct T_RANGE {
  int NUMBER = 1;
  double AREA = 0, LENGTH = 0;
};

/// The ranges of one sign outside a zone, numbered in the order in which they close. They run on across the
/// zone. They close where the sign changes between two points at one place too, which may leave one empty,
/// and on a whole line at a point where it jumps to the other sign.
std::vector<T_RANGE> cut(const T_LINE& line, double sign, double near_end, double far_end) {
  std::vector<T_RANGE> ranges(1);
  const auto close = [&] { ranges.push_back({.NUMBER = ranges.back().NUMBER + 1}); };
  for (std::size_t k = 1; k < line.size(); ++k) {
    const T_POINT &left = line[k - 1], &right = line[k];
    const auto add_piece = [&](double from, double to) {
      if (from == to) return;
      const auto value = [&](double x) {
        const double f = single(single(x - left.X) / single(right.X - left.X));
        return sign * ((1 - f) * left.AFTER + f * right.BEFORE);
      };
      const double a = value(from), b = value(to);
      if (a <= 0 && b <= 0) return;
      const double length =
          (to - from) * (a >= 0 && b > 0 ? 1 : std::max(a, b) / (std::abs(a) + std::abs(b)));
      ranges.back().LENGTH += length;
      ranges.back().AREA += length * 0.5 * (std::max(a, 0.0) + std::max(b, 0.0));
      if (b <= 0) close();
    };
    add_piece(left.X, std::clamp(near_end, left.X, right.X));
    add_piece(std::clamp(far_end, left.X, right.X), right.X);
    const double a = sign * left.AFTER, b = sign * right.BEFORE;
    const bool is_repeated = left.X == right.X && !(near_end <= left.X && left.X < far_end);
    if (is_repeated && a > 0 && b <= 0) close();
    if (near_end == NOWHERE && a >= 0 && b > 0 && sign * right.AFTER < 0) close();
  }
  if (ranges.back().AREA == 0) ranges.pop_back();
  return ranges;
}

/// Where an HB stands whose zone begins at x, on a line that runs in the direction of its pass.
struct T_PLACE {
  std::array<double, 4> AXLES{};
  double LENGTH = 0, NEAR_END = 0, FAR_END = 0;

  T_PLACE(const T_VEHICLE& vehicle, int type, double x) {
    const double S = single(vehicle.geometry[1]), B = single(vehicle.geometry[2]);
    const double bogies = single(single(B + S) + single((type - 1) * vehicle.geometry[3]));
    AXLES = {single(bogies + CLEAR) + S, bogies + CLEAR, CLEAR + S, CLEAR};
    for (double& axle : AXLES) axle = single(x + single(axle));
    LENGTH = single(AXLES[0] - AXLES[3]);
    NEAR_END = single(AXLES[3] - CLEAR);
    FAR_END = single(AXLES[0] + CLEAR);
  }
};

using INTEGERS = host::ARGUMENTS::INTEGERS;

struct T_SIDE {
  double SIGN, VALUE;
  const host::LANES_OF<float>& WHOLE_RANGES;
  std::array<const INTEGERS*, 3> RECORDS, NUMBERS;  // a lane's own, and those of a straddle lane's parents
};

struct T_RECORD {
  std::vector<std::int32_t> FIELD, NUMBERS;
};

class EXPLANATION {
 public:
  EXPLANATION(const T_MODEL& model, const T_RESPONSES& responses, const T_SIDE& side, T_SEEN& seen)
      : model_(model), responses_(responses), side_(side), seen_(seen) {}

  testing::AssertionResult run() {
    for (const T_VEHICLE_GROUP& group : model_.vehicle_groups)
      for (const T_VEHICLE& vehicle : group.vehicles)
        if (vehicle.vehicle_class == record_of(1, 0).FIELD[MOVLOAD_VEHI_NO]) vehicle_ = &vehicle;
    for (int lane = static_cast<int>(model_.lanes.size()); vehicle_ != nullptr && lane > 0; --lane)
      entry(model_.lanes, lane).is_straddle ? add_straddle_lane(lane) : add_lane(lane);
    if (is_consistent_ && std::abs(value_ - side_.VALUE) <= truncation_ + rounding_)
      return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << side_.VALUE << " is reported; the loading gives " << value_ << " +- " << truncation_ << " +- "
           << rounding_ << (is_consistent_ ? "" : "; a list of ranges doesn't fit its intensity");
  }

 private:
  [[nodiscard]] T_RECORD record_of(int lane, std::size_t which) const {
    return {side_.RECORDS[which]->LANE(lane), side_.NUMBERS[which]->LANE(lane)};
  }

  void add_lane(int lane) {
    if (shown_.contains(lane)) return;
    const T_LANE& own = entry(model_.lanes, lane);
    const T_LINE line = line_of(own, 0, 0);
    const T_RECORD record = record_of(lane, 0);
    if (record.FIELD[MOVLOAD_TYPE_OF_HB] != 0) return add_hb(lane, record, line, 1, 0);
    const double factor = record.FIELD[MOVLOAD_FACTOR] / 1e7;
    add_udl(record, cut(line, side_.SIGN, NOWHERE, NOWHERE), 0, factor);
    const int kel = record.FIELD[MOVLOAD_POS_OF_HA_KEL];
    if (kel == 0) return;
    add(vehicle_->loads[0] * factor, value_at(single(entry(own.points, kel).x), line));
    ++seen_["HA alone"];
  }

  void add_straddle_lane(int lane) {
    const T_LANE& own = entry(model_.lanes, lane);
    int with_udl = 0;
    for (const int which : {0, 1, 2}) {
      T_RECORD record = record_of(lane, static_cast<std::size_t>(which));
      if (record.FIELD[MOVLOAD_TYPE_OF_HB] == 0) continue;
      record.FIELD[MOVLOAD_COMB_TYPE] = record_of(lane, 0).FIELD[MOVLOAD_COMB_TYPE];
      const int code = record.FIELD[MOVLOAD_HA_UDL_PORTION];
      const bool is_full = which == 0 || code % 10 == 1;
      add_hb(lane, record, line_of(own, which == 2 ? 3 : 2, which == 1 ? 2 : 3), is_full ? 1 : THIRD,
             which == 2 ? 0 : code / 10 % 1000);
      with_udl += which > 0 && record.FIELD[MOVLOAD_W_HA_UDL] > 0;
      if (which == 0) ++seen_["full UDL on both"];
      if (which == 1) ++seen_[is_full ? "third on the right" : "third on the left"];
    }
    if (with_udl == 2) shown_.insert({own.left_parent, own.right_parent});
  }

  /// The line of a lane's entries from one plane to another, averaged over a plane; the entries of an
  /// ordinary lane are plane 0. Repeated points go where the library drops them.
  T_LINE line_of(const T_LANE& lane, int from_plane, int to_plane) {
    const int entries = from_plane == 0 ? lane.entries_per_point : lane.entries_per_plane;
    T_LINE line;
    for (const T_INFLUENCE_POINT& point : lane.points) {
      T_POINT& sum = line.emplace_back(T_POINT{.X = single(point.x)});
      double terms = 0;
      const auto add_share = [&](const T_LOAD_SHARE& share) {
        const double weight = share.weight * (1 + point.impact) / entries;
        const auto before = static_cast<double>(entry(responses_.BEFORE, share.load));
        const auto after = static_cast<double>(entry(responses_.AFTER, share.load));
        sum.BEFORE += weight * before;
        sum.AFTER += weight * after;
        terms += std::abs(weight * before) + std::abs(weight * after);
      };
      const int last = std::min(std::max(to_plane, 1) * entries, static_cast<int>(point.entries.size()));
      for (int t = std::max(from_plane - 1, 0) * entries + 1; t <= last; ++t)
        for (const T_LOAD_SHARE& link : {entry(point.entries, t).a, entry(point.entries, t).b}) {
          if (link.load > 0) add_share(link);
          if (link.load < 0) std::ranges::for_each(entry(lane.spread_rows, -link.load), add_share);
        }
      largest_terms_ = std::max(largest_terms_, terms);
    }
    const auto repeats = [](const T_POINT& a, const T_POINT& b) { return a.X == b.X; };
    if (!responses_.JUMPS && !lane.keep_points)
      line.erase(std::unique(line.begin(), line.end(), repeats), line.end());
    return line;
  }

  /// At a point the worst of the values that the line has there.
  [[nodiscard]] double value_at(double x, const T_LINE& line) const {
    std::size_t k = place_of(x, line);
    if (line.at(k).X != x) {
      const double f = (x - line.at(k - 1).X) / (line[k].X - line[k - 1].X);
      return (1 - f) * line[k - 1].AFTER + f * line[k].BEFORE;
    }
    double worst = side_.SIGN * line[k].BEFORE;
    for (; responses_.JUMPS && k < line.size() && line[k].X == x; ++k)
      worst = std::max({worst, side_.SIGN * line[k].BEFORE, side_.SIGN * line[k].AFTER});
    return side_.SIGN * worst;
  }

  /// An HB on a plane of a lane, and the UDL beside it on a line. On a straddle lane plane 0 is none.
  void add_hb(int lane, T_RECORD record, T_LINE line, double portion, int plane) {
    const T_LANE& own = entry(model_.lanes, lane);
    const int position = record.FIELD[MOVLOAD_POSITION_OF_HB], points = static_cast<int>(own.points.size());
    const bool reverse = record.FIELD[MOVLOAD_COMB_TYPE] / 100 == 2;
    const double factor = record.FIELD[MOVLOAD_FACTOR] / 1e7;
    // Repeated points don't count on a straddle lane, nor in a combination of no type. The last point of a
    // lane may be given by the number behind it.
    const bool counts_repeats = !own.is_straddle && record.FIELD[MOVLOAD_COMB_TYPE] % 100 != 0;
    auto at = static_cast<std::size_t>(position - 1);
    if (counts_repeats && !model_.keep_points && !responses_.JUMPS)
      at = place_of(single(entry(own.points, std::min(position, points)).x), line);
    if (reverse) {
      line = turned_round(line);
      at = line.size() - 1 - at;
    }
    const T_PLACE place(*vehicle_, record.FIELD[MOVLOAD_TYPE_OF_HB], line.at(at).X);
    if (plane > 0 || !own.is_straddle) {
      const T_LINE under_axles = line_of(own, plane, plane);
      for (const double x : place.AXLES)
        add(vehicle_->loads[1] * vehicle_->loads[99] * factor,
            value_at(x, reverse ? turned_round(under_axles) : under_axles));
    }

    std::vector<T_RANGE> ranges = cut(line, side_.SIGN, place.NEAR_END, place.FAR_END);
    int count = static_cast<int>(ranges.size());
    std::vector<int> bridged;
    if (!own.is_straddle) {
      const double end = position > points ? 0 : single(entry(own.points, position).x);
      const double other_end = single(end + (reverse ? -1 : 1) * (place.LENGTH + 2 * CLEAR));
      count = count_whole_ranges(lane, std::min(end, other_end), std::max(end, other_end), bridged);
      // The far piece of a range that the zone splits has a number of its own.
      std::int32_t& loaded = record.FIELD[MOVLOAD_NO_LOADED_RANGE];
      const bool is_split = loaded > 0 && entry(record.NUMBERS, loaded) == 100;
      loaded -= is_split;
      seen_["split ranges"] += is_split;
      ++seen_[reverse ? "HB in a lane, reverse" : "HB in a lane, forward"];
    }
    for (T_RANGE& range : ranges) {
      if (reverse) range.NUMBER = count - range.NUMBER + 1;
      for (const int first : bridged) range.NUMBER -= range.NUMBER > first;
    }
    add_udl(record, ranges, place.LENGTH, portion * factor);
  }

  /// Counts the ranges of a lane without an HB. `bridged` takes the number of the first of each two that a
  /// zone makes one; all numbers behind it fall by 1.
  int count_whole_ranges(int lane, double low_end, double high_end, std::vector<int>& bridged) {
    const auto distance = [&](int k) { return static_cast<double>(side_.WHOLE_RANGES(k, lane)); };
    int count = distance(2) != 0, number = 1;
    for (int e = 2; e <= 100 && distance(2 * e - 1) != 0; ++e, ++count) {
      const bool is_bridged = distance(2 * e - 2) >= low_end && high_end >= distance(2 * e - 1);
      is_bridged ? bridged.push_back(number) : void(++number);
    }
    seen_["bridged ranges"] += !bridged.empty();
    return count;
  }

  /// UDL on the ranges that a record names. Beside an HB ranges may share a number or have none; where that
  /// leaves more ranges than are loaded, it is the densest.
  void add_udl(const T_RECORD& record, std::vector<T_RANGE> ranges, double vehicle_length, double factor) {
    const int count = record.FIELD[MOVLOAD_NO_LOADED_RANGE], W_MILLI = record.FIELD[MOVLOAD_W_HA_UDL];
    if (count == 0) return;
    std::erase_if(ranges, [](const T_RANGE& range) { return range.LENGTH == 0; });
    std::set<int> names(record.NUMBERS.begin(), record.NUMBERS.begin() + count);
    const auto is_named = [&](const T_RANGE& range) {
      return range.NUMBER < 1 || names.contains(range.NUMBER);
    };
    if (std::ranges::count_if(ranges, is_named) > count) {
      std::ranges::sort(ranges, std::greater(),
                        [](const T_RANGE& range) { return range.AREA / range.LENGTH; });
      ranges.resize(static_cast<std::size_t>(count));
    }
    std::erase_if(ranges, [&](const T_RANGE& range) { return !is_named(range); });
    double area = 0, L = vehicle_length;
    for (const T_RANGE& range : ranges) {
      area += range.AREA;
      L += range.LENGTH;
    }
    double w = L <= vehicle_->geometry[0] ? vehicle_->ha_w0 : vehicle_->ha_k * std::pow(L, -vehicle_->ha_p);
    w = std::max(w, vehicle_->ha_wmin);
    if (static_cast<int>(ranges.size()) < count || std::abs(1000 * w - W_MILLI - 0.5) > 0.6)
      is_consistent_ = false;
    add((W_MILLI + 0.5) / 1000 * factor, side_.SIGN * area);
    truncation_ += 0.5 / 1000 * area * factor;
    seen_["several ranges"] += count > 1;
  }

  void add(double load, double value) {
    value_ += load * value;
    rounding_ += load * (ROUNDING * std::abs(value) + ROUNDING_OF_TERMS * largest_terms_);
  }

  const T_MODEL& model_;
  const T_RESPONSES& responses_;
  const T_SIDE& side_;
  T_SEEN& seen_;
  const T_VEHICLE* vehicle_ = nullptr;
  std::set<int> shown_;  // parent lanes whose records are those of a straddle lane
  double value_ = 0, truncation_ = 0, rounding_ = 0;
  double largest_terms_ = 0;  // sum of their magnitudes at a point, greatest so far
  bool is_consistent_ = true;
};

}  // namespace

testing::AssertionResult IS_EXPLAINED(const T_MODEL& model, const T_RESPONSES& responses,
                                      const host::ARGUMENTS& got, const host::ARGUMENTS& untrimmed,
                                      T_SEEN& seen) {
  const T_SIDE maximum{1,
                       got.FINAL_MAX,
                       untrimmed.DISTANCE_MAX_RANGE,
                       {&got.K_MXLOAD, &got.K_MXLOAD1ST, &got.K_MXLOAD2ND},
                       {&got.K_MAXINFL_S, &got.K_MAXINFL_S1ST, &got.K_MAXINFL_S2ND}};
  const T_SIDE minimum{-1,
                       got.FINAL_MIN,
                       untrimmed.DISTANCE_MIN_RANGE,
                       {&got.K_MNLOAD, &got.K_MNLOAD1ST, &got.K_MNLOAD2ND},
                       {&got.K_MININFL_S, &got.K_MININFL_S1ST, &got.K_MININFL_S2ND}};
  const auto result = EXPLANATION(model, responses, maximum, seen).run();
  return result ? EXPLANATION(model, responses, minimum, seen).run() : result;
}

}  // namespace reevaluation
