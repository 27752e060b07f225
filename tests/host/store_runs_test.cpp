// Runs on influence volumes give what runs on blocks and element files give, bit for bit, with and without an
// included set.
#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <random>
#include <string>

#include "modelkit/example_bridge.h"
#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "modelkit/volume_writer.h"
#include "tests/host/host_call.h"
#include "tests/host/result_items.h"
#include "tests/host/tiny_model.h"
#include "tests/temporary_directory.h"

namespace {

using modelkit::T_MODEL;
using modelkit::T_RESPONSE;
using plain::KIND;
using plain::KINDS;

void include(const std::string& path) {
  const auto length = static_cast<std::int32_t>(path.size());
  SET_INCLUDE_BLK_BS5400(&length, path.data());
}

/// The base names of a set of volumes and of one that is to be included with it; empty: none.
struct SETS {
  std::string primary, included;
};

/// A run on blocks and element files, and those on volumes.
void expect_same(int lanes, const std::string& base, std::initializer_list<SETS> volumes, int kind, int id,
                 int item, int mv_case) {
  const host::ARGUMENTS expected = host::RUN(lanes, base, 0, kind, id, item, mv_case);
  EXPECT_EQ(expected.MODE_CODE, 0) << movload_last_failure();
  for (const SETS& sets : volumes) {
    if (!sets.included.empty()) include(sets.included);
    host::ARGUMENTS got = host::RUN(lanes, sets.primary, 100, kind, id, item, mv_case);
    EXPECT_EQ(got.MODE_CODE, 100) << movload_last_failure();
    got.MODE_CODE = 0;
    EXPECT_TRUE(host::SAME(expected, got))
        << sets.primary << ", kind " << kind << ", id " << id << ", item " << item << ", case " << mv_case;
  }
}

TEST(store_runs, every_kind_of_random_models_is_the_same_in_volumes) {
  for (std::uint64_t seed = 1; seed <= 40; ++seed) {
    const TEMPORARY_DIRECTORY files;
    std::mt19937_64 random(seed);
    const auto between = [&](int low, int high) {
      return std::uniform_int_distribution<int>(low, high)(random);
    };
    T_MODEL model = modelkit::RANDOM_MODEL(
        random, {.other_sub_cases = 0.5, .straddle_lanes = 0.5, .axle_lists = 0.3, .class_definitions = 0.3});
    // The last of several elements is 0, so that a set may leave it out.
    for (const KIND& kind : KINDS)
      if (auto& responses = model.*kind.RESPONSES; kind.OF_ELEMENTS && responses.size() > 1)
        for (auto& line : responses.back().values) std::ranges::fill(line, 0.0F);
    model.elements_per_file = 1000;
    model = modelkit::NUMBER_ELEMENTS_APART(model);
    modelkit::WRITE_MODEL(model, files.NAME());
    modelkit::WRITE_VOLUMES(model, files.NAME(),
                            {.volumes = between(1, 4),
                             .ids_per_block = between(0, 3),
                             .lists_in_turn = between(0, 1) == 1,
                             .both_codes = true,
                             .foreign_blocks = between(0, 1) == 1,
                             .included_loads = seed % 3 == 0 ? 0 : between(0, model.unit_loads),
                             .leave_out_zeros = seed % 2 == 0},
                            files.NAME("included"));
    const bool has_included = std::filesystem::exists(files.NAME("included_000.BLK"));
    const std::string included = has_included ? files.NAME("included") : "";
    for (const KIND& kind : KINDS) {
      const auto& responses = model.*kind.RESPONSES;
      for (int request = 0; request < 3; ++request) {
        const T_RESPONSE& response =
            responses[static_cast<std::size_t>(between(0, static_cast<int>(std::ssize(responses)) - 1))];
        expect_same(
            static_cast<int>(model.lanes.size()), files.NAME(), {{files.NAME(), included}}, kind.RESULT_KIND,
            response.id, between(1, plain::ITEMS_OF(kind, model)),
            between(1, static_cast<int>(std::max<std::ptrdiff_t>(1, std::ssize(model.moving_load_cases)))));
      }
    }
    if (testing::Test::HasFailure()) FAIL() << "seed " << seed;
  }
}

// Every item of every id that is stored, of the moving load cases one after the other.
TEST(store_runs, every_result_of_the_bridge_is_the_same_in_volumes) {
  const T_MODEL model = modelkit::EXAMPLE_BRIDGE().model;
  const TEMPORARY_DIRECTORY files;
  const SETS whole{files.NAME(), ""};
  const SETS divided{files.NAME("divided"), files.NAME("included")};
  modelkit::WRITE_MODEL(model, whole.primary);
  modelkit::WRITE_VOLUMES(model, whole.primary);
  modelkit::WRITE_MODEL(model, divided.primary, {.responses = false});
  modelkit::WRITE_VOLUMES(model, divided.primary, {.volumes = 3, .included_loads = 150}, divided.included);
  int questions = 0;
  for (const KIND& kind : KINDS) {
    for (const T_RESPONSE& response : model.*kind.RESPONSES) {
      for (int item = 1; item <= plain::ITEMS_OF(kind, model); ++item)
        expect_same(static_cast<int>(model.lanes.size()), whole.primary, {whole, divided}, kind.RESULT_KIND,
                    response.id, item, questions++ % modelkit::BRIDGE_CASE_HB_ANY + 1);
    }
  }
  EXPECT_EQ(questions, 355 * 6 + 20 * 6 + 5 * 12 + 20 * 2 + 15 * 50 + 4 * 8);
}

T_MODEL two_loads() {
  T_MODEL model = host::TWO_LOADS_MODEL();
  model.disp = model.ldisp = model.reac = model.lrac = {{.id = 4, .values = {{3.0F, -5.0F}}}};
  return model;
}

TEST(store_runs, a_result_that_is_not_stored_is_0_or_nothing_to_search) {
  const TEMPORARY_DIRECTORY files;
  const T_MODEL model = two_loads();
  modelkit::WRITE_MODEL(model, files.NAME(), {.responses = false});
  modelkit::WRITE_VOLUMES(model, files.NAME());
  const auto greatest = [&](int kind, int id) {
    return host::RUN(1, files.NAME(), 100, kind, id, 1, 1).FINAL_MAX;
  };
  for (const int kind : {MOVLOAD_RK_DISP, MOVLOAD_RK_LDSP, MOVLOAD_RK_REAC, MOVLOAD_RK_LRAC}) {
    EXPECT_EQ(greatest(kind, 4), 3.0) << kind << movload_last_failure();
    EXPECT_EQ(greatest(kind, 5), kind == MOVLOAD_RK_DISP ? 0.0 : host::UNTOUCHED) << kind;
  }
  EXPECT_EQ(greatest(MOVLOAD_RK_BEAM, 4), 0.0);

  // Supports are those of the primary set, also where one of the included set shares a row with another.
  const auto write = [](const std::vector<std::int32_t>& supports, const std::string& name) {
    modelkit::WRITE_VOLUME_SET(
        {.load_ids = {1},
         .volumes = {{{.ids = supports, .item_codes = {1}, .result_code = 401, .data = {1, 2, 3, 4}}}}},
        name);
  };
  write({1, 2, 3, 9}, files.NAME());
  write({1, 3, 4, 9}, files.NAME("included"));
  for (const int id : {3, 4}) {
    include(files.NAME("included"));
    EXPECT_EQ(greatest(MOVLOAD_RK_REAC, id), id == 3 ? 2.0 : host::UNTOUCHED);
  }
}

TEST(store_runs, a_run_tells_what_is_wrong_with_the_volumes_and_forgets_the_included_set) {
  const TEMPORARY_DIRECTORY files;
  const T_MODEL model = two_loads();
  modelkit::WRITE_MODEL(model, files.NAME());
  const auto failure = [&]() {
    const host::ARGUMENTS before(1);
    host::ARGUMENTS got = host::RUN(1, files.NAME(), 100, MOVLOAD_RK_DISP, 4, 1, 1);
    EXPECT_EQ(got.MODE_CODE == -1, std::string_view(movload_last_failure()) != "");
    if (got.MODE_CODE == -1) {
      got.MODE_CODE = 0;
      EXPECT_TRUE(host::SAME(before, got));
    }
    return std::string(movload_last_failure());
  };
  EXPECT_EQ(failure(), files.NAME("model_000.BLK") + ": the file can't be opened");
  const auto sets = modelkit::WRITE_VOLUMES(model, files.NAME(), {.volumes = 5, .included_loads = 1},
                                            files.NAME("included"));
  EXPECT_EQ(failure(), files.NAME("model.ZA3") +
                           ": the influence store has 1 unit loads, the model 2: an included "
                           "set is missing or one too many");
  include(files.NAME("included"));
  EXPECT_EQ(failure(), "");
  EXPECT_NE(failure(), "");  // the run before has forgotten it
  include(files.NAME("included"));
  std::filesystem::resize_file(sets.included.paths[3], 4);
  EXPECT_EQ(failure().find(sets.included.paths[3] + ": byte 4: the volume ends"), 0U)
      << movload_last_failure();
}

}  // namespace
