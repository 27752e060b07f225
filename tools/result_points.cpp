#include "tools/result_points.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "common/real.h"
#include "kernel/block_file.h"
#include "kernel/run_state.h"
#include "results/result_members.h"

namespace tools {
namespace {

constexpr std::array<T_KIND, 11> KINDS{{
    {"disp", kernel::RK_DISP, "displacement of a node"},
    {"ldisp", kernel::RK_LDSP, "displacement of a node in its local axes"},
    {"reac", kernel::RK_REAC, "reaction of a support node"},
    {"lreac", kernel::RK_LRAC, "reaction of a support node in its local axes"},
    {"simb", kernel::RK_SIMB, "result of block SIMB"},
    {"elink", kernel::RK_ELNK, "force of an elastic link"},
    {"nlink", kernel::RK_NLNK, "force of a nonlinear link"},
    {"truss", kernel::RK_TRUSS, "result of a truss element"},
    {"beam", kernel::RK_BEAM, "result of a beam element"},
    {"plate", kernel::RK_PLATE, "result of a plate element"},
    {"wall", kernel::RK_WALL, "result of a wall element"},
}};

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

constexpr std::int32_t BEAM_ITEMS = 50;

/// A beam's item in the order in which modelkit writes them, which the library doesn't know of.
std::string beam_item(std::int32_t item) {
  constexpr std::int32_t FORCE_ITEMS = 30;
  constexpr std::array<std::string_view, 6> FORCES{"axial force", "shear sideways", "shear",
                                                   "torsion",     "moment",         "moment sideways"};
  constexpr std::array<std::string_view, 4> CORNERS{"top left", "top right", "bottom left", "bottom right"};
  constexpr std::array<std::string_view, 5> STATIONS{"just behind the start", "at 1/4", "at 1/2", "at 3/4",
                                                     "just before the end"};
  const bool is_force = item <= FORCE_ITEMS;
  const auto place = static_cast<std::size_t>(is_force ? item - 1 : item - FORCE_ITEMS - 1);
  const std::size_t station = place / (is_force ? FORCES.size() : CORNERS.size());
  return is_force ? fmt::format("{} {}", FORCES[place % FORCES.size()], STATIONS[station])
                  : fmt::format("stress {} {}", CORNERS[place % CORNERS.size()], STATIONS[station]);
}

}  // namespace

std::span<const T_KIND> ALL_KINDS() {
  return KINDS;
}

const T_KIND* FIND_KIND(std::string_view name_or_number) {
  const auto kind = std::find_if(KINDS.begin(), KINDS.end(), [name_or_number](const T_KIND& row) {
    return row.name == name_or_number || fmt::to_string(row.result_kind) == name_or_number;
  });
  return kind == KINDS.end() ? nullptr : &*kind;
}

std::string RESULT_MEANING(const T_KIND& kind, std::int32_t item) {
  std::string meaning(kind.meaning);
  if (kind.result_kind == kernel::RK_BEAM && item >= 1 && item <= BEAM_ITEMS)
    meaning += ": " + beam_item(item);
  return meaning;
}

bool T_RESULT_POINTS::HOLDS(std::int32_t id) const {
  if (listed) return std::find(ids.begin(), ids.end(), id) != ids.end();
  return std::any_of(runs.begin(), runs.end(),
                     [id](const T_IDS& run) { return id >= run.first && id <= run.last; });
}

std::string T_RESULT_POINTS::IDS_IN_WORDS() const {
  constexpr std::ptrdiff_t FIRST_FEW = 8;
  if (listed ? ids.empty() : runs.empty()) return "none";
  if (listed) {
    const std::ptrdiff_t shown = std::min(FIRST_FEW, std::ssize(ids));
    const bool more = std::ssize(ids) > shown;
    return fmt::format("{}{}", fmt::join(ids.begin(), ids.begin() + shown, ", "),
                       more ? fmt::format(", ... ({} in all)", ids.size()) : "");
  }
  std::vector<std::string> words;
  for (const T_IDS& run : runs) {
    words.push_back(run.first == run.last ? fmt::to_string(run.first)
                                          : fmt::format("{} to {}", run.first, run.last));
  }
  return fmt::format("{}", fmt::join(words, ", "));
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

}  // namespace tools
