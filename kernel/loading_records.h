// The loading records, and the closing passes of a run over them.
//
// The value of an envelope means little without the loading that causes it: for each lane and side a record
// of ten fields says what stands on it, a list names the loaded ranges, and a list of distances tells where
// each range lies. The host's arrays hold the lane last and the first index fastest.
#pragma once

#include <cstdint>
#include <vector>

#include "common/table.h"
#include "kernel/run_state.h"

struct FIELD {
  static constexpr char NAME[] = "record field";
};
struct NUMBER {
  static constexpr char NAME[] = "range number";
};

namespace kernel {

/// Fields of an MLOAD record, from 1. MLOADB holds the first seven.
enum MLOAD_FIELD : std::int32_t {
  VEHI_NO = 1,          // class of the last lane that contributed to the governing combination, in every lane
  W_HA_UDL = 2,         // HA UDL intensity * 1000, truncated
  NO_LOADED_RANGE = 3,  // entries of the lane's range list in use
  TYPE_OF_HB = 4,       // 1 to 5, 0 no HB
  POSITION_OF_HB = 5,   // influence point, 0 no HB
  FACTOR = 6,           // scale of the lane * 1e7, truncated
  HA_UDL_PORTION = 7,   // last digit 0 one third, 1 full
  POS_OF_HA_KEL = 8,    // influence point, HA alone only
  COMB_TYPE = 9,        // see CHECK_LOAD_COMBINATION, plus 100 * PASS_OUT
  MLOAD_F10 = 10,       // 0
};

/// The host's record arrays of one side; all lanes of the host.
struct T_HOST_SIDE {
  TABLE<std::int32_t, FIELD, LANE> K_MLOAD;                    // K_MXLOAD or K_MNLOAD
  std::array<TABLE<std::int32_t, FIELD, LANE>, 2> K_MLOADB;    // K_MXLOAD1ST and K_MXLOAD2ND, or ...
  TABLE<std::int32_t, NUMBER, LANE> K_INFL_S;                  // K_MAXINFL_S or K_MININFL_S
  std::array<TABLE<std::int32_t, NUMBER, LANE>, 2> K_INFL_SB;  // K_MAXINFL_S1ST and K_MAXINFL_S2ND, or ...
  TABLE<real, NUMBER, LANE> DISTANCE_RANGE;                    // DISTANCE_MAX_RANGE or DISTANCE_MIN_RANGE
};
using T_HOST_RECORDS = std::array<T_HOST_SIDE, N_SIDES>;

inline constexpr std::int32_t HOST_NUMBERS = 1000;   // entries of a range list, of which 500 are written
inline constexpr std::int32_t HOST_DISTANCES = 200;  // entries of a distance list

/// Writes an envelope to the host's arrays. What the host reads for lanes beyond the model's is cleared where
/// the calling contract clears it: distances and plane records, but not K_MLOAD and K_INFL_S.
void COPY_TO_HOST(const T_ENVELOPE& envelope, const T_HOST_RECORDS& host);

/// Gives the records of a straddling HB to the parent lanes, where both planes carry HA UDL. The parents' own
/// records are replaced, not merged; `pass_out` of the parents takes the straddle lane's.
void FOLD_STRADDLE_LANES(const std::vector<search::T_LANE>& lanes, T_ENVELOPE& envelope,
                         const T_HOST_RECORDS& host);

/// What the expansion of HB positions rests on.
struct T_POINT_RULES {
  std::int32_t POINTS_PER_SEGMENT = 0;
  bool KEEP_POINTS = false;
  bool CLASS_LANES = false;
  bool SECTION_ITEM = false;  // the component has jumps, so that no point was dropped
};

/// Sets COMB_TYPE and HA_UDL_PORTION for the host: 1 no lane has an HB; 2 one lane has; 3 two lanes have and
/// none has full HA UDL, also every loaded straddle lane; 4 two lanes have and one has full HA UDL. Brings HB
/// positions, counted without repeated points, to the numbering of the lane's own points. Returns how often a
/// portion digit was neither 0 nor 1, each of which is worth a message.
[[nodiscard]] std::int32_t CHECK_LOAD_COMBINATION(const T_HOST_RECORDS& host, std::int32_t num_lane,
                                                  std::int32_t n_straddle, const T_POINT_RULES& rules);

/// Takes the zone of a lane's HB out of its reported ranges, on both sides. The zone begins at the HB's point
/// and runs the way of the pass. `max_points` as the model states it: positions up to the next point behind
/// are 0 where a lane has no point, and a position beyond leaves the lane alone.
struct T_TRIM_TABLES {
  const std::vector<search::T_LANE>& LANES;
  const std::vector<search::T_VEHICLE>& VEHICLES;
  std::int32_t MAX_POINTS = 0;
};
void TRIM_RECORDS(const T_TRIM_TABLES& tables, const T_ENVELOPE& envelope, const T_HOST_RECORDS& host);

/// Adds 100 times PASS_OUT to COMB_TYPE of every lane.
void ADD_PASS_DIRECTION(const T_ENVELOPE& envelope, const T_HOST_RECORDS& host);

}  // namespace kernel
