// The example bridge's responses against statics.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "modelkit/example_bridge.h"

namespace modelkit {
namespace {

class example_bridge : public testing::Test {
 protected:
  static const T_EXAMPLE& bridge() {
    static const T_EXAMPLE example = EXAMPLE_BRIDGE();
    return example;
  }
  /// Value v of a beam's record, from 1.
  static const std::vector<float>& beam_value(int span, int beam, int v) {
    return bridge()
        .model.beams[static_cast<std::size_t>(BRIDGE_BEAM(span, beam) - BRIDGE_BEAM(1, 1))]
        .values[static_cast<std::size_t>(v) - 1];
  }
  /// Where a unit load stands, in m from the first abutment; loads from 0.
  static double load_at(std::size_t load) {
    return (BRIDGE_LOADED_NODE(static_cast<int>(load) + 1) - 1) / BRIDGE_BEAMS;
  }
};

TEST_F(example_bridge, every_unit_load_is_carried_by_the_bearings) {
  for (std::size_t load = 0; load < static_cast<std::size_t>(bridge().model.unit_loads); ++load) {
    double sum = 0.0;
    double about_abutment = 0.0;
    for (const T_RESPONSE& support : bridge().model.reac) {
      const double reaction = static_cast<double>(support.values[2][load]);
      sum += reaction;
      about_abutment += reaction * ((support.id - 1) / BRIDGE_BEAMS);
    }
    ASSERT_NEAR(sum, 1.0, 1e-5);
    ASSERT_NEAR(about_abutment, load_at(load), 1e-3);
  }
}

// A cut across the deck in the middle of the main span: the beams' forces there balance the bearings before
// it and the load, where that stands before it.
TEST_F(example_bridge, the_forces_of_the_beams_balance_the_bearings_before_a_section) {
  constexpr double CUT = 35.0;
  const auto nodes = static_cast<std::size_t>(BRIDGE_NODE(BRIDGE_LENGTH, BRIDGE_BEAMS));
  for (const int load_behind : {0, 1}) {
    for (std::size_t load = 0; load < nodes; ++load) {
      const double a = load_at(load);
      const bool is_before = load_behind == 1 ? a < CUT : a <= CUT;
      double shear = is_before ? -1.0 : 0.0;
      double moment = is_before ? a - CUT : 0.0;
      for (const T_RESPONSE& truss : bridge().model.trusses) {
        const int row = (truss.id - BRIDGE_BEARING(1, 1)) / BRIDGE_BEAMS;
        const double x = std::array{0.0, 20.0, 50.0, 70.0}.at(static_cast<std::size_t>(row));
        if (x > CUT) continue;
        shear -= static_cast<double>(truss.values[0][load]);
        moment -= (CUT - x) * static_cast<double>(truss.values[1][load]);
      }
      for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam) {
        shear -= static_cast<double>(beam_value(2, beam, 23 + load_behind)[load]);   // item 15
        moment -= static_cast<double>(beam_value(2, beam, 27 + load_behind)[load]);  // item 17
      }
      ASSERT_NEAR(shear, 0.0, 1e-5) << load;
      ASSERT_NEAR(moment, 0.0, 1e-3) << load;
    }
  }
}

}  // namespace
}  // namespace modelkit
