#include "modelkit/random_model.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "modelkit/element_files.h"
#include "modelkit/example_span.h"

namespace modelkit {
namespace {

// The standard distributions differ between libraries, so numbers are drawn from the generator itself: a seed
// names the same model everywhere.
class dice {
 public:
  explicit dice(std::mt19937_64& random) : random_(random) {}

  double real(double low, double high) {
    constexpr double STEP = 1.0 / 9007199254740992.0;  // 2^-53
    return low + (high - low) * static_cast<double>(random_() >> 11U) * STEP;
  }
  std::int32_t integer(std::int32_t low, std::int32_t high) {
    const auto span = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low + 1);
    return static_cast<std::int32_t>(low + static_cast<std::int64_t>(random_() % span));
  }
  bool chance(double share) { return real(0.0, 1.0) < share; }

 private:
  std::mt19937_64& random_;
};

class model_maker {
 public:
  model_maker(std::mt19937_64& random, const T_RANDOM_OPTIONS& options) : dice_(random), options_(options) {}

  T_MODEL make() {
    with_straddle_ = dice_.chance(options_.straddle_lanes);
    with_axle_lists_ = dice_.chance(options_.axle_lists);
    with_repeats_ = dice_.chance(options_.repeated_points);
    model_.unit_loads = dice_.integer(1, std::max(2, 2 * options_.max_points));
    model_.n_dof = dice_.chance(options_.warping) ? 7 : 6;
    model_.keep_points = dice_.chance(0.2);
    add_vehicles();
    add_lanes();
    if (with_axle_lists_) add_axle_lists();
    if (dice_.chance(options_.class_definitions)) add_class_definitions();
    add_combinations();
    add_responses();
    return std::move(model_);
  }

 private:
  std::int32_t lanes() const { return static_cast<std::int32_t>(model_.lanes.size()); }
  std::int32_t any_load() { return dice_.integer(1, model_.unit_loads); }
  double any_weight() { return dice_.chance(0.3) ? 1.0 : dice_.real(-0.25, 1.0); }

  void add_vehicles() {
    classes_ = dice_.integer(1, std::max(1, options_.max_classes));
    for (std::int32_t vehicle_class = 1; vehicle_class <= classes_; ++vehicle_class) {
      T_VEHICLE_GROUP group{.group = vehicle_class};
      for (std::int32_t count = dice_.chance(0.2) ? 2 : 1; count > 0; --count) {
        T_VEHICLE vehicle = HA_1978_VEHICLE(dice_.real(25.0, 45.0));
        vehicle.vehicle_class = vehicle_class;
        vehicle.code = dice_.chance(0.1) ? 16 : 20;
        vehicle.ha_w0 = dice_.real(20.0, 40.0);
        vehicle.ha_p = dice_.real(0.1, 0.9);
        vehicle.loads[0] = dice_.real(0.0, 200.0);
        vehicle.geometry[0] = dice_.real(0.0, 50.0);
        vehicle.geometry[2] = dice_.real(2.0, 8.0);
        group.vehicles.push_back(std::move(vehicle));
      }
      model_.vehicle_groups.push_back(std::move(group));
    }
  }

  /// Stations with steps that are whole half metres now and then, so that positions tie exactly.
  std::vector<double> make_stations() {
    const std::int32_t count =
        dice_.integer(0, 9) == 0 ? dice_.integer(0, 2) : dice_.integer(3, options_.max_points);
    const std::int32_t per_segment = dice_.integer(2, 8);
    const bool even = dice_.chance(0.5);
    const double step = std::max(0.5, std::floor(dice_.real(0.5, options_.longest_step) * 2.0) / 2.0);
    std::vector<double> stations;
    double x = dice_.chance(0.3) ? dice_.real(0.0, 10.0) : 0.0;
    for (std::int32_t i = 0; i < count; ++i) {
      const bool repeats_the_last = with_repeats_ && i > 0 && i % per_segment == 0;
      if (i > 0 && !repeats_the_last) x += even ? step : dice_.real(0.01, options_.longest_step);
      stations.push_back(x);
    }
    return stations;
  }

  T_LOAD_SHARE make_link(const T_LANE& lane, std::int32_t load) {
    if (dice_.chance(0.1)) return {};
    if (!lane.spread_rows.empty() && dice_.chance(0.3))
      return {.load = -dice_.integer(1, static_cast<std::int32_t>(lane.spread_rows.size())),
              .weight = any_weight()};
    return {.load = dice_.chance(0.8) ? load : any_load(), .weight = any_weight()};
  }

  T_LANE make_lane(const std::vector<double>& stations, std::int32_t planes, std::int32_t per_plane) {
    T_LANE lane;
    lane.direction = static_cast<DIRECTION>(dice_.integer(0, 2));
    lane.entries_per_plane = per_plane;
    lane.entries_per_point = planes * per_plane;
    lane.keep_points = dice_.chance(0.3);
    lane.extra_records = dice_.chance(0.2) ? dice_.integer(1, 3) : 0;
    for (std::int32_t rows = dice_.chance(0.5) ? dice_.integer(1, 4) : 0; rows > 0; --rows) {
      T_SPREAD_ROW row;
      for (std::int32_t pairs = dice_.integer(0, 4); pairs > 0; --pairs)
        row.push_back({.load = any_load(), .weight = any_weight()});
      lane.spread_rows.push_back(std::move(row));
    }
    // Loads follow one another along the lane, so that its line inherits the waves of the responses.
    const std::int32_t first = any_load();
    std::int32_t number = 0;
    for (const double x : stations) {
      T_INFLUENCE_POINT point{.x = x, .impact = dice_.chance(0.2) ? 0.25 : 0.0};
      const std::int32_t load = (first + number++) % model_.unit_loads + 1;
      for (std::int32_t entry = 0; entry < lane.entries_per_point; ++entry) {
        T_TRANSVERSE_ENTRY links{.a = make_link(lane, load)};
        if (dice_.chance(0.5)) links.b = make_link(lane, load);
        point.entries.push_back(links);
      }
      lane.points.push_back(std::move(point));
    }
    return lane;
  }

  void add_lanes() {
    // Axles are read at the same point of another lane, and a straddle lane runs beside its parents.
    const bool same_stations = with_straddle_ || with_axle_lists_;
    const std::vector<double> shared = make_stations();
    const std::int32_t ordinary = dice_.integer(with_straddle_ ? 2 : 1, std::max(2, options_.max_lanes));
    for (std::int32_t i = 0; i < ordinary; ++i) {
      const std::vector<double> stations = same_stations ? shared : make_stations();
      const std::int32_t entries = dice_.integer(1, 3);
      model_.lanes.push_back(make_lane(stations, entries, 1));
    }
    if (!with_straddle_) return;
    const std::int32_t planes = dice_.integer(3, 5);
    const std::int32_t per_plane = dice_.integer(1, 2);
    for (std::int32_t count = dice_.integer(1, 2); count > 0; --count) {
      T_LANE lane = make_lane(shared, planes, per_plane);
      lane.is_straddle = true;
      lane.left_parent = dice_.integer(1, ordinary - 1);
      lane.right_parent = lane.left_parent + 1;
      model_.lanes.push_back(std::move(lane));
    }
  }

  void add_axle_lists() {
    for (std::int32_t vehicle_class = 1; vehicle_class <= classes_; ++vehicle_class) {
      for (std::int32_t lane = 1; lane <= lanes(); ++lane) {
        if (dice_.chance(0.5)) continue;
        T_AXLE_LIST list{.vehicle_class = vehicle_class, .lane = lane};
        for (int axle = 0; axle < 4; ++axle) list.lanes.push_back(dice_.integer(0, lanes()));
        model_.axle_lists.push_back(std::move(list));
      }
    }
  }

  void add_class_definitions() {
    model_.class_lanes = true;
    std::int32_t number = 10;
    for (std::int32_t group = 1; group <= classes_; ++group) {
      for (std::int32_t lane = 1; lane <= lanes(); ++lane) {
        if (dice_.chance(0.5)) continue;
        const T_LANE& own = model_.lanes[static_cast<std::size_t>(lane) - 1];
        T_CLASS_DEFINITION definition{.group_row = group,
                                      .number = number++,
                                      .lane = lane,
                                      .entries_per_point = own.entries_per_point,
                                      .entries_per_plane = own.entries_per_plane,
                                      .b1 = dice_.integer(0, 2)};
        for (std::size_t point = 0; point < own.points.size(); ++point) {
          std::vector<std::vector<T_LOAD_SHARE>> entries(static_cast<std::size_t>(own.entries_per_point));
          for (auto& pairs : entries)
            for (std::int32_t count = dice_.integer(0, 3); count > 0; --count)
              pairs.push_back({.load = any_load(), .weight = any_weight()});
          definition.links.push_back(std::move(entries));
        }
        model_.class_definitions.push_back(std::move(definition));
      }
    }
  }

  T_LANE_LOAD make_load(const T_LANE& lane) {
    constexpr std::int32_t CODES_PER_CLASS = 4;
    if (dice_.chance(0.25)) return {.code = 0, .scale = dice_.chance(0.5) ? 1.0 : 0.0};
    std::int32_t sub_case = 1;
    if (dice_.chance(options_.other_sub_cases)) sub_case = lane.is_straddle ? dice_.integer(3, 4) : 2;
    if (dice_.chance(0.05)) sub_case = dice_.integer(1, CODES_PER_CLASS);  // also such as don't fit the lane
    const double scale = dice_.chance(0.1) ? 0.0 : dice_.chance(0.5) ? 1.0 : dice_.real(0.2, 1.5);
    return {.code = CODES_PER_CLASS * (dice_.integer(1, classes_) - 1) + sub_case, .scale = scale};
  }

  void add_combinations() {
    for (std::int32_t cases = dice_.integer(1, std::max(1, options_.max_cases)); cases > 0; --cases) {
      T_MOVING_LOAD_CASE load_case;
      for (std::int32_t count = dice_.integer(0, options_.max_combinations); count > 0; --count) {
        T_COMBINATION combination;
        for (const T_LANE& lane : model_.lanes) combination.push_back(make_load(lane));
        load_case.combinations.push_back(std::move(combination));
      }
      model_.moving_load_cases.push_back(std::move(load_case));
    }
  }

  std::vector<float> make_wave() {
    const double amplitude = dice_.chance(0.1) ? 0.0 : std::exp(dice_.real(-3.0, 3.0));
    const double frequency = dice_.real(0.05, 1.5);
    const double phase = dice_.real(0.0, 6.0);
    const double shift = dice_.real(-0.5, 0.5);
    const bool coarse = dice_.chance(0.4);  // few different values, so that ordinates and means tie
    std::vector<float> wave;
    for (std::int32_t load = 0; load < model_.unit_loads; ++load) {
      double value = std::sin(frequency * load + phase) + shift;
      if (coarse) value = std::floor(value * 2.0) / 2.0;
      wave.push_back(dice_.chance(0.05) ? 0.0F : static_cast<float>(amplitude * value));
    }
    return wave;
  }

  std::vector<T_RESPONSE> make_responses(std::int32_t components, std::int32_t most = 3) {
    std::vector<T_RESPONSE> responses;
    std::int32_t id = 0;
    for (std::int32_t count = dice_.integer(1, most); count > 0; --count) {
      id += dice_.integer(1, most);
      T_RESPONSE response{.id = id};
      for (std::int32_t component = 0; component < components; ++component)
        response.values.push_back(make_wave());
      responses.push_back(std::move(response));
    }
    return responses;
  }

  std::vector<T_RESPONSE> shuffled(std::vector<T_RESPONSE> responses) {
    for (std::size_t i = responses.size(); i > 1; --i)
      std::swap(responses[i - 1],
                responses[static_cast<std::size_t>(dice_.integer(0, static_cast<std::int32_t>(i) - 1))]);
    return responses;
  }

  void add_responses() {
    constexpr std::int32_t ELEMENT_COMPONENTS = 12;
    model_.disp = make_responses(model_.n_dof);
    if (!options_.responses_of_all_kinds) return;
    model_.ldisp = shuffled(make_responses(model_.n_dof));
    model_.reac = shuffled(make_responses(model_.n_dof));
    model_.lrac = shuffled(make_responses(model_.n_dof));
    model_.simb = make_responses(ELEMENT_COMPONENTS);
    model_.elnk = make_responses(ELEMENT_COMPONENTS);
    model_.nlnk = make_responses(ELEMENT_COMPONENTS);
    add_element_responses();
  }

  void add_element_responses() {
    constexpr std::int32_t MOST_ELEMENTS = 2;
    model_.plate_form = dice_.integer(1, 4);
    model_.elements_per_file = dice_.integer(1, 3);
    const auto [trusses, beams, plates, unused, walls] = ELEMENT_FAMILIES(model_);
    model_.trusses = make_responses(trusses.values, MOST_ELEMENTS);
    model_.beams = make_responses(beams.values, MOST_ELEMENTS);
    model_.plates = make_responses(plates.values, MOST_ELEMENTS);
    model_.walls = make_responses(walls.values, MOST_ELEMENTS);
    for (T_RESPONSE& beam : model_.beams) keep_few_jumps(beam, 7, 42);
    for (T_RESPONSE& wall : model_.walls) {
      keep_few_jumps(wall, 7, 42);
      keep_few_jumps(wall, 52, 69);
    }
  }

  /// Of each two values of an element before and after a point, both are alike under most unit loads.
  void keep_few_jumps(T_RESPONSE& element, std::size_t first, std::size_t last) {
    for (std::size_t value = first; value < last; value += 2) {
      const double jumps = dice_.real(0.0, 0.5);
      const std::vector<float>& before = element.values[value - 1];
      std::vector<float>& after = element.values[value];
      for (std::size_t load = 0; load < before.size(); ++load)
        if (!dice_.chance(jumps)) after[load] = before[load];
    }
  }

  dice dice_;
  T_RANDOM_OPTIONS options_;
  T_MODEL model_;
  std::int32_t classes_ = 1;
  bool with_straddle_ = false;
  bool with_axle_lists_ = false;
  bool with_repeats_ = false;
};

}  // namespace

T_MODEL RANDOM_MODEL(std::mt19937_64& random, const T_RANDOM_OPTIONS& options) {
  return model_maker(random, options).make();
}

}  // namespace modelkit
