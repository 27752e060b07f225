// The outcome of an operation: nothing, or the reason why a run fails.
//
// A STATUS is small, holds no memory and names the place: the block or element file, the record and the
// value. One routine (kernel/failures.h) turns it into what the host sees.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

enum class REASON : std::uint8_t {
  NONE,
  NO_ARGUMENT,            // a pointer of the host is null
  BAD_PATH_LENGTH,        // value: the length
  BAD_PATH,               // a character that no file name has
  UNKNOWN_ANALYSIS_CODE,  // value: the code
  FILE_NOT_OPENED,
  DIRECTORY_CUT,    // a header or entry record can't be read
  NOT_A_DIRECTORY,  // mark, version, kind or entry count differ
  BLOCK_ABSENT,
  BAD_BLOCK_PLACE,          // the block's first record or record length can't be; value: which
  RECORD_ABSENT,            // the record lies behind the block's last
  RECORD_CUT,               // the file ends before the record does
  RECORD_SHORT,             // value: bytes that are read, high: bytes of a record
  OUT_OF_BOUNDS,            // item, value, low, high
  STRADDLE_LANE_MISPLACED,  // value: lane
  AXLE_LIST_WITHOUT_PLANES,
  CLASS_LANE_TABLE_FULL,
  WRONG_FORMAT_NUMBER,  // value
  STORE_NOT_OPEN,
  NO_INFLUENCE_DATA,   // value: header word of the first volume
  VOLUME_CUT,          // the volume ends before its stream of blocks does, or before a data record
  NO_COMPOSITE_PARTS,  // the item codes of a composite bar block name no part
  UNIT_LOADS_DIFFER,   // value: unit loads of the store, high: of the model
  NO_MEMORY,
  UNEXPECTED,
};

struct [[nodiscard]] STATUS {
  REASON reason = REASON::NONE;
  std::array<char, 4> block{};         // tag of the block, zeros where none is concerned
  std::array<char, 2> element_file{};  // letter and number that an element file's name has behind that of the
                                       // directory file; zeros where the failure doesn't lie in one
  bool in_volume = false;   // the failure lies in a volume of the influence store, which knows its name;
                            // `record` is then a byte offset
  const char* item = "";    // name of the field; static storage
  std::int64_t record = 0;  // in the block or element file, from 1; 0 where none is concerned
  std::int64_t value = 0;
  std::int64_t low = 0;
  std::int64_t high = 0;

  [[nodiscard]] bool OK() const noexcept { return reason == REASON::NONE; }

  static STATUS FAILED(REASON reason, std::int64_t value = 0) noexcept {
    STATUS status;
    status.reason = reason;
    status.value = value;
    return status;
  }

  /// The same failure, told to lie in a block.
  STATUS IN(std::string_view tag, std::int64_t record_number = 0) const noexcept {
    STATUS status = *this;
    for (std::size_t i = 0; i < status.block.size() && i < tag.size(); ++i) status.block[i] = tag[i];
    status.record = record_number;
    return status;
  }

  /// The same failure, told to lie in an element file.
  STATUS IN(const std::array<char, 2>& file, std::int64_t record_number) const noexcept {
    STATUS status = *this;
    status.element_file = file;
    status.record = record_number;
    return status;
  }

  /// The same failure, told to lie in a volume of the influence store.
  STATUS IN_VOLUME(std::int64_t offset) const noexcept {
    STATUS status = *this;
    status.in_volume = true;
    status.record = offset;
    return status;
  }
};

/// OK where low <= value <= high, else OUT_OF_BOUNDS. `item` must live for ever.
inline STATUS CHECK_BOUNDS(const char* item, std::int64_t value, std::int64_t low,
                           std::int64_t high) noexcept {
  if (value >= low && value <= high) return {};
  STATUS status = STATUS::FAILED(REASON::OUT_OF_BOUNDS, value);
  status.item = item;
  status.low = low;
  status.high = high;
  return status;
}
