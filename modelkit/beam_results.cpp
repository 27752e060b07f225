#include "modelkit/beam_results.h"

#include <cstddef>

namespace modelkit {
namespace {

constexpr int FORCE_COLUMNS = 48;
constexpr int VALUES = 68;
constexpr int STATIONS = 5;

/// Column (from 0) of a section force for a load before the section. For a load behind it, it is the next one
/// between the ends and the same at the ends.
std::size_t force_column(int station, BEAM_FORCE force) {
  const int first = station == BEAM_START ? 0 : 12 * station - 6;
  const int columns = station == BEAM_START || station == BEAM_END ? 1 : 2;
  const int column = first + (force - 1) * columns;
  return static_cast<std::size_t>(column);
}

std::size_t stress_column(int station, BEAM_CORNER corner) {
  return static_cast<std::size_t>(FORCE_COLUMNS + 4 * station + corner - 1);
}

}  // namespace

T_RESPONSE BEAM_RESPONSE(int id, std::span<const LOAD_SIDE> sides, const T_SECTION_MODULI& moduli,
                         const T_BEAM_FORCES& forces) {
  T_RESPONSE response{.id = id, .values = std::vector(VALUES, std::vector<float>(sides.size()))};
  for (std::size_t load = 0; load < sides.size(); ++load) {
    const auto set = [&](std::size_t column, double value) {
      response.values[column][load] = static_cast<float>(value);
    };
    for (int station = BEAM_START; station <= BEAM_END; ++station) {
      const T_BEAM_SECTION section = forces(static_cast<int>(load) + 1, station / (STATIONS - 1.0));
      // The one column of an end is for the load on the beam.
      const bool is_behind = sides[load] == LOAD_SIDE::BEHIND || station == BEAM_START;
      const T_SECTION_FORCES& first = is_behind ? section.load_behind : section.load_before;
      const T_SECTION_FORCES& second =
          sides[load] == LOAD_SIDE::BEFORE ? section.load_before : section.load_behind;
      const auto set_both = [&](BEAM_FORCE force, double T_SECTION_FORCES::*value) {
        const std::size_t column = force_column(station, force);
        set(column, first.*value);
        if (station != BEAM_START && station != BEAM_END) set(column + 1, second.*value);
      };
      set_both(BEAM_SHEAR, &T_SECTION_FORCES::shear);
      set_both(BEAM_TORSION, &T_SECTION_FORCES::torsion);
      set_both(BEAM_MOMENT, &T_SECTION_FORCES::moment);
      for (const BEAM_CORNER corner : {BEAM_TOP_LEFT, BEAM_TOP_RIGHT})
        set(stress_column(station, corner), -first.moment / moduli.top);
      for (const BEAM_CORNER corner : {BEAM_BOTTOM_LEFT, BEAM_BOTTOM_RIGHT})
        set(stress_column(station, corner), first.moment / moduli.bottom);
    }
  }
  return response;
}

}  // namespace modelkit
