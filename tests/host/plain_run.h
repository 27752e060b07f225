// The judge of a whole run: from a model in memory to the host's arrays, in plain steps.
//
// It reads no files and shares nothing with the library. Like the judges of the lane search and of the HB
// placing, on which it is built, it is slow on purpose and changes only where a rule changes.
#pragma once

#include <cstdint>
#include <string>

#include "modelkit/model.h"
#include "tests/host/host_call.h"

namespace plain {

/// What a run met and doesn't show in the host's arrays. Runs add to it.
struct MET {
  std::string PRINTED;          // on standard output
  int SETS_OF_OTHER_LANES = 0;  // under the axles of an HB
  int MERGED_LISTS = 0;         // lists of a lane's ranges with some that an HB joined
  int SPLIT_RANGES = 0;
  int JUMPS_ACROSS_ZERO = 0;
};

/// What a host with arrays for `host_lanes` lanes holds after a run over the files of `model`. Entries that a
/// run leaves alone keep host::UNTOUCHED. The model is sound; yet it may lack what is asked for, an element,
/// a block or an item, and then the run fails.
host::ARGUMENTS RUN(const modelkit::T_MODEL& model, int host_lanes, std::int32_t mode_code, std::int32_t kind,
                    std::int32_t id, std::int32_t item, std::int32_t mv_case, MET* met = nullptr);

}  // namespace plain
