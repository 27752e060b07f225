// The library's searches against the judge on random lanes: every value, record and list, bit for bit.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/search/fields.h"
#include "tests/search/random_lines.h"

namespace {

constexpr std::uint64_t N_CASES = 10000;  // each in both layouts

struct T_FORM {
  const char* NAME;
  plain::HB_RESULT (*JUDGE)(const plain::HB_TASK&);
  search::HB_SEARCH* LIBRARY[2][2];  // by multi and layout
  bool BY_PARENT;
};
using namespace search;
// clang-format off
constexpr T_FORM FORMS[] = {
    {"HB_LANE", plain::HB_LANE, {{HB_LANE, HB_LANE_JUMP}, {HB_LANE_MULTI, HB_LANE_MULTI_JUMP}}, false},
    {"HB_STRADDLE_SUM", plain::HB_STRADDLE_SUM, {{HB_STRADDLE_SUM, HB_STRADDLE_SUM_JUMP}, {HB_STRADDLE_SUM_MULTI, HB_STRADDLE_SUM_MULTI_JUMP}}, false},
    {"HB_STRADDLE_THIRD", plain::HB_STRADDLE_THIRD, {{HB_STRADDLE_THIRD, HB_STRADDLE_THIRD_JUMP}, {HB_STRADDLE_THIRD_MULTI, HB_STRADDLE_THIRD_MULTI_JUMP}}, true}};
// clang-format on

template <class RECORD>
void add_record(FIELD_LIST& fields, const RECORD& record, const std::vector<int>& numbers) {
  fields.ADD("W_MILLI", record.W_MILLI);
  fields.ADD("LOADED_COUNT", record.LOADED_COUNT);
  fields.ADD("HB_TYPE", record.HB_TYPE);
  fields.ADD("HB_POSITION", record.HB_POSITION);
  fields.ADD("HB_CODE", record.HB_CODE);
  fields.ADD("NUMBERED", record.NUMBERED);
  fields.ADD("range numbers", numbers);
}

FIELD_LIST fields_of(const T_SEARCH_RESULT& result) {
  FIELD_LIST fields;
  for (const T_SIDE_RESULT& side : result) {
    fields.ADD("VALUE", side.VALUE);
    fields.ADD("PASS_REC", side.PASS_REC);
    add_record(fields, side.HB_REC, side.INFL_REC);
    for (const std::size_t parent : {0U, 1U})
      add_record(fields, side.HB_REC_PLANES[parent], side.INFL_REC_PLANES[parent]);
  }
  return fields;
}

FIELD_LIST fields_of(const plain::HB_RESULT& result, bool by_parent) {
  const plain::HB_PART none;
  FIELD_LIST fields;
  for (const plain::HB_SIDE& side : result) {
    fields.ADD("VALUE", side.VALUE);
    fields.ADD("PASS_REC", side.PASS_REC);
    const plain::HB_PART& own = by_parent ? none : side.PARTS[0];
    add_record(fields, own, own.NUMBERS);
    for (const plain::HB_PART& part : side.PARTS)
      add_record(fields, by_parent ? part : none, by_parent ? part.NUMBERS : none.NUMBERS);
  }
  return fields;
}

/// A whole lane under HA, and where its ranges start and end.
FIELD_LIST library_lane(const plain::LINE& line, const plain::HA_CURVE& curve, float kel_load) {
  static T_RANGE_WORK work;
  auto* const search_lane = line.JUMP_LAYOUT ? HA_SEARCH_LANE_JUMP : HA_SEARCH_LANE;
  const T_HA_RESULT ha = search_lane(VIEW(line), CURVE_OF(curve), kel_load, work);
  std::array<T_RANGE_DISTANCES, N_SIDES> distances;
  for (auto& side : distances) side.PAIRS.fill({1.0F, 1.0F});  // what an earlier lane left
  (line.JUMP_LAYOUT ? RANGE_DISTANCES_JUMP : RANGE_DISTANCES)(VIEW(line), distances);
  FIELD_LIST fields;
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    fields.ADD("value", ha[side].VALUE);
    fields.ADD("W_MILLI", ha[side].W_MILLI);
    fields.ADD("loaded ranges", std::vector(ha[side].RANGES, ha[side].RANGES + ha[side].LOADED_COUNT));
    fields.ADD("RANGE_COUNT", distances[side].RANGE_COUNT);
    for (const auto& pair : distances[side].PAIRS)
      for (const float end : pair) fields.ADD("end of a range", end);
  }
  return fields;
}

FIELD_LIST judged_lane(const plain::LINE& line, const plain::HA_CURVE& curve, float kel_load) {
  const plain::HA_RESULT ha = plain::HA_SEARCH_LANE(line, curve, kel_load);
  plain::BOTH_DISTANCES distances = plain::RANGE_DISTANCES(line);
  FIELD_LIST fields;
  for (const auto& [best, ranges] :
       {std::pair(&ha.MAX, &distances.POSITIVE), {&ha.MIN, &distances.NEGATIVE}}) {
    fields.ADD("value", best->VALUE);
    fields.ADD("W_MILLI", best->W_MILLI);
    fields.ADD("loaded ranges", best->NUMBERS);
    fields.ADD("RANGE_COUNT", ranges->RANGE_COUNT);
    ranges->PAIRS.resize(MAX_RANGES);
    for (const auto& pair : ranges->PAIRS)
      for (const float end : pair) fields.ADD("end of a range", end);
  }
  return fields;
}

/// What the random lanes have reached, so that a change of the generator can't quietly lose what it is there
/// for.
struct T_SEEN {
  int types[6] = {};  // kept; 0 where there is none
  int passes[3] = {};
  int second_full = 0, no_plane = 0, later_plane = 0;
  int over_100_ranges = 0, list_full = 0, near_inside = 0, jump_closings = 0;

  void count(const plain::HB_RESULT& result, bool straddling, bool by_parent) {
    for (const plain::HB_SIDE& side : result) {
      const plain::HB_PART& part = side.PARTS[0];
      ++types[part.HB_TYPE];
      ++passes[side.PASS_REC];
      const int code = by_parent ? part.HB_CODE / 10 : part.HB_CODE;
      second_full += by_parent && side.PASS_REC != 0 && part.HB_CODE % 10 == 0;
      no_plane += straddling && side.PASS_REC != 0 && code == 0;
      later_plane += straddling && code % 100 > 1;
      over_100_ranges += part.NUMBERED > 100;
      list_full += part.LOADED_COUNT == 500;
    }
  }
};

/// The first difference of a form on a task, empty where there is none. All forms share their work arrays.
std::string difference(const T_FORM& form, const plain::HB_TASK& task, bool multi, int behind, T_SEEN& seen) {
  static T_HB_WORK work;
  const std::size_t planes = form.JUDGE == plain::HB_LANE ? 1 : task.SETS[0].size();
  const T_SEARCH_RESULT result =
      SEARCH_HB(form.LIBRARY[multi ? 1 : 0][task.JUMP_LAYOUT ? 1 : 0], task, planes, behind, work);
  const plain::HB_RESULT judged = form.JUDGE(task);
  seen.count(judged, form.JUDGE != plain::HB_LANE, form.BY_PARENT);
  return DIFFERENCE(fields_of(result), fields_of(judged, form.BY_PARENT));
}

TEST(bitwise, all_searches_equal_the_plain_steps) {
  T_SEEN seen;
  for (std::uint64_t seed = 1; seed <= N_CASES; ++seed) {
    const RANDOM_HB_CASE c = MAKE_RANDOM_HB_CASE(seed);
    for (const float x : c.SIMPLE.X) seen.near_inside += (x + HB_CLEAR) - HB_CLEAR != x;
    const bool multi = c.SIMPLE.SETS.size() > 1 || seed % 4 == 0;
    for (const plain::HB_TASK* task : {&c.SIMPLE, &c.JUMP}) {
      const plain::LINE line = OWN_LINE(*task);
      const float kel_load = seed % 4 == 0 ? 120.0F : 0.03F * static_cast<float>(seed);
      ASSERT_EQ(
          DIFFERENCE(library_lane(line, task->CURVE, kel_load), judged_lane(line, task->CURVE, kel_load)), "")
          << "whole lane" << (task->JUMP_LAYOUT ? ", jump" : "") << ", seed " << seed << ", " << c.KIND;
      // Without a zone the zone form differs by the jumps alone.
      seen.jump_closings += plain::CUT_RANGES(line).POSITIVE.AREA.count() -
                            plain::CUT_RANGES(line, plain::ZONE_PLACE{}).POSITIVE.AREA.count();
    }
    for (const T_FORM& form : FORMS) {
      for (const plain::HB_TASK* task : {&c.SIMPLE, &c.JUMP}) {
        ASSERT_EQ(difference(form, *task, multi, seed % 3 == 0 ? 2 : 0, seen), "")
            << form.NAME << (multi ? "_MULTI" : "") << (task->JUMP_LAYOUT ? "_JUMP" : "") << ", seed " << seed
            << ", " << c.KIND;
      }
    }
  }
  for (const int kept : seen.types) EXPECT_GT(kept, 1000);
  for (const int kept : seen.passes) EXPECT_GT(kept, 5000);
  EXPECT_GT(seen.second_full, 1000);
  EXPECT_GT(seen.no_plane, 1000);
  EXPECT_GT(seen.later_plane, 1000);
  EXPECT_GT(seen.over_100_ranges, 25);
  EXPECT_GT(seen.list_full, 5);
  EXPECT_GT(seen.near_inside, 10000);
  EXPECT_GT(seen.jump_closings, 1000);
}

}  // namespace
