// Works the values of a run out again from the loading that it reported.
//
// The judge of a run follows the rules of the search and would share a misreading of one. Nothing is searched
// here: the HA UDL, HBs and knife edges of the records are put on influence lines that are built afresh in
// double precision, and added up. That must give FINAL_MAX and FINAL_MIN. Which ranges carry UDL follows from
// their count alone, for they are the densest; their numbers aren't read.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "tests/host/host_call.h"
#include "tests/host/result_items.h"
#include "tests/temporary_directory.h"

namespace {

using namespace modelkit;

// Intensities are cut off to thousandths, which is allowed for apart. What is left is single precision: some
// ten roundings of up to 6e-8 in an ordinate and as many in the sums. An ordinate that is a small difference
// of large terms may be off by as much of these.
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

/// Response of the result to each unit load. A line that can't jump has the same list twice.
struct T_RESPONSES {
  std::vector<float> BEFORE, AFTER;
};

struct T_POINT {
  double X = 0, BEFORE = 0, AFTER = 0;
};
using T_LINE = std::vector<T_POINT>;

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
  double AREA = 0, LENGTH = 0;
};

/// The ranges of one sign outside a zone, across which they run on. On a whole line they close at a point
/// where it jumps to the other sign.
std::vector<T_RANGE> cut(const T_LINE& line, double sign, double near_end, double far_end) {
  std::vector<T_RANGE> ranges(1);
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
      if (b <= 0) ranges.emplace_back();
    };
    add_piece(left.X, std::clamp(near_end, left.X, right.X));
    add_piece(std::clamp(far_end, left.X, right.X), right.X);
    const bool is_positive = sign * left.AFTER >= 0 && sign * right.BEFORE > 0;
    if (near_end == NOWHERE && is_positive && sign * right.AFTER < 0) ranges.emplace_back();
  }
  std::erase_if(ranges, [](const T_RANGE& range) { return range.LENGTH == 0; });
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
  std::array<const INTEGERS*, 3> RECORDS;  // a lane's own, and those of a straddle lane's parents
  const INTEGERS* NUMBERS;
};

/// How often each thing was there to explain, by its name.
using T_SEEN = std::map<std::string, int>;

class EXPLANATION {
 public:
  EXPLANATION(const T_MODEL& model, const T_RESPONSES& responses, const T_SIDE& side, T_SEEN& seen)
      : model_(model), responses_(responses), side_(side), seen_(seen) {}

  testing::AssertionResult RUN() {
    for (const T_VEHICLE_GROUP& group : model_.vehicle_groups)
      for (const T_VEHICLE& vehicle : group.vehicles)
        if (vehicle.vehicle_class == side_.RECORDS[0]->LANE(1)[MOVLOAD_VEHI_NO]) vehicle_ = &vehicle;
    for (int lane = static_cast<int>(model_.lanes.size()); vehicle_ != nullptr && lane > 0; --lane)
      entry(model_.lanes, lane).is_straddle ? add_straddle_lane(lane) : add_lane(lane);
    if (is_consistent_ && std::abs(value_ - side_.VALUE) <= truncation_ + rounding_)
      return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << side_.VALUE << " is reported; the loading gives " << value_ << " +- " << truncation_ << " +- "
           << rounding_ << (is_consistent_ ? "" : "; a count of ranges doesn't fit its intensity");
  }

 private:
  using T_RECORD = std::vector<std::int32_t>;

  void add_lane(int lane) {
    if (shown_.contains(lane)) return;
    const T_LANE& own = entry(model_.lanes, lane);
    const T_LINE line = line_of(own, 0, 0);
    T_RECORD record = side_.RECORDS[0]->LANE(lane);
    if (record[MOVLOAD_TYPE_OF_HB] != 0) {
      // The far piece of a range that the zone splits has a number of its own, 100.
      std::int32_t& loaded = record[MOVLOAD_NO_LOADED_RANGE];
      loaded -= loaded > 0 && (*side_.NUMBERS)(loaded, lane) == 100;
      ++seen_[record[MOVLOAD_COMB_TYPE] / 100 == 2 ? "HB in a lane, reverse" : "HB in a lane, forward"];
      return add_hb(lane, record, line, 1, 0);
    }
    const double factor = record[MOVLOAD_FACTOR] / 1e7;
    add_udl(record, cut(line, side_.SIGN, NOWHERE, NOWHERE), 0, factor);
    const int kel = record[MOVLOAD_POS_OF_HA_KEL];
    if (kel == 0) return;
    add(vehicle_->loads[0] * factor, value_at(entry(line, kel).X, line));
    ++seen_["HA alone"];
  }

  void add_straddle_lane(int lane) {
    const T_LANE& own = entry(model_.lanes, lane);
    int with_udl = 0;
    for (const int which : {0, 1, 2}) {
      T_RECORD record = side_.RECORDS[static_cast<std::size_t>(which)]->LANE(lane);
      if (record[MOVLOAD_TYPE_OF_HB] == 0) continue;
      record[MOVLOAD_COMB_TYPE] = (*side_.RECORDS[0])(MOVLOAD_COMB_TYPE + 1, lane);
      const int code = record[MOVLOAD_HA_UDL_PORTION];
      const bool is_full = which == 0 || code % 10 == 1;
      add_hb(lane, record, line_of(own, which == 2 ? 3 : 2, which == 1 ? 2 : 3), is_full ? 1 : THIRD,
             which == 2 ? 0 : code / 10 % 1000);
      with_udl += which > 0 && record[MOVLOAD_W_HA_UDL] > 0;
      if (which == 0) ++seen_["full UDL on both"];
      if (which == 1) ++seen_[is_full ? "third on the right" : "third on the left"];
    }
    if (with_udl == 2) shown_.insert({own.left_parent, own.right_parent});
  }

  /// The line of a lane's entries from one plane to another, averaged over a plane; the entries of an
  /// ordinary lane are plane 0.
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
    return line;
  }

  /// At a point the worse of the values that the line has there.
  [[nodiscard]] double value_at(double x, const T_LINE& line) const {
    const auto right = std::ranges::lower_bound(line, x, {}, &T_POINT::X);
    if (right->X == x) return side_.SIGN * std::max(side_.SIGN * right->BEFORE, side_.SIGN * right->AFTER);
    const auto left = right - 1;
    const double f = (x - left->X) / (right->X - left->X);
    return (1 - f) * left->AFTER + f * right->BEFORE;
  }

  /// An HB on a plane of a lane, and the UDL beside it on a line. On a straddle lane plane 0 is none.
  void add_hb(int lane, const T_RECORD& record, T_LINE line, double portion, int plane) {
    const T_LANE& own = entry(model_.lanes, lane);
    const bool reverse = record[MOVLOAD_COMB_TYPE] / 100 == 2;
    const double factor = record[MOVLOAD_FACTOR] / 1e7;
    // The last point of a lane may be given by the number behind it.
    int point = std::min(record[MOVLOAD_POSITION_OF_HB], static_cast<std::int32_t>(line.size()));
    if (reverse) {
      line = turned_round(line);
      point = static_cast<int>(line.size()) + 1 - point;
    }
    const T_PLACE place(*vehicle_, record[MOVLOAD_TYPE_OF_HB], entry(line, point).X);
    if (plane > 0 || !own.is_straddle) {
      const T_LINE under_axles = line_of(own, plane, plane);
      for (const double x : place.AXLES)
        add(vehicle_->loads[1] * vehicle_->loads[99] * factor,
            value_at(x, reverse ? turned_round(under_axles) : under_axles));
    }
    add_udl(record, cut(line, side_.SIGN, place.NEAR_END, place.FAR_END), place.LENGTH, portion * factor);
  }

  /// UDL on as many ranges as a record has, the densest.
  void add_udl(const T_RECORD& record, std::vector<T_RANGE> ranges, double vehicle_length, double factor) {
    const int count = record[MOVLOAD_NO_LOADED_RANGE], W_MILLI = record[MOVLOAD_W_HA_UDL];
    if (count == 0) return;
    std::ranges::sort(ranges, std::greater(), [](const T_RANGE& range) { return range.AREA / range.LENGTH; });
    double area = 0, L = vehicle_length;
    for (int r = 1; r <= std::min(count, static_cast<int>(ranges.size())); ++r) {
      area += entry(ranges, r).AREA;
      L += entry(ranges, r).LENGTH;
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

/// One vehicle for a class and one class for a combination, since records don't tell that of a lane; no
/// repeated points; no load in the parent lanes of an HB with UDL by thirds, which isn't reported; no two
/// weights alike, so that no ordinate is nothing but a rounding error and no two ranges are equally dense.
T_MODEL model_of(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  T_MODEL model = RANDOM_MODEL(random, {.max_points = 120,
                                        .max_cases = 1,
                                        .other_sub_cases = 0.7,
                                        .repeated_points = 0.0,
                                        .straddle_lanes = 1.0});
  const auto any_change = [&] { return 1e-4 * static_cast<double>(random() % 1000); };
  for (auto& group : model.vehicle_groups) group.vehicles.resize(1);
  for (auto& lane : model.lanes) {
    for (auto& row : lane.spread_rows)
      for (auto& share : row) share.weight += any_change();
    for (auto& point : lane.points) {
      point.impact += any_change();
      for (auto& links : point.entries) links.a.weight += any_change();
    }
  }
  std::int32_t first_code = 0;
  for (auto& combination : model.moving_load_cases[0].combinations) {
    for (std::size_t lane = 0; lane < combination.size(); ++lane) {
      const auto& own = model.lanes[lane];
      std::int32_t& code = combination[lane].code;
      if (code == 0) continue;
      const std::int32_t sub_case = (own.is_straddle ? 3 : 1) + code % 2;
      code = first_code + sub_case;
      for (const std::int32_t parent : {own.left_parent, own.right_parent})
        if (sub_case == 4) combination[static_cast<std::size_t>(parent) - 1].code = 0;
    }
    first_code = (first_code + 4) % (4 * static_cast<std::int32_t>(model.vehicle_groups.size()));
  }
  return model;
}

TEST(reevaluation, values_of_random_models_follow_from_the_reported_loading) {
  std::array<T_SEEN, 2> seen;  // on lines that can't jump, and on those that may
  for (std::uint64_t seed = 1; seed <= 80 && !HasFailure(); ++seed) {
    const T_MODEL model = model_of(seed);
    const TEMPORARY_DIRECTORY directory;
    WRITE_MODEL(model, directory.NAME());
    const auto explain = [&](int kind, const T_RESPONSE& response, int item) {
      const auto got =
          host::RUN(static_cast<int>(model.lanes.size()), directory.NAME(), 0, kind, response.id, item, 1);
      const std::vector<int> values = plain::VALUES_OF(kind, item);
      const T_RESPONSES responses{entry(response.values, values.front()),
                                  entry(response.values, values.back())};
      T_SEEN& of_layout = seen.at(plain::MAY_JUMP(kind, item) ? 1 : 0);
      for (const T_SIDE& side :
           {T_SIDE{1, got.FINAL_MAX, {&got.K_MXLOAD, &got.K_MXLOAD1ST, &got.K_MXLOAD2ND}, &got.K_MAXINFL_S},
            T_SIDE{-1, got.FINAL_MIN, {&got.K_MNLOAD, &got.K_MNLOAD1ST, &got.K_MNLOAD2ND}, &got.K_MININFL_S}})
        EXPECT_TRUE(EXPLANATION(model, responses, side, of_layout).RUN())
            << "seed " << seed << ", kind " << kind << ", id " << response.id << ", item " << item;
    };
    for (const plain::KIND& kind : plain::KINDS) {
      // Several of the many items of beams and walls, of which about half may jump.
      const int items = plain::ITEMS_OF(kind, model), step = kind.ITEMS < 50 ? items : items / 4;
      for (const T_RESPONSE& response : model.*kind.RESPONSES)
        for (int item = 1 + static_cast<int>(seed) % step; item <= items; item += step)
          explain(kind.RESULT_KIND, response, item);
    }
  }
  for (const char* name : {"HA alone", "HB in a lane, forward", "HB in a lane, reverse", "full UDL on both",
                           "third on the left", "third on the right", "several ranges"})
    for (T_SEEN& of_layout : seen) EXPECT_GT(of_layout[name], 50) << name;
}

}  // namespace
