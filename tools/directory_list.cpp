#include "tools/directory_list.h"

#include <array>
#include <string_view>

#include "kernel/block_file.h"

namespace tools {
namespace {

constexpr std::string_view DIR_MAGIC = "KVR ";
constexpr std::string_view UNUSED_TAG = "    ";
constexpr std::int32_t ENTRIES_PER_HEADER = 20;
constexpr std::int64_t WORD_BYTES = 4;
constexpr std::int64_t HEADER_BYTES_OF_BOTH = 16;  // what the headers of both versions have in common

struct T_HEADER {
  bool is_sound = false;
  std::int32_t version = 0;
  std::int64_t next = 0;
};

/// Record numbers have 32 bits in version 1.0 and 64 in 2.0.
std::int64_t next_number(kernel::UNPACK& items, std::int32_t version) {
  return version == 1 ? items.NEXT<std::int32_t>() : items.NEXT<std::int64_t>();
}

T_HEADER read_fields(kernel::UNPACK header) {
  const auto magic = header.NEXT<std::array<char, 4>>();
  const auto kind = header.NEXT<std::int32_t>();
  const auto version = header.NEXT<float>();
  const auto entries = header.NEXT<std::int32_t>();
  T_HEADER fields;
  if (version == 1.0F) fields.version = 1;
  if (version == 2.0F) fields.version = 2;
  fields.is_sound = std::string_view(magic.data(), magic.size()) == DIR_MAGIC &&
                    kind == kernel::DIRECTORY_FILE_KIND && entries == ENTRIES_PER_HEADER &&
                    fields.version != 0;
  return fields;
}

T_DIRECTORY_ENTRY read_entry(kernel::UNPACK items, std::int32_t version, std::int64_t file_bytes) {
  T_DIRECTORY_ENTRY entry;
  const auto tag = items.NEXT<std::array<char, 4>>();
  for (const char character : tag) entry.tag += character >= ' ' && character <= '~' ? character : '?';
  entry.id = items.NEXT<std::int32_t>();
  entry.first = next_number(items, version);
  entry.last = next_number(items, version);
  entry.record_words = items.NEXT<std::int32_t>();

  // Asked by division: a damaged entry's numbers may be anything.
  const bool is_sane = entry.first >= 1 && entry.last >= entry.first - 1 && entry.record_words >= 1;
  entry.lies_in_file = is_sane && entry.last <= (file_bytes - 1) / (entry.record_words * WORD_BYTES) + 1;
  return entry;
}

}  // namespace

STATUS READ_DIRECTORY(kernel::RECORD_FILE& unit, const std::string& file_name, T_DIRECTORY& directory) {
  directory = {};
  if (STATUS status = unit.CONNECT(file_name); !status.OK()) return status;
  directory.file_bytes = unit.FILE_BYTES();
  if (STATUS status = unit.RECONNECT(HEADER_BYTES_OF_BOTH); !status.OK()) return status;
  const std::byte* record = nullptr;
  if (!unit.READ(1, HEADER_BYTES_OF_BOTH, record).OK()) return STATUS::FAILED(REASON::NOT_A_DIRECTORY);
  const T_HEADER first_header = read_fields(kernel::UNPACK(record));
  if (!first_header.is_sound) return STATUS::FAILED(REASON::NOT_A_DIRECTORY);

  directory.version = first_header.version;
  const std::int64_t record_bytes = directory.version == 1 ? 20 : 28;
  if (STATUS status = unit.RECONNECT(record_bytes); !status.OK()) return status;
  // A chain that visits more headers than the file could hold runs in a circle.
  const std::int64_t most_headers = directory.file_bytes / record_bytes;
  for (std::int64_t at = 1; at != 0;) {
    if (directory.headers++ >= most_headers || !unit.READ(at, record_bytes, record).OK())
      return STATUS::FAILED(REASON::DIRECTORY_CUT);
    T_HEADER header = read_fields(kernel::UNPACK(record));
    if (!header.is_sound || header.version != directory.version)
      return STATUS::FAILED(REASON::NOT_A_DIRECTORY);
    kernel::UNPACK behind(record + HEADER_BYTES_OF_BOTH);
    header.next = next_number(behind, directory.version);
    for (std::int64_t k = 1; k <= ENTRIES_PER_HEADER; ++k) {
      if (!unit.READ(at + k, record_bytes, record).OK()) return STATUS::FAILED(REASON::DIRECTORY_CUT);
      T_DIRECTORY_ENTRY entry = read_entry(kernel::UNPACK(record), directory.version, directory.file_bytes);
      if (entry.tag == UNUSED_TAG) return {};
      directory.entries.push_back(std::move(entry));
    }
    at = header.next;
  }
  return {};
}

}  // namespace tools
