// The HA search of a lane by number of points, on the influence line of a continuous girder.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "search/ha_search.h"

namespace {

/// A lane of 200 m over a girder of the given number of spans: the line changes sign at each support.
struct T_GIRDER {
  std::vector<real> X;
  std::vector<real> Y;

  T_GIRDER(std::int32_t points, std::int32_t spans) {
    for (std::int32_t i = 0; i < points; ++i) {
      const double x = 200.0 * i / (points - 1);
      X.push_back(static_cast<real>(x));
      Y.push_back(static_cast<real>(5.0 * std::sin(M_PI * spans * x / 200.0) * std::exp(-0.004 * x)));
    }
  }
  [[nodiscard]] search::T_LINE LINE() const {
    const auto n = static_cast<std::int32_t>(X.size());
    const TABLE<const real, POINT> y(Y.data(), {n});
    return {n, TABLE<const real, POINT>(X.data(), {n}), y, y, false};
  }
};

constexpr search::T_HA_CURVE HA_1978{30, 151, 9, 0.475F, 30};

template <auto HA_SEARCH>
void ha_search_lane(benchmark::State& state) {
  const T_GIRDER girder(static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1)));
  search::T_RANGE_WORK work;
  for (auto _ : state) benchmark::DoNotOptimize(HA_SEARCH(girder.LINE(), HA_1978, 120.0F, work));
  state.counters["time_a_point"] =
      benchmark::Counter(static_cast<double>(state.range(0)),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(ha_search_lane<search::HA_SEARCH_LANE>)
    ->Name("HA_SEARCH_LANE")
    ->ArgNames({"n", "ranges"})
    ->ArgsProduct({{100, 1000, 10000}, {1, 3, 6}});
BENCHMARK(ha_search_lane<search::HA_SEARCH_LANE_JUMP>)
    ->Name("HA_SEARCH_LANE_JUMP")
    ->ArgNames({"n", "ranges"})
    ->ArgsProduct({{1000}, {3}});

}  // namespace
