#include "modelkit/model_writer.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "modelkit/example_span.h"
#include "modelkit/random_model.h"

namespace modelkit {
namespace {

std::string temporary(const std::string& name) {
  return testing::TempDir() + "movload_" + name;
}

/// A reader of the directory on its own: bytes at places that the format names, nothing shared with the
/// writer.
struct byte_file {
  std::string bytes;

  explicit byte_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(in), {});
  }
  template <class T>
  T at(std::int64_t offset) const {
    T value{};
    if (offset < 0 || offset + static_cast<std::int64_t>(sizeof value) > std::ssize(bytes))
      throw std::out_of_range("behind the end of the file");
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
  }

  struct found {
    std::int64_t offset = -1;  // of the block's first byte; -1: not in the directory
    std::int64_t records = 0;
    std::int64_t length = 0;  // of a record in bytes
    [[nodiscard]] std::int64_t record(std::int64_t number) const { return offset + (number - 1) * length; }
  };

  found find(const std::string& tag, std::int32_t id, bool version_1 = false) const {
    const std::int64_t step = version_1 ? 20 : 28;
    for (std::int64_t header = 1; header != 0;) {
      const std::int64_t start = (header - 1) * step;
      EXPECT_EQ(bytes.substr(static_cast<std::size_t>(start), 4), "KVR ");
      EXPECT_EQ(at<std::int32_t>(start + 4), 2);
      EXPECT_EQ(at<float>(start + 8), version_1 ? 1.0F : 2.0F);
      EXPECT_EQ(at<std::int32_t>(start + 12), 20);
      for (std::int64_t entry = start + step; entry <= start + 20 * step; entry += step) {
        const std::string here = bytes.substr(static_cast<std::size_t>(entry), 4);
        if (here == "    ") return {};
        if (here != tag || at<std::int32_t>(entry + 4) != id) continue;
        const std::int64_t first = version_1 ? at<std::int32_t>(entry + 8) : at<std::int64_t>(entry + 8);
        const std::int64_t last = version_1 ? at<std::int32_t>(entry + 12) : at<std::int64_t>(entry + 16);
        const std::int64_t length = 4 * at<std::int32_t>(entry + (version_1 ? 16 : 24));
        return {.offset = (first - 1) * length, .records = last - first + 1, .length = length};
      }
      header = version_1 ? at<std::int32_t>(start + 16) : at<std::int64_t>(start + 16);
    }
    return {};
  }
};

TEST(model_writer, every_form_of_the_directory_leads_to_the_same_blocks) {
  std::mt19937_64 random(7);
  const T_MODEL model =
      RANDOM_MODEL(random, {.straddle_lanes = 1.0, .axle_lists = 1.0, .class_definitions = 1.0});
  std::map<std::string, std::string> expected;  // content of each block in the plain form
  for (const bool version_1 : {false, true}) {
    for (const int foreign_groups : {0, 1, 3}) {
      for (const int variant : {0, 1, 2, 3}) {
        const T_FILE_FORM form{.directory_version_1 = version_1,
                               .reverse_entries = variant % 2 == 1,
                               .unused_groups = foreign_groups,
                               .header_groups_behind = variant / 2 == 1};
        const T_FILE_LAYOUT layout = WRITE_MODEL(model, temporary("forms"), form);
        const byte_file file(layout.path);
        ASSERT_EQ(std::ssize(file.bytes), layout.size);
        ASSERT_EQ(std::ssize(layout.header_offsets), foreign_groups + 1);
        if (form.header_groups_behind && foreign_groups == 3) {
          EXPECT_GT(layout.header_offsets[1], layout.header_offsets[2]) << "the chain runs backwards";
        }
        for (const T_WRITTEN_BLOCK& block : layout.blocks) {
          const byte_file::found found = file.find(block.tag, block.id, version_1);
          ASSERT_EQ(found.offset, block.OFFSET(1)) << block.tag;
          EXPECT_EQ(found.offset + found.records * found.length, block.OFFSET(block.last - block.first + 2));
          EXPECT_EQ(file.bytes.substr(static_cast<std::size_t>(block.entry_offset), 4), block.tag);
          const std::string content = file.bytes.substr(
              static_cast<std::size_t>(found.offset), static_cast<std::size_t>(found.records * found.length));
          EXPECT_EQ(expected.try_emplace(block.tag, content).first->second, content) << block.tag;
        }
        EXPECT_EQ(file.find("MVIF", 7, version_1).offset, -1);
      }
    }
  }
  EXPECT_EQ(expected.size(), 17U);
}

TEST(model_writer, a_lane_stands_in_the_records_item_by_item) {
  T_MODEL model;
  model.unit_loads = 9;
  model.keep_points = true;
  model.lanes.resize(2);
  model.lanes[0].points.resize(3);
  T_LANE& lane = model.lanes[1];
  lane = {.points = {{.x = 2.5, .impact = 0.25, .entries = {{.a = {4, 0.5}, .b = {-1, 1.0}}}}},
          .spread_rows = {{{5, 0.125}, {6, 0.875}}},
          .direction = DIRECTION::REVERSE,
          .entries_per_point = 6,
          .entries_per_plane = 2,
          .keep_points = true,
          .is_straddle = true,
          .left_parent = 1,
          .right_parent = 7};
  const byte_file file(WRITE_MODEL(model, temporary("lane")).path);

  const byte_file::found counts = file.find("MVIF", 0);
  const std::int64_t mvif = counts.record(1);
  EXPECT_EQ(counts.length, 4 * 25);
  EXPECT_EQ(file.at<std::int32_t>(mvif + 4 * 1), 2);   // lanes
  EXPECT_EQ(file.at<std::int32_t>(mvif + 4 * 4), 3);   // points
  EXPECT_EQ(file.at<std::int32_t>(mvif + 4 * 15), 1);  // straddle lanes
  EXPECT_EQ(file.at<std::int32_t>(mvif + 4 * 17), 1);  // spread rows
  EXPECT_EQ(file.at<std::int32_t>(mvif + 4 * 21), 6);  // transverse entries
  EXPECT_EQ(file.at<std::int32_t>(mvif + 4 * 23), 1);  // points are kept

  const byte_file::found lanes = file.find("LNIF", 0);
  EXPECT_EQ(lanes.records, 4 + 4);
  const std::int64_t head = lanes.record(5);
  EXPECT_EQ(file.at<std::int32_t>(head), 2);
  EXPECT_EQ(file.at<std::int32_t>(head + 4), 1);
  EXPECT_EQ(file.at<std::int32_t>(head + 8), 1);
  EXPECT_EQ(file.at<std::int32_t>(head + 16), 1);
  EXPECT_EQ(file.at<std::int32_t>(head + 28), 1);
  EXPECT_EQ(file.at<std::int32_t>(head + 32), 6);
  EXPECT_EQ(file.at<std::int32_t>(head + 36), 2);
  EXPECT_EQ(file.at<std::int32_t>(head + 40), 1);
  EXPECT_EQ(file.at<std::int32_t>(lanes.record(6) + 4), 7);
  EXPECT_EQ(file.at<std::int32_t>(lanes.record(7)), 2);
  EXPECT_EQ(file.at<std::int32_t>(lanes.record(7) + 16), 6);
  EXPECT_EQ(file.at<double>(lanes.record(7) + 20), 0.875);
  const std::int64_t point = lanes.record(8);
  EXPECT_EQ(file.at<double>(point + 12), 2.5);
  EXPECT_EQ(file.at<double>(point + 20), 0.25);
  EXPECT_EQ(file.at<double>(point + 32), 4.0);
  EXPECT_EQ(file.at<double>(point + 32 + 16), -1.0);
  EXPECT_EQ(file.at<double>(point + 32 + 5 * 32), 0.0) << "entries without links are written as none";
}

TEST(model_writer, vehicles_combinations_and_classes_stand_where_they_are_read) {
  T_MODEL model = SIMPLE_SPAN_MODEL();
  model.lanes.push_back(model.lanes[0]);
  model.moving_load_cases = {{}, {.combinations = {{{1, 0.5}, {6, 2.0}}}}};
  model.class_lanes = true;
  model.class_definitions = {{.number = 12, .lane = 2, .b1 = 3, .links = {{{{7, 0.5}, {8, 0.25}}}, {{}}}}};
  model.axle_lists = {{.vehicle_class = 1, .lane = 2, .lanes = {1, 0}}};
  for (const bool long_form : {false, true}) {
    const byte_file file(WRITE_MODEL(model, temporary("tables"), {.long_vehicles = long_form}).path);
    const byte_file::found vehicles = file.find("VEHI", 0);
    EXPECT_EQ(vehicles.length, long_form ? 4868 : 1668);
    const std::int64_t vehicle = vehicles.record(2);
    EXPECT_EQ(file.at<std::int32_t>(vehicle + 4), 20);
    EXPECT_EQ(file.at<double>(vehicle + 28 + 24), 0.475);
    EXPECT_EQ(file.at<double>(vehicle + 64 + 8), 10.0);
    EXPECT_EQ(file.at<double>(vehicle + 64 + 8 * 99), 45.0);
    EXPECT_EQ(file.at<std::int32_t>(vehicle + 864), 4);
    EXPECT_EQ(file.at<double>(vehicle + 868 + 24), 5.0);
  }
  const byte_file file(temporary("tables") + ".ZA3");
  const byte_file::found combinations = file.find("MVLC", 0);
  ASSERT_EQ(combinations.records, 3) << "a case without combinations has its head record";
  EXPECT_EQ(file.at<std::int32_t>(combinations.record(3) + 4), 6);
  EXPECT_EQ(file.at<double>(combinations.record(3) + 8 + 8), 2.0);

  const byte_file::found shapes = file.find("PHSL", 0);
  EXPECT_EQ(file.at<std::int32_t>(shapes.record(1) + 4), 2);      // most pairs
  EXPECT_EQ(file.at<std::int32_t>(shapes.record(2) + 4), 12);     // number
  EXPECT_EQ(file.at<std::int32_t>(shapes.record(3) + 4), 2);      // points
  EXPECT_EQ(file.at<std::int32_t>(shapes.record(3) + 4 * 3), 3);  // b1
  const byte_file::found links = file.find("LVPF", 0);
  ASSERT_EQ(links.records, 2);
  EXPECT_EQ(file.at<double>(links.record(1)), 2.0);
  EXPECT_EQ(file.at<double>(links.record(1) + 24), 8.0);
  EXPECT_EQ(file.at<double>(links.record(2)), 0.0);
  const byte_file::found axles = file.find("MLIF", 0);
  EXPECT_EQ(file.at<std::int32_t>(axles.record(1)), 4) << "room for the four axles";
  EXPECT_EQ(file.at<std::int32_t>(axles.record(2) + 12), 2);
}

TEST(model_writer, responses_run_by_id_or_carry_their_node) {
  T_MODEL model;
  model.unit_loads = 2;
  const std::vector<std::vector<float>> values = {{1.0F, 2.0F}, {3.0F, 4.0F}};
  model.disp = {{.id = 3, .values = values}};
  model.reac = {{.id = 40, .values = values}, {.id = 12, .values = values}};
  model.ldisp = {{.id = 9, .values = values}, {.id = 5, .values = values}};
  model.elnk = {{.id = 2, .values = values}};
  const byte_file file(WRITE_MODEL(model, temporary("responses")).path);

  const byte_file::found disp = file.find("DISP", 5);
  ASSERT_EQ(disp.records, 6);
  EXPECT_EQ(file.at<float>(disp.record(1)), 0.0F);
  EXPECT_EQ(file.at<float>(disp.record(6) + 4), 4.0F);
  const byte_file::found reac = file.find("REAC", 5);
  ASSERT_EQ(reac.length, 28);
  EXPECT_EQ(file.at<float>(reac.record(2)), 40.0F);
  EXPECT_EQ(file.at<float>(reac.record(3)), 12.0F);
  EXPECT_EQ(file.at<float>(reac.record(3) + 8), 3.0F);
  const byte_file::found axes = file.find("NLAX", 0);
  EXPECT_EQ(file.at<std::int32_t>(axes.record(2)), 5);
  EXPECT_EQ(file.at<std::int32_t>(axes.record(2) + 4), 2);
  const byte_file::found links = file.find("ELNK", 5);
  ASSERT_EQ(links.length, 60);
  EXPECT_EQ(file.at<float>(links.record(4) + 12 + 4), 4.0F);
  EXPECT_TRUE(std::isnan(file.at<float>(links.record(4))));
}

TEST(model_writer, files_take_their_extension_and_failures_name_the_file) {
  const T_MODEL model = SIMPLE_SPAN_MODEL();
  const std::map<std::int32_t, std::string> extensions = {{0, ".ZA3"}, {1, ".YA3"},  {2, ".XA3"},
                                                          {3, ".WA3"}, {4, ".ZAX3"}, {101, ".YA3"}};
  for (const auto& [code, extension] : extensions)
    EXPECT_EQ(WRITE_MODEL(model, temporary("code"), {.analysis_code = code}).path,
              temporary("code") + extension);
  EXPECT_THROW(WRITE_MODEL(model, temporary("code"), {.analysis_code = 7}), std::runtime_error);
  try {
    WRITE_MODEL(model, temporary("no_such_folder") + "/model");
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("no_such_folder/model.ZA3"), std::string::npos);
  }
}

TEST(model_writer, one_word_can_be_changed_and_a_block_left_out) {
  const T_FILE_LAYOUT layout =
      WRITE_MODEL(SIMPLE_SPAN_MODEL(), temporary("word"), {.left_out = {"SIMB", "VEHI"}});
  const std::string before = byte_file(layout.path).bytes;
  EXPECT_THROW((void)layout.BLOCK("SIMB"), std::out_of_range);
  EXPECT_EQ(byte_file(layout.path).find("VEHI", 0).offset, -1);

  OVERWRITE_WORD(layout, "LNIF", 2, 3, std::bit_cast<std::int32_t>(1.5F));
  const byte_file after(layout.path);
  EXPECT_EQ(after.at<float>(after.find("LNIF", 0).record(2) + 12), 1.5F);
  ASSERT_EQ(after.bytes.size(), before.size());
  std::size_t changed = 0;
  for (std::size_t i = 0; i < before.size(); ++i) changed += after.bytes[i] != before[i] ? 1U : 0U;
  EXPECT_LE(changed, 4U);
}

}  // namespace
}  // namespace modelkit
