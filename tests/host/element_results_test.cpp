// Results of trusses, plates, beams and walls: a line may jump, and element files that can't be read fail the
// run.
#include <filesystem>

#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tests/host/host_call.h"
#include "tests/host/tiny_model.h"
#include "tests/temporary_directory.h"

namespace {

using modelkit::T_MODEL;
using modelkit::T_RESPONSE;

/// The shear at the middle of a span of 30 m, from 30 to 60 m of a lane of 90 m: as component 7, whose
/// columns differ at the section's point, and as component 1 with two points at the section.
T_MODEL shear_model(bool by_columns) {
  constexpr int SECTION = 45;
  T_MODEL model;
  modelkit::T_LANE lane;
  T_RESPONSE beam{.id = 1, .values = std::vector<std::vector<float>>(68)};
  const auto add_point = [&](int x, double before, double after) {
    beam.values[0].push_back(static_cast<float>(before));
    beam.values[6].push_back(static_cast<float>(before));
    beam.values[7].push_back(static_cast<float>(after));
    model.unit_loads = static_cast<std::int32_t>(beam.values[0].size());
    lane.points.push_back({.x = static_cast<double>(x), .entries = {{.a = {model.unit_loads, 1.0}}}});
  };
  for (int x = 0; x <= 90; ++x) {
    const bool on_deck = x > 30 && x < 60;
    const double before = on_deck ? (30 - x) / 30.0 : 0.0;
    const double after = on_deck ? (60 - x) / 30.0 : 0.0;
    if (x == SECTION && !by_columns) {
      add_point(x, before, before);
      add_point(x, after, after);
    } else if (x == SECTION) {
      add_point(x, before, after);
    } else {
      add_point(x, x < SECTION ? before : after, x < SECTION ? before : after);
    }
  }
  model.lanes = {lane};
  model.vehicle_groups = {{.vehicles = {modelkit::HA_1978_VEHICLE()}}};
  model.moving_load_cases = {{.combinations = {{{1, 1.0}}}}, {.combinations = {{{2, 1.0}}}}};
  model.beams = {beam};
  return model;
}

TEST(element_results, a_shear_jumps_by_1_at_its_section_and_an_axle_there_counts_on_its_worse_side) {
  const TEMPORARY_DIRECTORY files;
  for (const bool by_columns : {true, false}) {
    modelkit::WRITE_MODEL(shear_model(by_columns), files.NAME());
    const std::int32_t item = by_columns ? 7 : 1;
    // HA: 30 kN/m over 15 m of 0.5 to 0, and the knife edge of 120 kN at the section.
    const host::ARGUMENTS ha = host::RUN(1, files.NAME(), 0, MOVLOAD_RK_BEAM, 1, item, 1);
    EXPECT_NEAR(ha.FINAL_MAX, 30 * 3.75 + 120 * 0.5, 1e-3);
    EXPECT_NEAR(ha.FINAL_MIN, -ha.FINAL_MAX, 1e-3);
    EXPECT_EQ(ha.K_MXLOAD(8, 1), by_columns ? 46 : 47);
    EXPECT_EQ(ha.K_MNLOAD(8, 1), 46);
    const auto range = [](const host::LANES_OF<float>& distances) {
      return std::pair{distances(1, 1), distances(2, 1)};
    };
    EXPECT_EQ(range(ha.DISTANCE_MAX_RANGE), std::pair(45.0F, 60.0F));
    EXPECT_EQ(range(ha.DISTANCE_MIN_RANGE), std::pair(30.0F, 45.0F));
    // HB: axles of 450 kN at the section and 1.8, 7.8 and 9.6 m from it; the whole span lies in its zone.
    const host::ARGUMENTS hb = host::RUN(1, files.NAME(), 0, MOVLOAD_RK_BEAM, 1, item, 2);
    EXPECT_NEAR(hb.FINAL_MAX, 450 * (4 * 15 - 1.8 - 7.8 - 9.6) / 30, 1e-2);
    EXPECT_NEAR(hb.FINAL_MIN, -hb.FINAL_MAX, 1e-2);
  }
}

TEST(element_results, what_cant_be_read_fails_the_run_and_says_why) {
  const TEMPORARY_DIRECTORY files;
  const std::string base = files.NAME();
  T_MODEL model = host::TWO_LOADS_MODEL();
  const auto values = [](std::size_t count) { return std::vector<T_RESPONSE>{{2, {count, {1.0F, -1.0F}}}}; };
  model.trusses = values(2);
  model.beams = values(68);
  model.plates = values(70);
  model.walls = values(132);
  model.plate_form = 4;
  model.elements_per_file = 2;
  const modelkit::T_FILE_LAYOUT layout = modelkit::WRITE_MODEL(model, base);
  host::ARGUMENTS untouched(1);
  untouched.MODE_CODE = -1;
  const auto fails = [&](std::int32_t kind, std::int32_t id, std::int32_t item, const std::string& text) {
    EXPECT_TRUE(host::SAME(untouched, host::RUN(1, base, 0, kind, id, item, 1)));
    EXPECT_EQ(movload_last_failure(), layout.path + text);
  };
  struct T_KIND {
    std::int32_t kind, items;
    const char* letter;
  };
  for (const auto& [kind, items, letter] : {T_KIND{MOVLOAD_RK_TRUSS, 2, "T"},
                                            {MOVLOAD_RK_PLATE, 70, "P"},
                                            {MOVLOAD_RK_BEAM, 50, "B"},
                                            {MOVLOAD_RK_WALL, 105, "W"}}) {
    for (const std::int32_t item : {0, -7, items + 1})
      if (item != 51)  // of a beam: the call returns at once
        fails(kind, 2, item,
              ": RESULT_ITEM is " + std::to_string(item) + ", outside 1 to " + std::to_string(items));
    for (const std::int32_t id : {0, -2147483647 - 1})
      fails(kind, id, 1, ": RESULT_ID is " + std::to_string(id) + ", outside 1 to 2147483647");
    fails(kind, 19, 1, ": FILE_NO of the element is 10, outside 1 to 9");
    fails(kind, 3, 1, letter + std::string("2: the file can't be opened"));
  }
  std::filesystem::create_directory(layout.path + "T2");
  fails(MOVLOAD_RK_TRUSS, 3, 1, "T2: the file can't be opened");
  std::filesystem::resize_file(layout.path + "B1", 4 * 69 * 4 - 1);  // of element 2 the last record
  for (const std::int32_t item : {1, 50})
    fails(MOVLOAD_RK_BEAM, 2, item, "B1: record 4: the file ends before the record does");
  for (const std::int32_t form : {0, 5, 99, -1}) {
    modelkit::OVERWRITE_WORD(layout, "MVIF", 1, 7, 100 * form);
    fails(MOVLOAD_RK_PLATE, 2, 1, ": block MVIF: record 1: PLATE_FORM is 0, outside 1 to 4");
    modelkit::OVERWRITE_WORD(layout, "MVIF", 1, 7, form);
    fails(MOVLOAD_RK_PLATE, 2, 1,
          ": block MVIF: record 1: PLATE_FORM is " + std::to_string(form) + ", outside 1 to 4");
  }
  for (const auto& [word, kind] : {std::pair{1, MOVLOAD_RK_TRUSS}, {13, MOVLOAD_RK_WALL}}) {
    modelkit::OVERWRITE_WORD(layout, "MLDI", 1, word, 0);
    fails(kind, 2, 1, ": block MLDI: record 1: ELEM_PER_FILE is 0, outside 1 to 2147483647");
  }
}

}  // namespace
