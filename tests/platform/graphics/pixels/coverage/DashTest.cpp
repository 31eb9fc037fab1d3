#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/foundation/Limits.h"
#include "platform/graphics/pixels/coverage/CoverageRaster.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"
#include "platform/graphics/pixels/coverage/Shapes.h"
#include "platform/graphics/pixels/outline/PathDasher.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const DeviceBounds kEverywhere(-kInfinity, -kInfinity, kInfinity, kInfinity);

/// Ends of the marks that a horizontal line of the given length is cut into.
std::vector<double> marks(double length, const std::vector<double>& dash, double phase,
                          const DeviceBounds& visible = kEverywhere) {
  FlatPath line, out;
  line.add({0, 0}, false);
  line.add({length / 4, 0}, true);  // a vertex on the way must not matter
  line.add({length, 0}, false);
  line.endSubpath(false);
  std::vector<double> ends;
  const auto pattern = dashPattern(dash, phase, 1);
  if (!pattern) return {-1};
  EXPECT_EQ(dashPath(line, *pattern, visible, out), DashResult::dashed);
  for (const FlatPath::Subpath& s : out.subpaths) {
    EXPECT_FALSE(s.closed);
    ends.push_back(out.points[s.first].x);
    ends.push_back(out.points[s.first + s.count - 1].x);
  }
  return ends;
}

TEST(Dash, MarksOnALine) {
  using Ends = std::vector<double>;
  const struct {
    std::vector<double> dash;
    double phase;
    Ends ends;
  } cases[] = {
      {{10, 5}, 0, {0, 10, 15, 25, 30, 40}},
      {{10, 5}, 3, {0, 7, 12, 22, 27, 37}},
      {{10, 5}, -7, {0, 2, 7, 17, 22, 32, 37, 40}},  // as phase 8
      {{10, 5}, 15e6 + 3, {0, 7, 12, 22, 27, 37}},
      {{10}, 0, {0, 10, 20, 30, 40, 40}},  // odd counts run through twice
      {{8, 2, 4}, 0, {0, 8, 10, 14, 22, 24, 28, 36, 38, 40}},
      {{0, 12}, 0, {0, 1, 12, 13, 24, 25, 36, 37}},  // a mark of 0 is one unit long
      {{5, 0, 3, 12}, 0, {0, 5, 5, 8, 20, 25, 25, 28, 40, 40}},
      {{50, 5}, 0, {0, 40}},
      {{5, 50}, 10, {}},
  };
  for (const auto& c : cases) {
    const Ends ends = marks(40, c.dash, c.phase);
    ASSERT_EQ(ends.size(), c.ends.size()) << testing::PrintToString(c.dash) << c.phase;
    for (size_t i = 0; i < ends.size(); ++i) EXPECT_NEAR(ends[i], c.ends[i], 1e-9);
  }
}

TEST(Dash, PatternsThatMeanSolid) {
  const double nan = std::nan("");
  for (const std::vector<double>& dash : {std::vector<double>{},
                                          {0, 0},
                                          {5, 0},
                                          {0},
                                          {-1, -1},
                                          {5, -5},
                                          {-5, 6},
                                          {nan, 5},
                                          {5, nan},
                                          {kInfinity, 5},
                                          {1e308, 1e308},
                                          {1e-9, 1e-9},
                                          std::vector<double>(1000, 5)}) {
    EXPECT_FALSE(dashPattern(dash, 0, 1)) << testing::PrintToString(dash);
  }
  const std::vector<double> dash{10, 5};
  for (const double phase : {nan, kInfinity, -kInfinity}) {
    EXPECT_EQ(dashPattern(dash, phase, 1)->phase, 0);
  }
  for (const double phase : {1e18, -1e18, 1e300, -7.0}) {
    EXPECT_GE(dashPattern(dash, phase, 1)->phase, 0) << phase;
    EXPECT_LE(dashPattern(dash, phase, 1)->phase, 15) << phase;
  }
}

TEST(Dash, OnlyTheVisiblePartOfLongLinesIsCut) {
  const std::vector<double> ends = marks(1e9, {10, 5}, 0, {5e8, -1, 5e8 + 40, 1});
  ASSERT_EQ(ends.size(), 8u);
  // 5e8 is 5 beyond a multiple of 15; marks are not cut.
  EXPECT_NEAR(ends[0], 5e8 - 5, 1e-3);
  EXPECT_NEAR(ends[1], 5e8 + 5, 1e-3);
  EXPECT_NEAR(ends[2], 5e8 + 10, 1e-3);
  FlatPath line, out;
  line.add({0, 0}, false);
  line.add({1e9, 0}, false);
  line.endSubpath(false);
  EXPECT_EQ(dashPath(line, *dashPattern(std::vector<double>{10, 5}, 0, 1), kEverywhere, out),
            DashResult::tooMany);
}

TEST(Dash, ClippedDashesShowTheSamePixels) {
  PathData path;
  path.move({-400, 30});
  path.cubic({300, -500}, {-200, 600}, {500, 60});
  path.line({-300, 90});
  path.close();
  StrokeStyle style;
  style.width = 7;
  style.cap = LineCap::round;
  style.dash = {12, 9, 1, 9};
  style.dashPhase = 4;
  const PixelBox large{-600, -600, 700, 700};
  PathRenderer renderer;
  for (const CGAffineTransform& t :
       {CGAffineTransform{}, CGAffineTransform{1, 0.2, -0.4, 0.5, 20, 30}}) {
    CoverageRaster whole(large);
    renderer.strokePath(path, style, t, Antialias::on, ClipRegion(large), whole);
    EXPECT_GT(whole.area(), 1000);
    for (const PixelBox& box : {PixelBox{0, 0, 100, 100}, PixelBox{-50, 40, 300, 70}}) {
      CoverageRaster part(box);
      renderer.strokePath(path, style, t, Antialias::on, ClipRegion(box), part);
      for (int32_t y = box.y0; y < box.y1; ++y) {
        for (int32_t x = box.x0; x < box.x1; ++x) {
          ASSERT_NEAR(part.at(x, y), whole.at(x, y), 1) << x << "," << y;
        }
      }
    }
  }
}

TEST(Dash, ClosedSubpathsDashTheirLastSideWithoutJoiningIt) {
  // A square of side 30, dashes 20,10: the corner at the start is the end of a gap.
  StrokeStyle style;
  style.width = 4;
  style.dash = {20, 10};
  const PixelBox box{0, 0, 60, 60};
  CoverageRaster raster(box);
  PathRenderer().strokePath(shapes::rectangle(10, 10, 30, 30), style, {}, Antialias::on,
                            ClipRegion(box), raster);
  EXPECT_EQ(raster.area(), 4 * 20 * 4);
  style.dash = {100, 10, 10, 1000};  // ends after 120: 10 marks the last side's end
  style.dashPhase = 0;
  CoverageRaster joined(box);
  PathRenderer().strokePath(shapes::rectangle(10, 10, 30, 30), style, {}, Antialias::on,
                            ClipRegion(box), joined);
  EXPECT_EQ(joined.at(8, 8), 0);  // butt caps meet at the corner and leave its outside open
  EXPECT_EQ(joined.at(11, 11), 255);
  EXPECT_EQ(joined.at(41, 8), 255);  // joined elsewhere
}

TEST(Dash, FinePatternsAreDrawnSolid) {
  PathData line = shapes::polyline({{0, 20}, {50, 20}});
  StrokeStyle style;
  style.width = 4;
  for (const std::vector<double>& dash : {std::vector<double>{1e-9, 1e-9}, {0.01, 0.02}, {0, 0}}) {
    style.dash = dash;
    CoverageRaster raster(50, 40);
    PathRenderer().strokePath(line, style, {}, Antialias::on, ClipRegion({0, 0, 50, 40}), raster);
    EXPECT_EQ(raster.area(), 200);
  }
}

}  // namespace
