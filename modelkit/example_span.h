// Two small models to be worked out by hand: one simply supported span and two continuous spans, one lane
// each, with exact influence ordinates.
//
// Both have a single moving load case of one combination: the lane carries HA alone (sub-case 1) at scale 1.
// The responses belong to block SIMB, id 1 (RESULT_KIND 12). Moments in kNm are positive sagging, reactions
// in kN positive upward. Unit load k stands at the k-th influence point on the deck.
//
// Distances run from the lane's start. Where the lane runs on beyond the deck (`overrun`), the deck begins at
// x = overrun; a point without links stands abutment_gap before the deck and behind it, so that the influence
// line falls to 0 there, and further ones follow every overrun_step. An HB needs such a lane to come near a
// support: it keeps 25 m of the lane free before its first axle and behind its last.
#pragma once

#include "modelkit/model.h"

namespace modelkit {

/// The vehicle of BS 5400-2:1978: HA with 30 kN/m up to 30 m and 151 (1/L)^0.475 beyond, not below 9 kN/m, a
/// knife edge of 120 kN, and HB with `hb_units` units of 10 kN per axle, bogie axles 1.8 m apart and 6, 11,
/// 16, 21 or 26 m between the inner axles. Class 1.
T_VEHICLE HA_1978_VEHICLE(double hb_units = 45.0);

/// How a hand example's lane is laid out.
struct T_SPAN_LANE {
  double overrun = 0.0;         // length of the lane before and behind the deck in m, 0 or above abutment_gap
  double overrun_step = 1.0;    // above 0; between the points off the deck, from the lane's ends on
  double abutment_gap = 0.001;  // from the deck's end to the nearest point off it
  DIRECTION direction = DIRECTION::BOTH;
};

/// Components of SIMB 1 of the simple span.
enum SPAN_ITEM : int { SPAN_MIDSPAN_MOMENT = 1, SPAN_END_SHEAR = 2 };

inline constexpr int SPAN_BEAM = 2;

/// A simply supported span of `span` m with `points` equidistant influence points. An odd number puts one at
/// midspan, where the knife edge belongs. END_SHEAR is the reaction of the support at the lane's start. Beam
/// element SPAN_BEAM is the span too, with its forces at five stations (beam_results.h) and section moduli of
/// 1. Its number is another than that of SIMB, so that influence volumes can hold both.
///
/// By hand, for the midspan moment w L^2 / 8 + 120 L / 4: 3093.75 kNm at 25 m, 4275 kNm at 30 m and, with
/// w = 151 (1/50)^0.475, 8858.96 kNm at 50 m; the end shear w L / 2 + 120 at 25 m is 495 kN.
T_MODEL SIMPLE_SPAN_MODEL(double span = 25.0, int points = 51, const T_SPAN_LANE& lane = {});

/// Components of SIMB 1 of the two-span beam.
enum TWO_SPAN_ITEM : int {
  TWO_SPAN_SUPPORT_MOMENT = 1,  // over the inner support
  TWO_SPAN_FIRST_MOMENT = 2,    // in the first span
  TWO_SPAN_SECOND_MOMENT = 3,   // in the second span
  TWO_SPAN_FIRST_REACTION = 4,
  TWO_SPAN_INNER_REACTION = 5,
  TWO_SPAN_LAST_REACTION = 6,
  TWO_SPAN_SHEAR_BEFORE = 7,  // just before the inner support: the upward forces as far as there
  TWO_SPAN_SHEAR_BEHIND = 8   // just behind it
};

/// Where the moments in the spans are taken, as a part of each span from its start.
struct T_TWO_SECTIONS {
  double first = 0.5;
  double second = 0.5;
};

/// A beam of constant stiffness over two spans, with `points` influence points a span that share the one over
/// the inner support. There the two shears jump by 1; the lines fall or rise over the step behind it.
T_MODEL TWO_SPAN_MODEL(double first_span = 20.0, double second_span = 30.0, int points = 41,
                       const T_SPAN_LANE& lane = {}, const T_TWO_SECTIONS& sections = {});

/// Puts two lanes and a straddle lane over both in the place of the model's one, all with its points. The
/// beam carries shares[p] of what stands on plane p + 1 of the straddle lane; of its three planes or more, 2
/// and 3 are the lanes 1 and 2. The combinations stay as they are.
void STRADDLE_TWO_LANES(T_MODEL& model, const std::vector<double>& shares);

}  // namespace modelkit
