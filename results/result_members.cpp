#include "results/result_members.h"

#include <algorithm>
#include <array>

#include "kernel/block_file.h"
#include "kernel/input_blocks.h"

namespace results {
namespace {

using kernel::T_COUNTS;

// RESULT_DISP, RESULT_REAC, RESULT_LRAC, RESULT_SIMB and RESULT_LINK, by kind of result.
constexpr std::array<T_FAMILY, 7> FAMILY_TABLE{{
    {kernel::RK_DISP, "DISP", FIND_RUN::BY_ID, 0, 0, ROW_LAYOUT::SIMPLE, nullptr},
    {kernel::RK_LDSP, "LDSP", FIND_RUN::BY_LOCAL_AXES, 0, 0, ROW_LAYOUT::SIMPLE, nullptr},
    {kernel::RK_REAC, "REAC", FIND_RUN::BY_NODE_NUMBER, 1, 0, ROW_LAYOUT::SIMPLE, &T_COUNTS::N_REAC_NODE},
    {kernel::RK_LRAC, "LRAC", FIND_RUN::BY_NODE_NUMBER, 1, 0, ROW_LAYOUT::SIMPLE,
     &T_COUNTS::N_LOCAL_REACTION},
    {kernel::RK_SIMB, "SIMB", FIND_RUN::BY_ID, 0, 12, ROW_LAYOUT::SIMPLE, nullptr},
    {kernel::RK_ELNK, "ELNK", FIND_RUN::BY_ID, 3, 12, ROW_LAYOUT::SIMPLE, nullptr},
    {kernel::RK_NLNK, "NLNK", FIND_RUN::BY_ID, 3, 12, ROW_LAYOUT::SIMPLE, nullptr},
}};

constexpr std::int32_t RESULT_BLOCK_ID = 5;
constexpr std::int64_t WORD_BYTES = 4;

std::int32_t components_of(const T_FAMILY& family, const T_COUNTS& counts) {
  return family.COMPONENTS > 0 ? family.COMPONENTS : counts.N_DOF;
}

float word(const std::byte* record, std::int64_t index) {
  return kernel::UNPACK(record + index * WORD_BYTES).NEXT<float>();
}

/// The ordinates of one result point out of the block of its family.
class LOAD_ORD_READER {
 public:
  LOAD_ORD_READER(const T_FAMILY& family, const T_COUNTS& counts, std::int32_t item,
                  kernel::BLOCK_READER& block, search::T_LOAD_ORD& LOAD_ORD)
      : loads_(counts.N_UNIT_LOAD),
        bytes_(WORD_BYTES * (family.WORDS_SKIPPED + components_of(family, counts))),
        column_word_(family.WORDS_SKIPPED + item - 1),
        block_(block),
        LOAD_ORD_(LOAD_ORD) {}

  /// Run p of the block, from 1. A run that lies, wholly or in part, outside the block leaves the ordinates
  /// at 0.
  STATUS READ_RUN(std::int64_t p) {
    if (!is_in_block(p)) return {};
    return read_rows(p, [](const std::byte*) { return true; });
  }

  /// The run whose records carry the node's number. Each other run costs one read; where the number changes
  /// within a run, the run is left there.
  STATUS FIND_NODE(std::int32_t node, std::int32_t runs) {
    const auto is_wanted = [node](const std::byte* record) {
      return TRUNCATE(static_cast<double>(word(record, 0))) == node;
    };
    for (std::int64_t s = 1; s <= runs && is_in_block(s); ++s) {
      LOAD_ORD_.VALUES = {};
      const std::byte* record = nullptr;
      if (STATUS status = block_.READ(first_record(s), bytes_, record); !status.OK()) return status;
      if (!is_wanted(record)) continue;
      if (STATUS status = read_rows(s, is_wanted); !status.OK()) return status;
      if (found_to_the_end_) return {};
    }
    return {};
  }

 private:
  [[nodiscard]] std::int64_t first_record(std::int64_t p) const { return (p - 1) * loads_ + 1; }
  [[nodiscard]] bool is_in_block(std::int64_t p) const {
    return p >= 1 && first_record(p) + loads_ - 1 <= block_.NUM_REC();
  }

  template <class IS_WANTED>
  STATUS read_rows(std::int64_t p, IS_WANTED is_wanted) {
    if (STATUS status = block_.CHECK_ROOM(first_record(p), loads_, bytes_); !status.OK()) return status;
    LOAD_ORD_.VALUES.RESIZE(1, loads_);
    found_to_the_end_ = false;
    for (std::int64_t k = 1; k <= loads_; ++k) {
      const std::byte* record = nullptr;
      if (STATUS status = block_.READ(first_record(p) + k - 1, bytes_, record); !status.OK()) return status;
      if (!is_wanted(record)) return {};
      LOAD_ORD_.VALUES(1, k) = word(record, column_word_);
    }
    found_to_the_end_ = true;
    return {};
  }

  const std::int64_t loads_;
  const std::int64_t bytes_;        // read of a record
  const std::int64_t column_word_;  // of the component in hand, from 0
  kernel::BLOCK_READER& block_;
  search::T_LOAD_ORD& LOAD_ORD_;
  bool found_to_the_end_ = false;
};

/// Fetches the ordinates of a result point. `nothing_to_search` is set where the routine returns at once.
STATUS fetch(const T_FAMILY& family, const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
             kernel::RECORD_FILE& unit, search::T_LOAD_ORD& LOAD_ORD, bool& nothing_to_search) {
  std::int32_t run = request.RESULT_ID;
  if (family.FINDING == FIND_RUN::BY_LOCAL_AXES) {
    STATUS status = kernel::LOCAL_AXES_POSITION(unit, request.FILE_NAME, model.COUNTS.N_UNIT_LOAD, run, run);
    if (!status.OK()) return status;
    nothing_to_search = run == 0;
    if (nothing_to_search) return {};
  }
  kernel::BLOCK_READER block;
  STATUS status = block.OPEN_MANDATORY(unit, request.FILE_NAME, family.TAG, RESULT_BLOCK_ID);
  if (!status.OK()) return status;
  LOAD_ORD_READER reader(family, model.COUNTS, request.RESULT_ITEM, block, LOAD_ORD);
  return family.FINDING == FIND_RUN::BY_NODE_NUMBER
             ? reader.FIND_NODE(request.RESULT_ID, model.COUNTS.*family.NODES)
             : reader.READ_RUN(run);
}

}  // namespace

const T_FAMILY* FIND_FAMILY(std::int32_t result_kind) {
  const auto row =
      std::find_if(FAMILY_TABLE.begin(), FAMILY_TABLE.end(),
                   [result_kind](const T_FAMILY& family) { return family.RESULT_KIND == result_kind; });
  return row == FAMILY_TABLE.end() ? nullptr : &*row;
}

STATUS RUN_FAMILY(const T_FAMILY& family, const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
                  kernel::RECORD_FILE& unit, kernel::T_ENVELOPE& envelope) {
  const std::int32_t components = components_of(family, model.COUNTS);
  if (STATUS status = CHECK_BOUNDS("RESULT_ITEM", request.RESULT_ITEM, 1, components); !status.OK())
    return status;
  search::T_LOAD_ORD LOAD_ORD;
  bool nothing_to_search = false;
  STATUS status = fetch(family, model, request, unit, LOAD_ORD, nothing_to_search);
  if (!status.OK() || nothing_to_search) return status;
  const T_LANE_PHASE lane_phase = RUN_LANE_PHASE(model, LOAD_ORD, family.LAYOUT);
  return RUN_COMBINATION_PHASE(model, lane_phase, request.MV_CASE, envelope);
}

}  // namespace results
