// A run and its state. A run falls into three stages with plain borders:
//
//   reading             READ_MODEL fills a T_MODEL, which doesn't change afterwards
//   lane phase          for one result point and component (results/result_skeleton.h)
//   combination phase   for one moving load case; gives a T_ENVELOPE
//
// Everything stands in objects that are passed down. Process-wide are only HOST_SETTINGS, what one call of
// the host leaves for the next, and the influence store (store/m_influence.h).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "common/path.h"
#include "common/real.h"
#include "kernel/combinations.h"
#include "kernel/control_blocks.h"
#include "kernel/diagnostic_unit.h"
#include "search/lane_ordinates.h"
#include "search/vehicle_tables.h"

namespace store {
class INFLUENCE_STORE;
}

namespace kernel {

/// Kinds of result. Values between and beyond run the frame and search nothing.
enum RESULT_KIND : std::int32_t {
  RK_DISP = 1,
  RK_REAC = 2,
  RK_TRUSS = 3,
  RK_BEAM = 4,
  RK_PLATE = 5,
  RK_LRAC = 6,
  RK_WALL = 10,
  RK_SIMB = 12,
  RK_ELNK = 13,
  RK_NLNK = 14,
  RK_LDSP = 16,
};

/// What the host asks for.
struct T_REQUEST {
  std::string FILE_NAME;  // of the block directory file
  std::string BASE_NAME;  // of the influence volumes
  std::int32_t ANALYSIS_CODE = 0;
  bool STORE_MODE = false;
  std::int32_t RESULT_KIND = 0;
  std::int32_t RESULT_ID = 0;
  std::int32_t RESULT_ITEM = 0;
  std::int32_t MV_CASE = 0;
  store::INFLUENCE_STORE* STORE = nullptr;  // in STORE_MODE; such a run opens and closes it
  DIAGNOSTIC_UNIT* UNIT_78 = nullptr;       // where a run leaves its diagnostic text; null: nowhere
};

/// The tables of a model. Filled by READ_MODEL and then left alone: several results may be worked out from
/// one model at the same time.
struct T_MODEL {
  std::string FILE_NAME;
  T_COUNTS COUNTS;
  std::vector<search::T_VEHICLE> VEHICLES;  // N_VEHICLE_COLUMN columns
  std::vector<search::T_LANE> LANES;        // straddle lanes last
  search::T_CLASS_DEFINITIONS CLASS_DEFINITIONS;
  search::T_AXLE_LANES AXLE_LANES;
  T_COMBINATIONS COMBINATIONS;
  std::int32_t POINTS_PER_SEGMENT = 0;

  [[nodiscard]] bool HAS_CLASS_LANES() const noexcept {
    return COUNTS.CLASS_LANES == 1 && !CLASS_DEFINITIONS.CLASS_DEF.empty();
  }
  [[nodiscard]] const search::T_LANE& LANE(std::int32_t lane) const {
    return LANES[static_cast<std::size_t>(lane - 1)];
  }
};

/// An MLOAD record, its fields as loading_records.h names them.
inline constexpr std::size_t RECORD_FIELDS = 10;
using T_RECORD = std::array<std::int32_t, RECORD_FIELDS>;
/// An INFL_S list: the entries in use.
using T_RANGE_NUMBERS = std::vector<std::int32_t>;

/// One lane on one side of the governing loading.
struct T_LANE_LOADING {
  T_RECORD MLOAD{};
  std::array<T_RECORD, 2> MLOADB{};  // by plane of a straddle lane
  T_RANGE_NUMBERS INFL_S;
  std::array<T_RANGE_NUMBERS, 2> INFL_SB;  // by plane
  std::int32_t PASS_OUT = 0;               // 1 forward, 2 reverse, 0: no pass governed the lane
};

/// The answer of a run. SEARCHED is false where the request has nothing to search: the two values then stay
/// with the host as they were.
struct T_ENVELOPE {
  bool SEARCHED = false;
  bool STRADDLE_POINTS = false;  // the closing passes know the points of straddle lanes too
  double FINAL_MAX = 0;
  double FINAL_MIN = 0;
  std::array<std::vector<T_LANE_LOADING>, N_SIDES> LANES;                      // by side, then lane
  std::array<std::vector<search::T_RANGE_DISTANCES>, N_SIDES> DISTANCE_RANGE;  // by side, then ordinary lane
  explicit T_ENVELOPE(std::int32_t num_lane) {
    for (auto& side : LANES) side.resize(static_cast<std::size_t>(num_lane));
  }
};

/// What the calls of a host leave for each other. Begun with the process, overwritten by the calls that set a
/// field, ended with the process.
struct HOST_SETTINGS {
  T_PATH BASE_NAME;  // of the model's files
  DIAGNOSTIC_UNIT UNIT_78;
};

}  // namespace kernel
