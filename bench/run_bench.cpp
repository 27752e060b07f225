// Whole runs and their parts: reading a block, parsing the lanes, the lane phase, the combination phase.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <stdexcept>

#include "bench/bench_models.h"
#include "kernel/block_file.h"
#include "kernel/driver.h"
#include "kernel/input_blocks.h"
#include "results/result_members.h"
#include "results/result_skeleton.h"

namespace {

constexpr std::int32_t LANES = 12;

void must(const STATUS& status) {
  if (!status.OK()) throw std::runtime_error("a benchmark's model can't be read");
}

/// Every record of block LNIF, touched at both ends: the file layer alone, from the page cache.
void read_block(benchmark::State& state) {
  const kernel::T_REQUEST request = bench::DECK_REQUEST(bench::DECK_FILES(LANES, 100));
  std::int64_t bytes = 0;
  for (auto _ : state) {
    kernel::RECORD_FILE unit;
    kernel::BLOCK_READER block;
    must(block.OPEN_MANDATORY(unit, request.FILE_NAME, "LNIF", 0));
    const std::int64_t record_bytes = 4 * std::int64_t{block.REC_WORDS()};
    for (std::int64_t record = 1; record <= block.NUM_REC(); ++record) {
      const std::byte* items = nullptr;
      must(block.READ(record, record_bytes, items));
      benchmark::DoNotOptimize(items[0]);
      benchmark::DoNotOptimize(items[record_bytes - 1]);
    }
    bytes += block.NUM_REC() * record_bytes;
  }
  state.SetBytesProcessed(bytes);
}
BENCHMARK(read_block)->Unit(benchmark::kMillisecond);

void parse_lanes(benchmark::State& state) {
  const kernel::T_REQUEST request = bench::DECK_REQUEST(bench::DECK_FILES(LANES, 100));
  kernel::RECORD_FILE unit;
  kernel::T_COUNTS counts;
  must(kernel::READ_COUNTS(unit, request.FILE_NAME, counts));
  for (auto _ : state) {
    std::vector<search::T_LANE> lanes;
    must(kernel::READ_LANES(unit, request.FILE_NAME, counts, lanes));
    benchmark::DoNotOptimize(lanes.data());
  }
  state.counters["points"] = benchmark::Counter(12000, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(parse_lanes)->Unit(benchmark::kMillisecond);

/// A run as a host asks for it, by number of combinations.
void whole_run(benchmark::State& state) {
  const auto combinations = static_cast<std::int32_t>(state.range(0));
  const kernel::T_REQUEST request = bench::DECK_REQUEST(bench::DECK_FILES(LANES, combinations));
  for (auto _ : state) {
    kernel::RECORD_FILE unit;
    kernel::T_MODEL model;
    must(kernel::READ_MODEL(unit, request, LANES, model));
    kernel::T_ENVELOPE envelope(model.COUNTS.NUM_LANE);
    must(kernel::RUN_LANE_ANALYSIS(model, request, unit, envelope));
    benchmark::DoNotOptimize(envelope.FINAL_MAX);
  }
}
BENCHMARK(whole_run)->Arg(100)->Arg(50000)->Unit(benchmark::kMillisecond);

/// One beam result with HA and HB: the whole run, and what reading the model takes of it.
void beam_result(benchmark::State& state) {
  const kernel::T_REQUEST request = bench::BRIDGE_REQUEST();
  for (auto _ : state) {
    kernel::RECORD_FILE unit;
    kernel::T_MODEL model;
    must(kernel::READ_MODEL(unit, request, bench::BRIDGE_LANES, model));
    if (state.range(0) != 0) continue;
    kernel::T_ENVELOPE envelope(model.COUNTS.NUM_LANE);
    must(kernel::RUN_LANE_ANALYSIS(model, request, unit, envelope));
    benchmark::DoNotOptimize(envelope.FINAL_MAX);
  }
}
BENCHMARK(beam_result)->ArgName("reading_alone")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Ordinates, ranges and the HA search of all lanes, the model being read.
void lane_phase(benchmark::State& state) {
  const kernel::T_REQUEST request = bench::DECK_REQUEST(bench::DECK_FILES(LANES, 100));
  kernel::RECORD_FILE unit;
  kernel::T_MODEL model;
  must(kernel::READ_MODEL(unit, request, LANES, model));
  search::T_LOAD_ORD LOAD_ORD;
  LOAD_ORD.VALUES.RESIZE(1, model.COUNTS.N_UNIT_LOAD);
  for (std::int32_t k = 1; k <= model.COUNTS.N_UNIT_LOAD; ++k)
    LOAD_ORD.VALUES(1, k) = static_cast<real>(k % 700 - 200);
  for (auto _ : state) {
    benchmark::DoNotOptimize(results::RUN_LANE_PHASE(model, 1, LOAD_ORD, results::ROW_LAYOUT::SIMPLE));
  }
}
BENCHMARK(lane_phase)->Unit(benchmark::kMillisecond);

void* no_memory(std::size_t) {
  return nullptr;
}

/// 50 000 combinations of 12 lanes, held in memory or read from disk; time is for one lane of one
/// combination.
void combination_phase(benchmark::State& state) {
  constexpr std::int32_t COMBINATIONS = 50000;
  const kernel::T_REQUEST request = bench::DECK_REQUEST(bench::DECK_FILES(LANES, COMBINATIONS));
  kernel::RECORD_FILE unit;
  kernel::T_MODEL model;
  const bool on_disk = state.range(0) != 0;
  must(kernel::READ_MODEL(unit, request, LANES, model,
                          on_disk ? no_memory : kernel::COMBINATION_MEMORY_OF_PROCESS));
  search::T_LOAD_ORD LOAD_ORD;
  LOAD_ORD.VALUES.RESIZE(1, model.COUNTS.N_UNIT_LOAD);
  for (std::int32_t k = 1; k <= model.COUNTS.N_UNIT_LOAD; ++k)
    LOAD_ORD.VALUES(1, k) = static_cast<real>(k % 700 - 200);
  const results::T_LANE_PHASE lane_phase =
      results::RUN_LANE_PHASE(model, 1, LOAD_ORD, results::ROW_LAYOUT::SIMPLE);
  for (auto _ : state) {
    kernel::T_ENVELOPE envelope(model.COUNTS.NUM_LANE);
    must(results::RUN_COMBINATION_PHASE(model, lane_phase, 1, envelope));
    benchmark::DoNotOptimize(envelope.FINAL_MAX);
  }
  state.counters["time_a_lane"] =
      benchmark::Counter(static_cast<double>(COMBINATIONS) * LANES,
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(combination_phase)->ArgName("on_disk")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
