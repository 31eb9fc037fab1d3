#include "platform/machine/ParallelRows.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

void inParallel(int64_t count, const std::function<void(int64_t first, int64_t end)>& work) {
  // Loops over pixels wait for memory; more threads than this do not speed that up.
  constexpr unsigned kMostParts = 4;
  const int64_t parts = std::clamp(std::thread::hardware_concurrency(), 1U, kMostParts);
  std::vector<std::jthread> threads;
  threads.reserve(kMostParts);
  int64_t first = 0;
  for (int64_t part = 1; part < parts; ++part) {
    const int64_t end = count * part / parts;
    try {
      threads.emplace_back([&work, first, end] { work(first, end); });
    } catch (const std::system_error&) {
      break;  // no more threads: the rest is done here
    }
    first = end;
  }
  work(first, count);
}
