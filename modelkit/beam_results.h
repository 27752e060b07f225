// The results of a beam element, as a record of the B files holds them.
//
// A beam has five stations: its start, its quarter points and its end. Each has six section forces, items 1
// to 30, and the bending stresses at the four corners of the section, items 31 to 50. Signs are those of
// T_SECTION_FORCES, stresses positive in tension. Axial forces and those sideways are 0 here.
//
// Where a unit load stands on a section, its forces have two values: for the load just before the section and
// for the load just behind it. At the three stations between the ends every force therefore has two columns.
// At the ends there is one: a load over an end of the beam counts as not on it.
#pragma once

#include <functional>
#include <span>

#include "modelkit/grillage.h"
#include "modelkit/model.h"

namespace modelkit {

enum BEAM_STATION : int {
  BEAM_START = 0,
  BEAM_QUARTER = 1,
  BEAM_MIDDLE = 2,
  BEAM_THREE_QUARTERS = 3,
  BEAM_END = 4
};
enum BEAM_FORCE : int {
  BEAM_AXIAL = 1,
  BEAM_SHEAR_SIDEWAYS = 2,
  BEAM_SHEAR = 3,
  BEAM_TORSION = 4,
  BEAM_MOMENT = 5,
  BEAM_MOMENT_SIDEWAYS = 6
};
enum BEAM_CORNER : int { BEAM_TOP_LEFT = 1, BEAM_TOP_RIGHT = 2, BEAM_BOTTOM_LEFT = 3, BEAM_BOTTOM_RIGHT = 4 };

/// RESULT_ITEM of a section force, and of a corner's stress.
constexpr int BEAM_FORCE_ITEM(BEAM_STATION station, BEAM_FORCE force) {
  return 6 * station + force;
}
constexpr int BEAM_STRESS_ITEM(BEAM_STATION station, BEAM_CORNER corner) {
  return 30 + 4 * station + corner;
}

/// On which side of the sections at its node a unit load stands: on both, for their two columns, or on one.
enum class LOAD_SIDE { BOTH, BEFORE, BEHIND };

/// Section moduli, by which a moment is divided.
struct T_SECTION_MODULI {
  double top = 1.0;
  double bottom = 1.0;
};

/// Section forces under a unit load, from 1, at a part of the beam's length, from 0 to 1.
using T_BEAM_FORCES = std::function<T_BEAM_SECTION(int load, double part)>;

/// The 68 values of a beam under every unit load; `sides` has one entry for each.
T_RESPONSE BEAM_RESPONSE(int id, std::span<const LOAD_SIDE> sides, const T_SECTION_MODULI& moduli,
                         const T_BEAM_FORCES& forces);

}  // namespace modelkit
