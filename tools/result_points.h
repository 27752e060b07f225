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

/// All kinds that a host can name.
[[nodiscard]] std::span<const T_KIND> ALL_KINDS();

/// A kind by its name or its number; null for neither.
[[nodiscard]] const T_KIND* FIND_KIND(std::string_view name_or_number);

/// What a component stands for, as far as it can be told: "result of a beam element: shear at 1/2".
[[nodiscard]] std::string RESULT_MEANING(const T_KIND& kind, std::int32_t item);

/// One element file as it lies on the disk.
struct T_ELEMENT_FILE {
  std::string name_end;  // family letter and file number, which stand behind the name of the directory file
  std::int64_t bytes = 0;
  std::int64_t elements = 0;  // that are there with all of their records
  bool has_rest = false;      // bytes behind them
};

struct T_IDS {
  std::int64_t first = 0;
  std::int64_t last = 0;
};

/// The result points of a kind. Ids run without gaps, or are listed where the files carry numbers.
struct T_RESULT_POINTS {
  const T_KIND* kind = nullptr;
  std::string tag;    // of the block, or the letter of the element files
  bool held = false;  // the block is there, or an element file
  std::int32_t items = 0;
  std::vector<T_IDS> runs;
  bool listed = false;
  std::vector<std::int32_t> ids;
  // Of elements alone.
  std::int32_t record_words = 0;
  std::int32_t elements_per_file = 0;
  std::vector<T_ELEMENT_FILE> files;

  [[nodiscard]] bool IS_IN_ELEMENT_FILES() const { return record_words > 0; }
  [[nodiscard]] bool HOLDS(std::int32_t id) const;
  /// "1 to 355", or "17, 4, 23, ... (20 in all)" with the first few.
  [[nodiscard]] std::string IDS_IN_WORDS() const;
};

STATUS READ_RESULT_POINTS(kernel::RECORD_FILE& unit, const std::string& file_name,
                          const kernel::T_COUNTS& counts, const T_KIND& kind, T_RESULT_POINTS& points);

}  // namespace tools
