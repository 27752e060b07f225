// The drawing of governing loadings on one sheet: a column for each side, a panel for each lane.
//
// A panel has a strip with the loads on the lane, as they stand, and below it the influence line with their
// effect. All panels share both scales.
#pragma once

#include <string>
#include <vector>

#include "tools/drawn_loading.h"
#include "tools/plot_canvas.h"

namespace tools {

struct T_SHEET_COLUMN {
  T_DRAWN_SIDE drawn;      // lanes that are to be drawn, those of all columns in the same order
  std::string subheading;  // below the value
};

struct T_SHEET {
  std::string title;
  std::string subtitle;
  std::string unit;  // of the value; empty: not known
  std::vector<T_SHEET_COLUMN> columns;
  std::vector<std::string> footnotes;
};

/// The gnuplot script that writes the picture to standard output.
[[nodiscard]] std::string SHEET_SCRIPT(const T_SHEET& sheet, PICTURE format);

}  // namespace tools
