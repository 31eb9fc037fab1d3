#include <gtest/gtest.h>

#include <vector>

#include "platform/machine/ParallelRows.h"

TEST(ParallelRows, EveryRowIsDoneOnce) {
  for (const int64_t count : {0, 1, 2, 3, 5, 1000}) {
    // Parts never share a row, so plain counters do.
    std::vector<int> done(static_cast<size_t>(count));
    inParallel(count, [&](int64_t first, int64_t end) {
      for (int64_t y = first; y < end; ++y) ++done[static_cast<size_t>(y)];
    });
    EXPECT_EQ(done, std::vector<int>(static_cast<size_t>(count), 1)) << count;
  }
}
