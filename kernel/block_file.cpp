#include "kernel/block_file.h"

#include <algorithm>
#include <array>
#include <limits>

namespace kernel {
namespace {

constexpr std::string_view DIR_MAGIC = "KVR ";
constexpr std::string_view UNUSED_TAG = "    ";
constexpr std::string_view HEADER_TAG = "HEAD";
constexpr std::int32_t ENTRIES_PER_HEADER = 20;
constexpr std::int64_t WORD_BYTES = 4;

/// Version 1.0: 5 words a record, 32-bit record numbers.
struct DIRECTORY_1 {
  using RECORD_NUMBER = std::int32_t;
  static constexpr float DIR_VERSION = 1.0F;
  static constexpr std::int64_t RECORD_BYTES = 20;
};

/// Version 2.0: 7 words a record, 64-bit record numbers.
struct DIRECTORY_2 {
  using RECORD_NUMBER = std::int64_t;
  static constexpr float DIR_VERSION = 2.0F;
  static constexpr std::int64_t RECORD_BYTES = 28;
};

template <class VERSION>
bool is_header(UNPACK header, std::int32_t file_kind, std::int64_t& next) {
  const auto magic = header.NEXT<std::array<char, 4>>();
  const auto kind = header.NEXT<std::int32_t>();
  const auto version = header.NEXT<float>();
  const auto entries = header.NEXT<std::int32_t>();
  next = header.NEXT<typename VERSION::RECORD_NUMBER>();
  return std::string_view(magic.data(), magic.size()) == DIR_MAGIC && version == VERSION::DIR_VERSION &&
         kind == file_kind && entries == ENTRIES_PER_HEADER;
}

/// Number of records from first to last, kept within 64 bits for whatever a damaged entry claims.
std::int64_t count_of_records(std::int64_t first, std::int64_t last) {
  constexpr std::int64_t LIMIT = std::numeric_limits<std::int64_t>::max() / 4;
  return std::clamp(last, -LIMIT, LIMIT) - std::clamp(first, -LIMIT, LIMIT) + 1;
}

template <class VERSION>
T_BLOCK find_block(RECORD_FILE& unit, const std::string& file_name, std::int32_t file_kind,
                   std::string_view tag, std::int32_t block_id) {
  T_BLOCK block;
  const auto ends_with = [&block](FIND_STATUS status) {
    block.STATUS_CODE = status;
    return block;
  };
  if (file_name.empty() || tag == UNUSED_TAG || tag == HEADER_TAG)
    return ends_with(FIND_STATUS::BAD_ARGUMENTS);
  if (!unit.CONNECT(file_name).OK() || !unit.RECONNECT(VERSION::RECORD_BYTES).OK()) {
    return ends_with(FIND_STATUS::NOT_OPENED);
  }

  // A chain that comes to a header again, or visits more than the file could hold,
  // runs in a circle. The header that is remembered moves on at every
  // doubling of the way, so that a circle is found within a few rounds.
  constexpr std::int64_t GROUP_RECORDS = 1 + ENTRIES_PER_HEADER;
  const std::int64_t most_headers = unit.FILE_BYTES() / (GROUP_RECORDS * VERSION::RECORD_BYTES) + 1;
  std::int64_t headers = 0;
  std::int64_t remembered = 0;
  std::int64_t at = 1;
  while (at != 0) {
    const std::byte* record = nullptr;
    if (++headers > most_headers || at == remembered || !unit.READ(at, VERSION::RECORD_BYTES, record).OK()) {
      return ends_with(FIND_STATUS::READ_FAILED);
    }
    if ((headers & (headers - 1)) == 0) remembered = at;
    std::int64_t next = 0;
    if (!is_header<VERSION>(UNPACK(record), file_kind, next)) return ends_with(FIND_STATUS::NOT_A_DIRECTORY);
    for (std::int64_t k = 1; k <= ENTRIES_PER_HEADER; ++k) {
      if (!unit.READ(at + k, VERSION::RECORD_BYTES, record).OK()) return ends_with(FIND_STATUS::READ_FAILED);
      UNPACK entry(record);
      const auto entry_tag = entry.NEXT<std::array<char, 4>>();
      const auto entry_id = entry.NEXT<std::int32_t>();
      const std::string_view name(entry_tag.data(), entry_tag.size());
      if (name == UNUSED_TAG) return ends_with(FIND_STATUS::NOT_FOUND);
      if (name != tag || entry_id != block_id) continue;
      block.HAS_ENTRY = true;
      block.FIRST_REC = entry.NEXT<typename VERSION::RECORD_NUMBER>();
      const std::int64_t last = entry.NEXT<typename VERSION::RECORD_NUMBER>();
      block.REC_WORDS = entry.NEXT<std::int32_t>();
      block.NUM_REC = count_of_records(block.FIRST_REC, last);
      const bool connected = unit.RECONNECT(WORD_BYTES * block.REC_WORDS).OK();
      return ends_with(connected ? FIND_STATUS::FOUND : FIND_STATUS::NOT_OPENED);
    }
    at = next;
  }
  return ends_with(FIND_STATUS::NOT_FOUND);
}

REASON reason_of(FIND_STATUS status) {
  switch (status) {
    case FIND_STATUS::FOUND:
      return REASON::NONE;
    case FIND_STATUS::NOT_OPENED:
      return REASON::FILE_NOT_OPENED;
    case FIND_STATUS::READ_FAILED:
      return REASON::DIRECTORY_CUT;
    case FIND_STATUS::NOT_FOUND:
      return REASON::BLOCK_ABSENT;
    case FIND_STATUS::BAD_ARGUMENTS:
    case FIND_STATUS::NOT_A_DIRECTORY:
      break;
  }
  return REASON::NOT_A_DIRECTORY;
}

}  // namespace

std::string MAKE_BLOCK_FILE_NAME(std::string_view base_name, std::int32_t analysis_code) {
  struct EXTENSION {
    std::int32_t analysis_code;
    std::string_view text;
  };
  static constexpr std::array<EXTENSION, 6> EXTENSIONS{
      {{0, ".ZA3"}, {1, ".YA3"}, {2, ".XA3"}, {3, ".WA3"}, {4, ".ZAX3"}, {101, ".YA3"}}};
  for (const EXTENSION& extension : EXTENSIONS) {
    if (extension.analysis_code == analysis_code) return std::string(base_name).append(extension.text);
  }
  return {};
}

T_BLOCK FIND_BLOCK(RECORD_FILE& unit, const std::string& file_name, std::int32_t file_kind,
                   std::string_view tag, std::int32_t block_id) {
  return find_block<DIRECTORY_2>(unit, file_name, file_kind, tag, block_id);
}

T_BLOCK FIND_BLOCK_V1(RECORD_FILE& unit, const std::string& file_name, std::int32_t file_kind,
                      std::string_view tag, std::int32_t block_id) {
  return find_block<DIRECTORY_1>(unit, file_name, file_kind, tag, block_id);
}

STATUS BLOCK_READER::OPEN(RECORD_FILE& unit, const std::string& file_name, std::string_view tag,
                          std::int32_t block_id, DIRECTORY_VERSION version) {
  unit_ = &unit;
  tag_ = tag;
  block_ = version == DIRECTORY_VERSION::V2
               ? FIND_BLOCK(unit, file_name, DIRECTORY_FILE_KIND, tag, block_id)
               : FIND_BLOCK_V1(unit, file_name, DIRECTORY_FILE_KIND, tag, block_id);
  const bool sound = block_.STATUS_CODE == FIND_STATUS::FOUND || block_.STATUS_CODE == FIND_STATUS::NOT_FOUND;
  if (sound) return {};
  if (block_.STATUS_CODE == FIND_STATUS::NOT_OPENED && block_.HAS_ENTRY) {
    return AT(STATUS::FAILED(REASON::BAD_BLOCK_PLACE, block_.REC_WORDS), 0);
  }
  return AT(STATUS::FAILED(reason_of(block_.STATUS_CODE)), 0);
}

STATUS BLOCK_READER::OPEN_MANDATORY(RECORD_FILE& unit, const std::string& file_name, std::string_view tag,
                                    std::int32_t block_id, DIRECTORY_VERSION version) {
  if (STATUS status = OPEN(unit, file_name, tag, block_id, version); !status.OK()) return status;
  return FOUND() ? STATUS{} : AT(STATUS::FAILED(REASON::BLOCK_ABSENT), 0);
}

STATUS BLOCK_READER::CHECK_ROOM(std::int64_t number, std::int64_t count, std::int64_t bytes) const {
  if (count < 1) return {};
  const std::int64_t record_bytes = unit_->RECORD_BYTES();
  const std::int64_t last = number + count - 1;
  if (number < 1 || last > block_.NUM_REC || block_.FIRST_REC < 1) {
    return AT(STATUS::FAILED(REASON::RECORD_ABSENT), number < 1 ? number : last);
  }
  if (bytes > record_bytes) {
    STATUS status = STATUS::FAILED(REASON::RECORD_SHORT, bytes);
    status.high = record_bytes;
    return AT(status, number);
  }
  // In records of the file, where all numbers are bounded by its size and nothing overflows.
  const std::int64_t whole_records = (unit_->FILE_BYTES() - bytes) / record_bytes + 1;
  if (unit_->FILE_BYTES() < bytes || block_.FIRST_REC > whole_records - (last - 1)) {
    return AT(STATUS::FAILED(REASON::RECORD_CUT), last);
  }
  return {};
}

STATUS BLOCK_READER::READ(std::int64_t number, std::int64_t bytes, const std::byte*& record) {
  if (STATUS status = CHECK_ROOM(number, 1, bytes); !status.OK()) return status;
  const STATUS status = unit_->READ(block_.FIRST_REC - 1 + number, bytes, record);
  return status.OK() ? status : AT(status, number);
}

}  // namespace kernel
