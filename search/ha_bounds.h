// Rigorous bounds on what the HA search beside a zone can give,
// at a cost that hardly grows with the points of a line.
//
// An HB is placed thousands of times on one line, and nearly all placements
// fall far short of the best. For these no exact value is needed, if a bound,
// rounding included, tells that they can't win. The bounds rest on three facts:
//
//   - Ranges that close before the zone, and ranges that open after the first closing behind it, have the
//     same bits for every placement, for accumulators begin at 0 again where a range closes. They are cut
//     once a line.
//   - So on each side just one range is joined across the zone. What it adds behind the zone is a difference
//     of two prefix sums in 64-bit reals, and the single precision sum differs from it by at most a rounding
//     a term.
//   - The intensity beyond HA_L0 is a convex falling curve of the loaded length: chords of a table bound it.
//
// Where rounding leaves open which of some ranges goes first, as it does
// for the alike spans of a girder, they form a group: a prefix that ends inside it
// has at most the areas of its largest and at least the lengths of its shortest.
//
// Lines for which this can't be relied on (no ascending or finite positions, values at the ends of the range
// of single precision) are told apart by PREPARE; whoever asks then takes the plain road. Bounds that can't
// be had for one placement are infinite.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "search/range_cutter.h"
#include "search/ranges.h"

namespace search {

/// An interval that holds an exact value.
struct T_BOUNDS {
  double LOW = 0;
  double HIGH = 0;
};

/// Bounds of the HA intensity: a table of the power law over the loaded length, with 256 chords an octave.
/// Kept between searches, for the vehicle seldom changes.
class T_INTENSITY_BOUNDS {
 public:
  /// Lengths from `shortest` to `longest` will be asked for. False where the curve isn't one that falls.
  [[nodiscard]] bool PREPARE(const T_HA_CURVE& curve, double shortest, double longest);

  /// At most this much for every loaded length from `length` on.
  [[nodiscard]] double HIGHEST_FROM(double length) const noexcept;
  /// At least this much for every loaded length from `shortest` to `longest`.
  [[nodiscard]] double LOWEST_BETWEEN(double shortest, double longest) const noexcept;
  /// Whether area times intensity grows with the loaded length where the area grows with it evenly.
  [[nodiscard]] bool GROWS_WITH_LENGTH() const noexcept { return curve_.HA_P <= 1; }
  /// The loaded length at which the power law begins, and where the intensity may fall by a step.
  [[nodiscard]] double LIMIT() const noexcept { return static_cast<double>(curve_.HA_L0); }

 private:
  [[nodiscard]] double chord(double length) const noexcept;

  T_HA_CURVE curve_;
  std::uint32_t first_cell_ = 0;
  std::uint32_t cells_ = 0;
  double below_chord_ = 0;  // how far the curve may lie below a chord, relative
  std::vector<double> edges_;
};

/// Where a zone cuts the line, and the ranges that the cut
/// segments themselves leave behind. The same for both sides.
struct T_ZONE_CUT {
  bool KNOWN = false;
  std::int32_t BEFORE = 0;  // whole segments in front of the zone
  std::int32_t BEHIND = 0;  // the whole segments behind it begin after this one
  T_OPEN_RANGES OPEN;       // what is open behind the zone
  struct T_CLOSED {
    SIDE RANGE_SIDE = MAX_SIDE;
    T_OPEN_RANGE RANGE;
  };
  std::int32_t N_CLOSED = 0;
  std::array<T_CLOSED, 2> CLOSED;  // closed by the cut segments
};

/// The bounds for one line.
class T_HA_BOUNDS {
 public:
  /// Walks the line once. `intensity` must outlive this and be prepared for the line's curve. `short_range`
  /// as in the search whose values are bounded. Vehicles are at least `shortest_vehicle` long.
  template <LAYOUT L>
  [[nodiscard]] bool PREPARE(const T_LINE& line, const T_INTENSITY_BOUNDS& intensity, real short_range,
                             double shortest_vehicle);

  /// An upper bound of the magnitude of a side's effect, for vehicles of at least this length anywhere.
  [[nodiscard]] double ANYWHERE_BOUND(SIDE side, double vehicle_length) const noexcept;
  /// The same for one zone, from areas and lengths alone.
  /// It holds for longer vehicles too whose zone begins at the same point.
  [[nodiscard]] double QUICK_BOUND(SIDE side, const T_ZONE_PLACE& zone, double vehicle_length) const noexcept;
  template <LAYOUT L>
  [[nodiscard]] T_ZONE_CUT CUT(const T_LINE& line, const T_ZONE_PLACE& zone) const noexcept;
  /// What CUT_RANGES_BESIDE_ZONE gives, without walking over more of the line than the joined ranges.
  template <LAYOUT L>
  void RANGES_BESIDE(const T_LINE& line, const T_ZONE_PLACE& zone, const T_ZONE_CUT& cut,
                     T_RANGE_WORK& work) const;
  /// Bounds of the magnitude of a side's effect.
  /// The lower one is worked out only as far as it can get above `needed`.
  [[nodiscard]] T_BOUNDS BOUND(SIDE side, const T_ZONE_CUT& cut, double vehicle_length, double needed);

 private:
  /// One side behind a number of whole segments.
  struct T_STATE {
    T_OPEN_RANGE OPEN;
    std::int32_t CLOSED = 0;      // ranges closed so far
    std::int32_t NEXT_CLOSE = 0;  // segment that closes the open one; 0: none before the lane's end
    std::int32_t TERMS = 0;  // segments that added something; a sum doesn't tell, for it may swallow them
    double AREA_SUM = 0;     // magnitudes of all that was added so far
    double LENGTH_SUM = 0;
  };
  struct T_RANKED {
    double AREA = 0;  // magnitude
    double LENGTH = 0;
    double LOWEST_MEAN = 0;  // the mean of the search lies between these
    double HIGHEST_MEAN = 0;
    std::int32_t NUMBER = 0;  // of the whole line's ranges, from 1
  };
  /// The ranges of a placement that aren't the whole line's, from the highest mean on, and those of the whole
  /// line that they take the place of.
  struct T_OWN_RANGES {
    static constexpr std::size_t MOST = 3;
    bool ARE_SURE = false;
    std::size_t COUNT = 0;
    std::array<T_RANKED, MOST> RANGES;
    double AREA_ERROR = 0;  // of the joined one
    double LENGTH_ERROR = 0;
    std::int32_t FIRST_GONE = 0;
    std::int32_t LAST_GONE = 0;
  };
  class PREFIXES;
  /// Work lists of PREFIXES.
  struct T_GROUP {
    std::vector<const T_RANKED*> MEMBERS;
    std::vector<double> AREAS;
    std::vector<double> LENGTHS;
  };

  /// The whole line's stretches from the highest ordinates down to a level: an area has at least the length
  /// that it has if the highest stretches bear it.
  static constexpr std::size_t LEVELS = 8;
  struct T_STEP {
    double AREA = 0;
    double LENGTH = 0;
    double LENGTH_A_AREA = 0;  // of the stretches behind this step
    double BEST = 0;  // effect of any area up to this one, for the shortest vehicle and all longer ones
  };

  [[nodiscard]] T_RANKED ranked(SIDE side, const T_OPEN_RANGE& range) const noexcept;
  template <LAYOUT L>
  [[nodiscard]] bool walk(const T_LINE& line);
  void find_offsets(const T_LINE& line, SIDE side);
  void find_steps(const T_LINE& line, SIDE side, double shortest_vehicle);
  [[nodiscard]] double effect_within(const T_STEP& from, double vehicle, double area,
                                     double length) const noexcept;
  [[nodiscard]] double area_bound(SIDE side, double area, double vehicle_length) const noexcept;
  [[nodiscard]] T_OWN_RANGES own_ranges(SIDE side, const T_ZONE_CUT& cut) const noexcept;

  std::array<std::vector<T_STATE>, N_SIDES> states_;       // by segments passed
  std::array<std::vector<T_OPEN_RANGE>, N_SIDES> closed_;  // the whole line's ranges as they close
  std::array<std::vector<T_RANKED>, N_SIDES> ranges_;      // the same from the highest mean on
  struct T_SLIVERS {
    double AREA = 0;
    double LENGTH = 0;
  };
  std::array<T_SLIVERS, N_SIDES> slivers_;  // all that rounding took away from ranges
  struct T_QUICK {
    double HIGHEST = 0;        // ordinate of this sign, as a magnitude; 0: none
    double AREA_OFFSET = 0;    // what rounding may add to an area
    double LENGTH_OFFSET = 0;  // what rounding may take away from a length
    double LOST_LENGTH = 0;    // what both may take away from the length that an area needs
    std::array<T_STEP, LEVELS + 1> STEPS;
  };
  std::array<T_QUICK, N_SIDES> quick_;
  double roundings_ = 0;  // of an area, a length or an effect, relative
  const T_INTENSITY_BOUNDS* intensity_ = nullptr;
  std::int32_t segments_ = 0;
  real short_range_ = 0;
  double sum_error_ = 0;  // of a difference of prefix sums, relative to the whole sum
  T_GROUP group_;
};

}  // namespace search
