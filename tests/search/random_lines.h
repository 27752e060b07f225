// Random lanes with what the searches are given beside them, one case a seed.
//
// Smooth lines and noise, and above all what breaks a search: ties, zeros, repeated points, jumps, lanes
// without points or with more ranges than the lists hold, ends of a zone on, beside and between the points.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "search/ha_search.h"
#include "search/hb_placing.h"
#include "tests/random.h"
#include "tests/search/plain_hb.h"
#include "tests/search/plain_search.h"

/// The library's view of a line.
inline search::T_LINE VIEW(const plain::LINE& line) {
  const auto table = [](const plain::LIST<float>& list) {
    return TABLE<const real, POINT>(list.values.data(), {list.count()});
  };
  return {line.n(), table(line.X), table(line.BEFORE), table(line.AFTER), line.TWO_COLUMNS};
}

inline search::T_HA_CURVE CURVE_OF(const plain::HA_CURVE& curve) {
  return {curve.W0, curve.K, curve.WMIN, curve.P, curve.L0};
}
search::T_VEHICLE_PARAMETERS VEHICLE_OF(const plain::HB_TASK& task);

/// The line of plane 1 of a lane's own set.
inline plain::LINE OWN_LINE(const plain::HB_TASK& task) {
  const plain::ORDINATES& rows = task.SETS[0][0];
  return {task.JUMP_LAYOUT, task.TWO_COLUMNS, {task.X}, {rows.BEFORE}, {rows.AFTER}};
}

/// Lines from literals.
inline plain::LINE SIMPLE_LINE(std::vector<float> x, std::vector<float> y) {
  return {false, false, {std::move(x)}, {y}, {y}};
}
inline plain::LINE JUMP_LINE(std::vector<float> x, std::vector<float> before, std::vector<float> after) {
  return {true, true, {std::move(x)}, {std::move(before)}, {std::move(after)}};
}

/// The library's answer to a task, on the first `planes` of each set. `behind` rows stand behind the lane's
/// own, as where another lane of the model is longer.
search::T_SEARCH_RESULT SEARCH_HB(search::HB_SEARCH* form, const plain::HB_TASK& task, std::size_t planes,
                                  int behind, search::T_HB_WORK& work);

/// A task of the HB searches in both layouts, on a lane that an HB may fit on, with 3 to 5 planes a set.
struct RANDOM_HB_CASE {
  std::string KIND;
  plain::HB_TASK SIMPLE;
  plain::HB_TASK JUMP;
};

RANDOM_HB_CASE MAKE_RANDOM_HB_CASE(std::uint64_t seed);
