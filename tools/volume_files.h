// From what the user typed to a set of influence volumes on the disk.
#pragma once

#include <optional>
#include <string>

namespace tools {

/// The base path of the volumes that a base path, the name of a volume or that of the block directory file
/// beside them stands for; none where there is no first volume.
[[nodiscard]] std::optional<std::string> FIND_VOLUMES(const std::string& given);

/// The same. Throws T_TOOL_FAILURE, which names the sets in that folder, where there is none.
[[nodiscard]] std::string FIND_VOLUME_SET(const std::string& given);

}  // namespace tools
