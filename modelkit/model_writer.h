// Writes a T_MODEL as the block directory file that the library reads, and its element files
// (element_files.h) beside it.
//
// The file starts with a directory, groups of a header and 20 entries, which names each block by a
// 4-character tag and an id and tells its first and last record and its record length. Every block starts on
// a record boundary of its own record length. Words that the library doesn't read hold UNREAD_WORD, which is
// not a number as a real, so that a reader at a wrong offset shows at once.
//
// Nothing of the model is checked. Counts are worked out from the lists; to write a file whose counts lie,
// write a sound one and change it with OVERWRITE_WORD.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "modelkit/model.h"

namespace modelkit {

/// Stands in every word that the library passes over: the integer -99, NaN as a real of either width.
inline constexpr std::uint32_t UNREAD_WORD = 0xFFFFFF9DU;

/// One block as it was written. Record numbers are 1-based and count in the block's own record length.
struct T_WRITTEN_BLOCK {
  std::string tag;
  std::int32_t id = 0;
  std::int64_t first = 0;
  std::int64_t last = 0;
  std::int32_t record_words = 0;
  std::int64_t entry_offset = 0;  // byte at which the block's directory entry starts

  /// Byte at which word `word` (from 0) of record `record` (from 1, within the block) starts; record last -
  /// first + 2 gives the end of the block.
  [[nodiscard]] std::int64_t OFFSET(std::int64_t record, std::int64_t word = 0) const {
    return 4 * ((first + record - 2) * record_words + word);
  }
};

struct T_FILE_LAYOUT {
  std::string path;
  std::int64_t size = 0;                     // bytes
  std::vector<std::int64_t> header_offsets;  // byte at which each directory header starts, in chain order
  std::vector<T_WRITTEN_BLOCK> blocks;       // in file order, without the foreign ones

  /// The block of a tag. Throws std::out_of_range if it wasn't written.
  [[nodiscard]] const T_WRITTEN_BLOCK& BLOCK(const std::string& tag) const;
};

/// Extension of the block directory file, with its dot. Throws std::runtime_error for an unknown code.
std::string FILE_EXTENSION(std::int32_t analysis_code);

/// Writes `base_name` plus the extension of form.analysis_code and the element files, replacing older files,
/// and tells what lies where. Throws std::runtime_error, with the file's name in the text, if a file can't be
/// written.
T_FILE_LAYOUT WRITE_MODEL(const T_MODEL& model, const std::string& base_name, const T_FILE_FORM& form = {});

/// Overwrites one word of a written file, addressed as in T_WRITTEN_BLOCK::OFFSET. A real goes through
/// std::bit_cast.
void OVERWRITE_WORD(const T_FILE_LAYOUT& layout, const std::string& tag, std::int64_t record,
                    std::int64_t word, std::int32_t value);

/// Overwrites the word at a byte of a written file, as for its directory.
void OVERWRITE_WORD_AT(const T_FILE_LAYOUT& layout, std::int64_t offset, std::int32_t value);
void OVERWRITE_WORD_AT(const std::string& path, std::int64_t offset, std::int32_t value);

}  // namespace modelkit
