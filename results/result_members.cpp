#include "results/result_members.h"

#include <algorithm>
#include <array>

#include "kernel/block_file.h"
#include "kernel/input_blocks.h"
#include "results/element_files.h"

namespace results {
namespace {

using kernel::T_COUNTS;
using store::READ;

// clang-format off
using enum FIND_RUN;

constexpr std::array<T_FAMILY, 13> FAMILY_TABLE{{
    // RESULT_DISP, RESULT_REAC, RESULT_LRAC, RESULT_SIMB and RESULT_LINK
    {kernel::RK_DISP, BY_ID, "DISP", READ::DISP, 0, OF_NODE},
    {kernel::RK_LDSP, BY_LOCAL_AXES, "LDSP", READ::LDISP, 0, OF_NODE},
    {kernel::RK_REAC, BY_NODE_NUMBER, "REAC", READ::REAC, 1, OF_NODE, &T_COUNTS::N_REAC_NODE},
    {kernel::RK_LRAC, BY_NODE_NUMBER, "LRAC", READ::LREAC, 1, OF_NODE, &T_COUNTS::N_LOCAL_REACTION},
    {kernel::RK_SIMB, BY_ID, "SIMB", READ::ELEMENT, 0, 12},
    {kernel::RK_ELNK, BY_ID, "ELNK", READ::ELEMENT, 3, 12},
    {kernel::RK_NLNK, BY_ID, "NLNK", READ::ELEMENT, 3, 12},
    // RESULT_TRUSS, RESULT_PLATE, RESULT_BEAM, RESULT_BEAM_EXTRA, RESULT_WALL and RESULT_WALL_EXTRA
    {kernel::RK_TRUSS, IN_ELEMENT_FILE, "T", READ::ELEMENT, 1, 2},
    {kernel::RK_PLATE, IN_ELEMENT_FILE, "P", READ::ELEMENT, 5, OF_PLATE},
    {kernel::RK_BEAM, IN_ELEMENT_FILE, "B", READ::ELEMENT, 1, 30, nullptr, 0, 69, ROW_LAYOUT::JUMP},
    {kernel::RK_BEAM, IN_ELEMENT_FILE, "B", READ::ELEMENT, 49, 20, nullptr, 30},
    {kernel::RK_WALL, IN_ELEMENT_FILE, "W", READ::ELEMENT, 1, 30, nullptr, 0, 133, ROW_LAYOUT::JUMP},
    {kernel::RK_WALL, IN_ELEMENT_FILE, "W", READ::ELEMENT, 73, 60, nullptr, 45},
}};
// clang-format on

constexpr std::array<std::int32_t, 4> PLATE_COMPONENTS{8, 40, 14, 70};  // by PLATE_FORM, from 1
constexpr std::int32_t RESULT_BLOCK_ID = 5;
constexpr std::int64_t WORD_BYTES = 4;

std::int32_t components_of(const T_FAMILY& family, const T_COUNTS& counts) {
  if (family.COMPONENTS == OF_NODE) return counts.N_DOF;
  if (family.COMPONENTS != OF_PLATE) return family.COMPONENTS;
  const auto form = static_cast<std::size_t>(counts.PLATE_FORM - 1);
  return form < PLATE_COMPONENTS.size() ? PLATE_COMPONENTS[form] : 0;
}

/// The row that serves a component; null for a kind that has no routine. Fails where the kind has no such
/// component, and for plates of no known form.
STATUS find_row(const T_COUNTS& counts, const kernel::T_REQUEST& request, const T_COMPONENT& component,
                const T_FAMILY*& family) {
  if (request.RESULT_KIND == kernel::RK_PLATE) {
    const STATUS status =
        CHECK_BOUNDS("PLATE_FORM", counts.PLATE_FORM, 1, std::int64_t{PLATE_COMPONENTS.size()});
    if (!status.OK()) return status.IN("MVIF", 1);
  }
  for (const T_FAMILY& row : FAMILY_TABLE) {
    if (row.RESULT_KIND != request.RESULT_KIND) continue;
    const std::int32_t last = row.ITEMS_BEFORE + components_of(row, counts);
    if (component.ITEM > row.ITEMS_BEFORE && component.ITEM <= last) family = &row;
  }
  const std::int32_t items = ITEMS_OF(request.RESULT_KIND, counts);
  if (family != nullptr || items == 0) return {};
  return CHECK_BOUNDS("RESULT_ITEM", request.RESULT_ITEM, 1, items);
}

/// What is read of a record: so many words of it, and of these so
/// many columns of the component in hand, from a word (from 0) on.
struct T_WANTED {
  std::int32_t RECORD_WORDS;
  std::int32_t FIRST_WORD;
  std::int32_t COLUMNS;
};

/// Where the line may jump, the components 1 to 6 have one column each, 7 to 24 two,
/// the value before a point and the value after it, and 25 to 30 one again.
/// The parts of a component have columns of their own behind these 48.
T_WANTED wanted_of(const T_FAMILY& family, const T_COUNTS& counts, const T_COMPONENT& component) {
  const std::int32_t c = component.ITEM - family.ITEMS_BEFORE;
  std::int32_t column = c;
  std::int32_t columns = 1;
  if (family.LAYOUT == ROW_LAYOUT::JUMP && c > 24) {
    column = c + 18;
  } else if (family.LAYOUT == ROW_LAYOUT::JUMP && c > 6) {
    column = 2 * c - 7;
    columns = 2;
  }
  if (component.ITEM_PART > 0) {
    constexpr std::array<std::int32_t, 5> FIRST_PARTS{49, 52, 58, 64, 70};  // of components 4, 10, 16, 22, 28
    column = FIRST_PARTS[static_cast<std::size_t>((c - 4) / 6)] + (component.ITEM_PART - 1) * columns;
  }
  return {RECORD_WORDS_OF(family, counts), family.WORDS_SKIPPED + column - 1, columns};
}

float word(const std::byte* record, std::int64_t index) {
  return kernel::UNPACK(record + index * WORD_BYTES).NEXT<float>();
}

/// Row k of the ordinates out of the record of unit load k.
void take_row(const std::byte* record, const T_WANTED& wanted, std::int64_t k, search::T_LOAD_ORD& LOAD_ORD) {
  for (std::int32_t column = 1; column <= wanted.COLUMNS; ++column) {
    LOAD_ORD.VALUES(column, k) = word(record, wanted.FIRST_WORD + column - 1);
  }
}

/// The ordinates of one result point out of the block of its family.
class LOAD_ORD_READER {
 public:
  LOAD_ORD_READER(std::int32_t loads, const T_WANTED& wanted, kernel::BLOCK_READER& block,
                  search::T_LOAD_ORD& LOAD_ORD)
      : loads_(loads),
        bytes_(WORD_BYTES * wanted.RECORD_WORDS),
        wanted_(wanted),
        block_(block),
        LOAD_ORD_(LOAD_ORD) {}

  /// Run p of the block, from 1. A run that lies,
  /// wholly or in part, outside the block leaves the ordinates at 0.
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
    LOAD_ORD_.VALUES.RESIZE(wanted_.COLUMNS, loads_);
    found_to_the_end_ = false;
    for (std::int64_t k = 1; k <= loads_; ++k) {
      const std::byte* record = nullptr;
      if (STATUS status = block_.READ(first_record(p) + k - 1, bytes_, record); !status.OK()) return status;
      if (!is_wanted(record)) return {};
      take_row(record, wanted_, k, LOAD_ORD_);
    }
    found_to_the_end_ = true;
    return {};
  }

  const std::int64_t loads_;
  const std::int64_t bytes_;  // read of a record
  const T_WANTED wanted_;
  kernel::BLOCK_READER& block_;
  search::T_LOAD_ORD& LOAD_ORD_;
  bool found_to_the_end_ = false;
};

/// `nothing_to_search` is set where the routine returns at once.
STATUS fetch_from_block(const T_FAMILY& family, const kernel::T_MODEL& model,
                        const kernel::T_REQUEST& request, const T_WANTED& wanted, kernel::RECORD_FILE& unit,
                        search::T_LOAD_ORD& LOAD_ORD, bool& nothing_to_search) {
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
  LOAD_ORD_READER reader(model.COUNTS.N_UNIT_LOAD, wanted, block, LOAD_ORD);
  return family.FINDING == FIND_RUN::BY_NODE_NUMBER
             ? reader.FIND_NODE(request.RESULT_ID, model.COUNTS.*family.NODES)
             : reader.READ_RUN(run);
}

STATUS fetch_from_element_file(const T_FAMILY& family, const kernel::T_MODEL& model,
                               const kernel::T_REQUEST& request, const T_WANTED& wanted,
                               search::T_LOAD_ORD& LOAD_ORD) {
  ELEMENT_READER reader;
  STATUS status = reader.OPEN(request.FILE_NAME, model.COUNTS, family.TAG.front(), request.RESULT_ID,
                              wanted.RECORD_WORDS);
  if (!status.OK()) return status;
  LOAD_ORD.VALUES.RESIZE(wanted.COLUMNS, model.COUNTS.N_UNIT_LOAD);
  for (std::int64_t k = 1; k <= model.COUNTS.N_UNIT_LOAD; ++k) {
    const std::byte* record = nullptr;
    if (status = reader.READ_ELEMENT_RECORD(k, record); !status.OK()) return status;
    take_row(record, wanted, k, LOAD_ORD);
  }
  return {};
}

/// The influence store has the same columns without the words in front of component 1, of which the first row
/// of a kind skips no more. Of a record no other component is read.
STATUS fetch_from_store(const T_FAMILY& family, const kernel::T_MODEL& model,
                        const kernel::T_REQUEST& request, const T_WANTED& wanted,
                        search::T_LOAD_ORD& LOAD_ORD, bool& nothing_to_search) {
  const bool must_be_stored =
      family.FINDING == FIND_RUN::BY_LOCAL_AXES || family.FINDING == FIND_RUN::BY_NODE_NUMBER;
  nothing_to_search =
      must_be_stored && !store::IS_STORED(*request.STORE, family.STORE_READ, request.RESULT_ID);
  if (nothing_to_search) return {};
  LOAD_ORD.VALUES.RESIZE(wanted.COLUMNS, model.COUNTS.N_UNIT_LOAD);
  const std::int32_t header_words = FIND_FAMILY(family.RESULT_KIND)->WORDS_SKIPPED;
  store::T_READ read;
  read.KIND = family.STORE_READ;
  read.ID = request.RESULT_ID;
  read.NCOMP = wanted.RECORD_WORDS - header_words;
  read.FIRST_POSITION = wanted.FIRST_WORD - header_words + 1;
  read.POSITIONS = wanted.COLUMNS;
  return store::READ_ALL(*request.STORE, read, LOAD_ORD.VALUES.VIEW().begin());
}

/// Fetches the ordinates of a component.
STATUS fetch(const T_FAMILY& family, const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
             const T_COMPONENT& component, kernel::RECORD_FILE& unit, search::T_LOAD_ORD& LOAD_ORD,
             bool& nothing_to_search) {
  const T_WANTED wanted = wanted_of(family, model.COUNTS, component);
  LOAD_ORD.COLUMNS = wanted.COLUMNS;
  if (request.STORE_MODE)
    return fetch_from_store(family, model, request, wanted, LOAD_ORD, nothing_to_search);
  return family.FINDING == FIND_RUN::IN_ELEMENT_FILE
             ? fetch_from_element_file(family, model, request, wanted, LOAD_ORD)
             : fetch_from_block(family, model, request, wanted, unit, LOAD_ORD, nothing_to_search);
}

/// RESULT_TRUSS alone lists ordinate sets, on straddle lanes those of the classes with definitions and axle
/// lists.
bool lists_sets(const kernel::T_MODEL& model, const kernel::T_REQUEST& request) {
  return request.RESULT_KIND == kernel::RK_TRUSS && request.UNIT_78 != nullptr &&
         model.COUNTS.N_STRADDLE > 0 && model.HAS_CLASS_LANES() && model.AXLE_LANES.EXISTS();
}

}  // namespace

const T_FAMILY* FIND_FAMILY(std::int32_t result_kind) {
  const auto row =
      std::find_if(FAMILY_TABLE.begin(), FAMILY_TABLE.end(),
                   [result_kind](const T_FAMILY& family) { return family.RESULT_KIND == result_kind; });
  return row == FAMILY_TABLE.end() ? nullptr : &*row;
}

std::int32_t ITEMS_OF(std::int32_t result_kind, const T_COUNTS& counts) {
  std::int32_t items = 0;
  for (const T_FAMILY& row : FAMILY_TABLE)
    if (row.RESULT_KIND == result_kind) items = row.ITEMS_BEFORE + components_of(row, counts);
  return items;
}

std::int32_t RECORD_WORDS_OF(const T_FAMILY& family, const T_COUNTS& counts) {
  return std::max(family.WORDS_SKIPPED + components_of(family, counts), family.RECORD_WORDS);
}

STATUS READ_RESPONSE(const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
                     const T_COMPONENT& component, kernel::RECORD_FILE& unit, T_RESPONSE& response) {
  response = {};
  STATUS status = find_row(model.COUNTS, request, component, response.FAMILY);
  if (!status.OK() || response.FAMILY == nullptr) return status;
  return fetch(*response.FAMILY, model, request, component, unit, response.LOAD_ORD,
               response.NOTHING_TO_SEARCH);
}

STATUS RUN_FAMILY(const kernel::T_MODEL& model, const kernel::T_REQUEST& request,
                  const T_COMPONENT& component, kernel::RECORD_FILE& unit, kernel::T_ENVELOPE& envelope) {
  T_RESPONSE response;
  STATUS status = READ_RESPONSE(model, request, component, unit, response);
  if (!status.OK() || response.FAMILY == nullptr || response.NOTHING_TO_SEARCH) return status;

  const bool lists = lists_sets(model, request);
  T_SET_LISTING listing{request.UNIT_78, {}};
  if (lists) {
    status =
        fetch(*response.FAMILY, model, request, {1, 0}, unit, listing.LOAD_ORD, response.NOTHING_TO_SEARCH);
    if (!status.OK()) return status;
  }
  const T_LANE_PHASE lane_phase = RUN_LANE_PHASE(model, request.MV_CASE, response.LOAD_ORD,
                                                 response.FAMILY->LAYOUT, lists ? &listing : nullptr);
  return RUN_COMBINATION_PHASE(model, lane_phase, request.MV_CASE, envelope);
}

}  // namespace results
