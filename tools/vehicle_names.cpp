#include "tools/vehicle_names.h"

#include <array>

#include "kernel/block_file.h"

namespace tools {
namespace {

std::string shown(const std::array<char, 20>& characters) {
  std::string name;
  for (const char character : characters) name += character >= ' ' && character <= '~' ? character : '?';
  name.erase(name.find_last_not_of(' ') + 1);
  return name;
}

}  // namespace

STATUS READ_VEHICLE_NAMES(kernel::RECORD_FILE& unit, const std::string& file_name,
                          const kernel::T_COUNTS& counts, std::vector<std::string>& names) {
  constexpr std::int64_t GROUP_BYTES = 8;
  constexpr std::int64_t BYTES_WITH_NAME = 28;
  constexpr std::size_t NAME_OFFSET = 8;
  names.assign(static_cast<std::size_t>(counts.N_VEHICLE_COLUMN), {});
  kernel::BLOCK_READER block;
  if (STATUS status = block.OPEN_MANDATORY(unit, file_name, "VEHI", 0); !status.OK()) return status;
  std::int64_t number = 0;
  std::size_t column = 0;
  for (std::int32_t group = 0; group < counts.N_VEHICLE_GROUP; ++group) {
    const std::byte* record = nullptr;
    if (STATUS status = block.READ(++number, GROUP_BYTES, record); !status.OK()) return status;
    kernel::UNPACK head(record);
    head.SKIP(sizeof(std::int32_t));
    const auto vehicles = head.NEXT<std::int32_t>();
    for (std::int32_t v = 0; v < vehicles && column < names.size(); ++v) {
      if (STATUS status = block.READ(++number, BYTES_WITH_NAME, record); !status.OK()) return status;
      kernel::UNPACK vehicle(record);
      names[column++] = shown(vehicle.SKIP(NAME_OFFSET).NEXT<std::array<char, 20>>());
    }
  }
  return {};
}

}  // namespace tools
