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

/// A skew deck of 4 by 3 nodes on four bearings, one of them elastic.
T_GRILLAGE skew_deck() {
  T_GRILLAGE deck;
  for (int row = 0; row < 3; ++row)
    for (int i = 0; i < 4; ++i) deck.nodes.push_back({.x = 6.0 * i + 2.0 * row, .y = 2.5 * row});
  const auto node = [](int row, int i) { return 4 * row + i + 1; };
  for (int row = 0; row < 3; ++row) {
    for (int i = 0; i < 4; ++i) {
      if (i > 0) deck.members.push_back({.start = node(row, i - 1), .end = node(row, i), .ei = EI, .gj = GJ});
      if (row > 0)
        deck.members.push_back(
            {.start = node(row - 1, i), .end = node(row, i), .ei = 0.2 * EI, .gj = 0.5 * GJ});
    }
  }
  deck.supports = {pinned(node(0, 0)),
                   pinned(node(0, 3)),
                   pinned(node(2, 0)),
                   {.node = node(2, 3), .stiffness = {5.0e4, 0.0, 0.0}}};
  return deck;
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

TEST(grillage, a_skew_deck_is_in_equilibrium_and_obeys_Maxwell) {
  const T_GRILLAGE deck = skew_deck();
  std::vector<int> every_node;
  for (int node = 1; node <= 12; ++node) every_node.push_back(node);
  const T_GRILLAGE_RESPONSES answer = SOLVE_GRILLAGE(deck, every_node);
  for (int load = 1; load <= answer.LOADS(); ++load) {
    double sum = 0.0;
    double about_x = 0.0;
    double about_y = 0.0;
    for (int support = 1; support <= 4; ++support) {
      const T_GRILLAGE_NODE& at =
          deck.nodes[static_cast<std::size_t>(deck.supports[static_cast<std::size_t>(support) - 1].node) - 1];
      const double reaction = answer.REACTION(load, support);
      sum += reaction;
      about_x += reaction * at.y;
      about_y += reaction * at.x;
    }
    const T_GRILLAGE_NODE& loaded = deck.nodes[static_cast<std::size_t>(load) - 1];
    EXPECT_NEAR(sum, 1.0, 1e-9);
    EXPECT_NEAR(about_x, loaded.y, 1e-8);
    EXPECT_NEAR(about_y, loaded.x, 1e-8);
    EXPECT_NEAR(answer.REACTION(load, 4), 5.0e4 * answer.DISPLACEMENT(load, 12, GRILLAGE_W), 1e-9);
    for (int other = 1; other < load; ++other)
      EXPECT_NEAR(answer.DISPLACEMENT(load, other, GRILLAGE_W), answer.DISPLACEMENT(other, load, GRILLAGE_W),
                  1e-14);
  }
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
  T_GRILLAGE loose = skew_deck();
  loose.nodes.push_back({.x = 50.0, .y = 50.0});
  EXPECT_NE(what_fails(loose).find("node 13"), std::string::npos);
}

}  // namespace
}  // namespace modelkit
