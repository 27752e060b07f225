#include "tools/moving_load_cases.h"

#include <algorithm>
#include <array>

namespace tools {
namespace {

std::int32_t sub_case_of(std::int32_t code) {
  return (code - 1) % search::SUB_CASES + 1;
}

}  // namespace

std::string_view SUB_CASE_NAME(std::int32_t sub_case) {
  constexpr std::array<std::string_view, search::SUB_CASES> NAMES{
      "HA", "HB", "straddling HB (UDL full, full)", "straddling HB (UDL full, third)"};
  return NAMES[static_cast<std::size_t>(sub_case - 1)];
}

STATUS READ_CASE(const kernel::T_COMBINATIONS& combinations, std::int32_t number, std::int32_t most_shown,
                 T_CASE& mv_case) {
  mv_case = {};
  mv_case.number = number;
  kernel::T_COMBINATION_CURSOR cursor(combinations);
  if (STATUS status = cursor.BEGIN(number); !status.OK()) return status;
  mv_case.combinations = cursor.COUNT();
  const std::vector<std::int32_t>& classes = combinations.BOOK().CLASSES();
  for (std::int32_t c = 0; c < std::min(mv_case.combinations, most_shown); ++c) {
    kernel::T_COMBINATION_VIEW view;
    if (STATUS status = cursor.NEXT(view); !status.OK()) return status;
    std::vector<T_LANE_LOAD>& loads = mv_case.shown.emplace_back();
    for (std::int32_t lane = 1; lane <= combinations.NUM_LANE(); ++lane) {
      const std::int32_t code = view.LANE_CODE[lane - 1];
      const real scale = view.LANE_SCALE[lane - 1];
      if (code == 0 || scale == 0) continue;
      const std::int32_t slot = (code - 1) / search::SUB_CASES;
      loads.push_back(
          {lane, classes[static_cast<std::size_t>(slot)], sub_case_of(code), static_cast<double>(scale)});
    }
  }
  return {};
}

}  // namespace tools
