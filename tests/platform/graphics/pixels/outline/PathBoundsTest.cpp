#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/graphics/pixels/coverage/Shapes.h"
#include "platform/graphics/pixels/outline/PathBounds.h"

namespace {

TEST(PathBounds, OfACubicAreTight) {
  PathData path;
  path.move({0, 0});
  path.cubic({0, 100}, {100, 100}, {100, 0});
  EXPECT_EQ(tightPathBounds(path), NSMakeRect(0, 0, 100, 75));
  EXPECT_EQ(controlPointBounds(path), NSMakeRect(0, 0, 100, 100));
  PathData quad;
  quad.move({0, 0});
  quad.quad({50, 100}, {100, 0});
  EXPECT_EQ(tightPathBounds(quad), NSMakeRect(0, 0, 100, 50));
  EXPECT_EQ(controlPointBounds(quad), NSMakeRect(0, 0, 100, 100));
}

TEST(PathBounds, MovesWithoutDrawingDoNotCount) {
  PathData path;
  path.move({-500, 900});
  path.move({10, 20});
  path.line({30, 60});
  path.close();
  path.move({1000, 1000});
  EXPECT_EQ(tightPathBounds(path), NSMakeRect(10, 20, 20, 40));
  EXPECT_EQ(controlPointBounds(path), NSMakeRect(10, 20, 20, 40));
  PathData lone;
  lone.move({5, 5});
  EXPECT_FALSE(tightPathBounds(lone));
  EXPECT_FALSE(tightPathBounds(PathData()));
  lone.close();
  EXPECT_EQ(tightPathBounds(lone), NSMakeRect(5, 5, 0, 0));
}

TEST(PathBounds, DrawingGoesOnAtTheStartAfterAClose) {
  PathData path = shapes::polygon({{0, 0}, {10, 0}, {10, 10}});
  path.line({-5, 0});
  EXPECT_EQ(tightPathBounds(path), NSMakeRect(-5, 0, 15, 10));
}

TEST(PathBounds, HoldEveryPointOfRandomCurvesAndNoMore) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> at(-100, 100);
  for (int i = 0; i < 200; ++i) {
    const NSPoint p[4] = {{at(random), at(random)},
                          {at(random), at(random)},
                          {at(random), at(random)},
                          {at(random), at(random)}};
    PathData path;
    path.move(p[0]);
    path.cubic(p[1], p[2], p[3]);
    const double angle = at(random);
    const NSPoint direction{std::cos(angle), std::sin(angle)};
    double low = HUGE_VAL, high = -HUGE_VAL;
    for (int k = 0; k <= 5000; ++k) {
      const double t = k / 5000.0, s = 1 - t;
      const double w[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
      double v = 0;
      for (int j = 0; j < 4; ++j) v += w[j] * (p[j].x * direction.x + p[j].y * direction.y);
      low = std::min(low, v);
      high = std::max(high, v);
    }
    const auto extent = pathExtentAlong(path, direction);
    ASSERT_TRUE(extent);
    EXPECT_LE(extent->min, low + 1e-9);
    EXPECT_GE(extent->max, high - 1e-9);
    EXPECT_NEAR(extent->min, low, 1e-4);
    EXPECT_NEAR(extent->max, high, 1e-4);
  }
}

TEST(PathBounds, BadPathsHaveNone) {
  for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    PathData path = shapes::polygon({{0, 0}, {10, bad}, {10, 10}});
    EXPECT_FALSE(tightPathBounds(path));
    EXPECT_FALSE(controlPointBounds(path));
  }
  PathData missing;
  missing.move({0, 0});
  missing.verbs.push_back(PathVerb::cubic);
  EXPECT_FALSE(tightPathBounds(missing));
}

}  // namespace
