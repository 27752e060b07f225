// The family table: every kind of result, where its ordinates come from, and how to read them.
//
// All routines run the one skeleton; they differ in a row of this table. A result point has N_UNIT_LOAD
// records, one for each unit load in order: a run in a block of the directory file, or the records of an
// element in its element file (element_files.h). In STORE_MODE the influence store has the same components
// under the number of the node or element, without a record's header words. No member changes the sign or
// the unit of a component.
//
//   DISP, LDSP   N_DOF float32                       addressed by node, or place among the local axes
//   REAC, LRAC   float32 node number, N_DOF float32  searched for the node, runs in any order
//   SIMB         12 float32                          addressed by number
//   ELNK, NLNK   three words unused, 12 float32      addressed by number
//
// Beams and walls have two routines each: the first for components whose influence line may jump at a point,
// which have two columns of a record, and one for all further components.
#pragma once

#include <cstdint>
#include <string_view>

#include "common/status.h"
#include "kernel/run_state.h"
#include "results/result_skeleton.h"
#include "search/lane_ordinates.h"
#include "store/influence_reads.h"

namespace results {

/// How the records of a result point are found.
enum class FIND_RUN : std::uint8_t { BY_ID, BY_LOCAL_AXES, BY_NODE_NUMBER, IN_ELEMENT_FILE };

/// In place of a number of components.
inline constexpr std::int32_t OF_NODE = 0;    // N_DOF
inline constexpr std::int32_t OF_PLATE = -1;  // by PLATE_FORM

/// One row of the family table.
struct T_FAMILY {
  std::int32_t RESULT_KIND;
  FIND_RUN FINDING;
  std::string_view TAG;        // of the block, or the letter of the element files
  store::READ STORE_READ;      // where the influence store has them
  std::int32_t WORDS_SKIPPED;  // words of a record in front of component 1
  std::int32_t COMPONENTS;
  std::int32_t kernel::T_COUNTS::*NODES = nullptr;  // runs of the block, where a node is searched for
  std::int32_t ITEMS_BEFORE = 0;                    // items of the kind that another row serves
  std::int32_t RECORD_WORDS = 0;                    // 0: a record ends with its last component
  ROW_LAYOUT LAYOUT = ROW_LAYOUT::SIMPLE;
};

/// The first row of a kind; null for a kind that has no routine.
[[nodiscard]] const T_FAMILY* FIND_FAMILY(std::int32_t result_kind);

/// Items of a kind, RESULT_ITEM from 1; 0 for a kind that has no routine, and for plates of no known form.
[[nodiscard]] std::int32_t ITEMS_OF(std::int32_t result_kind, const kernel::T_COUNTS& counts);

/// Words that are read of a record of the family: of element files, unless plates have no known form, all.
[[nodiscard]] std::int32_t RECORD_WORDS_OF(const T_FAMILY& family, const kernel::T_COUNTS& counts);

/// A component as the table numbers it. Five components of the walls come in three parts too.
struct T_COMPONENT {
  std::int32_t ITEM = 0;       // of its kind, from 1; 0 none
  std::int32_t ITEM_PART = 0;  // 1 to 3, 0 no parts
};

/// The response of a request's result point to every unit load, as the lane phase takes it.
struct T_RESPONSE {
  const T_FAMILY* FAMILY = nullptr;  // whose routine serves the component; null: there is none
  search::T_LOAD_ORD LOAD_ORD;
  bool NOTHING_TO_SEARCH = false;  // the routine returns at once
};

/// Fetches the ordinates of the component that RESULT_ITEM stands for. `unit` serves the lookups.
STATUS READ_RESPONSE(const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
                     const T_COMPONENT& component, kernel::RECORD_FILE& unit, T_RESPONSE& response);

/// Works out one request from a model: fetches the ordinates
/// of the component that RESULT_ITEM stands for and runs both phases.
/// Leaves the envelope as it is where there is nothing to search. `unit` serves the lookups.
STATUS RUN_FAMILY(const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
                  const T_COMPONENT& component, kernel::RECORD_FILE& unit, kernel::T_ENVELOPE& envelope);

}  // namespace results
