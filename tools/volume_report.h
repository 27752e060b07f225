// The contents of influence volumes as text for a terminal and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/volume_contents.h"

namespace tools {

[[nodiscard]] std::string VOLUMES_TEXT(const T_VOLUME_CONTENTS& contents);
[[nodiscard]] nlohmann::ordered_json VOLUMES_JSON(const T_VOLUME_CONTENTS& contents);

}  // namespace tools
