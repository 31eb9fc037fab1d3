#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "draw/shapes/DrawMessages.h"
#include "support/Draws.h"

namespace {

/// The same point but for rounding.
bool isSame(NSPoint a, NSPoint b) {
  return std::hypot(a.x - b.x, a.y - b.y) < 1e-9;
}

/// The outline as a polygon: curves in eight chords, no point twice in a row.
std::vector<NSPoint> flattened(const NSBezierPath& path) {
  std::vector<NSPoint> points;
  const auto add = [&](NSPoint p) {
    if (points.empty() || !isSame(points.back(), p)) points.push_back(p);
  };
  for (int64_t i = 0; i < path.elementCount(); ++i) {
    NSPoint p[3];
    switch (path.elementAtIndex(i, p)) {
      case NSMoveToBezierPathElement:
      case NSLineToBezierPathElement:
        add(p[0]);
        break;
      case NSCurveToBezierPathElement: {
        const NSPoint s = points.back();
        for (int k = 1; k <= 8; ++k) {
          const double t = k / 8.0, u = 1 - t;
          const auto at = [&](double a, double b, double c, double d) {
            return k == 8 ? d
                          : u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
          };
          add({at(s.x, p[0].x, p[1].x, p[2].x), at(s.y, p[0].y, p[1].y, p[2].y)});
        }
        break;
      }
      case NSClosePathBezierPathElement:
        break;
    }
  }
  while (points.size() > 1 && isSame(points.back(), points.front())) points.pop_back();
  return points;
}

long double turn(NSPoint a, NSPoint b, NSPoint c) {
  return (static_cast<long double>(b.x) - a.x) * (static_cast<long double>(c.y) - a.y) -
         (static_cast<long double>(b.y) - a.y) * (static_cast<long double>(c.x) - a.x);
}

bool onSegment(NSPoint a, NSPoint b, NSPoint p) {
  return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
         p.y <= std::max(a.y, b.y);
}

bool meet(NSPoint a, NSPoint b, NSPoint c, NSPoint d) {
  const auto t1 = turn(a, b, c), t2 = turn(a, b, d), t3 = turn(c, d, a), t4 = turn(c, d, b);
  if (((t1 > 0 && t2 < 0) || (t1 < 0 && t2 > 0)) && ((t3 > 0 && t4 < 0) || (t3 < 0 && t4 > 0))) {
    return true;
  }
  return (t1 == 0 && onSegment(a, b, c)) || (t2 == 0 && onSegment(a, b, d)) ||
         (t3 == 0 && onSegment(c, d, a)) || (t4 == 0 && onSegment(c, d, b));
}

/// No two sides meet except neighbours at their common end.
bool isSimple(const std::vector<NSPoint>& p) {
  const size_t n = p.size();
  if (n < 3) return false;
  for (size_t i = 0; i < n; ++i) {
    for (size_t j = i + 2; j < n; ++j) {
      if (i == 0 && j == n - 1) continue;
      if (meet(p[i], p[i + 1], p[j], p[(j + 1) % n])) return false;
    }
  }
  return true;
}

std::string text(const std::vector<NSPoint>& points) {
  std::string s;
  for (const NSPoint& p : points) s += NSStringFromPoint(p) + " ";
  return s;
}

/// Numbers of very different sizes, often exactly on the lines that matter.
class Sampler {
 public:
  double side() {
    static constexpr double kSides[] = {0.2, 1, 2, 5, 10, 40, 100, 333.3, 5000};
    return kSides[random_() % std::size(kSides)] * (random_() % 2 ? 1 : 0.5 + unit());
  }
  double along(double side) {
    switch (random_() % 6) {
      case 0:
        return 0;
      case 1:
        return side;
      case 2:
        return side / 2;
      case 3:
        return (unit() * 6 - 3) * side;
      case 4:
        return (random_() % 2 ? side : 0) + (unit() - 0.5) * 0.4;
      default:
        return unit() * side;
    }
  }
  NSPoint point(double w, double h) { return {along(w), along(h)}; }
  double unit() { return std::uniform_real_distribution<double>(0, 1)(random_); }

 private:
  std::minstd_rand random_{7};
};

}  // namespace

TEST(DrawMessages, AnyParametersGiveASimplePolygon) {
  Sampler sample;
  const auto bubble = made<DrawRectMessage>();
  const auto ellipse = made<DrawEllipseMessage>();
  for (int i = 0; i < 20000; ++i) {
    const NSRect box = {{i % 3 * 10.0, i % 5 * -7.0}, {sample.side(), sample.side()}};
    const double w = std::max(1.0, NSWidth(box)), h = std::max(1.0, NSHeight(box));
    const float radii[] = {0, 0.2F, 0.5F, 3, -1, static_cast<float>(sample.unit() * 0.5)};
    bubble->setRadius(radii[i % 6]);
    const NSPoint tip = sample.point(w, h);
    bubble->setArrow(tip, sample.point(w, h), sample.point(w, h));
    bubble->setBezierPathWithBounds(box);
    const auto outline = flattened(*bubble->bezierPath());
    ASSERT_TRUE(isSimple(outline))
        << i << " box " << NSStringFromRect(box) << " radius " << bubble->radius() << " tip "
        << NSStringFromPoint(tip) << " a " << NSStringFromPoint(bubble->arrowA()) << " b "
        << NSStringFromPoint(bubble->arrowB()) << "\n"
        << text(outline);
    ellipse->setArrow(tip);
    ellipse->setBezierPathWithBounds(box);
    const auto oval = flattened(*ellipse->bezierPath());
    ASSERT_TRUE(isSimple(oval)) << i << " box " << NSStringFromRect(box) << " tip "
                                << NSStringFromPoint(tip) << "\n"
                                << text(oval);
  }
}

TEST(DrawMessages, TheTestItselfFindsCrossings) {
  EXPECT_TRUE(isSimple({{0, 0}, {1, 0}, {1, 1}, {0, 1}}));
  EXPECT_FALSE(isSimple({{0, 0}, {1, 1}, {1, 0}, {0, 1}})) << "crossed";
  EXPECT_FALSE(isSimple({{0, 0}, {2, 0}, {2, 2}, {1, 0}, {0, 2}})) << "touching";
}

TEST(DrawMessages, BasePointsStayWhereTheTailReachesThem) {
  const NSRect box = NSMakeRect(100, 200, 200, 100);
  struct Case {
    const char* what;
    NSPoint tip, a, b;
    NSPoint expectedA, expectedB;
  };
  // The radius is 20: the lower edge runs from 120 to 280.
  const Case cases[] = {
      {"as stored", {50, -30}, {60, 0}, {90, 0}, {190, 200}, {160, 200}},
      {"in either order", {50, -30}, {90, 0}, {60, 0}, {190, 200}, {160, 200}},
      {"clear of the corner", {50, -30}, {4, 1}, {90, 0}, {190, 200}, {120, 200}},
      {"at a distance", {50, -30}, {60, 0}, {60, 0}, {162.5, 200}, {157.5, 200}},
      {"beside the box", {260, 50}, {200, 30}, {200, 60}, {300, 260}, {300, 230}},
      {"from the side that cannot be seen", {50, 130}, {60, 100}, {0, 60}, {120, 300}, {160, 300}},
      {"inside", {100, 50}, {60, 0}, {90, 0}, {190, 200}, {160, 200}},
  };
  for (const Case& c : cases) {
    const auto draw = made<DrawRectMessage>();
    draw->setArrow(c.tip, c.a, c.b);
    const auto layout = draw->getArrowPoint(box);
    EXPECT_EQ(layout.arrow, NSMakePoint(100 + c.tip.x, 200 + c.tip.y));
    EXPECT_NEAR(layout.arrowA.x, c.expectedA.x, 1e-9) << c.what;
    EXPECT_NEAR(layout.arrowA.y, c.expectedA.y, 1e-9) << c.what;
    EXPECT_NEAR(layout.arrowB.x, c.expectedB.x, 1e-9) << c.what;
    EXPECT_NEAR(layout.arrowB.y, c.expectedB.y, 1e-9) << c.what;
    EXPECT_EQ(layout.radius, 20);
    EXPECT_EQ(layout.radiusKnob, NSMakePoint(120, 280));
  }
}

TEST(DrawMessages, TheOutlineIsTheRoundedBoxWithATail) {
  const auto draw = made<DrawRectMessage>();
  draw->setArrow({50, -30}, {60, 0}, {90, 0});
  draw->setBezierPathWithBounds(NSMakeRect(0, 0, 200, 100));
  EXPECT_NEAR(NSMaxX(draw->pathBounds()), 200, 1e-9);
  EXPECT_NEAR(NSMinY(draw->pathBounds()), -30, 1e-9);
  EXPECT_NEAR(NSMaxY(draw->pathBounds()), 100, 1e-9);
  const NSBezierPath& path = *draw->bezierPath();
  for (const NSPoint inside : {NSPoint{6.2, 6.2}, {193.5, 93.5}, {52, -25}, {100, 50}}) {
    EXPECT_TRUE(path.containsPoint(inside)) << NSStringFromPoint(inside);
  }
  for (const NSPoint outside : {NSPoint{5, 5}, {195, 95}, {48, -25}, {100, -1}}) {
    EXPECT_FALSE(path.containsPoint(outside)) << NSStringFromPoint(outside);
  }
  NSPoint first[3];
  path.elementAtIndex(0, first);
  EXPECT_EQ(first[0], NSMakePoint(50, -30)) << "begins at the tip";
}

TEST(DrawMessages, EllipticBubblesReachTheirTip) {
  const auto draw = made<DrawEllipseMessage>();
  draw->setArrow({50, -30});
  draw->setBezierPathWithBounds(NSMakeRect(10, 20, 200, 100));
  EXPECT_EQ(draw->arrow(), NSMakePoint(50, -30));
  NSPoint first[3];
  draw->bezierPath()->elementAtIndex(0, first);
  EXPECT_TRUE(isSame(first[0], {60, -10})) << "an offset from the box's origin";
  draw->scaleByX(2, 0.5, NSZeroPoint, ResizeLineWidth::no);
  EXPECT_EQ(draw->arrow(), NSMakePoint(100, -15));
  draw->bezierPath()->elementAtIndex(0, first);
  EXPECT_TRUE(isSame(first[0], {120, -5}));
}

TEST(DrawMessages, NumbersThatAreNoneBuildSomething) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = HUGE_VAL;
  const auto bubble = made<DrawRectMessage>();
  bubble->setRadius(std::numeric_limits<float>::quiet_NaN());
  bubble->setArrow({nan, inf}, {-inf, nan}, {1e300, -1e300});
  bubble->setBezierPathWithBounds(NSMakeRect(0, 0, 50, 30));
  EXPECT_TRUE(isSimple(flattened(*bubble->bezierPath())));
  const auto ellipse = made<DrawEllipseMessage>();
  ellipse->setArrow({nan, inf});
  ellipse->setBezierPathWithBounds(NSMakeRect(0, 0, 50, 30));
  EXPECT_TRUE(isSimple(flattened(*ellipse->bezierPath())));
  for (const double side : {nan, inf, 1e300}) {
    bubble->setBezierPathWithBounds(NSMakeRect(0, 0, side, 30));
    EXPECT_LT(bubble->bezierPath()->elementCount(), 100);
  }
}
