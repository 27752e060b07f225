// Influence volumes in place of the blocks and element files of responses: the options that ask for them,
// what they hold, and what to do where a run on them fails.
#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <string>
#include <string_view>

#include "kernel/control_blocks.h"
#include "store/m_influence.h"
#include "tools/model_files.h"
#include "tools/result_points.h"

namespace tools {

/// Where responses come from.
struct T_RESPONSE_SOURCE {
  bool in_volumes = false;    // of the model's base name; else in blocks and element files
  std::string included_base;  // of the included set; empty: none
};

/// Adds --store and --include to a command. The source must outlive it.
void ADD_VOLUME_OPTIONS(CLI::App& command, T_RESPONSE_SOURCE& source);

/// The first volume of a set.
[[nodiscard]] std::string FIRST_VOLUME(const std::string& base_name);

/// Advice on a failure that the library tells by its line of text, for a run on that source.
[[nodiscard]] std::string ADVICE_FOR(std::string_view failure_line, const T_MODEL_FILE& file,
                                     const T_RESPONSE_SOURCE& source);

/// Opens the volumes of a model as a run does. Throws T_TOOL_FAILURE where they can't be read or aren't the
/// model's.
void OPEN_VOLUMES(const T_MODEL_FILE& file, const T_RESPONSE_SOURCE& source, const kernel::T_COUNTS& counts,
                  store::INFLUENCE_STORE& store);

/// The result points of a kind that an open store holds. Links of both kinds stand in one list.
[[nodiscard]] T_RESULT_POINTS STORED_POINTS(const store::INFLUENCE_STORE& store,
                                            const kernel::T_COUNTS& counts, const T_KIND& kind);

/// Runs find an element by its number alone: of another kind they would take what stands in the places of the
/// kind that is asked for. Throws T_TOOL_FAILURE for an element that isn't of the points' kind.
void CHECK_ELEMENT(const store::INFLUENCE_STORE& store, const T_RESULT_POINTS& points, std::int32_t id);

}  // namespace tools
