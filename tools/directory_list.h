// The directory of a block directory file as a list: which blocks it names, in the order in which a lookup
// meets them. kernel/block_file.h has the layout of header and entry records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/status.h"
#include "kernel/record_file.h"

namespace tools {

struct T_DIRECTORY_ENTRY {
  std::string tag;  // characters that can't be shown as '?'
  std::int32_t id = 0;
  std::int64_t first = 0;  // record numbers in the block's own record length
  std::int64_t last = 0;
  std::int64_t record_words = 0;
  bool lies_in_file = false;  // the last record begins within the file

  /// 0 where the entry's numbers make no block.
  [[nodiscard]] std::int64_t RECORDS() const noexcept {
    return first >= 1 && last >= first ? last - first + 1 : 0;
  }
  /// For a block that lies in the file.
  [[nodiscard]] std::int64_t BYTES() const noexcept { return RECORDS() * record_words * 4; }
};

struct T_DIRECTORY {
  std::int32_t version = 0;  // 1 or 2, for 1.0 and 2.0
  std::int64_t headers = 0;
  std::int64_t file_bytes = 0;
  std::vector<T_DIRECTORY_ENTRY> entries;
};

/// Reads the directory of either version. On failure the list holds what was read before. `unit` stays
/// connected with the directory's record length.
STATUS READ_DIRECTORY(kernel::RECORD_FILE& unit, const std::string& file_name, T_DIRECTORY& directory);

}  // namespace tools
