// The examples' responses against statics.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "modelkit/example_bridge.h"
#include "modelkit/example_span.h"

namespace modelkit {
namespace {

/// The line of one component along a lane, entry weights added up and averaged over the entries.
std::vector<double> line_of(const T_LANE& lane, const std::vector<float>& component) {
  const auto response = [&](const T_LOAD_SHARE& link) {
    if (link.load > 0)
      return link.weight * static_cast<double>(component[static_cast<std::size_t>(link.load) - 1]);
    double sum = 0.0;
    if (link.load < 0)
      for (const T_LOAD_SHARE& share : lane.spread_rows[static_cast<std::size_t>(-link.load) - 1])
        sum += share.weight * static_cast<double>(component[static_cast<std::size_t>(share.load) - 1]);
    return sum;
  };
  std::vector<double> line;
  for (const T_INFLUENCE_POINT& point : lane.points) {
    double sum = 0.0;
    for (const T_TRANSVERSE_ENTRY& entry : point.entries) sum += response(entry.a) + response(entry.b);
    line.push_back(sum / lane.entries_per_point);
  }
  return line;
}

double area_under(const T_LANE& lane, const std::vector<double>& line) {
  double area = 0.0;
  for (std::size_t i = 1; i < line.size(); ++i)
    area += 0.5 * (line[i] + line[i - 1]) * (lane.points[i].x - lane.points[i - 1].x);
  return area;
}

TEST(example_span, the_simple_span_gives_the_values_worked_out_by_hand) {
  for (const auto& [span, moment] : {std::pair{25.0, 3093.75}, {30.0, 4275.0}, {50.0, 8858.96}}) {
    const T_MODEL model = SIMPLE_SPAN_MODEL(span, 51, {.overrun = 80.0, .abutment_gap = 1e-6});
    const T_VEHICLE& vehicle = model.vehicle_groups[0].vehicles[0];
    const double w =
        span <= vehicle.geometry[0] ? vehicle.ha_w0 : vehicle.ha_k * std::pow(1.0 / span, vehicle.ha_p);
    const auto effect = [&](SPAN_ITEM item) {
      const std::vector<double> line =
          line_of(model.lanes[0], model.simb[0].values[static_cast<std::size_t>(item) - 1]);
      return w * area_under(model.lanes[0], line) + vehicle.loads[0] * *std::ranges::max_element(line);
    };
    EXPECT_NEAR(effect(SPAN_MIDSPAN_MOMENT), moment, 0.01);
    EXPECT_NEAR(effect(SPAN_END_SHEAR), 0.5 * w * span + 120.0, 0.01);
  }
}

TEST(example_span, the_two_span_beam_is_in_equilibrium_and_has_the_known_support_moment) {
  constexpr double FIRST = 20.0;
  constexpr double SECOND = 30.0;
  constexpr int POINTS = 201;
  const T_MODEL model = TWO_SPAN_MODEL(FIRST, SECOND, POINTS);
  const auto component = [&](TWO_SPAN_ITEM item) -> const std::vector<float>& {
    return model.simb[0].values[static_cast<std::size_t>(item) - 1];
  };
  for (std::size_t load = 0; load < static_cast<std::size_t>(model.unit_loads); ++load) {
    const double a = model.lanes[0].points[load].x;
    const double first = static_cast<double>(component(TWO_SPAN_FIRST_REACTION)[load]);
    const double inner = static_cast<double>(component(TWO_SPAN_INNER_REACTION)[load]);
    const double last = static_cast<double>(component(TWO_SPAN_LAST_REACTION)[load]);
    EXPECT_NEAR(first + inner + last, 1.0, 1e-6);
    EXPECT_NEAR(inner * FIRST + last * (FIRST + SECOND), a, 1e-4);
    // The middle of the first span and the inner support, by statics from the first reaction.
    EXPECT_NEAR(static_cast<double>(component(TWO_SPAN_FIRST_MOMENT)[load]),
                0.5 * FIRST * first - std::max(0.0, 0.5 * FIRST - a), 1e-4);
    EXPECT_NEAR(static_cast<double>(component(TWO_SPAN_SUPPORT_MOMENT)[load]),
                FIRST * first - std::max(0.0, FIRST - a), 1e-4);
  }
  // Under a load q on both spans: M = -q (L1^3 + L2^3) / 8 (L1 + L2).
  const double area = area_under(model.lanes[0], line_of(model.lanes[0], component(TWO_SPAN_SUPPORT_MOMENT)));
  EXPECT_NEAR(area, -(std::pow(FIRST, 3) + std::pow(SECOND, 3)) / (8.0 * (FIRST + SECOND)), 0.01);
}

class example_bridge : public testing::Test {
 protected:
  static const T_EXAMPLE& bridge() {
    static const T_EXAMPLE example = EXAMPLE_BRIDGE();
    return example;
  }
  static const std::vector<float>& section(int beam, BRIDGE_ITEM item) {
    return bridge().model.simb[static_cast<std::size_t>(beam) - 1].values[static_cast<std::size_t>(item) - 1];
  }
  /// Value v of a beam's record, from 1.
  static const std::vector<float>& beam_value(int span, int beam, int v) {
    return bridge()
        .model.beams[static_cast<std::size_t>(BRIDGE_BEAM(span, beam) - BRIDGE_BEAM(1, 1))]
        .values[static_cast<std::size_t>(v) - 1];
  }
  /// Where a unit load stands, in m from the first abutment; loads from 0.
  static double load_at(std::size_t load) {
    return (BRIDGE_LOADED_NODE(static_cast<int>(load) + 1) - 1) / BRIDGE_BEAMS;
  }
};

TEST_F(example_bridge, every_unit_load_is_carried_by_the_bearings) {
  for (std::size_t load = 0; load < static_cast<std::size_t>(bridge().model.unit_loads); ++load) {
    double sum = 0.0;
    double about_abutment = 0.0;
    for (const T_RESPONSE& support : bridge().model.reac) {
      const double reaction = static_cast<double>(support.values[2][load]);
      sum += reaction;
      about_abutment += reaction * ((support.id - 1) / BRIDGE_BEAMS);
    }
    ASSERT_NEAR(sum, 1.0, 1e-5);
    ASSERT_NEAR(about_abutment, load_at(load), 1e-3);
  }
}

TEST_F(example_bridge, the_deck_bends_the_way_the_signs_say) {
  const std::size_t middle = static_cast<std::size_t>(BRIDGE_NODE(35, 3)) - 1;
  EXPECT_GT(section(3, BRIDGE_MOMENT_MAIN_SPAN)[middle], 0.0F);
  EXPECT_LT(section(3, BRIDGE_MOMENT_FIRST_PIER)[middle], 0.0F);
  EXPECT_LT(section(3, BRIDGE_MOMENT_FIRST_SPAN)[middle], 0.0F);
  EXPECT_GT(section(3, BRIDGE_SHEAR_BEHIND_PIER_1)[middle], 0.0F);
  EXPECT_GT(bridge().model.disp[middle].values[2][middle], 0.0F);
}

TEST_F(example_bridge, a_lane_bears_on_the_deck_alone_and_its_segments_repeat_their_ends) {
  const std::vector<float> one(static_cast<std::size_t>(bridge().model.unit_loads), 1.0F);
  for (const T_LANE& lane : bridge().model.lanes) {
    ASSERT_EQ(lane.points.size() % 21, 0U);
    const std::vector<double> share = line_of(lane, one);
    for (std::size_t i = 0; i < lane.points.size(); ++i) {
      const double x = lane.points[i].x - BRIDGE_APPROACH;
      ASSERT_NEAR(share[i], x >= 0.0 && x <= BRIDGE_LENGTH ? 1.0 : 0.0, 1e-12) << "at " << x;
      if (i > 0) {
        ASSERT_EQ(lane.points[i].x == lane.points[i - 1].x, i % 21 == 0);
        ASSERT_GE(lane.points[i].x, lane.points[i - 1].x);
      }
    }
    // The longest vehicle, 26 + 2 * 1.8 m between its outer axles, with 25 m clear at either end.
    EXPECT_GE(lane.points.back().x - BRIDGE_APPROACH - BRIDGE_LENGTH, 26.0 + 2.0 * 1.8 + 2.0 * 25.0);
    // The shares of a point balance about it.
    std::vector<float> station(one.size());
    for (std::size_t load = 0; load < one.size(); ++load) station[load] = static_cast<float>(load_at(load));
    const std::vector<double> place = line_of(lane, station);
    for (std::size_t i = 0; i < place.size(); ++i)
      ASSERT_NEAR(place[i], share[i] * (lane.points[i].x - BRIDGE_APPROACH), 1e-9);
  }
}

TEST_F(example_bridge, the_straddle_lane_has_its_parents_entries_on_planes_two_and_three) {
  const T_LANE& straddle = bridge().model.lanes.back();
  const std::vector<float>& deflection = bridge().model.disp[176].values[2];
  ASSERT_EQ(straddle.entries_per_point, 3 * straddle.entries_per_plane);
  for (const int plane : {2, 3}) {
    const T_LANE& parent =
        bridge()
            .model
            .lanes[static_cast<std::size_t>(plane == 2 ? straddle.left_parent : straddle.right_parent) - 1];
    T_LANE alone = straddle;
    alone.entries_per_point = straddle.entries_per_plane;
    for (T_INFLUENCE_POINT& point : alone.points) {
      const auto first = point.entries.begin() + (plane - 1) * straddle.entries_per_plane;
      point.entries = {first, first + straddle.entries_per_plane};
    }
    EXPECT_EQ(line_of(alone, deflection), line_of(parent, deflection));
  }
}

// A cut across the deck in the middle of the main span: the beams' forces there balance the bearings before
// it and the load, where that stands before it.
TEST_F(example_bridge, the_forces_of_the_beams_balance_the_bearings_before_a_section) {
  constexpr double CUT = 35.0;
  const auto nodes = static_cast<std::size_t>(BRIDGE_NODE(BRIDGE_LENGTH, BRIDGE_BEAMS));
  for (const int load_behind : {0, 1}) {
    for (std::size_t load = 0; load < nodes; ++load) {
      const double a = load_at(load);
      const bool is_before = load_behind == 1 ? a < CUT : a <= CUT;
      double shear = is_before ? -1.0 : 0.0;
      double moment = is_before ? a - CUT : 0.0;
      for (const T_RESPONSE& truss : bridge().model.trusses) {
        const double x =
            std::array{0.0, 20.0, 50.0,
                       70.0}[static_cast<std::size_t>((truss.id - BRIDGE_BEARING(1, 1)) / BRIDGE_BEAMS)];
        if (x > CUT) continue;
        shear -= static_cast<double>(truss.values[0][load]);
        moment -= (CUT - x) * static_cast<double>(truss.values[1][load]);
      }
      for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam) {
        shear -= static_cast<double>(beam_value(2, beam, 23 + load_behind)[load]);   // item 15
        moment -= static_cast<double>(beam_value(2, beam, 27 + load_behind)[load]);  // item 17
      }
      ASSERT_NEAR(shear, 0.0, 1e-5) << load;
      ASSERT_NEAR(moment, 0.0, 1e-3) << load;
    }
  }
}

TEST_F(example_bridge, a_lane_meets_a_jump_of_shear_at_its_section_alone_and_ends_agree_with_block_simb) {
  // Of the three places across lane 1, 1, 2 and 3 m from beam 1, beam 2 at 2.5 m carries 0.4, 0.8 and 0.8.
  const T_LANE& lane = bridge().model.lanes[0];
  for (const int v : {11, 23, 35}) {  // items 9, 15 and 21, the shear at the quarter points
    const std::vector<double> before = line_of(lane, beam_value(1, 2, v));
    const std::vector<double> behind = line_of(lane, beam_value(1, 2, v + 1));
    for (std::size_t i = 0; i < before.size(); ++i) {
      const bool at_section = lane.points[i].x == BRIDGE_APPROACH + 5.0 * (v / 12 + 1);
      ASSERT_NEAR(behind[i] - before[i], at_section ? 2.0 / 3.0 : 0.0, 1e-6) << lane.points[i].x;
    }
  }
  for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam) {
    EXPECT_EQ(beam_value(1, beam, 3), section(beam, BRIDGE_SHEAR_ABUTMENT));
    EXPECT_EQ(beam_value(1, beam, 4), section(beam, BRIDGE_TORSION_ABUTMENT));
    EXPECT_EQ(beam_value(1, beam, 45), section(beam, BRIDGE_SHEAR_BEFORE_PIER_1));
    EXPECT_EQ(beam_value(1, beam, 47), section(beam, BRIDGE_MOMENT_FIRST_PIER));
    EXPECT_EQ(beam_value(2, beam, 3), section(beam, BRIDGE_SHEAR_BEHIND_PIER_1));
    EXPECT_EQ(beam_value(2, beam, 27), section(beam, BRIDGE_MOMENT_MAIN_SPAN));
    EXPECT_EQ(beam_value(2, beam, 28), section(beam, BRIDGE_MOMENT_MAIN_SPAN));
  }
}

}  // namespace
}  // namespace modelkit
