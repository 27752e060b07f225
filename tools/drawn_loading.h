// A governing loading as it is drawn: each lane's influence line, and on it the loads of one side.
//
// The records of a run name loaded ranges by numbers that don't always lead back to a place, as
// docs/records.md tells. So the HA search is run once more on each line, beside the HB where one stands, and
// the ranges that it loads are followed along the line. The effects of all lanes together are then the value
// of the side again, but for rounding, which tells whether the drawing is right.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "kernel/run_state.h"
#include "results/result_skeleton.h"
#include "tools/envelope_report.h"
#include "tools/governing_loading.h"
#include "tools/host_run.h"

namespace tools {

/// A point of an influence line. Where the line jumps, the two ordinates differ.
struct T_LINE_POINT {
  double x = 0.0;  // distance along the lane
  double before = 0.0;
  double after = 0.0;
  bool operator==(const T_LINE_POINT&) const = default;
};
using T_INFLUENCE_LINE = std::vector<T_LINE_POINT>;

/// The influence lines of a lane as a run builds them, given the response of one component to every unit load:
/// one line, or those of the planes of a straddle lane. Without the lane definitions of vehicle classes.
[[nodiscard]] std::vector<T_INFLUENCE_LINE> LINES_OF_LANE(const kernel::T_MODEL& model,
                                                          const search::T_LOAD_ORD& LOAD_ORD,
                                                          results::ROW_LAYOUT layout,
                                                          const search::T_LANE& lane);

/// The part of a line over a stretch, its ends interpolated.
[[nodiscard]] T_INFLUENCE_LINE PART_OF(const T_INFLUENCE_LINE& line, const T_STRETCH& stretch);

/// The point at which a line jumps the most; none where it doesn't.
[[nodiscard]] std::optional<T_LINE_POINT> JUMP_OF(const T_INFLUENCE_LINE& line);

struct T_DRAWN_UDL {
  double intensity = 0.0;            // kN/m
  std::vector<T_STRETCH> stretches;  // along the lane, with gaps between them
  double loaded_length = 0.0;        // of them all
  double vehicle_length = 0.0;       // of an HB, which counts as loaded length too
  double area = 0.0;                 // of the line over them
};

struct T_DRAWN_KEL {
  double x = 0.0;
  double load = 0.0;  // kN
  double ordinate = 0.0;
};

struct T_DRAWN_AXLE {
  double x = 0.0;
  double load = 0.0;      // kN
  double ordinate = 0.0;  // of the lane that the axle runs on
  std::int32_t lane = 0;
};

struct T_DRAWN_HB {
  std::int32_t type = 0;
  PASS pass = PASS::NONE;
  std::array<T_DRAWN_AXLE, search::HB_AXLES> axles{};  // from the first, the way it drives
  std::int32_t plane = 0;                              // of a straddle lane; 0: no plane adds anything
};

[[nodiscard]] double SUM_OF_ORDINATES(const T_DRAWN_HB& hb);

struct T_DRAWN_LANE {
  std::int32_t lane = 0;
  CARRIES carries = CARRIES::NOTHING;
  double factor = 0.0;
  std::int32_t times = 1;          // that the lane counts: once for each vehicle of its class
  double portion = 1.0;            // of the UDL that acts, beside a straddling HB
  T_INFLUENCE_LINE line;           // of a parent lane beside a straddling HB: as that HB's lane has it
  std::optional<T_STRETCH> clear;  // of the HB, free of UDL
  std::optional<T_DRAWN_UDL> udl;
  std::optional<T_DRAWN_KEL> kel;
  std::optional<T_DRAWN_HB> hb;
  std::array<std::int32_t, 2> parents{};  // of a straddle lane
  std::int32_t planes = 1;
  std::int32_t straddle_lane = 0;  // of a parent lane beside a straddling HB
  double effect = 0.0;             // what the lane adds to the value, its factor included
};

struct T_DRAWN_SIDE {
  HOST_SIDE side = MAXIMUM;
  double value = 0.0;
  bool governed = false;  // false: no combination has a value beyond 0, and no lane is loaded
  // All lanes of the model, by number. A parent lane with loads of its own beside a straddling HB stands
  // twice.
  std::vector<T_DRAWN_LANE> lanes;

  /// Whether the loads that are drawn add up to the value.
  [[nodiscard]] bool ADDS_UP() const;
};

/// Both sides of a report, by HOST_SIDE; without lanes where neither is governed. Reads the response once
/// more, from the store where the report has volumes, and throws T_TOOL_FAILURE where it can't be
/// read.
[[nodiscard]] std::array<T_DRAWN_SIDE, 2> DRAW_LOADING(const T_ENVELOPE_REPORT& report,
                                                       const kernel::T_MODEL& model,
                                                       store::INFLUENCE_STORE& store);

/// Gives the UDL of each lane the stretches that are drawn. Where the drawing isn't that of the records, in
/// the value of the side or in the intensity on the lane, the UDL stays without.
void TELL_STRETCHES(const T_DRAWN_SIDE& drawn, T_SIDE_LOADING& loading);

}  // namespace tools
