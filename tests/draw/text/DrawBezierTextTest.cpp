#include <cmath>
#include <memory>

#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/text/CurvedText.h"
#include "draw/text/DrawBezierText.h"
#include "draw/text/TextDrawSupport.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/text/host/NSTextStorage.h"

// A letter of size 20 is 10 wide and 20 high with its middle on the path: on a line at 50 of a
// canvas 100 high its box covers rows 42 to 55, and columns 1 to 8 from where it starts.

namespace {

class DrawBezierTextTest : public BoxTextTest {
 protected:
  static std::shared_ptr<DrawBezierText> curved(const std::string& title) {
    const auto document = madeDocument("curved text");
    auto text = std::dynamic_pointer_cast<DrawBezierText>(drawTitled(*document, title));
    EXPECT_NE(text, nullptr) << title;
    return text;
  }

  static std::shared_ptr<DrawBase> line(NSPoint from, NSPoint to) {
    auto guide = std::make_shared<DrawLine>();
    guide->init();
    guide->setStartPoint(from, to);
    guide->setEnableStroke(false);
    return guide;
  }

  template <class Guide>
  static std::shared_ptr<Guide> box(const NSRect& bounds) {
    auto guide = std::make_shared<Guide>();
    guide->init();
    guide->setBezierPathWithBounds(bounds);
    guide->setEnableStroke(false);
    guide->setEnableFill(false);
    return guide;
  }

  static std::shared_ptr<DrawBezierText> along(std::shared_ptr<DrawBase> guide,
                                               std::string_view text,
                                               NSTextAlignment alignment = NSTextAlignment::left) {
    auto draw = std::make_shared<DrawBezierText>();
    draw->init();
    draw->setAttributedString(boxText(text));
    draw->setTextAligment(alignment);
    draw->setBezierDraw(std::move(guide));
    return draw;
  }

  /// The same with the layout of old documents, which only an archive can ask for.
  static std::shared_ptr<DrawBezierText> alongOld(const std::shared_ptr<DrawBase>& guide) {
    auto old = curved("old");
    old->setBezierDraw(guide);
    return old;
  }

  static std::vector<NSPoint> endPoints(const NSBezierPath& path) {
    std::vector<NSPoint> points;
    for (int64_t i = 0; i < path.elementCount(); ++i) {
      NSPoint p[3];
      switch (path.elementAtIndex(i, p)) {
        case NSMoveToBezierPathElement:
          if (i == 0) points.push_back(p[0]);
          break;
        case NSLineToBezierPathElement:
          points.push_back(p[0]);
          break;
        case NSCurveToBezierPathElement:
          points.push_back(p[2]);
          break;
        case NSClosePathBezierPathElement:
          break;
      }
    }
    return points;
  }

  /// Positive for polygons that run counter-clockwise.
  static double area(const std::vector<NSPoint>& polygon) {
    double twice = 0;
    for (size_t i = 0; i < polygon.size(); ++i) {
      const NSPoint a = polygon[i], b = polygon[(i + 1) % polygon.size()];
      twice += a.x * b.y - b.x * a.y;
    }
    return twice / 2;
  }

  static void expectPoints(const std::vector<NSPoint>& actual, const std::vector<NSPoint>& expected,
                           const char* what) {
    ASSERT_EQ(actual.size(), expected.size()) << what;
    for (size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(actual[i].x, expected[i].x, 1e-9) << what << ", point " << i;
      EXPECT_NEAR(actual[i].y, expected[i].y, 1e-9) << what << ", point " << i;
    }
  }
};

}  // namespace

TEST_F(DrawBezierTextTest, AllOfALongTextIsSetWhereThePathHasRoom) {
  const auto line = NSBezierPath::bezierPath();
  line->moveToPoint({0, 0});
  line->lineToPoint({60000, 0});
  const CurvedText text(boxText(std::string(5000, 'a')), *line, NSTextAlignment::right);
  EXPECT_NEAR(text.start(), 10000, 0.01);
  EXPECT_NEAR(text.drawnRect().size.width, 49998, 10) << "of the first letter to the last";
}

TEST_F(DrawBezierTextTest, LettersStandAcrossTheirLine) {
  const auto draw = curved("left to right");
  EXPECT_EQ(draw->version(), 1);
  const DrawnDraw p(*draw);
  EXPECT_EQ(p.at(21, 42), kBlack);
  EXPECT_EQ(p.at(28, 55), kBlack);
  EXPECT_EQ(p.at(31, 48), kBlack);
  EXPECT_EQ(p.at(20, 48), kNone);
  EXPECT_EQ(p.at(25, 41), kNone);
  EXPECT_EQ(p.at(25, 56), kNone);
  EXPECT_EQ(p.at(41, 48), kNone);
  EXPECT_EQ(draw->textsWidth(), 20);
  EXPECT_EQ(draw->textsHeight(), 20);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(20, 40, 100, 20)) << "the line and the band of the text";
  EXPECT_EQ(draw->lineWidth(), 0);
  EXPECT_EQ(draw->textDrawPath()->bounds(), NSMakeRect(20, 50, 20, 0));
  EXPECT_EQ(draw->bezierBorderPath()->bounds(), NSMakeRect(20, 40, 20, 20));
  EXPECT_EQ(draw->drawRect(), NSMakeRect(20, 40, 20, 20));
}

TEST_F(DrawBezierTextTest, OpenLinesReadFromTheLeft) {
  const auto expected = DrawnDraw(*curved("left to right")).bitmap;
  for (const char* title : {"right to left", "old", "path guide"}) {
    EXPECT_EQ(maxDifference(*DrawnDraw(*curved(title)).bitmap, *expected), 0) << title;
  }
}

TEST_F(DrawBezierTextTest, AlignmentIsAlongThePath) {
  const DrawnDraw centred(*curved("centred"));
  EXPECT_EQ(centred.at(60, 48), kNone);
  EXPECT_EQ(centred.at(61, 48), kBlack);
  EXPECT_EQ(centred.at(78, 48), kBlack);
  EXPECT_EQ(centred.at(79, 48), kNone);
  const DrawnDraw right(*curved("right"));
  EXPECT_EQ(right.at(101, 48), kBlack);
  EXPECT_EQ(right.at(118, 48), kBlack);
  EXPECT_EQ(right.at(119, 48), kNone);
}

TEST_F(DrawBezierTextTest, NothingWithoutTextOrGuide) {
  for (const char* title : {"no guide", "guide without a path", "guide of another class", "no text",
                            "its own guide", "guides of each other"}) {
    const auto draw = curved(title);
    EXPECT_FALSE(draw->convertTextToImage()) << title;
    EXPECT_EQ(draw->textDrawRect(), NSZeroRect) << title;
    EXPECT_EQ(draw->bezierBorderPath(), nullptr) << title;
    DrawnDraw{*draw};
  }
}

TEST_F(DrawBezierTextTest, LettersTurnWithTheirPath) {
  struct Case {
    const char* what;
    NSPoint from;
    NSPoint to;
    NSPoint inside;   // a corner of the first letter's box, in canvas coordinates
    NSPoint outside;  // next to it
  };
  for (const Case& c : {
           // Upwards: the letters' tops are left. Boxes reach from 8 left to 6 right of the path.
           Case{"up", {50, 10}, {50, 90}, {42.5, 11.5}, {41.5, 11.5}},
           Case{"down", {50, 90}, {50, 10}, {57.5, 88.5}, {58.5, 88.5}},
           // 3-4-5: along (0.8, 0.6), up (-0.6, 0.8). Two along, seven up from the start is inside.
           Case{"oblique", {20, 20}, {100, 80}, {20 + 1.6 - 4.2, 20 + 1.2 + 5.6}, {16.5, 20.5}},
       }) {
    const auto draw = along(line(c.from, c.to), "aa");
    const DrawnDraw p(*draw);
    const auto alphaAt = [&](NSPoint q) {
      return p.alpha(static_cast<int64_t>(q.x), 99 - static_cast<int64_t>(q.y));
    };
    EXPECT_EQ(alphaAt(c.inside), 255) << c.what;
    EXPECT_EQ(alphaAt(c.outside), 0) << c.what;
  }
}

TEST_F(DrawBezierTextTest, TheGuideCarriesTheRotation) {
  for (const char* title : {"turned", "turned itself"}) {
    const auto draw = curved(title);
    EXPECT_EQ(draw->rotateDegree(), 0) << title;
    EXPECT_EQ(draw->bezierDraw()->rotateDegree(), 90) << title;
    // The line now runs from (70, 0) up to (70, 100).
    const DrawnDraw p(*draw);
    EXPECT_EQ(p.at(62, 98), kBlack) << title;
    EXPECT_EQ(p.at(75, 91), kBlack) << title;
    EXPECT_EQ(p.at(76, 95), kNone) << title;
  }
  const auto draw = curved("left to right");
  draw->setRotateDegree(90);
  EXPECT_EQ(maxDifference(*DrawnDraw(*draw).bitmap, *DrawnDraw(*curved("turned")).bitmap), 0);
}

TEST_F(DrawBezierTextTest, GeometryIsThatOfTheGuide) {
  const auto draw = along(line({20, 50}, {120, 50}), "aa");
  draw->moveByX(10, -5);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(30, 35, 100, 20));
  EXPECT_EQ(DrawnDraw(*draw).at(31, 47), kBlack);
  draw->scaleByX(0.5, 1, {30, 45}, ResizeLineWidth::no);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(30, 35, 50, 20));
  const auto saved = draw->bezierPathData();
  draw->applyNewBoundsToBezierDraw(NSMakeRect(0, 35, 100, 20));
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(0, 35, 100, 20));
  draw->setBezierPathWithData(saved);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(30, 35, 50, 20));
  draw->setAutoResize(true);
  EXPECT_FALSE(draw->isAutoResize());
}

TEST_F(DrawBezierTextTest, TextThatIsTooLong) {
  struct Case {
    const char* what;
    size_t letters;
    NSTextAlignment alignment;
    double width;
    int64_t first;  // first column that is painted, and the last
    int64_t last;
  };
  // On 100 from column 20. A tenth too much is squeezed, so that letters overlap by nine tenths of
  // a pixel each.
  const Case cases[] = {{"fits", 10, NSTextAlignment::left, 100, 21, 118},
                        {"squeezed", 11, NSTextAlignment::left, 100, 20, 119},
                        {"squeezed", 11, NSTextAlignment::right, 100, 20, 119},
                        {"cut at the end", 13, NSTextAlignment::left, 100, 21, 118},
                        {"cut at the start", 13, NSTextAlignment::right, 100, 21, 118},
                        {"cut on both sides", 13, NSTextAlignment::center, 100, 21, 118}};
  for (const Case& c : cases) {
    const auto draw = along(line({20, 50}, {120, 50}), std::string(c.letters, 'a'), c.alignment);
    EXPECT_NEAR(draw->textsWidth(), c.width, 1e-3) << c.what;
    const DrawnDraw p(*draw);
    EXPECT_GT(p.alpha(c.first, 48), 0) << c.what;
    EXPECT_EQ(p.alpha(c.first - 1, 48), 0) << c.what;
    EXPECT_GT(p.alpha(c.last, 48), 0) << c.what;
    EXPECT_EQ(p.alpha(c.last + 1, 48), 0) << c.what;
  }
}

TEST_F(DrawBezierTextTest, TheEndsOfParagraphsAreNoLetters) {
  const auto expected = DrawnDraw(*along(line({20, 50}, {120, 50}), "aa")).bitmap;
  EXPECT_EQ(
      maxDifference(*DrawnDraw(*along(line({20, 50}, {120, 50}), "a\n\ra\n")).bitmap, *expected),
      0);
}

TEST_F(DrawBezierTextTest, OldOutlinesAreTakenAsTheyWereDrawn) {
  const auto round = box<DrawRoundRectangle>({{10, 20}, {80, 40}});
  // The outline from the lower left corner to the right, mirrored: from the upper left corner.
  auto points = endPoints(*alongOld(round)->bezierPathForDrawTexts());
  expectPoints({points[0], points[1], points[2]}, {{10, 60}, {90, 60}, {90, 20}},
               "round rectangle");

  const auto ellipse = box<DrawEllipse>({{0, 0}, {100, 100}});
  points = endPoints(*alongOld(ellipse)->bezierPathForDrawTexts());
  const double r = 50 * std::sqrt(0.5);
  expectPoints({points[0], points[1]}, {{50 - r, 50 - r}, {50 - r, 50 + r}}, "ellipse");

  const auto polygon = box<DrawRectPolygon>({{0, 0}, {100, 100}});
  EXPECT_GT(area(endPoints(*polygon->bezierPath())), 0);
  EXPECT_LT(area(endPoints(*alongOld(polygon)->bezierPathForDrawTexts())), 0);

  const auto plain = box<DrawRectangle>({{10, 20}, {80, 40}});
  points = endPoints(*alongOld(plain)->bezierPathForDrawTexts());
  expectPoints({points[0], points[1]}, {{10, 20}, {90, 20}}, "a closed outline stays");
}

TEST_F(DrawBezierTextTest, ClosedShapesAreWalkedClockwiseFromWhereTheTextIsSet) {
  const auto ellipse = [] { return box<DrawEllipse>({{10, 20}, {100, 60}}); };
  const auto rounded = [] {
    auto guide = box<DrawRoundRectangle>({{10, 20}, {100, 60}});
    guide->setXRadius(20, 10);
    return guide;
  };
  const auto plain = [] { return box<DrawRectangle>({{10, 20}, {100, 60}}); };
  const auto path = [](std::shared_ptr<DrawBase> guide, NSTextAlignment alignment) {
    return along(std::move(guide), "aa", alignment)->bezierPathForDrawTexts();
  };
  const auto left = NSTextAlignment::left, center = NSTextAlignment::center,
             right = NSTextAlignment::right;
  expectPoints(endPoints(*path(ellipse(), left)),
               {{10, 50}, {60, 80}, {110, 50}, {60, 20}, {10, 50}}, "ellipse, left");
  expectPoints(endPoints(*path(ellipse(), right)),
               {{110, 50}, {60, 20}, {10, 50}, {60, 80}, {110, 50}}, "ellipse, right");
  expectPoints(endPoints(*path(ellipse(), center)),
               {{60, 20}, {10, 50}, {60, 80}, {110, 50}, {60, 20}}, "ellipse, centred");
  expectPoints(endPoints(*path(plain(), left)),
               {{10, 80}, {110, 80}, {110, 20}, {60, 20}, {10, 20}, {10, 80}}, "rectangle, left");
  expectPoints(endPoints(*path(rounded(), right)),
               {{90, 80},
                {110, 70},
                {110, 30},
                {90, 20},
                {60, 20},
                {30, 20},
                {10, 30},
                {10, 70},
                {30, 80},
                {90, 80}},
               "round rectangle, right");
  NSPoint curve[3];
  path(ellipse(), left)->elementAtIndex(1, curve);
  // 0.44772 of the radii 50 and 30 from the corner at (10, 80).
  EXPECT_NEAR(curve[0].y, 80 - 0.44772 * 30, 1e-9);
  EXPECT_NEAR(curve[1].x, 10 + 0.44772 * 50, 1e-9);
  EXPECT_EQ(curve[0].x, 10);
  EXPECT_EQ(curve[1].y, 80);
}

TEST_F(DrawBezierTextTest, CentredTextIsAtTheTopOfACircle) {
  const auto draw = along(box<DrawEllipse>({{50, 0}, {100, 60}}), "aa", NSTextAlignment::center);
  const DrawnDraw p(*draw);
  // Symmetric about 100, but for the steps in which curves are walked.
  EXPECT_LT(p.alpha(100, 40), 10) << "between the letters";
  for (int64_t y = 28; y < 60; ++y) {
    for (int64_t x = 85; x < 100; ++x) EXPECT_NEAR(p.alpha(x, y), p.alpha(199 - x, y), 15);
  }
  EXPECT_EQ(p.alpha(94, 40), 255);
}

TEST_F(DrawBezierTextTest, OnlyAVisibleGuideIsDrawn) {
  const DrawnDraw p(*curved("visible guide"));
  EXPECT_EQ(p.at(100, 49), kBlue);
  EXPECT_EQ(p.at(21, 49), kBlack) << "the text is on top";
  EXPECT_EQ(DrawnDraw(*curved("left to right")).at(100, 49), kNone);
  EXPECT_EQ(curved("visible guide")->drawRect(), NSMakeRect(19.5, 40, 101, 20));
}

TEST_F(DrawBezierTextTest, LooksAreThoseOfTextBoxes) {
  const auto draw = along(line({20, 50}, {120, 50}), "aa");
  draw->setTextOutlineWidth(-10, NSColor::blueColor());
  draw->setUseGradualText(true);
  draw->setTextGradient(
      NSGradient::initWithStartingColor(NSColor::redColor(), NSColor::redColor()));
  const DrawnDraw p(*draw);
  EXPECT_EQ(p.at(25, 48), kRed);
  EXPECT_EQ(p.at(21, 48), kBlue);
  EXPECT_EQ(p.at(20, 41), kBlue);
}

TEST_F(DrawBezierTextTest, SurvivesTheWayThroughAnArchive) {
  for (const char* title : {"left to right", "old", "path guide", "turned", "no guide"}) {
    const auto before = curved(title);
    const auto after = std::dynamic_pointer_cast<DrawBezierText>(
        DrawBase::drawFromEncodedData(DrawBase::encodedData(before)));
    ASSERT_NE(after, nullptr) << title;
    EXPECT_EQ(after->version(), before->bezierDraw() == nullptr ? 0 : before->version()) << title;
    EXPECT_EQ(after->bezierDraw() == nullptr, before->bezierDraw() == nullptr) << title;
    EXPECT_FALSE(after->enableFill()) << title;
    EXPECT_EQ(maxDifference(*DrawnDraw(*before).bitmap, *DrawnDraw(*after).bitmap), 0) << title;
  }
  const auto text = curved("path guide");
  const auto guide = std::dynamic_pointer_cast<DrawBezierPath>(text->bezierDraw());
  EXPECT_EQ(guide->master(), text.get());
  EXPECT_FALSE(text->isAutoResize());
  text->setBezierDraw(nullptr);
  EXPECT_EQ(guide->master(), nullptr);
  EXPECT_EQ(curved("old")->version(), 0);
}
