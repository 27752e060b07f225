#include "tools/plot_sheet.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <sstream>
#include <utility>

#include "tools/plot_canvas.h"
#include "tools/text_layout.h"

namespace tools {
namespace {

// Points of the sheet. Two columns are as wide as a page of A4 at 0.18 mm a point.
constexpr double MARGIN = 18.0;
constexpr double WIDE_COLUMN = 820.0;
constexpr double COLUMN = 520.0;
constexpr double COLUMN_GAP = 28.0;
constexpr double AXIS_ROOM = 58.0;  // for figures and unit left of the axes
constexpr double LINE_HEIGHT = 15.0;
constexpr double LANE_HEADING = 17.0;
constexpr double DETAILS_GAP = 4.0;
constexpr double LABEL_ROW = 14.0;
constexpr double ARROW_ROOM = 34.0;
constexpr double DIMENSION_LINE = 10.0;  // below the lane
constexpr double DIMENSION_ROOM = 31.0;
constexpr double GRAPH = 100.0;
constexpr double TIC_ROOM = 20.0;
constexpr double ROW_GAP = 14.0;

constexpr T_FONT SMALL{11.0};
constexpr T_FONT PLAIN{12.0};
constexpr T_FONT BOLD{13.0, true};
constexpr T_FONT GREY{11.0, false, "#555555"};

constexpr std::string_view ZONE_COLOUR = "#ececec";
constexpr std::string_view NO_LOAD_COLOUR = "#888888";
constexpr T_PEN THIN{0.7};
constexpr T_PEN DASHES{0.7, "#777777", true};
constexpr T_PEN LANE_PEN{1.6, "#444444"};
constexpr T_PEN LOAD_PEN{1.6};
constexpr T_PEN KEL_PEN{2.4};

std::string_view shade(HOST_SIDE side) {
  return side == MAXIMUM ? "#a9cce6" : "#f5c49c";
}

// ------------------------------------------------------------------------------------------ words

std::string with_unit(double value, const std::string& unit) {
  return unit.empty() ? VALUE_TEXT(value) : VALUE_TEXT(value) + " " + unit;
}

std::string metres(double length) {
  return fmt::format("{:.3f}", length);
}

/// A length in at most two decimals, without the zeros at its end.
std::string short_metres(double length) {
  std::string text = fmt::format("{:.2f}", length);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string hb_heading(const T_DRAWN_HB& hb) {
  return fmt::format("HB type {} {}", hb.type, hb.pass == PASS::REVERSE ? "in reverse" : "forward");
}

std::string lane_heading(const T_DRAWN_LANE& lane) {
  const std::string hb = lane.hb ? hb_heading(*lane.hb) : "HB that adds nothing";
  const std::string text = fmt::format("Lane {}   ", lane.lane);
  switch (lane.carries) {
    case CARRIES::NOTHING:
      break;
    case CARRIES::HA:
      return text + "HA";
    case CARRIES::HB:
      return text + hb;
    case CARRIES::STRADDLING_HB:
      return text + fmt::format("{} across {} and {}", hb, lane.parents[0], lane.parents[1]);
    case CARRIES::UDL_BESIDE_HB:
      return text + fmt::format("UDL beside HB of lane {}: {}", lane.straddle_lane,
                                lane.portion == 1.0 ? "full" : "a third");
  }
  return text + "not loaded";
}

std::string udl_details(const T_DRAWN_UDL& udl, double of_it) {
  constexpr std::size_t MOST_STRETCHES = 5;
  std::vector<std::string> stretches;
  for (const T_STRETCH& stretch : udl.stretches) {
    if (stretches.size() == MOST_STRETCHES) {
      stretches.push_back(fmt::format("and {} more", udl.stretches.size() - MOST_STRETCHES));
      break;
    }
    stretches.push_back(fmt::format("{} to {}", metres(stretch.start), metres(stretch.end)));
  }
  const std::string portion = of_it == 1.0 ? "" : fmt::format(" × {:.4f}", of_it);
  const std::string with_hb = udl.vehicle_length > 0.0
                                  ? fmt::format(", intensity for {}\u00A0m with the HB",
                                                metres(udl.loaded_length + udl.vehicle_length))
                                  : "";
  return fmt::format("UDL {:.3f}\u00A0kN/m{} over {}\u00A0m ({}){}, area\u00A0{:.5g}", udl.intensity, portion,
                     metres(udl.loaded_length), fmt::join(stretches, ", "), with_hb, udl.area);
}

/// The second and the third plane of a straddle lane are those of its parent lanes.
std::string plane_name(const T_DRAWN_LANE& lane, std::int32_t plane) {
  constexpr std::int32_t FIRST_PARENT = 2;
  const auto parent = static_cast<std::size_t>(plane - FIRST_PARENT);
  return plane >= FIRST_PARENT && parent < lane.parents.size()
             ? fmt::format(", that of lane {}", lane.parents[parent])
             : "";
}

std::string hb_details(const T_DRAWN_LANE& lane, const T_DRAWN_HB& hb) {
  std::vector<std::string> places;
  std::vector<std::int32_t> axle_lanes;
  for (const T_DRAWN_AXLE& axle : hb.axles) {
    places.push_back(metres(axle.x));
    axle_lanes.push_back(axle.lane);
  }
  std::string text = fmt::format("HB axles of {}\u00A0kN at {}\u00A0m", VALUE_TEXT(hb.axles[0].load),
                                 fmt::join(places, ", "));
  if (lane.carries == CARRIES::STRADDLING_HB) {
    text += hb.plane == 0
                ? ", adding nothing in any plane"
                : fmt::format(", on plane {} of {}{}", hb.plane, lane.planes, plane_name(lane, hb.plane));
  }
  if (std::ranges::any_of(axle_lanes, [&](std::int32_t number) { return number != lane.lane; }))
    text += fmt::format(", running on lanes {}", fmt::join(axle_lanes, ", "));
  return text;
}

/// Everything that stands on a lane, in figures.
std::string lane_details(const T_DRAWN_LANE& lane) {
  if (lane.carries == CARRIES::NOTHING) return "";
  std::vector<std::string> loads{fmt::format("Factor {:.4f}", lane.factor)};
  if (lane.times > 1)
    loads.push_back(fmt::format("counted {} times, for {} vehicles", lane.times, lane.times));
  if (lane.hb) loads.push_back(hb_details(lane, *lane.hb));
  if (lane.carries == CARRIES::UDL_BESIDE_HB && !lane.udl)
    loads.emplace_back("no UDL adds to the value here");
  if (lane.udl) loads.push_back(udl_details(*lane.udl, lane.portion));
  if (lane.kel)
    loads.push_back(
        fmt::format("KEL {}\u00A0kN at {}\u00A0m", VALUE_TEXT(lane.kel->load), metres(lane.kel->x)));
  if (const std::optional<T_LINE_POINT> jump = JUMP_OF(lane.line)) {
    loads.push_back(fmt::format("the line jumps at {}\u00A0m from {:.4g} to {:.4g}", metres(jump->x),
                                jump->before, jump->after));
  }
  return fmt::format("{}", fmt::join(loads, "; "));
}

// ------------------------------------------------------------------------------------------ scales

struct T_INTERVAL {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  void HOLD(double value) {
    if (!std::isfinite(value)) return;
    low = std::min(low, value);
    high = std::max(high, value);
  }
  [[nodiscard]] bool EMPTY() const { return !(low < high); }
};

/// A round step that parts a length about so often.
double round_step(double length, double parts) {
  const double rough = length / parts;
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  for (const double step : {1.0, 2.0, 2.5, 5.0})
    if (step * power >= rough * 0.999) return step * power;
  return 10.0 * power;
}

/// What all panels have in common.
struct T_SCALES {
  T_INTERVAL x;
  T_INTERVAL y;              // of ordinates / unit
  double ordinate_unit = 1;  // a power of ten
  std::string ordinate_text;

  explicit T_SCALES(const T_SHEET& sheet) {
    for (const T_SHEET_COLUMN& column : sheet.columns)
      for (const T_DRAWN_LANE& lane : column.drawn.lanes) hold(lane);
    if (x.EMPTY())
      for (const T_SHEET_COLUMN& column : sheet.columns)
        for (const T_DRAWN_LANE& lane : column.drawn.lanes)
          for (const T_LINE_POINT& point : lane.line) x.HOLD(point.x);
    if (x.EMPTY()) x = {0.0, 1.0};
    const double margin = 0.03 * (x.high - x.low);
    x = {x.low - margin, x.high + margin};

    y.HOLD(0.0);
    const double largest = std::max(-y.low, y.high);
    constexpr double SMALLEST_PLAIN = 0.01;
    constexpr double LARGEST_PLAIN = 10000.0;
    int power = 0;
    if (largest > 0 && (largest < SMALLEST_PLAIN || largest >= LARGEST_PLAIN))
      power = 3 * static_cast<int>(std::floor(std::log10(largest) / 3.0));
    ordinate_unit = std::pow(10.0, power);
    if (largest == 0) y = {-1.0, 1.0};
    // Room for the figures beyond the peaks.
    constexpr double BEYOND = 0.26;
    const double height = y.high - y.low;
    y = {(y.low - (y.low < 0 ? BEYOND : 0.06) * height) / ordinate_unit,
         (y.high + (y.high > 0 ? BEYOND : 0.06) * height) / ordinate_unit};
    ordinate_text = (power == 0 ? "" : "10" + superscript(power) + " ") +
                    (sheet.unit.empty() ? "ordinate" : sheet.unit) + " per kN";
  }

 private:
  void hold(const T_DRAWN_LANE& lane) {
    for (std::size_t i = 0; i < lane.line.size(); ++i) {
      const T_LINE_POINT& point = lane.line[i];
      y.HOLD(point.before);
      y.HOLD(point.after);
      if (point.before != 0 || point.after != 0) x.HOLD(point.x);
    }
    if (lane.clear) {
      x.HOLD(lane.clear->start);
      x.HOLD(lane.clear->end);
    }
    if (lane.kel) x.HOLD(lane.kel->x);
    if (lane.udl) {
      for (const T_STRETCH& stretch : lane.udl->stretches) {
        x.HOLD(stretch.start);
        x.HOLD(stretch.end);
      }
    }
  }

  static std::string superscript(int number) {
    constexpr std::array<std::string_view, 10> DIGITS{"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    std::string text;
    for (const char digit : std::to_string(number))
      text += digit == '-' ? "⁻" : DIGITS[static_cast<std::size_t>(digit - '0')];
    return text;
  }
};

// ------------------------------------------------------------------------------------------ labels

/// Texts side by side on one line, none over another.
class LABEL_LINE {
 public:
  LABEL_LINE(double left, double right) : left_(left), right_(right) {}

  /// Where a text of this width has its middle, as near to the wanted place as it can be and at most `reach`
  /// away; none where there is no room.
  std::optional<double> PLACE(double wanted, double width, double reach) {
    constexpr double GAP = 6.0;
    const double half = width / 2;
    std::vector<double> places{wanted};
    for (const auto& [start, end] : taken_) {
      places.push_back(start - GAP - half);
      places.push_back(end + GAP + half);
    }
    std::optional<double> best;
    for (double place : places) {
      place = std::clamp(place, left_ + half, std::max(left_ + half, right_ - half));
      const bool is_free = std::ranges::none_of(taken_, [&](const auto& other) {
        return place - half < other.second + GAP * 0.9 && place + half > other.first - GAP * 0.9;
      });
      if (is_free && (!best || std::fabs(place - wanted) < std::fabs(*best - wanted))) best = place;
    }
    if (!best || std::fabs(*best - wanted) > reach) return std::nullopt;
    taken_.emplace_back(*best - half, *best + half);
    return best;
  }

 private:
  double left_;
  double right_;
  std::vector<std::pair<double, double>> taken_;
};

// ------------------------------------------------------------------------------------------ one panel

class PANEL {
 public:
  PANEL(PLOT_CANVAS& canvas, const T_SCALES& scales, HOST_SIDE side, const T_DRAWN_LANE& lane,
        const T_BOX& box, int number)
      : canvas_(canvas),
        scales_(scales),
        side_(side),
        lane_(lane),
        left_(box.left + AXIS_ROOM),
        right_(box.right - 4.0),
        base_(box.top + LABEL_ROW + ARROW_ROOM),
        graph_top_(base_ + DIMENSION_ROOM),
        graph_bottom_(graph_top_ + GRAPH),
        labels_(box.left, right_),
        dimensions_(box.left, right_),
        number_(number) {}

  void DRAW() {
    if (lane_.line.empty()) return;  // a straddle lane that isn't loaded has no plane to show
    draw_zone();
    canvas_.LINE({left_, base_}, {right_, base_}, LANE_PEN);
    if (lane_.hb) draw_hb(*lane_.hb);
    if (lane_.kel) draw_kel(*lane_.kel);
    if (lane_.udl) draw_udl(*lane_.udl);
    draw_graph();
  }

 private:
  [[nodiscard]] double at_x(double x) const {
    return left_ + (x - scales_.x.low) / (scales_.x.high - scales_.x.low) * (right_ - left_);
  }
  [[nodiscard]] double at_y(double ordinate) const {
    const double y = ordinate / scales_.ordinate_unit;
    return graph_bottom_ - (y - scales_.y.low) / (scales_.y.high - scales_.y.low) * GRAPH;
  }

  void draw_zone() {
    if (!lane_.clear) return;
    const double top = base_ - ARROW_ROOM;
    canvas_.FILL({at_x(lane_.clear->start), top, at_x(lane_.clear->end), graph_bottom_}, ZONE_COLOUR);
    for (const double end : {lane_.clear->start, lane_.clear->end})
      canvas_.LINE({at_x(end), top}, {at_x(end), graph_bottom_}, DASHES);
    if (lane_.hb) return;
    canvas_.TEXT({(at_x(lane_.clear->start) + at_x(lane_.clear->end)) / 2, base_ - ARROW_ROOM / 2},
                 fmt::format("clear for the HB of lane {}", lane_.straddle_lane), GREY, ALIGN::CENTRE);
  }

  /// A dimension below the lane: a line between two ends with arrows, its text in the middle, or below where
  /// that is too narrow.
  void dimension(double from, double to, const std::string& text) {
    constexpr double HEAD = 5.0;
    const double y = base_ + DIMENSION_LINE;
    const double middle = (from + to) / 2;
    const double width = TEXT_EXTENT(text, SMALL);
    const bool is_inside = width + 4 * HEAD < to - from;
    for (const double end : {from, to}) canvas_.LINE({end, base_ + 2.0}, {end, y + 4.0}, THIN);
    if (!is_inside) {
      canvas_.LINE({from, y}, {to, y}, THIN);
      const std::optional<double> place = dimensions_.PLACE(middle, width, width);
      if (place) canvas_.TEXT({*place, y + 12.0}, text, SMALL, ALIGN::CENTRE);
      return;
    }
    canvas_.TEXT({middle, y}, text, SMALL, ALIGN::CENTRE);
    canvas_.ARROW({middle - width / 2 - 2.0, y}, {from, y}, THIN, HEAD);
    canvas_.ARROW({middle + width / 2 + 2.0, y}, {to, y}, THIN, HEAD);
  }

  void draw_hb(const T_DRAWN_HB& hb) {
    constexpr double AXLE_ARROW = 24.0;
    std::vector<double> places;
    for (const T_DRAWN_AXLE& axle : hb.axles) places.push_back(at_x(axle.x));
    for (const double x : places) canvas_.ARROW({x, base_ - AXLE_ARROW}, {x, base_ - 1.0}, LOAD_PEN, 6.0);
    const auto [low, high] = std::ranges::minmax(places);
    canvas_.LINE({low, base_ - AXLE_ARROW}, {high, base_ - AXLE_ARROW}, LOAD_PEN);
    const std::string label = fmt::format("HB type {}, 4 × {} kN", hb.type, VALUE_TEXT(hb.axles[0].load));
    const double width = TEXT_EXTENT(label, PLAIN);
    const double middle = labels_.PLACE((low + high) / 2, width, right_ - left_).value_or((low + high) / 2);
    canvas_.TEXT({middle, labels_y()}, label, PLAIN, ALIGN::CENTRE);
    // The way it drives, ahead of its first axle.
    const double way = places.front() >= places.back() ? 1.0 : -1.0;
    const double y = base_ - AXLE_ARROW + 6.0;
    canvas_.ARROW({places.front() + way * 10.0, y}, {places.front() + way * 42.0, y}, LOAD_PEN, 8.0);

    const double bogie = std::fabs(hb.axles[0].x - hb.axles[1].x);
    const double inner = std::fabs(hb.axles[1].x - hb.axles[2].x);
    const std::string spacing =
        fmt::format("{} + {} + {} m", short_metres(bogie), short_metres(inner), short_metres(bogie));
    for (const double x : places) canvas_.LINE({x, base_ + 2.0}, {x, base_ + DIMENSION_LINE + 4.0}, THIN);
    canvas_.LINE({low, base_ + DIMENSION_LINE}, {high, base_ + DIMENSION_LINE}, THIN);
    const double width_of_spacing = TEXT_EXTENT(spacing, SMALL);
    const std::optional<double> place =
        dimensions_.PLACE((low + high) / 2, width_of_spacing, width_of_spacing);
    if (place) canvas_.TEXT({*place, base_ + DIMENSION_LINE + 12.0}, spacing, SMALL, ALIGN::CENTRE);
    if (!lane_.clear) return;
    const auto [first, last] = std::minmax({hb.axles.front().x, hb.axles.back().x});
    dimension(at_x(lane_.clear->start), low, short_metres(first - lane_.clear->start) + " m clear");
    dimension(high, at_x(lane_.clear->end), short_metres(lane_.clear->end - last) + " m clear");
  }

  void draw_kel(const T_DRAWN_KEL& kel) {
    const double x = at_x(kel.x);
    canvas_.ARROW({x, base_ - ARROW_ROOM + 4.0}, {x, base_ - 1.0}, KEL_PEN, 8.0);
    const std::string label = fmt::format("KEL {} kN", VALUE_TEXT(kel.load));
    const bool to_the_right = x + 8.0 + TEXT_EXTENT(label, PLAIN) < right_;
    canvas_.TEXT({x + (to_the_right ? 7.0 : -7.0), base_ - ARROW_ROOM + 10.0}, label, PLAIN,
                 to_the_right ? ALIGN::LEFT : ALIGN::RIGHT);
  }

  void draw_udl(const T_DRAWN_UDL& udl) {
    constexpr double FULL_HEIGHT = 13.0;
    constexpr double LEAST_HEIGHT = 5.0;
    const double share = std::clamp(lane_.portion * lane_.factor, 0.0, 1.0);
    const double height = LEAST_HEIGHT + (FULL_HEIGHT - LEAST_HEIGHT) * share;
    std::vector<T_STRETCH> longest_first = udl.stretches;
    std::ranges::stable_sort(longest_first, std::ranges::greater{},
                             [](const T_STRETCH& stretch) { return stretch.end - stretch.start; });
    std::string label = fmt::format("UDL {:.3f} kN/m", udl.intensity);
    if (lane_.portion != 1.0) label += fmt::format(" × {:.4f}", lane_.portion);
    const double width = TEXT_EXTENT(label, PLAIN);
    for (std::size_t i = 0; i < longest_first.size(); ++i) {
      const double from = at_x(longest_first[i].start);
      const double to = at_x(longest_first[i].end);
      canvas_.BLOCK({from, base_ - height, to, base_}, shade(side_), THIN);
      const bool is_first = i == 0;
      const double length = longest_first[i].end - longest_first[i].start;
      dimension(from, to, fmt::format("{:.2f} m", length));
      if (!is_first && to - from < width) continue;
      const std::optional<double> middle =
          labels_.PLACE((from + to) / 2, width, is_first ? right_ - left_ : (to - from) / 2);
      if (middle) canvas_.TEXT({*middle, labels_y()}, label, PLAIN, ALIGN::CENTRE);
    }
  }

  /// The middle line of the labels above the loads.
  [[nodiscard]] double labels_y() const { return base_ - ARROW_ROOM - LABEL_ROW / 2 + 1.0; }

  /// The lines of a part of the influence line as inline data; returns its name.
  std::string data(const T_INFLUENCE_LINE& line, std::string_view kind) {
    std::string name = fmt::format("${}{}", kind, ++blocks_ + 1000 * number_);
    std::string text = name + " << EOD\n";
    const auto row = [&](double x, double ordinate) {
      text += fmt::format("{:.6g} {:.6g}\n", x, ordinate / scales_.ordinate_unit);
    };
    for (const T_LINE_POINT& point : line) {
      row(point.x, point.before);
      if (point.after != point.before) row(point.x, point.after);
    }
    canvas_.COMMANDS(text + "EOD\n");
    return name;
  }

  /// The line where the panel shows it. Points on a straight stretch at 0 are left out.
  [[nodiscard]] T_INFLUENCE_LINE shown_line() const {
    const T_INFLUENCE_LINE part = PART_OF(lane_.line, {scales_.x.low, scales_.x.high});
    T_INFLUENCE_LINE shown;
    for (std::size_t i = 0; i < part.size(); ++i) {
      const auto is_zero = [&](std::size_t k) { return part[k].before == 0 && part[k].after == 0; };
      if (i > 0 && i + 1 < part.size() && is_zero(i - 1) && is_zero(i) && is_zero(i + 1)) continue;
      shown.push_back(part[i]);
    }
    return shown;
  }

  void draw_graph() {
    const double x_length = scales_.x.high - scales_.x.low;
    const double y_length = scales_.y.high - scales_.y.low;
    canvas_.AXES({left_, graph_top_, right_, graph_bottom_});
    canvas_.COMMANDS(
        fmt::format("set xrange [{:.8g}:{:.8g}]\nset yrange [{:.8g}:{:.8g}]\nset xtics {}\nset ytics {}\n",
                    scales_.x.low, scales_.x.high, scales_.y.low, scales_.y.high, round_step(x_length, 12.0),
                    round_step(y_length, 5.5)));
    canvas_.UPRIGHT_TEXT({left_ - AXIS_ROOM + 8.0, (graph_top_ + graph_bottom_) / 2}, scales_.ordinate_text,
                         SMALL);

    std::vector<std::string> plots;
    if (lane_.udl) {
      for (const T_STRETCH& stretch : lane_.udl->stretches)
        plots.push_back(fmt::format(
            "{} using 1:2 with filledcurves y1=0 fillcolor rgb '{}' fillstyle solid border lc rgb '#000000'",
            data(PART_OF(lane_.line, stretch), "udl"), shade(side_)));
    }
    if (lane_.hb) {
      T_INFLUENCE_LINE axles;
      for (const T_DRAWN_AXLE& axle : lane_.hb->axles)
        axles.push_back({axle.x, axle.ordinate, axle.ordinate});
      const std::string name = data(axles, "axles");
      plots.push_back(name + " using 1:2 with impulses lw 1.3 lc rgb '#000000'");
      plots.push_back(name + " using 1:2 with points pt 7 ps 0.45 lc rgb '#000000'");
      const auto [low, high] = std::ranges::minmax(axles, {}, &T_LINE_POINT::x);
      ordinate_label((low.x + high.x) / 2, SUM_OF_ORDINATES(*lane_.hb), "Σ ");
    }
    if (lane_.kel) {
      const std::string name = data({{lane_.kel->x, lane_.kel->ordinate, lane_.kel->ordinate}}, "kel");
      plots.push_back(name + " using 1:2 with impulses lw 1.8 lc rgb '#000000'");
      plots.push_back(name + " using 1:2 with points pt 7 ps 0.5 lc rgb '#000000'");
      ordinate_label(lane_.kel->x, lane_.kel->ordinate, "");
    }
    const bool is_loaded = lane_.carries != CARRIES::NOTHING;
    plots.push_back(fmt::format("{} using 1:2 with lines lw {} lc rgb '{}'", data(shown_line(), "line"),
                                is_loaded ? 1.6 : 1.0, is_loaded ? "#000000" : NO_LOAD_COLOUR));
    canvas_.PLOT(fmt::format("plot {}", fmt::join(plots, ", \\\n  ")));
  }

  /// An ordinate in figures, beyond the line where it stands.
  void ordinate_label(double x, double ordinate, std::string_view what) {
    const std::string text = fmt::format("{}{:.4g}", what, ordinate / scales_.ordinate_unit);
    const double half = TEXT_EXTENT(text, SMALL) / 2;
    const double middle = std::clamp(at_x(x), left_ + half + 2.0, right_ - half);
    const double per_point = (scales_.x.high - scales_.x.low) / (right_ - left_);
    T_INTERVAL around;
    around.HOLD(0.0);
    const double at = scales_.x.low + (middle - left_) * per_point;
    for (const T_LINE_POINT& point : PART_OF(lane_.line, {at - half * per_point, at + half * per_point})) {
      around.HOLD(point.before);
      around.HOLD(point.after);
    }
    const bool is_above = ordinate >= 0;
    const double y = is_above ? at_y(around.high) - 9.0 : at_y(around.low) + 9.0;
    canvas_.TEXT({middle, std::clamp(y, graph_top_ + 6.0, graph_bottom_ - 7.0)}, text, SMALL, ALIGN::CENTRE);
  }

  PLOT_CANVAS& canvas_;
  const T_SCALES& scales_;
  HOST_SIDE side_;
  const T_DRAWN_LANE& lane_;
  double left_;
  double right_;
  double base_;  // the lane, on which the loads stand
  double graph_top_;
  double graph_bottom_;
  LABEL_LINE labels_;
  LABEL_LINE dimensions_;
  int number_;
  int blocks_ = 0;
};

// ------------------------------------------------------------------------------------------ the sheet

class SHEET_DRAWER {
 public:
  explicit SHEET_DRAWER(const T_SHEET& sheet) : sheet_(sheet), scales_(sheet) {
    column_width_ = sheet.columns.size() == 1 ? WIDE_COLUMN : COLUMN;
    const auto columns = static_cast<double>(sheet.columns.size());
    width_ = 2 * MARGIN + columns * column_width_ + (columns - 1) * COLUMN_GAP;
    for (std::size_t row = 0; row < rows(); ++row) {
      std::size_t lines = 0;
      for (std::size_t column = 0; column < sheet.columns.size(); ++column)
        lines = std::max(lines, details(lane(column, row)).size());
      detail_lines_.push_back(lines);
    }
  }

  std::string SCRIPT(PICTURE format) {
    const double height = top_of_rows() + rows_height() + footnotes_height() + MARGIN;
    PLOT_CANVAS canvas(width_, height);
    canvas.BEGIN(format);
    int number = 0;
    double top = top_of_rows();
    for (std::size_t row = 0; row < rows(); ++row) {
      for (std::size_t column = 0; column < sheet_.columns.size(); ++column)
        draw_lane(canvas, column, lane(column, row), row, top, ++number);
      top += row_height(row);
    }
    draw_headings(canvas);
    draw_footnotes(canvas, top);
    // A plot of nothing, with which the texts appear.
    canvas.COMMANDS("unset border\nunset tics\nunset xzeroaxis\n");
    canvas.PLOT("plot NaN");
    canvas.COMMANDS("unset multiplot\n");
    return canvas.SCRIPT();
  }

 private:
  [[nodiscard]] std::size_t rows() const { return sheet_.columns.front().drawn.lanes.size(); }
  [[nodiscard]] const T_DRAWN_LANE& lane(std::size_t column, std::size_t row) const {
    return sheet_.columns[column].drawn.lanes[row];
  }
  [[nodiscard]] double left_of(std::size_t column) const {
    return MARGIN + static_cast<double>(column) * (column_width_ + COLUMN_GAP);
  }
  [[nodiscard]] static double top_of_rows() { return 112.0; }
  [[nodiscard]] double row_height(std::size_t row) const {
    return LANE_HEADING + LINE_HEIGHT * static_cast<double>(detail_lines_[row]) + DETAILS_GAP + LABEL_ROW +
           ARROW_ROOM + DIMENSION_ROOM + GRAPH + TIC_ROOM + ROW_GAP;
  }
  [[nodiscard]] double rows_height() const {
    double height = 0.0;
    for (std::size_t row = 0; row < rows(); ++row) height += row_height(row);
    return height;
  }
  [[nodiscard]] double footnotes_height() const {
    return LINE_HEIGHT * static_cast<double>(sheet_.footnotes.size() + 1);
  }

  /// What stands on a lane, in lines that the column has room for.
  [[nodiscard]] std::vector<std::string> details(const T_DRAWN_LANE& lane) const {
    std::vector<std::string> lines;
    std::istringstream text(lane_details(lane));
    for (std::string word; text >> word;) {
      const std::string longer = lines.empty() ? word : lines.back() + " " + word;
      if (lines.empty() || TEXT_EXTENT(longer, PLAIN) > column_width_) {
        lines.push_back(word);
      } else {
        lines.back() = longer;
      }
    }
    return lines;
  }

  void draw_headings(PLOT_CANVAS& canvas) const {
    canvas.TEXT({MARGIN, MARGIN + 8.0}, sheet_.title, {16.0, true});
    canvas.TEXT({MARGIN, MARGIN + 30.0}, sheet_.subtitle, PLAIN);
    canvas.LINE({MARGIN, MARGIN + 44.0}, {width_ - MARGIN, MARGIN + 44.0}, THIN);
    for (std::size_t column = 0; column < sheet_.columns.size(); ++column) {
      const T_DRAWN_SIDE& drawn = sheet_.columns[column].drawn;
      const double left = left_of(column);
      canvas.TEXT({left, MARGIN + 60.0},
                  fmt::format("{}  {}", drawn.side == MAXIMUM ? "MAXIMUM" : "MINIMUM",
                              with_unit(drawn.value, sheet_.unit)),
                  {14.0, true});
      canvas.TEXT({left, MARGIN + 77.0}, sheet_.columns[column].subheading, PLAIN);
    }
  }

  void draw_lane(PLOT_CANVAS& canvas, std::size_t column, const T_DRAWN_LANE& lane, std::size_t row,
                 double top, int number) const {
    const double left = left_of(column);
    const double right = left + column_width_;
    canvas.TEXT({left, top + 6.0}, lane_heading(lane), BOLD);
    if (lane.carries != CARRIES::NOTHING)
      canvas.TEXT({right, top + 6.0},
                  fmt::format("adds {:.6g}{}{}", lane.effect, sheet_.unit.empty() ? "" : " ", sheet_.unit),
                  BOLD, ALIGN::RIGHT);
    double y = top + LANE_HEADING + 5.0;
    for (const std::string& line : details(lane)) {
      canvas.TEXT({left, y}, line, PLAIN);
      y += LINE_HEIGHT;
    }
    const double panel_top =
        DETAILS_GAP + top + LANE_HEADING + LINE_HEIGHT * static_cast<double>(detail_lines_[row]);
    PANEL(canvas, scales_, sheet_.columns[column].drawn.side, lane, {left, panel_top, right, 0.0}, number)
        .DRAW();
  }

  void draw_footnotes(PLOT_CANVAS& canvas, double top) const {
    for (std::size_t column = 0; column < sheet_.columns.size(); ++column)
      canvas.TEXT({left_of(column) + column_width_, top - ROW_GAP + 9.0}, "distance along the lane, m", SMALL,
                  ALIGN::RIGHT);
    double y = top + 12.0;
    for (const std::string& footnote : sheet_.footnotes) {
      canvas.TEXT({MARGIN, y}, footnote, GREY);
      y += LINE_HEIGHT;
    }
  }

  const T_SHEET& sheet_;
  T_SCALES scales_;
  double column_width_ = 0.0;
  double width_ = 0.0;
  std::vector<std::size_t> detail_lines_;
};

}  // namespace

std::string SHEET_SCRIPT(const T_SHEET& sheet, PICTURE format) {
  return SHEET_DRAWER(sheet).SCRIPT(format);
}

}  // namespace tools
