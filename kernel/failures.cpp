#include "kernel/failures.h"

#include <algorithm>
#include <cstdio>

namespace kernel {
namespace {

/// What is said of a failure behind file, block and record.
void describe(const STATUS& status, char* text, std::size_t room) noexcept {
  const auto value = static_cast<long long>(status.value);
  const auto low = static_cast<long long>(status.low);
  const auto high = static_cast<long long>(status.high);
  switch (status.reason) {
    case REASON::NONE:
      std::snprintf(text, room, "no failure");
      return;
    case REASON::NO_ARGUMENT:
      std::snprintf(text, room, "an argument of the call is a null pointer");
      return;
    case REASON::BAD_PATH_LENGTH:
      std::snprintf(text, room, "the path has %lld characters, which no file name can be made of", value);
      return;
    case REASON::BAD_PATH:
      std::snprintf(text, room, "the path holds a character that no file name has");
      return;
    case REASON::UNKNOWN_ANALYSIS_CODE:
      std::snprintf(text, room, "analysis code %lld is unknown (0 to 4 and 101 are known)", value);
      return;
    case REASON::FILE_NOT_OPENED:
      std::snprintf(text, room, "the file can't be opened");
      return;
    case REASON::DIRECTORY_CUT:
      std::snprintf(text, room, "the directory can't be read to its end");
      return;
    case REASON::NOT_A_DIRECTORY:
      std::snprintf(text, room, "the file holds no block directory of this version and kind");
      return;
    case REASON::BLOCK_ABSENT:
      std::snprintf(text, room, "the block isn't in the directory");
      return;
    case REASON::BAD_BLOCK_PLACE:
      std::snprintf(text, room, "the block's record length can't be %lld words", value);
      return;
    case REASON::RECORD_ABSENT:
      std::snprintf(text, room, "the record lies outside the block");
      return;
    case REASON::RECORD_CUT:
      std::snprintf(text, room, "the file ends before the record does");
      return;
    case REASON::RECORD_SHORT:
      std::snprintf(text, room, "a record has %lld bytes where %lld are read", high, value);
      return;
    case REASON::OUT_OF_BOUNDS:
      std::snprintf(text, room, "%s is %lld, outside %lld to %lld", status.item, value, low, high);
      return;
    case REASON::STRADDLE_LANE_MISPLACED:
      std::snprintf(text, room, "lane %lld: the straddle lanes aren't just the last %lld lanes", value, high);
      return;
    case REASON::AXLE_LIST_WITHOUT_PLANES:
      std::snprintf(text, room,
                    "the axle list of straddle lane %lld names lane %lld, which lacks entries for its planes",
                    low, value);
      return;
    case REASON::CLASS_LANE_TABLE_FULL:
      std::snprintf(text, room, "more class definitions than the block has room for");
      return;
    case REASON::WRONG_FORMAT_NUMBER:
      std::snprintf(text, room, "format number %lld, where 9600 is expected", value);
      return;
    case REASON::STORE_NOT_OPEN:
      std::snprintf(text, room, "no influence store is open");
      return;
    case REASON::NO_INFLUENCE_DATA:
      std::snprintf(text, room, "the volumes hold no influence data (header word %lld)", value);
      return;
    case REASON::VOLUME_CUT:
      std::snprintf(text, room, "the volume ends before what is to be read there");
      return;
    case REASON::NO_COMPOSITE_PARTS:
      std::snprintf(text, room, "a block of composite bars whose item codes name no part");
      return;
    case REASON::UNIT_LOADS_DIFFER:
      std::snprintf(
          text, room,
          "the influence store has %lld unit loads, the model %lld: an included set is missing or one "
          "too many",
          value, high);
      return;
    case REASON::NO_MEMORY:
      std::snprintf(text, room, "memory can't be had");
      return;
    case REASON::UNEXPECTED:
      break;
  }
  std::snprintf(text, room, "an unexpected failure inside the library");
}

}  // namespace

void FAILURE_TEXT(const STATUS& status, std::string_view file_name, char* text, std::size_t room) noexcept {
  if (room == 0) return;
  text[0] = '\0';
  if (status.OK()) return;
  std::size_t used = 0;
  const auto append = [&](int written) {
    if (written > 0) used = std::min(room - 1, used + static_cast<std::size_t>(written));
  };
  if (!file_name.empty()) {
    append(std::snprintf(text, room, "%.*s%.2s: ", static_cast<int>(file_name.size()), file_name.data(),
                         status.element_file.data()));
  }
  if (status.block[0] != '\0') {
    append(std::snprintf(text + used, room - used, "block %.4s: ", status.block.data()));
  }
  if (status.record != 0) {
    append(std::snprintf(text + used, room - used, "%s %lld: ", status.in_volume ? "byte" : "record",
                         static_cast<long long>(status.record)));
  }
  describe(status, text + used, room - used);
  // One line, whatever characters the host's path has.
  for (char* at = text; *at != '\0'; ++at) {
    if (static_cast<unsigned char>(*at) < ' ') *at = '?';
  }
}

}  // namespace kernel
