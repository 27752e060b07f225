// The file that a picture is written to.
#pragma once

#include <optional>
#include <string>

#include "tools/plot_canvas.h"

namespace tools {

/// By the end of the name; none where it is neither .svg nor .png.
[[nodiscard]] std::optional<PICTURE> PICTURE_FORMAT(const std::string& file);

/// What is wrong with a name of a picture, for the command line; empty: nothing.
[[nodiscard]] std::string PICTURE_FILE_FAULT(const std::string& file);

/// Writes beside the file's place and then moves there, so that no half of a picture is ever found. Throws
/// T_TOOL_FAILURE.
void WRITE_PICTURE_FILE(const std::string& file, const std::string& contents);

}  // namespace tools
