// Influence volumes: what stands where, and where values of a response go.
#include "modelkit/volume_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "modelkit/model_writer.h"
#include "tests/telling_response.h"
#include "tests/temporary_directory.h"

namespace modelkit {
namespace {

using words = std::vector<std::int32_t>;
constexpr std::int32_t U = std::bit_cast<std::int32_t>(UNREAD_WORD);

words words_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(in), {});
  words result(bytes.size() / 4);
  std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(result.data()));
  EXPECT_EQ(bytes.size() % 4, 0U);
  return result;
}

words joined(const std::vector<words>& parts) {
  words result;
  for (const words& part : parts) result.insert(result.end(), part.begin(), part.end());
  return result;
}

words reals(const std::vector<float>& values) {
  words result;
  for (const float value : values) result.push_back(std::bit_cast<std::int32_t>(value));
  return result;
}

TEST(volume_set, every_word_stands_where_the_format_has_it) {
  const TEMPORARY_DIRECTORY files;
  const T_VOLUME_SET set{
      .header_word = 5,
      .load_ids = {7, 9},
      .words_before_loads = 1,
      .volumes = {
          {{.ids = {3}, .item_codes = {31, 32}, .result_code = 401, .data = {1, 2, 3, 4}},
           {.tag = STREAM_GROUPS, .element_nodes = {{5, {8, 9}}, {6, {}}}, .second_groups = {{4, {2}}}},
           {.tag = 13, .ids = {-1, 2}}},
          {{.tag = STREAM_ELEMENTS, .ids = {4, 5}, .item_codes = {41}, .points = 2, .data = {8}}},
          {}}};
  WRITE_VOLUME_SET({.volumes = {{}, {}, {}, {}}}, files.NAME());  // an older set
  const T_VOLUME_LAYOUT layout = WRITE_VOLUME_SET(set, files.NAME());
  ASSERT_EQ(layout.paths, (std::vector{files.NAME("model_000.BLK"), files.NAME("model_001.BLK"),
                                       files.NAME("model_002.BLK")}));
  EXPECT_FALSE(std::filesystem::exists(files.NAME("model_003.BLK")));
  EXPECT_EQ(words_of(layout.paths[0]), joined({{5, U, 3, U, U, U, 36, 0, U, U, 2, 7, 9},
                                               {1, 1, 3, U, 2, 31, 32, U, 401},
                                               words(36, U),
                                               reals({1, 2, 3, 4}),
                                               {12, 2, 5, 2, 8, 9, 6, 0, 1, 4, 1, 2},
                                               {13, 2, -1, 2},
                                               {-1}}));
  EXPECT_EQ(words_of(layout.paths[1]), joined({{2, 2, 4, 5, U, 1, 41, U, 0},
                                               words(13, U),
                                               {2},
                                               words(22, U),
                                               reals({8, 0, 0, 0, 0, 0, 0, 0}),
                                               {-1}}));
  EXPECT_EQ(words_of(layout.paths[2]), words{-1});
  EXPECT_EQ(layout.blocks[3].volume, 2);
  EXPECT_EQ(layout.blocks[0].data_offset, 4 * (13 + 9 + 36));
  EXPECT_EQ(layout.blocks[3].record_bytes, 16);
  EXPECT_TRUE(VOLUME_PATH("x", 1000).ends_with("x_999.BLK"));
  EXPECT_THROW(VOLUME_PATH("x", 1001), std::runtime_error);
}

/// Where value v stands: in the block of a code with so many items, at a point and an item of its record.
struct T_PLACE {
  std::int32_t id, code, items;
  int point, item, value;
};
// clang-format off
constexpr T_PLACE PLACES[] = {
    {1, 101, 6, 1, 6, 6},
    {1, 120401, 6, 2, 6, 12}, {2, 520401, 6, 2, 1, 7}, {3, 540401, 6, 1, 5, 5},
    {4, 190401, 2, 1, 1, 1}, {4, 190401, 2, 2, 1, 2},  // an even truss has the other code
    // beams: the middle stations in pairs, the later first; stresses at stations 1, 2, 4, 6 and 8
    {5, 140401, 6, 1, 6, 6}, {5, 140401, 6, 3, 1, 7}, {5, 140401, 6, 2, 1, 8}, {5, 140401, 6, 2, 6, 18},
    {5, 140401, 6, 5, 1, 19}, {5, 140401, 6, 6, 6, 42}, {5, 140401, 6, 8, 1, 43},
    {5, 142101, 7, 1, 4, 49}, {5, 142101, 7, 4, 4, 57}, {5, 142101, 7, 8, 7, 68},
    {6, 420401, 8, 5, 8, 40}, {6, 412151, 7, 1, 5, 41}, {6, 412151, 7, 1, 1, 44}, {6, 412151, 7, 5, 3, 70},
    {7, 140401, 9, 3, 1, 7}, {7, 140401, 9, 1, 7, 49}, {7, 140401, 9, 3, 7, 52}, {7, 140401, 9, 2, 7, 53},
    {7, 140401, 9, 8, 9, 72}, {7, 142101, 19, 1, 5, 73}, {7, 142101, 19, 1, 12, 77},
    {7, 142101, 19, 2, 5, 85}, {7, 142101, 19, 8, 19, 132},
    // solids have no forces at their first point; composite bars have their second part behind the first
    {8, 319101, 3, 2, 1, 1}, {8, 319101, 3, 9, 3, 24}, {8, 312101, 6, 1, 1, 25}, {8, 312101, 6, 9, 6, 78},
    {5, 30'000'601, 6, 9, 1, 36}, {5, 30'000'101, 10, 8, 5, 35}, {5, 30'000'101, 10, 9, 2, 51},
    {9, 80'000'007, 4, 1, 3, 3},
};
// clang-format on

TEST(volume_writer, values_stand_where_they_are_read) {
  const auto telling_response = [](int id, int values) { return TELLING_RESPONSE(id, values, 2); };
  T_MODEL model{.unit_loads = 2};
  model.disp = {telling_response(1, 6)};
  model.simb = model.elnk = model.nlnk = {telling_response(1, 12)};
  model.trusses = {telling_response(1, 2)};
  model.beams = {telling_response(1, 68)};
  model.plates = {telling_response(1, 70)};
  model.walls = {telling_response(1, 132)};
  T_VOLUME_FORM form{.lists_in_turn = true, .both_codes = true, .foreign_blocks = true};
  form.host_elements = {.composite_bars = {telling_response(5, 70)},
                        .virtual_bars = {telling_response(9, 4)},
                        .solids = {telling_response(8, 78)},
                        .composite_parts = 2};
  EXPECT_THROW(VOLUME_SETS(model, form), std::invalid_argument);
  model = NUMBER_ELEMENTS_APART(model);
  const std::vector<T_VOLUME_BLOCK> blocks = VOLUME_SETS(model, form).primary.volumes.at(0);
  for (const auto& [id, code, items, point, item, value] : PLACES) {
    int found = 0;
    for (const T_VOLUME_BLOCK& block : blocks) {
      if (block.result_code != code || std::ssize(block.item_codes) != items) continue;
      ++found;
      EXPECT_EQ(block.ids, words{id}) << code;
      const int per_point = code / 10'000'000 == 3 ? items / 2 : items;  // of a composite bar in each part
      const auto at = static_cast<std::size_t>(2 * ((point - 1) * per_point + item - 1));
      ASSERT_LT(at + 1, block.data.size()) << code;
      EXPECT_EQ(block.data[at], static_cast<float>(1000 + value)) << code;
      EXPECT_EQ(block.data[at + 1], static_cast<float>(2000 + value)) << code;
    }
    EXPECT_EQ(found, 1) << code;
  }
}

}  // namespace
}  // namespace modelkit
