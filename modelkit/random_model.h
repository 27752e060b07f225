// Random small models for tests: valid, and different in every feature that the files can carry.
#pragma once

#include <random>

#include "modelkit/model.h"

namespace modelkit {

struct T_RANDOM_OPTIONS {
  int max_lanes = 4;  // ordinary lanes, at least 1 of them
  int max_points = 40;
  int max_classes = 3;
  int max_cases = 3;
  int max_combinations = 6;      // of a moving load case; some cases have none
  double other_sub_cases = 0.1;  // share of lane codes with a sub-case other than 1
  double repeated_points = 0.5;  // share of models whose lanes consist of segments, end points standing twice
  double straddle_lanes = 0.0;   // share of models with one or two straddle lanes
  double axle_lists = 0.0;       // share of models with axle lists
  double class_definitions = 0.0;      // share of models with lane definitions of single classes
  double warping = 0.1;                // share of models with 7 degrees of freedom
  bool responses_of_all_kinds = true;  // else displacements alone
  double longest_step = 5.0;           // between two points of a lane
};

/// A valid model: references, codes and counts within their bounds, straddle lanes last with at least three
/// planes, lane numbers of axle lists on lanes with the same stations. Responses are waves of both signs,
/// with values and runs that are exactly 0 or equal among them, and jumps in those of beams and walls; ids
/// are drawn with gaps, and elements lie in up to four files. Equal states of the generator give equal
/// models.
T_MODEL RANDOM_MODEL(std::mt19937_64& random, const T_RANDOM_OPTIONS& options = {});

}  // namespace modelkit
