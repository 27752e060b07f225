// From a request to its envelope: reads the model's tables and picks the result routine.
#pragma once

#include <cstdint>

#include "common/status.h"
#include "kernel/combinations.h"
#include "kernel/record_file.h"
#include "kernel/run_state.h"
#include "results/result_members.h"

namespace kernel {

/// Where the two big arrays of the combinations come from, unless a test says otherwise.
void* COMBINATION_MEMORY_OF_PROCESS(std::size_t bytes);

/// Reads all tables of a model. `unit` stays connected to the file. The number of lanes that the caller has
/// room for is checked before anything is sized by it.
STATUS READ_MODEL(RECORD_FILE& unit, const T_REQUEST& request, std::int32_t host_lanes, T_MODEL& model,
                  COMBINATION_MEMORY memory = COMBINATION_MEMORY_OF_PROCESS);

/// The component that a request's item stands for.
[[nodiscard]] results::T_COMPONENT COMPONENT_OF(const T_REQUEST& request);

/// Runs the result routine of the request's kind; leaves the envelope as it is where there is none.
STATUS RUN_LANE_ANALYSIS(const T_MODEL& model, const T_REQUEST& request, RECORD_FILE& unit,
                         T_ENVELOPE& envelope);

/// The components of RK_WALL from 1 to 105, in the order in which the element files hold them. 0 outside.
[[nodiscard]] std::int32_t ITEM_MAP(std::int32_t result_item);

/// A wall item as the result routines take it: the numbers 31 to 45 are three parts each of five components.
[[nodiscard]] results::T_COMPONENT SPLIT_WALL_ITEM(std::int32_t result_item);

/// Components whose influence lines may jump: the result routine then keeps repeated points.
[[nodiscard]] bool IS_SECTION_ITEM(std::int32_t result_kind, std::int32_t result_item);

}  // namespace kernel
