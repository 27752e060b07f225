#include "results/set_list.h"

#include <string>

namespace results {

void WRITE_SET_LIST(const search::T_PLANE_SETS& sets, TABLE<const real, POINT> LANE_X,
                    kernel::DIAGNOSTIC_UNIT& unit) {
  constexpr std::size_t ORDINATES_OF_A_LINE = 100;
  constexpr int DECIMALS = 4;
  const std::size_t planes = sets.front().size();
  std::string line = "FMT_MT_MULTI,NUM_SUB_LANE,N_MULTI_INFL=";
  kernel::APPEND_INTEGER(line, static_cast<std::int32_t>(planes), 7);
  kernel::APPEND_INTEGER(line, static_cast<std::int32_t>(sets.size()), 7);
  unit.WRITE(line += '\n');
  for (const std::vector<search::T_ORDINATES>& set : sets) {
    for (std::int32_t i = 1; i <= static_cast<std::int32_t>(LANE_X.EXTENT()); ++i) {
      line.clear();
      kernel::APPEND_INTEGER(line, i, 5);
      kernel::APPEND_REAL(line, static_cast<double>(LANE_X(i)), 10, DECIMALS);
      for (std::size_t p = 0; p < planes; ++p) {
        if (p > 0 && p % ORDINATES_OF_A_LINE == 0) line += '\n';
        kernel::APPEND_REAL(line, static_cast<double>(set[p](i, 1)), 13, DECIMALS);
      }
      unit.WRITE(line += '\n');
    }
  }
  unit.FLUSH();
}

}  // namespace results
