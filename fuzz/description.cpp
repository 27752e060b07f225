#include "fuzz/description.h"

#include <algorithm>
#include <cstring>

namespace fuzz {

T_DESCRIPTION PARSE(std::span<const std::uint8_t> bytes) {
  T_DESCRIPTION description;
  const std::size_t records = std::min(bytes.size() / RECORD_BYTES, MOST_STEPS + 1);
  if (records == 0) return description;
  std::memcpy(&description.MODEL, bytes.data(), RECORD_BYTES);
  description.STEPS.resize(records - 1);
  if (records > 1)
    std::memcpy(description.STEPS.data(), bytes.data() + RECORD_BYTES, (records - 1) * RECORD_BYTES);
  return description;
}

std::vector<std::uint8_t> BYTES_OF(const T_DESCRIPTION& description) {
  std::vector<std::uint8_t> bytes(RECORD_BYTES * (1 + description.STEPS.size()));
  std::memcpy(bytes.data(), &description.MODEL, RECORD_BYTES);
  if (!description.STEPS.empty())
    std::memcpy(bytes.data() + RECORD_BYTES, description.STEPS.data(), bytes.size() - RECORD_BYTES);
  return bytes;
}

}  // namespace fuzz
