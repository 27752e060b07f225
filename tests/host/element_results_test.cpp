// Results of trusses, plates, beams and walls: every item reads its own values, a line may jump, and element
// files that can't be read fail the run.
#include <filesystem>

#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tests/host/host_call.h"
#include "tests/temporary_directory.h"

namespace {

using modelkit::T_MODEL;
using modelkit::T_RESPONSE;

/// Value v of a record is 1000 - v under the first unit load and -v under the second.
T_RESPONSE telling_response(int values) {
  T_RESPONSE response{.id = 2};
  for (int v = 1; v <= values; ++v)
    response.values.push_back({static_cast<float>(1000 - v), static_cast<float>(-v)});
  return response;
}

/// One lane over two unit loads; its vehicle has a knife edge of 1 and nothing else, so that the envelope of
/// a component is its greatest and its least ordinate.
T_MODEL telling_model(int plate_form) {
  T_MODEL model{.unit_loads = 2, .plate_form = plate_form};
  model.lanes = {
      {.points = {{.x = 0.0, .entries = {{.a = {1, 1.0}}}}, {.x = 9.0, .entries = {{.a = {2, 1.0}}}}}}};
  model.vehicle_groups = {{.vehicles = {{.loads = {1.0}}}}};
  model.moving_load_cases = {{.combinations = {{{1, 1.0}}}}};
  model.trusses = {telling_response(2)};
  model.beams = {telling_response(68)};
  model.plates = {telling_response(70)};
  model.walls = {telling_response(132)};
  model.elements_per_file = 2;
  return model;
}

/// An item and the value of its record that it reads; of an item with two columns the first.
struct ITEM {
  std::int32_t kind, item;
  int value, columns = 1;
};
// clang-format off
constexpr ITEM ITEMS[] = {
    {MOVLOAD_RK_TRUSS, 1, 1}, {MOVLOAD_RK_TRUSS, 2, 2},
    {MOVLOAD_RK_BEAM, 1, 1}, {MOVLOAD_RK_BEAM, 6, 6}, {MOVLOAD_RK_BEAM, 7, 7, 2}, {MOVLOAD_RK_BEAM, 8, 9, 2},
    {MOVLOAD_RK_BEAM, 24, 41, 2}, {MOVLOAD_RK_BEAM, 25, 43}, {MOVLOAD_RK_BEAM, 30, 48},
    {MOVLOAD_RK_BEAM, 31, 49}, {MOVLOAD_RK_BEAM, 50, 68},
    {MOVLOAD_RK_WALL, 1, 1}, {MOVLOAD_RK_WALL, 4, 4}, {MOVLOAD_RK_WALL, 24, 41, 2}, {MOVLOAD_RK_WALL, 30, 48},
    {MOVLOAD_RK_WALL, 31, 73}, {MOVLOAD_RK_WALL, 35, 85}, {MOVLOAD_RK_WALL, 50, 124},
    {MOVLOAD_RK_WALL, 66, 77}, {MOVLOAD_RK_WALL, 97, 120}, {MOVLOAD_RK_WALL, 98, 125},
    {MOVLOAD_RK_WALL, 105, 132},
    // parts of the components 4, 10, 16, 22 and 28
    {MOVLOAD_RK_WALL, 51, 49}, {MOVLOAD_RK_WALL, 53, 51}, {MOVLOAD_RK_WALL, 54, 52, 2},
    {MOVLOAD_RK_WALL, 56, 56, 2}, {MOVLOAD_RK_WALL, 58, 60, 2}, {MOVLOAD_RK_WALL, 60, 64, 2},
    {MOVLOAD_RK_WALL, 62, 68, 2}, {MOVLOAD_RK_WALL, 63, 70}, {MOVLOAD_RK_WALL, 65, 72},
};
// clang-format on

TEST(element_results, every_item_reads_its_own_values) {
  const TEMPORARY_DIRECTORY files;
  const auto expect = [&](const ITEM& item) {
    const host::ARGUMENTS got = host::RUN(1, files.NAME(), 0, item.kind, 2, item.item, 1);
    EXPECT_EQ(got.FINAL_MAX, 1000 - item.value) << item.kind << " " << item.item << movload_last_failure();
    EXPECT_EQ(got.FINAL_MIN, -(item.value + item.columns - 1)) << item.kind << " " << item.item;
  };
  for (const auto& [form, items] : {std::pair{1, 8}, {2, 40}, {103, 14}, {4, 70}}) {
    modelkit::WRITE_MODEL(telling_model(form), files.NAME());
    expect({MOVLOAD_RK_PLATE, 1, 1});
    expect({MOVLOAD_RK_PLATE, items, items});
  }
  for (const ITEM& item : ITEMS) expect(item);
}

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
  const modelkit::T_FILE_LAYOUT layout = modelkit::WRITE_MODEL(telling_model(4), base);
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
