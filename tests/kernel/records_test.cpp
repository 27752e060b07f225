// Points of a segment, the check of combinations, and the texts of the host's arrays and of failures.
#include <gtest/gtest.h>

#include <set>

#include "kernel/diagnostic_dump.h"
#include "kernel/driver.h"
#include "kernel/failures.h"
#include "kernel/input_blocks.h"

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

TEST(points_per_segment, is_the_first_repeat_of_lane_1_that_the_other_lanes_confirm) {
  const std::vector<double> threes{0, 1, 2, 2, 3, 4};
  const std::vector<double> twos{0, 1, 1, 2, 2, 3, 3};
  const std::pair<std::vector<std::vector<double>>, std::int32_t> CASES[] = {
      {{}, 3},
      {{{0, 1, 2, 3, 4}}, 5},
      {{threes, {}, {0, 0, 1, 1, 2}}, 3},
      {{{}, twos}, 7},      // lane 1 alone chooses
      {{twos, threes}, 6},  // nothing confirms 2
      {{{0, 1, 2, 2 - 1e-11, 3}}, 3},
      {{{0, 1, 2, 2 + 1e-9, 3}}, 5},
  };
  for (const auto& [lines, points] : CASES) {
    std::vector<search::T_LANE> lanes(lines.size());
    for (std::size_t l = 0; l < lines.size(); ++l) {
      lanes[l].LANE_STATIONS = static_cast<std::int32_t>(lines[l].size());
      lanes[l].POINT_X = lines[l];
    }
    EXPECT_EQ(POINTS_PER_SEGMENT(lanes), points);
  }
}

/// Of every lane the type and position of its HB and its portion before the check, then position, portion
/// and combination type after it.
using CHECKED_LANES = std::vector<std::array<std::int32_t, 6>>;

TEST(closing_passes, the_combination_type_follows_from_hb_and_full_ha) {
  const CHECKED_LANES CASES[] = {
      // no HB; a type without a position is none
      {{0, 5, 1, 5, 1, 1}, {2, 0, 0, 0, 0, 1}, {0, 0, 11, 0, 11, 1}},
      // one HB; points are numbered anew with those that repeat, here every third
      {{0, 0, 0, 0, 1, 2}, {1, 3, 11, 4, 1, 2}, {0, 0, 10, 0, 1, 2}},
      // two HB with no, one and two lanes of full HA, and three HB
      {{1, 1, 0, 1, 1, 3}, {2, 2, 10, 2, 11, 3}, {0, 0, 100, 0, 101, 3}},
      {{1, 3, 0, 4, 0, 4}, {2, 4, 0, 5, 0, 4}, {0, 0, 1, 0, 1, 4}},
      {{1, 3, 1, 3, 1, 0}, {2, 4, 11, 4, 11, 0}},
      {{1, 3, 0, 3, 0, 0}, {2, 4, 0, 4, 0, 0}, {5, 5, 0, 5, 0, 0}},
      // a digit that says neither keeps what the lane before said, and is told
      {{1, 1, 1, 1, 1, 0}, {1, 1, 12, 1, 12, 0}},
  };
  for (const CHECKED_LANES& lanes : CASES) {
    SCOPED_TRACE(&lanes - CASES);
    const auto count = static_cast<std::int32_t>(lanes.size());
    HOST host(count);
    auto& records = host.arrays[MAX_SIDE].mload;
    std::int32_t lane = 0;
    std::int32_t messages = 0;
    for (const auto& check : lanes) {
      messages += check[2] % 10 > 1;
      records(TYPE_OF_HB, ++lane) = check[0];
      records(POSITION_OF_HB, lane) = check[1];
      records(HA_UDL_PORTION, lane) = check[2];
    }
    EXPECT_EQ(CHECK_LOAD_COMBINATION(host.view, count, 0, {.POINTS_PER_SEGMENT = 3}), messages);
    lane = 0;
    for (const auto& check : lanes) {
      EXPECT_EQ(records(POSITION_OF_HB, ++lane), check[3]);
      EXPECT_EQ(records(HA_UDL_PORTION, lane), check[4]);
      EXPECT_EQ(records(COMB_TYPE, lane), check[5]);
    }
  }
}

TEST(closing_passes, items_of_beams_and_walls_whose_lines_may_jump_keep_their_positions) {
  for (const std::int32_t item : {1, 30, 51, 65}) EXPECT_TRUE(IS_SECTION_ITEM(RK_WALL, item)) << item;
  for (const std::int32_t item : {31, 50, 66, 105}) EXPECT_FALSE(IS_SECTION_ITEM(RK_WALL, item)) << item;
  for (const std::int32_t item : {30, 31}) EXPECT_EQ(IS_SECTION_ITEM(RK_BEAM, item), item == 30);
  EXPECT_FALSE(IS_SECTION_ITEM(RK_PLATE, 1));
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

  // Fourteen sections of a title, headings and two rows, five further titles, and the two values.
  ASSERT_EQ(lines.size(), 14U * 4 + 5 + 2);
  const std::pair<std::size_t, std::string> BEGINNINGS[] = {
      {0, "DISTANCE OF RANGE"},
      {1, "DISTANCE_MAX_RANGE=======================MAXMAXMAXMAX========================="},
      {2, "LANE | DISTANCE OF POSITIVE INFL. RANGE -->"},
      {3, "  1      0.12500      0.00000      0.00000"},
      {12, "  1       -2147483647                 0"},
      {21, "  112345678       0       0       0       0       0       0       0       0********"},
      {40, "MLOADB====K_MNLOAD2ND========================MINMINMIN========================="},
      {41, "LANE COMB. TYPE        W (HA_UDL)        NO.LOADED RANGE   TYPE OF HB        POSITION OF HB"},
      {52, "  2       0      44       0"},
      {61, "======MAXIMUM========MINIMUM==========<FINAL>== "},
      {62, " 12345678.50000***************"},
  };
  for (const auto& [at, beginning] : BEGINNINGS) EXPECT_TRUE(lines[at].starts_with(beginning)) << lines[at];
  EXPECT_TRUE(lines[3].ends_with("*************      0.000001234567.00000")) << lines[3];
  EXPECT_TRUE(
      lines[43].ends_with("                 3                 0                 0                 0"));
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

}  // namespace
}  // namespace kernel
