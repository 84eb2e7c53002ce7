// SPDX-License-Identifier: BSD-3-Clause
// What the allocator costs.
//
//   build/release/bin/heap_benchmark --benchmark_repetitions=5
//       --benchmark_report_aggregates_only=true
//
// BM_Off alternates, in one run, batches of lx_malloc and lx_free with batches of the runtime's
// own malloc and free over the same sizes. Its counter ratio is the one to the other, by the
// medians of the batches. BM_Tracked keeps 100,000 blocks alive under a full account, frees one
// of them at random and makes another; its counters are the medians of each, in nanoseconds,
// less the reading of the clock.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "baselib/utils/heap.h"
#include "baselib/utils/heap_tracking.h"

namespace {

using Clock = std::chrono::steady_clock;

double Nanoseconds(Clock::duration time) {
  return std::chrono::duration<double, std::nano>(time).count();
}

double Median(std::vector<double>* times) {
  const auto middle = times->begin() + static_cast<std::ptrdiff_t>(times->size() / 2);
  std::nth_element(times->begin(), middle, times->end());
  return *middle;
}

constexpr std::size_t kBatch = 1024;

// How long a batch takes: every block is made, then every block is given back.
template <class Make, class GiveBack>
double TimeBatch(const std::vector<std::uint32_t>& sizes, Make make, GiveBack giveBack) {
  void* blocks[kBatch];
  const Clock::time_point start = Clock::now();
  for (std::size_t i = 0; i < kBatch; ++i) {
    blocks[i] = make(sizes[i]);
    benchmark::DoNotOptimize(blocks[i]);
  }
  for (void* block : blocks) {
    giveBack(block);
  }
  return Nanoseconds(Clock::now() - start);
}

void BM_Off(benchmark::State& state) {
  std::mt19937 random(1);
  std::vector<std::uint32_t> sizes(kBatch);
  for (std::uint32_t& size : sizes) {
    size = 1 + random() % static_cast<std::uint32_t>(state.range(0));
  }
  const auto runtimeMake = [](std::uint32_t size) { return std::malloc(size); };
  const auto runtimeGiveBack = [](void* block) { std::free(block); };
  const auto ownMake = [](std::uint32_t size) { return lx::lx_malloc(size); };
  const auto ownGiveBack = [](void* block) { lx::lx_free(block); };
  std::vector<double> runtime;
  std::vector<double> own;
  bool ownFirst = false;
  for (auto _ : state) {
    // Whoever comes second finds the caches warm.
    if (ownFirst) {
      own.push_back(TimeBatch(sizes, ownMake, ownGiveBack));
      runtime.push_back(TimeBatch(sizes, runtimeMake, runtimeGiveBack));
    } else {
      runtime.push_back(TimeBatch(sizes, runtimeMake, runtimeGiveBack));
      own.push_back(TimeBatch(sizes, ownMake, ownGiveBack));
    }
    ownFirst = !ownFirst;
  }
  const double ownTime = Median(&own);
  state.counters["pair_ns"] = ownTime / kBatch;
  state.counters["ratio"] = ownTime / Median(&runtime);
}
BENCHMARK(BM_Off)->Arg(64)->Arg(1024)->Arg(16384)->MinTime(1.0);

void BM_Tracked(benchmark::State& state) {
  constexpr std::size_t kLive = 100000;
  lx::hm_set_switches(1, 1, 0);
  std::mt19937 random(1);
  const auto size = [&] { return 1 + random() % 1024U; };
  std::vector<void*> blocks(kLive);
  for (void*& block : blocks) {
    block = lx::lx_malloc(size());
  }
  std::vector<double> reading;
  std::vector<double> freeing;
  std::vector<double> making;
  for (auto _ : state) {
    void*& block = blocks[random() % kLive];
    const std::uint32_t bytes = size();
    const Clock::time_point first = Clock::now();
    const Clock::time_point start = Clock::now();
    lx::lx_free(block);
    const Clock::time_point freed = Clock::now();
    block = lx::lx_malloc(bytes);
    const Clock::time_point made = Clock::now();
    reading.push_back(Nanoseconds(start - first));
    freeing.push_back(Nanoseconds(freed - start));
    making.push_back(Nanoseconds(made - freed));
  }
  const double clock = Median(&reading);
  state.counters["free_ns"] = Median(&freeing) - clock;
  state.counters["malloc_ns"] = Median(&making) - clock;
  for (void* block : blocks) {
    lx::lx_free(block);
  }
  lx::hm_set_switches(0, 0, 0);
}
BENCHMARK(BM_Tracked)->Iterations(200000);

}  // namespace

BENCHMARK_MAIN();
