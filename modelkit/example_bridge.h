// The built-in example: a continuous deck of three spans, 20 + 30 + 20 m, on five beams.
//
//   x = 0         20              50         70     y = 0 to 10 m: beams 1 to 5, 2.5 m apart
//   |-------------|---------------|----------|      y = 0.5 to 9.5 m: carriageway, three notional lanes
//   abutment 1    pier 1          pier 2     abutment 2
//
// The deck is a plane grillage with nodes every metre along each beam; all units are kN and m. A beam and its
// slab have EI = 9.0e6 and GJ = 2.2e5, the slab strips across EI = 3.1e4 and GJ = 2.6e4 a metre, the
// diaphragms over the supports EI = 1.0e6 and GJ = 1.5e5. Each beam stands on an elastic bearing of 1.0e6
// kN/m over every abutment and pier, 20 in all. The beam's section moduli are 0.44 m3 at the top and 0.31 m3
// at the bottom.
//
// Numbers and signs:
//   node         5 * (x in m) + beam, from 1 to 355; unit load k to 355 stands on node k, 1 kN downward
//   DISP         every node: item 3 deflection, downward; items 4 and 5 rotations about x (along the bridge)
//                and y (to its right), right-handed with z downward
//   REAC         the nodes over the supports: item 3 reaction, upward
//   SIMB         id = beam, items as BRIDGE_ITEM: section forces, moments sagging
//   beams        10 + 5 * (span - 1) + beam, from 11 to 25: a beam over a whole span; items as in
//                beam_results.h
//   trusses      the bearings in the order of REAC, 30 + 5 * (support - 1) + beam, from 31 to 50: items 1 and
//                2, the force in either end, tension positive
//   plates       51 to 54, the metre of slab between the beams 1 and 2, 2 and 3 and so on, in the middle of
//                the main span; form 1, items as BRIDGE_PANEL_ITEM
//
// No two elements share a number, of whatever kind they are, so that influence volumes can hold them too.
//
// A beam's sections at its quarter points lie just before their nodes, and with them before the strip of slab
// there. A load that passes such a section changes its shear by 1. The lanes' points half a metre before and
// behind it bear on its node, but from one side: unit loads 356 to 425 serve them. These stand on the nodes
// at x = 5, 10, 15, 35, 55, 60 and 65, on five beams each time, up to 390 just before the section and from
// 391 just behind it. The sections at x = 27.5 and 42.5 lie between two nodes, where no load stands on them.
//
// Each lane runs from x = -80 m to 150 m, far enough for the longest HB vehicle with its clear distances to
// drive off the deck; distances along a lane start there, so that the deck begins at distance 80. Points
// stand every half metre in segments of 10 m whose end points stand twice. At each point the load spreads
// evenly over three places across the lane, at its axis and 1 m to either side. A place between two beams
// bears on both by the lever rule, at half metres on the four nodes around it. The points off the deck have
// no links; those next to it stand 1 cm off, so that nothing but that centimetre leans on the deck.
//
// Lane 4 is a straddle lane over lanes 1 and 2: an HB of 45 units on their border (plane 1) or on the axis of
// either (planes 2 and 3). All lanes are driven in both directions.
#pragma once

#include <string>
#include <vector>

#include "modelkit/model.h"

namespace modelkit {

inline constexpr int BRIDGE_BEAMS = 5;
inline constexpr int BRIDGE_LENGTH = 70;
inline constexpr int BRIDGE_FIRST_PIER = 20;
inline constexpr int BRIDGE_SECOND_PIER = 50;
inline constexpr double BRIDGE_APPROACH = 80.0;  // distance along a lane at which the deck begins

/// Node, and unit load, `station` metres from the first abutment on a beam.
constexpr int BRIDGE_NODE(int station, int beam) {
  return BRIDGE_BEAMS * station + beam;
}

/// Node on which a unit load stands.
int BRIDGE_LOADED_NODE(int load);

/// Element of a beam over a span, 1 to 3.
constexpr int BRIDGE_BEAM(int span, int beam) {
  return 10 + BRIDGE_BEAMS * (span - 1) + beam;
}

/// Truss of a beam's bearing on a support, 1 to 4.
constexpr int BRIDGE_BEARING(int support, int beam) {
  return 30 + BRIDGE_BEAMS * (support - 1) + beam;
}

/// Plate of the slab between a beam and the next one.
constexpr int BRIDGE_PANEL(int beam) {
  return 50 + beam;
}

/// Components of the slab panels, in kNm and kN per metre of bridge; the others of the eight are 0.
enum BRIDGE_PANEL_ITEM : int {
  BRIDGE_PANEL_MOMENT_ACROSS = 5,
  BRIDGE_PANEL_TORSION = 6,
  BRIDGE_PANEL_SHEAR_ACROSS = 8
};

/// Components of SIMB, id = beam. At a section the value just before it is meant unless "behind" is said.
enum BRIDGE_ITEM : int {
  BRIDGE_MOMENT_FIRST_SPAN = 1,    // x = 8, 0.4 of the first span
  BRIDGE_MOMENT_FIRST_PIER = 2,    // x = 20
  BRIDGE_MOMENT_MAIN_SPAN = 3,     // x = 35
  BRIDGE_MOMENT_SECOND_PIER = 4,   // x = 50
  BRIDGE_MOMENT_LAST_SPAN = 5,     // x = 62
  BRIDGE_SHEAR_ABUTMENT = 6,       // x = 0, behind
  BRIDGE_SHEAR_BEFORE_PIER_1 = 7,  // x = 20
  BRIDGE_SHEAR_BEHIND_PIER_1 = 8,  // x = 20, behind
  BRIDGE_SHEAR_BEFORE_PIER_2 = 9,  // x = 50
  BRIDGE_SHEAR_BEHIND_PIER_2 = 10,
  BRIDGE_TORSION_ABUTMENT = 11,      // x = 0, behind
  BRIDGE_TORSION_BEHIND_PIER_1 = 12  // x = 20, behind
};

/// Moving load cases of the bridge. Loads are nominal, without partial factors; the lane factors are those of
/// clause 6.4.1 for HA and 6.4.2 for HB: two lanes in full, one of which may be the HB's, and a third in the
/// last.
enum BRIDGE_CASE : int {
  BRIDGE_CASE_HA = 1,         // full HA in two lanes and a third in the other, in all three choices
  BRIDGE_CASE_HA_SINGLE = 2,  // full HA in one lane, the others empty
  BRIDGE_CASE_HA_ANY = 3,     // the above, and full HA in two lanes with the third one empty
  BRIDGE_CASE_HB = 4,  // HB in one lane, full HA in another and a third in the last, in all six choices
  BRIDGE_CASE_STRADDLING_FULL = 5,   // HB across lanes 1 and 2, full HA UDL on both, a third of HA in lane 3
  BRIDGE_CASE_STRADDLING_THIRD = 6,  // the same with full HA UDL on one, a third on the other, full HA in 3
  BRIDGE_CASE_HB_ANY = 7             // all combinations of cases 4, 5 and 6
};

/// A result that is worth asking for.
struct T_NAMED_RESULT {
  std::string name;
  int kind = 0;  // RESULT_KIND
  int id = 0;    // RESULT_ID
  int item = 0;  // RESULT_ITEM
  std::string unit;
};

struct T_EXAMPLE {
  T_MODEL model;
  std::string title;
  std::vector<std::string> lane_names;
  std::vector<std::string> case_names;
  std::vector<T_NAMED_RESULT> results;          // of blocks of the directory file
  std::vector<T_NAMED_RESULT> element_results;  // of element files
};

/// The example bridge; its responses are worked out afresh, in a fraction of a second.
T_EXAMPLE EXAMPLE_BRIDGE();

}  // namespace modelkit
