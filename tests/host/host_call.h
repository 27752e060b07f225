// Calls the library as a host does, with arrays that show every entry the library touched.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
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
  explicit ARGUMENTS(int lanes)
      : NUM_LANE(lanes),
        K_MXLOAD(10, lanes),
        K_MNLOAD(10, lanes),
        K_MAXINFL_S(1000, lanes),
        K_MININFL_S(1000, lanes),
        K_MXLOAD1ST(10, lanes),
        K_MNLOAD1ST(10, lanes),
        K_MXLOAD2ND(10, lanes),
        K_MNLOAD2ND(10, lanes),
        K_MAXINFL_S1ST(1000, lanes),
        K_MININFL_S1ST(1000, lanes),
        K_MAXINFL_S2ND(1000, lanes),
        K_MININFL_S2ND(1000, lanes),
        DISTANCE_MAX_RANGE(200, lanes),
        DISTANCE_MIN_RANGE(200, lanes) {}

  std::int32_t NUM_LANE;
  double FINAL_MAX = UNTOUCHED;
  double FINAL_MIN = UNTOUCHED;
  LANES_OF<std::int32_t> K_MXLOAD, K_MNLOAD;
  std::int32_t MODE_CODE = 0;
  LANES_OF<std::int32_t> K_MAXINFL_S, K_MININFL_S;
  LANES_OF<std::int32_t> K_MXLOAD1ST, K_MNLOAD1ST, K_MXLOAD2ND, K_MNLOAD2ND;
  LANES_OF<std::int32_t> K_MAXINFL_S1ST, K_MININFL_S1ST, K_MAXINFL_S2ND, K_MININFL_S2ND;
  LANES_OF<float> DISTANCE_MAX_RANGE, DISTANCE_MIN_RANGE;

  /// One run, into these arguments as they stand.
  void RUN(std::string_view base, std::int32_t mode_code, std::int32_t kind, std::int32_t id,
           std::int32_t item, std::int32_t mv_case) {
    MODE_CODE = mode_code;
    const std::vector<char> path(base.begin(), base.end());  // no terminator behind it
    _MOV_KRNL_BS_5400(path.data(), static_cast<std::int32_t>(path.size()), kind, id, item, mv_case, &NUM_LANE,
                      &FINAL_MAX, &FINAL_MIN, K_MXLOAD.values.data(), K_MNLOAD.values.data(), &MODE_CODE,
                      K_MAXINFL_S.values.data(), K_MININFL_S.values.data(), K_MXLOAD1ST.values.data(),
                      K_MNLOAD1ST.values.data(), K_MXLOAD2ND.values.data(), K_MNLOAD2ND.values.data(),
                      K_MAXINFL_S1ST.values.data(), K_MININFL_S1ST.values.data(),
                      K_MAXINFL_S2ND.values.data(), K_MININFL_S2ND.values.data(),
                      DISTANCE_MAX_RANGE.values.data(), DISTANCE_MIN_RANGE.values.data());
  }

  /// Calls visit(name, array) for every array.
  template <class VISITOR>
  void EACH_ARRAY(VISITOR visit) const {
    visit("K_MXLOAD", K_MXLOAD);
    visit("K_MNLOAD", K_MNLOAD);
    visit("K_MAXINFL_S", K_MAXINFL_S);
    visit("K_MININFL_S", K_MININFL_S);
    visit("K_MXLOAD1ST", K_MXLOAD1ST);
    visit("K_MNLOAD1ST", K_MNLOAD1ST);
    visit("K_MXLOAD2ND", K_MXLOAD2ND);
    visit("K_MNLOAD2ND", K_MNLOAD2ND);
    visit("K_MAXINFL_S1ST", K_MAXINFL_S1ST);
    visit("K_MININFL_S1ST", K_MININFL_S1ST);
    visit("K_MAXINFL_S2ND", K_MAXINFL_S2ND);
    visit("K_MININFL_S2ND", K_MININFL_S2ND);
    visit("DISTANCE_MAX_RANGE", DISTANCE_MAX_RANGE);
    visit("DISTANCE_MIN_RANGE", DISTANCE_MIN_RANGE);
  }
};

/// The first difference in words, empty where there is none. Reals are held against each other bit for bit.
inline std::string DIFFERENCE(const ARGUMENTS& expected, const ARGUMENTS& got) {
  std::ostringstream text;
  text.precision(17);
  const auto same = [](double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
  };
  const auto scalar = [&](const char* name, auto wanted, auto found, bool equal) {
    if (!equal && text.view().empty()) text << name << ": expected " << wanted << ", got " << found;
  };
  scalar("MODE_CODE", expected.MODE_CODE, got.MODE_CODE, expected.MODE_CODE == got.MODE_CODE);
  scalar("NUM_LANE", expected.NUM_LANE, got.NUM_LANE, expected.NUM_LANE == got.NUM_LANE);
  scalar("FINAL_MAX", expected.FINAL_MAX, got.FINAL_MAX, same(expected.FINAL_MAX, got.FINAL_MAX));
  scalar("FINAL_MIN", expected.FINAL_MIN, got.FINAL_MIN, same(expected.FINAL_MIN, got.FINAL_MIN));

  struct array_bytes {
    const char* name;
    const void* data;
    std::size_t size;
  };
  std::vector<array_bytes> found;
  got.EACH_ARRAY([&](const char* name, const auto& array) {
    found.push_back({name, array.values.data(), array.values.size() * sizeof array.values[0]});
  });
  std::size_t at = 0;
  expected.EACH_ARRAY([&](const char* name, const auto& wanted) {
    using VALUE = std::decay_t<decltype(wanted.values[0])>;
    const array_bytes& other = found[at++];
    const std::size_t size = wanted.values.size() * sizeof(VALUE);
    if (!text.view().empty()) return;
    if (other.size != size) {
      text << name << ": arrays for different numbers of lanes";
      return;
    }
    if (std::memcmp(wanted.values.data(), other.data, size) == 0) return;
    for (std::size_t i = 0; i < wanted.values.size(); ++i) {
      VALUE value;
      std::memcpy(&value, static_cast<const char*>(other.data) + i * sizeof value, sizeof value);
      if (std::memcmp(&value, &wanted.values[i], sizeof value) == 0) continue;
      const auto per_lane = static_cast<std::size_t>(wanted.PER_LANE);
      text << name << "(" << i % per_lane + 1 << ", lane " << i / per_lane + 1 << "): expected "
           << wanted.values[i] << ", got " << value;
      return;
    }
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

/// A directory of its own for a test's model files, removed in the end.
class TEMPORARY_DIRECTORY {
 public:
  TEMPORARY_DIRECTORY() {
    const std::filesystem::path root = std::filesystem::temp_directory_path();
    for (unsigned number = 0;; ++number) {
      path_ = root / ("movload_host_" + std::to_string(number));
      if (std::filesystem::create_directory(path_)) return;
    }
  }
  ~TEMPORARY_DIRECTORY() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TEMPORARY_DIRECTORY(const TEMPORARY_DIRECTORY&) = delete;
  TEMPORARY_DIRECTORY& operator=(const TEMPORARY_DIRECTORY&) = delete;

  /// Base name of a model's files.
  [[nodiscard]] std::string BASE(const std::string& stem = "model") const { return (path_ / stem).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace host
