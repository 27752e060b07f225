// Calls the library as a host does, with arrays that show every entry the library touched.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "include/movload.h"

namespace host {

/// What stands in an entry before a call.
inline constexpr std::int32_t UNTOUCHED = -777777;

/// A host array [PER_LANE, lanes]. One more lane behind the last belongs to the test: nothing may write
/// there.
template <class T>
struct LANES_OF {
  int PER_LANE = 0;
  std::vector<T> values;

  LANES_OF(int per_lane, int lanes)
      : PER_LANE(per_lane),
        values(static_cast<std::size_t>(per_lane) * static_cast<std::size_t>(lanes + 1), T(UNTOUCHED)) {}

  /// Entry k of a lane, both from 1.
  T& operator()(int k, int lane) { return values.at(place(k, lane)); }
  const T& operator()(int k, int lane) const { return values.at(place(k, lane)); }
  [[nodiscard]] std::vector<T> LANE(int lane) const {
    return {values.begin() + static_cast<std::ptrdiff_t>(place(1, lane)),
            values.begin() + static_cast<std::ptrdiff_t>(place(1, lane + 1))};
  }

 private:
  [[nodiscard]] std::size_t place(int k, int lane) const {
    if (k < 1 || k > PER_LANE || lane < 1) throw std::out_of_range("no such entry of a host array");
    return static_cast<std::size_t>(PER_LANE) * static_cast<std::size_t>(lane - 1) +
           static_cast<std::size_t>(k - 1);
  }
};

/// Everything that a host hands over to be written.
struct ARGUMENTS {
  using INTEGERS = LANES_OF<std::int32_t>;
  explicit ARGUMENTS(int lanes) : NUM_LANE(lanes) {}

  std::int32_t NUM_LANE;
  double FINAL_MAX = UNTOUCHED, FINAL_MIN = UNTOUCHED;
  std::int32_t MODE_CODE = 0;
  INTEGERS K_MXLOAD{10, NUM_LANE}, K_MNLOAD{10, NUM_LANE};
  INTEGERS K_MAXINFL_S{1000, NUM_LANE}, K_MININFL_S{1000, NUM_LANE};
  INTEGERS K_MXLOAD1ST{10, NUM_LANE}, K_MNLOAD1ST{10, NUM_LANE};
  INTEGERS K_MXLOAD2ND{10, NUM_LANE}, K_MNLOAD2ND{10, NUM_LANE};
  INTEGERS K_MAXINFL_S1ST{1000, NUM_LANE}, K_MININFL_S1ST{1000, NUM_LANE};
  INTEGERS K_MAXINFL_S2ND{1000, NUM_LANE}, K_MININFL_S2ND{1000, NUM_LANE};
  LANES_OF<float> DISTANCE_MAX_RANGE{200, NUM_LANE}, DISTANCE_MIN_RANGE{200, NUM_LANE};

  /// One run, into these arguments as they stand.
  void RUN(std::string_view base, std::int32_t mode_code, std::int32_t kind, std::int32_t id,
           std::int32_t item, std::int32_t mv_case) {
    RUN(std::vector<char>(base.begin(), base.end()), mode_code, kind, id, item, mv_case);
  }
  /// The path has no terminator behind it.
  void RUN(const std::vector<char>& path, std::int32_t mode_code, std::int32_t kind, std::int32_t id,
           std::int32_t item, std::int32_t mv_case) {
    MODE_CODE = mode_code;
    _MOV_KRNL_BS_5400(path.data(), static_cast<std::int32_t>(path.size()), kind, id, item, mv_case, &NUM_LANE,
                      &FINAL_MAX, &FINAL_MIN, K_MXLOAD.values.data(), K_MNLOAD.values.data(), &MODE_CODE,
                      K_MAXINFL_S.values.data(), K_MININFL_S.values.data(), K_MXLOAD1ST.values.data(),
                      K_MNLOAD1ST.values.data(), K_MXLOAD2ND.values.data(), K_MNLOAD2ND.values.data(),
                      K_MAXINFL_S1ST.values.data(), K_MININFL_S1ST.values.data(),
                      K_MAXINFL_S2ND.values.data(), K_MININFL_S2ND.values.data(),
                      DISTANCE_MAX_RANGE.values.data(), DISTANCE_MIN_RANGE.values.data());
  }

  /// Calls visit(name, array, array of the other arguments) for every array.
  template <class VISITOR>
  void EACH_ARRAY(const ARGUMENTS& other, VISITOR visit) const {
    visit("K_MXLOAD", K_MXLOAD, other.K_MXLOAD);
    visit("K_MNLOAD", K_MNLOAD, other.K_MNLOAD);
    visit("K_MAXINFL_S", K_MAXINFL_S, other.K_MAXINFL_S);
    visit("K_MININFL_S", K_MININFL_S, other.K_MININFL_S);
    visit("K_MXLOAD1ST", K_MXLOAD1ST, other.K_MXLOAD1ST);
    visit("K_MNLOAD1ST", K_MNLOAD1ST, other.K_MNLOAD1ST);
    visit("K_MXLOAD2ND", K_MXLOAD2ND, other.K_MXLOAD2ND);
    visit("K_MNLOAD2ND", K_MNLOAD2ND, other.K_MNLOAD2ND);
    visit("K_MAXINFL_S1ST", K_MAXINFL_S1ST, other.K_MAXINFL_S1ST);
    visit("K_MININFL_S1ST", K_MININFL_S1ST, other.K_MININFL_S1ST);
    visit("K_MAXINFL_S2ND", K_MAXINFL_S2ND, other.K_MAXINFL_S2ND);
    visit("K_MININFL_S2ND", K_MININFL_S2ND, other.K_MININFL_S2ND);
    visit("DISTANCE_MAX_RANGE", DISTANCE_MAX_RANGE, other.DISTANCE_MAX_RANGE);
    visit("DISTANCE_MIN_RANGE", DISTANCE_MIN_RANGE, other.DISTANCE_MIN_RANGE);
  }
};

/// The first difference in words, empty where there is none. Reals are held against each other bit for bit.
inline std::string DIFFERENCE(const ARGUMENTS& expected, const ARGUMENTS& got) {
  std::ostringstream text;
  text.precision(17);
  const auto compare = [&](const std::string& name, const auto& wanted, const auto& found) {
    if (text.view().empty() && std::memcmp(&wanted, &found, sizeof wanted) != 0)
      text << name << ": expected " << wanted << ", got " << found;
  };
  compare("MODE_CODE", expected.MODE_CODE, got.MODE_CODE);
  compare("NUM_LANE", expected.NUM_LANE, got.NUM_LANE);
  compare("FINAL_MAX", expected.FINAL_MAX, got.FINAL_MAX);
  compare("FINAL_MIN", expected.FINAL_MIN, got.FINAL_MIN);
  expected.EACH_ARRAY(got, [&](const std::string& name, const auto& wanted, const auto& found) {
    const std::size_t size = wanted.values.size();
    compare("size of " + name, size, found.values.size());
    if (!text.view().empty()) return;
    if (std::memcmp(wanted.values.data(), found.values.data(), size * sizeof wanted.values[0]) == 0) return;
    const auto per_lane = static_cast<std::size_t>(wanted.PER_LANE);
    for (std::size_t i = 0; i < size; ++i)
      compare(
          name + "(" + std::to_string(i % per_lane + 1) + ", lane " + std::to_string(i / per_lane + 1) + ")",
          wanted.values[i], found.values[i]);
  });
  return text.str();
}

inline bool operator==(const ARGUMENTS& a, const ARGUMENTS& b) {
  return DIFFERENCE(a, b).empty();
}

/// EXPECT_TRUE(SAME(expected, got)) tells the first difference, and why the library's last call failed.
inline testing::AssertionResult SAME(const ARGUMENTS& expected, const ARGUMENTS& got) {
  const std::string difference = DIFFERENCE(expected, got);
  if (difference.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << difference << "; last failure: \"" << movload_last_failure() << "\"";
}

/// Fresh arrays for that many lanes, and one run.
inline ARGUMENTS RUN(int lanes, std::string_view base, std::int32_t mode_code, std::int32_t kind,
                     std::int32_t id, std::int32_t item, std::int32_t mv_case) {
  ARGUMENTS arguments(lanes);
  arguments.RUN(base, mode_code, kind, id, item, mv_case);
  return arguments;
}

struct LANE_COUNT {
  std::int32_t MODE_CODE = 0;
  std::int32_t NUM_LANE = UNTOUCHED;
};

inline LANE_COUNT NUM_LANE(std::string_view base, std::int32_t mode_code) {
  LANE_COUNT count{.MODE_CODE = mode_code};
  const std::vector<char> path(base.begin(), base.end());
  _MOV_KRNL_BS_5400_NUM_LANE(path.data(), static_cast<std::int32_t>(path.size()), &count.MODE_CODE,
                             &count.NUM_LANE);
  return count;
}

}  // namespace host
