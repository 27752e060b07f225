#include <algorithm>

#include "results/result_skeleton.h"
#include "search/ha_search.h"
#include "search/hb_placing.h"
#include "search/ordinate_sets.h"

namespace results {

const T_FILED_RESULT* T_LANE_PHASE::FIND(std::int32_t lane, std::int32_t class_slot,
                                         std::int32_t sub_case) const {
  for (const T_CLASS_RESULTS& results : LANES[static_cast<std::size_t>(lane - 1)]) {
    if (results.CLASS_SLOT == class_slot) return &results.SUB_CASE[static_cast<std::size_t>(sub_case - 1)];
  }
  return nullptr;
}

namespace {

// ------------------------------------------------------------------------------------------ the searches

using SEARCH = void (*)(const search::T_HB_INPUT&, search::T_HB_WORK&, search::T_SEARCH_RESULT&);
using HA_LANE_SEARCH = search::T_HA_RESULT (*)(const search::T_LINE&, const search::T_HA_CURVE&, real,
                                               search::T_RANGE_WORK&);

/// HA alone, in the form of the other searches.
template <HA_LANE_SEARCH HA_SEARCH>
void search_ha(const search::T_HB_INPUT& input, search::T_HB_WORK& work, search::T_SEARCH_RESULT& result) {
  constexpr std::int32_t WHOLE_LANE_PASS = 1;
  const search::T_LINE line = input.OWN->front().LINE(input.LANE_X, input.n);
  const search::T_HA_RESULT found =
      HA_SEARCH(line, input.VEHICLE->HA_CURVE, input.VEHICLE->KEL_LOAD, work.RANGES[0]);
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

/// The searches of a sub-case by layout: with all axles on the lane itself,
/// and for a class whose axle list names other lanes.
struct T_SUB_CASE {
  bool ON_STRADDLE_LANES;
  SEARCH OWN_LANE[2];
  SEARCH OTHER_LANES[2];
};
constexpr SEARCH HA_LANE = search_ha<search::HA_SEARCH_LANE>;
constexpr SEARCH HA_LANE_JUMP = search_ha<search::HA_SEARCH_LANE_JUMP>;
constexpr std::size_t HA_ALONE = 0;
constexpr std::array<T_SUB_CASE, search::SUB_CASES> SEARCH_TABLE{{
    // HA alone; an axle list makes no difference.
    {false, {HA_LANE, HA_LANE_JUMP}, {HA_LANE, HA_LANE_JUMP}},
    // HB in the lane, HA beside it.
    {false, {search::HB_LANE, search::HB_LANE_JUMP}, {search::HB_LANE_MULTI, search::HB_LANE_MULTI_JUMP}},
    // HB across two parent lanes, full HA UDL on both.
    {true,
     {search::HB_STRADDLE_SUM, search::HB_STRADDLE_SUM_JUMP},
     {search::HB_STRADDLE_SUM_MULTI, search::HB_STRADDLE_SUM_MULTI_JUMP}},
    // The same with full HA UDL on one of them and a third of it on the other.
    {true,
     {search::HB_STRADDLE_THIRD, search::HB_STRADDLE_THIRD_JUMP},
     {search::HB_STRADDLE_THIRD_MULTI, search::HB_STRADDLE_THIRD_MULTI_JUMP}},
}};

// ------------------------------------------------------------------------------------------ the lanes

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

/// Planes with room for a number of points; what they hold is left to whoever fills them.
void size_planes(std::size_t count, std::int32_t points, std::int32_t columns,
                 std::vector<search::T_ORDINATES>& planes) {
  planes.resize(count);
  for (search::T_ORDINATES& plane : planes) {
    if (plane.POINTS() != points || plane.COLUMNS() != columns) plane = search::T_ORDINATES(points, columns);
  }
}

/// Arrays that the lanes of a lane phase share.
struct T_LANE_WORK {
  std::int32_t COLUMNS = 1;
  std::vector<search::T_ORDINATES> LANE_ORD;  // the lane's own: one plane, or those of a straddle lane
  search::T_ORDINATES LANE_ORD_SAVE;          // where class definitions take the place of the lane's own
  search::T_PLANE_SETS MULTI_ORD;             // sets of the lanes that a class's axles run on
  std::vector<real> LANE_X;                   // positions of the points left
  search::T_HB_WORK SEARCH_WORK;

  [[nodiscard]] TABLE<const real, POINT> X() const noexcept { return {LANE_X.data(), {N()}}; }
  [[nodiscard]] std::int32_t N() const noexcept { return static_cast<std::int32_t>(LANE_X.size()); }
  [[nodiscard]] search::T_LINE LINE() const noexcept { return LANE_ORD.front().LINE(X(), N()); }
};

/// One lane of the lane phase.
class LANE_SEARCH {
 public:
  LANE_SEARCH(const kernel::T_MODEL& model, std::int32_t mv_case, std::int32_t lane,
              const search::T_LOAD_ORD& LOAD_ORD, ROW_LAYOUT layout, const T_SET_LISTING* listing,
              T_LANE_WORK& work)
      : model_(model),
        mv_case_(mv_case),
        number_(lane),
        lane_(model.LANE(lane)),
        LOAD_ORD_(LOAD_ORD),
        layout_(layout),
        listing_(listing),
        work_(work) {}

  void BUILD_ORDINATES() {
    size_planes(planes(), lane_.LANE_STATIONS, work_.COLUMNS, work_.LANE_ORD);
    work_.LANE_X.assign(lane_.POINT_X_REAL.begin(), lane_.POINT_X_REAL.end());
    if (lane_.IS_STRADDLE) {
      search::PLANE_ORDINATES(lane_, LOAD_ORD_, work_.LANE_ORD);
    } else {
      search::LANE_ORDINATES(lane_, LOAD_ORD_, work_.LANE_ORD.front());
      kel_points_ = find_kel_points(work_.LINE());
    }
    if (drops_points()) {
      for (search::T_ORDINATES& plane : work_.LANE_ORD) search::DROP_ROWS(lane_.KEPT, plane);
      for (std::size_t i = 0; i < static_cast<std::size_t>(lane_.KEPT.COUNT); ++i) {
        work_.LANE_X[i] = lane_.POINT_X_REAL[static_cast<std::size_t>(lane_.KEPT.SOURCE[i] - 1)];
      }
      work_.LANE_X.resize(static_cast<std::size_t>(lane_.KEPT.COUNT));
    }
    if (model_.HAS_CLASS_LANES()) work_.LANE_ORD_SAVE = work_.LANE_ORD.front();
  }

  /// The ranges of an ordinary lane, as the host gets them;
  /// their counts serve the numbering after a reverse pass.
  const std::array<search::T_RANGE_DISTANCES, N_SIDES>& FIND_DISTANCES() {
    const auto range_distances =
        layout_ == ROW_LAYOUT::SIMPLE ? search::RANGE_DISTANCES : search::RANGE_DISTANCES_JUMP;
    range_distances(work_.LINE(), distances_);
    return distances_;
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
  [[nodiscard]] std::size_t planes() const {
    return lane_.IS_STRADDLE ? static_cast<std::size_t>(lane_.N_PLANE()) : 1;
  }
  /// Repeated points go, but on lanes that keep theirs.
  [[nodiscard]] bool drops_repeats() const {
    return layout_ == ROW_LAYOUT::SIMPLE && model_.COUNTS.CLASS_LANES == 0;
  }
  [[nodiscard]] bool drops_points() const { return drops_repeats() && !lane_.LANE_KEEP_POINTS; }

  [[nodiscard]] bool is_in_use(const kernel::T_COLUMN_SET& scaled, std::int32_t veh_class) const {
    for (std::size_t j = 0; j < model_.VEHICLES.size(); ++j) {
      if (scaled[j] && model_.VEHICLES[j].VEH_CLASS == veh_class) return true;
    }
    return false;
  }

  /// Settles on which ordinates the class is searched. Where the model has axle lists, a class definition
  /// counts only for a class whose list names other lanes; where it has none, the definition takes the place
  /// of the lane's own ordinates. On a straddle lane without axle lists it changes nothing.
  void prepare_class(std::int32_t veh_class) {
    const search::T_CLASS_DEFINITION* definition =
        model_.HAS_CLASS_LANES() ? model_.CLASS_DEFINITIONS.FIND(veh_class, number_) : nullptr;
    if (model_.AXLE_LANES.EXISTS()) {
      sequence_ = search::LANE_SEQUENCE(model_.AXLE_LANES.READ(veh_class, number_), number_);
      if (sequence_.NAMES_OTHERS()) fill_sets(veh_class, definition);
      return;
    }
    if (lane_.IS_STRADDLE) return;
    if (definition != nullptr) {
      search::CLASS_ORDINATES(*definition, lane_.LANE_STATIONS, LOAD_ORD_, work_.LANE_ORD.front());
      class_active_ = true;
    } else if (class_active_) {
      work_.LANE_ORD.front() = work_.LANE_ORD_SAVE;
      class_active_ = false;
    }
  }

  /// The ordinate sets of a class whose axles run on other lanes too; the lane's own is the first.
  void fill_sets(std::int32_t veh_class, const search::T_CLASS_DEFINITION* definition) {
    size_sets(work_.MULTI_ORD);
    if (definition == nullptr) {
      work_.MULTI_ORD.front() = work_.LANE_ORD;
      search::OTHER_LANE_ORDINATES(model_.LANES, sequence_, LOAD_ORD_, lane_.IS_STRADDLE, drops_repeats(),
                                   work_.MULTI_ORD);
      return;
    }
    fill_class_sets(veh_class, *definition, LOAD_ORD_, work_.MULTI_ORD);
    if (listing_ == nullptr || !lane_.IS_STRADDLE) return;
    search::T_PLANE_SETS listed;
    size_sets(listed);
    fill_class_sets(veh_class, *definition, listing_->LOAD_ORD, listed);
    WRITE_SET_LIST(listed, work_.X(), *listing_->UNIT_78);
  }

  void size_sets(search::T_PLANE_SETS& sets) const {
    sets.resize(sequence_.LANES.size());
    for (std::size_t set = 0; set < sets.size(); ++set) {
      // Another lane's set is filled at its own points and read at this lane's.
      const std::int32_t points =
          std::max(lane_.LANE_STATIONS, model_.LANE(sequence_.LANES[set]).LANE_STATIONS);
      size_planes(planes(), points, work_.COLUMNS, sets[set]);
    }
  }

  void fill_class_sets(std::int32_t veh_class, const search::T_CLASS_DEFINITION& definition,
                       const search::T_LOAD_ORD& LOAD_ORD, search::T_PLANE_SETS& sets) const {
    if (lane_.IS_STRADDLE) {
      search::CLASS_PLANES(definition, lane_.LANE_STATIONS, LOAD_ORD, sets.front());
    } else {
      search::CLASS_ORDINATES(definition, lane_.LANE_STATIONS, LOAD_ORD, sets.front().front());
    }
    search::OTHER_LANE_CLASS_ORDINATES(model_.LANES, sequence_, LOAD_ORD, lane_.IS_STRADDLE,
                                       model_.CLASS_DEFINITIONS, veh_class, sets);
  }

  void search_sub_cases(const search::T_VEHICLE_PARAMETERS& parameters, T_CLASS_RESULTS& results) {
    const auto layout = static_cast<std::size_t>(layout_);
    const bool other_lanes = sequence_.NAMES_OTHERS();
    search::T_HB_INPUT input{work_.N(), work_.X(), &work_.LANE_ORD, {}, &parameters, lane_.LANE_DIRECTION,
                             number_};
    for (std::size_t s = 0; s < SEARCH_TABLE.size(); ++s) {
      if (SEARCH_TABLE[s].ON_STRADDLE_LANES != lane_.IS_STRADDLE) continue;
      // What no combination of the case puts here, none picks up.
      const std::size_t slot_code =
          search::SUB_CASES * static_cast<std::size_t>(results.CLASS_SLOT - 1) + s + 1;
      if (!model_.COMBINATIONS.LOADS(mv_case_, number_, static_cast<kernel::T_SLOT_CODE>(slot_code)))
        continue;
      T_FILED_RESULT& filed = results.SUB_CASE[s];
      if (s == HA_ALONE) filed.KEL_POINT = kel_points_;
      if (s != HA_ALONE && other_lanes) {
        input.OWN = &work_.MULTI_ORD.front();
        for (std::size_t j = 0; j < search::HB_AXLES; ++j) {
          input.AXLES[j] = &work_.MULTI_ORD[sequence_.AXLE_SET[j]];
        }
      }
      const SEARCH run = other_lanes ? SEARCH_TABLE[s].OTHER_LANES[layout] : SEARCH_TABLE[s].OWN_LANE[layout];
      run(input, work_.SEARCH_WORK, filed.SEARCH);
      if (s != HA_ALONE) renumber(filed.SEARCH);
    }
  }

  /// A reverse pass has numbered its ranges from the lane's other end. An ordinary lane's count is that of
  /// its reported ranges; a straddle lane has none, and takes what the kept placement's own search numbered.
  void renumber(search::T_SEARCH_RESULT& result) const {
    constexpr std::int32_t REVERSE_PASS = 2;
    const auto turn_round = [](std::vector<std::int32_t>& numbers, std::int32_t count) {
      for (std::int32_t& number : numbers) number = count - number + 1;
    };
    for (std::size_t side = 0; side < N_SIDES; ++side) {
      search::T_SIDE_RESULT& best = result[side];
      if (best.PASS_REC != REVERSE_PASS) continue;
      turn_round(best.INFL_REC, lane_.IS_STRADDLE ? best.HB_REC.NUMBERED : distances_[side].RANGE_COUNT);
      for (std::size_t parent = 0; parent < best.HB_REC_PLANES.size(); ++parent) {
        turn_round(best.INFL_REC_PLANES[parent], best.HB_REC_PLANES[parent].NUMBERED);
      }
    }
  }

  const kernel::T_MODEL& model_;
  const std::int32_t mv_case_;
  const std::int32_t number_;
  const search::T_LANE& lane_;
  const search::T_LOAD_ORD& LOAD_ORD_;
  const ROW_LAYOUT layout_;
  const T_SET_LISTING* const listing_;
  T_LANE_WORK& work_;
  std::array<search::T_RANGE_DISTANCES, N_SIDES> distances_;
  std::array<std::int32_t, N_SIDES> kel_points_{};
  search::T_LANE_SEQUENCE sequence_;  // of the class in hand
  bool class_active_ = false;
};

}  // namespace

T_LANE_PHASE RUN_LANE_PHASE(const kernel::T_MODEL& model, std::int32_t mv_case,
                            const search::T_LOAD_ORD& LOAD_ORD, ROW_LAYOUT layout,
                            const T_SET_LISTING* listing) {
  T_LANE_PHASE phase;
  phase.LAYOUT = layout;
  T_LANE_WORK work;
  work.COLUMNS = LOAD_ORD.COLUMNS;
  phase.LANES.reserve(model.LANES.size());
  for (std::int32_t lane = 1; lane <= model.COUNTS.NUM_LANE; ++lane) {
    LANE_SEARCH lane_search(model, mv_case, lane, LOAD_ORD, layout, listing, work);
    lane_search.BUILD_ORDINATES();
    if (!model.LANE(lane).IS_STRADDLE) {
      const auto& distances = lane_search.FIND_DISTANCES();
      for (std::size_t side = 0; side < N_SIDES; ++side)
        phase.DISTANCE_RANGE[side].push_back(distances[side]);
    }
    phase.LANES.push_back(lane_search.SEARCH_CLASSES());
  }
  return phase;
}

}  // namespace results
