// Models of the benchmarks, written to the benchmarks' folder.
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

/// A bridge of 8 lanes with 1000 points each, whose beams have influence lines of a continuous girder of three
/// spans with a jump at the section; 2000 unit loads, three vehicle classes, and 2000 combinations with HA of
/// any class in every lane and an HB in one of them, which drives both ways.
[[nodiscard]] const std::string& BRIDGE_FILES();
inline constexpr std::int32_t BRIDGE_LANES = 8;

/// The request for a shear of one of its beams, a component that may jump.
[[nodiscard]] kernel::T_REQUEST BRIDGE_REQUEST();

}  // namespace bench
