#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <limits>
#include <memory>
#include <string>

/// CPU time of this process, in seconds.
inline double cpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

/// Shortest CPU time of several calls.
template <class Function>
double bestSeconds(int calls, Function&& function) {
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < calls; ++i) {
    const double start = cpuSeconds();
    function();
    best = std::min(best, cpuSeconds() - start);
  }
  return best;
}

/// Shortest time for copying that many bytes between buffers that are already in memory.
inline double memcpySeconds(size_t bytes) {
  const auto from = std::make_unique<char[]>(bytes);
  const auto to = std::make_unique<char[]>(bytes);
  return bestSeconds(11, [&] {
    std::memcpy(to.get(), from.get(), bytes);
    benchmark::DoNotOptimize(to.get());
    benchmark::ClobberMemory();
  });
}

/// Runs `function` as the benchmark's body and reports its best time as a multiple of `unit`
/// seconds in the counter `name`. Ratios taken in one run survive a loaded machine better than
/// times.
template <class Function>
void runAsMultiple(benchmark::State& state, const std::string& name, double unit,
                   Function&& function) {
  double best = std::numeric_limits<double>::infinity();
  for (auto _ : state) best = std::min(best, bestSeconds(1, function));
  state.counters[name] = best / unit;
}
