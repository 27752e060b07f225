// The blocks that describe what moves and where: lanes with their influence points (LNIF), vehicles (VEHI),
// lane definitions of one class (PHSL, LVPF), axle lists (MLIF) and the local axes table (NLAX).
//
// Records hold their items packed, and may be shorter
// than the block's record length. int is int32, real float64.
//
//   LNIF, for each lane:
//     head record of 44 bytes   int LANE_NUMBER, N_SPREAD, LANE_STATIONS, N_LANE_EXTRA, LANE_DIRECTION; real
//                               unused; int IS_STRADDLE, N_TRANSVERSE, N_PER_PLANE, LANE_KEEP_POINTS
//     straddle record           where IS_STRADDLE is 1: int STRADDLE_LEFT, STRADDLE_RIGHT; reals unused
//     N_SPREAD spread records   int count; four pairs of int load number and real weight
//     LANE_STATIONS points      int, real unused; real POINT_X, POINT_IMPACT; int unused; for each of
//                               N_TRANSVERSE entries two pairs of real reference and real weight
//     N_LANE_EXTRA records      unused
//
//   VEHI, for each group:
//     group record              int VEH_GROUP, N_GROUP_VEHICLE
//     vehicle records   OFFSET    0  int VEH_CLASS
//                                 4  int VEHICLE_CODE
//                                 8  name of 20 characters, unused
//                                28  real HA_W0, HA_K, HA_WMIN, HA_P
//                                60  int N_VEHICLE_LOADS
//                                64  100 real VEHICLE_LOADS
//                               864  int N_VEHICLE_GEOM
//                               868  100 real VEHICLE_GEOM
//                              1668  400 real, unused; only where records have more than 417 words
//
//   PHSL:
//     first record              int N_CLASS_DEF, MAX_DEF_ENTRIES
//     N_CLASS_DEF key records   int group row, CLASS_DEF_NO, lane
//     N_CLASS_DEF shapes        int unused, points, entries of a point; three unused; int entries of a plane
//
//   LVPF, for each definition, point and entry:
//     record                    2 * MAX_DEF_ENTRIES + 1 real: a count, then pairs of load number and weight,
//                               held in single precision
//
//   MLIF:
//     first record              int MAX_AXLE_LIST, N_AXLE_LIST
//     N_AXLE_LIST records       int unused, VEH_CLASS, lane, n; n int lane numbers, 0 the lane itself
//
//   NLAX:
//     each record               int node, position
//
// All indices and counts are checked here; what is read can be used without a further look.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/status.h"
#include "kernel/control_blocks.h"
#include "kernel/record_file.h"
#include "search/lane_ordinates.h"
#include "search/vehicle_tables.h"

namespace kernel {

/// What the vehicles of block VEHI are: N_VEHICLE_COLUMN columns in block order, zeros behind the last
/// vehicle, and the class of each group's last vehicle.
struct T_VEHICLES {
  std::vector<search::T_VEHICLE> COLUMNS;
  std::vector<std::int32_t> LAST_CLASS;  // by group row, 0-based
};
STATUS READ_VEHICLES(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                     T_VEHICLES& vehicles);

/// Blocks PHSL and LVPF. Definitions stay empty where the model has no PHSL.
STATUS READ_CLASS_DEFINITIONS(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                              const T_VEHICLES& vehicles, search::T_CLASS_DEFINITIONS& definitions);

STATUS READ_LANES(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                  std::vector<search::T_LANE>& lanes);

/// Block MLIF, where there is one.
STATUS READ_AXLE_LANES(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                       const std::vector<search::T_LANE>& lanes, search::T_AXLE_LANES& axle_lanes);

/// Lanes are built of segments whose end points stand twice; this is the number of points of a segment, as
/// far as the lanes agree on one, else the point count of the first lane that says otherwise.
[[nodiscard]] std::int32_t POINTS_PER_SEGMENT(const std::vector<search::T_LANE>& lanes);

/// The place of a node in the block of local displacements;
/// 0 where it has no local axes or the blocks are absent.
STATUS LOCAL_AXES_POSITION(RECORD_FILE& unit, const std::string& file_name, std::int32_t n_unit_load,
                           std::int32_t node, std::int32_t& position);

}  // namespace kernel
