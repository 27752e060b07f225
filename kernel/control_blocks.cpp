#include "kernel/control_blocks.h"

#include <limits>

#include "kernel/block_file.h"
#include "search/vehicle_tables.h"

namespace kernel {
namespace {

constexpr std::int64_t WORD = 4;
constexpr std::int32_t NO_LIMIT = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t INFLUENCE_FORMAT = 9600;

/// The words of the one record of a control block, from 0.
/// The record stays good until the unit is read again.
class WORDS {
 public:
  STATUS READ(BLOCK_READER& block, std::int64_t count) { return block.READ(1, count * WORD, bytes_); }
  [[nodiscard]] std::int32_t operator()(std::int64_t word) const {
    return UNPACK(bytes_ + word * WORD).NEXT<std::int32_t>();
  }

 private:
  const std::byte* bytes_ = nullptr;
};

STATUS read_mvif(RECORD_FILE& unit, const std::string& file_name, T_COUNTS& counts) {
  constexpr std::int64_t FIXED_WORDS = 25;  // beside the N_COMBINATION
  constexpr std::int64_t FIRST_COMBINATION_WORD = 19;
  BLOCK_READER block;
  if (STATUS status = block.OPEN_MANDATORY(unit, file_name, "MVIF", 0); !status.OK()) return status;
  WORDS words;
  if (STATUS status = words.READ(block, FIXED_WORDS); !status.OK()) return status;

  struct T_FIELD {
    std::int64_t word;
    const char* name;
    std::int32_t T_COUNTS::*field;
    std::int32_t low;
    std::int32_t high;
  };
  static constexpr T_FIELD FIELDS[] = {
      {0, "N_VEHICLE_GROUP", &T_COUNTS::N_VEHICLE_GROUP, 0, NO_LIMIT},
      {1, "NUM_LANE", &T_COUNTS::NUM_LANE, 0, NO_LIMIT},
      {2, "N_MV_CASE", &T_COUNTS::N_MV_CASE, 0, NO_LIMIT},
      {3, "N_UNIT_LOAD", &T_COUNTS::N_UNIT_LOAD, 1, NO_LIMIT},
      {4, "MAX_POINTS", &T_COUNTS::MAX_POINTS, 0, NO_LIMIT - 1},
      {5, "N_REAC_NODE", &T_COUNTS::N_REAC_NODE, 0, NO_LIMIT},
      {9, "N_VEHICLE_COLUMN", &T_COUNTS::N_VEHICLE_COLUMN, 0, search::MAX_VEHICLES},
      {10, "N_VEHICLE_CLASS", &T_COUNTS::N_VEHICLE_CLASS, 0, NO_LIMIT},
      {13, "N_LOCAL_REACTION", &T_COUNTS::N_LOCAL_REACTION, 0, NO_LIMIT},
      {15, "N_STRADDLE", &T_COUNTS::N_STRADDLE, 0, NO_LIMIT},
      {16, "MAX_LANE_EXTRA", &T_COUNTS::MAX_LANE_EXTRA, 0, NO_LIMIT},
      {17, "MAX_SPREAD", &T_COUNTS::MAX_SPREAD, 0, NO_LIMIT},
  };
  for (const T_FIELD& field : FIELDS) {
    counts.*field.field = words(field.word);
    STATUS status = block.BOUNDS(1, field.name, words(field.word), field.low, field.high);
    if (!status.OK()) return status;
  }
  if (STATUS status = block.BOUNDS(1, "N_STRADDLE", counts.N_STRADDLE, 0, counts.NUM_LANE); !status.OK()) {
    return status;
  }
  counts.PLATE_FORM = words(7) % 100;
  counts.CLASS_LANES = words(18);

  // Read anew at its full length: the counts of the moving load cases stand between the fixed words.
  if (STATUS status = words.READ(block, FIXED_WORDS + counts.N_MV_CASE); !status.OK()) return status;
  counts.N_COMBINATION.clear();
  for (std::int64_t mv_case = 1; mv_case <= counts.N_MV_CASE; ++mv_case) {
    const std::int32_t combinations = words(FIRST_COMBINATION_WORD + mv_case - 1);
    if (STATUS status = block.BOUNDS(1, "N_COMBINATION", combinations, 0, NO_LIMIT); !status.OK())
      return status;
    counts.N_COMBINATION.push_back(combinations);
  }
  const std::int64_t behind = FIRST_COMBINATION_WORD + counts.N_MV_CASE;
  counts.MAX_TRANSVERSE = words(behind + 2);
  counts.KEEP_POINTS = words(behind + 4) != 0;
  return block.BOUNDS(1, "MAX_TRANSVERSE", counts.MAX_TRANSVERSE, 0, NO_LIMIT);
}

STATUS read_mldi(RECORD_FILE& unit, const std::string& file_name, T_COUNTS& counts) {
  constexpr std::int32_t SHORT_FORM = 17;
  BLOCK_READER block;
  if (STATUS status = block.OPEN_MANDATORY(unit, file_name, "MLDI", 0); !status.OK()) return status;
  WORDS words;
  const std::int64_t length = block.REC_WORDS() == SHORT_FORM ? SHORT_FORM : SHORT_FORM + 1;
  if (STATUS status = words.READ(block, length); !status.OK()) return status;
  for (std::size_t family = 0; family < ELEMENT_FAMILIES.size(); ++family) {
    counts.ELEM_PER_FILE[family] = words(static_cast<std::int64_t>(3 * family + 1));
  }
  counts.N_DOF = words(15) == 1 ? 7 : 6;
  return {};
}

}  // namespace

STATUS READ_COUNTS(RECORD_FILE& unit, const std::string& file_name, T_COUNTS& counts) {
  if (STATUS status = read_mvif(unit, file_name, counts); !status.OK()) return status;
  return read_mldi(unit, file_name, counts);
}

STATUS READ_NUM_LANE(RECORD_FILE& unit, const std::string& file_name, std::int32_t& num_lane) {
  BLOCK_READER block;
  if (STATUS status = block.OPEN_MANDATORY(unit, file_name, "MVIF", 0); !status.OK()) return status;
  WORDS words;
  if (STATUS status = words.READ(block, 2); !status.OK()) return status;
  if (STATUS status = block.BOUNDS(1, "NUM_LANE", words(1), 0, NO_LIMIT); !status.OK()) return status;
  num_lane = words(1);
  return {};
}

STATUS CHECK_INFLUENCE_FORMAT(RECORD_FILE& unit, const std::string& file_name) {
  BLOCK_READER block;
  if (STATUS status = block.OPEN_MANDATORY(unit, file_name, "IFSV", 0); !status.OK()) return status;
  WORDS words;
  if (STATUS status = words.READ(block, 3); !status.OK()) return status;
  if (words(2) == INFLUENCE_FORMAT) return {};
  return block.AT(STATUS::FAILED(REASON::WRONG_FORMAT_NUMBER, words(2)), 1);
}

}  // namespace kernel
