// The closing passes over the host's records, their text, the text of failures, and the wall items.
#include <gtest/gtest.h>

#include <set>

#include "kernel/diagnostic_dump.h"
#include "kernel/driver.h"
#include "kernel/failures.h"

namespace kernel {
namespace {

/// The host's arrays for a few lanes, cleared.
struct HOST {
  explicit HOST(std::int32_t lanes) {
    for (std::size_t side = 0; side < N_SIDES; ++side) {
      auto& [mload, mloadb, infl_s, infl_sb, distances] = arrays[side];
      for (auto* record : {&mload, &mloadb[0], &mloadb[1]}) record->RESIZE(10, lanes);
      for (auto* numbers : {&infl_s, &infl_sb[0], &infl_sb[1]}) numbers->RESIZE(HOST_NUMBERS, lanes);
      distances.RESIZE(HOST_DISTANCES, lanes);
      view[side] = {mload.VIEW(),
                    {mloadb[0].VIEW(), mloadb[1].VIEW()},
                    infl_s.VIEW(),
                    {infl_sb[0].VIEW(), infl_sb[1].VIEW()},
                    distances.VIEW()};
    }
  }
  struct SIDE_ARRAYS {
    ARRAY<std::int32_t, FIELD, LANE> mload;
    std::array<ARRAY<std::int32_t, FIELD, LANE>, 2> mloadb;
    ARRAY<std::int32_t, NUMBER, LANE> infl_s;
    std::array<ARRAY<std::int32_t, NUMBER, LANE>, 2> infl_sb;
    ARRAY<real, NUMBER, LANE> distances;
  };
  std::array<SIDE_ARRAYS, N_SIDES> arrays;
  T_HOST_RECORDS view;
};

struct CHECK_CASE {
  /// Of every lane the type and position of its HB and its portion before the check, then position, portion
  /// and combination type after it.
  std::vector<std::array<std::int32_t, 6>> lanes;
  std::int32_t messages = 0;
  T_POINT_RULES rules{.POINTS_PER_SEGMENT = 3};
  std::int32_t straddle_lanes = 0;
};
const CHECK_CASE CHECK_CASES[] = {
    // no HB; a type without a position is none
    {{{0, 5, 1, 5, 1, 1}, {2, 0, 0, 0, 0, 1}, {0, 0, 11, 0, 11, 1}}},
    // one HB
    {{{0, 0, 0, 0, 1, 2}, {1, 3, 11, 4, 1, 2}, {0, 0, 10, 0, 1, 2}}},
    // two HB with no, one and two lanes of full HA
    {{{1, 1, 0, 1, 1, 3}, {2, 2, 10, 2, 11, 3}, {0, 0, 100, 0, 101, 3}}},
    {{{1, 3, 0, 4, 0, 4}, {2, 4, 0, 5, 0, 4}, {0, 0, 1, 0, 1, 4}}},
    {{{1, 3, 1, 3, 1, 0}, {2, 4, 11, 4, 11, 0}}},
    // three HB
    {{{1, 3, 0, 3, 0, 0}, {2, 4, 0, 4, 0, 0}, {5, 5, 0, 5, 0, 0}}},
    // a digit that says neither keeps what the lane before said
    {{{1, 1, 1, 1, 1, 0}, {1, 1, 12, 1, 12, 0}}, 1},
    {{{1, 1, 0, 1, 1, 3}, {1, 1, 12, 1, 13, 3}}, 1},
    {{{1, 1, 12, 1, 12, 4}, {1, 1, 9, 1, 9, 4}, {0, 0, 1, 0, 1, 4}}, 2},
    // positions
    {{{1, 5, 0, 7, 1, 2}}},
    {{{1, 5, 0, 6, 1, 2}}, 0, {5}},
    {{{1, 5, 0, 5, 1, 2}}, 0, {1}},
    {{{1, 5, 0, 5, 1, 2}}, 0, {3, true, false, false}},
    {{{1, 5, 0, 5, 1, 2}}, 0, {3, false, true, false}},
    {{{1, 5, 0, 5, 1, 2}}, 0, {3, false, false, true}},
    // straddle lanes
    {{{0, 0, 0, 0, 0, 1}, {1, 5, 312, 5, 30021, 3}, {1, 5, 0, 5, 0, 0}}, 0, {3}, 2},
    {{{1, 5, 100, 5, 10001, 3}}, 0, {3}, 1},
};

TEST(closing_passes, the_combination_type_follows_from_hb_and_full_ha) {
  for (const CHECK_CASE& test : CHECK_CASES) {
    const auto lanes = static_cast<std::int32_t>(test.lanes.size());
    for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
      SCOPED_TRACE(&test - CHECK_CASES);
      HOST host(lanes);
      auto& records = host.arrays[side].mload;
      std::int32_t lane = 0;
      for (const auto& check : test.lanes) {
        records(TYPE_OF_HB, ++lane) = check[0];
        records(POSITION_OF_HB, lane) = check[1];
        records(HA_UDL_PORTION, lane) = check[2];
      }
      EXPECT_EQ(CHECK_LOAD_COMBINATION(host.view, lanes, test.straddle_lanes, test.rules), test.messages);
      lane = 0;
      for (const auto& check : test.lanes) {
        EXPECT_EQ(records(TYPE_OF_HB, ++lane), check[0]);
        EXPECT_EQ(records(POSITION_OF_HB, lane), check[3]);
        EXPECT_EQ(records(HA_UDL_PORTION, lane), check[4]);
        EXPECT_EQ(records(COMB_TYPE, lane), check[5]);
        EXPECT_EQ(host.arrays[side == MAX_SIDE ? MIN_SIDE : MAX_SIDE].mload(COMB_TYPE, lane),
                  lane > lanes - test.straddle_lanes ? 0 : 1);
      }
    }
  }
}

TEST(closing_passes, a_straddling_hb_replaces_its_parents_records_where_both_planes_carry_udl) {
  std::vector<search::T_LANE> lanes(5);
  lanes[3].IS_STRADDLE = lanes[4].IS_STRADDLE = true;
  lanes[3].STRADDLE_LEFT = 3;
  lanes[3].STRADDLE_RIGHT = lanes[4].STRADDLE_LEFT = 1;
  lanes[4].STRADDLE_RIGHT = 2;
  T_ENVELOPE envelope(5);
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    for (std::int32_t lane = 1; lane <= 5; ++lane) {
      T_LANE_LOADING& loading = envelope.LANES[side][static_cast<std::size_t>(lane - 1)];
      loading.PASS_OUT = lane;
      loading.MLOAD.fill(lane);
      loading.INFL_S = {lane, lane};
      for (const std::size_t plane : {0U, 1U}) {
        loading.MLOADB[plane].fill(10 * lane + static_cast<std::int32_t>(plane));
        loading.INFL_SB[plane] = {loading.MLOADB[plane][0]};
      }
      // Lane 4 carries UDL on both planes of the maximum side only, lane 5 on one plane at most.
      if (lane == 5 || side == MIN_SIDE) loading.MLOADB[side == MIN_SIDE ? 0 : 1][W_HA_UDL - 1] = 0;
    }
  }
  HOST host(5);
  COPY_TO_HOST(envelope, host.view);
  host.arrays[MAX_SIDE].infl_s(1000, 1) = 5;  // the host's own entries are replaced too
  FOLD_STRADDLE_LANES(lanes, envelope, host.view);
  ADD_PASS_DIRECTION(envelope, host.view);

  const std::int32_t RECORDS[N_SIDES][5] = {{41, 2, 40, 4, 5}, {1, 2, 3, 4, 5}};
  const std::int32_t PASSES[N_SIDES][5] = {{4, 2, 4, 4, 5}, {1, 2, 3, 4, 5}};
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    for (std::int32_t lane = 1; lane <= 5; ++lane) {
      const std::int32_t record = RECORDS[side][lane - 1];
      const auto& [mload, mloadb, infl_s, infl_sb, distances] = host.arrays[side];
      for (std::int32_t field = 1; field <= 10; ++field)
        EXPECT_EQ(mload(field, lane), record + (field == COMB_TYPE ? 100 * PASSES[side][lane - 1] : 0));
      EXPECT_EQ(infl_s(1, lane), record);
      EXPECT_EQ(infl_s(2, lane), record >= 40 ? 0 : lane);
      EXPECT_EQ(infl_s(1000, lane), 0);
    }
  }
}

TEST(diagnostic_text, numbers_stand_right_in_their_fields_and_asterisks_fill_what_is_too_narrow) {
  HOST host(2);
  auto& high = host.arrays[MAX_SIDE];
  high.distances(1, 1) = 0.125F;
  high.distances(10, 1) = -1234567.0F;
  high.distances(200, 1) = 1234567.0F;
  high.mload(1, 1) = -2147483647;
  high.infl_s(1, 1) = 12345678;
  high.infl_s(10, 1) = -12345678;
  host.arrays[MIN_SIDE].mloadb[1](7, 2) = 3;
  host.arrays[MIN_SIDE].infl_sb[0](2, 2) = 44;
  std::istringstream text(DIAGNOSTIC_TEXT(host.view, 2, 12345678.5, -1234567890.25));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);

  const auto zeros = [](int count, const std::string& zero, std::size_t width) {
    std::string row;
    while (count-- > 0) row += std::string(width - zero.size(), ' ') + zero;
    return row;
  };
  const auto headings = [](std::size_t width, std::initializer_list<const char*> words) {
    std::string row = "LANE ";
    for (const std::string heading : words) row += heading + std::string(width - heading.size(), ' ');
    return row;
  };
  // Fourteen sections of a title, headings and two rows, five further titles, and the two values.
  ASSERT_EQ(lines.size(), 14U * 4 + 5 + 2);
  const std::pair<std::size_t, std::string> LINES[] = {
      {0, "DISTANCE OF RANGE"},
      {1, "DISTANCE_MAX_RANGE=======================MAXMAXMAXMAX========================="},
      {2, headings(40, {"| DISTANCE OF POSITIVE INFL. RANGE -->"})},
      {3, "  1      0.12500" + zeros(8, "0.00000", 13) + "*************" + zeros(1, "0.00000", 13) +
              "1234567.00000"},
      {6, headings(40, {"| DISTANCE OF NEGATIVE INFL. RANGE -->"})},
      {12, "  1       -2147483647" + zeros(9, "0", 18)},
      {20, headings(40, {"| SEQUENTIAL NO. OF LOADED RANGE -->"})},
      {21, "  112345678" + zeros(8, "0", 8) + "********"},
      {40, "MLOADB====K_MNLOAD2ND========================MINMINMIN========================="},
      {41, headings(18, {"COMB. TYPE", "W (HA_UDL)", "NO.LOADED RANGE", "TYPE OF HB", "POSITION OF HB",
                         "FACTOR", "0=1/3,1=1 HA_UDL"})},
      {43, "  2" + zeros(6, "0", 18) + zeros(1, "3", 18) + zeros(3, "0", 18)},
      {52, "  2       0      44" + zeros(8, "0", 8)},
      {61, "======MAXIMUM========MINIMUM==========<FINAL>== "},
      {62, " 12345678.50000***************"},
  };
  for (const auto& [at, line] : LINES) EXPECT_EQ(lines[at], line);
}

TEST(failure_text, every_reason_has_a_text_of_its_own_and_a_text_too_long_for_its_room_is_cut) {
  std::set<std::string> texts;
  for (int code = 1; code <= static_cast<int>(REASON::UNEXPECTED); ++code) {
    char text[300];
    FAILURE_TEXT(STATUS::FAILED(static_cast<REASON>(code), 7).IN("LNIF", 3), "a.ZA3", text, sizeof text);
    EXPECT_TRUE(std::string(text).starts_with("a.ZA3: block LNIF: record 3: ")) << text;
    EXPECT_TRUE(texts.insert(text).second) << text;
  }
  const std::string name(3000, 'n');
  const std::string whole = name + ": block LNIF: record 3: the record lies outside the block";
  for (std::size_t room = 0; room < 3100; ++room) {
    std::vector<char> text(room + 1, '#');
    FAILURE_TEXT(STATUS::FAILED(REASON::RECORD_ABSENT).IN("LNIF", 3), name, text.data(), room);
    ASSERT_EQ(text[room], '#');
    ASSERT_TRUE(room == 0 || whole.substr(0, room - 1) == text.data());
  }
}

TEST(wall_items, the_map_is_a_permutation_and_five_components_have_three_parts) {
  std::set<std::int32_t> targets;
  for (std::int32_t item = 1; item <= 105; ++item) targets.insert(ITEM_MAP(item));
  EXPECT_EQ(targets.size(), 105U);
  EXPECT_EQ(*targets.begin(), 1);
  EXPECT_EQ(*targets.rbegin(), 105);
  for (const std::int32_t outside : {-1, 0, 106}) EXPECT_EQ(ITEM_MAP(outside), 0);
  // clang-format off
  const std::array<std::int32_t, 3> PARTS[] = {{51, 4, 1}, {52, 4, 2}, {53, 4, 3}, {54, 10, 1}, {59, 16, 3},
                                               {60, 22, 1}, {65, 28, 3}, {4, 4, 0}, {31, 46, 0}, {105, 105, 0}};
  // clang-format on
  for (const auto& [item, component, part] : PARTS) {
    EXPECT_EQ(SPLIT_WALL_ITEM(item).ITEM, component) << item;
    EXPECT_EQ(SPLIT_WALL_ITEM(item).ITEM_PART, part) << item;
  }
  for (const std::int32_t item : {1, 30, 51, 65}) EXPECT_TRUE(IS_SECTION_ITEM(RK_WALL, item)) << item;
  for (const std::int32_t item : {31, 50, 66, 105}) EXPECT_FALSE(IS_SECTION_ITEM(RK_WALL, item)) << item;
  for (const std::int32_t item : {30, 31}) EXPECT_EQ(IS_SECTION_ITEM(RK_BEAM, item), item == 30);
  EXPECT_FALSE(IS_SECTION_ITEM(RK_PLATE, 1));
}

}  // namespace
}  // namespace kernel
