#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "platform/graphics/pixels/blur/GaussianBlur.h"

namespace {

AlphaMask maskOf(const PixelBox& box, const std::function<int(int32_t, int32_t)>& cover) {
  AlphaMask mask(box);
  for (int32_t y = box.y0; y < box.y1; ++y) {
    for (int32_t x = box.x0; x < box.x1; ++x) {
      mask.row(y)[x - box.x0] = static_cast<uint8_t>(cover(x, y));
    }
  }
  return mask;
}

AlphaMask gaussianBlur(const AlphaMask& mask, double blur, const PixelBox& wanted) {
  BlurredRows rows(mask, blur, wanted);
  AlphaMask result(rows.box());
  for (int32_t y = result.box().y0; y < result.box().y1;) {
    const BlurredRows::Row row = rows.row(y);
    EXPECT_GT(row.end, y);
    for (; y < row.end; ++y) std::copy_n(row.bytes, result.box().width(), result.row(y));
  }
  return result;
}

int at(const AlphaMask& mask, int32_t x, int32_t y) {
  const PixelBox& box = mask.box();
  const bool inside = x >= box.x0 && x < box.x1 && y >= box.y0 && y < box.y1;
  return inside ? mask.row(y)[x - box.x0] : 0;
}

/// The truncated Gaussian by its definition.
std::vector<double> kernel(double blur) {
  const int reach = static_cast<int>(std::lround(blur));
  std::vector<double> weights;
  double sum = 0;
  for (int k = -reach; k <= reach; ++k) {
    weights.push_back(std::exp(-2.0 * k * k / (blur * blur)));
    sum += weights.back();
  }
  for (double& w : weights) w /= sum;
  return weights;
}

/// Both passes in double precision over a window of the plane.
class Reference {
 public:
  Reference(const AlphaMask& mask, double blur, const PixelBox& wanted) : wanted_(wanted) {
    const std::vector<double> weights = kernel(blur);
    const auto reach = static_cast<int32_t>(weights.size() / 2);
    const auto width = static_cast<size_t>(wanted.width());
    const PixelBox& box = mask.box();
    std::vector<double> rows(width * static_cast<size_t>(box.height()));
    for (int32_t y = box.y0; y < box.y1; ++y) {
      for (int32_t x = wanted.x0; x < wanted.x1; ++x) {
        double& sum =
            rows[static_cast<size_t>(y - box.y0) * width + static_cast<size_t>(x - wanted.x0)];
        for (int32_t k = std::max(-reach, box.x0 - x); k <= std::min(reach, box.x1 - 1 - x); ++k) {
          sum += weights[static_cast<size_t>(k + reach)] * at(mask, x + k, y);
        }
      }
    }
    values_.resize(width * static_cast<size_t>(wanted.height()));
    for (int32_t y = wanted.y0; y < wanted.y1; ++y) {
      for (int32_t k = std::max(-reach, box.y0 - y); k <= std::min(reach, box.y1 - 1 - y); ++k) {
        for (size_t x = 0; x < width; ++x) {
          values_[static_cast<size_t>(y - wanted.y0) * width + x] +=
              weights[static_cast<size_t>(k + reach)] *
              rows[static_cast<size_t>(y + k - box.y0) * width + x];
        }
      }
    }
  }
  double worstDifference(const AlphaMask& blurred) const {
    double worst = 0;
    size_t i = 0;
    for (int32_t y = wanted_.y0; y < wanted_.y1; ++y) {
      for (int32_t x = wanted_.x0; x < wanted_.x1; ++x) {
        worst = std::max(worst, std::fabs(values_[i++] - at(blurred, x, y)));
      }
    }
    return worst;
  }

 private:
  PixelBox wanted_;
  std::vector<double> values_;
};

TEST(GaussianBlur, FollowsTheTruncatedGaussianAtEverySize) {
  std::mt19937 random(3);
  for (const double blur :
       {0.6, 1.0, 1.4, 2.0, 3.0, 5.0, 8.3, 20.0, 32.0, 33.0, 40.0, 64.9, 65.0, 130.0, 300.0}) {
    // A block, a thin line and noise; the corners lie on odd coordinates and left of zero.
    const PixelBox box{-37, 11, 90, 101};
    const AlphaMask mask = maskOf(box, [&](int32_t x, int32_t y) {
      if (x < 20 && y < 60) return 255;
      if (y == 80) return 200;
      return x > 60 ? static_cast<int>(random() % 256) : 0;
    });
    const auto reach = static_cast<int32_t>(std::lround(blur));
    for (const PixelBox& wanted :
         {movedAndGrown(box, 0, 0, std::min(reach + 3, 120)), PixelBox{3, -20, 50, 31}}) {
      const AlphaMask blurred = gaussianBlur(mask, blur, wanted);
      EXPECT_LE(Reference(mask, blur, wanted).worstDifference(blurred), reach <= 16 ? 0.6 : 1.5)
          << blur;
    }
  }
}

TEST(GaussianBlur, EdgeProfileOfASquare) {
  // Weights 1, 0.9231, 0.7261, 0.4868, 0.2780, 0.1353 (sum 6.0986 with both sides): outside a long
  // edge 2.5493 and 1.6262 of them see the square, in its corner 3.5493 in both directions.
  const AlphaMask square = maskOf({0, 0, 40, 40}, [](int32_t, int32_t) { return 255; });
  const AlphaMask blurred = gaussianBlur(square, 5, {-50, -50, 90, 90});
  EXPECT_NEAR(at(blurred, 40, 20), 106.6, 0.6);
  EXPECT_NEAR(at(blurred, 41, 20), 68.0, 0.6);
  EXPECT_NEAR(at(blurred, 39, 39), 86.4, 0.6);
  EXPECT_EQ(at(blurred, 20, 20), 255);
}

TEST(GaussianBlur, ReachesExactlyAsFarAsTheBlur) {
  const AlphaMask square = maskOf({0, 0, 40, 40}, [](int32_t, int32_t) { return 255; });
  for (const int32_t blur : {1, 2, 5, 20, 33, 40, 64}) {
    const AlphaMask blurred = gaussianBlur(square, blur, {-200, -200, 300, 300});
    // Beyond 40 the square is too small to lift the outermost pixel to half a level.
    const int32_t seen = blur > 40 ? blur - 4 : blur;
    EXPECT_GT(at(blurred, 39 + seen, 20), 0) << blur;
    EXPECT_GT(at(blurred, 20, -seen), 0) << blur;
    EXPECT_EQ(at(blurred, 40 + blur, 20), 0) << blur;
    EXPECT_EQ(at(blurred, 20, -blur - 1), 0) << blur;
  }
}

TEST(GaussianBlur, AbsurdBlursAreBounded) {
  EXPECT_EQ(blurReach(1e9), kMaxBlurReach);
  EXPECT_EQ(blurReach(INFINITY), kMaxBlurReach);
  EXPECT_EQ(blurReach(NAN), 0);
  EXPECT_EQ(blurReach(-5), 0);
  EXPECT_EQ(blurReach(0.49), 0);
  const AlphaMask square = maskOf({0, 0, 4, 4}, [](int32_t, int32_t) { return 255; });
  EXPECT_EQ(at(gaussianBlur(square, NAN, {-9, -9, 9, 9}), 2, 2), 255);
  EXPECT_LE(at(gaussianBlur(square, 1e9, {-9, -9, 9, 9}), 2, 2), 1);
  EXPECT_TRUE(gaussianBlur(square, 3, {100, 100, 200, 200}).box().empty());
  EXPECT_TRUE(gaussianBlur(AlphaMask(), 3, {0, 0, 9, 9}).box().empty());
}

}  // namespace
