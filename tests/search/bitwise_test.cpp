// The library against the judge on random lines: every value, count, record and list, bit for bit.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>

#include "tests/search/random_lines.h"

namespace {

constexpr std::uint64_t N_CASES = 21000;

/// What the random lines have reached, so that a change of the generator can't quietly lose what it is there
/// for.
struct T_SEEN {
  int over_100_distances = 0, over_500_loaded = 0, near_inside = 0, ends_in_one_segment = 0;
  int later_prefix_best = 0, jump_closings = 0, pair_short_ranges = 0;
};

/// Compares one case in one layout and keeps the first difference.
template <search::LAYOUT L>
class COMPARISON {
 public:
  COMPARISON(const RANDOM_CASE& c, T_SEEN& seen)
      : c_(c), seen_(seen), judged_(JUMP ? c.JUMP : c.SIMPLE), lines_{VIEW(judged_[0]), VIEW(judged_[1])} {}

  std::string FIRST_DIFFERENCE() {
    for (const int set : {0, 1}) {
      const auto judged = plain::CUT_RANGES(judged_[set]);
      cut("whole lane", judged, [&] { search::CUT_RANGES<L>(lines_[set], work_[0]); });
      // Without a zone the zone form differs by the jumps alone.
      const auto across_jumps = plain::CUT_RANGES(judged_[set], plain::ZONE_PLACE{});
      seen_.jump_closings += judged.POSITIVE.AREA.count() - across_jumps.POSITIVE.AREA.count();
      whole_lane(set);
      ordinates(set);
      distances(set);
    }
    for (const RANDOM_ZONE& zone : c_.ZONES) beside_zone(zone);
    return difference_;
  }

 private:
  static constexpr bool JUMP = std::is_same_v<L, search::JUMP_LAYOUT>;

  void whole_lane(int set) {
    auto* const form = JUMP ? search::HA_SEARCH_LANE_JUMP : search::HA_SEARCH_LANE;
    const auto judged = plain::HA_SEARCH_LANE(judged_[set], c_.CURVE, c_.KEL_LOAD);
    result("HA_SEARCH_LANE", form(lines_[set], curve_, c_.KEL_LOAD, work_[0]), judged);
    seen_.over_500_loaded += judged.MAX.LOADED_COUNT == 500;
    seen_.later_prefix_best += judged.MIN.LOADED_COUNT > 1;
  }

  void ordinates(int set) {
    for (const float probe : c_.PROBES) {
      const auto at = search::ORDINATE_AT<L>(probe, lines_[set]);
      const auto judged = plain::ORDINATE_AT(probe, judged_[set]);
      equal("upper ordinate", at.UPPER, judged.UPPER);
      equal("lower ordinate", at.LOWER, judged.LOWER);
      const auto& x = judged_[set].X;
      if (x.count() == 0 || probe < x(1) || probe > x(x.count())) continue;
      const auto span = search::BRACKET_POINT(probe, lines_[set].LANE_X, lines_[set].n);
      equal("span LO", span.LO, plain::BRACKET_POINT(probe, judged_[set]).LO);
      equal("span HI", span.HI, plain::BRACKET_POINT(probe, judged_[set]).HI);
    }
  }

  void distances(int set) {
    auto* const form = JUMP ? search::RANGE_DISTANCES_JUMP : search::RANGE_DISTANCES;
    std::array<search::T_RANGE_DISTANCES, N_SIDES> sides;
    for (auto& side : sides) side.PAIRS.fill({1.0F, 1.0F});  // what an earlier lane left
    form(lines_[set], sides);
    const auto judged = plain::RANGE_DISTANCES(judged_[set]);
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      const auto& other = side == MAX_SIDE ? judged.POSITIVE : judged.NEGATIVE;
      equal("RANGE_COUNT", sides[side].RANGE_COUNT, other.RANGE_COUNT);
      for (std::size_t r = 0; r < search::MAX_RANGES; ++r) {
        const auto pair = r < other.PAIRS.size() ? other.PAIRS[r] : std::array<float, 2>{};
        equal("start of a range", sides[side].PAIRS[r][0], pair[0]);
        equal("end of a range", sides[side].PAIRS[r][1], pair[1]);
      }
      seen_.over_100_distances += other.RANGE_COUNT > 100;
    }
  }

  void beside_zone(const RANDOM_ZONE& zone) {
    const auto judged_place = plain::LOCATE_ZONE(zone.FAR_END, zone.NEAR_END, judged_[0]);
    const auto place = search::LOCATE_ZONE(zone.FAR_END, zone.NEAR_END, lines_[0].LANE_X, lines_[0].n);
    equal("FAR_INDEX", place.FAR_INDEX, judged_place.FAR_INDEX);
    equal("FAR_FRACTION", place.FAR_FRACTION, judged_place.FAR_FRACTION);
    equal("NEAR_INDEX", place.NEAR_INDEX, judged_place.NEAR_INDEX);
    equal("NEAR_FRACTION", place.NEAR_FRACTION, judged_place.NEAR_FRACTION);
    seen_.near_inside += place.NEAR_FRACTION != 0;
    seen_.ends_in_one_segment += place.NEAR_FRACTION != 0 && place.FAR_INDEX == place.NEAR_INDEX - 1;

    const auto judged_cut = plain::CUT_RANGES(judged_[0], judged_place);
    cut("beside a zone", judged_cut, [&] { search::CUT_RANGES_BESIDE_ZONE<L>(lines_[0], place, work_[0]); });
    for (const float length : judged_cut.POSITIVE.LENGTH.values)
      seen_.pair_short_ranges += JUMP && length <= 1e-5F;

    auto* const single = JUMP ? search::HA_SEARCH_ZONE_JUMP : search::HA_SEARCH_ZONE;
    result("HA_SEARCH_ZONE", single(lines_[0], curve_, place, zone.VEHICLE_LENGTH, work_[0]),
           plain::HA_SEARCH_ZONE(judged_[0], c_.CURVE, judged_place, zone.VEHICLE_LENGTH));
    auto* const pair = JUMP ? search::HA_SEARCH_ZONE_PAIR_JUMP : search::HA_SEARCH_ZONE_PAIR;
    const auto both = pair(lines_[0], lines_[1], curve_, place, zone.VEHICLE_LENGTH, work_[0], work_[1]);
    const auto judged =
        plain::HA_SEARCH_ZONE_PAIR(judged_[0], judged_[1], c_.CURVE, judged_place, zone.VEHICLE_LENGTH);
    result("set A of HA_SEARCH_ZONE_PAIR", both.A, judged.A);
    result("set B of HA_SEARCH_ZONE_PAIR", both.B, judged.B);
  }

  template <class CUTTING>
  void cut(const char* what, const plain::CUT& judged, CUTTING library) {
    library();
    operation_ = std::string("CUT_RANGES ") + what;
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      const auto& ranges = work_[0].SIDES[side];
      const auto& other = side == MAX_SIDE ? judged.POSITIVE : judged.NEGATIVE;
      equal("ranges", ranges.COUNT, other.AREA.count());
      for (std::size_t r = 0; difference_.empty() && r < other.AREA.values.size(); ++r) {
        equal("RANGE_AREA", ranges.RANGE_AREA[r], other.AREA.values[r]);
        equal("RANGE_LENGTH", ranges.RANGE_LENGTH[r], other.LENGTH.values[r]);
      }
    }
    operation_.clear();
  }

  void result(const char* what, const search::T_HA_RESULT& library, const plain::HA_RESULT& judged) {
    operation_ = what;
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      const auto& other = side == MAX_SIDE ? judged.MAX : judged.MIN;
      equal("value", library[side].VALUE, other.VALUE);
      equal("W_MILLI", library[side].W_MILLI, other.W_MILLI);
      equal("LOADED_COUNT", library[side].LOADED_COUNT, other.LOADED_COUNT);
      for (std::size_t j = 0; difference_.empty() && j < other.NUMBERS.size(); ++j)
        equal("range number", library[side].RANGES[j], other.NUMBERS[j]);
    }
    operation_.clear();
  }

  template <class T>
  void equal(const char* what, T library, T judged) {
    if (!difference_.empty() || std::bit_cast<std::uint32_t>(library) == std::bit_cast<std::uint32_t>(judged))
      return;
    std::ostringstream text;
    text << (JUMP ? "JUMP_LAYOUT, " : "SIMPLE_LAYOUT, ") << operation_ << ": " << what << " is "
         << std::hexfloat << library << " and should be " << judged;
    difference_ = text.str();
  }

  const RANDOM_CASE& c_;
  T_SEEN& seen_;
  const plain::LINE* judged_;
  search::T_LINE lines_[2];
  search::T_HA_CURVE curve_{c_.CURVE.W0, c_.CURVE.K, c_.CURVE.WMIN, c_.CURVE.P, c_.CURVE.L0};
  search::T_RANGE_WORK work_[2];
  std::string operation_;
  std::string difference_;
};

TEST(bitwise, ranges_and_ha_search_equal_the_plain_steps_in_both_layouts) {
  T_SEEN seen;
  int failures = 0;
  for (std::uint64_t seed = 1; seed <= N_CASES && failures < 5; ++seed) {
    const RANDOM_CASE c = MAKE_RANDOM_CASE(seed);
    for (const std::string& difference : {COMPARISON<search::SIMPLE_LAYOUT>(c, seen).FIRST_DIFFERENCE(),
                                          COMPARISON<search::JUMP_LAYOUT>(c, seen).FIRST_DIFFERENCE()}) {
      if (difference.empty()) continue;
      ADD_FAILURE() << "seed " << seed << ", " << c.KIND << "\n" << difference;
      ++failures;
    }
  }
  EXPECT_GT(seen.over_100_distances, 100);
  EXPECT_GT(seen.over_500_loaded, 20);
  EXPECT_GT(seen.near_inside, 1000);
  EXPECT_GT(seen.ends_in_one_segment, 1000);
  EXPECT_GT(seen.later_prefix_best, 1000);
  EXPECT_GT(seen.jump_closings, 1000);
  EXPECT_GT(seen.pair_short_ranges, 100);
}

}  // namespace
