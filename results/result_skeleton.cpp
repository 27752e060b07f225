#include "results/result_skeleton.h"

#include <algorithm>

#include "search/ha_search.h"

namespace results {

const T_FILED_RESULT* T_LANE_PHASE::FIND(std::int32_t lane, std::int32_t class_slot,
                                         std::int32_t sub_case) const {
  for (const T_CLASS_RESULTS& results : LANES[static_cast<std::size_t>(lane - 1)]) {
    if (results.CLASS_SLOT == class_slot) return &results.SUB_CASE[static_cast<std::size_t>(sub_case - 1)];
  }
  return nullptr;
}

namespace {

// ---------------------------------------------------------------------------------------- searches

/// One search: what it works on.
struct T_SEARCH_INPUT {
  search::T_LINE LANE_ORD;  // the lane's own ordinates
  const search::T_VEHICLE_PARAMETERS& VEHICLE;
};

/// Work lists of all searches of a lane phase.
struct T_SEARCH_WORK {
  search::T_RANGE_WORK RANGES;
};

using SEARCH = void (*)(const T_SEARCH_INPUT&, T_SEARCH_WORK&, search::T_SEARCH_RESULT&);
using HA_LANE_SEARCH = search::T_HA_RESULT (*)(const search::T_LINE&, const search::T_HA_CURVE&, real,
                                               search::T_RANGE_WORK&);

template <HA_LANE_SEARCH HA_SEARCH>
void search_ha(const T_SEARCH_INPUT& input, T_SEARCH_WORK& work, search::T_SEARCH_RESULT& result) {
  constexpr std::int32_t WHOLE_LANE_PASS = 1;
  const search::T_HA_RESULT found =
      HA_SEARCH(input.LANE_ORD, input.VEHICLE.HA_CURVE, input.VEHICLE.KEL_LOAD, work.RANGES);
  for (std::size_t side = 0; side < N_SIDES; ++side) {
    const search::T_HA_SIDE& best = found[side];
    search::T_SIDE_RESULT& filed = result[side];
    filed.VALUE = best.VALUE;
    filed.PASS_REC = WHOLE_LANE_PASS;
    filed.HB_REC.W_MILLI = best.W_MILLI;
    filed.HB_REC.LOADED_COUNT = best.LOADED_COUNT;
    filed.INFL_REC.assign(best.RANGES, best.RANGES + best.LOADED_COUNT);
  }
}

/// The search of a sub-case. Null: nothing is searched, and zeros are filed.
struct T_SUB_CASE {
  bool ON_STRADDLE_LANES;
  SEARCH OWN_LANE[2];     // by layout: all axles on the lane itself
  SEARCH OTHER_LANES[2];  // by layout: the class has an axle list that names other lanes
};
constexpr SEARCH HA_LANE = search_ha<search::HA_SEARCH_LANE>;
constexpr SEARCH HA_LANE_JUMP = search_ha<search::HA_SEARCH_LANE_JUMP>;
constexpr std::array<T_SUB_CASE, search::SUB_CASES> SEARCH_TABLE{{
    {false, {HA_LANE, HA_LANE_JUMP}, {HA_LANE, HA_LANE_JUMP}},  // HA alone; an axle list makes no difference
    {false, {nullptr, nullptr}, {nullptr, nullptr}},            // HB in the lane, HA beside it
    {true, {nullptr, nullptr}, {nullptr, nullptr}},  // HB across two parent lanes, full HA UDL on both
    {true, {nullptr, nullptr}, {nullptr, nullptr}},  // the same with full HA UDL on one, a third on the other
}};
constexpr std::size_t HA_ALONE = 0;

// ---------------------------------------------------------------------------------------- lane
// phase

/// Where the knife-edge load of a side stands: the first point that holds the lane's extreme, 0 where there
/// is none. In the numbering of all points, before repeated ones are dropped.
std::array<std::int32_t, N_SIDES> find_kel_points(const search::T_LINE& line) {
  std::array<std::int32_t, N_SIDES> points{};
  real highest = 0;
  real lowest = 0;
  for (std::int32_t i = 1; i <= line.n; ++i) {
    const real high = std::max(line.BEFORE(i), line.AFTER(i));
    const real low = std::min(line.BEFORE(i), line.AFTER(i));
    if (high > highest) {
      highest = high;
      points[MAX_SIDE] = i;
    }
    if (low < lowest) {
      lowest = low;
      points[MIN_SIDE] = i;
    }
  }
  return points;
}

/// Arrays that the lanes of a lane phase share, sized for the longest lane.
struct T_LANE_WORK {
  search::T_ORDINATES LANE_ORD;
  search::T_ORDINATES LANE_ORD_SAVE;  // the lane's own, where class definitions take its place
  std::vector<real> LANE_X;           // positions of the points left
  T_SEARCH_WORK SEARCH_WORK;

  T_LANE_WORK(const kernel::T_MODEL& model, std::int32_t columns) {
    std::int32_t points = 1;
    for (const search::T_LANE& lane : model.LANES) points = std::max(points, lane.LANE_STATIONS + 1);
    LANE_ORD = search::T_ORDINATES(points, columns);
    if (model.HAS_CLASS_LANES()) LANE_ORD_SAVE = LANE_ORD;
    LANE_X.reserve(static_cast<std::size_t>(points));
  }
  [[nodiscard]] search::T_LINE LINE() const noexcept {
    const auto n = static_cast<std::int32_t>(LANE_X.size());
    return LANE_ORD.LINE(TABLE<const real, POINT>(LANE_X.data(), {n}), n);
  }
};

/// One lane of the lane phase.
class LANE_SEARCH {
 public:
  LANE_SEARCH(const kernel::T_MODEL& model, std::int32_t lane, const search::T_LOAD_ORD& LOAD_ORD,
              ROW_LAYOUT layout, T_LANE_WORK& work)
      : model_(model),
        number_(lane),
        lane_(model.LANE(lane)),
        LOAD_ORD_(LOAD_ORD),
        layout_(layout),
        work_(work) {}

  /// Builds the ordinates of an ordinary lane and gives the distances of its ranges.
  std::array<search::T_RANGE_DISTANCES, N_SIDES> BUILD_ORDINATES() {
    search::LANE_ORDINATES(lane_, LOAD_ORD_, work_.LANE_ORD);
    work_.LANE_X.assign(lane_.POINT_X_REAL.begin(), lane_.POINT_X_REAL.end());
    kel_points_ = find_kel_points(work_.LINE());
    if (drops_points()) {
      search::DROP_ROWS(lane_.KEPT, work_.LANE_ORD);
      for (std::size_t i = 0; i < static_cast<std::size_t>(lane_.KEPT.COUNT); ++i) {
        work_.LANE_X[i] = lane_.POINT_X_REAL[static_cast<std::size_t>(lane_.KEPT.SOURCE[i] - 1)];
      }
      work_.LANE_X.resize(static_cast<std::size_t>(lane_.KEPT.COUNT));
    }
    if (model_.HAS_CLASS_LANES()) work_.LANE_ORD_SAVE = work_.LANE_ORD;

    std::array<search::T_RANGE_DISTANCES, N_SIDES> distances;
    const auto range_distances =
        layout_ == ROW_LAYOUT::SIMPLE ? search::RANGE_DISTANCES : search::RANGE_DISTANCES_JUMP;
    range_distances(work_.LINE(), distances);
    return distances;
  }

  /// Searches every class that some combination puts on this lane with a scale other than 0, in the order of
  /// the vehicle columns. A class is searched once, with the values of its first column.
  std::vector<T_CLASS_RESULTS> SEARCH_CLASSES() {
    std::vector<T_CLASS_RESULTS> results;
    const kernel::T_LANE_VEHICLES& vehicles =
        model_.COMBINATIONS.LANE_VEHICLES()[static_cast<std::size_t>(number_ - 1)];
    std::vector<std::int32_t> done;
    for (std::size_t j = 0; j < model_.VEHICLES.size(); ++j) {
      const std::int32_t veh_class = vehicles.NAMED[j] ? model_.VEHICLES[j].VEH_CLASS : 0;
      const bool is_done = std::find(done.begin(), done.end(), veh_class) != done.end();
      if (veh_class == 0 || is_done || !is_in_use(vehicles.SCALED, veh_class)) continue;
      done.push_back(veh_class);
      prepare_class(veh_class);
      const search::T_VEHICLE_PARAMETERS parameters = search::VEHICLE_PARAMETERS(model_.VEHICLES[j]);
      if (parameters.VEHICLE_CODE != search::BS_5400_VEHICLE) continue;
      results.emplace_back();
      results.back().CLASS_SLOT = model_.COMBINATIONS.BOOK().CLASS_SLOT(veh_class);
      search_sub_cases(parameters, results.back());
    }
    return results;
  }

 private:
  [[nodiscard]] bool drops_points() const {
    return layout_ == ROW_LAYOUT::SIMPLE && model_.COUNTS.CLASS_LANES == 0 && !lane_.LANE_KEEP_POINTS;
  }

  [[nodiscard]] bool is_in_use(const kernel::T_COLUMN_SET& scaled, std::int32_t veh_class) const {
    for (std::size_t j = 0; j < model_.VEHICLES.size(); ++j) {
      if (scaled[j] && model_.VEHICLES[j].VEH_CLASS == veh_class) return true;
    }
    return false;
  }

  /// Settles on which ordinates the class is searched. Where the model has axle lists, a class definition
  /// counts only for a class whose list names other lanes (`other_lanes_`); where it has none, the definition
  /// takes the place of the lane's own ordinates. On a straddle lane without axle lists it changes nothing.
  void prepare_class(std::int32_t veh_class) {
    other_lanes_ = false;
    if (model_.AXLE_LANES.EXISTS()) {
      const auto& axle_list = model_.AXLE_LANES.READ(veh_class, number_);
      other_lanes_ = search::LANE_SEQUENCE(axle_list, number_).NAMES_OTHERS();
      return;
    }
    if (!model_.HAS_CLASS_LANES() || lane_.IS_STRADDLE) return;
    const search::T_CLASS_DEFINITION* definition = model_.CLASS_DEFINITIONS.FIND(veh_class, number_);
    if (definition != nullptr) {
      search::CLASS_ORDINATES(*definition, lane_.LANE_STATIONS, LOAD_ORD_, work_.LANE_ORD);
      class_active_ = true;
    } else if (class_active_) {
      work_.LANE_ORD = work_.LANE_ORD_SAVE;
      class_active_ = false;
    }
  }

  void search_sub_cases(const search::T_VEHICLE_PARAMETERS& parameters, T_CLASS_RESULTS& results) {
    const auto layout = static_cast<std::size_t>(layout_);
    for (std::size_t s = 0; s < SEARCH_TABLE.size(); ++s) {
      if (SEARCH_TABLE[s].ON_STRADDLE_LANES != lane_.IS_STRADDLE) continue;
      const SEARCH run =
          other_lanes_ ? SEARCH_TABLE[s].OTHER_LANES[layout] : SEARCH_TABLE[s].OWN_LANE[layout];
      if (run == nullptr) continue;
      run({work_.LINE(), parameters}, work_.SEARCH_WORK, results.SUB_CASE[s].SEARCH);
      if (s == HA_ALONE) results.SUB_CASE[s].KEL_POINT = kel_points_;
    }
  }

  const kernel::T_MODEL& model_;
  const std::int32_t number_;
  const search::T_LANE& lane_;
  const search::T_LOAD_ORD& LOAD_ORD_;
  const ROW_LAYOUT layout_;
  T_LANE_WORK& work_;
  std::array<std::int32_t, N_SIDES> kel_points_{};
  bool other_lanes_ = false;
  bool class_active_ = false;
};

}  // namespace

T_LANE_PHASE RUN_LANE_PHASE(const kernel::T_MODEL& model, const search::T_LOAD_ORD& LOAD_ORD,
                            ROW_LAYOUT layout) {
  T_LANE_PHASE phase;
  T_LANE_WORK work(model, LOAD_ORD.COLUMNS);
  phase.LANES.reserve(model.LANES.size());
  for (std::int32_t lane = 1; lane <= model.COUNTS.NUM_LANE; ++lane) {
    LANE_SEARCH lane_search(model, lane, LOAD_ORD, layout, work);
    if (!model.LANE(lane).IS_STRADDLE) {
      const auto distances = lane_search.BUILD_ORDINATES();
      for (std::size_t side = 0; side < N_SIDES; ++side)
        phase.DISTANCE_RANGE[side].push_back(distances[side]);
    }
    phase.LANES.push_back(lane_search.SEARCH_CLASSES());
  }
  return phase;
}

// ---------------------------------------------------------------------------------------- combinations

namespace {

/// What a lane adds for a code: both sides' values, and how many vehicle columns stand for its class, each of
/// which adds once.
struct T_LANE_EFFECT {
  std::array<real, N_SIDES> VALUE{};
  std::int32_t TIMES = 0;
};

class COMBINATION_SUMS {
 public:
  COMBINATION_SUMS(const kernel::T_MODEL& model, const T_LANE_PHASE& phase)
      : model_(model), phase_(phase), codes_(search::SUB_CASES * classes().size() + 1) {
    effects_.resize(model.LANES.size() * codes_);
    for (std::size_t lane = 0; lane < model.LANES.size(); ++lane) fill_lane(lane);
  }

  /// Adds the lanes of a combination in lane order. The innermost loop of this phase.
  [[nodiscard]] std::array<real, N_SIDES> SUM(const kernel::T_COMBINATION_VIEW& combination) const {
    real highest = 0;
    real lowest = 0;
    const T_LANE_EFFECT* lane_effects = effects_.data();
    const std::size_t lanes = model_.LANES.size();
    for (std::size_t lane = 0; lane < lanes; ++lane, lane_effects += codes_) {
      const kernel::T_SLOT_CODE code = combination.LANE_CODE[lane];
      const real scale = combination.LANE_SCALE[lane];
      if (code == 0 || scale == 0) continue;
      const T_LANE_EFFECT& effect = lane_effects[code];
      for (std::int32_t times = 0; times < effect.TIMES; ++times) {
        highest += effect.VALUE[MAX_SIDE] * scale;
        lowest += effect.VALUE[MIN_SIDE] * scale;
      }
    }
    return {highest, lowest};
  }

  /// The records of one side of a combination that governs it.
  [[nodiscard]] std::vector<kernel::T_LANE_LOADING> RECORDS(const std::vector<kernel::T_SLOT_CODE>& codes,
                                                            const std::vector<real>& scales,
                                                            SIDE side) const {
    std::vector<kernel::T_LANE_LOADING> lanes(model_.LANES.size());
    const T_FILED_RESULT nothing_filed;
    std::int32_t last_class = 0;
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
      const kernel::T_SLOT_CODE code = codes[lane];
      if (code == 0 || scales[lane] == 0 || effects_[lane * codes_ + code].TIMES == 0) continue;
      const std::int32_t class_slot = (code - 1) / search::SUB_CASES + 1;
      const std::int32_t sub_case = (code - 1) % search::SUB_CASES + 1;
      last_class = classes()[static_cast<std::size_t>(class_slot - 1)];
      const T_FILED_RESULT* filed = phase_.FIND(static_cast<std::int32_t>(lane) + 1, class_slot, sub_case);
      fill_records(filed != nullptr ? *filed : nothing_filed, sub_case, scales[lane], side, lanes[lane]);
    }
    for (kernel::T_LANE_LOADING& loading : lanes) {
      loading.MLOAD[0] = last_class;
      for (kernel::T_RECORD& record : loading.MLOADB) record[0] = last_class;
    }
    return lanes;
  }

 private:
  [[nodiscard]] const std::vector<std::int32_t>& classes() const {
    return model_.COMBINATIONS.BOOK().CLASSES();
  }

  void fill_lane(std::size_t lane) {
    T_LANE_EFFECT* effects = effects_.data() + lane * codes_;
    const kernel::T_LANE_VEHICLES& vehicles = model_.COMBINATIONS.LANE_VEHICLES()[lane];
    for (std::size_t j = 0; j < model_.VEHICLES.size(); ++j) {
      if (!vehicles.NAMED[j] || model_.VEHICLES[j].VEH_CLASS == 0) continue;
      const std::int32_t slot = model_.COMBINATIONS.BOOK().CLASS_SLOT(model_.VEHICLES[j].VEH_CLASS);
      for (std::int32_t s = 1; s <= search::SUB_CASES; ++s) {
        ++effects[search::SUB_CASES * (slot - 1) + s].TIMES;
      }
    }
    for (const T_CLASS_RESULTS& results : phase_.LANES[lane]) {
      for (std::int32_t s = 1; s <= search::SUB_CASES; ++s) {
        const search::T_SEARCH_RESULT& filed = results.SUB_CASE[static_cast<std::size_t>(s - 1)].SEARCH;
        effects[search::SUB_CASES * (results.CLASS_SLOT - 1) + s].VALUE = {filed[MAX_SIDE].VALUE,
                                                                           filed[MIN_SIDE].VALUE};
      }
    }
  }

  /// Fields 2 to 8 of the record of a lane, or 2 to 7 of the pair of a straddling HB with two portions.
  static void fill_records(const T_FILED_RESULT& filed, std::int32_t sub_case, real scale, SIDE side,
                           kernel::T_LANE_LOADING& loading) {
    constexpr std::int32_t TWO_PORTIONS = 4;
    constexpr real FACTOR_UNIT = 1e7F;
    const search::T_SIDE_RESULT& result = filed.SEARCH[side];
    const std::int32_t factor = TRUNCATE(static_cast<double>(scale * FACTOR_UNIT));
    const auto record_of = [factor](const search::T_HB_REC& rec, std::int32_t kel_point) {
      return kernel::T_RECORD{0,      rec.W_MILLI, rec.LOADED_COUNT, rec.HB_TYPE, rec.HB_POSITION,
                              factor, rec.HB_CODE, kel_point};
    };
    loading.PASS_OUT = result.PASS_REC;
    if (sub_case != TWO_PORTIONS) {
      loading.MLOAD = record_of(result.HB_REC, filed.KEL_POINT[side]);
      loading.INFL_S = result.INFL_REC;
      return;
    }
    for (std::size_t plane = 0; plane < 2; ++plane) {
      loading.MLOADB[plane] = record_of(result.HB_REC_PLANES[plane], 0);
      loading.INFL_SB[plane] = result.INFL_REC_PLANES[plane];
    }
  }

  const kernel::T_MODEL& model_;
  const T_LANE_PHASE& phase_;
  std::size_t codes_;                   // codes of a lane, the empty one included
  std::vector<T_LANE_EFFECT> effects_;  // by lane, then code
};

/// A side's best combination so far, copied, for the row may be gone by the end.
struct T_GOVERNING {
  real PEAK = 0;
  bool GOVERNS = false;
  std::vector<kernel::T_SLOT_CODE> CODES;
  std::vector<real> SCALES;

  void TAKE(real value, const kernel::T_COMBINATION_VIEW& combination, std::size_t lanes) {
    PEAK = value;
    GOVERNS = true;
    CODES.assign(combination.LANE_CODE, combination.LANE_CODE + lanes);
    SCALES.assign(combination.LANE_SCALE, combination.LANE_SCALE + lanes);
  }
};

}  // namespace

STATUS RUN_COMBINATION_PHASE(const kernel::T_MODEL& model, const T_LANE_PHASE& lane_phase,
                             std::int32_t mv_case, kernel::T_ENVELOPE& envelope) {
  const std::size_t lanes = model.LANES.size();
  const COMBINATION_SUMS sums(model, lane_phase);
  std::array<T_GOVERNING, N_SIDES> governing;
  kernel::T_COMBINATION_CURSOR cursor(model.COMBINATIONS);
  if (STATUS status = cursor.BEGIN(mv_case); !status.OK()) return status;
  for (std::int32_t c = 0; c < cursor.COUNT(); ++c) {
    kernel::T_COMBINATION_VIEW combination;
    if (STATUS status = cursor.NEXT(combination); !status.OK()) return status;
    const auto [highest, lowest] = sums.SUM(combination);
    if (highest > governing[MAX_SIDE].PEAK) governing[MAX_SIDE].TAKE(highest, combination, lanes);
    if (governing[MIN_SIDE].PEAK > lowest) governing[MIN_SIDE].TAKE(lowest, combination, lanes);
  }

  envelope.SEARCHED = true;
  envelope.FINAL_MAX = static_cast<double>(governing[MAX_SIDE].PEAK);
  envelope.FINAL_MIN = static_cast<double>(governing[MIN_SIDE].PEAK);
  for (const SIDE side : {MAX_SIDE, MIN_SIDE}) {
    const T_GOVERNING& best = governing[side];
    if (best.GOVERNS) envelope.LANES[side] = sums.RECORDS(best.CODES, best.SCALES, side);
    envelope.DISTANCE_RANGE[side] = lane_phase.DISTANCE_RANGE[side];
  }
  return {};
}

}  // namespace results
