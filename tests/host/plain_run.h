// The judge of a whole run: from a model in memory to the host's arrays, in plain steps.
//
// It reads no files and shares nothing with the library. Like the judge of the lane search, on which it is
// built, it is slow on purpose and changes only where a rule changes.
#pragma once

#include <cstdint>

#include "modelkit/model.h"
#include "tests/host/host_call.h"

namespace plain {

/// What a host with arrays for `host_lanes` lanes holds after a run over the files of `model`, a sound one.
/// Entries that a run leaves alone keep host::UNTOUCHED. Lanes under HA alone have results; a lane code of
/// another sub-case adds nothing and leaves only its class and its scale in the records.
host::ARGUMENTS RUN(const modelkit::T_MODEL& model, int host_lanes, std::int32_t mode_code, std::int32_t kind,
                    std::int32_t id, std::int32_t item, std::int32_t mv_case);

}  // namespace plain
