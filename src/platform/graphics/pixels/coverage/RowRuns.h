#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/graphics/pixels/coverage/CoverageRun.h"

/// Assembles one row of coverage from covers of single pixels and from stretches of equal ones.
class RowRuns {
 public:
  /// Makes room for rows of `width` pixels whose pixel 0 is device column `left`.
  void prepare(int32_t left, int64_t width);

  /// Starts a row.
  void begin() {
    runs_.clear();
    start_ = -1;
  }

  /// Where the covers of single pixels go, by pixel. One more than `width`, for the pixel that
  /// edges on the right border touch.
  uint8_t* covers() { return covers_.data(); }

  /// The covers from pixel `from` on have been written, up to the next call.
  void beginCovers(int64_t from) {
    if (start_ < 0) start_ = from;
  }

  /// The pixels from `from` to `to` - 1 all have the coverage `level`; those before `from` are
  /// settled.
  [[gnu::always_inline]] void addLevel(int64_t from, int64_t to, uint8_t level) {
    int64_t start = from;
    if (start_ >= 0) {
      // Mostly the pixel right of an edge, which the edge only touched.
      while (start > start_ && covers_[static_cast<size_t>(start - 1)] == level) --start;
    }
    if (level != 0 && to - start < kShortestLevel) {
      fill(from, to, level);
    } else {
      if (start_ >= 0) closeCovers(start);
      if (level != 0) push(start, start < to ? to : start, nullptr, level);
    }
  }

  /// Ends the row at pixel `end` and answers its runs, none without coverage.
  std::span<const CoverageRun> finish(int64_t end) {
    if (start_ >= 0) closeCovers(end);
    return runs_;
  }

 private:
  /// Shorter stretches of equal coverage between edges go into the neighbouring covers: a separate
  /// run costs the consumer more than that many pixels.
  static constexpr int64_t kShortestLevel = 8;
  /// Longer covers are searched for stretches without edges, which overlapping parts of a shape
  /// leave.
  static constexpr int64_t kLongCovers = 32;

  void fill(int64_t from, int64_t to, uint8_t level);
  void splitCovers(int64_t from, int64_t end);
  void closeCovers(int64_t end) {
    const int64_t from = start_;
    start_ = -1;
    if (end - from < kLongCovers) {
      pushCovers(from, end);
    } else {
      splitCovers(from, end);
    }
  }
  void pushCovers(int64_t from, int64_t end) {
    const uint8_t* covers = covers_.data();
    while (from < end && covers[from] == 0) ++from;
    while (from < end && covers[end - 1] == 0) --end;
    if (from < end) push(from, end, covers + from, 0);
  }
  void push(int64_t from, int64_t end, const uint8_t* covers, uint8_t level) {
    runs_.push_back(
        {left_ + static_cast<int32_t>(from), static_cast<int32_t>(end - from), covers, level});
  }

  std::vector<uint8_t> covers_;
  std::vector<CoverageRun> runs_;
  int64_t start_ = -1;  ///< first pixel of the open covers; -1 when none are open
  int32_t left_ = 0;
};
