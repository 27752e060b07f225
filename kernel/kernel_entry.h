// The two questions of a host: how many lanes a model has, and what is the envelope of one result.
#pragma once

#include <cstdint>
#include <string_view>

#include "common/status.h"
#include "kernel/loading_records.h"
#include "kernel/run_state.h"

namespace kernel {

/// Where the answer of a run goes. Written only when the run has succeeded.
struct T_HOST_RESULTS {
  std::int32_t* NUM_LANE = nullptr;  // in: lanes of the host's arrays; out: lanes of the model
  double* FINAL_MAX = nullptr;       // left alone, like FINAL_MIN, where there is nothing to search
  double* FINAL_MIN = nullptr;
  T_HOST_RECORDS RECORDS;
};

/// MODE_CODE as the host passes it: the analysis code,
/// plus 100 where responses come from the influence store.
struct T_MODE {
  std::int32_t ANALYSIS_CODE = 0;
  bool STORE_MODE = false;
};
[[nodiscard]] constexpr T_MODE SPLIT_MODE_CODE(std::int32_t mode_code) noexcept {
  return mode_code >= 100 ? T_MODE{mode_code - 100, true} : T_MODE{mode_code, false};
}

/// The name of a model's block directory file.
/// Fails for a path that no name can be made of and for an unknown code.
STATUS MAKE_REQUEST_FILE_NAME(std::string_view base_name, std::int32_t analysis_code, std::string& file_name);

/// A beam item beyond the components of its family: such a call returns at once, with nothing changed.
[[nodiscard]] constexpr bool RETURNS_AT_ONCE(std::int32_t result_kind, std::int32_t result_item) noexcept {
  constexpr std::int32_t BEAM_ITEMS = 50;
  return result_kind == RK_BEAM && result_item > BEAM_ITEMS;
}

/// A whole run. On failure nothing of the host's is written.
STATUS RUN_KERNEL(const T_REQUEST& request, const T_HOST_RESULTS& host);

/// The number of lanes of a model.
STATUS QUERY_NUM_LANE(const T_REQUEST& request, std::int32_t& num_lane);

}  // namespace kernel
