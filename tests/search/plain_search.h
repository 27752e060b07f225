// The judge of the lane search: the primitives of a lane's influence line and the HA search in plain steps.
//
// Everything here goes one step after another in the order in which the rules are told, in single precision,
// and shares nothing with the library. Slow on purpose: faster ways of working are held against it bit for
// bit, so it changes only where a rule changes.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace plain {

/// A list numbered from 1, every access checked.
template <class T>
struct LIST {
  std::vector<T> values;

  T& operator()(int i) { return values.at(static_cast<std::size_t>(i) - 1); }
  const T& operator()(int i) const { return values.at(static_cast<std::size_t>(i) - 1); }
  [[nodiscard]] int count() const { return static_cast<int>(values.size()); }
  void add(T value) { values.push_back(value); }
};

/// An influence line. A component with one column has it in BEFORE and in AFTER.
struct LINE {
  bool JUMP_LAYOUT = false;
  bool TWO_COLUMNS = false;  // in JUMP_LAYOUT only
  LIST<float> X;
  LIST<float> BEFORE;
  LIST<float> AFTER;

  [[nodiscard]] int n() const { return X.count(); }
};

/// Ranges of one sign in the order of closing.
struct RANGES {
  LIST<float> AREA;
  LIST<float> LENGTH;
};
struct CUT {
  RANGES POSITIVE;
  RANGES NEGATIVE;
};

struct ZONE_PLACE {
  int FAR_INDEX = 0;
  float FAR_FRACTION = 0;
  int NEAR_INDEX = 0;
  float NEAR_FRACTION = 0;
};

struct HA_CURVE {
  float W0 = 0, K = 0, WMIN = 0, P = 0, L0 = 0;
};

struct SPAN {
  int LO = 0;
  int HI = 0;
};
struct ORDINATE {
  float UPPER = 0;
  float LOWER = 0;
};

/// (start, end) of the first 100 ranges of a side, and the count of all.
struct DISTANCES {
  std::vector<std::array<float, 2>> PAIRS;
  int RANGE_COUNT = 0;
};
struct BOTH_DISTANCES {
  DISTANCES POSITIVE;
  DISTANCES NEGATIVE;
};

struct HA_SIDE {
  float VALUE = 0;
  int W_MILLI = 0;
  int LOADED_COUNT = 0;
  int RANGE_COUNT = 0;       // of all ranges of the side
  std::vector<int> NUMBERS;  // LOADED_COUNT of them
};
struct HA_RESULT {
  HA_SIDE MAX;
  HA_SIDE MIN;
};
struct HA_PAIR {
  HA_RESULT A;
  HA_RESULT B;
};

/// The whole lane; in JUMP_LAYOUT a jump across zero closes a range.
CUT CUT_RANGES(const LINE& line);
/// The lane without the stretch of an HB.
CUT CUT_RANGES(const LINE& line, const ZONE_PLACE& zone);
/// Mode 2 ranks by magnitude.
void SORT_RANGE_MEANS(LIST<float>& means, LIST<int>& numbers, int mode);
float HA_INTENSITY(float L, const HA_CURVE& curve);
int W_MILLI(float w);

SPAN BRACKET_POINT(float p, const LINE& line);
ORDINATE ORDINATE_AT(float p, const LINE& line);
ZONE_PLACE LOCATE_ZONE(float far_end, float near_end, const LINE& line);

/// By points in SIMPLE_LAYOUT, by segments in JUMP_LAYOUT.
BOTH_DISTANCES RANGE_DISTANCES(const LINE& line);

HA_RESULT HA_SEARCH_LANE(const LINE& line, const HA_CURVE& curve, float kel_load);
HA_RESULT HA_SEARCH_ZONE(const LINE& line, const HA_CURVE& curve, const ZONE_PLACE& zone,
                         float vehicle_length);
HA_PAIR HA_SEARCH_ZONE_PAIR(const LINE& a, const LINE& b, const HA_CURVE& curve, const ZONE_PLACE& zone,
                            float vehicle_length);

}  // namespace plain
