// The influence line of a lane, built from the response of the result point to every unit load.
//
// A lane is not a list of unit loads: an influence point stands between nodes and may spread over several
// transverse entries. Each entry has two links; a link names a unit load, or a row of the lane's spread
// table. Entries are averaged, and a point's impact add-on scales all of its weights.
//
// Only the columns of the component in hand are built: one, or two where the line jumps at its points.
// Weights of links and spread rows are formed in 64-bit reals from left to right and narrowed before they
// multiply an ordinate; weights of a class definition are products in 32 bits.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "common/table.h"
#include "search/layouts.h"

namespace search {

/// One link of a transverse entry: above 0 a unit load, below 0 row -REFERENCE of the spread table (whose own
/// weights stand in place of FACTOR), 0 none.
struct T_LINK {
  double FACTOR = 0;
  std::int32_t REFERENCE = 0;
};

/// A group of unit loads, of which the first COUNT are in use.
struct T_SPREAD_ROW {
  static constexpr std::int32_t PAIRS = 4;
  std::int32_t COUNT = 0;
  std::array<std::int32_t, PAIRS> LOAD_NUMBER{};
  std::array<double, PAIRS> WEIGHT{};
};

/// Which rows of a lane are left when repeated points are dropped.
/// Only positions decide, so that this is worked out once for a lane.
/// SOURCE is as long as before: the places behind COUNT tell what the shifting leaves there.
struct T_KEPT_POINTS {
  std::vector<std::int32_t> SOURCE;  // the row, from 1, that stands at each place after the drop
  std::int32_t COUNT = 0;            // points left
};

/// Drops the later row of each repeated position, comparing exactly. A point loses at most one repeat, so
/// that of three or four equal positions two are left.
T_KEPT_POINTS DROP_REPEATED_POINTS(const std::vector<real>& positions);

/// A lane as the files give it. Checked when it was read:
/// links and spread rows name loads and rows that exist.
struct T_LANE {
  std::int32_t LANE_NUMBER = 0;
  std::int32_t LANE_STATIONS = 0;   // influence points
  std::int32_t LANE_DIRECTION = 0;  // 0 forward only, 1 reverse only, other both
  std::int32_t N_TRANSVERSE = 0;    // transverse entries of a point
  std::int32_t N_PER_PLANE = 0;     // transverse entries of a plane
  bool LANE_KEEP_POINTS = false;    // repeated points stay
  bool IS_STRADDLE = false;
  std::int32_t STRADDLE_LEFT = 0;  // parent lanes of a straddle lane
  std::int32_t STRADDLE_RIGHT = 0;
  std::vector<double> POINT_X;       // distance along the lane
  std::vector<double> POINT_IMPACT;  // add-on to 1
  std::vector<real> POINT_X_REAL;    // the same distances, narrowed
  ARRAY<T_LINK, LINK, ENTRY, POINT> LANE_LINKS;
  std::vector<T_SPREAD_ROW> SPREAD_TABLE;
  T_KEPT_POINTS KEPT;  // of POINT_X_REAL

  [[nodiscard]] std::int32_t N_PLANE() const noexcept {
    return N_PER_PLANE > 0 ? N_TRANSVERSE / N_PER_PLANE : 0;
  }
};

/// The response of the result point to every unit load: one or two columns of the component in hand. Without
/// values the response is 0 throughout, and no memory is taken for it.
struct T_LOAD_ORD {
  std::int32_t COLUMNS = 1;
  ARRAY<real, COLUMN, LOAD> VALUES;

  [[nodiscard]] bool IS_ZERO() const noexcept { return VALUES.EMPTY(); }
};

/// Ordinates of one lane (or plane): one column before each point, and one after where the line jumps. Rows
/// behind the lane's own points are 0.
class T_ORDINATES {
 public:
  T_ORDINATES() = default;
  T_ORDINATES(std::int32_t points, std::int32_t columns) : values_(points, columns) {}

  void CLEAR() noexcept {
    for (real& value : values_.VIEW()) value = 0;
  }
  [[nodiscard]] std::int32_t POINTS() const noexcept { return static_cast<std::int32_t>(values_.EXTENT(0)); }
  [[nodiscard]] std::int32_t COLUMNS() const noexcept { return static_cast<std::int32_t>(values_.EXTENT(1)); }
  real& operator()(std::int32_t point, std::int32_t column) noexcept { return values_(point, column); }
  [[nodiscard]] real operator()(std::int32_t point, std::int32_t column) const noexcept {
    return values_(point, column);
  }

  /// The line over the first n points. A view of this object and of the positions.
  [[nodiscard]] T_LINE LINE(TABLE<const real, POINT> LANE_X, std::int32_t n) const noexcept;

 private:
  ARRAY<real, POINT, COLUMN> values_;
};

/// The ordinates of an ordinary lane: all of its entries, averaged. `ordinates` is cleared first and holds at
/// least as many points as the lane.
void LANE_ORDINATES(const T_LANE& lane, const T_LOAD_ORD& LOAD_ORD, T_ORDINATES& ordinates);

/// The ordinates of each plane of a straddle lane: plane q has the entries (q - 1) * N_PER_PLANE + 1 to
/// q * N_PER_PLANE; entries beyond the lane's own add nothing. One element of `planes` a plane.
void PLANE_ORDINATES(const T_LANE& lane, const T_LOAD_ORD& LOAD_ORD, std::vector<T_ORDINATES>& planes);

/// Moves the rows of a lane's ordinates to the places of `kept`.
void DROP_ROWS(const T_KEPT_POINTS& kept, T_ORDINATES& ordinates);

/// A lane definition that belongs to one vehicle class only.
/// Its weights stand whole: no impact add-on applies.
struct T_CLASS_DEFINITION {
  struct T_SHARE {
    std::int32_t LOAD_NUMBER = 0;
    real WEIGHT = 0;
  };
  std::int32_t VEH_CLASS = 0;
  std::int32_t CLASS_DEF_NO = 0;
  std::int32_t LANE_NUMBER = 0;
  std::int32_t N_POINTS = 0;
  std::int32_t N_ENTRIES = 0;    // transverse entries of a point
  std::int32_t N_PER_PLANE = 1;  // entries per plane, also the divisor of the weights
  std::vector<T_SHARE> CLASS_LINKS;
  /// The first of entry e of point p at (p - 1) * N_ENTRIES + e - 1, and one more at the end.
  std::vector<std::size_t> FIRST_SHARE;
};

/// The same as LANE_ORDINATES and PLANE_ORDINATES from a class definition; points and entries that it lacks
/// add nothing. `stations` are the points of the lane.
void CLASS_ORDINATES(const T_CLASS_DEFINITION& definition, std::int32_t stations, const T_LOAD_ORD& LOAD_ORD,
                     T_ORDINATES& ordinates);
void CLASS_PLANES(const T_CLASS_DEFINITION& definition, std::int32_t stations, const T_LOAD_ORD& LOAD_ORD,
                  std::vector<T_ORDINATES>& planes);

}  // namespace search
