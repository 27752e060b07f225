// Sets of influence volumes as the user names them: finding them, opening them as one store, and what to do
// where that fails.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "store/m_influence.h"
#include "tools/model_files.h"

namespace tools {

/// The sets that make up a store, by base path.
struct T_VOLUME_PATHS {
  std::string base;
  std::string included{};  // empty: none
};

/// The name of a set's first volume.
[[nodiscard]] std::string FIRST_VOLUME(const std::string& base_path);

/// The base path of the set that a base path, the name of a volume or that of the block directory file beside
/// them stands for; none where there is no first volume.
[[nodiscard]] std::optional<std::string> FIND_VOLUME_SET(const std::string& given);

/// The sets that the user has named, of which `included` may be empty. Throws T_TOOL_FAILURE, which names the
/// sets in that folder, where there is none, and for the same set twice.
[[nodiscard]] T_VOLUME_PATHS FIND_VOLUME_PATHS(const std::string& given, const std::string& included);

/// Opens the sets as a host does. Throws T_TOOL_FAILURE with the volume's name where one can't be read.
void OPEN_VOLUMES(const T_VOLUME_PATHS& paths, store::INFLUENCE_STORE& store);

/// The library's line of text on a store that hasn't as many unit loads as the model, as a run needs; empty
/// for one that has.
[[nodiscard]] std::string UNIT_LOADS_FAULT(std::int64_t stored, std::int32_t of_model,
                                           const T_MODEL_FILE& file);
/// Throws it as T_TOOL_FAILURE.
void CHECK_UNIT_LOADS(std::int32_t stored, std::int32_t of_model, const T_MODEL_FILE& file,
                      const T_VOLUME_PATHS& paths);

/// Advice on a failure over these sets that the library tells by its line of text.
[[nodiscard]] std::string ADVICE_FOR(std::string_view failure_line, const T_VOLUME_PATHS& paths);

/// "bridge.ZA3, bridge_included_000.BLK, bridge_000.BLK": what a picture has been drawn from.
[[nodiscard]] std::string SOURCES_IN_WORDS(const T_MODEL_FILE& file,
                                           const std::optional<T_VOLUME_PATHS>& volumes);

}  // namespace tools
