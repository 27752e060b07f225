#include "tools/plot_canvas.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tools {
namespace {

/// A text with a mark in place of what isn't UTF-8, of which no picture could be made.
std::string as_utf8(std::string_view text) {
  const std::string replaced =
      nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  return nlohmann::json::parse(replaced).get<std::string>();
}

std::string pen_text(const T_PEN& pen) {
  return fmt::format("lw {} lc rgb '{}' dt {}", pen.width, pen.colour, pen.dashed ? "(8,6)" : "1");
}

/// A text as a label: bold by gnuplot's own markup, whose characters are then taken for themselves.
std::string label_text(std::string_view text, const T_FONT& font) {
  if (!font.bold) return GNUPLOT_STRING(text) + " noenhanced";
  constexpr std::string_view MARKUP = "{}^_@&~\\";
  std::string marked;
  for (const char character : text) {
    if (MARKUP.find(character) != std::string_view::npos) marked += '\\';
    marked += character;
  }
  return GNUPLOT_STRING("{/:Bold " + marked + "}") + " enhanced";
}

}  // namespace

std::string GNUPLOT_STRING(std::string_view text) {
  std::string quoted = "'";
  for (const char character : as_utf8(text)) {
    if (character == '\'') {
      quoted += "''";
    } else {
      quoted += static_cast<unsigned char>(character) < ' ' || character == '\x7f' ? '?' : character;
    }
  }
  return quoted + "'";
}

double TEXT_EXTENT(std::string_view text, const T_FONT& font) {
  // Of DejaVu Sans, which is a wide font.
  constexpr std::string_view NARROW = " .,;:'|!()[]fijlrtI";
  constexpr std::string_view WIDE = "mwMW@%×+";
  constexpr double NARROW_WIDTH = 0.39;
  constexpr double USUAL_WIDTH = 0.64;
  constexpr double WIDE_WIDTH = 0.98;
  constexpr double BOLD = 1.12;
  double width = 0.0;
  for (const char byte : text) {
    if ((static_cast<unsigned char>(byte) & 0xC0U) == 0x80U) continue;  // goes on with a character
    width += NARROW.find(byte) != std::string_view::npos ? NARROW_WIDTH
             : WIDE.find(byte) != std::string_view::npos ? WIDE_WIDTH
                                                         : USUAL_WIDTH;
  }
  return width * font.size * (font.bold ? BOLD : 1.0);
}

std::string PLOT_CANVAS::at(const T_SPOT& spot) const {
  return fmt::format("screen {:.5f},{:.5f}", spot.x / width_, 1.0 - spot.y / height_);
}

void PLOT_CANVAS::BEGIN(PICTURE format) {
  if (format == PICTURE::SVG) {
    script_ += fmt::format("set encoding utf8\nset terminal svg size {:.0f},{:.0f} font 'sans-serif,11'",
                           width_, height_);
  } else {
    // Twice as many pixels as points; gnuplot takes a font's size for one at 96 pixels to 72.
    constexpr double PIXELS = 2.0;
    script_ += fmt::format(
        "set encoding utf8\nset terminal pngcairo size {:.0f},{:.0f} font 'sans-serif,11' fontscale {} "
        "linewidth {} pointscale {}",
        PIXELS * width_, PIXELS * height_, PIXELS * 0.75, PIXELS, PIXELS);
  }
  script_ +=
      " enhanced background rgb '#ffffff'\n"
      "set multiplot\nunset key\nset border 3 lw 0.8\nset xzeroaxis lt 1 lw 0.8 lc rgb '#000000'\n"
      "set tics out nomirror scale 0.5 font ',11' format '%g'\nset xtics offset 0,0.3\n"
      "set ytics offset 0.5,0\n";
}

void PLOT_CANVAS::FILL(const T_BOX& box, std::string_view colour) {
  script_ +=
      fmt::format("set object rectangle from {} to {} behind fillstyle solid noborder fillcolor rgb '{}'\n",
                  at({box.left, box.bottom}), at({box.right, box.top}), colour);
}

void PLOT_CANVAS::BLOCK(const T_BOX& box, std::string_view colour, const T_PEN& border) {
  script_ += fmt::format(
      "set object rectangle from {} to {} back lw {} fillstyle solid border lc rgb '{}' fillcolor rgb '{}'\n",
      at({box.left, box.bottom}), at({box.right, box.top}), border.width, border.colour, colour);
}

void PLOT_CANVAS::LINE(const T_SPOT& from, const T_SPOT& to, const T_PEN& pen) {
  script_ += fmt::format("set arrow from {} to {} nohead front {}\n", at(from), at(to), pen_text(pen));
}

void PLOT_CANVAS::ARROW(const T_SPOT& from, const T_SPOT& to, const T_PEN& pen, double head) {
  constexpr double HALF_ANGLE = 22.0;
  script_ += fmt::format("set arrow from {} to {} head filled size screen {:.5f},{},90 front {}\n", at(from),
                         at(to), head / width_, HALF_ANGLE, pen_text(pen));
}

void PLOT_CANVAS::TEXT(const T_SPOT& spot, std::string_view text, const T_FONT& font, ALIGN align) {
  const std::string_view side = align == ALIGN::LEFT ? "left" : align == ALIGN::CENTRE ? "center" : "right";
  script_ += fmt::format("set label {} at {} {} font ',{}' textcolor rgb '{}' front\n",
                         label_text(text, font), at(spot), side, font.size, font.colour);
}

void PLOT_CANVAS::UPRIGHT_TEXT(const T_SPOT& spot, std::string_view text, const T_FONT& font) {
  script_ += fmt::format("set label {} at {} center rotate by 90 font ',{}' textcolor rgb '{}' front\n",
                         label_text(text, font), at(spot), font.size, font.colour);
}

void PLOT_CANVAS::AXES(const T_BOX& box) {
  script_ += fmt::format("set lmargin at screen {:.5f}\nset rmargin at screen {:.5f}\n", box.left / width_,
                         box.right / width_);
  script_ += fmt::format("set tmargin at screen {:.5f}\nset bmargin at screen {:.5f}\n",
                         1.0 - box.top / height_, 1.0 - box.bottom / height_);
}

void PLOT_CANVAS::PLOT(std::string_view plot_command) {
  script_ += plot_command;
  script_ += "\nunset label\nunset arrow\nunset object\n";
}

}  // namespace tools
