#include "results/result_skeleton.h"

namespace results {

namespace {

/// What a lane adds for a code: both sides' values, and how many
/// vehicle columns stand for its class, each of which adds once.
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
  envelope.STRADDLE_POINTS = lane_phase.LAYOUT == ROW_LAYOUT::JUMP;
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
