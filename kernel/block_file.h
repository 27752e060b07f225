// The block directory file: a flat sequence of fixed-length records with a directory at its front, which says
// which block (a 4-character tag and an id) occupies which records, and how long these are.
//
// Directory of version 2.0, records of 28 bytes, little-endian; the first header is record 1:
//
//   header            OFFSET  SIZE  MEANING
//     DIR_MAGIC            0     4  "KVR "
//     FILE_KIND            4     4  int32, 2 for the files of this library
//     DIR_VERSION          8     4  float32, 2.0
//     DIR_ENTRIES         12     4  int32, 20: entry records that follow the header
//     DIR_NEXT            16     8  int64, record number of the next header; 0 ends the chain
//   entry
//     BLOCK_TAG            0     4  four blanks mark an unused entry, and the search ends there
//     BLOCK_ID             4     4  int32
//     BLOCK_FIRST          8     8  int64, first record of the block, in records of the block's own length
//     BLOCK_LAST          16     8  int64, last record
//     BLOCK_RECLEN        24     4  int32, the block's record length in words of 4 bytes
//
// Version 1.0 has records of 20 bytes, in which DIR_NEXT (at 16), BLOCK_FIRST (8), BLOCK_LAST (12) and
// BLOCK_RECLEN (16) are int32.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/status.h"
#include "kernel/record_file.h"

namespace kernel {

inline constexpr std::int32_t DIRECTORY_FILE_KIND = 2;
inline constexpr std::int32_t MAX_FILE_NAME = 1024;

/// The outcome of a lookup, with the numbers that the file format's users know.
enum class FIND_STATUS : std::int32_t {
  FOUND = 0,
  NOT_OPENED = 1,       // the file, or the block's record length, can't be opened
  READ_FAILED = 2,      // a header or entry record; also a chain with more headers than the file could hold
  NOT_FOUND = 4,        // the block is not in the directory
  BAD_ARGUMENTS = 6,    // no name, or a tag that no block has
  NOT_A_DIRECTORY = 7,  // mark, version, kind or entry count differ
};

struct T_BLOCK {
  FIND_STATUS STATUS_CODE = FIND_STATUS::NOT_FOUND;
  std::int64_t FIRST_REC = 0;
  std::int32_t REC_WORDS = 0;
  std::int64_t NUM_REC = 0;  // BLOCK_LAST - BLOCK_FIRST + 1
  bool HAS_ENTRY = false;    // the block is in the directory, whatever came of it
};

/// Name of the block directory file: base name and an extension by analysis code; empty for an unknown code.
[[nodiscard]] std::string MAKE_BLOCK_FILE_NAME(std::string_view base_name, std::int32_t analysis_code);

/// Looks a block up in a directory of version 2.0 or 1.0. Where it is found, `unit` stays connected with the
/// block's record length, ready for reads by record number. Each lookup starts at record 1.
[[nodiscard]] T_BLOCK FIND_BLOCK(RECORD_FILE& unit, const std::string& file_name, std::int32_t file_kind,
                                 std::string_view tag, std::int32_t block_id);
[[nodiscard]] T_BLOCK FIND_BLOCK_V1(RECORD_FILE& unit, const std::string& file_name, std::int32_t file_kind,
                                    std::string_view tag, std::int32_t block_id);

/// Which lookup the readers call: 1 FIND_BLOCK, 0 FIND_BLOCK_V1.
enum class DIRECTORY_VERSION : std::int32_t { V1 = 0, V2 = 1 };

/// One block while it is read: its records are numbered from 1 here,
/// and every failure names block and record. The reader is a view of the unit
/// that the lookup left connected; a lookup on the same unit ends it.
class BLOCK_READER {
 public:
  BLOCK_READER() = default;

  /// Looks the block up. OK with FOUND() false where the directory is sound
  /// but has no such block; every other failed lookup is a failure,
  /// so that a damaged directory never passes for a model without the block.
  STATUS OPEN(RECORD_FILE& unit, const std::string& file_name, std::string_view tag, std::int32_t block_id,
              DIRECTORY_VERSION version = DIRECTORY_VERSION::V2);
  /// The same for a block that must be there.
  STATUS OPEN_MANDATORY(RECORD_FILE& unit, const std::string& file_name, std::string_view tag,
                        std::int32_t block_id, DIRECTORY_VERSION version = DIRECTORY_VERSION::V2);

  [[nodiscard]] bool FOUND() const noexcept { return block_.STATUS_CODE == FIND_STATUS::FOUND; }
  [[nodiscard]] std::int64_t FIRST_REC() const noexcept { return block_.FIRST_REC; }
  [[nodiscard]] std::int64_t NUM_REC() const noexcept { return block_.NUM_REC; }
  [[nodiscard]] std::int32_t REC_WORDS() const noexcept { return block_.REC_WORDS; }

  /// The first `bytes` bytes of the block's record `number`. Records behind the block's last count as absent.
  STATUS READ(std::int64_t number, std::int64_t bytes, const std::byte*& record);

  /// Fails unless the block and the file have room for `count` records from `number` on, each holding `bytes`
  /// bytes. To be asked before memory is sized by a count from the file.
  STATUS CHECK_ROOM(std::int64_t number, std::int64_t count, std::int64_t bytes) const;

  /// A failure of this block at a record.
  STATUS AT(const STATUS& status, std::int64_t number) const noexcept { return status.IN(tag_, number); }
  STATUS BOUNDS(std::int64_t number, const char* item, std::int64_t value, std::int64_t low,
                std::int64_t high) const noexcept {
    return AT(CHECK_BOUNDS(item, value, low, high), number);
  }

 private:
  RECORD_FILE* unit_ = nullptr;
  std::string tag_;
  T_BLOCK block_;
};

}  // namespace kernel
