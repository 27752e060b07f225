// From a result point and a unit load to numbers.
//
// A row holds the values of one ID under one unit load, at positions from 1. Nothing is computed: a value is
// one of the ID's record, or 0 where the record has none. Results of nodes and of virtual bars stand as the
// record has them. Elements are arranged anew by family, in up to two parts with a record each, forces and
// stresses; the arrangements are one table in the source. Which family an element belongs to follows from the
// lists that it stands in.
//
//   FAMILY  POSITIONS   FROM
//      256      1 - 48  force items 1 to 6 of up to 8 points, points 2 and 3, 4 and 5, 6 and 7 interleaved
//              49 - 72  force items 7 to 9, likewise
//              73 - 132 stress items 5 to 8 and 12 to 19 at five stations
//      512      1 - 48  force record, interleaved
//              49 - 68  stress items 4 to 7 at five stations
//     4096      1 - 40  force items, 8 positions a point
//               S -     stress items 5, 6, 7, 1, 2, 3, 6 positions a point; S is 9 behind one point,
//                       41 behind several, 1 without forces
//     8192      1 - 24  force items 1 to 3 from point 2 on
//              25 - 78  stress items 1 to 6
//    16384, 65536       force item 1 of each point
//     1024, 32768       force record
//   composite bar, one part of it
//               1 - 15  force items 1 to 3 at five stations
//              16 - 35  stress items 2 to 5 at five stations
//
// Five stations: points 1, 2, 4, 6 and the last. Interleaved: of two points A and B with n items each B1 A1
// B2 A2 to Bn An, so that the two values of an item at one place of the element stand side by side.
#pragma once

#include <cstdint>

#include "common/status.h"
#include "store/m_influence.h"

namespace store {

enum class READ : std::uint8_t { DISP, LDISP, REAC, LREAC, VIRTUAL_BAR, COMPOSITE_BAR, ELEMENT };

/// What is asked for. Of a row that is too short for its second part this part is left out, as far as a
/// family says so; beyond that rows are cut to what is asked for.
struct T_READ {
  READ KIND = READ::DISP;
  std::int32_t ID = 0;
  std::int32_t NCOMP = 0;           // positions of a row
  std::int32_t PART = 0;            // of a composite bar, from 1
  std::int32_t FIRST_POSITION = 1;  // of these those that are read,
  std::int32_t POSITIONS = NCOMP;   // and how many
};

/// The row of one unit load: POSITIONS values. Zeros where the store has nothing, with an unknown load too.
/// Leaves the row alone where no store is open. A record that can't be read gives zeros and fails.
STATUS READ_ONE(INFLUENCE_STORE& store, const T_READ& read, std::int32_t load, float* row);

/// The rows of all unit loads, N_TOTAL_LOADS times POSITIONS values, likewise. What isn't asked for isn't
/// read.
STATUS READ_ALL(INFLUENCE_STORE& store, const T_READ& read, float* rows);

/// Whether a read finds a record of the node or element, and so none of an element of two families; of
/// reactions, whether the primary set lists the support.
[[nodiscard]] bool IS_STORED(const INFLUENCE_STORE& store, READ kind, std::int32_t id) noexcept;

}  // namespace store
