// The loading that a run reports gives its values back.
#include "tests/host/reevaluation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "modelkit/example_bridge.h"
#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "tests/host/result_items.h"
#include "tests/temporary_directory.h"

namespace {

using modelkit::T_MODEL;
using modelkit::T_RESPONSE;

testing::AssertionResult is_explained(const T_MODEL& model, const std::string& base, int kind,
                                      const T_RESPONSE& response, int item, int mv_case,
                                      reevaluation::T_SEEN& seen) {
  constexpr int NO_CASE = 0;
  const auto run = [&](int its_case) {
    return host::RUN(static_cast<int>(model.lanes.size()), base, 0, kind, response.id, item, its_case);
  };
  const std::vector<int> values = plain::VALUES_OF(kind, item);
  const auto under_each_load = [&](int value) {
    return response.values.at(static_cast<std::size_t>(value) - 1);
  };
  const reevaluation::T_RESPONSES responses{under_each_load(values.front()), under_each_load(values.back()),
                                            plain::MAY_JUMP(kind, item)};
  return reevaluation::IS_EXPLAINED(model, responses, run(mv_case), run(NO_CASE), seen);
}

/// One vehicle for a class and one class for a combination; repeated points alike; no load in the parent
/// lanes of an HB with UDL by thirds; no two weights alike, so that no ordinate is nothing but a rounding
/// error and no two ranges are equally dense. Straddle lanes bring the same points for all lanes.
T_MODEL model_of(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  T_MODEL model = modelkit::RANDOM_MODEL(
      random, {.max_points = 120, .max_cases = 1, .other_sub_cases = 0.7, .straddle_lanes = 1.0});
  const auto any_change = [&] { return 1e-4 * static_cast<double>(random() % 1000); };
  for (auto& group : model.vehicle_groups) group.vehicles.resize(1);
  for (auto& lane : model.lanes) {
    lane.keep_points = false;
    for (auto& row : lane.spread_rows)
      for (auto& share : row) share.weight += any_change();
    for (std::size_t k = 0; k < lane.points.size(); ++k) {
      auto& point = lane.points[k];
      point.impact += any_change();
      for (auto& links : point.entries) links.a.weight += any_change();
      if (k > 0 && point.x == lane.points[k - 1].x) point = lane.points[k - 1];
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
  std::array<reevaluation::T_SEEN, 2> seen;  // on lines that can't jump, and on those that may
  for (std::uint64_t seed = 1; seed <= 80 && !HasFailure(); ++seed) {
    const T_MODEL model = model_of(seed);
    const TEMPORARY_DIRECTORY directory;
    modelkit::WRITE_MODEL(model, directory.NAME());
    const auto explain = [&](const plain::KIND& kind, const T_RESPONSE& response, int item) {
      const std::size_t may_jump = plain::MAY_JUMP(kind.RESULT_KIND, item) ? 1 : 0;
      EXPECT_TRUE(
          is_explained(model, directory.NAME(), kind.RESULT_KIND, response, item, 1, seen.at(may_jump)))
          << "seed " << seed << ", kind " << kind.RESULT_KIND << ", id " << response.id << ", item " << item;
    };
    for (const plain::KIND& kind : plain::KINDS) {
      // Several of the many items of beams and walls, of which about half may jump.
      const int items = plain::ITEMS_OF(kind, model), step = kind.ITEMS < 50 ? items : items / 4;
      for (const T_RESPONSE& response : model.*kind.RESPONSES)
        for (int item = 1 + static_cast<int>(seed) % step; item <= items; item += step)
          explain(kind, response, item);
    }
  }
  for (const char* name :
       {"HA alone", "HB in a lane, forward", "HB in a lane, reverse", "full UDL on both", "third on the left",
        "third on the right", "several ranges", "split ranges", "bridged ranges"})
    for (reevaluation::T_SEEN& of_layout : seen) EXPECT_GT(of_layout[name], 50) << name;
}

TEST(reevaluation, values_of_the_bridge_follow_from_the_reported_loading) {
  const modelkit::T_EXAMPLE bridge = modelkit::EXAMPLE_BRIDGE();
  const T_MODEL& model = bridge.model;
  const TEMPORARY_DIRECTORY directory;
  modelkit::WRITE_MODEL(model, directory.NAME());
  reevaluation::T_SEEN seen;
  for (const auto& [name, kind, id, item, unit] : bridge.results) {
    const auto& block = model.*plain::KIND_OF(kind)->RESPONSES;
    const auto response = std::ranges::find(block, id, &T_RESPONSE::id);
    ASSERT_NE(response, block.end()) << name;
    for (int mv_case = 1; mv_case <= static_cast<int>(model.moving_load_cases.size()); ++mv_case)
      EXPECT_TRUE(is_explained(model, directory.NAME(), kind, *response, item, mv_case, seen))
          << name << ", case " << mv_case;
  }
  EXPECT_GT(seen["HB in a lane, forward"], 10);
}

}  // namespace
