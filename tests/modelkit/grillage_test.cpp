#include "modelkit/grillage.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <stdexcept>
#include <string>

namespace modelkit {
namespace {

constexpr double EI = 3.0e6;
constexpr double GJ = 4.0e5;

/// A straight beam of equal members.
T_GRILLAGE straight_beam(double length, int members) {
  T_GRILLAGE beam;
  for (int i = 0; i <= members; ++i) {
    beam.nodes.push_back({.x = length * i / members});
    if (i > 0) beam.members.push_back({.start = i, .end = i + 1, .ei = EI, .gj = GJ});
  }
  return beam;
}

T_GRILLAGE_SUPPORT pinned(int node) {
  return {.node = node, .stiffness = {RIGID, 0.0, 0.0}};
}

/// A support that also holds the twist of a beam along x.
T_GRILLAGE_SUPPORT forked(int node) {
  return {.node = node, .stiffness = {RIGID, RIGID, 0.0}};
}

TEST(grillage, a_simply_supported_beam_deflects_by_PL3_over_48EI) {
  constexpr double LENGTH = 12.0;
  T_GRILLAGE beam = straight_beam(LENGTH, 4);
  beam.supports = {forked(1), pinned(5)};
  const T_GRILLAGE_RESPONSES answer = SOLVE_GRILLAGE(beam, {3, 2, 5});

  EXPECT_NEAR(answer.DISPLACEMENT(1, 3, GRILLAGE_W), std::pow(LENGTH, 3) / (48.0 * EI), 1e-12);
  EXPECT_NEAR(answer.DISPLACEMENT(1, 1, GRILLAGE_ROTATION_Y), -LENGTH * LENGTH / (16.0 * EI), 1e-12)
      << "the beam falls away from its start: dw/dx = -rotation about y";
  EXPECT_NEAR(answer.END_FORCES(1, 2).moment, LENGTH / 4.0, 1e-9);
  EXPECT_NEAR(answer.START_FORCES(1, 3).moment, LENGTH / 4.0, 1e-9);
  EXPECT_NEAR(answer.START_FORCES(1, 1).shear, 0.5, 1e-9);
  EXPECT_NEAR(answer.END_FORCES(1, 4).shear, -0.5, 1e-9);
  // Quarter point: M = P a b / L.
  EXPECT_NEAR(answer.END_FORCES(2, 1).moment, 3.0 * 9.0 / 12.0, 1e-9);
  EXPECT_NEAR(answer.REACTION(2, 1), 0.75, 1e-9);

  // Inside a member, on the loaded node, which changes the shear by 1, and under a load on the support.
  constexpr std::array MEMBERS{1, 2, 3, 4};
  EXPECT_NEAR(answer.BEAM_FORCES(1, MEMBERS, 0.125).load_behind.moment, 0.75, 1e-9);
  const T_BEAM_SECTION middle = answer.BEAM_FORCES(1, MEMBERS, 0.5);
  EXPECT_NEAR(middle.load_before.shear, -0.5, 1e-9);
  EXPECT_NEAR(middle.load_behind.shear, 0.5, 1e-9);
  EXPECT_NEAR(middle.load_before.moment, LENGTH / 4.0, 1e-9);
  EXPECT_NEAR(answer.BEAM_FORCES(3, MEMBERS, 1.0).load_before.shear, 0.0, 1e-9);
}

TEST(grillage, an_outrigger_twists_a_cantilever_by_TL_over_GJ) {
  constexpr double LENGTH = 10.0;
  constexpr double ARM = 2.0;
  T_GRILLAGE cantilever;
  cantilever.nodes = {{0.0, 0.0}, {LENGTH, 0.0}, {LENGTH, ARM}};
  cantilever.members = {{.start = 1, .end = 2, .ei = EI, .gj = GJ},
                        {.start = 2, .end = 3, .ei = EI, .gj = GJ}};
  cantilever.supports = {{.node = 1, .stiffness = {RIGID, RIGID, RIGID}}};
  const T_GRILLAGE_RESPONSES answer = SOLVE_GRILLAGE(cantilever, {3});

  // The load on the right-hand arm turns the bar right-handed about x, so that points at positive y go down.
  EXPECT_NEAR(answer.DISPLACEMENT(1, 2, GRILLAGE_ROTATION_X), ARM * LENGTH / GJ, 1e-12);
  EXPECT_NEAR(answer.START_FORCES(1, 1).torsion, ARM, 1e-9);
  EXPECT_NEAR(answer.END_FORCES(1, 1).torsion, ARM, 1e-9);
  EXPECT_NEAR(answer.START_FORCES(1, 1).moment, -LENGTH, 1e-9);
  EXPECT_NEAR(answer.DISPLACEMENT(1, 3, GRILLAGE_W),
              std::pow(LENGTH, 3) / (3.0 * EI) + std::pow(ARM, 3) / (3.0 * EI) + ARM * ARM * LENGTH / GJ,
              1e-11);
}

TEST(grillage, a_mechanism_is_told_with_its_node_and_the_way_it_moves) {
  const auto what_fails = [](const T_GRILLAGE& grillage) -> std::string {
    try {
      SOLVE_GRILLAGE(grillage, {1});
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  };
  T_GRILLAGE rolling = straight_beam(4.0, 2);
  rolling.supports = {pinned(1), pinned(3)};  // nothing holds its twist
  EXPECT_NE(what_fails(rolling).find("rotation about x"), std::string::npos);
  T_GRILLAGE loose = straight_beam(4.0, 2);
  loose.supports = {forked(1), pinned(3)};
  loose.nodes.push_back({.x = 50.0, .y = 50.0});
  EXPECT_NE(what_fails(loose).find("node 4"), std::string::npos);
}

}  // namespace
}  // namespace modelkit
