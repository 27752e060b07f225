// The contents of influence volumes as text for a terminal and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/volume_contents.h"

namespace tools {

/// "included set split/bridge_included", and "unit loads 1 to 9, which the solver calls 101 to 109".
[[nodiscard]] std::string SET_IN_WORDS(const T_VOLUME_SET& set);
[[nodiscard]] std::string UNIT_LOADS_IN_WORDS(const T_VOLUME_SET& set);

[[nodiscard]] std::string VOLUMES_TEXT(const T_VOLUME_CONTENTS& contents);
[[nodiscard]] nlohmann::ordered_json VOLUMES_JSON(const T_VOLUME_CONTENTS& contents);

}  // namespace tools
