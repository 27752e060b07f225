// The judge of the HB placing and of the trimming of ranges, in plain steps like the judge of the lane search.
//
// It is also the yardstick of benchmarks, so that it is plain but not wasteful: copies once a pass, columns one
// after the other, lists sized once. A form on other lanes' ordinates and the layout are data of the task.
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

/// The ranges of one sign of one line, ranked. With room for any line of the lane.
struct RANKED_RANGES {
  int COUNT = 0;
  std::vector<float> AREA, LENGTH, MEAN;
  std::vector<int> NUMBER;
};
/// Arrays of a search, kept from one to the next.
struct HB_WORK {
  std::vector<float> X;
  std::vector<PLANES> SETS;  // in the order of the pass in hand
  ORDINATES SUM;
  std::array<std::array<RANKED_RANGES, 2>, 2> RANGES;  // by line and side

  void MAKE_ROOM(std::size_t points);
};

HB_RESULT HB_LANE(const HB_TASK& task, HB_WORK& work);
HB_RESULT HB_STRADDLE_SUM(const HB_TASK& task, HB_WORK& work);
HB_RESULT HB_STRADDLE_THIRD(const HB_TASK& task, HB_WORK& work);

/// The steps of a placement: those of the lane search once more, on columns and without allocations.
struct VIEW {
  int n;
  bool JUMP_LAYOUT;
  const float *x, *before, *after;

  [[nodiscard]] float X(int i) const { return x[i - 1]; }
  [[nodiscard]] float BEFORE(int i) const { return before[i - 1]; }
  [[nodiscard]] float AFTER(int i) const { return after[i - 1]; }
};
struct PREFIX {
  float VALUE = 0;
  int W_MILLI = 0;
  int LOADED_COUNT = 0;  // so many numbers of the ranking
};
using PREFIXES = std::array<std::array<PREFIX, 2>, 2>;  // by line and side

ZONE_PLACE LOCATE_ZONE(float far_end, float near_end, const VIEW& line);
ORDINATE ORDINATE_AT(float p, const VIEW& line);
PREFIXES HA_SEARCH_ZONE(const VIEW& line, const HA_CURVE& curve, const ZONE_PLACE& zone, float vehicle_length,
                        HB_WORK& work);
PREFIXES HA_SEARCH_ZONE_PAIR(const VIEW& a, const VIEW& b, const HA_CURVE& curve, const ZONE_PLACE& zone,
                             float vehicle_length, HB_WORK& work);

/// The ranges of a lane and side as the host has them.
struct REPORTED {
  std::array<float, 200> FLAT{};  // start 1, end 1, start 2, ...
  std::array<int, 500> NUMBERS{};
  int NO_LOADED_RANGE = 0;
};
void MERGE_LOADED_RANGES(float far_end, float near_end, REPORTED& ranges);
void TRIM_LOADED_RANGES(float far_end, float near_end, REPORTED& ranges);

}  // namespace plain
