// The kinds of result that are searched, and which values of a model's responses their items read.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "include/movload.h"
#include "modelkit/model.h"

namespace plain {

/// Where a kind's responses stand, in a block or in element files, and how many items it has: 0 as many as a
/// node has degrees of freedom, -1 by the plate form.
struct KIND {
  std::int32_t RESULT_KIND;
  std::vector<modelkit::T_RESPONSE> modelkit::T_MODEL::*RESPONSES;
  int ITEMS;
  bool OF_ELEMENTS = false;
};
inline constexpr std::array<KIND, 11> KINDS{{{MOVLOAD_RK_DISP, &modelkit::T_MODEL::disp, 0},
                                             {MOVLOAD_RK_REAC, &modelkit::T_MODEL::reac, 0},
                                             {MOVLOAD_RK_LRAC, &modelkit::T_MODEL::lrac, 0},
                                             {MOVLOAD_RK_LDSP, &modelkit::T_MODEL::ldisp, 0},
                                             {MOVLOAD_RK_SIMB, &modelkit::T_MODEL::simb, 12},
                                             {MOVLOAD_RK_ELNK, &modelkit::T_MODEL::elnk, 12},
                                             {MOVLOAD_RK_NLNK, &modelkit::T_MODEL::nlnk, 12},
                                             {MOVLOAD_RK_TRUSS, &modelkit::T_MODEL::trusses, 2, true},
                                             {MOVLOAD_RK_PLATE, &modelkit::T_MODEL::plates, -1, true},
                                             {MOVLOAD_RK_BEAM, &modelkit::T_MODEL::beams, 50, true},
                                             {MOVLOAD_RK_WALL, &modelkit::T_MODEL::walls, 105, true}}};

/// Null for a kind that has no routine.
const KIND* KIND_OF(std::int32_t result_kind);

/// 0 for plates of no known form.
int ITEMS_OF(const KIND& kind, const modelkit::T_MODEL& model);

/// The values of a response, from 1, that an item reads: two where they differ before and after a point.
std::vector<int> VALUES_OF(std::int32_t result_kind, int item);

/// Whether the line of an item may jump and keeps its repeated points.
bool MAY_JUMP(std::int32_t result_kind, int item);

}  // namespace plain
