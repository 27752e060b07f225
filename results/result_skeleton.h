// The one skeleton of all result routines: the lane phase and the combination phase.
//
// The lane phase takes each lane alone and searches it once for every vehicle class
// and sub-case that can stand on it; each result is filed under lane, class and sub-case.
// The combination phase adds the filed results of the lanes, each times its scale,
// over every combination of a moving load case, and keeps the best combination on each side.
// The expensive search therefore runs once for a lane and class, however many combinations there are.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "common/status.h"
#include "kernel/run_state.h"
#include "results/set_list.h"
#include "search/lane_ordinates.h"
#include "search/search_result.h"

namespace results {

/// The layout of the ordinate rows of a family of results; the column of its tables.
enum class ROW_LAYOUT : std::uint8_t { SIMPLE, JUMP };

/// What one lane gives for one sub-case of one class. What a sub-case that doesn't fit its lane files is 0.
struct T_FILED_RESULT {
  search::T_SEARCH_RESULT SEARCH;
  std::array<std::int32_t, N_SIDES> KEL_POINT{};  // in sub-case 1: influence point of the knife-edge load
};

/// A class that was searched on a lane.
struct T_CLASS_RESULTS {
  std::int32_t CLASS_SLOT = 0;
  std::array<T_FILED_RESULT, search::SUB_CASES> SUB_CASE;
};

/// The outcome of the lane phase: everything that the combinations need, and the distances of the ranges.
struct T_LANE_PHASE {
  ROW_LAYOUT LAYOUT = ROW_LAYOUT::SIMPLE;
  std::vector<std::vector<T_CLASS_RESULTS>> LANES;                             // by lane
  std::array<std::vector<search::T_RANGE_DISTANCES>, N_SIDES> DISTANCE_RANGE;  // by side, then ordinary lane

  /// What was filed for a lane (from 1), or null where the class wasn't searched there.
  [[nodiscard]] const T_FILED_RESULT* FIND(std::int32_t lane, std::int32_t class_slot,
                                           std::int32_t sub_case) const;
};

/// Searches all lanes for the response of one result point and component, each for what the combinations of
/// the moving load case put on it. Lists what `listing` asks for; null: nothing.
T_LANE_PHASE RUN_LANE_PHASE(const kernel::T_MODEL& model, std::int32_t mv_case,
                            const search::T_LOAD_ORD& LOAD_ORD, ROW_LAYOUT layout,
                            const T_SET_LISTING* listing = nullptr);

/// Adds the lanes over the combinations of a moving load case. Both bests begin at 0 and comparisons are
/// strict, so that of equal combinations the first stays and a side that nothing governs keeps empty records.
/// Fails only where combinations are read from disk and can't be.
STATUS RUN_COMBINATION_PHASE(const kernel::T_MODEL& model, const T_LANE_PHASE& lane_phase,
                             std::int32_t mv_case, kernel::T_ENVELOPE& envelope);

}  // namespace results
