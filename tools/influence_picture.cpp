#include "tools/influence_picture.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <optional>

#include "tools/tool_failure.h"

namespace tools {
namespace {

constexpr double WIDTH = 860.0;
constexpr double MARGIN = 18.0;
constexpr double HEADINGS = 66.0;
constexpr double LINE_HEIGHT = 16.0;
constexpr double GRAPH = 280.0;
constexpr double AXIS_ROOM = 66.0;
constexpr double TIC_ROOM = 40.0;
constexpr T_FONT TITLE{16.0, true};
constexpr T_FONT PLAIN{12.0};
constexpr T_FONT GREY{11.0, false, "#555555"};
constexpr std::array<std::string_view, 4> COLOURS{"#000000", "#1f6fb2", "#c8641a", "#3a8a3a"};

/// The greatest or the least ordinate of a line, on either side of a jump.
struct T_EXTREME {
  double x = 0.0;
  double ordinate = 0.0;
};

std::array<T_EXTREME, 2> extremes_of(const T_INFLUENCE_LINE& line) {
  std::array<T_EXTREME, 2> extremes{};
  bool is_first = true;
  for (const T_LINE_POINT& point : line) {
    for (const double ordinate : {point.before, point.after}) {
      if (is_first || ordinate > extremes[0].ordinate) extremes[0] = {point.x, ordinate};
      if (is_first || ordinate < extremes[1].ordinate) extremes[1] = {point.x, ordinate};
      is_first = false;
    }
  }
  return extremes;
}

/// A line in figures.
std::string line_text(const T_INFLUENCE_LINE& line, const std::string& name) {
  const auto [greatest, least] = extremes_of(line);
  std::string text = fmt::format("{}greatest {:.5g} at {:.3f} m, least {:.5g} at {:.3f} m", name,
                                 greatest.ordinate, greatest.x, least.ordinate, least.x);
  if (const std::optional<T_LINE_POINT> jump = JUMP_OF(line))
    text += fmt::format("; jumps at {:.3f} m from {:.4g} to {:.4g}", jump->x, jump->before, jump->after);
  return text;
}

std::string data_block(const T_INFLUENCE_LINE& line, std::size_t number) {
  std::string text = fmt::format("$line{} << EOD\n", number);
  for (const T_LINE_POINT& point : line) {
    text += fmt::format("{:.7g} {:.7g}\n", point.x, point.before);
    if (point.after != point.before) text += fmt::format("{:.7g} {:.7g}\n", point.x, point.after);
  }
  return text + "EOD\n";
}

}  // namespace

std::vector<T_INFLUENCE_LINE> LINES_ALONG_LANE(const T_INFLUENCE_VALUES& values, const T_ROW_ITEM& item,
                                               const kernel::T_MODEL& model, std::int32_t lane) {
  if (lane < 1 || lane > std::ssize(model.LANES)) {
    throw T_TOOL_FAILURE(fmt::format("the model has no lane {}", lane),
                         model.LANES.empty() ? "a picture needs a lane"
                                             : fmt::format("give a --lane of 1 to {}", model.LANES.size()));
  }
  search::T_LOAD_ORD response;
  response.COLUMNS = static_cast<std::int32_t>(item.positions.size());
  response.VALUES.RESIZE(response.COLUMNS, values.loads);
  for (std::int32_t column = 1; column <= response.COLUMNS; ++column)
    for (std::int32_t load = 1; load <= values.loads; ++load)
      response.VALUES(column, load) = values.AT(load, item.positions[static_cast<std::size_t>(column - 1)]);
  const bool is_force = item.positions.front() <= values.row.force_positions;
  return LINES_OF_LANE(model, response, is_force ? results::ROW_LAYOUT::JUMP : results::ROW_LAYOUT::SIMPLE,
                       model.LANE(lane));
}

std::string LINE_PICTURE_SCRIPT(const T_LINE_PICTURE& picture, PICTURE format) {
  const auto lines = static_cast<double>(picture.lines.size());
  const double graph_top = MARGIN + HEADINGS + LINE_HEIGHT * lines;
  const double notes_top = graph_top + GRAPH + TIC_ROOM + LINE_HEIGHT;
  const double height = notes_top + LINE_HEIGHT * static_cast<double>(picture.footnotes.size()) + MARGIN;
  PLOT_CANVAS canvas(WIDTH, height);
  canvas.BEGIN(format);
  canvas.TEXT({MARGIN, MARGIN + 8.0}, picture.title, TITLE);
  canvas.TEXT({MARGIN, MARGIN + 30.0}, picture.subtitle, PLAIN);
  canvas.LINE({MARGIN, MARGIN + 44.0}, {WIDTH - MARGIN, MARGIN + 44.0}, {0.7});
  double y = MARGIN + 58.0;
  std::vector<std::string> plots;
  bool is_zero = true;
  for (std::size_t k = 0; k < picture.lines.size(); ++k) {
    const std::string_view colour = COLOURS[k % COLOURS.size()];
    const std::string name = picture.lines.size() > 1 ? fmt::format("Plane {}: ", k + 1) : "";
    std::string text = line_text(picture.lines[k], name);
    if (name.empty()) text.front() = 'G';
    canvas.TEXT({MARGIN, y}, text, {PLAIN.size, false, colour});
    y += LINE_HEIGHT;
    canvas.COMMANDS(data_block(picture.lines[k], k));
    const auto [greatest, least] = extremes_of(picture.lines[k]);
    is_zero = is_zero && greatest.ordinate == 0 && least.ordinate == 0;
    plots.push_back(fmt::format("$line{} using 1:2 with lines lw 1.6 lc rgb '{}'", k, colour));
  }
  canvas.COMMANDS(is_zero ? "set autoscale xfix\nset yrange [-1:1]\n" : "set autoscale xfix\n");
  canvas.AXES({MARGIN + AXIS_ROOM, graph_top, WIDTH - MARGIN, graph_top + GRAPH});
  canvas.UPRIGHT_TEXT({MARGIN + 8.0, graph_top + GRAPH / 2},
                      picture.unit.empty() ? "ordinate" : picture.unit + " per kN", PLAIN);
  canvas.TEXT({WIDTH - MARGIN, graph_top + GRAPH + TIC_ROOM - 6.0}, "distance along the lane, m", PLAIN,
              ALIGN::RIGHT);
  y = notes_top;
  for (const std::string& footnote : picture.footnotes) {
    canvas.TEXT({MARGIN, y}, footnote, GREY);
    y += LINE_HEIGHT;
  }
  canvas.PLOT(fmt::format("plot {}", fmt::join(plots, ", ")));
  canvas.COMMANDS("unset multiplot\n");
  return canvas.SCRIPT();
}

}  // namespace tools
