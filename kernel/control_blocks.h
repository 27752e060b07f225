// The control blocks: MVIF, whose counts size everything, MLDI, which tells how element results are stored,
// and IFSV, which tells the format of the influence files. Each is one record.
//
//   MVIF   WORD           MEANING (int32 each)
//             0           N_VEHICLE_GROUP    groups in block VEHI
//             1           NUM_LANE           lanes, including the straddle lanes
//             2           N_MV_CASE          moving load cases
//             3           N_UNIT_LOAD        unit loads, at least 1
//             4           MAX_POINTS         greatest number of influence points of a lane
//             5           N_REAC_NODE        support nodes in block REAC
//             7           PLATE_FORM         kept modulo 100
//             9           N_VEHICLE_COLUMN   columns of the vehicle table
//            10           N_VEHICLE_CLASS    vehicle classes
//            13           N_LOCAL_REACTION   local reaction nodes
//            15           N_STRADDLE         straddle lanes, the last of the lane list
//            16           MAX_LANE_EXTRA     bounds N_LANE_EXTRA of block LNIF
//            17           MAX_SPREAD         greatest number of spread rows of a lane
//            18           CLASS_LANES        1: classes can have lane definitions of their own
//            19 on        N_COMBINATION      combinations of each of the N_MV_CASE moving load cases
//            then         two unused words
//            then         MAX_TRANSVERSE     greatest number of transverse entries of a point
//            then         one unused word
//            then         KEEP_POINTS        not 0: repeated points are kept in all lanes
//            then         one unused word
//          (6, 8, 11, 12 and 14 are unused)
//
//   MLDI   17 or 18 words. For each element family in the order T, B, P, S, W: ELEM_COUNT, ELEM_PER_FILE and
//          an unused word; then word 15 WARPING_FLAG, 1 for seven degrees of freedom a node
//
//   IFSV   three words, of which the third is the format number
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/status.h"
#include "kernel/record_file.h"

namespace kernel {

inline constexpr std::string_view ELEMENT_FAMILIES = "TBPSW";  // in the order of MLDI

/// The counts of a model, held against each other and against 0 when they are read.
struct T_COUNTS {
  std::int32_t N_VEHICLE_GROUP = 0;
  std::int32_t NUM_LANE = 0;
  std::int32_t N_MV_CASE = 0;
  std::int32_t N_UNIT_LOAD = 0;
  std::int32_t MAX_POINTS = 0;
  std::int32_t N_REAC_NODE = 0;
  std::int32_t PLATE_FORM = 0;
  std::int32_t N_VEHICLE_COLUMN = 0;
  std::int32_t N_VEHICLE_CLASS = 0;
  std::int32_t N_LOCAL_REACTION = 0;
  std::int32_t N_STRADDLE = 0;
  std::int32_t MAX_LANE_EXTRA = 0;
  std::int32_t MAX_SPREAD = 0;
  std::int32_t MAX_TRANSVERSE = 0;
  std::int32_t CLASS_LANES = 0;  // 1: lane definitions of classes are read; 0: repeated points are dropped
  bool KEEP_POINTS = false;
  std::vector<std::int32_t> N_COMBINATION;  // by moving load case
  std::array<std::int32_t, ELEMENT_FAMILIES.size()> ELEM_PER_FILE{};
  std::int32_t N_DOF = 6;  // degrees of freedom of a node, 6 or 7
};

/// MVIF and MLDI.
STATUS READ_COUNTS(RECORD_FILE& unit, const std::string& file_name, T_COUNTS& counts);

/// NUM_LANE alone, from the first two words of MVIF.
STATUS READ_NUM_LANE(RECORD_FILE& unit, const std::string& file_name, std::int32_t& num_lane);

/// Fails unless the influence files have the one format that is read.
STATUS CHECK_INFLUENCE_FORMAT(RECORD_FILE& unit, const std::string& file_name);

}  // namespace kernel
