// The bounds of the HA search beside an HB, held against the search itself.

#include "search/ha_bounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "search/hb_passes.h"
#include "tests/search/random_lines.h"

namespace {

using namespace search;

/// The first placement of a forward pass whose HA search gives what its bounds exclude; empty where there is
/// none. Counts in `narrow` the bounds that say nearly all.
template <LAYOUT L>
std::string contradiction(const plain::HB_TASK& task, int& narrow) {
  static T_INTENSITY_BOUNDS intensity;
  static T_HA_BOUNDS bounds;
  static T_RANGE_WORK work;
  const plain::LINE own = OWN_LINE(task);
  const T_LINE line = VIEW(own);
  const T_VEHICLE_PARAMETERS vehicle = VEHICLE_OF(task);
  const T_OFFSETS offsets(vehicle);
  if (line.n < 2 || !offsets.ARE_IN_ORDER() || offsets.LENGTH(1) < 1) return {};
  if (!intensity.PREPARE(vehicle.HA_CURVE, 0.9, 2000)) return {};
  if (!bounds.PREPARE<L>(line, intensity, 0, 0.9)) return {};
  const T_PASS pass{FORWARD_PASS, line.n, line.LANE_X, nullptr, {}, true, nullptr};
  for (std::int32_t i = 1; i <= line.n; ++i) {
    std::array<double, N_SIDES> of_shortest{};  // serves the longer types too
    T_PLACEMENT at(pass, offsets, i);
    for (std::int32_t k = 1; k <= HB_TYPES; ++k) {
      at.TAKE_TYPE(pass, offsets, k);
      if (!at.FITS(pass)) break;
      at.FIND(pass);
      const auto length = static_cast<double>(at.VEHICLE_LENGTH);
      const T_HA_RESULT ha = HA_SEARCH_ZONE_OF<L>(line, vehicle.HA_CURVE, at.ZONE, at.VEHICLE_LENGTH, work);
      const T_ZONE_CUT cut = bounds.CUT<L>(line, at.ZONE);
      for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
        const double exact = std::fabs(static_cast<double>(ha[side].VALUE));
        const double anywhere = bounds.ANYWHERE_BOUND(side, length);
        const double quick = bounds.QUICK_BOUND(side, at.ZONE, length);
        const T_BOUNDS bound = bounds.BOUND(side, cut, length, 0);
        if (k == 1) of_shortest[side] = quick;
        narrow += exact > 0 && bound.LOW > 0.9999 * exact && bound.HIGH < 1.0001 * exact;
        const std::array<double, 4> above{bound.HIGH, quick, of_shortest[side], anywhere};
        if (bound.LOW <= exact && exact <= *std::min_element(above.begin(), above.end())) continue;
        std::string text = "point " + std::to_string(i) + " type " + std::to_string(k) + " side " +
                           std::to_string(side) + ": " + std::to_string(exact) + " against " +
                           std::to_string(bound.LOW) + " and";
        for (const double limit : above) text += " " + std::to_string(limit);
        return text;
      }
    }
  }
  return {};
}

TEST(ha_bounds, hold_what_the_search_finds_beside_every_placement) {
  int narrow = 0;
  for (std::uint64_t seed = 1; seed <= 10000; ++seed) {
    const RANDOM_HB_CASE c = MAKE_RANDOM_HB_CASE(seed);
    ASSERT_EQ(contradiction<SIMPLE_LAYOUT>(c.SIMPLE, narrow), "") << "seed " << seed << ", " << c.KIND;
    ASSERT_EQ(contradiction<JUMP_LAYOUT>(c.JUMP, narrow), "") << "seed " << seed << ", " << c.KIND;
  }
  EXPECT_GT(narrow, 200000);
}

TEST(ha_bounds, are_not_given_where_numbers_lose_digits_or_overflow) {
  T_INTENSITY_BOUNDS intensity;
  EXPECT_FALSE(intensity.PREPARE({0, 1e-40F, 0, 0.5F, 0}, 10, 1000));
  ASSERT_TRUE(intensity.PREPARE({30, 151, 9, 0.475F, 30}, 10, 1000));
  T_HA_BOUNDS bounds;
  for (const float worst : {1.0F, 1e-40F, -1e-40F, 1e13F, std::numeric_limits<float>::quiet_NaN()}) {
    const plain::LINE line = SIMPLE_LINE({0, 10, 20}, {0, worst, 1});
    EXPECT_EQ(bounds.PREPARE<SIMPLE_LAYOUT>(VIEW(line), intensity, 0, 10), worst == 1) << worst;
  }
}

}  // namespace
