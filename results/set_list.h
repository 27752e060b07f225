// The list that RESULT_TRUSS leaves on unit 78: the ordinate sets of a straddle lane for a class with
// definitions and axles on several lanes. One line names the number of planes and of sets; then follows, set
// by set, a line for each influence point with its number, its position and the ordinate in every plane; of
// more than 100 planes the others stand in lines of their own.
#pragma once

#include "kernel/diagnostic_unit.h"
#include "search/ordinate_sets.h"

namespace results {

/// What a lane phase lists.
struct T_SET_LISTING {
  kernel::DIAGNOSTIC_UNIT* UNIT_78;
  search::T_LOAD_ORD LOAD_ORD;  // of component 1, whichever is searched
};

/// Writes the list of the sets, each of them by planes with a row for every point of LANE_X.
void WRITE_SET_LIST(const search::T_PLANE_SETS& sets, TABLE<const real, POINT> LANE_X,
                    kernel::DIAGNOSTIC_UNIT& unit);

}  // namespace results
