#include <gtest/gtest.h>

#include <cmath>

#include "platform/graphics/path/CGPath.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

std::string verbsOf(const NSBezierPath& path) {
  std::string text;
  for (const PathVerb verb : path.data().verbs) text += "MLCZQ"[static_cast<size_t>(verb)];
  return text;
}

NSPoint endOf(const NSBezierPath& path, int64_t element) {
  NSPoint p[3];
  return path.elementAtIndex(element, p) == NSCurveToBezierPathElement ? p[2] : p[0];
}

}  // namespace

TEST(NSBezierPath, ClosingBringsAMoveAlong) {
  auto path = NSBezierPath::bezierPathWithRect(NSMakeRect(1, 2, 10, 20));
  EXPECT_EQ(verbsOf(*path), "MLLLZM");
  EXPECT_EQ(path->currentPoint(), NSMakePoint(1, 2));
  EXPECT_EQ(path->bounds(), NSMakeRect(1, 2, 10, 20));
  path->appendBezierPathWithRect(NSMakeRect(50, 50, 1, 1));
  EXPECT_EQ(verbsOf(*path), "MLLLZMLLLZM");
  path->lineToPoint({7, 7});
  EXPECT_EQ(verbsOf(*path), "MLLLZMLLLZML");
  path->appendBezierPath(*path);
  EXPECT_EQ(path->elementCount(), 24);
  EXPECT_EQ(verbsOf(*NSBezierPath::bezierPath()), "");
}

TEST(NSBezierPath, Shapes) {
  const auto oval = NSBezierPath::bezierPathWithOvalInRect(NSMakeRect(0, 0, 100, 100));
  EXPECT_EQ(verbsOf(*oval), "MCCCCZM");
  EXPECT_NEAR(endOf(*oval, 0).x, 85.355339, 1e-6);
  EXPECT_NEAR(endOf(*oval, 0).y, 14.644661, 1e-6);
  EXPECT_NEAR(endOf(*oval, 1).y, 85.355339, 1e-6) << "counter-clockwise";
  EXPECT_NEAR(oval->bounds().size.width, 100, 0.03);

  auto rounded = NSBezierPath::bezierPath();
  rounded->appendBezierPathWithRoundedRect(NSMakeRect(0, 0, 100, 40), 10, 30);
  EXPECT_EQ(verbsOf(*rounded), "MCLCLCLCZM");
  EXPECT_EQ(endOf(*rounded, 0), NSMakePoint(10, 40));
  EXPECT_EQ(endOf(*rounded, 1), NSMakePoint(0, 20)) << "the radius is clamped to half the height";
  EXPECT_EQ(rounded->bounds(), NSMakeRect(0, 0, 100, 40));
  auto plain = NSBezierPath::bezierPath();
  plain->appendBezierPathWithRoundedRect(NSMakeRect(0, 0, 100, 40), 0, 30);
  EXPECT_EQ(verbsOf(*plain), "MLLLZM");

  auto arc = NSBezierPath::bezierPath();
  arc->moveToPoint({0, 0});
  arc->appendBezierPathWithArcWithCenter({0, 0}, 10, 90, 0);
  EXPECT_EQ(verbsOf(*arc), "MLCCC") << "counter-clockwise from 90 to 360";
  EXPECT_NEAR(endOf(*arc, 4).x, 10, 1e-9);

  auto corner = NSBezierPath::bezierPath();
  corner->moveToPoint({0, 0});
  corner->appendBezierPathWithArcFromPoint({10, 0}, {10, 10}, 4);
  EXPECT_EQ(verbsOf(*corner), "MLC");
  EXPECT_NEAR(endOf(*corner, 1).x, 6, 1e-9);
  EXPECT_NEAR(endOf(*corner, 2).x, 10, 1e-9);
  EXPECT_NEAR(endOf(*corner, 2).y, 4, 1e-9);
}

TEST(NSBezierPath, BoundsAreTight) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint({0, 0});
  path->curveToPoint({100, 0}, {0, 100}, {100, 100});
  EXPECT_EQ(path->bounds(), NSMakeRect(0, 0, 100, 75));
  EXPECT_EQ(path->controlPointBounds(), NSMakeRect(0, 0, 100, 100));
  EXPECT_EQ(NSBezierPath::bezierPath()->bounds(), NSZeroRect);
}

TEST(NSBezierPath, ReversesEachSubpathOnItsOwn) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint({0, 0});
  path->lineToPoint({10, 0});
  path->curveToPoint({30, 0}, {15, 5}, {25, 5});
  path->appendBezierPathWithRect(NSMakeRect(50, 50, 4, 4));
  const auto reversed = path->bezierPathByReversingPath();
  EXPECT_EQ(verbsOf(*reversed), "MCLMLLLZM");
  EXPECT_EQ(endOf(*reversed, 0), NSMakePoint(30, 0));
  EXPECT_EQ(endOf(*reversed, 2), NSMakePoint(0, 0));
  NSPoint p[3];
  reversed->elementAtIndex(1, p);
  EXPECT_EQ(p[0], NSMakePoint(25, 5));
  EXPECT_EQ(endOf(*reversed, 3), NSMakePoint(50, 50));
  EXPECT_EQ(endOf(*reversed, 4), NSMakePoint(50, 54)) << "the other way round";
  // Twice is the same figure again.
  EXPECT_EQ(reversed->bezierPathByReversingPath()->data().points, path->data().points);
}

TEST(NSBezierPath, ClosesEndWhereTheirSubpathBegan) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint({3, 4});
  path->lineToPoint({10, 0});
  path->closePath();
  path->moveToPoint({50, 60});
  path->lineToPoint({70, 60});
  path->closePath();
  path->removeElementsFrom(6);
  ASSERT_EQ(verbsOf(*path), "MLZMLZ") << "not every archive has the move behind a close";
  EXPECT_EQ(endOf(*path, 2), NSMakePoint(3, 4)) << "not where the next subpath begins";
  EXPECT_EQ(endOf(*path, 5), NSMakePoint(50, 60));
  const NSPoint moved{55, 65};
  path->setAssociatedPoints(&moved, 3);
  EXPECT_EQ(endOf(*path, 5), moved);
  EXPECT_EQ(path->currentPoint(), moved);
  path->closePath();
  EXPECT_EQ(endOf(*path, 7), moved) << "the move behind a close goes there, too";
}

TEST(NSBezierPath, ElementsCanBeMovedAndDropped) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint({0, 0});
  path->lineToPoint({10, 0});
  path->curveToPoint({30, 0}, {15, 5}, {25, 5});
  const NSPoint moved[] = {{1, 1}, {2, 2}, {3, 3}};
  path->setAssociatedPoints(moved, 2);
  EXPECT_EQ(endOf(*path, 2), NSMakePoint(3, 3));
  path->removeElementsFrom(2);
  EXPECT_EQ(verbsOf(*path), "ML");
  EXPECT_EQ(path->currentPoint(), NSMakePoint(10, 0));
  NSAffineTransform turn;
  turn.rotateByDegrees(90);
  path->transformUsingAffineTransform(turn);
  EXPECT_EQ(endOf(*path, 1), NSMakePoint(0, 10)) << "quarter turns are exact";
}

TEST(CGPath, ShapesAndJoins) {
  CGPath path;
  path.addLineToPoint({3, 4});
  EXPECT_EQ(path.data().verbs.front(), PathVerb::move) << "a path begins where it first draws to";
  CGPath ellipse;
  ellipse.addEllipseInRect(NSMakeRect(0, 0, 20, 10));
  EXPECT_EQ(ellipse.data().points.front(), NSMakePoint(20, 5));
  ellipse.addPath(ellipse, CGAffineTransformMakeTranslation(100, 0));
  EXPECT_EQ(ellipse.data().verbs.size(), 12U);
  EXPECT_NEAR(ellipse.boundingBox().size.width, 120, 1e-9);
  EXPECT_NEAR(ellipse.boundingBox().size.height, 10, 1e-9);
}
