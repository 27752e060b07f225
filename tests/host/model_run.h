// One run over a model in memory, and the forms in which a test tells the records that it expects.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "modelkit/model_writer.h"
#include "tests/host/host_call.h"
#include "tests/temporary_directory.h"

namespace host {

using RECORD = std::vector<std::int32_t>;

inline const RECORD NOTHING_GOVERNS = {0, 0, 0, 0, 0, 0, 0, 0, 1, 0};
inline constexpr std::int32_t FULL_SCALE = 10000000;

/// Within what some tens of additions in single precision may be off by.
inline void EXPECT_CLOSE(double expected, double got, double relative = 5e-6) {
  EXPECT_NEAR(got, expected, relative * std::fabs(expected));
}

/// The pairs (start, end) of a lane, all 100 of them, of which the first are given.
inline std::vector<float> PAIRS(std::vector<float> first) {
  first.resize(200, 0.0F);
  return first;
}

/// The first numbers of a lane's list, behind which the 500 that are written hold 0.
inline RECORD NUMBERS(const LANES_OF<std::int32_t>& list, int lane) {
  RECORD written = list.LANE(lane);
  written.resize(500);
  while (!written.empty() && written.back() == 0) written.pop_back();
  return written;
}

/// Writes the model, asks for its lanes and runs; neither call may fail.
inline ARGUMENTS ASK(const modelkit::T_MODEL& model, int kind, int id, int item, int mv_case = 1) {
  const TEMPORARY_DIRECTORY directory;
  modelkit::WRITE_MODEL(model, directory.NAME());
  const LANE_COUNT answer = NUM_LANE(directory.NAME(), 0);
  EXPECT_EQ(answer.MODE_CODE, 0) << movload_last_failure();
  ARGUMENTS got = RUN(answer.NUM_LANE, directory.NAME(), 0, kind, id, item, mv_case);
  EXPECT_EQ(got.MODE_CODE, 0) << movload_last_failure();
  return got;
}

}  // namespace host
