#include "modelkit/example_bridge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "modelkit/beam_results.h"
#include "modelkit/example_span.h"
#include "modelkit/grillage.h"

namespace modelkit {
namespace {

constexpr double BEAM_SPACING = 2.5;
constexpr std::array<int, 4> SUPPORT_STATIONS = {0, BRIDGE_FIRST_PIER, BRIDGE_SECOND_PIER, BRIDGE_LENGTH};
constexpr int NODES = BRIDGE_BEAMS * (BRIDGE_LENGTH + 1);
/// Stations of the beams' sections between their ends, as far as they are nodes.
constexpr std::array<int, 7> SECTION_STATIONS = {5, 10, 15, 35, 55, 60, 65};
constexpr std::size_t DISP_COMPONENTS = 6;
constexpr std::size_t SIMB_COMPONENTS = 12;
constexpr std::size_t TRUSS_VALUES = 2;
constexpr std::size_t PLATE_VALUES = 8;  // of form 1
constexpr std::int32_t PLATE_FORM = 1;
constexpr std::int32_t ELEMENTS_PER_FILE = 10;
constexpr std::size_t VERTICAL = 2;  // place of component 3

constexpr double BEAM_EI = 9.0e6;
constexpr double BEAM_GJ = 2.2e5;
constexpr double SLAB_EI = 3.1e4;
constexpr double SLAB_GJ = 2.6e4;
constexpr double DIAPHRAGM_EI = 1.0e6;
constexpr double DIAPHRAGM_GJ = 1.5e5;
constexpr double BEARING = 1.0e6;
constexpr T_SECTION_MODULI BEAM_MODULI = {.top = 0.44, .bottom = 0.31};

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

enum RESULT_KINDS : int { DISP_KIND = 1, REAC_KIND = 2, BEAM_KIND = 4, SIMB_KIND = 12 };

bool is_support(int station) {
  return std::ranges::find(SUPPORT_STATIONS, station) != SUPPORT_STATIONS.end();
}

/// Member of a beam that runs from `station` to the next one. The beams' members come first.
int beam_member(int station, int beam) {
  return BRIDGE_BEAMS * station + beam;
}

/// Member of the slab that runs from a beam to the next one. They come behind the beams' members.
int slab_member(int station, int beam) {
  return BRIDGE_BEAMS * BRIDGE_LENGTH + (BRIDGE_BEAMS - 1) * station + beam;
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

/// Unit loads on one side of the sections, before or behind them; they follow those on the nodes.
constexpr int ONE_SIDED_LOADS = BRIDGE_BEAMS * static_cast<int>(SECTION_STATIONS.size());

/// On which side of a section each unit load stands.
std::vector<LOAD_SIDE> load_sides() {
  std::vector<LOAD_SIDE> sides(NODES, LOAD_SIDE::BOTH);
  sides.insert(sides.end(), ONE_SIDED_LOADS, LOAD_SIDE::BEFORE);
  sides.insert(sides.end(), ONE_SIDED_LOADS, LOAD_SIDE::BEHIND);
  return sides;
}

/// The unit load of a node for a place on one side of it.
int unit_load(int station, int beam, LOAD_SIDE side) {
  const auto* const found = std::ranges::find(SECTION_STATIONS, station);
  if (found == SECTION_STATIONS.end()) return BRIDGE_NODE(station, beam);
  const int first = NODES + (side == LOAD_SIDE::BEHIND ? ONE_SIDED_LOADS : 0);
  return first + BRIDGE_BEAMS * static_cast<int>(found - SECTION_STATIONS.begin()) + beam;
}

T_RESPONSE no_response(int id, std::size_t components, const T_GRILLAGE_RESPONSES& deck) {
  const auto loads = static_cast<std::size_t>(deck.LOADS());
  return {.id = id, .values = std::vector(components, std::vector<float>(loads, 0.0F))};
}

void add_displacements(T_MODEL& model, const T_GRILLAGE_RESPONSES& deck) {
  constexpr std::array<GRILLAGE_DOF, 3> DOFS = {GRILLAGE_W, GRILLAGE_ROTATION_X, GRILLAGE_ROTATION_Y};
  for (int node = 1; node <= NODES; ++node) {
    T_RESPONSE response = no_response(node, DISP_COMPONENTS, deck);
    for (std::size_t dof = 0; dof < DOFS.size(); ++dof)
      for (int load = 1; load <= deck.LOADS(); ++load)
        response.values[VERTICAL + dof][static_cast<std::size_t>(load) - 1] =
            static_cast<float>(deck.DISPLACEMENT(load, node, DOFS[dof]));
    model.disp.push_back(std::move(response));
  }
}

void add_reactions(T_MODEL& model, const T_GRILLAGE& grillage, const T_GRILLAGE_RESPONSES& deck) {
  int number = 0;
  for (const T_GRILLAGE_SUPPORT& support : grillage.supports) {
    ++number;
    T_RESPONSE response = no_response(support.node, DISP_COMPONENTS, deck);
    for (int load = 1; load <= deck.LOADS(); ++load)
      response.values[VERTICAL][static_cast<std::size_t>(load) - 1] =
          static_cast<float>(deck.REACTION(load, number));
    model.reac.push_back(std::move(response));
  }
}

void add_section_forces(T_MODEL& model, const T_GRILLAGE_RESPONSES& deck) {
  for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam) {
    T_RESPONSE response = no_response(beam, SIMB_COMPONENTS, deck);
    for (int load = 1; load <= deck.LOADS(); ++load) {
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

/// The bearings as struts: a reaction is the force in both ends, in compression.
void add_bearings(T_MODEL& model) {
  for (const T_RESPONSE& support : model.reac) {
    const int place = static_cast<int>(model.trusses.size());
    const int number = BRIDGE_BEARING(place / BRIDGE_BEAMS + 1, place % BRIDGE_BEAMS + 1);
    std::vector<float> force = support.values[VERTICAL];
    for (float& value : force) value = -value;
    model.trusses.push_back({.id = number, .values = std::vector(TRUSS_VALUES, force)});
  }
}

void add_beams(T_MODEL& model, const T_GRILLAGE_RESPONSES& deck) {
  const std::vector<LOAD_SIDE> sides = load_sides();
  for (std::size_t span = 1; span < SUPPORT_STATIONS.size(); ++span) {
    for (int beam = 1; beam <= BRIDGE_BEAMS; ++beam) {
      std::vector<int> members;
      for (int station = SUPPORT_STATIONS[span - 1]; station < SUPPORT_STATIONS[span]; ++station)
        members.push_back(beam_member(station, beam));
      model.beams.push_back(
          BEAM_RESPONSE(BRIDGE_BEAM(static_cast<int>(span), beam), sides, BEAM_MODULI,
                        [&](int load, double part) { return deck.BEAM_FORCES(load, members, part); }));
    }
  }
}

/// A metre of slab between two beams, whose strip of the grillage gives its forces per metre.
void add_panels(T_MODEL& model, const T_GRILLAGE_RESPONSES& deck) {
  for (int panel = 1; panel < BRIDGE_BEAMS; ++panel) {
    T_RESPONSE response = no_response(BRIDGE_PANEL(panel), PLATE_VALUES, deck);
    const std::array<int, 1> strip = {slab_member(35, panel)};
    for (int load = 1; load <= deck.LOADS(); ++load) {
      const T_SECTION_FORCES middle = deck.BEAM_FORCES(load, strip, 0.5).load_behind;
      const auto set = [&](BRIDGE_PANEL_ITEM item, double value) {
        response.values[static_cast<std::size_t>(item) - 1][static_cast<std::size_t>(load) - 1] =
            static_cast<float>(value);
      };
      set(BRIDGE_PANEL_MOMENT_ACROSS, middle.moment);
      set(BRIDGE_PANEL_TORSION, middle.torsion);
      set(BRIDGE_PANEL_SHEAR_ACROSS, middle.shear);
    }
    model.plates.push_back(std::move(response));
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

  const auto behind = [station](int beam) { return unit_load(station, beam, LOAD_SIDE::BEHIND); };
  const auto before = [station](int beam) { return unit_load(station + 1, beam, LOAD_SIDE::BEFORE); };
  lane.spread_rows.push_back({{.load = behind(left), .weight = 0.5 * (1.0 - share)},
                              {.load = behind(left + 1), .weight = 0.5 * share},
                              {.load = before(left), .weight = 0.5 * (1.0 - share)},
                              {.load = before(left + 1), .weight = 0.5 * share}});
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

std::vector<T_NAMED_RESULT> make_element_results() {
  const int inner_beam = BRIDGE_BEAM(2, 3);
  const auto of_inner_beam = [&](const std::string& name, int item, const char* unit) {
    return T_NAMED_RESULT{name + ", inner beam", BEAM_KIND, inner_beam, item, unit};
  };
  return {
      of_inner_beam("moment at midspan of the main span", BEAM_FORCE_ITEM(BEAM_MIDDLE, BEAM_MOMENT), "kNm"),
      of_inner_beam("moment over pier 1", BEAM_FORCE_ITEM(BEAM_START, BEAM_MOMENT), "kNm"),
      of_inner_beam("shear behind pier 1", BEAM_FORCE_ITEM(BEAM_START, BEAM_SHEAR), "kN"),
      of_inner_beam("shear at midspan of the main span", BEAM_FORCE_ITEM(BEAM_MIDDLE, BEAM_SHEAR), "kN")};
}

}  // namespace

int BRIDGE_LOADED_NODE(int load) {
  if (load <= NODES) return load;
  const int place = load - NODES - 1;
  const std::size_t section = static_cast<std::size_t>(place / BRIDGE_BEAMS) % SECTION_STATIONS.size();
  return BRIDGE_NODE(SECTION_STATIONS[section], place % BRIDGE_BEAMS + 1);
}

T_EXAMPLE EXAMPLE_BRIDGE() {
  const T_GRILLAGE grillage = make_grillage();
  std::vector<int> loaded_nodes;
  for (int load = 1; load <= NODES + 2 * ONE_SIDED_LOADS; ++load)
    loaded_nodes.push_back(BRIDGE_LOADED_NODE(load));
  const T_GRILLAGE_RESPONSES deck = SOLVE_GRILLAGE(grillage, loaded_nodes);

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
  example.element_results = make_element_results();

  T_MODEL& model = example.model;
  model.unit_loads = deck.LOADS();
  model.plate_form = PLATE_FORM;
  model.elements_per_file = ELEMENTS_PER_FILE;
  for (int lane = 1; lane <= NOTIONAL_LANES; ++lane) model.lanes.push_back(make_lane({axis_of(lane)}));
  model.lanes.push_back(make_straddle_lane());
  model.vehicle_groups = {{.group = 1, .vehicles = {HA_1978_VEHICLE()}}};
  model.moving_load_cases = make_cases();
  add_displacements(model, deck);
  add_reactions(model, grillage, deck);
  add_section_forces(model, deck);
  add_bearings(model);
  add_beams(model, deck);
  add_panels(model, deck);
  return example;
}

}  // namespace modelkit
