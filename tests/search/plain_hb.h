// The judge of the HB placing and of the trimming of ranges, in plain steps like the judge of the lane
// search.
//
// A form on other lanes' ordinates and the layout are data of the task.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "tests/search/plain_search.h"

namespace plain {

/// Ordinates of one plane at the points of a lane. A component with one column has it in both.
struct ORDINATES {
  std::vector<float> BEFORE;
  std::vector<float> AFTER;
};
using PLANES = std::vector<ORDINATES>;  // of an ordinary lane only the first counts

struct HB_TASK {
  bool JUMP_LAYOUT = false;
  bool TWO_COLUMNS = false;  // in JUMP_LAYOUT only
  std::vector<float> X;
  std::vector<PLANES> SETS;               // the lane's own first, then those of other lanes
  std::array<std::size_t, 4> AXLE_SET{};  // which of them is under each axle
  HA_CURVE CURVE;
  float HB_LOAD = 0, HB_S = 0, HB_B = 0, HB_STEP = 0;
  int LANE_DIRECTION = 0;
  int LANE_NUMBER = 0;
};

/// What one HA search of the kept placement leaves: its record, the loaded ranges, and how many it numbered.
struct HB_PART {
  int W_MILLI = 0, LOADED_COUNT = 0, HB_TYPE = 0, HB_POSITION = 0, HB_CODE = 0, NUMBERED = 0;
  std::vector<int> NUMBERS;
};
struct HB_SIDE {
  float VALUE = 0;
  int PASS_REC = 0;
  std::array<HB_PART, 2> PARTS;  // by parent lane where each has a search of its own, else the first alone
};
using HB_RESULT = std::array<HB_SIDE, 2>;

HB_RESULT HB_LANE(const HB_TASK& task);
HB_RESULT HB_STRADDLE_SUM(const HB_TASK& task);
HB_RESULT HB_STRADDLE_THIRD(const HB_TASK& task);

/// The ranges of a lane and side as the host has them.
struct REPORTED {
  std::array<float, 200> FLAT{};  // start 1, end 1, start 2, ...
  std::array<int, 500> NUMBERS{};
  int NO_LOADED_RANGE = 0;
};
void MERGE_LOADED_RANGES(float far_end, float near_end, REPORTED& ranges);
void TRIM_LOADED_RANGES(float far_end, float near_end, REPORTED& ranges);

}  // namespace plain
