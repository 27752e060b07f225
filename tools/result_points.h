// The kinds of result by the names that the command line knows, and which result points of a kind the files
// hold: what can be asked for.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/status.h"
#include "kernel/control_blocks.h"
#include "kernel/record_file.h"

namespace tools {

struct T_KIND {
  std::string_view name;
  std::int32_t result_kind;
  std::string_view meaning;  // of one result point
};

/// All kinds that a host can name, those that aren't searched included.
[[nodiscard]] std::span<const T_KIND> ALL_KINDS();

/// A kind by its name or its number; null for neither.
[[nodiscard]] const T_KIND* FIND_KIND(std::string_view name_or_number);

/// Whether this version of the library searches the kind.
[[nodiscard]] bool IS_SEARCHED(const T_KIND& kind);

/// The result points of a kind. Ids run from 1 to COUNT, or are listed where the block carries numbers.
struct T_RESULT_POINTS {
  const T_KIND* kind = nullptr;
  std::string tag;    // of the block
  bool held = false;  // the block is there
  std::int32_t items = 0;
  std::int64_t count = 0;
  bool listed = false;
  std::vector<std::int32_t> ids;

  [[nodiscard]] bool HOLDS(std::int32_t id) const;
  /// "1 to 355", or "20 ids: 1, 2, 3, ..." with the first few.
  [[nodiscard]] std::string IDS_IN_WORDS() const;
};

/// The kind must be a searched one.
STATUS READ_RESULT_POINTS(kernel::RECORD_FILE& unit, const std::string& file_name,
                          const kernel::T_COUNTS& counts, const T_KIND& kind, T_RESULT_POINTS& points);

}  // namespace tools
