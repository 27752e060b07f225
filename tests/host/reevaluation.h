// Works the values of a run out again from the loading that it reported.
//
// The judge of a run follows the rules of the search and would share a misreading of one. Nothing is searched
// here: the HA UDL, HBs and knife edges of the records are put on influence lines that are built afresh in
// double precision, and added up. That must give FINAL_MAX and FINAL_MIN.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "modelkit/model.h"
#include "tests/host/host_call.h"

namespace reevaluation {

/// Response of the result to each unit load, from which alone the influence lines follow. A line that may
/// jump has two values at a point and keeps its repeated points; any other has the same list twice.
struct T_RESPONSES {
  std::vector<float> BEFORE, AFTER;
  bool JUMPS = false;
};

/// How often each thing was there to explain, by its name.
using T_SEEN = std::map<std::string, int>;

/// Whether the reported loading explains both values. `untrimmed` is a run of the same result for a moving
/// load case that the model hasn't got: its distance lists are those of lanes without an HB.
///
/// A record doesn't tell the class of its lane, so that all lanes of a combination must carry the same. Where
/// two parent lanes share an HB with UDL by thirds their own loads aren't reported, and there must be none.
/// Axle lists and lane definitions of single classes aren't known here.
testing::AssertionResult IS_EXPLAINED(const modelkit::T_MODEL& model, const T_RESPONSES& responses,
                                      const host::ARGUMENTS& got, const host::ARGUMENTS& untrimmed,
                                      T_SEEN& seen);

}  // namespace reevaluation
