// Whole runs against the judge on random models: both values and every entry of every array, bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "tests/host/host_call.h"
#include "tests/host/plain_run.h"
#include "tests/host/result_items.h"
#include "tests/random.h"
#include "tests/temporary_directory.h"

namespace {

using modelkit::T_FILE_FORM;
using modelkit::T_MODEL;
using modelkit::T_RESPONSE;

constexpr std::uint64_t N_MODELS = 600;
constexpr int REQUESTS = 16;          // of a model
constexpr std::uint64_t CHOPPY = 50;  // one model in so many has lists of ranges beyond their limits

int greatest_class(const T_MODEL& model) {
  int greatest = 0;
  for (const auto& group : model.vehicle_groups)
    for (const auto& vehicle : group.vehicles) greatest = std::max(greatest, vehicle.vehicle_class);
  return greatest;
}

/// Groups numbered otherwise than their classes, columns without class, several vehicles of a class or of
/// other codes, counts that tell less or more than the lists hold.
void change_vehicles(T_MODEL& model, RANDOM& random) {
  const int classes = greatest_class(model);
  const bool groups_apart = random.one_in(4);
  const bool classes_apart = random.one_in(4);
  for (auto& group : model.vehicle_groups) {
    if (groups_apart) group.group = random.between(0, classes);
    while (random.one_in(4) && group.vehicles.size() < 4) group.vehicles.push_back(group.vehicles.front());
    for (auto& vehicle : group.vehicles) {
      if (classes_apart) vehicle.vehicle_class = random.between(random.one_in(4) ? 0 : 1, classes);
      if (random.one_in(20)) vehicle.code = random.one_of<int>({14, 15, 16, 0, -20});
      if (random.one_in(8)) vehicle.load_count = random.one_of<int>({0, 1, 100});
      if (random.one_in(8)) vehicle.geometry_count = random.one_of<int>({-1, 0, 1, 100});
      if (random.one_in(8)) vehicle.ha_wmin = vehicle.ha_w0 + 1.0;
      if (random.one_in(8)) vehicle.loads[0] = -vehicle.loads[0];
      if (random.one_in(8)) vehicle.loads[1] = -vehicle.loads[1];
      // Axles close together, at whole half metres, so that they and the HB's ends stand on points.
      if (random.one_in(3))
        for (const std::size_t i : {1U, 2U, 3U}) vehicle.geometry[i] = 0.5 * random.between(0, 4);
    }
  }
  // Codes and axle lists stay within the classes that are left.
  const int left = greatest_class(model);
  std::erase_if(model.axle_lists, [left](const auto& list) { return list.vehicle_class > left; });
  for (auto& load_case : model.moving_load_cases)
    for (auto& combination : load_case.combinations)
      for (auto& load : combination) load.code = std::min(load.code, 4 * left);
}

/// Classes with numbers above that of the vehicles, which have no geometry when ranges are trimmed.
void shift_classes(T_MODEL& model, int by) {
  for (auto& group : model.vehicle_groups) {
    group.group += by;
    for (auto& vehicle : group.vehicles) vehicle.vehicle_class += by;
  }
  for (auto& list : model.axle_lists) list.vehicle_class += by;
  for (auto& load_case : model.moving_load_cases)
    for (auto& combination : load_case.combinations)
      for (auto& load : combination)
        if (load.code != 0) load.code += 4 * by;
}

/// Lists with entries beyond the four axles and such as are no lane; of equal lists the last counts.
void change_axle_lists(T_MODEL& model, RANDOM& random) {
  const int lanes = static_cast<int>(model.lanes.size());
  for (auto& list : model.axle_lists) {
    if (random.one_in(4)) list.lanes.push_back(random.between(0, lanes));
    if (random.one_in(4)) list.lanes.front() = -random.between(1, 3);
  }
  const auto same_again = model.axle_lists;
  for (const auto& list : same_again) {
    if (!random.one_in(6)) continue;
    model.axle_lists.push_back(list);
    for (auto& lane : model.axle_lists.back().lanes) lane = random.between(0, lanes);
  }
}

/// Positions that stand three to six times, points without links, spread rows longer than a record, straddle
/// lanes beside any lane.
void change_lanes(T_MODEL& model, RANDOM& random) {
  if (random.one_in(10)) model.class_lanes = true;
  for (auto& lane : model.lanes) {
    const bool piles_up = random.one_in(3);
    for (std::size_t k = 1; piles_up && k < lane.points.size(); ++k)
      if (random.one_in(2)) lane.points[k].x = lane.points[k - 1].x;
    if (lane.is_straddle && random.one_in(4))
      lane.right_parent = random.between(1, static_cast<int>(model.lanes.size()));
    for (auto& point : lane.points) {
      if (random.one_in(30)) point.entries.clear();
      if (random.one_in(30)) point.impact = random.one_of<double>({-1.0, 0.1, 1e-9});
    }
    for (auto& row : lane.spread_rows)
      if (random.one_in(8)) row.resize(6, row.empty() ? modelkit::T_LOAD_SHARE{1, 0.3} : row.front());
  }
}

/// Definitions of equal number, for the same lane twice, of number 0, with fewer or more points and entries
/// than their lane.
void change_definitions(T_MODEL& model, RANDOM& random) {
  auto& definitions = model.class_definitions;
  if (!definitions.empty() && random.one_in(3)) {
    definitions.push_back(random.one_of(definitions));
    definitions.back().b1 = 0;
    if (random.one_in(2)) definitions.back().number += 1000;
  }
  for (auto& definition : definitions) {
    if (random.one_in(6)) definition.number = random.one_of<int>({0, -3, 7, definitions.front().number});
    if (random.one_in(6)) definition.links.resize(definition.links.size() / 2);
    if (random.one_in(6) && !definition.links.empty())
      definition.links.resize(definition.links.size() + 3, definition.links.front());
    if (random.one_in(6)) definition.entries_per_point = random.between(1, 4);
    if (random.one_in(2)) definition.entries_per_plane = random.between(1, 7);
  }
}

/// Scales below 0, such as are 0 once narrowed, and such as don't fit their record; combinations shorter than
/// the lane list; a case of one combination twice.
void change_combinations(T_MODEL& model, RANDOM& random) {
  for (auto& load_case : model.moving_load_cases) {
    for (auto& combination : load_case.combinations) {
      for (auto& load : combination)
        if (random.one_in(12)) load.scale = random.one_of<double>({-1.0, 1e-60, 1e-9, 300.0, -0.0, -300.0});
      if (random.one_in(12)) combination.resize(combination.size() / 2);
    }
    if (!load_case.combinations.empty() && random.one_in(6))
      load_case.combinations.push_back(load_case.combinations.front());
  }
}

/// Nodes that stand twice among those that are searched for by number, signs turned; responses cut short;
/// plates of no form, and no elements in a file.
void change_responses(T_MODEL& model, RANDOM& random) {
  for (auto* const block : {&model.reac, &model.lrac, &model.ldisp}) {
    std::vector<T_RESPONSE>& responses = *block;
    if (random.one_in(4) && !responses.empty()) {
      responses.push_back(random.one_of(responses));
      for (auto& component : responses.back().values)
        for (float& value : component) value = -value;
    }
    if (random.one_in(10)) responses.clear();
  }
  for (auto& component : model.disp.front().values)
    if (random.one_in(10)) component.resize(component.size() / 2);
  model.plate_form += 100 * random.between(0, 1);
  if (random.one_in(20)) model.plate_form = random.one_of<int>({0, 5, 100});
  if (random.one_in(20)) model.elements_per_file = random.one_of<int>({0, -1, INT_MAX});
}

/// One lane with a wave of one range at every second point, all of them loaded: more ranges than the lists of
/// distances hold, with room for an HB beside them, or more than the lists of loaded ranges hold.
void make_choppy(T_MODEL& model, bool with_room_for_hb) {
  auto& points = model.lanes.front().points;
  points.assign(with_room_for_hb ? 420 : 2600, {});
  for (std::size_t k = 0; k < points.size(); ++k) {
    const auto load = static_cast<std::int32_t>(k % static_cast<std::size_t>(model.unit_loads)) + 1;
    points[k].x = (with_room_for_hb ? 0.2 : 0.01) * static_cast<double>(k);
    points[k].entries = {{.a = {.load = load, .weight = k % 4 < 2 ? 1.0 : -1.0}, .b = {}}};
  }
  for (auto& response : model.disp)
    for (auto& component : response.values)
      for (std::size_t load = 0; load < component.size(); ++load)
        component[load] = load % 2 == 0 ? 1.0F + static_cast<float>(load % 7) : 0.0F;
  model.beams = {{.id = 1, .values = std::vector(68, model.disp.front().values.front())}};
  for (auto& group : model.vehicle_groups)
    for (auto& vehicle : group.vehicles) vehicle.geometry[0] = 1e6;
}

/// The base is valid in the sense of RANDOM_MODEL; what is changed in it stays sound.
T_MODEL model_of(std::uint64_t seed, RANDOM& random) {
  modelkit::T_RANDOM_OPTIONS options;
  options.other_sub_cases = random.one_of<double>({0.1, 0.5, 0.9});
  options.straddle_lanes = seed % 3 == 0 ? 1.0 : 0.0;
  options.axle_lists = seed % 5 == 0 ? 1.0 : 0.0;
  options.class_definitions = seed % 4 == 0 ? 1.0 : 0.0;
  options.warping = 0.3;
  options.longest_step = random.one_of<double>({seed % 3 == 0 ? 12.0 : 0.6, 5.0, 12.0, 30.0});
  const bool is_choppy = seed % CHOPPY == 1;
  if (is_choppy) {
    options.max_lanes = 1;
    options.other_sub_cases = seed % 4 == 1 ? 1.0 : 0.0;
    options.responses_of_all_kinds = false;
  }
  T_MODEL model = modelkit::RANDOM_MODEL(random.engine, options);
  if (is_choppy) make_choppy(model, seed % 4 == 1);
  if (random.one_in(4)) return model;
  if (random.one_in(12)) shift_classes(model, random.one_of<int>({1, 99}));
  change_vehicles(model, random);
  change_lanes(model, random);
  change_axle_lists(model, random);
  change_definitions(model, random);
  change_combinations(model, random);
  change_responses(model, random);
  return model;
}

T_FILE_FORM form_of(RANDOM& random) {
  T_FILE_FORM form;
  // Codes 2 and 4 read no class definitions.
  form.analysis_code = random.one_in(2) ? 0 : random.between(0, 4);
  form.long_vehicles = random.one_in(2);
  form.short_mldi = random.one_in(2);
  form.reverse_entries = random.one_in(2);
  form.unused_groups = random.between(0, 2);
  form.header_groups_behind = random.one_in(2);
  return form;
}

struct REQUEST {
  int KIND = 0, ID = 0, ITEM = 1, MV_CASE = 1;
};

REQUEST request_of(const T_MODEL& model, RANDOM& random) {
  // Every second for a beam or a wall; a few for what the model has no responses of.
  constexpr int LAST = static_cast<int>(plain::KINDS.size()) - 1;
  const auto any_kind = [&] {
    return plain::KINDS.at(static_cast<std::size_t>(random.between(random.one_in(2) ? LAST - 1 : 0, LAST)));
  };
  plain::KIND kind = any_kind();
  while ((model.*kind.RESPONSES).empty() && !random.one_in(4)) kind = any_kind();
  const auto& responses = model.*kind.RESPONSES;
  const int items = plain::ITEMS_OF(kind, model), cases = static_cast<int>(model.moving_load_cases.size());
  REQUEST request;
  request.KIND = kind.RESULT_KIND;
  request.ID = responses.empty() || random.one_in(8) ? random.between(-1, 12) : random.one_of(responses).id;
  request.ITEM = items == 0 || random.one_in(30) ? random.one_of<int>({0, -7, items + 1, INT_MAX, INT_MIN})
                                                 : random.between(1, items);
  request.MV_CASE = random.one_in(10) ? random.one_of<int>({-1, 0, cases + 1}) : random.between(1, cases);
  return request;
}

/// What the models have reached, so that a change of the generator can't quietly lose what it is there for.
struct SEEN {
  std::map<std::string, int> COUNTS;

  void note(const T_MODEL& model, const REQUEST& asked, const host::ARGUMENTS& got) {
    COUNTS["failed runs"] += got.MODE_CODE == -1;
    if (got.K_MXLOAD(1, 1) == host::UNTOUCHED) return;
    const std::string layout = plain::MAY_JUMP(asked.KIND, asked.ITEM) ? ", may jump" : "";
    const bool both_sides = got.FINAL_MAX > 0 && got.FINAL_MIN < 0;
    COUNTS["both sides"] += both_sides;
    COUNTS["two columns"] += both_sides && plain::VALUES_OF(asked.KIND, asked.ITEM).size() == 2;
    const plain::KIND* const kind = plain::KIND_OF(asked.KIND);
    COUNTS["further files"] += both_sides && kind->OF_ELEMENTS && asked.ID > model.elements_per_file;
    COUNTS["nothing to search"] += got.FINAL_MAX == host::UNTOUCHED;
    for (int lane = 1; lane <= got.NUM_LANE; ++lane) {
      const bool straddles = model.lanes[static_cast<std::size_t>(lane) - 1].is_straddle;
      COUNTS["several ranges" + layout] += got.K_MXLOAD(MOVLOAD_NO_LOADED_RANGE + 1, lane) > 1;
      COUNTS["full lists" + layout] += got.K_MXLOAD(MOVLOAD_NO_LOADED_RANGE + 1, lane) == 500;
      COUNTS["full distances" + layout] += got.DISTANCE_MAX_RANGE(200, lane) > 0;
      COUNTS["factors too large"] += got.K_MXLOAD(MOVLOAD_FACTOR + 1, lane) == INT_MIN;
      for (const auto& [own, planes] :
           {std::pair(&got.K_MXLOAD, &got.K_MXLOAD1ST), {&got.K_MNLOAD, &got.K_MNLOAD1ST}}) {
        const int type = (*own)(MOVLOAD_COMB_TYPE + 1, lane);
        const std::string pass = " in pass " + std::to_string(type / 100) + layout;
        const bool has_hb = (*own)(MOVLOAD_POSITION_OF_HB + 1, lane) != 0;
        const bool has_planes = (*planes)(MOVLOAD_POSITION_OF_HB + 1, lane) != 0;
        if (!straddles) COUNTS["combination type " + std::to_string(type % 100)] += 1;
        if (has_hb) COUNTS[(straddles ? "sub-case 3" : "HB") + pass] += 1;
        if (has_planes) COUNTS["sub-case 4" + pass] += 1;
      }
    }
  }
};

std::string told(std::uint64_t seed, const REQUEST& asked, const T_FILE_FORM& form) {
  std::ostringstream text;
  text << "seed " << seed << ", kind " << asked.KIND << ", id " << asked.ID << ", item " << asked.ITEM
       << ", case " << asked.MV_CASE << ", analysis code " << form.analysis_code;
  return text.str();
}

host::ARGUMENTS judged(const T_MODEL& model, int lanes, const T_FILE_FORM& form, const REQUEST& asked,
                       plain::MET* met = nullptr) {
  return plain::RUN(model, lanes, form.analysis_code, asked.KIND, asked.ID, asked.ITEM, asked.MV_CASE, met);
}
host::ARGUMENTS answered(const std::string& base, int lanes, const T_FILE_FORM& form, const REQUEST& asked) {
  return host::RUN(lanes, base, form.analysis_code, asked.KIND, asked.ID, asked.ITEM, asked.MV_CASE);
}

TEST(random_runs, every_array_of_the_host_equals_the_plain_steps) {
  // Unit 78 is opened in the working directory and stays open.
  static const TEMPORARY_DIRECTORY working_directory;
  const std::filesystem::path folder = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(working_directory.NAME()).parent_path());
  SEEN seen;
  plain::MET met;
  std::vector<std::string> differences;
  testing::internal::CaptureStdout();
  for (std::uint64_t seed = 1; seed <= N_MODELS && differences.size() < 5; ++seed) {
    RANDOM random(seed);
    T_MODEL model = model_of(seed, random);
    const T_FILE_FORM form = form_of(random);
    const TEMPORARY_DIRECTORY directory;
    modelkit::WRITE_MODEL(model, directory.NAME(), form);

    const int lanes = static_cast<int>(model.lanes.size());
    const host::LANE_COUNT answer = host::NUM_LANE(directory.NAME(), form.analysis_code);
    if (answer.NUM_LANE != lanes || answer.MODE_CODE != form.analysis_code)
      differences.push_back("lane count of seed " + std::to_string(seed));

    for (int i = 0; i < (seed % CHOPPY == 1 ? REQUESTS / 2 : REQUESTS); ++i) {
      const REQUEST request = request_of(model, random);
      const int host_lanes = lanes + (random.one_in(4) ? random.between(1, 3) : 0);
      const auto expected = judged(model, host_lanes, form, request, &met);
      const auto got = answered(directory.NAME(), host_lanes, form, request);
      seen.note(model, request, got);
      if (expected == got) continue;
      differences.push_back(told(seed, request, form) + ": " + host::SAME(expected, got).message());
      break;
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), met.PRINTED);
  std::filesystem::current_path(folder);
  EXPECT_EQ(differences, std::vector<std::string>{});
  for (const auto& [what, times] : seen.COUNTS)
    EXPECT_GE(times, what.starts_with("full lists") ? 5 : 50) << what;
  EXPECT_EQ(seen.COUNTS.size(), 29U);
  EXPECT_GT(std::min({met.SETS_OF_OTHER_LANES, met.MERGED_LISTS, met.SPLIT_RANGES, met.JUMPS_ACROSS_ZERO}),
            500);
}

void expect_as_judged(const T_MODEL& model, const REQUEST& request) {
  const TEMPORARY_DIRECTORY directory;
  modelkit::WRITE_MODEL(model, directory.NAME());
  const int lanes = static_cast<int>(model.lanes.size());
  EXPECT_TRUE(host::SAME(judged(model, lanes, {}, request), answered(directory.NAME(), lanes, {}, request)))
      << told(0, request, {});
}

TEST(small_models, a_model_may_lack_cases_combinations_vehicles_points_or_lanes) {
  RANDOM random(1);
  const T_MODEL whole = modelkit::RANDOM_MODEL(random.engine);
  using CHANGE = void (*)(T_MODEL&);
  for (const CHANGE change : std::initializer_list<CHANGE>{
           [](T_MODEL&) {}, [](T_MODEL& m) { m.moving_load_cases[0].combinations.clear(); },
           [](T_MODEL& m) { m.moving_load_cases.clear(); },
           [](T_MODEL& m) { m.moving_load_cases.clear(), m.vehicle_groups.clear(); },
           [](T_MODEL& m) { m.moving_load_cases.clear(), m.vehicle_groups.clear(), m.lanes.clear(); },
           [](T_MODEL& m) { m.vehicle_groups[0].vehicles.clear(); },
           [](T_MODEL& m) { m.lanes[0].points.clear(); },
           [](T_MODEL& m) { m.lanes[0].entries_per_point = 0; }}) {
    T_MODEL model = whole;
    change(model);
    expect_as_judged(model, {.KIND = MOVLOAD_RK_DISP, .ID = whole.disp[0].id, .ITEM = 3, .MV_CASE = 1});
  }
}

TEST(small_models, kinds_with_nothing_to_search_leave_both_values_alone) {
  RANDOM random(1);
  const T_MODEL model = modelkit::RANDOM_MODEL(random.engine);
  for (const int kind : {-1, 0, 7, 8, 9, 11, 15, 17, INT_MAX, INT_MIN})
    expect_as_judged(model, {.KIND = kind, .ID = 1, .ITEM = 1, .MV_CASE = 1});
  // Beyond the components of a beam not even the frame runs: NUM_LANE and all arrays stay.
  expect_as_judged(model, {.KIND = MOVLOAD_RK_BEAM, .ID = 1, .ITEM = 51, .MV_CASE = 1});
}

}  // namespace
