#include "modelkit/model_writer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "modelkit/example_span.h"
#include "tests/temporary_directory.h"

namespace modelkit {
namespace {

/// A reader of the directory on its own: bytes at places that the format names, nothing shared with the
/// writer.
struct byte_file {
  std::string bytes;
  bool version_1;

  byte_file(const std::string& path, bool is_version_1) : version_1(is_version_1) {
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

  found find(const std::string& tag, std::int32_t id) const {
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

/// An item by its place: 'i' a 32-bit integer, 'f' single and 'd' double precision.
struct T_ITEM {
  const char* tag;
  std::int32_t id;
  std::int64_t record, byte;
  char type;
  double value;
};
// clang-format off
const T_ITEM ITEMS[] = {
    {"MVIF", 0, 1, 4, 'i', 2}, {"MVIF", 0, 1, 16, 'i', 3},    // lanes, points
    {"MVIF", 0, 1, 60, 'i', 1}, {"MVIF", 0, 1, 68, 'i', 1},   // straddle lanes, spread rows
    {"MVIF", 0, 1, 80, 'i', 1}, {"MVIF", 0, 1, 92, 'i', 6}, {"MVIF", 0, 1, 100, 'i', 1},  // combinations, entries, points are kept
    {"LNIF", 0, 5, 0, 'i', 2}, {"LNIF", 0, 5, 4, 'i', 1}, {"LNIF", 0, 5, 8, 'i', 1}, {"LNIF", 0, 5, 16, 'i', 1},
    {"LNIF", 0, 5, 28, 'i', 1}, {"LNIF", 0, 5, 32, 'i', 6}, {"LNIF", 0, 5, 36, 'i', 2}, {"LNIF", 0, 5, 40, 'i', 1},
    {"LNIF", 0, 6, 4, 'i', 7},                                                           // right parent
    {"LNIF", 0, 7, 0, 'i', 2}, {"LNIF", 0, 7, 16, 'i', 6}, {"LNIF", 0, 7, 20, 'd', 0.875},  // spread row
    {"LNIF", 0, 8, 12, 'd', 2.5}, {"LNIF", 0, 8, 20, 'd', 0.25},                         // a point and its links
    {"LNIF", 0, 8, 32, 'd', 4}, {"LNIF", 0, 8, 48, 'd', -1}, {"LNIF", 0, 8, 192, 'd', 0},
    {"VEHI", 0, 2, 4, 'i', 20}, {"VEHI", 0, 2, 52, 'd', 0.475}, {"VEHI", 0, 2, 72, 'd', 10},
    {"VEHI", 0, 2, 856, 'd', 45}, {"VEHI", 0, 2, 864, 'i', 4}, {"VEHI", 0, 2, 892, 'd', 5},
    {"MVLC", 0, 3, 4, 'i', 6}, {"MVLC", 0, 3, 16, 'd', 2},    // a case without combinations has its head record
    {"PHSL", 0, 1, 4, 'i', 2}, {"PHSL", 0, 2, 4, 'i', 12},    // most pairs, number
    {"PHSL", 0, 3, 4, 'i', 2}, {"PHSL", 0, 3, 12, 'i', 3},    // points, b1
    {"LVPF", 0, 1, 0, 'd', 2}, {"LVPF", 0, 1, 24, 'd', 8}, {"LVPF", 0, 2, 0, 'd', 0},
    {"MLIF", 0, 1, 0, 'i', 4}, {"MLIF", 0, 2, 12, 'i', 2},
    {"DISP", 5, 1, 0, 'f', 0}, {"DISP", 5, 6, 4, 'f', 4},     // by id
    {"REAC", 5, 2, 0, 'f', 40}, {"REAC", 5, 3, 0, 'f', 12}, {"REAC", 5, 3, 8, 'f', 3},  // with their node
    {"NLAX", 0, 2, 0, 'i', 5}, {"NLAX", 0, 2, 4, 'i', 2}, {"ELNK", 5, 4, 16, 'f', 4},
};
// clang-format on

TEST(model_writer, blocks_and_items_stand_where_the_format_has_them) {
  T_MODEL model = SIMPLE_SPAN_MODEL();
  model.unit_loads = 2;
  model.keep_points = true;
  model.lanes.assign(2, {});
  model.lanes[0].points.resize(3);
  model.lanes[1] = {.points = {{.x = 2.5, .impact = 0.25, .entries = {{.a = {4, 0.5}, .b = {-1, 1.0}}}}},
                    .spread_rows = {{{5, 0.125}, {6, 0.875}}},
                    .direction = DIRECTION::REVERSE,
                    .entries_per_point = 6,
                    .entries_per_plane = 2,
                    .keep_points = true,
                    .is_straddle = true,
                    .left_parent = 1,
                    .right_parent = 7};
  model.moving_load_cases = {{}, {.combinations = {{{1, 0.5}, {6, 2.0}}}}};
  model.class_lanes = true;
  model.class_definitions = {{.number = 12, .lane = 2, .b1 = 3, .links = {{{{7, 0.5}, {8, 0.25}}}, {{}}}}};
  model.axle_lists = {{.vehicle_class = 1, .lane = 2, .lanes = {1, 0}}};
  const std::vector<std::vector<float>> values = {{1.0F, 2.0F}, {3.0F, 4.0F}};
  model.simb = {};
  model.disp = {{.id = 3, .values = values}};
  model.reac = {{.id = 40, .values = values}, {.id = 12, .values = values}};
  model.ldisp = {{.id = 9, .values = values}, {.id = 5, .values = values}};
  model.elnk = {{.id = 2, .values = values}};
  const T_FILE_FORM FORMS[] = {{},
                               {.long_vehicles = true, .reverse_entries = true},
                               {.unused_groups = 3, .header_groups_behind = true},
                               {.directory_version_1 = true, .unused_groups = 1}};
  const TEMPORARY_DIRECTORY files;
  for (const T_FILE_FORM& form : FORMS) {
    const T_FILE_LAYOUT layout = WRITE_MODEL(model, files.NAME(), form);
    const byte_file file(layout.path, form.directory_version_1);
    EXPECT_EQ(std::ssize(file.bytes), layout.size);
    EXPECT_EQ(std::ssize(layout.header_offsets), form.unused_groups + 1);
    EXPECT_EQ(file.find("VEHI", 0).length, form.long_vehicles ? 4868 : 1668);
    EXPECT_EQ(file.find("MVIF", 7).offset, -1);
    for (const T_WRITTEN_BLOCK& block : layout.blocks) {
      const byte_file::found found = file.find(block.tag, block.id);
      EXPECT_EQ(found.offset, block.OFFSET(1)) << block.tag;
      EXPECT_EQ(found.record(found.records + 1), block.OFFSET(block.last - block.first + 2)) << block.tag;
    }
    for (const auto& [tag, id, record, byte, type, value] : ITEMS) {
      const std::int64_t place = file.find(tag, id).record(record) + byte;
      const double is = type == 'i'   ? file.at<std::int32_t>(place)
                        : type == 'f' ? static_cast<double>(file.at<float>(place))
                                      : file.at<double>(place);
      EXPECT_EQ(is, value) << tag << ", byte " << byte << " of record " << record;
    }
  }
}

}  // namespace
}  // namespace modelkit
