#include "tools/host_run.h"

#include <cmath>
#include <limits>

#include "movload.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

T_HOST_SIDE_ARRAYS side_arrays(std::size_t lanes) {
  T_HOST_SIDE_ARRAYS side;
  side.records.assign(MOVLOAD_RECORD_FIELDS * lanes, 0);
  side.plane_records.fill(side.records);
  side.ranges.assign(MOVLOAD_RANGE_NUMBERS * lanes, 0);
  side.plane_ranges.fill(side.ranges);
  side.distances.assign(MOVLOAD_RANGE_DISTANCES * lanes, 0.0F);
  // Comes back unchanged where there is nothing to search.
  side.value = std::numeric_limits<double>::quiet_NaN();
  return side;
}

}  // namespace

void CHECK_LAST_CALL() {
  const std::string line = movload_last_failure();
  if (!line.empty()) throw T_TOOL_FAILURE(line, ADVICE_FOR(line));
}

T_HOST_ANSWER RUN_AS_HOST(const T_HOST_QUESTION& question) {
  const char* path = question.base_name.data();
  const auto path_len = static_cast<std::int32_t>(question.base_name.size());
  T_HOST_ANSWER answer;
  std::int32_t mode_code = question.mode_code;
  _MOV_KRNL_BS_5400_NUM_LANE(path, path_len, &mode_code, &answer.lanes);
  CHECK_LAST_CALL();

  if (!question.included_base.empty()) {
    const auto length = static_cast<std::int32_t>(question.included_base.size());
    SET_INCLUDE_BLK_BS5400(&length, question.included_base.data());
  }
  answer.sides.fill(side_arrays(static_cast<std::size_t>(answer.lanes)));
  T_HOST_SIDE_ARRAYS& max = answer.sides[MAXIMUM];
  T_HOST_SIDE_ARRAYS& min = answer.sides[MINIMUM];
  _MOV_KRNL_BS_5400(path, path_len, question.result_kind, question.result_id, question.result_item,
                    question.mv_case, &answer.lanes, &max.value, &min.value, max.records.data(),
                    min.records.data(), &mode_code, max.ranges.data(), min.ranges.data(),
                    max.plane_records[0].data(), min.plane_records[0].data(), max.plane_records[1].data(),
                    min.plane_records[1].data(), max.plane_ranges[0].data(), min.plane_ranges[0].data(),
                    max.plane_ranges[1].data(), min.plane_ranges[1].data(), max.distances.data(),
                    min.distances.data());
  CHECK_LAST_CALL();
  answer.searched = !std::isnan(max.value) && !std::isnan(min.value);
  return answer;
}

}  // namespace tools
