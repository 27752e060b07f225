// Element files as the result routines read them, and the list that the truss routine leaves on unit 78.
#include "results/element_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "kernel/driver.h"
#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tests/temporary_directory.h"

namespace results {
namespace {

/// Response `value` of element `id` under unit load k is id + value / 100 + k / 10000, in the record's words.
modelkit::T_RESPONSE response(std::int32_t id, std::size_t values, std::size_t loads) {
  modelkit::T_RESPONSE response{.id = id, .values = std::vector(values, std::vector<float>(loads))};
  for (std::size_t value = 0; value < values; ++value)
    for (std::size_t k = 0; k < loads; ++k)
      response.values[value][k] =
          static_cast<float>(id) + static_cast<float>(100 * (value + 1) + k + 1) / 10000.0F;
  return response;
}

class element_files : public testing::Test {
 protected:
  void WRITE(std::int32_t unit_loads, std::int32_t elements_per_file, std::initializer_list<int> trusses) {
    modelkit::T_MODEL model{.unit_loads = unit_loads, .elements_per_file = elements_per_file};
    for (const int id : trusses)
      model.trusses.push_back(response(id, 2, static_cast<std::size_t>(unit_loads)));
    path_ = modelkit::WRITE_MODEL(model, files_.NAME()).path;
    counts_.N_UNIT_LOAD = unit_loads;
    counts_.ELEM_PER_FILE.fill(elements_per_file);
  }
  STATUS OPEN(std::int32_t element) { return reader_.OPEN(path_, counts_, 'T', element, 3); }
  void EXPECT_ELEMENT(std::int32_t element) {
    ASSERT_TRUE(OPEN(element).OK()) << element;
    const auto wanted = response(element, 2, static_cast<std::size_t>(counts_.N_UNIT_LOAD)).values;
    for (std::int32_t k = 1; k <= counts_.N_UNIT_LOAD; ++k) {
      const std::byte* record = nullptr;
      ASSERT_TRUE(reader_.READ_ELEMENT_RECORD(k, record).OK()) << k;
      kernel::UNPACK words(record + 4);
      for (const auto& line : wanted)
        ASSERT_EQ(words.NEXT<float>(), line[static_cast<std::size_t>(k - 1)]) << element << " " << k;
    }
  }
  void EXPECT_FAILS(std::int32_t element, REASON reason, const std::string& file, std::int64_t record) {
    const STATUS status = OPEN(element);
    EXPECT_EQ(status.reason, reason) << element;
    EXPECT_EQ(std::string(status.element_file.data(), 2), file);
    EXPECT_EQ(status.record, record);
  }

  TEMPORARY_DIRECTORY files_;
  std::string path_;
  kernel::T_COUNTS counts_;
  ELEMENT_READER reader_;
};

TEST_F(element_files, an_element_is_found_by_its_number_in_one_of_nine_files) {
  WRITE(4, 3, {1, 3, 4, 9, 25, 27});
  for (const int element : {1, 3, 4, 9, 25, 27}) EXPECT_ELEMENT(element);
  WRITE(1, 1, {1, 9});
  for (const int element : {1, 9}) EXPECT_ELEMENT(element);
  WRITE(200'000, 2, {2});  // more than is read at once
  EXPECT_ELEMENT(2);
}

TEST_F(element_files, what_cant_be_read_fails_with_file_and_record) {
  WRITE(4, 3, {4, 27});
  const std::string no_file(2, '\0');
  EXPECT_FAILS(28, REASON::OUT_OF_BOUNDS, no_file, 0);
  EXPECT_FAILS(0, REASON::OUT_OF_BOUNDS, no_file, 0);
  EXPECT_FAILS(std::numeric_limits<std::int32_t>::min(), REASON::OUT_OF_BOUNDS, no_file, 0);
  std::filesystem::resize_file(path_ + "T2", 8 * 12 - 1);  // of elements 4 to 6
  EXPECT_ELEMENT(4);
  EXPECT_FAILS(5, REASON::RECORD_CUT, "T2", 8);
  EXPECT_FAILS(6, REASON::RECORD_CUT, "T2", 9);
  counts_.N_UNIT_LOAD = std::numeric_limits<std::int32_t>::max();
  EXPECT_FAILS(6, REASON::RECORD_CUT, "T2", 2 * std::int64_t{counts_.N_UNIT_LOAD} + 1);
  std::filesystem::remove(path_ + "T2");
  EXPECT_FAILS(5, REASON::FILE_NOT_OPENED, "T2", 0);
  std::filesystem::create_directory(path_ + "T2");
  EXPECT_FAILS(5, REASON::FILE_NOT_OPENED, "T2", 0);
  counts_.ELEM_PER_FILE.fill(0);
  EXPECT_FAILS(5, REASON::OUT_OF_BOUNDS, no_file, 1);
}

/// Two ordinary lanes and a straddle lane of three planes, whose class has a definition there and on lane 1,
/// and axles on all three.
modelkit::T_MODEL listed_model() {
  modelkit::T_MODEL model{.unit_loads = 3, .lanes = std::vector<modelkit::T_LANE>(3)};
  for (modelkit::T_LANE& lane : model.lanes)
    lane.points = {{.x = 0.5, .entries = {{}}}, {.x = 123456.0, .entries = {{}}}};
  model.lanes[2].is_straddle = true;
  model.lanes[2].left_parent = 1;
  model.lanes[2].right_parent = 2;
  model.lanes[2].entries_per_point = 3;
  model.vehicle_groups = {{.group = 1, .vehicles = {modelkit::HA_1978_VEHICLE()}}};
  model.moving_load_cases = {{.combinations = {{{0, 0.0}, {0, 0.0}, {4, 1.0}}}}};
  model.class_lanes = true;
  model.axle_lists = {{.vehicle_class = 1, .lane = 3, .lanes = {1, 0, 2, 3}}};
  model.class_definitions = {
      {.number = 1,
       .lane = 3,
       .entries_per_point = 3,
       .links = {{{{1, 1.0}}, {{2, 1.0}}, {{3, 1.0}}}, {{{1, 2.0}}, {{1, -1.0}}, {}}}},
      {.number = 2, .lane = 1, .entries_per_point = 3, .links = {{{{3, 0.5}}, {}, {}}}}};
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
