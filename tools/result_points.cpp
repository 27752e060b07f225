#include "tools/result_points.h"

#include <fmt/format.h>

#include <algorithm>

#include "common/real.h"
#include "kernel/block_file.h"
#include "kernel/run_state.h"
#include "results/result_members.h"
#include "store/influence_reads.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

constexpr std::int32_t RESULT_BLOCK_ID = 5;

/// Numbers that the first record of each run carries.
STATUS read_node_numbers(kernel::BLOCK_READER& block, std::int64_t runs, std::int64_t n_unit_load,
                         T_RESULT_POINTS& points) {
  for (std::int64_t run = 0; run < runs; ++run) {
    const std::byte* record = nullptr;
    STATUS status = block.READ(run * n_unit_load + 1, sizeof(float), record);
    if (!status.OK()) return status;
    points.ids.push_back(TRUNCATE(static_cast<double>(kernel::UNPACK(record).NEXT<float>())));
  }
  return {};
}

/// Nodes of the local axes table.
STATUS read_local_axes(kernel::RECORD_FILE& unit, const std::string& file_name, T_RESULT_POINTS& points) {
  constexpr std::int64_t ENTRY_BYTES = 8;
  kernel::BLOCK_READER block;
  if (STATUS status = block.OPEN(unit, file_name, "NLAX", 0); !status.OK()) return status;
  const std::int64_t entries = block.FOUND() ? block.NUM_REC() : 0;
  for (std::int64_t entry = 1; entry <= entries; ++entry) {
    const std::byte* record = nullptr;
    if (STATUS status = block.READ(entry, ENTRY_BYTES, record); !status.OK()) return status;
    points.ids.push_back(kernel::UNPACK(record).NEXT<std::int32_t>());
  }
  return {};
}

/// The element files of a family that are there, and the elements in them.
void list_element_files(const std::string& file_name, const kernel::T_COUNTS& counts,
                        T_RESULT_POINTS& points) {
  constexpr std::int64_t WORD_BYTES = 4;
  constexpr std::int64_t MOST_FILES = 9;
  const std::int32_t per_file = counts.ELEM_PER_FILE[kernel::ELEMENT_FAMILIES.find(points.tag.front())];
  points.elements_per_file = per_file;
  const std::int64_t element_bytes = WORD_BYTES * points.record_words * counts.N_UNIT_LOAD;
  if (per_file < 1 || points.items == 0) return;
  for (std::int64_t number = 1; number <= MOST_FILES; ++number) {
    T_ELEMENT_FILE file{.name_end = points.tag + std::to_string(number)};
    kernel::RECORD_FILE unit;
    if (!unit.CONNECT(file_name + file.name_end).OK()) continue;
    file.bytes = unit.FILE_BYTES();
    file.elements = std::min<std::int64_t>(file.bytes / element_bytes, per_file);
    file.has_rest = file.bytes > file.elements * element_bytes;
    const std::int64_t before = (number - 1) * per_file;
    if (file.elements > 0) {
      if (points.runs.empty() || points.runs.back().last != before)
        points.runs.push_back({before + 1, before});
      points.runs.back().last += file.elements;
    }
    points.files.push_back(std::move(file));
  }
  points.held = !points.files.empty();
}

/// Elements that the volumes number through all kinds. Composite and virtual bars have lists and reads of
/// their own.
bool is_read_as_element(const T_KIND& kind) {
  return kind.form != ROW_FORM::NODE && kind.form != ROW_FORM::COMPOSITE_BAR &&
         kind.form != ROW_FORM::VIRTUAL_BAR;
}

/// The kind of an element that was asked for under another one; null for a number that no element has.
const T_KIND* other_kind(const store::INFLUENCE_STORE& store, std::int32_t id) {
  const auto is_kind = [&](const T_KIND& kind) {
    return kind.form != ROW_FORM::NODE && std::ranges::any_of(kind.lists, [&](store::LIST list) {
             return store.MAPS().FIND_ROW(list, id) > 0;
           });
  };
  const auto kind = std::ranges::find_if(ALL_KINDS(), is_kind);
  return kind == ALL_KINDS().end() ? nullptr : &*kind;
}

}  // namespace

bool T_RESULT_POINTS::HOLDS(std::int32_t id) const {
  if (listed) return std::find(ids.begin(), ids.end(), id) != ids.end();
  return std::any_of(runs.begin(), runs.end(),
                     [id](const T_IDS& run) { return id >= run.first && id <= run.last; });
}

std::string T_RESULT_POINTS::IDS_IN_WORDS() const {
  if (!listed) return RUNS_IN_WORDS(runs);
  std::vector<std::int32_t> ascending = ids;
  std::ranges::sort(ascending);
  return RUNS_IN_WORDS(RUNS_OF(ascending));
}

STATUS READ_RESULT_POINTS(kernel::RECORD_FILE& unit, const std::string& file_name,
                          const kernel::T_COUNTS& counts, const T_KIND& kind, T_RESULT_POINTS& points) {
  const results::T_FAMILY& family = *results::FIND_FAMILY(kind.result_kind);
  points = {};
  points.kind = &kind;
  points.tag = family.TAG;
  points.items = results::ITEMS_OF(kind.result_kind, counts);
  if (family.FINDING == results::FIND_RUN::IN_ELEMENT_FILE) {
    points.record_words = results::RECORD_WORDS_OF(family, counts);
    list_element_files(file_name, counts, points);
    return {};
  }
  points.listed = family.FINDING != results::FIND_RUN::BY_ID;
  kernel::BLOCK_READER block;
  if (STATUS status = block.OPEN(unit, file_name, family.TAG, RESULT_BLOCK_ID); !status.OK()) return status;
  points.held = block.FOUND();
  if (!points.held) return {};

  // A run of as many records as there are unit loads belongs to each result point.
  const std::int64_t runs = std::max<std::int64_t>(block.NUM_REC() / counts.N_UNIT_LOAD, 0);
  if (family.FINDING == results::FIND_RUN::BY_LOCAL_AXES) return read_local_axes(unit, file_name, points);
  if (family.FINDING == results::FIND_RUN::BY_NODE_NUMBER) {
    const std::int64_t nodes = std::min<std::int64_t>(runs, counts.*family.NODES);
    return read_node_numbers(block, nodes, counts.N_UNIT_LOAD, points);
  }
  if (runs > 0) points.runs = {{1, runs}};
  return {};
}

std::vector<std::int32_t> STORED_IDS(const store::INFLUENCE_STORE& store, const T_KIND& kind) {
  std::vector<std::int32_t> ids;
  for (const store::LIST list : kind.lists)
    for (const store::T_NODE& node : store.ROWS(list)) ids.push_back(node.ID);
  std::ranges::sort(ids);
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

T_RESULT_POINTS STORED_RESULT_POINTS(const store::INFLUENCE_STORE& store, const kernel::T_COUNTS& counts,
                                     const T_KIND& kind) {
  T_RESULT_POINTS points;
  points.kind = &kind;
  points.items = results::ITEMS_OF(kind.result_kind, counts);
  points.listed = true;
  points.ids = STORED_IDS(store, kind);
  points.held = !points.ids.empty();
  return points;
}

void CHECK_STORED(const store::INFLUENCE_STORE& store, const T_KIND& kind, std::int32_t id,
                  const std::string& base_path) {
  const std::vector<std::int32_t> ids = STORED_IDS(store, kind);
  if (!std::ranges::binary_search(ids, id)) {
    const T_KIND* const other = kind.form == ROW_FORM::NODE ? nullptr : other_kind(store, id);
    throw T_TOOL_FAILURE(
        fmt::format("the influence volumes of {} hold no {} {}{}{}", base_path, kind.name, id,
                    other == nullptr ? "" : "; that number is of kind ", other == nullptr ? "" : other->name),
        ids.empty()
            ? fmt::format("they hold none of this kind; `movload inspect {}` lists what they hold", base_path)
            : fmt::format("give an --id that they hold: {}; `movload inspect {}` lists them by kind",
                          RUNS_IN_WORDS(RUNS_OF(ids)), base_path));
  }
  if (is_read_as_element(kind) && !store::IS_STORED(store, store::READ::ELEMENT, id)) {
    throw T_TOOL_FAILURE(
        fmt::format("the influence volumes have the number {} for elements of several kinds, of which no "
                    "call reads anything",
                    id),
        "have the solver number the elements of all kinds apart");
  }
}

}  // namespace tools
