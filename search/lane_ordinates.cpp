#include "search/lane_ordinates.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

namespace search {

namespace {

/// For each position the index of the next equal one, n where there is none. Along ascending positions that
/// can only be the next point; positions of a damaged file are looked up.
std::vector<std::size_t> next_repeats(const std::vector<real>& positions) {
  const std::size_t n = positions.size();
  std::vector<std::size_t> next(n, n);
  const bool ascending =
      std::is_sorted(positions.begin(), positions.end(), [](real a, real b) { return !(a >= b); });
  if (ascending) {
    for (std::size_t i = 0; i + 1 < n; ++i) {
      if (positions[i + 1] == positions[i]) next[i] = i + 1;
    }
    return next;
  }
  std::unordered_map<real, std::size_t> seen;
  for (std::size_t i = n; i-- > 0;) {
    if (std::isnan(positions[i])) continue;  // equals nothing
    const auto [at, is_first] = seen.try_emplace(positions[i], i);
    if (!is_first) next[i] = std::exchange(at->second, i);
  }
  return next;
}

}  // namespace

T_KEPT_POINTS DROP_REPEATED_POINTS(const std::vector<real>& positions) {
  const std::size_t n = positions.size();
  const std::vector<std::size_t> next = next_repeats(positions);
  T_KEPT_POINTS kept;
  kept.SOURCE.resize(n);
  std::vector<bool> is_dropped(n, false);
  std::size_t count = n;
  std::size_t last = n;  // the last point left, from 1
  for (std::size_t i = 0; i < n; ++i) {
    if (is_dropped[i] || next[i] == n) continue;
    is_dropped[next[i]] = true;
    // The rows behind move up, and the last one stays where it was too.
    kept.SOURCE[--count] = static_cast<std::int32_t>(last);
    while (last > 0 && is_dropped[last - 1]) --last;
  }
  kept.COUNT = static_cast<std::int32_t>(count);
  std::size_t place = 0;
  for (std::size_t i = 0; i < n; ++i) {
    if (!is_dropped[i]) kept.SOURCE[place++] = static_cast<std::int32_t>(i) + 1;
  }
  return kept;
}

T_LINE T_ORDINATES::LINE(TABLE<const real, POINT> LANE_X, std::int32_t n) const noexcept {
  const bool two = COLUMNS() == 2;
  const std::int64_t points = values_.EXTENT(0);
  const real* first = values_.VIEW().begin();
  const TABLE<const real, POINT> before(first, {points});
  const TABLE<const real, POINT> after(two ? first + points : first, {points});
  return {n, LANE_X, before, after, two};
}

namespace {

/// Adds `weight` times the response to unit load `load` to a point's row, one column after the other.
template <std::int32_t COLUMNS>
void add_load(const T_LOAD_ORD& LOAD_ORD, std::int32_t load, real weight, T_ORDINATES& ordinates,
              std::int32_t point) {
  for (std::int32_t column = 1; column <= COLUMNS; ++column) {
    ordinates(point, column) += weight * LOAD_ORD.VALUES(column, load);
  }
}

/// The transverse entries first to last of every point,
/// averaged with the factor F, which is single precision.
template <std::int32_t COLUMNS>
void add_entries(const T_LANE& lane, std::int32_t first, std::int32_t last, real F,
                 const T_LOAD_ORD& LOAD_ORD, T_ORDINATES& ordinates) {
  for (std::int32_t point = 1; point <= lane.LANE_STATIONS; ++point) {
    const double G = lane.POINT_IMPACT[static_cast<std::size_t>(point - 1)] + 1.0;
    const auto weight_of = [F, G](double factor) {
      return static_cast<real>(factor * static_cast<double>(F) * G);
    };
    for (std::int32_t entry = first; entry <= last; ++entry) {
      for (std::int32_t which = 1; which <= 2; ++which) {
        const T_LINK& link = lane.LANE_LINKS(which, entry, point);
        if (link.REFERENCE > 0) {
          add_load<COLUMNS>(LOAD_ORD, link.REFERENCE, weight_of(link.FACTOR), ordinates, point);
        } else if (link.REFERENCE < 0) {
          const T_SPREAD_ROW& row = lane.SPREAD_TABLE[static_cast<std::size_t>(-link.REFERENCE - 1)];
          for (std::size_t pair = 0; pair < static_cast<std::size_t>(row.COUNT); ++pair) {
            add_load<COLUMNS>(LOAD_ORD, row.LOAD_NUMBER[pair], weight_of(row.WEIGHT[pair]), ordinates, point);
          }
        }
      }
    }
  }
}

/// The entries first to last of a class definition.
template <std::int32_t COLUMNS>
void add_class_entries(const T_CLASS_DEFINITION& definition, std::int32_t stations, std::int32_t first,
                       std::int32_t last, const T_LOAD_ORD& LOAD_ORD, T_ORDINATES& ordinates) {
  const auto W = static_cast<real>(1.0 / definition.N_PER_PLANE);
  const std::int32_t points = std::min(stations, definition.N_POINTS);
  for (std::int32_t point = 1; point <= points; ++point) {
    for (std::int32_t entry = first; entry <= last; ++entry) {
      const auto at = static_cast<std::size_t>(std::int64_t{point - 1} * definition.N_ENTRIES + entry - 1);
      for (std::size_t share = definition.FIRST_SHARE[at]; share < definition.FIRST_SHARE[at + 1]; ++share) {
        const auto& link = definition.CLASS_LINKS[share];
        add_load<COLUMNS>(LOAD_ORD, link.LOAD_NUMBER, link.WEIGHT * W, ordinates, point);
      }
    }
  }
}

/// Clears the ordinates and fills them by `add<COLUMNS>()`; a response of 0 throughout leaves them at 0.
template <class ONE_COLUMN, class TWO_COLUMNS>
void fill(const T_LOAD_ORD& LOAD_ORD, T_ORDINATES& ordinates, ONE_COLUMN one_column,
          TWO_COLUMNS two_columns) {
  ordinates.CLEAR();
  if (LOAD_ORD.IS_ZERO()) return;
  if (LOAD_ORD.COLUMNS == 1) {
    one_column();
  } else {
    two_columns();
  }
}

void fill_entries(const T_LANE& lane, std::int32_t first, std::int32_t last, real F,
                  const T_LOAD_ORD& LOAD_ORD, T_ORDINATES& ordinates) {
  fill(
      LOAD_ORD, ordinates, [&] { add_entries<1>(lane, first, last, F, LOAD_ORD, ordinates); },
      [&] { add_entries<2>(lane, first, last, F, LOAD_ORD, ordinates); });
}

void fill_class_entries(const T_CLASS_DEFINITION& definition, std::int32_t stations, std::int32_t first,
                        std::int32_t last, const T_LOAD_ORD& LOAD_ORD, T_ORDINATES& ordinates) {
  fill(
      LOAD_ORD, ordinates,
      [&] { add_class_entries<1>(definition, stations, first, last, LOAD_ORD, ordinates); },
      [&] { add_class_entries<2>(definition, stations, first, last, LOAD_ORD, ordinates); });
}

/// The entries of plane q where each plane has `per_plane` of them, as far as there are any.
struct T_ENTRY_SPAN {
  std::int32_t first;
  std::int32_t last;
};
T_ENTRY_SPAN entries_of_plane(std::size_t plane_index, std::int32_t per_plane, std::int32_t entries) {
  const std::int64_t before = static_cast<std::int64_t>(plane_index) * per_plane;
  return {static_cast<std::int32_t>(std::min<std::int64_t>(before, entries)) + 1,
          static_cast<std::int32_t>(std::min<std::int64_t>(before + per_plane, entries))};
}

}  // namespace

void LANE_ORDINATES(const T_LANE& lane, const T_LOAD_ORD& LOAD_ORD, T_ORDINATES& ordinates) {
  const auto F = static_cast<real>(1.0 / lane.N_TRANSVERSE);
  fill_entries(lane, 1, lane.N_TRANSVERSE, F, LOAD_ORD, ordinates);
}

void PLANE_ORDINATES(const T_LANE& lane, const T_LOAD_ORD& LOAD_ORD, std::vector<T_ORDINATES>& planes) {
  const auto F = static_cast<real>(1.0 / lane.N_PER_PLANE);
  for (std::size_t q = 0; q < planes.size(); ++q) {
    const T_ENTRY_SPAN span = entries_of_plane(q, lane.N_PER_PLANE, lane.N_TRANSVERSE);
    fill_entries(lane, span.first, span.last, F, LOAD_ORD, planes[q]);
  }
}

void DROP_ROWS(const T_KEPT_POINTS& kept, T_ORDINATES& ordinates) {
  // Rows only ever move up, so that each is read before it is overwritten.
  for (std::int32_t column = 1; column <= ordinates.COLUMNS(); ++column) {
    for (std::size_t i = 0; i < kept.SOURCE.size(); ++i) {
      ordinates(static_cast<std::int32_t>(i) + 1, column) = ordinates(kept.SOURCE[i], column);
    }
  }
}

void CLASS_ORDINATES(const T_CLASS_DEFINITION& definition, std::int32_t stations, const T_LOAD_ORD& LOAD_ORD,
                     T_ORDINATES& ordinates) {
  fill_class_entries(definition, stations, 1, definition.N_ENTRIES, LOAD_ORD, ordinates);
}

void CLASS_PLANES(const T_CLASS_DEFINITION& definition, std::int32_t stations, const T_LOAD_ORD& LOAD_ORD,
                  std::vector<T_ORDINATES>& planes) {
  for (std::size_t q = 0; q < planes.size(); ++q) {
    const T_ENTRY_SPAN span = entries_of_plane(q, definition.N_PER_PLANE, definition.N_ENTRIES);
    fill_class_entries(definition, stations, span.first, span.last, LOAD_ORD, planes[q]);
  }
}

}  // namespace search
