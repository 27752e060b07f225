// What is drawn of a governing loading, added up by hand, must be the value that governs.
#include "tools/drawn_loading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "tests/temporary_directory.h"
#include "tools/envelope_question.h"
#include "tools/plot_canvas.h"

namespace tools {
namespace {

/// Parents that carry loads of their own besides are left out: the records of the HB stand in their place.
bool tells_all(const T_SIDE_LOADING& loading) {
  return std::ranges::none_of(loading.lanes, [](const T_LANE_SIDE& lane) {
    return lane.parent_portions[0] != lane.parent_portions[1];
  });
}

TEST(DrawnLoading, AddsUpToTheValueAndTellsWhereEveryUdlStands) {
  const TEMPORARY_DIRECTORY directory;
  modelkit::T_RANDOM_OPTIONS options;
  options.max_classes = 1;
  options.other_sub_cases = 0.6;
  options.straddle_lanes = 0.5;
  options.longest_step = 8.0;
  int vehicles = 0;
  for (std::uint64_t seed = 1; seed <= 120; ++seed) {
    options.axle_lists = seed % 2 == 0 ? 0.5 : 0.0;
    options.class_definitions = seed % 2 == 0 ? 0.0 : 0.5;
    std::mt19937_64 random(seed);
    const modelkit::T_MODEL model = modelkit::RANDOM_MODEL(random, options);
    modelkit::WRITE_MODEL(model, directory.NAME());
    const bool is_beam = seed % 3 == 0 && !model.beams.empty();
    T_ENVELOPE_QUESTION question;
    question.model.base = directory.NAME();
    question.kind = is_beam ? "beam" : "disp";
    question.id = is_beam ? model.beams.front().id : model.disp.front().id;
    question.item = is_beam ? 8 : 3;
    question.mv_case = 1;
    for (; question.mv_case <= static_cast<std::int32_t>(model.moving_load_cases.size());
         ++question.mv_case) {
      const T_ENVELOPE_ANSWER answer = ANSWER_TO(question);
      for (const T_DRAWN_SIDE& drawn : answer.drawn) {
        if (!tells_all(answer.report.sides[drawn.side])) continue;
        EXPECT_TRUE(drawn.ADDS_UP()) << "model " << seed << ", case " << question.mv_case << ", side "
                                     << drawn.side;
        for (const T_DRAWN_LANE& lane : drawn.lanes) vehicles += lane.hb ? 1 : 0;
        for (const T_LANE_SIDE& lane : answer.report.sides[drawn.side].lanes) {
          EXPECT_TRUE(!lane.loading.udl || !lane.loading.udl->stretches.empty())
              << "model " << seed << ", case " << question.mv_case << ", lane " << lane.lane;
        }
      }
    }
  }
  EXPECT_GT(vehicles, 50);
}

TEST(DrawnLoading, StretchesAreToldWhereTheyAgreeWithTheRecordsAlone) {
  T_DRAWN_SIDE drawn;
  drawn.value = 60.0;
  drawn.lanes.resize(1);
  drawn.lanes[0].lane = 1;
  drawn.lanes[0].carries = CARRIES::HA;
  drawn.lanes[0].effect = 60.0;
  drawn.lanes[0].udl = {30.0, {{2.0, 4.0}}, 2.0, 0.0, 2.0};
  const auto told = [&drawn](double intensity) {
    T_SIDE_LOADING loading;
    loading.lanes.resize(1);
    loading.lanes[0].lane = 1;
    loading.lanes[0].carries = CARRIES::HA;
    loading.lanes[0].loading.udl.emplace().intensity = intensity;
    TELL_STRETCHES(drawn, loading);
    return loading.lanes[0].loading.udl->stretches.size();
  };
  EXPECT_EQ(told(30.0), 1U);
  EXPECT_EQ(told(29.999), 0U);
  drawn.value = 61.0;
  EXPECT_EQ(told(30.0), 0U);
}

TEST(PlotCanvas, TextsReachGnuplotAsTheyAre) {
  EXPECT_EQ(GNUPLOT_STRING("it's `x` \"y\"\n$(z)"), "'it''s `x` \"y\"?$(z)'");
}

}  // namespace
}  // namespace tools
