// The list that the truss routine leaves on unit 78.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "kernel/driver.h"
#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tests/temporary_directory.h"

namespace results {
namespace {

/// Two ordinary lanes and a straddle lane of three planes, where classes 1 and 2 have axles on other lanes.
/// Listed are the straddle lane's sets of class 1 alone, once for its two vehicles: class 2 has a definition
/// on lane 1 only. Of a lane beside that in hand a definition counts with any number but 0.
modelkit::T_MODEL listed_model() {
  modelkit::T_MODEL model{.unit_loads = 3, .lanes = std::vector<modelkit::T_LANE>(3)};
  for (modelkit::T_LANE& lane : model.lanes)
    lane.points = {{.x = 0.5, .entries = {{}}}, {.x = 123456.0, .entries = {{}}}};
  model.lanes[2].is_straddle = true;
  model.lanes[2].left_parent = 1;
  model.lanes[2].right_parent = 2;
  model.lanes[2].entries_per_point = 3;
  const modelkit::T_VEHICLE vehicle = modelkit::HA_1978_VEHICLE();
  model.vehicle_groups = {{.group = 1, .vehicles = {vehicle, vehicle}}, {.group = 2, .vehicles = {vehicle}}};
  model.vehicle_groups[1].vehicles[0].vehicle_class = 2;
  model.moving_load_cases = {
      {.combinations = {{{6, 1.0}, {0, 0.0}, {4, 1.0}}, {{2, 1.0}, {0, 0.0}, {8, 1.0}}}}};
  model.class_lanes = true;
  model.axle_lists = {{.vehicle_class = 1, .lane = 3, .lanes = {1, 0, 2, 3}},
                      {.vehicle_class = 2, .lane = 1, .lanes = {2, 0, 0, 0}},
                      {.vehicle_class = 2, .lane = 3, .lanes = {2, 0, 0, 0}}};
  model.class_definitions = {
      {.number = 1,
       .lane = 3,
       .entries_per_point = 3,
       .links = {{{{1, 1.0}}, {{2, 1.0}}, {{3, 1.0}}}, {{{1, 2.0}}, {{1, -1.0}}, {}}}},
      {.number = -2, .lane = 1, .entries_per_point = 3, .links = {{{{3, 0.5}}, {}, {}}}},
      {.group_row = 2, .number = 3, .lane = 1, .entries_per_point = 3, .links = {{{{3, 0.5}}, {}, {}}}}};
  model.trusses = {{.id = 1, .values = {{1.5F, -20.25F, 3e8F}, {7.0F, 7.0F, 7.0F}}}};
  return model;
}

std::string text_of(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(truss_list, shows_the_sets_of_component_1_and_stays_open_from_run_to_run) {
  const TEMPORARY_DIRECTORY files;
  const auto folder = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(files.NAME()).parent_path());
  kernel::T_REQUEST request;
  request.RESULT_KIND = kernel::RK_TRUSS;
  request.RESULT_ID = request.MV_CASE = 1;
  request.FILE_NAME = modelkit::WRITE_MODEL(listed_model(), files.NAME()).path;
  kernel::DIAGNOSTIC_UNIT unit;
  request.UNIT_78 = &unit;
  const auto run = [&](std::int32_t item) {
    request.RESULT_ITEM = item;
    kernel::RECORD_FILE file;
    kernel::T_MODEL model;
    kernel::T_ENVELOPE envelope(3);
    ASSERT_TRUE(kernel::READ_MODEL(file, request, 3, model).OK());
    ASSERT_TRUE(kernel::RUN_LANE_ANALYSIS(model, request, file, envelope).OK());
  };
  std::ofstream("fort.78") << "an older list\n";
  const std::string LIST =
      "FMT_MT_MULTI,NUM_SUB_LANE,N_MULTI_INFL=      3      3\n"
      "    1    0.5000       1.5000     -20.2500*************\n"
      "    2**********       3.0000      -1.5000       0.0000\n"
      "    1    0.5000*************       0.0000       0.0000\n"
      "    2**********       0.0000       0.0000       0.0000\n"
      "    1    0.5000       0.0000       0.0000       0.0000\n"
      "    2**********       0.0000       0.0000       0.0000\n";
  run(2);
  EXPECT_EQ(text_of("fort.78"), LIST);
  run(1);
  EXPECT_EQ(text_of("fort.78"), LIST + LIST);
  unit.CLOSE();
  run(1);
  EXPECT_EQ(text_of("fort.78"), LIST);
  std::filesystem::current_path(folder);
}

}  // namespace
}  // namespace results
