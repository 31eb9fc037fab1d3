#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"

/// A sink that writes coverage into a byte per pixel and checks that it keeps the contract:
/// inside the box, rows in increasing order within a sweep, runs disjoint and in order, no pixel
/// twice.
class CoverageRaster : public CoverageSink {
 public:
  explicit CoverageRaster(const PixelBox& box)
      : box_(box), covers_(static_cast<size_t>(box.width() * box.height()), 0) {}
  CoverageRaster(int32_t width, int32_t height) : CoverageRaster(PixelBox{0, 0, width, height}) {}

  void row(int32_t y, std::span<const CoverageRun> runs) override {
    ASSERT_GE(y, box_.y0);
    ASSERT_LT(y, box_.y1);
    ASSERT_FALSE(runs.empty());
    // Sweeps side by side start again at the top, further right.
    if (y <= lastRow_) {
      ASSERT_GE(runs.front().x, lastEnd_);
    }
    lastRow_ = y;
    int32_t end = box_.x0;
    for (const CoverageRun& run : runs) {
      ASSERT_GE(run.x, end);
      ASSERT_GT(run.length, 0);
      end = run.x + run.length;
      ASSERT_LE(end, box_.x1);
      write(y, run);
    }
    lastEnd_ = end;
    ++rows_;
    runs_ += runs.size();
  }

  uint8_t at(int32_t x, int32_t y) const { return covers_[index(x, y)]; }
  const std::vector<uint8_t>& covers() const { return covers_; }
  const PixelBox& box() const { return box_; }
  size_t rowCalls() const { return rows_; }
  size_t runCount() const { return runs_; }
  /// Covered area in pixels.
  double area() const {
    return static_cast<double>(std::accumulate(covers_.begin(), covers_.end(), uint64_t{0})) / 255;
  }
  size_t touchedPixels() const {
    size_t count = 0;
    for (const uint8_t c : covers_) count += c != 0;
    return count;
  }

 private:
  size_t index(int32_t x, int32_t y) const {
    return static_cast<size_t>(int64_t{y - box_.y0} * box_.width() + (x - box_.x0));
  }
  void write(int32_t y, const CoverageRun& run) {
    ASSERT_TRUE(run.covers || run.cover != 0);
    uint8_t* out = covers_.data() + index(run.x, y);
    for (int32_t i = 0; i < run.length; ++i) {
      ASSERT_EQ(out[i], 0) << "pixel painted twice: " << run.x + i << ", " << y;
      out[i] = run.covers ? run.covers[i] : run.cover;
    }
  }

  PixelBox box_;
  std::vector<uint8_t> covers_;
  int32_t lastRow_ = INT32_MIN;
  int32_t lastEnd_ = INT32_MIN;
  size_t rows_ = 0;
  size_t runs_ = 0;
};
