// Drawing with gnuplot in points of a page: x to the right and y downward from the upper left corner. What is
// drawn becomes gnuplot commands; texts and file names never do, but as quoted strings.
#pragma once

#include <string>
#include <string_view>

namespace tools {

struct T_SPOT {
  double x = 0.0;
  double y = 0.0;
};

struct T_BOX {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
};

struct T_PEN {
  double width = 1.0;
  std::string_view colour = "#000000";
  bool dashed = false;
};

struct T_FONT {
  double size = 11.0;
  bool bold = false;
  std::string_view colour = "#000000";
};

enum class PICTURE { SVG, PNG };

enum class ALIGN { LEFT, CENTRE, RIGHT };

/// A string as gnuplot reads it: in single quotes, in which it replaces nothing. Control characters become
/// '?'.
[[nodiscard]] std::string GNUPLOT_STRING(std::string_view text);

/// How wide a text comes out, at most, in the sans-serif fonts that are about.
[[nodiscard]] double TEXT_EXTENT(std::string_view text, const T_FONT& font);

class PLOT_CANVAS {
 public:
  PLOT_CANVAS(double width, double height) : width_(width), height_(height) {}

  /// The commands that come first: format, size, and what all plots have in common.
  void BEGIN(PICTURE format);

  /// Filled without a border, behind everything else.
  void FILL(const T_BOX& box, std::string_view colour);
  /// Filled, with a border.
  void BLOCK(const T_BOX& box, std::string_view colour, const T_PEN& border);
  void LINE(const T_SPOT& from, const T_SPOT& to, const T_PEN& pen);
  /// With a filled head of `head` points at its end.
  void ARROW(const T_SPOT& from, const T_SPOT& to, const T_PEN& pen, double head);
  /// The text's middle line runs through the spot.
  void TEXT(const T_SPOT& spot, std::string_view text, const T_FONT& font, ALIGN align = ALIGN::LEFT);
  /// From below to above, its middle at the spot.
  void UPRIGHT_TEXT(const T_SPOT& spot, std::string_view text, const T_FONT& font);

  /// Commands that place the next plot's axes on a box.
  void AXES(const T_BOX& box);
  /// Any other commands, a line feed at the end of each.
  void COMMANDS(std::string_view commands) { script_ += commands; }
  /// Ends a plot: what was drawn so far appears with it, and not again with the next one.
  void PLOT(std::string_view plot_command);

  [[nodiscard]] const std::string& SCRIPT() const { return script_; }

 private:
  [[nodiscard]] std::string at(const T_SPOT& spot) const;

  double width_;
  double height_;
  std::string script_;
};

}  // namespace tools
