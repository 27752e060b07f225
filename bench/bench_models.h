// Models of the benchmarks, written to a folder of their own that goes with the program.
#pragma once

#include <cstdint>
#include <string>

#include "kernel/run_state.h"

namespace bench {

/// A large deck: lanes with 1000 points and 8 transverse entries each, 2000 unit loads, and the given number
/// of combinations in one moving load case. Displacements of 20 nodes. Written at the first call for each
/// size.
[[nodiscard]] const std::string& DECK_FILES(std::int32_t lanes, std::int32_t combinations);

/// The request for a displacement of such a deck.
[[nodiscard]] kernel::T_REQUEST DECK_REQUEST(const std::string& base_name);

}  // namespace bench
