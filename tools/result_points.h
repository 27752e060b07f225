// Which result points of a kind the block directory file with its element files, or the influence volumes
// hold: what can be asked for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/status.h"
#include "kernel/control_blocks.h"
#include "kernel/record_file.h"
#include "store/m_influence.h"
#include "tools/id_runs.h"
#include "tools/result_kinds.h"

namespace tools {

/// One element file as it lies on the disk.
struct T_ELEMENT_FILE {
  std::string name_end;  // family letter and file number, which stand behind the name of the directory file
  std::int64_t bytes = 0;
  std::int64_t elements = 0;  // that are there with all of their records
  bool has_rest = false;      // bytes behind them
};

/// The result points of a kind. Ids run without gaps, or are listed where the files carry numbers.
struct T_RESULT_POINTS {
  const T_KIND* kind = nullptr;
  std::string tag;    // of the block, or the letter of the element files; none of volumes
  bool held = false;  // the block is there, or an element file, or a list of the volumes
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
  /// "1 to 5, 101 to 105".
  [[nodiscard]] std::string IDS_IN_WORDS() const;
};

STATUS READ_RESULT_POINTS(kernel::RECORD_FILE& unit, const std::string& file_name,
                          const kernel::T_COUNTS& counts, const T_KIND& kind, T_RESULT_POINTS& points);

/// The ids of a kind in an open store, ascending. Links of both kinds stand in one list.
[[nodiscard]] std::vector<std::int32_t> STORED_IDS(const store::INFLUENCE_STORE& store, const T_KIND& kind);

/// The same as what a run can be asked for.
[[nodiscard]] T_RESULT_POINTS STORED_RESULT_POINTS(const store::INFLUENCE_STORE& store,
                                                   const kernel::T_COUNTS& counts, const T_KIND& kind);

/// Throws T_TOOL_FAILURE for an id that an open store hasn't under that kind, or has under several, of which
/// no read gives anything; `base_path` is for its text.
void CHECK_STORED(const store::INFLUENCE_STORE& store, const T_KIND& kind, std::int32_t id,
                  const std::string& base_path);

}  // namespace tools
