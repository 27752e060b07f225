#include "tools/drawn_loading.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "kernel/driver.h"
#include "results/result_members.h"
#include "search/ha_search.h"
#include "search/hb_placing.h"
#include "search/ranges.h"
#include "search/vehicle_tables.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

using results::ROW_LAYOUT;
using search::T_ORDINATES;

/// Where influence lines come from.
struct T_LINE_SOURCE {
  const kernel::T_MODEL& model;
  const search::T_LOAD_ORD& LOAD_ORD;  // of the result point
  ROW_LAYOUT layout = ROW_LAYOUT::SIMPLE;
};

// ------------------------------------------------------------------------------------------ lines

/// Positions and ordinates of a lane as the search takes them: one plane, or those of a straddle lane.
struct T_LANE_LINES {
  std::vector<real> X;
  std::vector<T_ORDINATES> PLANES;

  [[nodiscard]] std::int32_t N() const { return static_cast<std::int32_t>(X.size()); }
  [[nodiscard]] search::T_LINE LINE(const T_ORDINATES& ordinates) const {
    return ordinates.LINE({X.data(), {N()}}, N());
  }
};

class LINE_BUILDER {
 public:
  explicit LINE_BUILDER(const T_LINE_SOURCE& source) : source_(source) {
    for (const search::T_LANE& lane : source.model.LANES) points_ = std::max(points_, lane.LANE_STATIONS);
  }

  /// The lane's own line, or the lines of its planes, which axle lists may ask of any lane.
  [[nodiscard]] T_LANE_LINES LINES(const search::T_LANE& lane, std::int32_t veh_class, bool by_planes) const {
    const kernel::T_MODEL& model = source_.model;
    T_LANE_LINES lines;
    const auto planes = by_planes ? static_cast<std::size_t>(std::max(lane.N_PLANE(), 0)) : 1;
    // Room for the points of any lane: axle lists read a lane at the places of another.
    lines.PLANES.assign(planes, T_ORDINATES(points_, source_.LOAD_ORD.COLUMNS));
    const search::T_CLASS_DEFINITION* definition =
        model.HAS_CLASS_LANES() && !model.AXLE_LANES.EXISTS() && !by_planes
            ? model.CLASS_DEFINITIONS.FIND(veh_class, lane.LANE_NUMBER)
            : nullptr;
    if (definition != nullptr) {
      search::CLASS_ORDINATES(*definition, lane.LANE_STATIONS, source_.LOAD_ORD, lines.PLANES.front());
    } else if (by_planes) {
      search::PLANE_ORDINATES(lane, source_.LOAD_ORD, lines.PLANES);
    } else {
      search::LANE_ORDINATES(lane, source_.LOAD_ORD, lines.PLANES.front());
    }
    lines.X = lane.POINT_X_REAL;
    const bool drops_points =
        source_.layout == ROW_LAYOUT::SIMPLE && model.COUNTS.CLASS_LANES == 0 && !lane.LANE_KEEP_POINTS;
    if (!drops_points) return lines;
    for (T_ORDINATES& plane : lines.PLANES) search::DROP_ROWS(lane.KEPT, plane);
    lines.X.clear();
    for (std::int32_t i = 0; i < lane.KEPT.COUNT; ++i) {
      const auto row = static_cast<std::size_t>(lane.KEPT.SOURCE[static_cast<std::size_t>(i)]);
      lines.X.push_back(lane.POINT_X_REAL[row - 1]);
    }
    return lines;
  }

 private:
  const T_LINE_SOURCE& source_;
  std::int32_t points_ = 0;
};

T_INFLUENCE_LINE influence_line(const search::T_LINE& line) {
  T_INFLUENCE_LINE points;
  points.reserve(static_cast<std::size_t>(line.n));
  for (std::int32_t i = 1; i <= line.n; ++i) {
    points.push_back({static_cast<double>(line.LANE_X(i)), static_cast<double>(line.BEFORE(i)),
                      static_cast<double>(line.AFTER(i))});
  }
  return points;
}

/// The lane turned round, as the reverse pass of the HB searches it.
T_LANE_LINES turned_round(const T_LANE_LINES& lines) {
  T_LANE_LINES turned = lines;
  const std::size_t n = lines.X.size();
  for (std::size_t k = 0; k < n; ++k)
    turned.X[k] = k == 0 ? 0.0F : turned.X[k - 1] + lines.X[n - k] - lines.X[n - k - 1];
  for (std::size_t p = 0; p < lines.PLANES.size(); ++p) {
    const T_ORDINATES& from = lines.PLANES[p];
    for (std::int32_t column = 1; column <= from.COLUMNS(); ++column)
      for (std::int32_t k = 1; k <= lines.N(); ++k)
        turned.PLANES[p](k, column) = from(lines.N() + 1 - k, column);
  }
  return turned;
}

/// The lane as the HB's pass has it, and the vehicle's place on it.
struct T_PASS {
  T_PASS(const T_LANE_LINES& lane, const T_HB& hb)
      : is_reverse(hb.pass == PASS::REVERSE),
        lines(is_reverse ? turned_round(lane) : lane),
        lane_end(lane.X.empty() ? 0.0 : static_cast<double>(lane.X.back())) {
    // The clear stretch begins on a point; counted there, it is free of rounding.
    const auto begin = static_cast<real>(is_reverse ? hb.clear_end : hb.clear_start);
    const auto point = std::ranges::find(lane.X, begin) - lane.X.begin();
    const auto index = is_reverse ? lane.N() - 1 - point : point;
    if (index >= 0 && index < lane.N())
      zone.start = static_cast<double>(lines.X[static_cast<std::size_t>(index)]);
    zone.end = zone.start + hb.clear_end - hb.clear_start;
    clear_start = hb.clear_start;
    clear_end = hb.clear_end;
    vehicle_length = std::fabs(hb.axles.front().distance - hb.axles.back().distance);
  }
  [[nodiscard]] double ON_PASS(double x) const {
    return zone.start + (is_reverse ? clear_end - x : x - clear_start);
  }
  [[nodiscard]] T_STRETCH ON_LANE(const T_STRETCH& piece) const {
    return is_reverse ? T_STRETCH{lane_end - piece.end, lane_end - piece.start} : piece;
  }
  bool is_reverse;
  T_LANE_LINES lines;
  double lane_end;
  T_STRETCH zone;
  double clear_start = 0.0;  // on the lane
  double clear_end = 0.0;
  double vehicle_length = 0.0;
};

T_ORDINATES sum_of(const T_ORDINATES& a, const T_ORDINATES& b) {
  T_ORDINATES sum = a;
  for (std::int32_t column = 1; column <= a.COLUMNS(); ++column)
    for (std::int32_t k = 1; k <= a.POINTS(); ++k) sum(k, column) += b(k, column);
  return sum;
}

// ------------------------------------------------------------------------------------------ ranges

using T_STRETCHES = std::vector<T_STRETCH>;

/// The ranges of one sign in the order in which they close, as search::CUT_RANGES numbers them: the stretches
/// of each along the line. It has several where the line runs at 0 in between, or where an HB stands.
class RANGE_WALK {
 public:
  RANGE_WALK(double sign, bool is_jump) : sign_(sign), is_jump_(is_jump) {}

  std::vector<T_STRETCHES> RUN(const T_INFLUENCE_LINE& line, const std::optional<T_STRETCH>& zone) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
      const T_STRETCH segment{line[i].x, line[i + 1].x};
      const double a = sign_ * line[i].after;
      const double b = sign_ * line[i + 1].before;
      if (!zone) {
        take(segment, a, b);
        const bool is_positive = a >= 0 && b > 0;
        if (is_jump_ && is_positive && sign_ * line[i + 1].after < 0) close();
        continue;
      }
      const auto at = [&](double x) {
        return a + (b - a) * (x - segment.start) / (segment.end - segment.start);
      };
      if (segment.start < zone->start) {
        const double end = std::min(segment.end, zone->start);
        take({segment.start, end}, a, end < segment.end ? at(end) : b);
      }
      if (segment.end > zone->end) {
        const double start = std::max(segment.start, zone->end);
        take({start, segment.end}, start > segment.start ? at(start) : a, b);
      }
    }
    if (!open_.empty()) close();
    return std::move(closed_);
  }

 private:
  void take(const T_STRETCH& segment, double a, double b) {
    const double length = segment.end - segment.start;
    if (!is_jump_ && length == 0) return;
    if (a > 0 && b <= 0) {
      add({segment.start, segment.start + length * a / (a - b)});
      close();
    } else if (a < 0 && b >= 0) {
      if (b > 0) add({segment.start + length * a / (a - b), segment.end});
    } else if (a >= 0 && b > 0) {
      add(segment);
    }
  }
  void add(const T_STRETCH& piece) {
    if (!open_.empty() && open_.back().end == piece.start) {
      open_.back().end = piece.end;
    } else {
      open_.push_back(piece);
    }
  }
  void close() { closed_.push_back(std::exchange(open_, {})); }

  double sign_;
  bool is_jump_;
  T_STRETCHES open_;
  std::vector<T_STRETCHES> closed_;
};

/// The area between a part of a line and the axis, with its sign.
double area_over(const T_INFLUENCE_LINE& line, const T_STRETCH& stretch) {
  const T_INFLUENCE_LINE part = PART_OF(line, stretch);
  double area = 0.0;
  for (std::size_t i = 0; i + 1 < part.size(); ++i)
    area += 0.5 * (part[i].after + part[i + 1].before) * (part[i + 1].x - part[i].x);
  return area;
}

/// Puts stretches in order, and makes those one that meet where the line touches 0.
void join(T_STRETCHES& stretches) {
  constexpr double ROUNDING = 1e-6;
  std::ranges::sort(stretches, {}, &T_STRETCH::start);
  T_STRETCHES joined;
  for (const T_STRETCH& next : stretches) {
    if (!joined.empty() && next.start - joined.back().end <= ROUNDING) {
      joined.back().end = next.end;
    } else {
      joined.push_back(next);
    }
  }
  stretches = std::move(joined);
}

// ------------------------------------------------------------------------------------------ one side

class SIDE_DRAWER {
 public:
  SIDE_DRAWER(const T_LINE_SOURCE& source, const T_SIDE_LOADING& loading, T_DRAWN_SIDE& drawn)
      : source_(source),
        loading_(loading),
        drawn_(drawn),
        builder_(source),
        side_(drawn.side == MAXIMUM ? MAX_SIDE : MIN_SIDE) {
    for (const search::T_VEHICLE& vehicle : source.model.VEHICLES) {
      if (loading.vehicle_class == 0 || vehicle.VEH_CLASS != loading.vehicle_class) continue;
      vehicle_ = search::VEHICLE_PARAMETERS(vehicle);
      break;
    }
  }

  void RUN() {
    for (const T_LANE_SIDE& lane_side : loading_.lanes) {
      // What stands beside a straddling HB comes with the HB.
      if (lane_side.carries != CARRIES::UDL_BESIDE_HB) draw(lane_side);
    }
    std::ranges::stable_sort(drawn_.lanes, {}, &T_DRAWN_LANE::lane);
  }

 private:
  [[nodiscard]] bool is_jump() const { return source_.layout == ROW_LAYOUT::JUMP; }

  void draw(const T_LANE_SIDE& lane_side) {
    const search::T_LANE& lane = source_.model.LANE(lane_side.lane);
    const T_LANE_LINES lines = builder_.LINES(lane, loading_.vehicle_class, lane.IS_STRADDLE);
    T_DRAWN_LANE drawn;
    drawn.lane = lane_side.lane;
    drawn.carries = lane_side.carries;
    drawn.factor = lane_side.loading.factor;
    drawn.times = times(lane_side.lane);
    drawn.parents = lane_side.parents;
    drawn.planes = static_cast<std::int32_t>(lines.PLANES.size());
    if (!lane.IS_STRADDLE) drawn.line = influence_line(lines.LINE(lines.PLANES.front()));
    if (lane_side.carries == CARRIES::HA) draw_ha(lines, drawn);
    if (lane_side.loading.hb && lane_side.loading.hb->HAS_AXLES()) {
      const T_PASS pass(lines, *lane_side.loading.hb);
      draw_hb(*lane_side.loading.hb, lines, pass, drawn);
      if (lane.IS_STRADDLE) {
        draw_parents(lane_side, lines, pass);
      } else {
        drawn.udl = udl_beside(pass, pass.lines.PLANES.front(), pass.lines.PLANES.front());
      }
    }
    add(std::move(drawn));
  }

  /// How many vehicles of the class the library counts on a lane.
  [[nodiscard]] std::int32_t times(std::int32_t lane) const {
    const kernel::T_MODEL& model = source_.model;
    const kernel::T_LANE_VEHICLES& vehicles =
        model.COMBINATIONS.LANE_VEHICLES()[static_cast<std::size_t>(lane - 1)];
    std::int32_t count = 0;
    for (std::size_t j = 0; j < model.VEHICLES.size(); ++j)
      if (vehicles.NAMED[j] && model.VEHICLES[j].VEH_CLASS == loading_.vehicle_class) ++count;
    return std::max(count, 1);
  }

  void add(T_DRAWN_LANE&& drawn) {
    const double udl = drawn.udl ? drawn.udl->intensity * drawn.portion * drawn.udl->area : 0.0;
    const double kel = drawn.kel ? drawn.kel->load * drawn.kel->ordinate : 0.0;
    double hb = 0.0;
    if (drawn.hb)
      for (const T_DRAWN_AXLE& axle : drawn.hb->axles) hb += axle.load * axle.ordinate;
    drawn.effect = drawn.times * drawn.factor * (udl + kel + hb);
    drawn_.lanes.push_back(std::move(drawn));
  }

  void draw_ha(const T_LANE_LINES& lines, T_DRAWN_LANE& drawn) {
    const search::T_LINE line = lines.LINE(lines.PLANES.front());
    search::T_RANGE_WORK work;
    const auto search_lane = is_jump() ? search::HA_SEARCH_LANE_JUMP : search::HA_SEARCH_LANE;
    const search::T_HA_RESULT found = search_lane(line, vehicle_.HA_CURVE, vehicle_.KEL_LOAD, work);
    const std::vector<T_STRETCHES> ranges = RANGE_WALK(sign(), is_jump()).RUN(drawn.line, std::nullopt);
    drawn.udl = udl_of(
        found[side_], ranges, [](const T_STRETCH& piece) { return piece; }, drawn.line);
    draw_kel(line, drawn);
  }

  /// At the peak of the line that is searched. The record names another point where repeated points, or a
  /// definition of the vehicle class, have ordinates of their own.
  void draw_kel(const search::T_LINE& line, T_DRAWN_LANE& drawn) const {
    drawn.kel = {0.0, static_cast<double>(vehicle_.KEL_LOAD), 0.0};
    for (std::int32_t i = 1; i <= line.n; ++i) {
      for (const real ordinate : {line.BEFORE(i), line.AFTER(i)}) {
        if (!(sign() * static_cast<double>(ordinate) > sign() * drawn.kel->ordinate)) continue;
        drawn.kel->x = static_cast<double>(line.LANE_X(i));
        drawn.kel->ordinate = static_cast<double>(ordinate);
      }
    }
    if (drawn.kel->ordinate == 0.0) drawn.kel.reset();
  }

  /// The UDL that the search finds on `searched`, standing on `own`; the two differ where both parent lanes
  /// of a straddling HB carry the same ranges.
  std::optional<T_DRAWN_UDL> udl_beside(const T_PASS& pass, const T_ORDINATES& searched,
                                        const T_ORDINATES& own) {
    const search::T_LINE searched_line = pass.lines.LINE(searched);
    const search::T_ZONE_PLACE place =
        search::LOCATE_ZONE(static_cast<real>(pass.zone.end), static_cast<real>(pass.zone.start),
                            searched_line.LANE_X, searched_line.n);
    search::T_RANGE_WORK work;
    const auto search_zone = is_jump() ? search::HA_SEARCH_ZONE_JUMP : search::HA_SEARCH_ZONE;
    const search::T_HA_RESULT found =
        search_zone(searched_line, vehicle_.HA_CURVE, place, static_cast<real>(pass.vehicle_length), work);
    const std::vector<T_STRETCHES> ranges =
        RANGE_WALK(sign(), is_jump()).RUN(influence_line(searched_line), pass.zone);
    std::optional<T_DRAWN_UDL> udl = udl_of(
        found[side_], ranges, [&](const T_STRETCH& piece) { return pass.ON_LANE(piece); },
        influence_line(pass.lines.LINE(own)));
    if (udl) udl->vehicle_length = pass.vehicle_length;
    return udl;
  }

  template <class ON_LANE>
  static std::optional<T_DRAWN_UDL> udl_of(const search::T_HA_SIDE& found,
                                           const std::vector<T_STRETCHES>& ranges, ON_LANE on_lane,
                                           const T_INFLUENCE_LINE& line) {
    constexpr double INTENSITY_UNIT = 1000.0;
    if (found.LOADED_COUNT == 0) return std::nullopt;
    T_DRAWN_UDL udl;
    udl.intensity = found.W_MILLI / INTENSITY_UNIT;
    for (std::int32_t k = 0; k < found.LOADED_COUNT; ++k) {
      const auto number = static_cast<std::size_t>(found.RANGES[k]);
      if (number < 1 || number > ranges.size()) continue;
      for (const T_STRETCH& piece : ranges[number - 1]) {
        udl.stretches.push_back(on_lane(piece));
        udl.loaded_length += piece.end - piece.start;
        udl.area += area_over(line, piece);
      }
    }
    join(udl.stretches);
    return udl;
  }

  /// The vehicle at its place, on the plane that the search finds for it. Ordinates are read on the lane as
  /// the pass has it, like everything in the search.
  void draw_hb(const T_HB& hb, const T_LANE_LINES& lines, const T_PASS& pass, T_DRAWN_LANE& drawn) {
    const bool is_straddle = drawn.carries == CARRIES::STRADDLING_HB;
    const search::T_LANE_SEQUENCE sequence =
        search::LANE_SEQUENCE(source_.model.AXLE_LANES.READ(loading_.vehicle_class, drawn.lane), drawn.lane);
    std::vector<std::vector<T_ORDINATES>> sets{pass.lines.PLANES};
    for (std::size_t set = 1; set < sequence.LANES.size(); ++set) {
      const search::T_LANE& other = source_.model.LANE(sequence.LANES[set]);
      T_LANE_LINES other_lines = builder_.LINES(other, loading_.vehicle_class, is_straddle);
      other_lines.X = lines.X;  // read at the points of the same numbers
      sets.push_back(T_PASS(other_lines, hb).lines.PLANES);
    }
    const auto on_plane = [&](std::size_t plane) {
      T_DRAWN_HB vehicle{hb.type, hb.pass, {}, is_straddle ? static_cast<std::int32_t>(plane) + 1 : 0};
      for (std::size_t j = 0; j < vehicle.axles.size(); ++j) {
        const std::vector<T_ORDINATES>& set = sets[sequence.AXLE_SET[j]];
        const double x = hb.axles[j].distance;
        const double ordinate =
            plane < set.size() ? ordinate_at(pass.ON_PASS(x), pass.lines.LINE(set[plane])) : 0.0;
        vehicle.axles[j] = {x, hb.axles[j].load, ordinate, sequence.LANES[sequence.AXLE_SET[j]]};
      }
      return vehicle;
    };
    drawn.clear = {hb.clear_start, hb.clear_end};
    if (!is_straddle) {
      drawn.hb = on_plane(0);
      return;
    }
    // The first of equal planes counts, and none that doesn't go beyond 0.
    double best = 0.0;
    for (std::size_t plane = 0; plane < lines.PLANES.size(); ++plane) {
      const T_DRAWN_HB vehicle = on_plane(plane);
      const double sum = sign() * SUM_OF_ORDINATES(vehicle);
      if (sum <= best) continue;
      best = sum;
      drawn.hb = vehicle;
    }
    if (!drawn.hb) {
      drawn.hb = on_plane(0);
      drawn.hb->plane = 0;
      for (T_DRAWN_AXLE& axle : drawn.hb->axles) axle.ordinate = 0.0;
    }
    const auto shown = static_cast<std::size_t>(std::max(drawn.hb->plane, 1) - 1);
    drawn.line = influence_line(lines.LINE(lines.PLANES[shown]));
  }

  /// The UDL beside a straddling HB. The ordinates of the parent lanes are planes 2 and 3 of its lane. Where
  /// they share the UDL by portions, each has a search of its own; else one goes over both lines added up.
  void draw_parents(const T_LANE_SIDE& lane_side, const T_LANE_LINES& lines, const T_PASS& pass) {
    constexpr std::size_t FIRST_PARENT_PLANE = 1;
    const bool by_parent = lane_side.parent_portions[0] != lane_side.parent_portions[1];
    const std::vector<T_ORDINATES>& planes = pass.lines.PLANES;
    if (planes.size() < FIRST_PARENT_PLANE + lane_side.parents.size()) return;
    const T_ORDINATES both = sum_of(planes[FIRST_PARENT_PLANE], planes[FIRST_PARENT_PLANE + 1]);
    for (std::size_t parent = 0; parent < lane_side.parents.size(); ++parent) {
      T_DRAWN_LANE drawn;
      drawn.lane = lane_side.parents[parent];
      drawn.carries = CARRIES::UDL_BESIDE_HB;
      drawn.straddle_lane = lane_side.lane;
      drawn.factor = lane_side.loading.factor;
      drawn.times = times(lane_side.lane);
      drawn.portion = lane_side.parent_portions[parent];
      drawn.clear = {lane_side.loading.hb->clear_start, lane_side.loading.hb->clear_end};
      drawn.line = influence_line(lines.LINE(lines.PLANES[FIRST_PARENT_PLANE + parent]));
      const T_ORDINATES& own = planes[FIRST_PARENT_PLANE + parent];
      drawn.udl = udl_beside(pass, by_parent ? own : both, own);
      add(std::move(drawn));
    }
  }

  [[nodiscard]] double sign() const { return side_ == MAX_SIDE ? 1.0 : -1.0; }

  [[nodiscard]] double ordinate_at(double x, const search::T_LINE& line) const {
    const auto at = static_cast<real>(x);
    const search::T_ORDINATE ordinate = is_jump() ? search::ORDINATE_AT<search::JUMP_LAYOUT>(at, line)
                                                  : search::ORDINATE_AT<search::SIMPLE_LAYOUT>(at, line);
    return static_cast<double>(side_ == MAX_SIDE ? ordinate.UPPER : ordinate.LOWER);
  }

  const T_LINE_SOURCE& source_;
  const T_SIDE_LOADING& loading_;
  T_DRAWN_SIDE& drawn_;
  LINE_BUILDER builder_;
  SIDE side_;
  search::T_VEHICLE_PARAMETERS vehicle_;
};

}  // namespace

std::vector<T_INFLUENCE_LINE> LINES_OF_LANE(const kernel::T_MODEL& model, const search::T_LOAD_ORD& LOAD_ORD,
                                            ROW_LAYOUT layout, const search::T_LANE& lane) {
  constexpr std::int32_t NO_CLASS = 0;
  const T_LINE_SOURCE source{model, LOAD_ORD, layout};
  const T_LANE_LINES lines = LINE_BUILDER(source).LINES(lane, NO_CLASS, lane.IS_STRADDLE);
  std::vector<T_INFLUENCE_LINE> drawn;
  for (const T_ORDINATES& plane : lines.PLANES) drawn.push_back(influence_line(lines.LINE(plane)));
  return drawn;
}

T_INFLUENCE_LINE PART_OF(const T_INFLUENCE_LINE& line, const T_STRETCH& stretch) {
  T_INFLUENCE_LINE part;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    const T_LINE_POINT& from = line[i];
    const T_LINE_POINT& to = line[i + 1];
    const double start = std::max(from.x, stretch.start);
    const double end = std::min(to.x, stretch.end);
    if (!(start < end)) continue;
    const auto at = [&](double x) {
      return from.after + (to.before - from.after) * (x - from.x) / (to.x - from.x);
    };
    const double a = at(start);
    const double b = at(end);
    if (part.empty()) part.push_back({start, a, a});
    part.back().after = a;
    part.push_back({end, b, b});
  }
  return part;
}

std::optional<T_LINE_POINT> JUMP_OF(const T_INFLUENCE_LINE& line) {
  const auto height = [](const T_LINE_POINT& point) { return std::fabs(point.after - point.before); };
  const auto highest = std::ranges::max_element(line, {}, height);
  if (highest == line.end() || height(*highest) == 0) return std::nullopt;
  return *highest;
}

double SUM_OF_ORDINATES(const T_DRAWN_HB& hb) {
  return std::accumulate(hb.axles.begin(), hb.axles.end(), 0.0,
                         [](double sum, const T_DRAWN_AXLE& axle) { return sum + axle.ordinate; });
}

bool T_DRAWN_SIDE::ADDS_UP() const {
  constexpr double ROUNDING = 1e-3;
  const double sum =
      std::accumulate(lanes.begin(), lanes.end(), 0.0,
                      [](double so_far, const T_DRAWN_LANE& lane) { return so_far + lane.effect; });
  return std::fabs(sum - value) <= ROUNDING * std::fabs(value);
}

std::array<T_DRAWN_SIDE, 2> DRAW_LOADING(const T_ENVELOPE_REPORT& report, const kernel::T_MODEL& model,
                                         store::INFLUENCE_STORE& store) {
  std::array<T_DRAWN_SIDE, 2> sides;
  for (const HOST_SIDE side : {MAXIMUM, MINIMUM}) {
    sides[side].side = side;
    sides[side].value = report.values[side];
    sides[side].governed = report.sides[side].vehicle_class != 0;
  }
  if (!report.IS_GOVERNED()) return sides;
  kernel::T_REQUEST request;
  request.FILE_NAME = report.file.file_name;
  request.ANALYSIS_CODE = report.file.analysis_code;
  request.RESULT_KIND = report.kind->result_kind;
  request.RESULT_ID = report.id;
  request.RESULT_ITEM = report.item;
  request.STORE_MODE = report.volumes.has_value();
  request.STORE = &store;
  kernel::RECORD_FILE unit;
  results::T_RESPONSE response;
  const STATUS status = results::READ_RESPONSE(model, request, kernel::COMPONENT_OF(request), unit, response);
  if (!status.OK()) {
    const std::string line =
        FAILURE_LINE(status, status.in_volume ? store.FAULTY_VOLUME() : report.file.file_name);
    throw T_TOOL_FAILURE(line, ADVICE_FOR(line));
  }
  const ROW_LAYOUT layout = response.FAMILY == nullptr ? ROW_LAYOUT::SIMPLE : response.FAMILY->LAYOUT;
  const T_LINE_SOURCE source{model, response.LOAD_ORD, layout};
  for (const HOST_SIDE side : {MAXIMUM, MINIMUM}) SIDE_DRAWER(source, report.sides[side], sides[side]).RUN();
  return sides;
}

void TELL_STRETCHES(const T_DRAWN_SIDE& drawn, T_SIDE_LOADING& loading) {
  if (!drawn.ADDS_UP()) return;
  for (T_LANE_SIDE& told : loading.lanes) {
    if (!told.loading.udl) continue;
    const auto is_told = [&told](const T_DRAWN_LANE& lane) {
      return lane.lane == told.lane && lane.carries == told.carries &&
             lane.straddle_lane == told.straddle_lane;
    };
    const auto lane = std::ranges::find_if(drawn.lanes, is_told);
    T_HA_UDL& udl = *told.loading.udl;
    if (lane == drawn.lanes.end() || !lane->udl || lane->udl->intensity != udl.intensity) continue;
    udl.stretches = lane->udl->stretches;
    udl.loaded_length = lane->udl->loaded_length;
  }
}

}  // namespace tools
