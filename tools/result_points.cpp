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
STATUS read_node_numbers(kernel::BLOCK_READER& block, std::int64_t n_unit_load, T_RESULT_POINTS& points) {
  for (std::int64_t run = 0; run < points.count; ++run) {
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

bool IS_SEARCHED(const T_KIND& kind) {
  return results::FIND_FAMILY(kind.result_kind) != nullptr;
}

bool T_RESULT_POINTS::HOLDS(std::int32_t id) const {
  return listed ? std::find(ids.begin(), ids.end(), id) != ids.end() : id >= 1 && id <= count;
}

std::string T_RESULT_POINTS::IDS_IN_WORDS() const {
  constexpr std::ptrdiff_t FIRST_FEW = 8;
  if (!listed) return count == 0 ? "none" : fmt::format("1 to {}", count);
  if (ids.empty()) return "none";
  const std::ptrdiff_t shown = std::min(FIRST_FEW, std::ssize(ids));
  const bool more = std::ssize(ids) > shown;
  return fmt::format("{}{}", fmt::join(ids.begin(), ids.begin() + shown, ", "),
                     more ? fmt::format(", ... ({} in all)", ids.size()) : "");
}

STATUS READ_RESULT_POINTS(kernel::RECORD_FILE& unit, const std::string& file_name,
                          const kernel::T_COUNTS& counts, const T_KIND& kind, T_RESULT_POINTS& points) {
  const results::T_FAMILY& family = *results::FIND_FAMILY(kind.result_kind);
  points = {};
  points.kind = &kind;
  points.tag = family.TAG;
  points.items = family.COMPONENTS > 0 ? family.COMPONENTS : counts.N_DOF;
  points.listed = family.FINDING != results::FIND_RUN::BY_ID;
  kernel::BLOCK_READER block;
  if (STATUS status = block.OPEN(unit, file_name, family.TAG, RESULT_BLOCK_ID); !status.OK()) return status;
  points.held = block.FOUND();
  if (!points.held) return {};

  // A run of as many records as there are unit loads belongs to each result point.
  points.count = std::max<std::int64_t>(block.NUM_REC() / counts.N_UNIT_LOAD, 0);
  if (family.FINDING == results::FIND_RUN::BY_LOCAL_AXES) return read_local_axes(unit, file_name, points);
  if (family.FINDING != results::FIND_RUN::BY_NODE_NUMBER) return {};
  points.count = std::min<std::int64_t>(points.count, counts.*family.NODES);
  return read_node_numbers(block, counts.N_UNIT_LOAD, points);
}

}  // namespace tools
