// Answers that can be worked out by hand, and those of the example bridge.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "modelkit/beam_results.h"
#include "modelkit/example_bridge.h"
#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tests/host/model_run.h"
#include "tests/host/tiny_model.h"
#include "tests/temporary_directory.h"

namespace {

using namespace host;
using modelkit::T_MODEL;

// w = 30 kN/m up to 30 m and 151 (1/L)^0.475 beyond, a knife edge of 120 kN; the moment is w L^2 / 8 + 120
// L/4. The least value is 0: no ordinate is below 0.
TEST(examples, a_simple_span_under_ha_carries_the_moment_worked_out_by_hand) {
  //  25 m: 30 * 78.125 + 120 * 6.25;  30 m: 30 * 112.5 + 120 * 7.5
  //  50 m: 0.02^0.475 = 0.155952, w = 23.5487;  23.5487 * 312.5 + 120 * 12.5
  for (const auto& [span, moment, intensity] :
       {std::tuple{25.0, 3093.75, 30000}, {30.0, 4275.0, 30000}, {50.0, 8858.96, 23548}}) {
    const auto got =
        ASK(modelkit::SIMPLE_SPAN_MODEL(span), MOVLOAD_RK_SIMB, 1, modelkit::SPAN_MIDSPAN_MOMENT);
    EXPECT_CLOSE(moment, got.FINAL_MAX);
    EXPECT_EQ(got.FINAL_MIN, 0.0);
    // Midspan is point 26 of 51; one forward pass and no HB give 101.
    EXPECT_EQ(got.K_MXLOAD.LANE(1), (RECORD{1, intensity, 1, 0, 0, FULL_SCALE, 0, 26, 101, 0}));
    EXPECT_EQ(got.K_MNLOAD.LANE(1), NOTHING_GOVERNS);
    EXPECT_EQ(NUMBERS(got.K_MAXINFL_S, 1), RECORD{1});
    EXPECT_EQ(NUMBERS(got.K_MININFL_S, 1), RECORD{});
    EXPECT_EQ(got.DISTANCE_MAX_RANGE.LANE(1), PAIRS({0.0F, static_cast<float>(span)}));
    EXPECT_EQ(got.DISTANCE_MIN_RANGE.LANE(1), PAIRS({}));
  }
}

// 30 * 25 / 2 + 120, the knife edge over the support.
TEST(examples, the_end_shear_of_a_simple_span_puts_the_knife_edge_over_the_support) {
  const auto got = ASK(modelkit::SIMPLE_SPAN_MODEL(25.0), MOVLOAD_RK_SIMB, 1, modelkit::SPAN_END_SHEAR);
  EXPECT_CLOSE(495.0, got.FINAL_MAX);
  EXPECT_EQ(got.K_MXLOAD(MOVLOAD_POS_OF_HA_KEL + 1, 1), 1);
}

// A beam of spans S and L, total T, under a uniform load q: the inner support's moment is -q S^3 / (8 T) from
// S and -q L^3 / (8 T) from L; trapezoids on 40 segments give 1 - 1/1600 of that. L, with the greater mean,
// is loaded first. Spans 20 and 30: areas 20 and 67.5, times 1599/1600. L alone: w = 30, 2023.73. Both: w =
// 23.5487 for 50 m, 87.4453 * 23.5487 = 2059.22, more. Knife edge 17.25 m from the last support: 3.464016 *
// 120 = 415.68. Spans 20 and 60: areas 12.5 and 337.5, times 1599/1600. L alone: w = 21.5951, 7283.79. Both:
// w = 18.8371, 349.7813 * 18.8371 = 6588.79, less. Knife edge 34.5 m from the last support: 8.660039 * 120 =
// 1039.20.
TEST(examples, a_second_span_is_loaded_only_where_it_outweighs_the_fall_of_the_intensity) {
  const int moment = modelkit::TWO_SPAN_SUPPORT_MOMENT;
  const auto both = ASK(modelkit::TWO_SPAN_MODEL(20.0, 30.0), MOVLOAD_RK_SIMB, 1, moment);
  EXPECT_EQ(both.FINAL_MAX, 0.0);
  EXPECT_NEAR(both.FINAL_MIN, -2474.90, 0.02);
  // Points 1 to 41 on the first span; 32.75 m from the first support is 17 steps of 0.75 m further.
  EXPECT_EQ(both.K_MNLOAD.LANE(1), (RECORD{1, 23548, 2, 0, 0, FULL_SCALE, 0, 58, 101, 0}));
  EXPECT_EQ(NUMBERS(both.K_MININFL_S, 1), (RECORD{2, 1}));
  EXPECT_EQ(both.K_MXLOAD.LANE(1), NOTHING_GOVERNS);
  // The zero over the support doesn't end a range where distances are told.
  EXPECT_EQ(both.DISTANCE_MIN_RANGE.LANE(1), PAIRS({0.0F, 50.0F}));

  const auto one = ASK(modelkit::TWO_SPAN_MODEL(20.0, 60.0), MOVLOAD_RK_SIMB, 1, moment);
  EXPECT_NEAR(one.FINAL_MIN, -8322.99, 0.05);
  EXPECT_EQ(one.K_MNLOAD(MOVLOAD_W_HA_UDL + 1, 1), 21595);
  EXPECT_EQ(NUMBERS(one.K_MININFL_S, 1), RECORD{2});
}

// 3 - 5 / 2 of the first entry and 8 / 4 + 2 * 3 / 4 of the second, where the weight of a link to a spread row
// doesn't count; their mean with an impact of a quarter.
TEST(examples, an_ordinate_is_the_mean_of_its_entries_with_spread_rows_and_impact) {
  T_MODEL model = TWO_LOADS_MODEL();
  model.unit_loads = 4;
  model.disp = {{.id = 1, .values = {{3.0F, -5.0F, 8.0F, 2.0F}}}};
  modelkit::T_LANE& lane = model.lanes[0];
  lane.entries_per_point = 2;
  lane.spread_rows = {{{3, 0.25}, {4, 0.75}}};
  lane.points[0].impact = 0.25;
  lane.points[0].entries = {{.a = {1, 1.0}, .b = {2, 0.5}}, {.a = {-1, 7.0}}};
  lane.points[1].entries = {{}, {}};
  EXPECT_EQ(ASK(model, MOVLOAD_RK_DISP, 1, 1).FINAL_MAX, (0.5 + 3.5) * 1.25 / 2);
}

// HA in two lanes of which one has a third (case 1), and in one lane alone (case 2).
TEST(examples, lanes_add_up_over_a_combination_and_the_first_of_equal_combinations_governs) {
  constexpr double THIRD = 1.0 / 3.0;
  T_MODEL model = modelkit::SIMPLE_SPAN_MODEL(25.0);
  model.lanes.push_back(model.lanes[0]);
  modelkit::T_VEHICLE light = modelkit::HA_1978_VEHICLE();
  light.vehicle_class = 2;
  light.ha_w0 = 15.0;
  light.loads[0] = 0.0;
  model.vehicle_groups.push_back({.group = 2, .vehicles = {light}});
  model.moving_load_cases = {{.combinations = {{{1, 1.0}, {1, THIRD}}, {{1, THIRD}, {1, 1.0}}}},
                             {.combinations = {{{1, 1.0}, {0, 1.0}}, {{1, 1.0}, {5, 0.5}}}}};

  const auto equal = ASK(model, MOVLOAD_RK_SIMB, 1, modelkit::SPAN_MIDSPAN_MOMENT, 1);
  EXPECT_CLOSE(4125.0, equal.FINAL_MAX);
  EXPECT_EQ(equal.K_MXLOAD.LANE(1), (RECORD{1, 30000, 1, 0, 0, FULL_SCALE, 0, 26, 101, 0}));
  // A third in single precision, times 1e7 in single precision: 3333333.4 or so, truncated.
  EXPECT_EQ(equal.K_MXLOAD.LANE(2), (RECORD{1, 30000, 1, 0, 0, 3333333, 0, 26, 101, 0}));

  // The class of the last loaded lane stands in every lane. The point of the knife edge is noted without one.
  const auto mixed = ASK(model, MOVLOAD_RK_SIMB, 1, modelkit::SPAN_MIDSPAN_MOMENT, 2);
  EXPECT_CLOSE(3679.6875, mixed.FINAL_MAX);
  EXPECT_EQ(mixed.K_MXLOAD.LANE(1), (RECORD{2, 30000, 1, 0, 0, FULL_SCALE, 0, 26, 101, 0}));
  EXPECT_EQ(mixed.K_MXLOAD.LANE(2), (RECORD{2, 15000, 1, 0, 0, 5000000, 0, 26, 101, 0}));
}

class bridge : public testing::Test {
 protected:
  bridge() { modelkit::WRITE_MODEL(model_, directory_.NAME()); }
  [[nodiscard]] std::pair<double, double> run(int kind, int id, int item, int mv_case) const {
    const auto lanes = static_cast<int>(model_.lanes.size());
    const auto got = host::RUN(lanes, directory_.NAME(), 0, kind, id, item, mv_case);
    return {got.FINAL_MAX, got.FINAL_MIN};
  }
  static void expect_same(const std::pair<double, double>& expected, const std::pair<double, double>& got,
                          double relative) {
    EXPECT_GT(expected.first, 0.0);
    EXPECT_LT(expected.second, 0.0);
    EXPECT_CLOSE(expected.first, got.first, relative);
    EXPECT_CLOSE(expected.second, got.second, relative);
  }

  const T_MODEL model_ = modelkit::EXAMPLE_BRIDGE().model;
  const TEMPORARY_DIRECTORY directory_;
};

TEST_F(bridge, mirrors_itself_under_ha_and_any_way_of_hb_gives_the_worst) {
  using namespace modelkit;
  for (const auto& [kind, id, item] : {std::tuple{MOVLOAD_RK_SIMB, 1, int{BRIDGE_MOMENT_MAIN_SPAN}},
                                       {MOVLOAD_RK_SIMB, 1, BRIDGE_TORSION_BEHIND_PIER_1},
                                       {MOVLOAD_RK_REAC, BRIDGE_NODE(20, 1), 3},
                                       {MOVLOAD_RK_DISP, BRIDGE_NODE(35, 3), 3}}) {
    SCOPED_TRACE(id);
    // Nodes are numbered across the bridge, as are the beams. A torsion mirrored has the other sign.
    const int mirror_id = id + BRIDGE_BEAMS + 1 - 2 * ((id - 1) % BRIDGE_BEAMS + 1);
    for (const int mv_case : {BRIDGE_CASE_HA, BRIDGE_CASE_HA_SINGLE}) {
      auto mirrored = run(kind, mirror_id, item, mv_case);
      if (item == BRIDGE_TORSION_BEHIND_PIER_1) mirrored = {-mirrored.second, -mirrored.first};
      expect_same(run(kind, id, item, mv_case), mirrored, 1e-4);
    }
    std::pair<double, double> worst;
    for (int mv_case = BRIDGE_CASE_HB; mv_case < BRIDGE_CASE_HB_ANY; ++mv_case) {
      const auto [max, min] = run(kind, id, item, mv_case);
      worst = {std::max(worst.first, max), std::min(worst.second, min)};
    }
    EXPECT_EQ(run(kind, id, item, BRIDGE_CASE_HB_ANY), worst);
  }
}

// BRIDGE_BEAM(2, 3) is the inner beam's main span; SIMB 3 has forces of that beam, REAC its bearings.
TEST_F(bridge, elements_agree_with_the_other_results) {
  using namespace modelkit;
  for (int mv_case = 1; mv_case <= BRIDGE_CASE_HB_ANY; ++mv_case) {
    const auto beam = [&](BEAM_STATION station, BEAM_FORCE force) {
      return run(MOVLOAD_RK_BEAM, BRIDGE_BEAM(2, 3), BEAM_FORCE_ITEM(station, force), mv_case);
    };
    const auto simb = [&](BRIDGE_ITEM item) { return run(MOVLOAD_RK_SIMB, 3, item, mv_case); };
    expect_same(simb(BRIDGE_MOMENT_MAIN_SPAN), beam(BEAM_MIDDLE, BEAM_MOMENT), 1e-5);
    expect_same(simb(BRIDGE_MOMENT_SECOND_PIER), beam(BEAM_END, BEAM_MOMENT), 1e-5);
    expect_same(simb(BRIDGE_SHEAR_BEHIND_PIER_1), beam(BEAM_START, BEAM_SHEAR), 1e-5);
    const auto [reaction, uplift] = run(MOVLOAD_RK_REAC, BRIDGE_NODE(20, 1), 3, mv_case);
    expect_same({-uplift, -reaction}, run(MOVLOAD_RK_TRUSS, BRIDGE_BEARING(2, 1), 1, mv_case), 1e-5);
  }
}

}  // namespace
