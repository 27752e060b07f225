// The family table: every kind of result, where its ordinates come from, and how to read them.
//
// All routines run the one skeleton; they differ in a row of this table. A block holds for each result point
// a run of N_UNIT_LOAD records, one for each unit load in order. No member changes the sign or the unit of a
// component.
//
//   DISP, LDSP   N_DOF float32                       addressed by node, or place among the local axes
//   REAC, LRAC   float32 node number, N_DOF float32  searched for the node, runs in any order
//   SIMB         12 float32                          addressed by number
//   ELNK, NLNK   three words unused, 12 float32      addressed by number
#pragma once

#include <cstdint>
#include <string_view>

#include "common/status.h"
#include "kernel/run_state.h"
#include "results/result_skeleton.h"
#include "search/lane_ordinates.h"

namespace results {

/// How the run of a result point is found in its block.
enum class FIND_RUN : std::uint8_t { BY_ID, BY_LOCAL_AXES, BY_NODE_NUMBER };

/// One row of the family table.
struct T_FAMILY {
  std::int32_t RESULT_KIND;
  std::string_view TAG;
  FIND_RUN FINDING;
  std::int32_t WORDS_SKIPPED;  // words of a record in front of component 1
  std::int32_t COMPONENTS;     // 0: N_DOF
  ROW_LAYOUT LAYOUT;
  std::int32_t kernel::T_COUNTS::*NODES;  // how many runs the block has, where the node is searched for
};

/// The row of a kind; null for a kind that has no routine.
[[nodiscard]] const T_FAMILY* FIND_FAMILY(std::int32_t result_kind);

/// Works out one request from a model: fetches the ordinates and runs both phases. Leaves the envelope as it
/// is where there is nothing to search. `unit` serves the lookups.
STATUS RUN_FAMILY(const T_FAMILY& family, const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
                  kernel::RECORD_FILE& unit, kernel::T_ENVELOPE& envelope);

}  // namespace results
