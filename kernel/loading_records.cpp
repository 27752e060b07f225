#include "kernel/loading_records.h"

#include <algorithm>
#include <span>

#include "search/trimming.h"

namespace kernel {
namespace {

std::int32_t lanes_of(const T_ENVELOPE& envelope) {
  return static_cast<std::int32_t>(envelope.LANES[0].size());
}

void copy_record(const T_RECORD& record, TABLE<std::int32_t, FIELD, LANE> target, std::int32_t lane) {
  for (std::int32_t field = 1; field <= static_cast<std::int32_t>(RECORD_FIELDS); ++field) {
    target(field, lane) = record[static_cast<std::size_t>(field - 1)];
  }
}

/// The first 500 entries of a host's list: the numbers in use, zeros behind.
void copy_numbers(std::span<const std::int32_t> numbers, TABLE<std::int32_t, NUMBER, LANE> target,
                  std::int32_t lane) {
  const auto used = static_cast<std::int32_t>(numbers.size());
  for (std::int32_t i = 1; i <= search::MAX_LOADED; ++i) {
    target(i, lane) = i <= used ? numbers[static_cast<std::size_t>(i - 1)] : 0;
  }
}

template <class T, class... DIMENSIONS>
void clear(TABLE<T, DIMENSIONS...> table) {
  std::fill(table.begin(), table.end(), T{});
}

/// Gives what stands in one column of `from` to another column of `to`.
template <class T, class DIMENSION>
void give_column(TABLE<T, DIMENSION, LANE> from, std::int32_t from_lane, TABLE<T, DIMENSION, LANE> to,
                 std::int32_t to_lane) {
  for (std::int32_t i = 1; i <= from.EXTENT(0); ++i) to(i, to_lane) = from(i, from_lane);
}

}  // namespace

void COPY_TO_HOST(const T_ENVELOPE& envelope, const T_HOST_RECORDS& host) {
  for (std::size_t side = 0; side < N_SIDES; ++side) {
    const T_HOST_SIDE& target = host[side];
    clear(target.DISTANCE_RANGE);
    for (std::size_t plane = 0; plane < 2; ++plane) {
      clear(target.K_MLOADB[plane]);
      clear(target.K_INFL_SB[plane]);
    }
    for (std::int32_t lane = 1; lane <= lanes_of(envelope); ++lane) {
      const T_LANE_LOADING& loading = envelope.LANES[side][static_cast<std::size_t>(lane - 1)];
      copy_record(loading.MLOAD, target.K_MLOAD, lane);
      copy_numbers(loading.INFL_S, target.K_INFL_S, lane);
      for (std::size_t plane = 0; plane < 2; ++plane) {
        copy_record(loading.MLOADB[plane], target.K_MLOADB[plane], lane);
        copy_numbers(loading.INFL_SB[plane], target.K_INFL_SB[plane], lane);
      }
    }
    std::int32_t lane = 0;
    for (const search::T_RANGE_DISTANCES& ranges : envelope.DISTANCE_RANGE[side]) {
      ++lane;
      std::int32_t at = 0;
      for (const auto& [start, end] : ranges.PAIRS) {
        target.DISTANCE_RANGE(++at, lane) = start;
        target.DISTANCE_RANGE(++at, lane) = end;
      }
    }
  }
}

void FOLD_STRADDLE_LANES(const std::vector<search::T_LANE>& lanes, T_ENVELOPE& envelope,
                         const T_HOST_RECORDS& host) {
  for (std::size_t s = 0; s < lanes.size(); ++s) {
    if (!lanes[s].IS_STRADDLE) continue;
    const auto straddle = static_cast<std::int32_t>(s) + 1;
    const std::array<std::int32_t, 2> parents{lanes[s].STRADDLE_LEFT, lanes[s].STRADDLE_RIGHT};
    for (std::size_t side = 0; side < N_SIDES; ++side) {
      const T_LANE_LOADING& loading = envelope.LANES[side][s];
      constexpr std::size_t UDL = W_HA_UDL - 1;
      if (loading.MLOADB[0][UDL] < 1 || loading.MLOADB[1][UDL] < 1) continue;
      for (std::size_t plane = 0; plane < 2; ++plane) {
        const std::int32_t parent = parents[plane];
        envelope.LANES[side][static_cast<std::size_t>(parent - 1)].PASS_OUT = loading.PASS_OUT;
        give_column(host[side].K_MLOADB[plane], straddle, host[side].K_MLOAD, parent);
        give_column(host[side].K_INFL_SB[plane], straddle, host[side].K_INFL_S, parent);
      }
    }
  }
}

namespace {

/// How many of the ordinary lanes carry an HB, and how many the full HA UDL.
struct T_LANE_KINDS {
  std::int32_t N_HB = 0;
  std::int32_t N_FULL = 0;
  std::int32_t BAD_DIGITS = 0;
};

T_LANE_KINDS count_lane_kinds(TABLE<std::int32_t, FIELD, LANE> records, std::int32_t ordinary_lanes) {
  T_LANE_KINDS kinds;
  bool full = false;  // carried on to the next lane by a digit that says neither
  for (std::int32_t lane = 1; lane <= ordinary_lanes; ++lane) {
    const std::int32_t digit = records(HA_UDL_PORTION, lane) % 10;
    if (digit == 0 || digit == 1) {
      full = digit == 1;
    } else {
      ++kinds.BAD_DIGITS;
    }
    if (records(TYPE_OF_HB, lane) != 0 && records(POSITION_OF_HB, lane) != 0) ++kinds.N_HB;
    if (full) ++kinds.N_FULL;
  }
  return kinds;
}

void set_combination_type(TABLE<std::int32_t, FIELD, LANE> records, std::int32_t ordinary_lanes,
                          const T_LANE_KINDS& kinds) {
  for (std::int32_t lane = 1; lane <= ordinary_lanes; ++lane) {
    if (kinds.N_HB == 0) {
      records(COMB_TYPE, lane) = 1;
    } else if (kinds.N_HB == 1) {
      records(HA_UDL_PORTION, lane) = 1;
      records(COMB_TYPE, lane) = 2;
    } else if (kinds.N_HB == 2 && kinds.N_FULL == 0) {
      records(COMB_TYPE, lane) = 3;
      records(HA_UDL_PORTION, lane) += 1;
    } else if (kinds.N_HB == 2 && kinds.N_FULL == 1) {
      records(COMB_TYPE, lane) = 4;
    }
  }
}

/// From a position counted without the repeated points
/// at segment ends to the lane's own numbering, which keeps them.
void expand_positions(TABLE<std::int32_t, FIELD, LANE> records, std::int32_t ordinary_lanes,
                      std::int32_t points_per_segment) {
  for (std::int32_t lane = 1; lane <= ordinary_lanes; ++lane) {
    const std::int32_t type = records(COMB_TYPE, lane);
    std::int32_t& position = records(POSITION_OF_HB, lane);
    if (type >= 2 && type <= 4 && position != 0) position += (position - 1) / (points_per_segment - 1);
  }
}

}  // namespace

std::int32_t CHECK_LOAD_COMBINATION(const T_HOST_RECORDS& host, std::int32_t num_lane,
                                    std::int32_t n_straddle, const T_POINT_RULES& rules) {
  const std::int32_t ordinary_lanes = num_lane - n_straddle;
  // Segments of one point arise only from a lane whose first
  // two points coincide or that has one: nothing to expand.
  const bool expands =
      !rules.SECTION_ITEM && !rules.KEEP_POINTS && !rules.CLASS_LANES && rules.POINTS_PER_SEGMENT != 1;
  std::int32_t bad_digits = 0;
  for (const T_HOST_SIDE& side : host) {
    const T_LANE_KINDS kinds = count_lane_kinds(side.K_MLOAD, ordinary_lanes);
    bad_digits += kinds.BAD_DIGITS;
    set_combination_type(side.K_MLOAD, ordinary_lanes, kinds);
    if (expands) expand_positions(side.K_MLOAD, ordinary_lanes, rules.POINTS_PER_SEGMENT);
    for (std::int32_t lane = ordinary_lanes + 1; lane <= num_lane; ++lane) {
      std::int32_t& portion = side.K_MLOAD(HA_UDL_PORTION, lane);
      if (portion == 0) continue;
      side.K_MLOAD(COMB_TYPE, lane) = 3;
      const std::int64_t code = portion;
      portion = static_cast<std::int32_t>((code / 100) * 10000 + (code % 10) * 10 + 1);
    }
  }
  return bad_digits;
}

namespace {

/// Length of an HB zone by the numbers of the vehicle table's column VEHI_NO, in double precision. A column
/// that isn't there counts 0.
double zone_length(const std::vector<search::T_VEHICLE>& vehicles, std::int32_t vehi_no, std::int32_t type) {
  constexpr double BOTH_CLEAR_DISTANCES = 50.0;
  const auto column = static_cast<std::size_t>(vehi_no - 1);
  const bool is_there = vehi_no >= 1 && column < vehicles.size();
  const auto geometry = [&](std::size_t entry) {
    return is_there ? static_cast<double>(vehicles[column].VEHICLE_GEOM[entry - 1]) : 0.0;
  };
  return BOTH_CLEAR_DISTANCES + 2 * geometry(2) + geometry(3) + (type - 1) * geometry(4);
}

}  // namespace

void TRIM_RECORDS(const T_TRIM_TABLES& tables, const T_ENVELOPE& envelope, const T_HOST_RECORDS& host) {
  constexpr std::int32_t FORWARD_PASS = 1;
  search::T_REPORTED_RANGES ranges;
  for (std::size_t side = 0; side < N_SIDES; ++side) {
    const T_HOST_SIDE& target = host[side];
    for (std::int32_t lane = 1; lane <= lanes_of(envelope); ++lane) {
      const std::int32_t type = target.K_MLOAD(TYPE_OF_HB, lane);
      const std::int32_t position = target.K_MLOAD(POSITION_OF_HB, lane);
      if (type == 0 || position < 1 || position > tables.MAX_POINTS + 1) continue;
      const search::T_LANE& points = tables.LANES[static_cast<std::size_t>(lane - 1)];
      const bool is_known =
          position <= points.LANE_STATIONS && (!points.IS_STRADDLE || envelope.STRADDLE_POINTS);
      const real x = is_known ? points.POINT_X_REAL[static_cast<std::size_t>(position - 1)] : 0.0F;
      const double length = zone_length(tables.VEHICLES, target.K_MLOAD(VEHI_NO, lane), type);
      const T_LANE_LOADING& loading = envelope.LANES[side][static_cast<std::size_t>(lane - 1)];
      const bool forward = loading.PASS_OUT == FORWARD_PASS;
      const auto there = static_cast<real>(static_cast<double>(x) + (forward ? length : -length));

      ranges.NO_LOADED_RANGE = target.K_MLOAD(NO_LOADED_RANGE, lane);
      std::int32_t at = 0;
      for (auto& [start, end] : ranges.PAIRS) {
        start = target.DISTANCE_RANGE(++at, lane);
        end = target.DISTANCE_RANGE(++at, lane);
      }
      for (std::int32_t i = 1; i <= search::MAX_LOADED; ++i) {
        ranges.NUMBERS[static_cast<std::size_t>(i - 1)] = target.K_INFL_S(i, lane);
      }
      search::TRIM_LOADED_RANGES(forward ? there : x, forward ? x : there, ranges);
      target.K_MLOAD(NO_LOADED_RANGE, lane) = ranges.NO_LOADED_RANGE;
      at = 0;
      for (const auto& [start, end] : ranges.PAIRS) {
        target.DISTANCE_RANGE(++at, lane) = start;
        target.DISTANCE_RANGE(++at, lane) = end;
      }
      copy_numbers(ranges.NUMBERS, target.K_INFL_S, lane);
    }
  }
}

void ADD_PASS_DIRECTION(const T_ENVELOPE& envelope, const T_HOST_RECORDS& host) {
  for (std::size_t side = 0; side < N_SIDES; ++side) {
    for (std::int32_t lane = 1; lane <= lanes_of(envelope); ++lane) {
      const T_LANE_LOADING& loading = envelope.LANES[side][static_cast<std::size_t>(lane - 1)];
      host[side].K_MLOAD(COMB_TYPE, lane) += loading.PASS_OUT * 100;
    }
  }
}

}  // namespace kernel
