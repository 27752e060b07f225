#include "results/element_files.h"

#include <algorithm>
#include <limits>

namespace results {
namespace {

constexpr std::int64_t WORD_BYTES = 4;
constexpr std::int32_t MOST_FILES = 9;
constexpr std::int32_t NO_LIMIT = std::numeric_limits<std::int32_t>::max();

}  // namespace

STATUS ELEMENT_READER::OPEN(const std::string& directory_file, const kernel::T_COUNTS& counts, char family,
                            std::int32_t element, std::int32_t rec_words) {
  const std::int32_t per_file = counts.ELEM_PER_FILE[kernel::ELEMENT_FAMILIES.find(family)];
  if (STATUS status = CHECK_BOUNDS("ELEM_PER_FILE", per_file, 1, NO_LIMIT); !status.OK()) {
    return status.IN("MLDI", 1);
  }
  if (STATUS status = CHECK_BOUNDS("RESULT_ID", element, 1, NO_LIMIT); !status.OK()) return status;
  const std::int32_t file_no = (element - 1) / per_file + 1;
  const std::int32_t local_no = (element - 1) % per_file + 1;
  if (STATUS status = CHECK_BOUNDS("FILE_NO of the element", file_no, 1, MOST_FILES); !status.OK()) {
    return status;
  }
  name_end_ = {family, static_cast<char>('0' + file_no)};
  const std::int64_t record_bytes = WORD_BYTES * rec_words;
  STATUS status = unit_.CONNECT(directory_file + std::string(name_end_.begin(), name_end_.end()));
  if (status.OK()) status = unit_.RECONNECT(record_bytes);
  if (!status.OK()) return at(status, 0);

  const std::int64_t records = counts.N_UNIT_LOAD;
  before_ = (local_no - 1) * records;
  const std::int64_t in_file = unit_.FILE_BYTES() / record_bytes;
  if (before_ + records > in_file) {
    return at(STATUS::FAILED(REASON::RECORD_CUT), std::max(before_, in_file) + 1);
  }
  // All the records in one go, unless they are very many.
  constexpr std::int64_t AT_ONCE = 1024 * 1024;
  const std::byte* first_record = nullptr;
  return at(unit_.READ(before_ + 1, std::min(records * record_bytes, AT_ONCE), first_record), before_ + 1);
}

STATUS ELEMENT_READER::READ_ELEMENT_RECORD(std::int64_t k, const std::byte*& record) {
  return at(unit_.READ(before_ + k, unit_.RECORD_BYTES(), record), before_ + k);
}

}  // namespace results
