#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "platform/graphics/pixels/coverage/AlphaMask.h"

namespace {

/// Puts rows together again, and counts what came as constant runs.
class Collector final : public CoverageSink {
 public:
  Collector(int32_t left, size_t width) : left_(left), covers_(width) {}
  void row(int32_t y, std::span<const CoverageRun> runs) override {
    rows_.push_back(y);
    int32_t end = left_;
    for (const CoverageRun& run : runs) {
      ASSERT_GE(run.x, end);
      ASSERT_GT(run.length, 0);
      end = run.x + run.length;
      ASSERT_LE(end, left_ + static_cast<int32_t>(covers_.size()));
      const auto out = covers_.begin() + (run.x - left_);
      if (run.covers != nullptr) {
        std::copy_n(run.covers, run.length, out);
      } else {
        std::fill_n(out, run.length, run.cover);
        constant_ += run.length;
      }
    }
  }
  int32_t left_;
  std::vector<uint8_t> covers_;
  std::vector<int32_t> rows_;
  int32_t constant_ = 0;
};

TEST(CoverSplitter, SplitsAnyRowWithoutChangingIt) {
  std::mt19937 random(7);
  CoverSplitter splitter;
  for (int round = 0; round < 500; ++round) {
    std::vector<uint8_t> covers;
    while (covers.size() < 400 && (covers.empty() || random() % 6 != 0)) {
      const uint8_t values[] = {0, 255, static_cast<uint8_t>(random())};
      covers.insert(covers.end(), random() % 200 + 1, values[random() % 3]);
    }
    const auto width = static_cast<int32_t>(covers.size());
    Collector collector(-30, covers.size());
    splitter.rows({-30, 5, width - 30, 8}, covers.data(), collector);
    EXPECT_EQ(collector.covers_, covers);
    const bool blank = *std::max_element(covers.begin(), covers.end()) == 0;
    if (!blank) {
      EXPECT_EQ(collector.rows_, (std::vector<int32_t>{5, 6, 7}));
    }
  }
}

TEST(CoverSplitter, LongStretchesBecomeFillsOrNothing) {
  std::vector<uint8_t> covers(1000, 255);
  covers[0] = 1;
  std::fill(covers.begin() + 300, covers.begin() + 700, uint8_t{0});
  CoverSplitter splitter;
  Collector collector(0, covers.size());
  splitter.rows({0, 0, 1000, 1}, covers.data(), collector);
  EXPECT_EQ(collector.covers_, covers);
  // Of 600 full covers those in the blocks at 0, 256, 640 and 960 stay as they are.
  EXPECT_EQ(collector.constant_, 3 * 64 + 4 * 64);
  Collector nothing(0, 200);
  splitter.rows({0, 0, 200, 1}, std::vector<uint8_t>(200).data(), nothing);
  EXPECT_EQ(nothing.covers_, std::vector<uint8_t>(200));
}

}  // namespace
