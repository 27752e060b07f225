// The influence store on a sparse set of some 6 GB with a million ids: opening it, and reading records
// against a plain pread of the same bytes.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/bench_folder.h"
#include "modelkit/volume_set.h"
#include "store/influence_reads.h"
#include "store/m_influence.h"

namespace {

using bench::FILE_IN_FOLDER;

const std::string& large_set() {
  static const std::string base = [] {
    modelkit::WRITE_VOLUME_SET(modelkit::LARGE_VOLUME_SET(), FILE_IN_FOLDER("large"));
    return FILE_IN_FOLDER("large");
  }();
  return base;
}

void must(const STATUS& status) {
  if (!status.OK()) throw std::runtime_error("a benchmark's volumes can't be read");
}

double heap_bytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

double resident_bytes() {
  std::ifstream statm("/proc/self/statm");
  double pages = 0;
  statm >> pages >> pages;
  return pages * 4096;
}

void open_million_ids(benchmark::State& state) {
  const std::string& base = large_set();
  double bytes = 0;
  for (auto _ : state) {
    const double before = heap_bytes();
    store::INFLUENCE_STORE store;
    must(store.OPEN(base));
    bytes = heap_bytes() - before;
  }
  state.counters["bytes_an_id"] = bytes / 1e6;
}
BENCHMARK(open_million_ids)->Unit(benchmark::kMillisecond);

// Links with 68 values under 2000 loads, stored as they are read; enough of them to keep records out of the
// near caches.
constexpr std::int32_t VALUES = 68;
constexpr std::int32_t LOADS = 2000;
constexpr std::int32_t LINKS = 64;
constexpr std::size_t RECORD_VALUES = std::size_t{VALUES} * LOADS;

modelkit::T_VOLUME_LAYOUT write_links() {
  modelkit::T_VOLUME_BLOCK block{.tag = modelkit::STREAM_ELEMENTS,
                                 .item_codes = std::vector<std::int32_t>(VALUES, 520401),
                                 .result_code = 520401,
                                 .data = std::vector<float>(RECORD_VALUES * LINKS, 1.0F)};
  for (std::int32_t id = 1; id <= LINKS; ++id) block.ids.push_back(id);
  return modelkit::WRITE_VOLUME_SET({.load_ids = std::vector<std::int32_t>(LOADS, 1), .volumes = {{block}}},
                                    FILE_IN_FOLDER("links"));
}

const modelkit::T_VOLUME_LAYOUT& links() {
  static const modelkit::T_VOLUME_LAYOUT layout = write_links();
  return layout;
}

/// One record again and again, two, or many in turn.
void plain_pread(benchmark::State& state) {
  const modelkit::T_WRITTEN_VOLUME_BLOCK& block = links().blocks[0];
  const int file = ::open(links().paths[0].c_str(), O_RDONLY);
  std::vector<float> values(RECORD_VALUES);
  std::int64_t record = 0;
  for (auto _ : state) {
    const std::int64_t offset = block.data_offset + record * block.record_bytes;
    if (::pread(file, values.data(), static_cast<std::size_t>(block.record_bytes), offset) !=
        block.record_bytes)
      throw std::runtime_error("a benchmark's volume can't be read");
    benchmark::DoNotOptimize(values.data());
    record = (record + 1) % state.range(0);
  }
  ::close(file);
}
BENCHMARK(plain_pread)->ArgName("records")->Arg(1)->Arg(2)->Arg(LINKS)->Unit(benchmark::kMicrosecond);

/// Of one record again and again all but the first read find it in view.
void read_all_loads(benchmark::State& state) {
  store::INFLUENCE_STORE store;
  links();
  must(store.OPEN(FILE_IN_FOLDER("links")));
  std::vector<float> rows(RECORD_VALUES);
  std::int32_t id = 1;
  must(READ_ALL(store, {store::READ::ELEMENT, id, VALUES}, rows.data()));
  const double before = resident_bytes();
  for (auto _ : state) {
    must(READ_ALL(store, {store::READ::ELEMENT, id, VALUES}, rows.data()));
    benchmark::DoNotOptimize(rows.data());
    id = id % static_cast<std::int32_t>(state.range(0)) + 1;
  }
  state.counters["resident_growth"] = resident_bytes() - before;
}
BENCHMARK(read_all_loads)->ArgName("records")->Arg(1)->Arg(2)->Arg(LINKS)->Unit(benchmark::kMicrosecond);

/// The loads of a record in turn, or one load of many records.
void read_one_load(benchmark::State& state) {
  store::INFLUENCE_STORE store;
  links();
  must(store.OPEN(FILE_IN_FOLDER("links")));
  std::vector<float> row(VALUES);
  const auto records = static_cast<std::int32_t>(state.range(0));
  std::int32_t read = 0;
  for (auto _ : state) {
    must(READ_ONE(store, {store::READ::ELEMENT, read % records + 1, VALUES}, read % LOADS + 1, row.data()));
    ++read;
  }
}
BENCHMARK(read_one_load)->ArgName("records")->Arg(1)->Arg(LINKS)->Unit(benchmark::kMicrosecond);

/// As a run reads: one component of a record.
void read_component(benchmark::State& state) {
  store::INFLUENCE_STORE store;
  links();
  must(store.OPEN(FILE_IN_FOLDER("links")));
  std::vector<float> column(LOADS);
  std::int32_t id = 0;
  for (auto _ : state) {
    store::T_READ read{store::READ::ELEMENT, id++ % LINKS + 1, VALUES};
    read.FIRST_POSITION = 7;
    read.POSITIONS = 1;
    must(READ_ALL(store, read, column.data()));
  }
}
BENCHMARK(read_component)->Unit(benchmark::kMicrosecond);

}  // namespace
