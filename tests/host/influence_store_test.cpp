// The influence store as hosts use it: its life, every read, and damaged volumes.
#include <array>
#include <bit>
#include <filesystem>
#include <functional>
#include <numeric>

#include "modelkit/model_writer.h"
#include "modelkit/volume_writer.h"
#include "tests/host/host_call.h"
#include "tests/telling_response.h"
#include "tests/temporary_directory.h"

namespace {

using modelkit::T_MODEL;
using modelkit::T_VOLUME_BLOCK;
using modelkit::T_VOLUME_SET;
using row = std::vector<float>;
using ids = std::vector<std::int32_t>;

constexpr float HOST = host::UNTOUCHED;

void init(const std::string& base, const std::string& included = {}) {
  const auto include_length = static_cast<std::int32_t>(included.size());
  const auto length = static_cast<std::int32_t>(base.size());
  INIT_MOVING_INFLUENCE(&include_length, included.data(), &length, base.data());
}
void include(const std::string& path) {
  const auto length = static_cast<std::int32_t>(path.size());
  SET_INCLUDE_BLK(&length, path.data());
}
void remove_volumes(const std::string& path) {
  const auto length = static_cast<std::int32_t>(path.size());
  REMOVE_MOVING_INFLUENCE_FILE_PATH(&length, path.data());
}
/// Windows doesn't let a set be replaced that is still open.
modelkit::T_VOLUME_LAYOUT write(const T_VOLUME_SET& set, const std::string& base) {
  CLOSE_MOVING_INFLUENCE();
  return modelkit::WRITE_VOLUME_SET(set, base);
}
/// A failed test leaves no store to the next.
struct store_test : testing::Test {
  ~store_test() override { CLOSE_MOVING_INFLUENCE(); }
  TEMPORARY_DIRECTORY files;
};

enum READ { DISP, REAC, LREAC, ELEMENT, VIRTUAL_BAR, COMPOSITE_BAR };

row read_one(READ kind, std::int32_t id, std::int32_t load, std::int32_t ncomp, std::int32_t part = 1) {
  constexpr std::array READS{READ_DISP_INFLUENCE, READ_REAC_INFLUENCE, READ_LREAC_INFLUENCE,
                             READ_ELEMENT_INFLUENCE, READ_VIRTUAL_BAR_STRESS_INFLUENCE};
  row values(static_cast<std::size_t>(std::max(ncomp, 0) + 1), HOST);
  if (kind == COMPOSITE_BAR)
    READ_COMPOSITE_BAR_INFLUENCE(&id, &load, &part, &ncomp, values.data());
  else
    READS.at(kind)(&id, &load, &ncomp, values.data());
  EXPECT_EQ(values.back(), HOST) << "behind the row";
  values.pop_back();
  return values;
}

row read_all(READ kind, std::int32_t id, std::int32_t ncomp, std::int32_t loads, std::int32_t part = 1) {
  constexpr std::array READS{READ_DISP_INFLUENCE_ALL_LOAD, READ_REAC_INFLUENCE_ALL_LOAD,
                             READ_LREAC_INFLUENCE_ALL_LOAD, READ_ELEMENT_INFLUENCE_ALL_LOAD,
                             READ_VIRTUAL_BAR_STRESS_INFLUENCE_ALL_LOAD};
  row values(static_cast<std::size_t>(std::max(ncomp, 0) * loads + 1), HOST);
  if (kind == COMPOSITE_BAR)
    READ_COMPOSITE_BAR_INFLUENCE_ALL_LOAD(&id, &part, &ncomp, values.data());
  else
    READS.at(kind)(&id, &ncomp, values.data());
  EXPECT_EQ(values.back(), HOST) << "behind the rows";
  values.pop_back();
  return values;
}

ids supports(bool local = false) {
  std::int32_t number = host::UNTOUCHED;
  local ? GET_NUM_LOCAL_REACTION(&number) : GET_NUM_REACTION(&number);
  ids nodes(static_cast<std::size_t>(number));
  local ? GET_NUM_LOCAL_REACTION_IDS(nodes.data()) : GET_NUM_REACTION_IDS(nodes.data());
  return nodes;
}

/// A node 1 with one value under each load.
T_VOLUME_SET one_node(const row& values) {
  ids loads(values.size());
  std::iota(loads.begin(), loads.end(), 1);
  return {.load_ids = loads,
          .volumes = {{{.ids = {1}, .item_codes = {101}, .result_code = 101, .data = values},
                       {.ids = {1}, .item_codes = {401}, .result_code = 401, .data = values}}}};
}

TEST_F(store_test, its_life) {
  write(one_node({1, 2}), files.NAME("two"));
  write(one_node({7}), files.NAME("seven"));
  write(one_node({8, 9}), files.NAME("included"));
  write({.header_word = 0}, files.NAME("empty"));
  write({}, files.NAME("no loads"));
  const row closed = {HOST, HOST, HOST, HOST};
  struct STEP {
    const char* what;
    std::function<void()> call;
    row node;  // node 1 under loads 1 to 4
  };
  const std::string two = files.NAME("two");
  const STEP STEPS[] = {
      {"nothing was opened", [] {}, closed},
      {"close without a store", [] { CLOSE_MOVING_INFLUENCE(); }, closed},
      {"open", [&] { init(two); }, {1, 2, 0, 0}},
      {"open another", [&] { init(files.NAME("seven")); }, {7, 0, 0, 0}},
      {"include while open", [&] { include(files.NAME("included")); }, {7, 0, 0, 0}},
      {"it counts for the next opening", [&] { init(two); }, {8, 9, 1, 2}},
      {"and for every other", [&] { init(files.NAME("seven")); }, {8, 9, 7, 0}},
      {"close forgets it", [&] { CLOSE_MOVING_INFLUENCE(), init(two); }, {1, 2, 0, 0}},
      {"include in the opening", [&] { init(two, "  " + files.NAME("included") + " "); }, {8, 9, 1, 2}},
      {"a path of blanks changes nothing", [&] { include("   "), init(two); }, {8, 9, 1, 2}},
      {"nor does one too long", [&] { include(std::string(1025, 'x')), init(two); }, {8, 9, 1, 2}},
      {"an included set that is missing", [&] { init(two, files.NAME("nowhere")); }, closed},
      {"stays the included set", [&] { init(two); }, closed},
      {"until a close", [&] { CLOSE_MOVING_INFLUENCE(), init(two); }, {1, 2, 0, 0}},
      {"a primary set that is missing", [&] { init(files.NAME("nowhere")); }, closed},
      {"an included set without data", [&] { init(two, files.NAME("empty")); }, closed},
      {"a primary set without data", [&] { CLOSE_MOVING_INFLUENCE(), init(files.NAME("empty")); }, closed},
      {"a path that is too long", [&] { init(std::string(1017, 'x')); }, closed},
      {"a set without loads", [&] { init(files.NAME("no loads")); }, {0, 0, 0, 0}},
      {"it may be included", [&] { init(two, files.NAME("no loads")); }, {1, 2, 0, 0}},
      {"remove does nothing", [] { REMOVE_MOVING_INFLUENCE(); }, {1, 2, 0, 0}},
      {"closed in the end", [] { CLOSE_MOVING_INFLUENCE(); }, closed},
  };
  for (const STEP& step : STEPS) {
    step.call();
    row node;
    for (std::int32_t load = 1; load <= 4; ++load) node.push_back(read_one(DISP, 1, load, 1).front());
    EXPECT_EQ(node, step.node) << step.what;
    EXPECT_EQ(supports(), node == closed || node[0] == 0 ? ids{} : ids{1}) << step.what;
    EXPECT_EQ(read_one(DISP, 1, 0, 2), node == closed ? row(2, HOST) : row(2, 0.0F)) << step.what;
    EXPECT_EQ(read_one(DISP, 1, INT32_MAX, 1), node == closed ? row{HOST} : row{0}) << step.what;
  }
  EXPECT_STRNE(movload_last_failure(), "");
  REMOVE_MOVING_INFLUENCE();
  EXPECT_STREQ(movload_last_failure(), "");
}

TEST_F(store_test, a_removal_deletes_the_volumes_that_are_there) {
  const auto left_of = [&](const T_VOLUME_SET& set, const std::function<void(const ids&)>& change) {
    const auto paths = write(set, files.NAME()).paths;
    change({});
    remove_volumes(files.NAME());
    return std::count_if(paths.begin(), paths.end(),
                         [](const auto& path) { return std::filesystem::exists(path); });
  };
  const std::string first = files.NAME("model_000.BLK");
  const T_VOLUME_SET set{.volumes = {{}, {}, {}, {}}};
  EXPECT_EQ(left_of(set, [](const ids&) {}), 0);
  EXPECT_EQ(left_of(set, [&](const ids&) { std::filesystem::remove(files.NAME("model_002.BLK")); }), 0);
  EXPECT_EQ(left_of(set, [&](const ids&) { std::filesystem::remove(first); }), 3);
  EXPECT_EQ(left_of(set, [&](const ids&) { std::filesystem::resize_file(first, 8); }), 4);
  EXPECT_EQ(left_of(set, [&](const ids&) { modelkit::OVERWRITE_WORD_AT(first, 0, 0); }), 4);
  EXPECT_EQ(left_of(set, [&](const ids&) { modelkit::OVERWRITE_WORD_AT(first, 8, INT32_MAX); }), 0);
}

TEST_F(store_test, every_read_gives_the_values_of_its_family_at_their_positions) {
  constexpr std::int32_t LOADS = 21;
  const auto telling = [](std::int32_t id, int values) { return TELLING_RESPONSE(id, values, LOADS); };
  struct ROW {
    READ kind;
    std::int32_t id, values;
    std::int32_t whole = 0;  // a shorter row goes without what is behind position `first_part`
    std::int32_t first_part = 0;
    std::int32_t part = 1;
  };
  for (const std::int32_t plate_form : {1, 2, 3, 4}) {
    const int plate_values = std::array{8, 40, 14, 70}.at(static_cast<std::size_t>(plate_form - 1));
    const int plate_forces = plate_form % 2 == 1 ? 8 : 40;
    T_MODEL model{.unit_loads = LOADS, .plate_form = plate_form};
    model.disp = {telling(3, 6)};
    model.reac = model.lrac = {telling(4, 6)};
    model.simb = {telling(11, 12)};
    model.elnk = {telling(12, 12)};
    model.nlnk = {telling(13, 12)};
    model.trusses = {telling(14, 2), telling(15, 2)};
    model.beams = {telling(16, 68)};
    model.plates = {telling(17, plate_values)};
    model.walls = {telling(18, 132)};
    const ROW ROWS[] = {{DISP, 3, 6},
                        {REAC, 4, 6},
                        {LREAC, 4, 6},
                        {ELEMENT, 11, 12},
                        {ELEMENT, 12, 12},
                        {ELEMENT, 13, 12},
                        {ELEMENT, 14, 2},
                        {ELEMENT, 15, 2},
                        {ELEMENT, 16, 68, 68, 48},
                        {ELEMENT, 17, plate_values, plate_values, plate_forces},
                        {ELEMENT, 18, 132, 132, 72},
                        {ELEMENT, 19, 78, 78, 24},
                        {VIRTUAL_BAR, 20, 300},
                        {COMPOSITE_BAR, 16, 35, 0, 0, 1},
                        {COMPOSITE_BAR, 16, 35, 0, 0, 3}};
    for (const std::int32_t included : {0, 8}) {
      CLOSE_MOVING_INFLUENCE();
      modelkit::WRITE_VOLUMES(model, files.NAME(),
                              {.volumes = 3,
                               .both_codes = true,
                               .foreign_blocks = true,
                               .included_loads = included,
                               .host_elements = {.composite_bars = {telling(16, 105)},
                                                 .virtual_bars = {telling(20, 300)},
                                                 .solids = {telling(19, 78)},
                                                 .composite_parts = 3}},
                              files.NAME("included"));
      CLOSE_MOVING_INFLUENCE();
      init(files.NAME(), included > 0 ? files.NAME("included") : "");
      for (const ROW& asked : ROWS) {
        for (const std::int32_t ncomp : {asked.values, asked.values + 3, asked.values - 1, 1, 0, -1}) {
          row expected;
          for (std::int32_t load = 1; load <= LOADS; ++load) {
            const std::size_t begin = expected.size();
            for (std::int32_t v = 1; v <= ncomp; ++v) {
              const bool is_there = v <= asked.values && (ncomp >= asked.whole || v <= asked.first_part);
              expected.push_back(is_there ? static_cast<float>(1000 * load + v + 35 * (asked.part - 1))
                                          : 0.0F);
            }
            ASSERT_EQ(read_one(asked.kind, asked.id, load, ncomp, asked.part),
                      row(expected.begin() + static_cast<std::ptrdiff_t>(begin), expected.end()))
                << "kind " << asked.kind << ", id " << asked.id << ", load " << load << ", ncomp " << ncomp;
          }
          ASSERT_EQ(read_all(asked.kind, asked.id, ncomp, LOADS, asked.part), expected)
              << "kind " << asked.kind << ", id " << asked.id << ", ncomp " << ncomp;
        }
      }
      for (const std::int32_t part : {-1, 0, 4})
        EXPECT_EQ(read_all(COMPOSITE_BAR, 16, 2, LOADS, part), row(42, 0.0F));
      for (const READ kind : {DISP, ELEMENT, VIRTUAL_BAR, COMPOSITE_BAR})
        EXPECT_EQ(read_all(kind, 999, 2, LOADS), row(42, 0.0F)) << kind;
    }
  }
}

/// An element block with so many items and points under one load; value k of each record is k.
T_VOLUME_BLOCK block_of(std::int32_t code, int items, int points, const ids& elements = {1},
                        std::int32_t other_item = 0) {
  T_VOLUME_BLOCK block{
      .tag = modelkit::STREAM_ELEMENTS, .ids = elements, .result_code = code, .points = points};
  for (int item = 1; item <= items; ++item) block.item_codes.push_back(code / 10000 * 10000 + item);
  if (other_item != 0) block.item_codes.back() = other_item;
  for (std::size_t id = 0; id < elements.size(); ++id)
    for (int k = 1; k <= items * points; ++k) block.data.push_back(static_cast<float>(k));
  return block;
}

TEST_F(store_test, shapes_that_models_have_not) {
  const auto read = [&](const std::vector<T_VOLUME_BLOCK>& blocks, std::int32_t ncomp, READ kind = ELEMENT,
                        std::int32_t part = 1) {
    write({.load_ids = {1}, .volumes = {blocks}}, files.NAME());
    init(files.NAME());
    row values = read_one(kind, 1, 1, ncomp, part);
    EXPECT_EQ(read_all(kind, 1, ncomp, 1, part), values);
    while (!values.empty() && values.back() == 0) values.pop_back();
    return values;
  };
  // Two points: nothing is interleaved. Three: the second and third are.
  EXPECT_EQ(read({block_of(140401, 2, 2)}, 68), (row{1, 2, 3, 4}));
  EXPECT_EQ(read({block_of(140401, 2, 3)}, 68), (row{1, 2, 5, 3, 6, 4}));
  // Item 4 at the five stations of elements with few points.
  const std::pair<int, row> STATIONS[] = {
      {1, {4, 0, 0, 0, 4}}, {2, {4, 0, 0, 0, 11}}, {4, {4, 11, 0, 0, 25}}, {5, {4, 11, 25, 0, 32}}};
  for (const auto& [points, firsts] : STATIONS) {
    row stresses(48, 0.0F);
    for (const float first : firsts)
      for (const float item : {0.0F, 1.0F, 2.0F, 3.0F}) stresses.push_back(first == 0 ? 0 : first + item);
    EXPECT_EQ(read({block_of(142101, 7, points)}, 68), stresses) << points;
  }
  // Items that a record lacks.
  EXPECT_EQ(read({block_of(412151, 2, 1)}, 6), (row{0, 0, 0, 1, 2}));
  // Beyond the limits of the layout: dropped.
  EXPECT_EQ(read({block_of(140401, 6, 12)}, 200).size(), 48U);
  EXPECT_EQ(read({block_of(410401, 10, 7)}, 200).size(), 40U);
  // An element of two families has none; composite bars are no family.
  EXPECT_EQ(read({block_of(140401, 2, 1), block_of(130401, 1, 1)}, 8), row{});
  EXPECT_EQ(read({block_of(140401, 2, 1), block_of(30'000'601, 2, 1, {1}, 30'001'001)}, 8), (row{1, 2}));
  // Blocks that no list wants, and one that can't be read.
  for (const std::int32_t code :
       {132101, 192101, 310401, 412101, 312102, 319102, 142201, 150401, 30'000'201, 80'000'006})
    EXPECT_EQ(read({block_of(code, 2, 1, {1}, 30'001'001), block_of(120401, 2, 1)}, 8), (row{1, 2})) << code;
  EXPECT_EQ(read({block_of(30'000'601, 2, 1, {1}, 0)}, 1), row{HOST});
  // The first block of bars tells their parts or their mark, wanted or not; without a mark there are no bars.
  EXPECT_EQ(read({block_of(30'000'201, 2, 1, {5}, 30'002'001), block_of(30'000'601, 4, 1, {1}, 30'001'001)},
                 35, COMPOSITE_BAR, 2),
            (row{3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 4}));
  EXPECT_EQ(read({block_of(80'000'007, 2, 1)}, 2, VIRTUAL_BAR), row{});
  EXPECT_EQ(read({block_of(80'000'006, 2, 1, {5}, 80'000'010), block_of(80'000'007, 2, 1)}, 2, VIRTUAL_BAR),
            (row{1, 2}));
}

TEST_F(store_test, sets_are_joined_by_id_and_a_support_may_be_in_one_alone) {
  const auto set_of = [](const ids& nodes, float value, std::int32_t code) {
    return T_VOLUME_SET{
        .load_ids = {1},
        .volumes = {
            {{.ids = nodes, .item_codes = {101}, .result_code = code, .data = row(nodes.size(), value)}}}};
  };
  struct CASE {
    ids included, primary, asked;
    row expected;  // both loads of each
    std::int32_t code = 101;
  };
  const CASE CASES[] = {
      {{1, 3, 5}, {1, 2, 4, 5}, {1, 2, 3, 4, 5}, {1, 2, 0, 2, 1, 0, 0, 2, 1, 2}},
      {{}, {1, 2}, {1, 2}, {0, 2, 0, 2}},
      {{1, 2}, {}, {1, 2}, {1, 0, 1, 0}},
      // of one count and with the same ends: taken for the same, row by row
      {{1, 3, 4, 9}, {1, 2, 4, 9}, {2, 3}, {1, 2, 1, 2}},
      // supports
      {{2, 3}, {1, 2, 3, 4}, {1, 2, 3, 4}, {0, 2, 1, 2, 1, 2, 0, 2}, 401},
      {{5}, {1, 9}, {1, 5, 9}, {0, 2, 1, 0, 0, 2}, 8401},
  };
  for (const CASE& c : CASES) {
    write(set_of(c.included, 1, c.code), files.NAME("included"));
    write(set_of(c.primary, 2, c.code), files.NAME());
    init(files.NAME(), files.NAME("included"));
    row got;
    for (const std::int32_t node : c.asked)
      for (const float value : read_all(c.code == 101 ? DISP : c.code == 401 ? REAC : LREAC, node, 1, 2))
        got.push_back(value);
    EXPECT_EQ(got, c.expected) << testing::PrintToString(c.included) << testing::PrintToString(c.primary);
    if (c.code != 101) {
      EXPECT_EQ(supports(c.code == 8401), c.asked);
    }
  }
}

TEST_F(store_test, the_primary_set_tells_where_the_stresses_of_plates_stand_under_all_loads) {
  const auto write_plate = [&](int force_points, const std::string& name) {
    T_VOLUME_SET set{.load_ids = {1}, .volumes = {{block_of(412151, 7, 5)}}};
    if (force_points > 0) set.volumes[0].push_back(block_of(410401, 8, force_points));
    write(set, name);
  };
  write_plate(5, files.NAME("included"));
  write_plate(1, files.NAME());
  init(files.NAME(), files.NAME("included"));
  // Behind one point, though the included set has the forces of five.
  row expected(70, 0.0F);
  std::iota(expected.begin(), expected.begin() + 40, 1.0F);
  for (std::size_t point = 0; point < 5; ++point) {
    float* to = &expected[8 + 6 * point];
    for (const int item : {5, 6, 7, 1, 2, 3}) *to++ = static_cast<float>(7 * static_cast<int>(point) + item);
  }
  row values = read_all(ELEMENT, 1, 70, 2);
  values.resize(70);
  EXPECT_EQ(values, expected);
  EXPECT_EQ(read_one(ELEMENT, 1, 1, 70).at(40), 5.0F);
  // An included set without stresses has zeros for them, in the same places.
  write({.load_ids = {1}, .volumes = {{block_of(410401, 8, 5)}}}, files.NAME("included"));
  init(files.NAME(), files.NAME("included"));
  std::fill_n(expected.begin() + 8, 30, 0.0F);
  values = read_all(ELEMENT, 1, 70, 2);
  values.resize(70);
  EXPECT_EQ(values, expected);
  write_plate(0, files.NAME("included"));
  init(files.NAME());
  EXPECT_EQ(read_one(ELEMENT, 1, 1, 70).at(8), 5.0F);
}

TEST_F(store_test, the_nodes_of_an_element_are_those_of_the_primary_set_in_file_order) {
  const T_VOLUME_SET included{.volumes = {{{.tag = modelkit::STREAM_GROUPS, .element_nodes = {{7, {9}}}}}}};
  const T_VOLUME_SET primary{
      .volumes = {{{.tag = modelkit::STREAM_GROUPS, .element_nodes = {{7, {4, 3}}, {5, {}}, {7, {8}}}}},
                  {{.tag = modelkit::STREAM_GROUPS,
                    .element_nodes = {{7, {4}}, {6, {1}}},
                    .second_groups = {{7, {2}}}}}}};
  write(included, files.NAME("included"));
  write(primary, files.NAME());
  init(files.NAME(), files.NAME("included"));
  const auto nodes_of = [](std::int32_t element) {
    ids nodes(5, host::UNTOUCHED);
    std::int32_t count = host::UNTOUCHED;
    GET_ELEMENT_NODE_INFO(&element, &count, nodes.data());
    if (count != host::UNTOUCHED) nodes.resize(static_cast<std::size_t>(count));
    return nodes;
  };
  EXPECT_EQ(nodes_of(7), (ids{4, 3, 8, 4}));
  EXPECT_EQ(nodes_of(6), ids{1});
  EXPECT_EQ(nodes_of(5), ids{});
  EXPECT_EQ(nodes_of(8), ids{});
  init(files.NAME("nowhere"));
  EXPECT_EQ(nodes_of(7), ids(5, host::UNTOUCHED));
}

TEST_F(store_test, a_record_behind_4_gb_is_read_where_it_lies) {
  constexpr std::int32_t NODES = 1000, LOADS = 200'000;
  const auto layout = modelkit::WRITE_VOLUME_SET(
      modelkit::LARGE_VOLUME_SET({.nodes = NODES, .beams = 0, .loads = LOADS, .volumes = 1}), files.NAME());
  const std::int64_t end = layout.blocks.back().data_offset + NODES * layout.blocks.back().record_bytes;
  modelkit::OVERWRITE_WORD_AT(layout.paths[0], end - 4, std::bit_cast<std::int32_t>(2.5F));
  init(files.NAME());
  EXPECT_EQ(read_one(DISP, NODES, LOADS, 6), (row{0, 0, 0, 0, 0, 2.5F}));
  EXPECT_EQ(read_all(DISP, NODES, 6, LOADS).back(), 2.5F);
}

TEST_F(store_test, counts_beyond_the_file_and_volumes_that_lack_fail) {
  struct CHANGE {
    std::int64_t offset;
    std::int32_t word;
    const char* failure;
  };
  T_VOLUME_SET set = one_node({1, 2});
  set.volumes.push_back(set.volumes[0]);
  const auto paths = write(set, files.NAME()).paths;
  const CHANGE CHANGES[] = {
      {0, -3, ": the volumes hold no influence data (header word -3)"},
      {8, 0, ": byte 8: N_VOLUMES is 0, outside 1 to 1000"},
      {8, 1001, ": byte 8: N_VOLUMES is 1001, outside 1 to 1000"},
      {24, -4, ": byte 24: LOAD_TABLE_OFFSET is 4294967292"},
      {36, -1, ": byte 36: N_LOADS is -1"},
      {36, 1 << 30, ": byte 36: N_LOADS is 1073741824"},
      {52, -1, ": byte 52: N_IDS is -1"},
      {64, 1 << 29, ": byte 64: N_ITEMS is 536870912"},
  };
  for (const CHANGE& change : CHANGES) {
    write(set, files.NAME());
    modelkit::OVERWRITE_WORD_AT(paths[0], change.offset, change.word);
    init(files.NAME());
    EXPECT_TRUE(std::string_view(movload_last_failure()).starts_with(paths[0] + change.failure))
        << movload_last_failure();
  }
  write(set, files.NAME());
  std::filesystem::remove(paths[1]);
  init(files.NAME());
  EXPECT_EQ(movload_last_failure(), paths[1] + ": the file can't be opened");
}

TEST_F(store_test, a_volume_that_is_cut_while_it_is_open_reads_as_zeros) {
  constexpr std::int32_t LOADS = 4000;  // a record of several pages
  row values(LOADS * 2, 5.0F);
  modelkit::T_VOLUME_BLOCK block{.ids = {1, 2}, .item_codes = {101}, .result_code = 101, .data = values};
  const auto layout = write({.load_ids = ids(LOADS, 1), .volumes = {{block}, {block}}}, files.NAME());
  init(files.NAME());
  EXPECT_EQ(read_one(DISP, 2, LOADS, 1), row{5});
  EXPECT_EQ(read_all(DISP, 2, 1, LOADS), row(LOADS, 5.0F));
  const std::int64_t end_of_first = layout.blocks[1].data_offset + layout.blocks[1].record_bytes;
  std::error_code refused;
  std::filesystem::resize_file(layout.paths[1], static_cast<std::uintmax_t>(end_of_first + 8), refused);
  if (refused) GTEST_SKIP() << "Windows doesn't let a mapped file be cut: " << refused.message();
  EXPECT_EQ(read_all(DISP, 2, 1, LOADS), row(LOADS, 0.0F));
  EXPECT_EQ(movload_last_failure(), layout.paths[1] + ": byte " + std::to_string(end_of_first) +
                                        ": the volume ends before what is to be read there");
  EXPECT_EQ(read_one(DISP, 2, 1, 2), (row{0, 0}));
  EXPECT_EQ(read_all(DISP, 1, 1, LOADS), row(LOADS, 5.0F));
  EXPECT_STREQ(movload_last_failure(), "");
}

}  // namespace
