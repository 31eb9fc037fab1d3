#include "platform/graphics/pixels/coverage/RowRuns.h"

#include <algorithm>

void RowRuns::prepare(int32_t left, int64_t width) {
  const auto needed = static_cast<size_t>(width) + 1;
  if (covers_.size() < needed) covers_.resize(needed);
  left_ = left;
}

void RowRuns::fill(int64_t from, int64_t to, uint8_t level) {
  std::fill(covers_.begin() + from, covers_.begin() + to, level);
  beginCovers(from);
}

/// Pushes covers in pieces, with long stretches of equal ones as levels between them.
void RowRuns::splitCovers(int64_t from, int64_t end) {
  const uint8_t* covers = covers_.data();
  int64_t same = from;  // start of the current stretch of equal covers
  for (int64_t x = from + 1; x <= end; ++x) {
    if (x < end && covers[x] == covers[same]) continue;
    if (x - same >= 2 * kShortestLevel) {
      pushCovers(from, same);
      if (covers[same] != 0) push(same, x, nullptr, covers[same]);
      from = x;
    }
    same = x;
  }
  pushCovers(from, end);
}
