// The influence line of an item along a lane, built from its values as runs build it, and its drawing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kernel/run_state.h"
#include "tools/drawn_loading.h"
#include "tools/influence_values.h"
#include "tools/plot_canvas.h"

namespace tools {

/// The lines of an item along a lane from 1 of a model with as many unit loads as the volumes: one, or those
/// of the planes of a straddle lane. Throws T_TOOL_FAILURE where the model hasn't the lane.
[[nodiscard]] std::vector<T_INFLUENCE_LINE> LINES_ALONG_LANE(const T_INFLUENCE_VALUES& values,
                                                             const T_ROW_ITEM& item,
                                                             const kernel::T_MODEL& model, std::int32_t lane);

struct T_LINE_PICTURE {
  std::string title;
  std::string subtitle;
  std::string unit;  // of the item; empty: not known
  std::vector<T_INFLUENCE_LINE> lines;
  std::vector<std::string> footnotes;
};

/// The gnuplot script that writes the picture to standard output.
[[nodiscard]] std::string LINE_PICTURE_SCRIPT(const T_LINE_PICTURE& picture, PICTURE format);

}  // namespace tools
