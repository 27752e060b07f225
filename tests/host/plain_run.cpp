#include "tests/host/plain_run.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "tests/host/result_items.h"
#include "tests/search/plain_hb.h"

namespace plain {

using namespace modelkit;

namespace {

constexpr int CODES_PER_CLASS = 4;
enum SUB_CASE { HA_ALONE = 1, HB_IN_LANE, STRADDLE_SUM, STRADDLE_THIRD };
constexpr std::int32_t BS_5400 = 20;
constexpr const char* BAD_PORTION = " HA UDL SEARCH ERROR IS ENCOUNTERED. PLEASE CONTACT KORVA SUPPORT \n";

template <class T>
int count(const std::vector<T>& list) {
  return static_cast<int>(list.size());
}

/// Entry i of a list, from 1.
template <class T>
const T& entry(const std::vector<T>& list, int i) {
  return list.at(static_cast<std::size_t>(i) - 1);
}

/// Entry i of a list of which so many are in use, 0 behind them.
float entry_or_0(const std::vector<double>& list, int i, int in_use) {
  return i <= std::min(in_use, count(list)) ? static_cast<float>(entry(list, i)) : 0.0F;
}

int truncated(float value) {
  if (value >= -2147483648.0F && value < 2147483648.0F) return static_cast<int>(value);
  return INT_MIN;
}

struct VEHICLE {
  int VEH_GROUP = 0, VEH_CLASS = 0, VEHICLE_CODE = 0;
  HA_CURVE CURVE;
  float KEL_LOAD = 0, HB_LOAD = 0;
  std::array<float, 3> HB{};        // HB_S, HB_B, HB_STEP as far as the count of the geometry goes
  std::array<double, 3> HB_GEOM{};  // the same, whatever that count
};

/// Ordinates at all points that a lane may have, and one more.
using ROW = std::vector<float>;

/// A lane under the result in hand.
struct LANE_LINES {
  ROW X;
  PLANES ROWS;  // one in an ordinary lane
  std::array<int, 2> KEL_POINT{};
  std::array<int, 2> RANGE_COUNT{};
};

/// What a search found for one side of a lane under one lane code.
struct FILED {
  HB_SIDE FOUND;
  int KEL_POINT = 0;
};

/// The best combination of a side; none where no combination has a value beyond 0.
struct BEST {
  float PEAK = 0;
  const T_COMBINATION* COMBINATION = nullptr;
};

/// The host's arrays of a side: of the lane, and of two planes.
struct SIDE {
  std::array<host::LANES_OF<std::int32_t>*, 3> RECORDS;
  std::array<host::LANES_OF<std::int32_t>*, 3> NUMBERS;
  host::LANES_OF<float>* DISTANCES;
  std::vector<int> PASS;  // by lane, from 0

  int& field(int k, int lane) { return (*RECORDS[0])(k, lane); }
  int& pass(int lane) { return PASS.at(static_cast<std::size_t>(lane) - 1); }
};

// Fields of a record.
enum FIELD { VEHI_NO = 1, W_HA_UDL, NO_LOADED_RANGE, TYPE_OF_HB, POSITION_OF_HB, FACTOR, HA_UDL_PORTION };
enum { COMB_TYPE = 9, FIELDS = 10, NUMBERS_USED = 500, NUMBERS_ALL = 1000 };

class JUDGE {
 public:
  JUDGE(const T_MODEL& model, host::ARGUMENTS& host, int host_lanes, std::int32_t kind, std::int32_t id,
        std::int32_t item, MET& met)
      : model_(model),
        host_(host),
        host_lanes_(host_lanes),
        kind_(kind),
        id_(id),
        item_(item),
        may_jump_(MAY_JUMP(kind, item)),
        met_(met),
        family_(KIND_OF(kind)) {
    for (const T_LANE& lane : model.lanes) {
      straddle_lanes_ += lane.is_straddle ? 1 : 0;
      max_points_ = std::max(max_points_, count(lane.points));
    }
    for (const T_CLASS_DEFINITION& definition : model.class_definitions)
      max_points_ = std::max(max_points_, count(definition.links));
    for (const T_VEHICLE_GROUP& group : model.vehicle_groups)
      for (const T_VEHICLE& vehicle : group.vehicles) add_vehicle(group.group, vehicle);
  }

  /// An item that its kind hasn't got, a block that isn't there, an element that its files don't hold.
  [[nodiscard]] bool fails() const {
    if (!has_routine()) return false;
    if (item_ < 1 || item_ > ITEMS_OF(*family_, model_)) return true;
    const std::vector<T_RESPONSE>& responses = model_.*family_->RESPONSES;
    if (!family_->OF_ELEMENTS) return responses.empty() && kind_ != MOVLOAD_RK_LDSP;
    constexpr int FILES = 9;
    const int per_file = model_.elements_per_file;
    if (per_file < 1 || id_ < 1) return true;
    const int file = (id_ - 1) / per_file;
    int last = 0;
    bool is_written = false;  // the file, if there is a response in it
    for (const T_RESPONSE& response : responses) {
      last = std::max(last, response.id);
      is_written = is_written || (response.id >= 1 && (response.id - 1) / per_file == file);
    }
    return !is_written || id_ > last || file >= FILES;
  }

  void run(std::int32_t analysis_code, std::int32_t mv_case) {
    const bool reads_definitions = analysis_code < 2 || analysis_code == 3;
    has_definitions_ = reads_definitions && model_.class_lanes && !model_.class_definitions.empty();

    host_.NUM_LANE = lanes();
    clear();
    std::array<BEST, 2> best;
    find_lane_vehicles();
    if (has_routine() && fetch(VALUES_OF(kind_, item_))) {
      for (int lane = 1; lane <= lanes(); ++lane) lines_.push_back(lines_of(lane));
      best = combine(mv_case);
      host_.FINAL_MAX = static_cast<double>(best[0].PEAK);
      host_.FINAL_MIN = static_cast<double>(best[1].PEAK);
    }
    // Every pass goes over all lanes before the next begins.
    for (const std::size_t side : {0U, 1U}) {
      hand_over(best[side], side);
      for (int lane = ordinary() + 1; lane <= lanes(); ++lane) fold(lane, sides_[side]);
      check(sides_[side]);
      for (int lane = 1; lane <= lanes(); ++lane) trim(lane, sides_[side]);
      for (int lane = 1; lane <= lanes(); ++lane)
        sides_[side].field(COMB_TYPE, lane) += 100 * sides_[side].pass(lane);
    }
  }

 private:
  [[nodiscard]] int lanes() const { return count(model_.lanes); }
  [[nodiscard]] int ordinary() const { return lanes() - straddle_lanes_; }
  [[nodiscard]] bool straddles(int lane) const { return lane > ordinary(); }

  /// Without local reactions their routine isn't called.
  [[nodiscard]] bool has_routine() const {
    return family_ != nullptr && (kind_ != MOVLOAD_RK_LRAC || !model_.lrac.empty());
  }

  void add_vehicle(std::int32_t group, const T_VEHICLE& vehicle) {
    const int loads = vehicle.load_count.value_or(count(vehicle.loads));
    // One entry more than the count is read.
    const int geometry = vehicle.geometry_count.value_or(count(vehicle.geometry)) + 1;
    VEHICLE& added = vehicles_.emplace_back();
    added.VEH_GROUP = group;
    added.VEH_CLASS = vehicle.vehicle_class;
    added.VEHICLE_CODE = vehicle.code;
    added.CURVE = {static_cast<float>(vehicle.ha_w0), static_cast<float>(vehicle.ha_k),
                   static_cast<float>(vehicle.ha_wmin), static_cast<float>(vehicle.ha_p),
                   entry_or_0(vehicle.geometry, 1, geometry)};
    added.KEL_LOAD = entry_or_0(vehicle.loads, 1, loads);
    added.HB_LOAD = entry_or_0(vehicle.loads, 2, loads) * entry_or_0(vehicle.loads, 100, 100);
    for (const std::size_t i : {0U, 1U, 2U}) {
      const int place = static_cast<int>(i) + 2;
      added.HB[i] = entry_or_0(vehicle.geometry, place, geometry);
      added.HB_GEOM[i] = static_cast<double>(entry_or_0(vehicle.geometry, place, 100));
    }
  }

  void clear() {
    const auto clear_array = [&](auto& array) {
      const auto entries = static_cast<std::ptrdiff_t>(array.PER_LANE) * host_lanes_;
      std::fill(array.values.begin(), array.values.begin() + entries, 0);
    };
    for (SIDE& side : sides_) {
      for (const std::size_t plane : {1U, 2U}) {
        clear_array(*side.RECORDS[plane]);
        clear_array(*side.NUMBERS[plane]);
      }
      clear_array(*side.DISTANCES);
      side.PASS.resize(model_.lanes.size());
    }
  }

  /// Values of the result under every unit load, those before and after a point; false where a run has
  /// nothing to search.
  bool fetch(const std::vector<int>& values) {
    for (LIST<float>& load_ord : load_ord_)
      load_ord.values.assign(static_cast<std::size_t>(model_.unit_loads), 0.0F);
    two_columns_ = values.size() == 2;
    // These are searched from their start for the number, all others addressed by it: where two responses
    // share a number, the later stands over the earlier.
    const bool takes_first = kind_ == MOVLOAD_RK_REAC || kind_ == MOVLOAD_RK_LRAC || kind_ == MOVLOAD_RK_LDSP;
    bool is_found = false;
    for (const T_RESPONSE& response : model_.*family_->RESPONSES) {
      if (response.id != id_ || (takes_first && is_found)) continue;
      is_found = true;
      take(response, values.front(), load_ord_[0]);
      take(response, values.back(), load_ord_[1]);
    }
    return is_found || kind_ != MOVLOAD_RK_LDSP;
  }

  void take(const T_RESPONSE& response, int value, LIST<float>& load_ord) const {
    if (value > count(response.values)) return;
    const std::vector<float>& line = entry(response.values, value);
    for (int load = 1; load <= std::min(model_.unit_loads, count(line)); ++load)
      load_ord(load) = entry(line, load);
  }

  static T_LANE_LOAD load_on(const T_COMBINATION& combination, int lane) {
    return lane <= count(combination) ? entry(combination, lane) : T_LANE_LOAD{};
  }

  /// A column belongs to a lane where a code asks for its group, and is searched where one of these codes has
  /// a scale.
  void find_lane_vehicles() {
    for (const T_MOVING_LOAD_CASE& load_case : model_.moving_load_cases)
      for (const T_COMBINATION& combination : load_case.combinations)
        for (int lane = 1; lane <= lanes(); ++lane) find_vehicles(lane, load_on(combination, lane));
  }
  void find_vehicles(int lane, const T_LANE_LOAD& load) {
    const int t = static_cast<int>(std::ceil(static_cast<float>(load.code * 0.25)));
    for (const VEHICLE& vehicle : vehicles_) {
      if (t == 0 || vehicle.VEH_GROUP != t || vehicle.VEH_CLASS == 0) continue;
      lane_vehicle_.insert({lane, &vehicle});
      if (static_cast<float>(load.scale) != 0) class_use_.insert({lane, vehicle.VEH_CLASS});
    }
  }

  /// Sums of entries: in a straddle lane by plane, else of all in one row (no planes). `add` gives the terms
  /// of entry t of point k, a weight and a unit load each.
  template <class ADD>
  [[nodiscard]] PLANES rows_of(int planes, int entries, int per_plane, int points, ADD add) const {
    const int per_row = planes == 0 ? entries : per_plane;
    PLANES rows = empty_rows(planes);
    for (int q = 1; q <= count(rows); ++q) {
      for (int k = 1; k <= points; ++k) {
        const auto add_term = [&](float weight, int load) {
          ORDINATES& row = rows[static_cast<std::size_t>(q) - 1];
          row.BEFORE[static_cast<std::size_t>(k) - 1] += weight * load_ord_[0](load);
          row.AFTER[static_cast<std::size_t>(k) - 1] += weight * load_ord_[1](load);
        };
        for (int t = (q - 1) * per_row + 1; t <= std::min(q * per_row, entries); ++t) add(k, t, add_term);
      }
    }
    return rows;
  }

  [[nodiscard]] PLANES link_rows(const T_LANE& lane, int planes) const {
    constexpr int SPREAD_PAIRS = 4;
    const int E = lane.entries_per_point;
    const auto F = static_cast<double>(static_cast<float>(1.0 / (planes == 0 ? E : lane.entries_per_plane)));
    return rows_of(planes, E, lane.entries_per_plane, count(lane.points), [&](int k, int t, auto add_term) {
      const T_INFLUENCE_POINT& point = entry(lane.points, k);
      if (t > count(point.entries)) return;
      const double G = point.impact + 1.0;
      const auto add = [&](const T_LOAD_SHARE& share) {
        add_term(static_cast<float>(share.weight * F * G), share.load);
      };
      for (const T_LOAD_SHARE& link : {entry(point.entries, t).a, entry(point.entries, t).b}) {
        if (link.load > 0) add(link);
        if (link.load >= 0) continue;
        const T_SPREAD_ROW& group = entry(lane.spread_rows, -link.load);
        for (int i = 1; i <= std::min(count(group), SPREAD_PAIRS); ++i) add(entry(group, i));
      }
    });
  }

  [[nodiscard]] PLANES class_rows(const T_CLASS_DEFINITION& definition, int planes, int points) const {
    const int D = definition.entries_per_plane;
    const float W = 1.0F / static_cast<float>(D);
    const int defined = std::min(points, count(definition.links));
    return rows_of(planes, definition.entries_per_point, D, defined, [&](int k, int t, auto add_term) {
      const auto& entries = entry(definition.links, k);
      if (t > count(entries)) return;
      for (const T_LOAD_SHARE& share : entry(entries, t))
        add_term(static_cast<float>(share.weight) * W, share.load);
    });
  }

  [[nodiscard]] PLANES empty_rows(int planes) const {
    const ROW row(static_cast<std::size_t>(max_points_) + 1);
    return PLANES(static_cast<std::size_t>(std::max(planes, 1)), {row, row});
  }
  [[nodiscard]] static ROW positions(const T_LANE& lane) {
    ROW x;
    for (const T_INFLUENCE_POINT& point : lane.points) x.push_back(static_cast<float>(point.x));
    return x;
  }

  /// Gives how many points are left. What stands behind them stays as it was.
  int drop_repeated_points(const T_LANE& lane, ROW& x, PLANES& planes) const {
    int n = count(x);
    if (may_jump_ || model_.class_lanes || lane.keep_points) return n;
    for (int i = 1; i < n; ++i) {
      int j = i + 1;
      while (j <= n && entry(x, j) != entry(x, i)) ++j;
      if (j > n) continue;
      const auto shift = [=](ROW& row) { std::copy(row.begin() + j, row.begin() + n, row.begin() + j - 1); };
      shift(x);
      for (ORDINATES& plane : planes) shift(plane.BEFORE), shift(plane.AFTER);
      --n;
    }
    return n;
  }

  [[nodiscard]] int planes_of(int lane) const {
    const T_LANE& own = entry(model_.lanes, lane);
    return straddles(lane) ? own.entries_per_point / own.entries_per_plane : 0;
  }

  LANE_LINES lines_of(int lane) {
    const T_LANE& own = entry(model_.lanes, lane);
    LANE_LINES lines{positions(own), link_rows(own, planes_of(lane)), {}, {}};
    std::array<float, 2> peak{};
    for (int k = 1; k <= max_points_ + 1; ++k) {
      const float before = entry(lines.ROWS[0].BEFORE, k);
      const float after = entry(lines.ROWS[0].AFTER, k);
      if (std::max(before, after) > peak[0]) peak[0] = std::max(before, after), lines.KEL_POINT[0] = k;
      if (std::min(before, after) < peak[1]) peak[1] = std::min(before, after), lines.KEL_POINT[1] = k;
      met_.JUMPS_ACROSS_ZERO += before * after < 0 ? 1 : 0;
    }
    lines.X.resize(static_cast<std::size_t>(drop_repeated_points(own, lines.X, lines.ROWS)));
    if (straddles(lane)) return lines;

    const BOTH_DISTANCES distances = RANGE_DISTANCES(line_of(lines.X, lines.ROWS[0]));
    for (const std::size_t side : {0U, 1U}) {
      const DISTANCES& its_side = side == 0 ? distances.POSITIVE : distances.NEGATIVE;
      lines.RANGE_COUNT[side] = its_side.RANGE_COUNT;
      int k = 0;
      for (const auto& pair : its_side.PAIRS)
        for (const float distance : pair) (*sides_[side].DISTANCES)(++k, lane) = distance;
    }
    return lines;
  }

  [[nodiscard]] LINE line_of(const ROW& x, const ORDINATES& row) const {
    const ORDINATES left = planes_of_points({row}, x).front();
    return {may_jump_, two_columns_, {x}, {left.BEFORE}, {left.AFTER}};
  }

  /// The number of the definition for this class and lane, 0 where there is none.
  [[nodiscard]] int definition_number(int vehicle_class, int lane) const {
    if (!has_definitions_) return 0;
    for (const T_CLASS_DEFINITION& definition : model_.class_definitions) {
      const auto& group = entry(model_.vehicle_groups, definition.group_row).vehicles;
      const int its_class = group.empty() ? 0 : group.back().vehicle_class;
      const int key = (its_class - 1) * lanes() + definition.lane;
      if (key == (vehicle_class - 1) * lanes() + lane) return definition.number;
    }
    return 0;
  }

  /// Ordinates of a lane by the definition of that number: of equal numbers the first counts, 0 is none.
  [[nodiscard]] PLANES defined_rows(int number, int lane, int planes) const {
    for (const T_CLASS_DEFINITION& definition : model_.class_definitions)
      if (number != 0 && definition.number == number)
        return class_rows(definition, planes, count(entry(model_.lanes, lane).points));
    return empty_rows(planes);
  }

  /// The lanes of an axle list, 0 for the lane itself. The first four are those under the axles.
  [[nodiscard]] std::vector<int> axle_lanes(int vehicle_class, int lane) const {
    std::vector<int> axles;
    for (const T_AXLE_LIST& list : model_.axle_lists)
      if (list.vehicle_class == vehicle_class && list.lane == lane) axles = list.lanes;
    for (int& axle : axles)
      if (axle == lane || axle < 0) axle = 0;
    axles.resize(std::max<std::size_t>(axles.size(), 4));
    return axles;
  }
  [[nodiscard]] static std::set<int> named_lanes(const std::vector<int>& axles) {
    std::set<int> named(axles.begin(), axles.end());
    named.erase(0);
    return named;
  }

  std::array<FILED, 2> search(int lane, const VEHICLE& vehicle, int sub_case) {
    const LANE_LINES& lines = entry(lines_, lane);
    const int planes = planes_of(lane);
    const std::vector<int> axles = axle_lanes(vehicle.VEH_CLASS, lane);
    const std::set<int> named = named_lanes(axles);
    // A definition takes the place of an ordinary lane's line where no class has axle lists, and else of the
    // lines under an HB whose axles run on other lanes too.
    const int number = definition_number(vehicle.VEH_CLASS, lane);
    PLANES own = lines.ROWS;
    if (number > 0 && (model_.axle_lists.empty() ? planes == 0 : !named.empty() && sub_case != HA_ALONE))
      own = defined_rows(number, lane, planes);

    if (sub_case == HA_ALONE) {
      const HA_RESULT found = HA_SEARCH_LANE(line_of(lines.X, own[0]), vehicle.CURVE, vehicle.KEL_LOAD);
      const auto side_of = [](const HA_SIDE& best, int kel_point) {
        const HB_PART part{best.W_MILLI, best.LOADED_COUNT, 0, 0, 0, 0, best.NUMBERS};
        return FILED{{best.VALUE, 1, {part, {}}}, kel_point};
      };
      return {side_of(found.MAX, lines.KEL_POINT[0]), side_of(found.MIN, lines.KEL_POINT[1])};
    }

    HB_TASK task{.JUMP_LAYOUT = may_jump_,
                 .TWO_COLUMNS = two_columns_,
                 .X = lines.X,
                 .SETS = {planes_of_points(own, lines.X)},
                 .CURVE = vehicle.CURVE,
                 .HB_LOAD = vehicle.HB_LOAD,
                 .HB_S = vehicle.HB[0],
                 .HB_B = vehicle.HB[1],
                 .HB_STEP = vehicle.HB[2],
                 .LANE_DIRECTION = static_cast<int>(entry(model_.lanes, lane).direction),
                 .LANE_NUMBER = lane};
    for (const int other : named) {
      met_.SETS_OF_OTHER_LANES += 1;
      for (std::size_t j = 0; j < 4; ++j)
        if (axles[j] == other) task.AXLE_SET[j] = task.SETS.size();
      const T_LANE& its_lane = entry(model_.lanes, other);
      PLANES rows = link_rows(its_lane, planes);
      ROW x = positions(its_lane);
      drop_repeated_points(its_lane, x, rows);
      if (number > 0) rows = defined_rows(definition_number(vehicle.VEH_CLASS, other), other, planes);
      task.SETS.push_back(planes_of_points(rows, lines.X));
    }

    HB_RESULT found = sub_case == HB_IN_LANE     ? HB_LANE(task)
                      : sub_case == STRADDLE_SUM ? HB_STRADDLE_SUM(task)
                                                 : HB_STRADDLE_THIRD(task);
    // A reverse pass has numbered the ranges from the lane's other end.
    for (const std::size_t side : {0U, 1U}) {
      for (HB_PART& part : found[side].PARTS) {
        const int ranges = planes == 0 ? lines.RANGE_COUNT[side] : part.NUMBERED;
        for (int& e : part.NUMBERS)
          if (found[side].PASS_REC == 2 && e > 0) e = ranges - e + 1;
      }
    }
    return {FILED{found[0]}, FILED{found[1]}};
  }

  static PLANES planes_of_points(PLANES rows, const ROW& x) {
    for (ORDINATES& row : rows) row.BEFORE.resize(x.size()), row.AFTER.resize(x.size());
    return rows;
  }

  /// What is filed for a lane code: by the first column of its class that serves the lane.
  const std::array<FILED, 2>& filed(int lane, int its_class, int sub_case) {
    const auto [place, is_new] = filed_.try_emplace({lane, its_class, sub_case});
    const bool fits = straddles(lane) == (sub_case >= STRADDLE_SUM);
    if (!is_new || !fits || !class_use_.contains({lane, its_class})) return place->second;
    for (const VEHICLE& vehicle : vehicles_) {
      if (vehicle.VEH_CLASS != its_class || !lane_vehicle_.contains({lane, &vehicle})) continue;
      if (vehicle.VEHICLE_CODE == BS_5400) place->second = search(lane, vehicle, sub_case);
      break;
    }
    return place->second;
  }

  /// Calls visit(lane, class, sub-case, scale) for every lane with a load and each column of its class.
  template <class VISIT>
  void each_load(const T_COMBINATION& combination, VISIT visit) const {
    for (int lane = 1; lane <= lanes(); ++lane) {
      const T_LANE_LOAD load = load_on(combination, lane);
      const auto scale = static_cast<float>(load.scale);
      if (load.code == 0 || scale == 0) continue;
      const int sub_case = (load.code - 1) % CODES_PER_CLASS + 1;
      const int its_class = (load.code - sub_case) / CODES_PER_CLASS + 1;
      for (const VEHICLE& vehicle : vehicles_)
        if (vehicle.VEH_CLASS == its_class && lane_vehicle_.contains({lane, &vehicle}))
          visit(lane, its_class, sub_case, scale);
    }
  }

  std::array<BEST, 2> combine(std::int32_t mv_case) {
    std::array<BEST, 2> best;
    if (mv_case < 1 || mv_case > count(model_.moving_load_cases)) return best;
    for (const T_COMBINATION& combination : entry(model_.moving_load_cases, mv_case).combinations) {
      std::array<float, 2> sums{};
      each_load(combination, [&](int lane, int its_class, int sub_case, float scale) {
        for (const std::size_t side : {0U, 1U})
          sums[side] += filed(lane, its_class, sub_case)[side].FOUND.VALUE * scale;
      });
      if (sums[0] > best[0].PEAK) best[0] = {sums[0], &combination};
      if (best[1].PEAK > sums[1]) best[1] = {sums[1], &combination};
    }
    return best;
  }

  void hand_over(const BEST& best, std::size_t at) {
    SIDE& side = sides_[at];
    int last_class = 0;
    for (int lane = 1; lane <= lanes(); ++lane) {
      side.pass(lane) = 0;
      for (const std::size_t i : {0U, 1U, 2U}) {
        std::fill_n(&(*side.RECORDS[i])(1, lane), FIELDS, 0);
        std::fill_n(&(*side.NUMBERS[i])(1, lane), NUMBERS_USED, 0);
      }
    }
    if (best.COMBINATION == nullptr) return;
    each_load(*best.COMBINATION, [&](int lane, int its_class, int sub_case, float scale) {
      const FILED& loading = filed(lane, its_class, sub_case)[at];
      last_class = its_class;
      side.pass(lane) = loading.FOUND.PASS_REC;
      const bool by_plane = sub_case == STRADDLE_THIRD;
      for (std::size_t plane = 0; plane < (by_plane ? 2U : 1U); ++plane) {
        const HB_PART& part = loading.FOUND.PARTS[plane];
        const std::size_t record = by_plane ? plane + 1 : 0;
        const std::array<int, 8> fields{0,
                                        part.W_MILLI,
                                        part.LOADED_COUNT,
                                        part.HB_TYPE,
                                        part.HB_POSITION,
                                        truncated(scale * 1e7F),
                                        part.HB_CODE,
                                        loading.KEL_POINT};
        std::ranges::copy(fields, &(*side.RECORDS[record])(1, lane));
        std::ranges::copy(part.NUMBERS, &(*side.NUMBERS[record])(1, lane));
      }
    });
    for (int lane = 1; lane <= lanes(); ++lane)
      for (auto* const records : side.RECORDS) (*records)(VEHI_NO, lane) = last_class;
  }

  /// Where both planes of a straddle lane carry HA, their records take the place of the parents'.
  void fold(int straddle_lane, SIDE& side) const {
    const T_LANE& lane = entry(model_.lanes, straddle_lane);
    for (const std::size_t plane : {1U, 2U})
      if ((*side.RECORDS[plane])(W_HA_UDL, straddle_lane) < 1) return;
    for (const std::size_t plane : {1U, 2U}) {
      const int parent = plane == 1 ? lane.left_parent : lane.right_parent;
      side.pass(parent) = side.pass(straddle_lane);
      std::copy_n(&(*side.RECORDS[plane])(1, straddle_lane), FIELDS, &side.field(1, parent));
      std::copy_n(&(*side.NUMBERS[plane])(1, straddle_lane), NUMBERS_ALL, &(*side.NUMBERS[0])(1, parent));
    }
  }

  void check(SIDE& side) {
    int with_hb = 0;
    int with_full_ha = 0;
    int full = 0;
    for (int lane = 1; lane <= ordinary(); ++lane) {
      const int digit = side.field(HA_UDL_PORTION, lane) % 10;
      if (digit <= 1) full = digit;
      if (digit > 1) met_.PRINTED += BAD_PORTION;
      with_full_ha += full;
      with_hb += side.field(TYPE_OF_HB, lane) != 0 && side.field(POSITION_OF_HB, lane) != 0 ? 1 : 0;
    }
    const int segment = points_per_segment();
    for (int lane = 1; lane <= ordinary(); ++lane) {
      int& portion = side.field(HA_UDL_PORTION, lane);
      int& type = side.field(COMB_TYPE, lane);
      if (with_hb == 0) type = 1;
      if (with_hb == 1) type = 2, portion = 1;
      if (with_hb == 2 && with_full_ha == 0) type = 3, portion += 1;
      if (with_hb == 2 && with_full_ha == 1) type = 4;
      int& p = side.field(POSITION_OF_HB, lane);
      const bool expands = type >= 2 && p != 0 && segment != 1 && !may_jump_;
      if (expands && !model_.keep_points && !model_.class_lanes) p += (p - 1) / (segment - 1);
    }
    for (int lane = ordinary() + 1; lane <= lanes(); ++lane) {
      int& f = side.field(HA_UDL_PORTION, lane);
      if (f == 0) continue;
      f = f / 100 * 10000 + f % 10 * 10 + 1;
      side.field(COMB_TYPE, lane) = 3;
    }
  }

  [[nodiscard]] int points_per_segment() const {
    int p = 3;
    for (int lane = 1; lane <= lanes(); ++lane) {
      const auto& points = entry(model_.lanes, lane).points;
      for (int k = 1; k <= count(points); ++k) {
        if (k == count(points)) return k;
        const auto d = static_cast<float>(entry(points, k + 1).x - entry(points, k).x);
        if (std::abs(d) >= 1E-10F) continue;
        if (lane > 1 && p == k) return k;
        if (lane > 1) continue;
        p = k;
        break;
      }
    }
    return p;
  }

  void trim(int lane, SIDE& side) {
    const int T = side.field(TYPE_OF_HB, lane);
    const int P = side.field(POSITION_OF_HB, lane);
    if (T == 0 || P == 0 || P > max_points_ + 1) return;
    const int column = side.field(VEHI_NO, lane);
    const std::array<double, 3> hb = column <= std::min(count(vehicles_), 100)
                                         ? entry(vehicles_, column).HB_GEOM
                                         : std::array<double, 3>{};
    const double length = 50.0 + 2.0 * hb[0] + hb[1] + (T - 1.0) * hb[2];
    // A straddle lane has points there only where lines may jump, and a lane none behind its own.
    const auto& points = entry(model_.lanes, lane).points;
    const bool has_point = (!straddles(lane) || may_jump_) && P <= count(points);
    const float x = has_point ? static_cast<float>(entry(points, P).x) : 0.0F;
    const double other_end = static_cast<double>(x) + (side.pass(lane) == 1 ? length : -length);
    const float near_end = side.pass(lane) == 1 ? x : static_cast<float>(other_end);
    const float far_end = side.pass(lane) == 1 ? static_cast<float>(other_end) : x;

    float* const distances = &(*side.DISTANCES)(1, lane);
    int* const numbers = &(*side.NUMBERS[0])(1, lane);
    int& loaded = side.field(NO_LOADED_RANGE, lane);
    REPORTED ranges;
    std::copy_n(distances, 200, ranges.FLAT.begin());
    std::copy_n(numbers, NUMBERS_USED, ranges.NUMBERS.begin());
    ranges.NO_LOADED_RANGE = loaded;
    REPORTED merged = ranges;
    MERGE_LOADED_RANGES(far_end, near_end, merged);
    TRIM_LOADED_RANGES(far_end, near_end, ranges);
    met_.MERGED_LISTS += !std::equal(merged.FLAT.begin(), merged.FLAT.end(), distances) ? 1 : 0;
    met_.SPLIT_RANGES += ranges.NO_LOADED_RANGE - loaded;
    std::ranges::copy(ranges.FLAT, distances);
    std::ranges::copy(ranges.NUMBERS, numbers);
    loaded = ranges.NO_LOADED_RANGE;
  }

  const T_MODEL& model_;
  host::ARGUMENTS& host_;
  int host_lanes_;
  std::int32_t kind_, id_, item_;
  bool may_jump_, two_columns_ = false;
  MET& met_;
  const KIND* family_;  // none for a kind without routine
  // clang-format off
  std::array<SIDE, 2> sides_{{
      {{&host_.K_MXLOAD, &host_.K_MXLOAD1ST, &host_.K_MXLOAD2ND},
       {&host_.K_MAXINFL_S, &host_.K_MAXINFL_S1ST, &host_.K_MAXINFL_S2ND}, &host_.DISTANCE_MAX_RANGE, {}},
      {{&host_.K_MNLOAD, &host_.K_MNLOAD1ST, &host_.K_MNLOAD2ND},
       {&host_.K_MININFL_S, &host_.K_MININFL_S1ST, &host_.K_MININFL_S2ND}, &host_.DISTANCE_MIN_RANGE, {}}}};
  // clang-format on
  int straddle_lanes_ = 0;
  int max_points_ = 0;
  bool has_definitions_ = false;
  std::array<LIST<float>, 2> load_ord_;  // before and after a point
  std::vector<VEHICLE> vehicles_;
  std::vector<LANE_LINES> lines_;
  std::set<std::pair<int, const VEHICLE*>> lane_vehicle_;
  std::set<std::pair<int, int>> class_use_;                   // (lane, class)
  std::map<std::array<int, 3>, std::array<FILED, 2>> filed_;  // (lane, class, sub-case)
};

}  // namespace

host::ARGUMENTS RUN(const T_MODEL& model, int host_lanes, std::int32_t mode_code, std::int32_t kind,
                    std::int32_t id, std::int32_t item, std::int32_t mv_case, MET* met) {
  constexpr std::int32_t BEAM_ITEMS = 50;
  host::ARGUMENTS host(host_lanes);
  host.MODE_CODE = mode_code;
  if (kind == MOVLOAD_RK_BEAM && item > BEAM_ITEMS) return host;
  MET unasked;
  JUDGE judge(model, host, host_lanes, kind, id, item, met != nullptr ? *met : unasked);
  if (judge.fails())
    host.MODE_CODE = -1;
  else
    judge.run(mode_code, mv_case);
  return host;
}

}  // namespace plain
