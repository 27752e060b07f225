#include "search/ha_search.h"

#include <algorithm>

namespace search {
namespace {

struct T_PEAKS {
  real HIGHEST = 0;  // never below 0
  real LOWEST = 0;   // never above 0
};

/// Peaks of one column. Four independent chains, for one chain of comparisons would wait for itself; the
/// order in which values are compared doesn't matter to an extreme.
void widen_peaks(TABLE<const real, POINT> ordinates, std::int32_t n, T_PEAKS& peaks) {
  constexpr std::int32_t CHAINS = 4;
  real high[CHAINS] = {peaks.HIGHEST};
  real low[CHAINS] = {peaks.LOWEST};
  const auto compare = [&](std::int32_t chain, real y) {
    high[chain] = y > high[chain] ? y : high[chain];
    low[chain] = y < low[chain] ? y : low[chain];
  };
  std::int32_t i = 1;
  for (; i + CHAINS - 1 <= n; i += CHAINS) {
    for (std::int32_t chain = 0; chain < CHAINS; ++chain) compare(chain, ordinates(i + chain));
  }
  for (; i <= n; ++i) compare(0, ordinates(i));
  peaks.HIGHEST = *std::max_element(high, high + CHAINS);
  peaks.LOWEST = *std::min_element(low, low + CHAINS);
}

T_PEAKS find_peaks(const T_LINE& line) {
  T_PEAKS peaks;
  widen_peaks(line.BEFORE, line.n, peaks);
  if (line.TWO_COLUMNS) widen_peaks(line.AFTER, line.n, peaks);
  return peaks;
}

/// Ranks the ranges of a side and walks the prefixes of the ranking. The loaded length starts at
/// `initial_length`; ranges no longer than `short_range` have the mean 0, for their quotient means nothing.
T_HA_SIDE best_prefix(T_RANGE_LIST& ranges, SIDE side, const T_HA_CURVE& curve, real initial_length,
                      real short_range) {
  const std::int32_t count = ranges.COUNT;
  for (std::int32_t r = 0; r < count; ++r) {
    const auto at = static_cast<std::size_t>(r);
    const real length = ranges.RANGE_LENGTH[at];
    const bool has_mean = short_range > 0 ? length > short_range : length != 0;
    ranges.RANGE_MEAN[at] = has_mean ? ranges.RANGE_AREA[at] / length : 0.0F;
    ranges.RANGE_NUMBER[at] = r + 1;
  }
  SORT_RANGE_MEANS(count, ranges.RANGE_MEAN.data(), ranges.RANGE_NUMBER.data(), side == MIN_SIDE,
                   ranges.SORT_WORK);

  T_HA_SIDE best;
  real best_intensity = 0;
  real area = 0;
  real length = initial_length;
  for (std::int32_t j = 1; j <= count; ++j) {
    const auto range = static_cast<std::size_t>(ranges.RANGE_NUMBER[static_cast<std::size_t>(j - 1)] - 1);
    area += ranges.RANGE_AREA[range];
    length += ranges.RANGE_LENGTH[range];
    const real intensity = HA_INTENSITY(length, curve);
    const real effect = area * intensity;
    const bool better = side == MAX_SIDE ? effect > best.VALUE : effect < best.VALUE;
    if (better) {
      best.VALUE = effect;
      best.LOADED_COUNT = j;
      best_intensity = intensity;
    }
  }
  if (best.LOADED_COUNT > 0) best.W_MILLI = W_MILLI(best_intensity);
  best.LOADED_COUNT = std::min(best.LOADED_COUNT, MAX_LOADED);
  best.RANGES = ranges.RANGE_NUMBER.data();
  return best;
}

T_HA_RESULT best_prefixes(T_RANGE_WORK& work, const T_HA_CURVE& curve, real initial_length,
                          real short_range) {
  return {best_prefix(work.SIDES[MAX_SIDE], MAX_SIDE, curve, initial_length, short_range),
          best_prefix(work.SIDES[MIN_SIDE], MIN_SIDE, curve, initial_length, short_range)};
}

template <LAYOUT L>
T_HA_RESULT search_lane(const T_LINE& line, const T_HA_CURVE& curve, real kel_load, T_RANGE_WORK& work) {
  const T_PEAKS peaks = find_peaks(line);
  CUT_RANGES<L>(line, work);
  T_HA_RESULT result = best_prefixes(work, curve, 0, 0);
  result[MAX_SIDE].VALUE = peaks.HIGHEST * kel_load + result[MAX_SIDE].VALUE;
  result[MIN_SIDE].VALUE = peaks.LOWEST * kel_load + result[MIN_SIDE].VALUE;
  return result;
}

template <LAYOUT L>
void cut_beside_zone(const T_LINE& line, const T_ZONE_PLACE& zone, T_RANGE_WORK& work,
                     const T_HA_BOUNDS* known) {
  if (known == nullptr) {
    CUT_RANGES_BESIDE_ZONE<L>(line, zone, work);
  } else {
    known->RANGES_BESIDE<L>(line, zone, known->CUT<L>(line, zone), work);
  }
}

}  // namespace

template <LAYOUT L>
T_HA_RESULT HA_SEARCH_ZONE_OF(const T_LINE& line, const T_HA_CURVE& curve, const T_ZONE_PLACE& zone,
                              real vehicle_length, T_RANGE_WORK& work, const T_HA_BOUNDS* known) {
  cut_beside_zone<L>(line, zone, work, known);
  return best_prefixes(work, curve, vehicle_length, 0);
}

template <LAYOUT L>
T_HA_PAIR HA_SEARCH_ZONE_PAIR_OF(const T_LINE& a, const T_LINE& b, const T_HA_CURVE& curve,
                                 const T_ZONE_PLACE& zone, real vehicle_length, T_RANGE_WORK& work_a,
                                 T_RANGE_WORK& work_b, const T_HA_BOUNDS* known_a,
                                 const T_HA_BOUNDS* known_b) {
  const auto search_set = [&](const T_LINE& line, T_RANGE_WORK& work, const T_HA_BOUNDS* known) {
    cut_beside_zone<L>(line, zone, work, known);
    return best_prefixes(work, curve, vehicle_length, L::SHORT_RANGE);
  };
  return {search_set(a, work_a, known_a), search_set(b, work_b, known_b)};
}

T_HA_RESULT HA_SEARCH_LANE(const T_LINE& line, const T_HA_CURVE& curve, real kel_load, T_RANGE_WORK& work) {
  return search_lane<SIMPLE_LAYOUT>(line, curve, kel_load, work);
}

T_HA_RESULT HA_SEARCH_LANE_JUMP(const T_LINE& line, const T_HA_CURVE& curve, real kel_load,
                                T_RANGE_WORK& work) {
  return search_lane<JUMP_LAYOUT>(line, curve, kel_load, work);
}

T_HA_RESULT HA_SEARCH_ZONE(const T_LINE& line, const T_HA_CURVE& curve, const T_ZONE_PLACE& zone,
                           real vehicle_length, T_RANGE_WORK& work) {
  return HA_SEARCH_ZONE_OF<SIMPLE_LAYOUT>(line, curve, zone, vehicle_length, work);
}

T_HA_RESULT HA_SEARCH_ZONE_JUMP(const T_LINE& line, const T_HA_CURVE& curve, const T_ZONE_PLACE& zone,
                                real vehicle_length, T_RANGE_WORK& work) {
  return HA_SEARCH_ZONE_OF<JUMP_LAYOUT>(line, curve, zone, vehicle_length, work);
}

T_HA_PAIR HA_SEARCH_ZONE_PAIR(const T_LINE& a, const T_LINE& b, const T_HA_CURVE& curve,
                              const T_ZONE_PLACE& zone, real vehicle_length, T_RANGE_WORK& work_a,
                              T_RANGE_WORK& work_b) {
  return HA_SEARCH_ZONE_PAIR_OF<SIMPLE_LAYOUT>(a, b, curve, zone, vehicle_length, work_a, work_b);
}

T_HA_PAIR HA_SEARCH_ZONE_PAIR_JUMP(const T_LINE& a, const T_LINE& b, const T_HA_CURVE& curve,
                                   const T_ZONE_PLACE& zone, real vehicle_length, T_RANGE_WORK& work_a,
                                   T_RANGE_WORK& work_b) {
  return HA_SEARCH_ZONE_PAIR_OF<JUMP_LAYOUT>(a, b, curve, zone, vehicle_length, work_a, work_b);
}

template T_HA_RESULT HA_SEARCH_ZONE_OF<SIMPLE_LAYOUT>(const T_LINE&, const T_HA_CURVE&, const T_ZONE_PLACE&,
                                                      real, T_RANGE_WORK&, const T_HA_BOUNDS*);
template T_HA_RESULT HA_SEARCH_ZONE_OF<JUMP_LAYOUT>(const T_LINE&, const T_HA_CURVE&, const T_ZONE_PLACE&,
                                                    real, T_RANGE_WORK&, const T_HA_BOUNDS*);
template T_HA_PAIR HA_SEARCH_ZONE_PAIR_OF<SIMPLE_LAYOUT>(const T_LINE&, const T_LINE&, const T_HA_CURVE&,
                                                         const T_ZONE_PLACE&, real, T_RANGE_WORK&,
                                                         T_RANGE_WORK&, const T_HA_BOUNDS*,
                                                         const T_HA_BOUNDS*);
template T_HA_PAIR HA_SEARCH_ZONE_PAIR_OF<JUMP_LAYOUT>(const T_LINE&, const T_LINE&, const T_HA_CURVE&,
                                                       const T_ZONE_PLACE&, real, T_RANGE_WORK&,
                                                       T_RANGE_WORK&, const T_HA_BOUNDS*, const T_HA_BOUNDS*);

}  // namespace search
