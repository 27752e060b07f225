#include "tests/host/plain_run.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "tests/search/plain_search.h"

namespace plain {

using namespace modelkit;

namespace {

constexpr int CODES_PER_CLASS = 4;
constexpr int HA_ALONE = 1;  // the sub-cases of a lane code
constexpr int STRADDLING = 4;
constexpr std::int32_t BS_5400 = 20;

template <class T>
int count(const std::vector<T>& list) {
  return static_cast<int>(list.size());
}

/// Entry i of a list, from 1.
template <class T>
const T& entry(const std::vector<T>& list, int i) {
  return list.at(static_cast<std::size_t>(i) - 1);
}

int truncated(float value) {
  if (value >= -2147483648.0F && value < 2147483648.0F) return static_cast<int>(value);
  return INT_MIN;
}

struct VEHICLE {
  int VEH_GROUP = 0, VEH_CLASS = 0, VEHICLE_CODE = 0;
  HA_CURVE CURVE;
  float KEL_LOAD = 0;
};

/// What a search found for one side of a lane under one lane code, and what a combination takes over of it.
struct FILED {
  float VALUE = 0;
  int PASS = 0, W_MILLI = 0, LOADED_COUNT = 0, KEL_POINT = 0;
  std::vector<int> NUMBERS;
};

/// What a lane shows of a combination.
struct SHOWN {
  FILED LOADING;
  int FACTOR = 0, PLANE_FACTOR = 0;
};

/// The best combination of a side.
struct BEST {
  float PEAK = 0;
  int COMB_CLASS = 0;
  std::vector<SHOWN> LANES;  // empty where no combination has a value beyond 0
};

class JUDGE {
 public:
  JUDGE(const T_MODEL& model, host::ARGUMENTS& host, int host_lanes)
      : model_(model), host_(host), host_lanes_(host_lanes) {
    for (const T_LANE& lane : model.lanes) straddle_lanes_ += lane.is_straddle ? 1 : 0;
    for (const T_VEHICLE_GROUP& group : model.vehicle_groups)
      for (const T_VEHICLE& vehicle : group.vehicles) add_vehicle(group.group, vehicle);
  }

  void run(std::int32_t analysis_code, std::int32_t kind, std::int32_t id, std::int32_t item,
           std::int32_t mv_case) {
    const bool reads_definitions = analysis_code < 2 || analysis_code == 3;
    has_definitions_ = reads_definitions && model_.class_lanes && !model_.class_definitions.empty();

    host_.NUM_LANE = lanes();
    clear();
    std::array<BEST, 2> best;
    if (fetch(kind, id, item)) {
      find_lane_vehicles();
      for (int lane = 1; lane <= lanes() - straddle_lanes_; ++lane) search_lane(lane);
      best = combine(mv_case);
      host_.FINAL_MAX = static_cast<double>(best[0].PEAK);
      host_.FINAL_MIN = static_cast<double>(best[1].PEAK);
    }
    hand_over(best[0], host_.K_MXLOAD, host_.K_MAXINFL_S, {&host_.K_MXLOAD1ST, &host_.K_MXLOAD2ND});
    hand_over(best[1], host_.K_MNLOAD, host_.K_MININFL_S, {&host_.K_MNLOAD1ST, &host_.K_MNLOAD2ND});
  }

 private:
  [[nodiscard]] int lanes() const { return count(model_.lanes); }
  [[nodiscard]] bool straddles(int lane) const { return lane > lanes() - straddle_lanes_; }

  void add_vehicle(std::int32_t group, const T_VEHICLE& vehicle) {
    const int loads = vehicle.load_count.value_or(count(vehicle.loads));
    // One entry more than the count is read.
    const int geometry = vehicle.geometry_count.value_or(count(vehicle.geometry)) + 1;
    const bool has_load = loads >= 1 && !vehicle.loads.empty();
    const bool has_length = geometry >= 1 && !vehicle.geometry.empty();
    // clang-format off
    const HA_CURVE curve{.W0 = static_cast<float>(vehicle.ha_w0), .K = static_cast<float>(vehicle.ha_k),
                         .WMIN = static_cast<float>(vehicle.ha_wmin), .P = static_cast<float>(vehicle.ha_p),
                         .L0 = has_length ? static_cast<float>(vehicle.geometry[0]) : 0.0F};
    // clang-format on
    vehicles_.push_back({group, vehicle.vehicle_class, vehicle.code, curve,
                         has_load ? static_cast<float>(vehicle.loads[0]) : 0.0F});
  }

  void clear() {
    const auto clear_array = [&](auto& array) {
      const auto entries = static_cast<std::ptrdiff_t>(array.PER_LANE) * host_lanes_;
      std::fill(array.values.begin(), array.values.begin() + entries, 0);
    };
    for (auto* array :
         {&host_.K_MXLOAD1ST, &host_.K_MNLOAD1ST, &host_.K_MXLOAD2ND, &host_.K_MNLOAD2ND,
          &host_.K_MAXINFL_S1ST, &host_.K_MININFL_S1ST, &host_.K_MAXINFL_S2ND, &host_.K_MININFL_S2ND})
      clear_array(*array);
    for (auto* array : {&host_.DISTANCE_MAX_RANGE, &host_.DISTANCE_MIN_RANGE}) clear_array(*array);
  }

  /// The component of the result under every unit load; false where the kind has nothing to search.
  bool fetch(std::int32_t kind, std::int32_t id, std::int32_t item) {
    load_ord_.values.assign(static_cast<std::size_t>(model_.unit_loads), 0.0F);
    // Blocks addressed by id: where two responses share an id, the later stands over the earlier.
    const auto by_id = [&](const std::vector<T_RESPONSE>& responses) {
      for (const T_RESPONSE& response : responses)
        if (response.id == id) take(response, item);
      return true;
    };
    // Blocks searched from their start for the number.
    const auto first_of = [&](const std::vector<T_RESPONSE>& responses) {
      for (const T_RESPONSE& response : responses) {
        if (response.id != id) continue;
        take(response, item);
        return true;
      }
      return false;
    };
    // clang-format off
    switch (kind) {
      case MOVLOAD_RK_DISP: return by_id(model_.disp);
      case MOVLOAD_RK_SIMB: return by_id(model_.simb);
      case MOVLOAD_RK_ELNK: return by_id(model_.elnk);
      case MOVLOAD_RK_NLNK: return by_id(model_.nlnk);
      case MOVLOAD_RK_REAC: return first_of(model_.reac), true;
      case MOVLOAD_RK_LRAC: return first_of(model_.lrac), !model_.lrac.empty();
      case MOVLOAD_RK_LDSP: return first_of(model_.ldisp);
      default: return false;
    }
    // clang-format on
  }

  void take(const T_RESPONSE& response, std::int32_t item) {
    if (item > count(response.values)) return;
    const std::vector<float>& line = entry(response.values, item);
    for (int load = 1; load <= std::min(model_.unit_loads, count(line)); ++load)
      load_ord_(load) = entry(line, load);
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

  void search_lane(int lane) {
    const T_LANE& own = entry(model_.lanes, lane);
    const LIST<float> ordinates = lane_ordinates(own);
    std::array<int, 2> kel_point{};
    std::array<float, 2> peak{};
    LINE line;
    for (int k = 1; k <= ordinates.count(); ++k) {
      for (const std::size_t side : {0U, 1U}) {
        if (side == 0 ? ordinates(k) <= peak[0] : ordinates(k) >= peak[1]) continue;
        peak[side] = ordinates(k);
        kel_point[side] = k;
      }
      line.X.add(static_cast<float>(entry(own.points, k).x));
      line.BEFORE.add(ordinates(k));
    }
    if (!model_.class_lanes && !own.keep_points) drop_repeated_points(line);
    line.AFTER = line.BEFORE;

    const BOTH_DISTANCES distances = RANGE_DISTANCES(line);
    write_distances(distances.POSITIVE, host_.DISTANCE_MAX_RANGE, lane);
    write_distances(distances.NEGATIVE, host_.DISTANCE_MIN_RANGE, lane);

    std::set<int> class_done;
    for (const VEHICLE& vehicle : vehicles_) {
      if (!lane_vehicle_.contains({lane, &vehicle}) || !class_use_.contains({lane, vehicle.VEH_CLASS}))
        continue;
      if (!class_done.insert(vehicle.VEH_CLASS).second || vehicle.VEHICLE_CODE != BS_5400) continue;

      LINE of_class = line;
      // With axle lists in the model a definition serves the axles of an HB only.
      const T_CLASS_DEFINITION* definition =
          model_.axle_lists.empty() ? find_definition(vehicle.VEH_CLASS, lane) : nullptr;
      if (definition != nullptr) {
        of_class.BEFORE = class_ordinates(*definition, line.n());
        of_class.AFTER = of_class.BEFORE;
      }
      const HA_RESULT found = HA_SEARCH_LANE(of_class, vehicle.CURVE, vehicle.KEL_LOAD);
      auto& filed = filed_[{lane, (vehicle.VEH_CLASS - 1) * CODES_PER_CLASS + HA_ALONE}];
      for (const std::size_t side : {0U, 1U}) {
        const HA_SIDE& its_side = side == 0 ? found.MAX : found.MIN;
        filed[side] = {its_side.VALUE,  1, its_side.W_MILLI, its_side.LOADED_COUNT, kel_point[side],
                       its_side.NUMBERS};
      }
    }
  }

  LIST<float> lane_ordinates(const T_LANE& lane) {
    constexpr int SPREAD_PAIRS = 4;
    const double F = static_cast<double>(static_cast<float>(1.0 / lane.entries_per_point));
    LIST<float> row;
    for (const T_INFLUENCE_POINT& point : lane.points) {
      const double G = point.impact + 1.0;
      float sum = 0;
      const auto add = [&](const T_LOAD_SHARE& share) {
        sum += static_cast<float>(share.weight * F * G) * load_ord_(share.load);
      };
      for (int t = 1; t <= std::min(lane.entries_per_point, count(point.entries)); ++t) {
        for (const T_LOAD_SHARE& link : {entry(point.entries, t).a, entry(point.entries, t).b}) {
          if (link.load > 0) add(link);
          if (link.load >= 0) continue;
          const T_SPREAD_ROW& group = entry(lane.spread_rows, -link.load);
          for (int i = 1; i <= std::min(count(group), SPREAD_PAIRS); ++i) add(entry(group, i));
        }
      }
      row.add(sum);
    }
    return row;
  }

  static void drop_repeated_points(LINE& line) {
    for (int i = 1; i < line.n(); ++i) {
      int j = i + 1;
      while (j <= line.n() && line.X(j) != line.X(i)) ++j;
      if (j > line.n()) continue;
      for (auto* list : {&line.X, &line.BEFORE}) list->values.erase(list->values.begin() + (j - 1));
    }
  }

  static void write_distances(const DISTANCES& side, host::LANES_OF<float>& array, int lane) {
    int k = 0;
    for (const auto& pair : side.PAIRS)
      for (const float distance : pair) array(++k, lane) = distance;
  }

  /// The definition is found by class and lane first, and then by its number: of equal numbers the first.
  [[nodiscard]] const T_CLASS_DEFINITION* find_definition(int vehicle_class, int lane) const {
    if (!has_definitions_) return nullptr;
    int number = 0;
    for (const T_CLASS_DEFINITION& definition : model_.class_definitions) {
      const auto& group = entry(model_.vehicle_groups, definition.group_row).vehicles;
      const int its_class = group.empty() ? 0 : group.back().vehicle_class;
      const auto key = (its_class - 1) * lanes() + definition.lane;
      if (key != (vehicle_class - 1) * lanes() + lane) continue;
      number = definition.number;
      break;
    }
    if (number <= 0) return nullptr;
    for (const T_CLASS_DEFINITION& definition : model_.class_definitions)
      if (definition.number == number) return &definition;
    return nullptr;
  }

  LIST<float> class_ordinates(const T_CLASS_DEFINITION& definition, int points) {
    const float W = 1.0F / static_cast<float>(definition.entries_per_plane);
    LIST<float> row;
    for (int k = 1; k <= points; ++k) {
      float sum = 0;
      if (k <= count(definition.links)) {
        const auto& entries = entry(definition.links, k);
        for (int t = 1; t <= std::min(definition.entries_per_point, count(entries)); ++t)
          for (const T_LOAD_SHARE& share : entry(entries, t))
            sum += static_cast<float>(share.weight) * W * load_ord_(share.load);
      }
      row.add(sum);
    }
    return row;
  }

  std::array<BEST, 2> combine(std::int32_t mv_case) {
    std::array<BEST, 2> best;
    if (mv_case < 1 || mv_case > count(model_.moving_load_cases)) return best;
    for (const T_COMBINATION& combination : entry(model_.moving_load_cases, mv_case).combinations) {
      for (const std::size_t side : {0U, 1U}) {
        BEST candidate;
        candidate.LANES.resize(model_.lanes.size());
        for (int lane = 1; lane <= lanes(); ++lane) {
          const T_LANE_LOAD load = load_on(combination, lane);
          const auto scale = static_cast<float>(load.scale);
          if (load.code == 0 || scale == 0) continue;
          const int sub_case = (load.code - 1) % CODES_PER_CLASS + 1;
          const int its_class = (load.code - sub_case) / CODES_PER_CLASS + 1;
          for (const VEHICLE& vehicle : vehicles_) {
            if (vehicle.VEH_CLASS != its_class || !lane_vehicle_.contains({lane, &vehicle})) continue;
            const FILED& filed = filed_[{lane, load.code}][side];
            SHOWN& shown = candidate.LANES[static_cast<std::size_t>(lane) - 1];
            candidate.PEAK += filed.VALUE * scale;
            candidate.COMB_CLASS = its_class;
            shown.LOADING = filed;
            (sub_case == STRADDLING ? shown.PLANE_FACTOR : shown.FACTOR) = truncated(scale * 1e7F);
          }
        }
        const bool better = side == 0 ? candidate.PEAK > best[side].PEAK : best[side].PEAK > candidate.PEAK;
        if (better) best[side] = candidate;
      }
    }
    return best;
  }

  void hand_over(const BEST& best, host::LANES_OF<std::int32_t>& record,
                 host::LANES_OF<std::int32_t>& numbers,
                 std::array<host::LANES_OF<std::int32_t>*, 2> plane_records) const {
    for (int lane = 1; lane <= lanes(); ++lane) {
      const SHOWN shown = best.LANES.empty() ? SHOWN{} : entry(best.LANES, lane);
      const FILED& loading = shown.LOADING;
      // No HB anywhere: type 1 in every ordinary lane.
      const int comb_type = (straddles(lane) ? 0 : 1) + 100 * loading.PASS;
      // clang-format off
      const int fields[] = {best.COMB_CLASS, loading.W_MILLI, loading.LOADED_COUNT, 0, 0, shown.FACTOR, 0,
                            loading.KEL_POINT, comb_type, 0};
      // clang-format on
      for (int k = 1; k <= 10; ++k) record(k, lane) = fields[k - 1];
      for (int k = 1; k <= 500; ++k)
        numbers(k, lane) = k <= count(loading.NUMBERS) ? entry(loading.NUMBERS, k) : 0;
      for (auto* plane : plane_records) {
        (*plane)(1, lane) = best.COMB_CLASS;
        (*plane)(6, lane) = shown.PLANE_FACTOR;
      }
    }
  }

  const T_MODEL& model_;
  host::ARGUMENTS& host_;
  int host_lanes_;
  int straddle_lanes_ = 0;
  bool has_definitions_ = false;
  LIST<float> load_ord_;
  std::vector<VEHICLE> vehicles_;
  std::set<std::pair<int, const VEHICLE*>> lane_vehicle_;
  std::set<std::pair<int, int>> class_use_;                    // (lane, class)
  std::map<std::pair<int, int>, std::array<FILED, 2>> filed_;  // (lane, code)
};

}  // namespace

host::ARGUMENTS RUN(const T_MODEL& model, int host_lanes, std::int32_t mode_code, std::int32_t kind,
                    std::int32_t id, std::int32_t item, std::int32_t mv_case) {
  constexpr std::int32_t BEAM_ITEMS = 50;
  host::ARGUMENTS host(host_lanes);
  host.MODE_CODE = mode_code;
  if (kind == MOVLOAD_RK_BEAM && item > BEAM_ITEMS) return host;
  JUDGE(model, host, host_lanes).run(mode_code, kind, id, item, mv_case);
  return host;
}

}  // namespace plain
