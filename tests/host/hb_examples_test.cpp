// Answers under HB that can be worked out by hand, and those of a published beam.
//
// The vehicle has four axles of 450 kN (45 units), 1.8 m apart in a bogie and g = 6, 11, 16, 21 or 26 m
// between the inner ones. 25 m before its first axle and behind its last are free of HA UDL, and the UDL's
// intensity goes by the vehicle's length, 3.6 m + g, plus the length that is loaded beside it. Lanes run
// forward alone where a pass in reverse would find the mirrored placement just as good.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "examples/published_bridges/published_answers.h"
#include "modelkit/example_span.h"
#include "tests/host/model_run.h"

namespace {

using namespace host;
using modelkit::DIRECTION;
using modelkit::T_MODEL;

constexpr double AXLE = 450.0;
constexpr double CURVED = 5e-5;  // chords of a curved line, points 0.25 m apart or less

/// 30 kN/m up to 30 m, then 151 (1/L)^0.475, not below 9.
double intensity(double length) {
  return length <= 30.0 ? 30.0 : std::max(9.0, 151.0 * std::pow(1.0 / length, 0.475));
}
/// As a record has it.
std::int32_t in_milli(double w) {
  return static_cast<std::int32_t>(w * 1000.0);
}

/// Sum of a line's ordinates under the axles, with the free stretch behind the last from `near_end` on.
template <class LINE>
double under_axles(const LINE& line, double near_end, double g = 6.0) {
  const double last = near_end + 25.0;
  return line(last) + line(last + 1.8) + line(last + 1.8 + g) + line(last + 3.6 + g);
}

/// The model's only combination: sub-cases of its lanes, 0 for an empty one.
T_MODEL loaded(T_MODEL model, const std::vector<std::int32_t>& sub_cases) {
  modelkit::T_COMBINATION combination;
  for (const std::int32_t sub_case : sub_cases) combination.push_back({.code = sub_case, .scale = 1.0});
  model.moving_load_cases = {{.combinations = {combination}}};
  return model;
}

host::ARGUMENTS ask(const T_MODEL& model, int item) {
  return ASK(model, MOVLOAD_RK_SIMB, 1, item);
}

// The ordinate d m from midspan is 10 - d / 2, and 0 from 20 m on. With midspan between the inner axles
// their distances add up to g and those of the outer ones to g + 3.6, wherever the vehicle stands: 40 - (2 g
// + 3.6) / 2 = 38.2 - g in all. From g = 21 on a bogie alone at midspan gives more, 20 - 1.8 / 2. The span
// then lies within 25 m of an axle and has no UDL.
TEST(hb_examples, the_shortest_hb_at_midspan_governs_a_span_of_40_m) {
  T_MODEL model =
      loaded(modelkit::SIMPLE_SPAN_MODEL(40.0, 41, {.overrun = 60.0, .direction = DIRECTION::FORWARD}), {2});
  const auto line = [](double x) { return std::max(0.0, 10.0 - std::fabs(x - 80.0) / 2.0); };
  const auto expect_vehicle = [&](double g, double ordinates) {
    const auto got = ask(model, modelkit::SPAN_MIDSPAN_MOMENT);
    EXPECT_CLOSE(AXLE * ordinates, got.FINAL_MAX);
    EXPECT_EQ(got.FINAL_MIN, 0.0);
    // Points stand every metre, but for the one before the deck, the 61st.
    const std::int32_t point = got.K_MXLOAD(MOVLOAD_POSITION_OF_HB + 1, 1);
    EXPECT_CLOSE(ordinates, under_axles(line, point <= 60 ? point - 1 : point - 2, g));
    EXPECT_EQ(got.K_MXLOAD.LANE(1), (RECORD{1, 0, 0, 1, point, FULL_SCALE, 1, 0, 102, 0}));
    EXPECT_EQ(NUMBERS(got.K_MAXINFL_S, 1), RECORD{});
    EXPECT_EQ(got.DISTANCE_MAX_RANGE.LANE(1), PAIRS({}));
    EXPECT_EQ(got.K_MNLOAD.LANE(1), NOTHING_GOVERNS);
  };
  expect_vehicle(6.0, 32.2);
  std::vector<double>& geometry = model.vehicle_groups[0].vehicles[0].geometry;
  for (const auto& [g, ordinates] :
       {std::pair{6.0, 32.2}, {11.0, 27.2}, {16.0, 22.2}, {21.0, 19.1}, {26.0, 19.1}}) {
    geometry[2] = g;
    geometry[3] = 0.0;  // all types alike
    expect_vehicle(g, ordinates);
  }
}

// The ordinate at x is x / 2 as far as 50 m, and mirrored beyond. The axles give 100 - 15.6 / 2 = 92.2 with
// midspan anywhere between the inner ones. Beside them 23 m and 17.4 m of the span are loaded: the more apart
// these are, the greater their areas 23^2 / 4 + 17.4^2 / 4 = 207.94; but at 24 m three axles stand beyond
// midspan, 360 kNm the less. L = 9.6 + 40.4 = 50, w = 23.5487.
constexpr double MIDSPAN_AXLES = 92.2;
constexpr double MIDSPAN_UDL = 23.5487 * 207.94;

TEST(hb_examples, ha_is_loaded_outside_the_clear_stretches_on_both_sides_of_the_hb) {
  const T_MODEL model =
      loaded(modelkit::SIMPLE_SPAN_MODEL(100.0, 101, {.direction = DIRECTION::FORWARD}), {2});
  const auto got = ask(model, modelkit::SPAN_MIDSPAN_MOMENT);
  EXPECT_CLOSE(AXLE * MIDSPAN_AXLES + MIDSPAN_UDL, got.FINAL_MAX);
  // One range for the search, and two pieces to draw, of which the far one is pair 100.
  std::vector<float> pieces = PAIRS({0.0F, 23.0F});
  pieces[198] = 82.6F;
  pieces[199] = 100.0F;
  EXPECT_EQ(got.K_MXLOAD.LANE(1), (RECORD{1, 23548, 2, 1, 24, FULL_SCALE, 1, 0, 102, 0}));
  EXPECT_EQ(NUMBERS(got.K_MAXINFL_S, 1), (RECORD{1, 100}));
  EXPECT_EQ(got.DISTANCE_MAX_RANGE.LANE(1), pieces);
}

// The extremes of a beam over spans of 10 and 30 m under 30 units without HA, as published. At the pier the
// shears jump, which the points smear over the step behind it.
TEST(hb_examples, a_published_two_span_beam_is_met_as_its_points_draw_together) {
  // Of the governing HB, in the order of the table; 0 where a bogie alone governs, the same in all types.
  std::vector<int> types = {0, 1, 1, 1, 2, 1, 1};
  for (replay::T_ANSWER answer : replay::READ_ANSWERS(BRIDGES_CSV)) {
    if (answer.source != "published beam") continue;
    ASSERT_FALSE(types.empty());
    int type = 0;
    const auto difference = [&] {
      const replay::T_QUESTION question = replay::QUESTION_OF(answer);
      const auto got = ASK(question.model, question.kind, question.id, question.item);
      const bool is_minimum = answer.IS_MINIMUM();
      type = (is_minimum ? got.K_MNLOAD : got.K_MXLOAD)(MOVLOAD_TYPE_OF_HB + 1, 1);
      return std::fabs((is_minimum ? got.FINAL_MIN : got.FINAL_MAX) / answer.PRINTED() - 1.0);
    };
    const double fine = difference();
    EXPECT_TRUE(types.front() == 0 || type == types.front()) << answer.result << ", type " << type;
    answer.points = 61;
    EXPECT_LT(fine, difference()) << answer.result;
    types.erase(types.begin());
  }
  EXPECT_TRUE(types.empty());
}

// 25 + 9.6 + 25 m. The axles stand at 25, 26.8, 32.8 and 34.6 m, and the ordinates are half of the distances
// to the nearer end: 12.5, 13.4, 13.4, 12.5.
TEST(hb_examples, an_hb_fits_a_lane_just_as_long_as_its_clear_stretches_and_no_shorter_one) {
  const auto beam = [](double length) {
    T_MODEL model = modelkit::SIMPLE_SPAN_MODEL(length, 51, {.direction = DIRECTION::FORWARD});
    model.lanes.push_back(model.lanes[0]);
    return model;
  };
  const auto fits = ask(loaded(beam(59.6), {2, 0}), modelkit::SPAN_MIDSPAN_MOMENT);
  EXPECT_CLOSE(AXLE * 51.8, fits.FINAL_MAX);
  EXPECT_EQ(fits.K_MXLOAD.LANE(1), (RECORD{1, 0, 0, 1, 1, FULL_SCALE, 1, 0, 102, 0}));
  EXPECT_EQ(NUMBERS(fits.K_MAXINFL_S, 1), RECORD{});

  // The HB's lane is left with its factor, and the HA of the other lane governs.
  const auto too_short = ask(loaded(beam(59.599), {2, 1}), modelkit::SPAN_MIDSPAN_MOMENT);
  const double w = intensity(59.599);
  EXPECT_CLOSE(w * 59.599 * 59.599 / 8.0 + 120.0 * 59.599 / 4.0, too_short.FINAL_MAX);
  EXPECT_EQ(too_short.K_MXLOAD.LANE(1), (RECORD{1, 0, 0, 0, 0, FULL_SCALE, 0, 0, 1, 0}));
  EXPECT_EQ(too_short.K_MXLOAD.LANE(2), (RECORD{1, in_milli(w), 1, 0, 0, FULL_SCALE, 0, 26, 101, 0}));
  EXPECT_EQ(NUMBERS(too_short.K_MAXINFL_S, 1), RECORD{});
  EXPECT_EQ(too_short.DISTANCE_MAX_RANGE.LANE(1), PAIRS({0.0F, 59.599F}));

  const auto alone = ask(loaded(beam(59.599), {2, 0}), modelkit::SPAN_MIDSPAN_MOMENT);
  EXPECT_EQ(alone.FINAL_MAX, 0.0);
  EXPECT_EQ(alone.K_MXLOAD.LANE(1), NOTHING_GOVERNS);
}

// The first support's reaction over spans of 100 and 50 m. A load at a in the first span gives r = 1 - a /
// 100 - a (100^2 - a^2) / (200 * 150) / 100, the second span the area -50^3 / (8 * 150) / 100. The beam
// carries 0.75 of the left lane, the right lane lifts it by 0.5, and of the vehicle it has 0.8, 0.75, -0.5 or
// -0.6.
//
// On either side the vehicle stands with its last axle on the support, so that the UDL of the first span
// begins at 34.6 m: L = 75. The lane of the other sign is loaded in the second span, L = 9.6 + 50. For the
// maximum the left lane has the greater share and is loaded in full, for the minimum the right lane.
TEST(hb_examples, the_full_ha_beside_a_straddling_hb_may_change_lanes_from_one_side_to_the_other) {
  T_MODEL model =
      modelkit::TWO_SPAN_MODEL(100.0, 50.0, 401, {.overrun = 30.0, .direction = DIRECTION::FORWARD});
  modelkit::STRADDLE_TWO_LANES(model, {0.8, 0.75, -0.5, -0.6});
  const auto got = ask(loaded(model, {0, 0, 4}), modelkit::TWO_SPAN_FIRST_REACTION);

  const auto r = [](double a) { return 1.0 - a / 100.0 - a * (10000.0 - a * a) / 3e6; };
  const auto integral = [](double a) {
    return a - a * a / 200.0 - (10000.0 * a * a / 2.0 - std::pow(a, 4) / 4.0) / 3e6;
  };
  const double long_w = intensity(75.0);
  const double short_w = intensity(59.6);
  const double long_udl = long_w * (integral(100.0) - integral(34.6));
  const double short_udl = short_w * 125000.0 / 1200.0 / 100.0;
  const double axles = AXLE * under_axles(r, -25.0);
  EXPECT_CLOSE(0.8 * axles + 0.75 * long_udl + 0.3333 * 0.5 * short_udl, got.FINAL_MAX, CURVED);
  EXPECT_CLOSE(-0.6 * axles - 0.5 * long_udl - 0.3333 * 0.75 * short_udl, got.FINAL_MIN, CURVED);

  // Field 7 is lane 3, plane and portion: plane 1 for the maximum, 4 for the minimum. The records of the two
  // planes become those of the lanes, with two HBs and one full UDL. What the straddle lane has itself is the
  // pass.
  const auto plane = [](double w, std::int32_t code, std::int32_t comb_type) {
    return RECORD{1, in_milli(w), 1, 1, 6, FULL_SCALE, code, 0, comb_type, 0};
  };
  EXPECT_EQ(got.K_MXLOAD1ST.LANE(3), plane(long_w, 30011, 0));
  EXPECT_EQ(got.K_MXLOAD2ND.LANE(3), plane(short_w, 30010, 0));
  EXPECT_EQ(got.K_MNLOAD1ST.LANE(3), plane(short_w, 30040, 0));
  EXPECT_EQ(got.K_MNLOAD2ND.LANE(3), plane(long_w, 30041, 0));
  EXPECT_EQ(got.K_MXLOAD.LANE(1), plane(long_w, 30011, 104));
  EXPECT_EQ(got.K_MXLOAD.LANE(2), plane(short_w, 30010, 104));
  EXPECT_EQ(got.K_MNLOAD.LANE(1), plane(short_w, 30040, 104));
  EXPECT_EQ(got.K_MNLOAD.LANE(2), plane(long_w, 30041, 104));
  for (const RECORD& own : {got.K_MXLOAD.LANE(3), got.K_MNLOAD.LANE(3)})
    EXPECT_EQ(own, (RECORD{1, 0, 0, 0, 0, 0, 0, 0, 100, 0}));
  for (const auto* list :
       {&got.K_MAXINFL_S1ST, &got.K_MAXINFL_S2ND, &got.K_MININFL_S1ST, &got.K_MININFL_S2ND})
    EXPECT_EQ(NUMBERS(*list, 3), RECORD{1});

  const std::vector<float> first_span = PAIRS({64.6F, 130.0F});
  const std::vector<float> second_span = PAIRS({130.0F, 180.0F});
  EXPECT_EQ(got.DISTANCE_MAX_RANGE.LANE(1), first_span);
  EXPECT_EQ(got.DISTANCE_MAX_RANGE.LANE(2), second_span);
  EXPECT_EQ(got.DISTANCE_MIN_RANGE.LANE(1), second_span);
  EXPECT_EQ(got.DISTANCE_MIN_RANGE.LANE(2), first_span);
  for (const int lane : {1, 2}) {
    EXPECT_EQ(NUMBERS(got.K_MAXINFL_S, lane), RECORD{1});
    EXPECT_EQ(NUMBERS(got.K_MININFL_S, lane), RECORD{1});
  }
}

// The span of 100 m again. The two lanes add up to one whole; of the vehicle the beam carries 0.7 in plane 4.
TEST(hb_examples, full_ha_on_both_lanes_beside_a_straddling_hb_stays_in_the_straddle_lane) {
  T_MODEL model = modelkit::SIMPLE_SPAN_MODEL(100.0, 101, {.direction = DIRECTION::REVERSE});
  modelkit::STRADDLE_TWO_LANES(model, {0.5, 0.6, 0.4, 0.7});
  const auto got = ask(loaded(model, {0, 0, 3}), modelkit::SPAN_MIDSPAN_MOMENT);
  EXPECT_CLOSE(0.7 * AXLE * MIDSPAN_AXLES + MIDSPAN_UDL, got.FINAL_MAX);
  // 23 m from the lane's end, point 78. What the search found is lane 3, plane 4: 3004.
  EXPECT_EQ(got.K_MXLOAD.LANE(3), (RECORD{1, 23548, 1, 1, 78, FULL_SCALE, 300041, 0, 203, 0}));
  EXPECT_EQ(NUMBERS(got.K_MAXINFL_S, 3), RECORD{1});
  EXPECT_EQ(got.DISTANCE_MAX_RANGE.LANE(3), PAIRS({}));
  for (const int lane : {1, 2}) {
    EXPECT_EQ(got.K_MXLOAD.LANE(lane), (RECORD{1, 0, 0, 0, 0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(NUMBERS(got.K_MAXINFL_S, lane), RECORD{});
    EXPECT_EQ(got.DISTANCE_MAX_RANGE.LANE(lane), PAIRS({0.0F, 100.0F}));
  }
  for (const auto* planes : {&got.K_MXLOAD1ST, &got.K_MXLOAD2ND})
    EXPECT_EQ(planes->LANE(3), (RECORD{1, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(got.FINAL_MIN, 0.0);
}

}  // namespace
