#include "modelkit/example_bridge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "modelkit/example_span.h"
#include "modelkit/grillage.h"

namespace modelkit {
namespace {

constexpr double BEAM_SPACING = 2.5;
constexpr std::array<int, 4> SUPPORT_STATIONS = {0, BRIDGE_FIRST_PIER, BRIDGE_SECOND_PIER, BRIDGE_LENGTH};
constexpr int NODES = BRIDGE_BEAMS * (BRIDGE_LENGTH + 1);
constexpr std::size_t DISP_COMPONENTS = 6;
constexpr std::size_t SIMB_COMPONENTS = 12;
constexpr std::size_t VERTICAL = 2;  // place of component 3

constexpr double BEAM_EI = 9.0e6;
constexpr double BEAM_GJ = 2.2e5;
constexpr double SLAB_EI = 3.1e4;
constexpr double SLAB_GJ = 2.6e4;
constexpr double DIAPHRAGM_EI = 1.0e6;
constexpr double DIAPHRAGM_GJ = 1.5e5;
constexpr double BEARING = 1.0e6;

// By clause 3.2.9 a carriageway of more than 7.6 m and up to 11.4 m has three notional lanes of equal width.
constexpr double CARRIAGEWAY_START = 0.5;
constexpr double CARRIAGEWAY_WIDTH = 9.0;
constexpr int NOTIONAL_LANES = 3;
constexpr int LANES = NOTIONAL_LANES + 1;  // the last one straddles the first two
constexpr double LANE_WIDTH = CARRIAGEWAY_WIDTH / NOTIONAL_LANES;

constexpr int SEGMENT_LENGTH = 10;
constexpr int STEPS_PER_METRE = 2;
constexpr double OFF_THE_DECK = 0.01;

constexpr std::int32_t HA = 1;  // lane codes of class 1: the sub-cases themselves
constexpr std::int32_t HB = 2;
constexpr std::int32_t STRADDLING_FULL = 3;
constexpr std::int32_t STRADDLING_THIRD = 4;
constexpr double THIRD = 1.0 / 3.0;

enum RESULT_KINDS : int { DISP_KIND = 1, REAC_KIND = 2, SIMB_KIND = 12 };

bool is_support(int station) {
  return std::ranges::find(SUPPORT_STATIONS, station) != SUPPORT_STATIONS.end();
}

/// Member of a beam that runs from `station` to the next one. The beams' members come first.
int beam_member(int station, int beam) {
  return BRIDGE_BEAMS * station + beam;
}

T_GRILLAGE make_grillage() {
  T_GRILLAGE deck;
  for (int station = 0; station <= BRIDGE_LENGTH; ++station)
    for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam)
      deck.nodes.push_back({.x = static_cast<double>(station), .y = BEAM_SPACING * (beam - 1)});
  for (int station = 0; station < BRIDGE_LENGTH; ++station)
    for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam)
      deck.members.push_back({.start = BRIDGE_NODE(station, beam),
                              .end = BRIDGE_NODE(station + 1, beam),
                              .ei = BEAM_EI,
                              .gj = BEAM_GJ});
  for (int station = 0; station <= BRIDGE_LENGTH; ++station)
    for (int beam = 1; beam < BRIDGE_BEAMS; ++beam)
      deck.members.push_back({.start = BRIDGE_NODE(station, beam),
                              .end = BRIDGE_NODE(station, beam + 1),
                              .ei = is_support(station) ? DIAPHRAGM_EI : SLAB_EI,
                              .gj = is_support(station) ? DIAPHRAGM_GJ : SLAB_GJ});
  for (const int station : SUPPORT_STATIONS)
    for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam)
      deck.supports.push_back({.node = BRIDGE_NODE(station, beam), .stiffness = {BEARING, 0.0, 0.0}});
  return deck;
}

T_RESPONSE no_response(int id, std::size_t components) {
  return {.id = id, .values = std::vector(components, std::vector<float>(NODES, 0.0F))};
}

void add_displacements(T_MODEL& model, const T_GRILLAGE_RESPONSES& deck) {
  constexpr std::array<GRILLAGE_DOF, 3> DOFS = {GRILLAGE_W, GRILLAGE_ROTATION_X, GRILLAGE_ROTATION_Y};
  for (int node = 1; node <= NODES; ++node) {
    T_RESPONSE response = no_response(node, DISP_COMPONENTS);
    for (std::size_t dof = 0; dof < DOFS.size(); ++dof)
      for (int load = 1; load <= NODES; ++load)
        response.values[VERTICAL + dof][static_cast<std::size_t>(load) - 1] =
            static_cast<float>(deck.DISPLACEMENT(load, node, DOFS[dof]));
    model.disp.push_back(std::move(response));
  }
}

void add_reactions(T_MODEL& model, const T_GRILLAGE& grillage, const T_GRILLAGE_RESPONSES& deck) {
  int number = 0;
  for (const T_GRILLAGE_SUPPORT& support : grillage.supports) {
    ++number;
    T_RESPONSE response = no_response(support.node, DISP_COMPONENTS);
    for (int load = 1; load <= NODES; ++load)
      response.values[VERTICAL][static_cast<std::size_t>(load) - 1] =
          static_cast<float>(deck.REACTION(load, number));
    model.reac.push_back(std::move(response));
  }
}

void add_section_forces(T_MODEL& model, const T_GRILLAGE_RESPONSES& deck) {
  for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam) {
    T_RESPONSE response = no_response(beam, SIMB_COMPONENTS);
    for (int load = 1; load <= NODES; ++load) {
      const auto before = [&](int station) { return deck.END_FORCES(load, beam_member(station - 1, beam)); };
      const auto behind = [&](int station) { return deck.START_FORCES(load, beam_member(station, beam)); };
      const auto set = [&](BRIDGE_ITEM item, double value) {
        response.values[static_cast<std::size_t>(item) - 1][static_cast<std::size_t>(load) - 1] =
            static_cast<float>(value);
      };
      set(BRIDGE_MOMENT_FIRST_SPAN, before(8).moment);
      set(BRIDGE_MOMENT_FIRST_PIER, before(BRIDGE_FIRST_PIER).moment);
      set(BRIDGE_MOMENT_MAIN_SPAN, before(35).moment);
      set(BRIDGE_MOMENT_SECOND_PIER, before(BRIDGE_SECOND_PIER).moment);
      set(BRIDGE_MOMENT_LAST_SPAN, before(62).moment);
      set(BRIDGE_SHEAR_ABUTMENT, behind(0).shear);
      set(BRIDGE_SHEAR_BEFORE_PIER_1, before(BRIDGE_FIRST_PIER).shear);
      set(BRIDGE_SHEAR_BEHIND_PIER_1, behind(BRIDGE_FIRST_PIER).shear);
      set(BRIDGE_SHEAR_BEFORE_PIER_2, before(BRIDGE_SECOND_PIER).shear);
      set(BRIDGE_SHEAR_BEHIND_PIER_2, behind(BRIDGE_SECOND_PIER).shear);
      set(BRIDGE_TORSION_ABUTMENT, behind(0).torsion);
      set(BRIDGE_TORSION_BEHIND_PIER_1, behind(BRIDGE_FIRST_PIER).torsion);
    }
    model.simb.push_back(std::move(response));
  }
}

/// The links of a place on the deck, `half_metres` from its start and y across.
T_TRANSVERSE_ENTRY links_at(T_LANE& lane, int half_metres, double y) {
  const int left = static_cast<int>(std::floor(y / BEAM_SPACING)) + 1;
  const double share = y / BEAM_SPACING - (left - 1);
  const int station = half_metres / STEPS_PER_METRE;
  if (half_metres % STEPS_PER_METRE == 0)
    return {.a = {.load = BRIDGE_NODE(station, left), .weight = 1.0 - share},
            .b = {.load = BRIDGE_NODE(station, left + 1), .weight = share}};

  lane.spread_rows.push_back({{.load = BRIDGE_NODE(station, left), .weight = 0.5 * (1.0 - share)},
                              {.load = BRIDGE_NODE(station, left + 1), .weight = 0.5 * share},
                              {.load = BRIDGE_NODE(station + 1, left), .weight = 0.5 * (1.0 - share)},
                              {.load = BRIDGE_NODE(station + 1, left + 1), .weight = 0.5 * share}});
  return {.a = {.load = -static_cast<std::int32_t>(lane.spread_rows.size()), .weight = 1.0}};
}

/// Distance of a notional lane's axis from the first beam. At 1.5 the border between lanes 1 and 2.
double axis_of(double lane) {
  return CARRIAGEWAY_START + LANE_WIDTH * (lane - 0.5);
}

/// A lane whose planes, one of an ordinary lane, have these axes.
T_LANE make_lane(const std::vector<double>& axes) {
  constexpr int DECK_END = STEPS_PER_METRE * BRIDGE_LENGTH;
  constexpr int SEGMENT_STEPS = STEPS_PER_METRE * SEGMENT_LENGTH;
  constexpr int APPROACH_STEPS = static_cast<int>(BRIDGE_APPROACH) * STEPS_PER_METRE;
  constexpr std::array<double, 3> PLACES = {-LANE_WIDTH / 3.0, 0.0, LANE_WIDTH / 3.0};

  T_LANE lane;
  lane.entries_per_plane = static_cast<std::int32_t>(PLACES.size());
  lane.entries_per_point = lane.entries_per_plane * static_cast<std::int32_t>(axes.size());
  for (int start = -APPROACH_STEPS; start < DECK_END + APPROACH_STEPS; start += SEGMENT_STEPS) {
    for (int at = start; at <= start + SEGMENT_STEPS; ++at) {
      T_INFLUENCE_POINT point;
      point.x = BRIDGE_APPROACH + static_cast<double>(at) / STEPS_PER_METRE;
      if (at == -1) point.x = BRIDGE_APPROACH - OFF_THE_DECK;
      if (at == DECK_END + 1) point.x = BRIDGE_APPROACH + BRIDGE_LENGTH + OFF_THE_DECK;
      for (const double axis : axes)
        for (const double aside : PLACES)
          point.entries.push_back(at >= 0 && at <= DECK_END ? links_at(lane, at, axis + aside)
                                                            : T_TRANSVERSE_ENTRY{});
      lane.points.push_back(std::move(point));
    }
  }
  return lane;
}

T_LANE make_straddle_lane() {
  T_LANE lane = make_lane({axis_of(1.5), axis_of(1), axis_of(2)});
  lane.is_straddle = true;
  lane.left_parent = 1;
  lane.right_parent = 2;
  return lane;
}

using T_LANE_CODES = std::array<std::int32_t, NOTIONAL_LANES>;
using T_LANE_SCALES = std::array<double, NOTIONAL_LANES>;

/// What the notional lanes carry, the straddle lane being empty.
T_COMBINATION lane_loads(const T_LANE_CODES& codes, const T_LANE_SCALES& scales) {
  T_COMBINATION combination(LANES);
  for (std::size_t lane = 0; lane < NOTIONAL_LANES; ++lane)
    combination[lane] = {.code = scales[lane] > 0.0 ? codes[lane] : 0, .scale = scales[lane]};
  return combination;
}

/// An HB across lanes 1 and 2, which its own code covers, and HA in lane 3.
T_COMBINATION straddling(std::int32_t code, double scale_of_lane_3) {
  return {{}, {}, {.code = HA, .scale = scale_of_lane_3}, {.code = code, .scale = 1.0}};
}

std::vector<T_MOVING_LOAD_CASE> make_cases() {
  constexpr T_LANE_CODES ALL_HA = {HA, HA, HA};
  std::vector<T_COMBINATION> with_third;
  std::vector<T_COMBINATION> single;
  std::vector<T_COMBINATION> pairs;
  std::vector<T_COMBINATION> with_hb;
  for (std::size_t odd = 0; odd < NOTIONAL_LANES; ++odd) {
    T_LANE_SCALES scales = {1.0, 1.0, 1.0};
    scales[odd] = THIRD;
    with_third.push_back(lane_loads(ALL_HA, scales));
    scales[odd] = 0.0;
    pairs.push_back(lane_loads(ALL_HA, scales));
    scales = {0.0, 0.0, 0.0};
    scales[odd] = 1.0;
    single.push_back(lane_loads(ALL_HA, scales));
    for (std::size_t third = 0; third < NOTIONAL_LANES; ++third) {
      if (third == odd) continue;
      T_LANE_CODES codes = ALL_HA;
      codes[odd] = HB;
      scales = {1.0, 1.0, 1.0};
      scales[third] = THIRD;
      with_hb.push_back(lane_loads(codes, scales));
    }
  }
  std::vector<T_COMBINATION> any = with_third;
  any.insert(any.end(), single.begin(), single.end());
  any.insert(any.end(), pairs.begin(), pairs.end());
  const T_COMBINATION straddling_full = straddling(STRADDLING_FULL, THIRD);
  const T_COMBINATION straddling_third = straddling(STRADDLING_THIRD, 1.0);
  std::vector<T_COMBINATION> any_hb = with_hb;
  any_hb.push_back(straddling_full);
  any_hb.push_back(straddling_third);
  return {{.combinations = with_third},
          {.combinations = single},
          {.combinations = any},
          {.combinations = with_hb},
          {.combinations = {straddling_full}},
          {.combinations = {straddling_third}},
          {.combinations = any_hb}};
}

std::vector<T_NAMED_RESULT> make_results() {
  std::vector<T_NAMED_RESULT> results;
  for (const int beam : {1, 3}) {
    const std::string of_beam = beam == 1 ? "edge beam" : "inner beam";
    results.push_back(
        {"deflection at midspan of the main span, " + of_beam, DISP_KIND, BRIDGE_NODE(35, beam), 3, "m"});
    results.push_back(
        {"moment at midspan of the main span, " + of_beam, SIMB_KIND, beam, BRIDGE_MOMENT_MAIN_SPAN, "kNm"});
    results.push_back({"moment over pier 1, " + of_beam, SIMB_KIND, beam, BRIDGE_MOMENT_FIRST_PIER, "kNm"});
    results.push_back({"shear behind pier 1, " + of_beam, SIMB_KIND, beam, BRIDGE_SHEAR_BEHIND_PIER_1, "kN"});
    results.push_back({"reaction at abutment 1, " + of_beam, REAC_KIND, BRIDGE_NODE(0, beam), 3, "kN"});
    results.push_back(
        {"reaction at pier 1, " + of_beam, REAC_KIND, BRIDGE_NODE(BRIDGE_FIRST_PIER, beam), 3, "kN"});
  }
  return results;
}

}  // namespace

T_EXAMPLE EXAMPLE_BRIDGE() {
  const T_GRILLAGE grillage = make_grillage();
  std::vector<int> every_node;
  for (int node = 1; node <= NODES; ++node) every_node.push_back(node);
  const T_GRILLAGE_RESPONSES deck = SOLVE_GRILLAGE(grillage, every_node);

  T_EXAMPLE example;
  example.title = "Three-span continuous deck, 20 + 30 + 20 m, five beams, three notional lanes";
  example.lane_names = {"left lane", "middle lane", "right lane", "HB across left and middle lane"};
  example.case_names = {"HA in all lanes",
                        "HA in one lane",
                        "HA in any lanes",
                        "HB in one lane, HA in the others",
                        "HB across lanes 1 and 2, full HA UDL beside it on both",
                        "HB across lanes 1 and 2, HA UDL beside it full on one and a third on the other",
                        "HB in any of these ways"};
  example.results = make_results();

  T_MODEL& model = example.model;
  model.unit_loads = NODES;
  for (int lane = 1; lane <= NOTIONAL_LANES; ++lane) model.lanes.push_back(make_lane({axis_of(lane)}));
  model.lanes.push_back(make_straddle_lane());
  model.vehicle_groups = {{.group = 1, .vehicles = {HA_1978_VEHICLE()}}};
  model.moving_load_cases = make_cases();
  add_displacements(model, deck);
  add_reactions(model, grillage, deck);
  add_section_forces(model, deck);
  return example;
}

}  // namespace modelkit
