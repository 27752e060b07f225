// The HB placing against its yardstick, on girders of 200 m, both directions.
//
// time_a_placement counts the placements that fit. Each size is first run once on both, and a yardstick that
// disagrees ends the benchmark, so that what is timed is the same work.
#include <benchmark/benchmark.h>

#include <random>
#include <stdexcept>

#include "bench/girder_lines.h"
#include "bench/plain_hb_lane.h"
#include "search/hb_placing.h"

namespace {

using bench::EFFECT;
using bench::T_GIRDER;

search::T_VEHICLE_PARAMETERS vehicle_of(const bench::T_PLAIN_VEHICLE& plain) {
  search::T_VEHICLE_PARAMETERS vehicle;
  vehicle.HA_CURVE = {plain.HA_W0, plain.HA_K, plain.HA_WMIN, plain.HA_P, plain.HA_L0};
  vehicle.HB_LOAD = plain.HB_LOAD;
  vehicle.HB_S = plain.HB_S;
  vehicle.HB_B = plain.HB_B;
  vehicle.HB_STEP = plain.HB_STEP;
  return vehicle;
}

const bench::T_PLAIN_VEHICLE PLAIN_VEHICLE;
const search::T_VEHICLE_PARAMETERS VEHICLE = vehicle_of(PLAIN_VEHICLE);

/// A lane with all that a search is asked with.
struct T_LANE {
  T_GIRDER girder;
  std::vector<search::T_ORDINATES> planes;
  search::T_HB_WORK work;

  T_LANE(T_GIRDER its_girder, std::size_t n_planes = 1) : girder(std::move(its_girder)) {
    const auto n = static_cast<std::int32_t>(girder.X.size());
    planes.assign(n_planes, search::T_ORDINATES(n, 1));
    for (std::size_t p = 0; p < n_planes; ++p) {
      const real share = 1 - 0.1F * static_cast<real>(p);
      for (std::int32_t i = 1; i <= n; ++i)
        planes[p](i, 1) = share * girder.Y[static_cast<std::size_t>(i - 1)];
    }
  }
  search::T_SEARCH_RESULT SEARCH(search::HB_SEARCH& search) {
    const auto n = static_cast<std::int32_t>(girder.X.size());
    search::T_SEARCH_RESULT result;
    search({n, {girder.X.data(), {n}}, &planes, {}, &VEHICLE, 2, 1}, work, result);
    return result;
  }
  void EXPECT_YARDSTICK() {
    bench::PLAIN_HB_LANE plain(PLAIN_VEHICLE);
    plain.RUN(girder.X, girder.Y);
    const search::T_SEARCH_RESULT got = SEARCH(search::HB_LANE);
    const auto same = [](const search::T_SIDE_RESULT& a, const bench::T_PLAIN_SIDE& b) {
      return a.VALUE == b.VALUE && a.PASS_REC == b.PASS && a.HB_REC.HB_TYPE == b.HB_TYPE &&
             a.HB_REC.HB_POSITION == b.HB_POSITION && a.HB_REC.W_MILLI == b.W_MILLI;
    };
    if (!same(got[MAX_SIDE], plain.MAXIMUM) || !same(got[MIN_SIDE], plain.MINIMUM))
      throw std::runtime_error("the yardstick gives another answer");
  }
  [[nodiscard]] double PLACEMENTS() const {
    double fitting = 0;
    for (const real x : girder.X) {
      for (std::int32_t type = 0; type < 5; ++type)
        fitting += x + 59.6F + 5.0F * static_cast<real>(type) <= 200;
    }
    return 2 * fitting;
  }
};

void count_placements(benchmark::State& state, const T_LANE& lane) {
  state.counters["time_a_placement"] = benchmark::Counter(
      lane.PLACEMENTS(), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void run_plain(benchmark::State& state, const T_LANE& lane) {
  bench::PLAIN_HB_LANE plain(PLAIN_VEHICLE);
  for (auto _ : state) {
    plain.RUN(lane.girder.X, lane.girder.Y);
    benchmark::DoNotOptimize(plain.MAXIMUM.VALUE);
  }
  count_placements(state, lane);
}
void run_library(benchmark::State& state, T_LANE& lane, search::HB_SEARCH& search) {
  for (auto _ : state) benchmark::DoNotOptimize(lane.SEARCH(search));
  count_placements(state, lane);
}

T_LANE girder_lane(const benchmark::State& state, std::size_t planes = 1) {
  return {T_GIRDER(static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1)),
                   static_cast<EFFECT>(state.range(2))),
          planes};
}

void plain_form(benchmark::State& state) {
  T_LANE lane = girder_lane(state);
  lane.EXPECT_YARDSTICK();
  run_plain(state, lane);
}
template <auto HB_SEARCH, std::size_t PLANES>
void library(benchmark::State& state) {
  T_LANE lane = girder_lane(state, PLANES);
  run_library(state, lane, *HB_SEARCH);
}

void girders(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"n", "spans", "effect"})->Unit(benchmark::kMicrosecond);
  for (const int n : {100, 250, 1000, 4000}) {
    benchmark->Args({n, 1, 0});
    for (const int spans : {2, 3, 6}) {
      for (const int effect : {0, 1, 2}) benchmark->Args({n, spans, effect});
    }
  }
}
void few_girders(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"n", "spans", "effect"})->Unit(benchmark::kMicrosecond);
  for (const int n : {100, 1000}) {
    for (const int spans : {1, 3, 6}) benchmark->Args({n, spans, 0});
  }
}
BENCHMARK(plain_form)->Apply(girders);
BENCHMARK(library<search::HB_LANE, 1>)->Name("HB_LANE")->Apply(girders);
BENCHMARK(library<search::HB_STRADDLE_SUM, 3>)->Name("HB_STRADDLE_SUM_3_PLANES")->Apply(few_girders);
BENCHMARK(library<search::HB_STRADDLE_THIRD, 3>)->Name("HB_STRADDLE_THIRD_3_PLANES")->Apply(few_girders);

/// A line that changes sign at every other point or so: hundreds of ranges.
T_LANE noisy_lane(const benchmark::State& state) {
  T_GIRDER girder(static_cast<std::int32_t>(state.range(0)), 1, EFFECT::FIELD_MOMENT);
  std::mt19937 random(7);
  std::uniform_real_distribution<real> noise(-1, 1);
  for (real& y : girder.Y) y = noise(random);
  return {std::move(girder)};
}
void noisy_plain_form(benchmark::State& state) {
  T_LANE lane = noisy_lane(state);
  lane.EXPECT_YARDSTICK();
  run_plain(state, lane);
}
void noisy_library(benchmark::State& state) {
  T_LANE lane = noisy_lane(state);
  run_library(state, lane, search::HB_LANE);
}
BENCHMARK(noisy_plain_form)->ArgName("n")->Arg(250)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(noisy_library)
    ->Name("noisy_HB_LANE")
    ->ArgName("n")
    ->Arg(250)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
