#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "draw/raster/DrawSelections.h"
#include "draw/raster/ImageFill.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "support/Masks.h"

namespace {

constexpr Pixel kClear{0, 0, 0, 0};
constexpr Pixel kRed{255, 0, 0, 255};

int distance(const Pixel& a, const Pixel& b) {
  int largest = 0;
  for (size_t i = 0; i < 4; ++i) largest = std::max(largest, std::abs(int{a[i]} - int{b[i]}));
  return largest;
}

/// The plainest flood fill there is, on rows from the top.
struct Reference {
  Reference(const NSBitmapImageRep& image, int64_t x, int64_t row, int tolerance)
      : rows(static_cast<size_t>(image.pixelsHigh()),
             std::string(static_cast<size_t>(image.pixelsWide()), '.')) {
    const Pixel seed = pixelAt(image, x, row);
    std::vector<std::pair<int64_t, int64_t>> points = {{x, row}};
    while (!points.empty()) {
      const auto [px, py] = points.back();
      points.pop_back();
      if (px < 0 || py < 0 || px >= image.pixelsWide() || py >= image.pixelsHigh()) continue;
      const int d = distance(pixelAt(image, px, py), seed);
      if (d > tolerance || !take(px, py)) continue;
      differs = differs || d != 0;
      for (const auto& [dx, dy] : {std::pair{-1, 0}, {1, 0}, {0, -1}, {0, 1}}) {
        points.emplace_back(px + dx, py + dy);
      }
    }
  }

  bool take(int64_t x, int64_t y) {
    char& state = rows[static_cast<size_t>(y)][static_cast<size_t>(x)];
    if (state == '#') return false;
    state = '#';
    x0 = std::min(x0, x);
    x1 = std::max(x1, x);
    y0 = std::min(y0, y);
    y1 = std::max(y1, y);
    return true;
  }

  PixelRows rows;
  bool differs = false;  ///< some pixel of the region from the seed
  int64_t x0 = INT64_MAX, x1 = -1, y0 = INT64_MAX, y1 = -1;
};

/// A picture of few colours in stretches and patches, so that regions of any shape come about.
std::shared_ptr<NSBitmapImageRep> randomPicture(int64_t width, int64_t height,
                                                std::mt19937& random) {
  const auto colors = 2 + random() % 5;
  const auto step = 1 + random() % 60;
  const auto repeat = 2 + random() % 8;
  std::vector<Pixel> row(static_cast<size_t>(width));
  return makeBitmap(width, height, [&](int64_t x, int64_t) {
    // Mostly the pixel above or the one on the left.
    Pixel& pixel = row[static_cast<size_t>(x)];
    const auto choice = random() % repeat;
    if (choice == 0) {
      for (uint8_t& channel : pixel) channel = static_cast<uint8_t>(random() % colors * step);
    } else if (choice == 1 && x > 0) {
      pixel = row[static_cast<size_t>(x - 1)];
    }
    return pixel;
  });
}

std::shared_ptr<ImageFill> fillOf(const PixelRows& rows, NSPoint at) {
  const auto picture = makeBitmap(static_cast<int64_t>(rows[0].size()),
                                  static_cast<int64_t>(rows.size()), [&](int64_t x, int64_t y) {
                                    const auto level = static_cast<uint8_t>(
                                        rows[static_cast<size_t>(y)][static_cast<size_t>(x)]);
                                    return Pixel{level, 0, 0, 255};
                                  });
  return ImageFill::initWithImage(picture, at);
}

PixelRows inverted(PixelRows rows) {
  for (std::string& row : rows) {
    for (char& c : row) c = c == '#' ? '.' : '#';
  }
  return rows;
}

void expectRegion(ImageFill& fill, const Reference& expected) {
  const int64_t w = fill.inputWidth(), h = fill.inputHeight();
  const NSRect rect = fill.fillRect();
  EXPECT_EQ(rect,
            NSMakeRect(static_cast<double>(expected.x0), static_cast<double>(h - 1 - expected.y1),
                       static_cast<double>(expected.x1 - expected.x0 + 1),
                       static_cast<double>(expected.y1 - expected.y0 + 1)));
  const auto mask = fill.imageMask();
  ASSERT_EQ(mask->maskRect(), rect);
  EXPECT_EQ(placedRows(w, h, rowsOf(*mask), static_cast<int64_t>(rect.origin.x),
                       static_cast<int64_t>(rect.origin.y)),
            expected.rows);
  EXPECT_EQ(rowsOf(*fill.invertedImageMask()), inverted(expected.rows));
  EXPECT_EQ(fill.invertedImageMask()->maskStartPoint(), NSZeroPoint);
  EXPECT_EQ(rowsOf(*fill.fillImage(), kRed), expected.rows);
  EXPECT_EQ(rowsOf(*fill.fillImage(), kClear), inverted(expected.rows));
  const bool all =
      expected.rows == PixelRows(static_cast<size_t>(h), std::string(static_cast<size_t>(w), '#'));
  EXPECT_EQ(fill.isFillAllRect(), all);
  for (int64_t y = 0; y < h; ++y) {
    for (int64_t x = 0; x < w; ++x) {
      const NSPoint p{static_cast<double>(x) + 0.9, static_cast<double>(h - 1 - y)};
      ASSERT_EQ(fill.isPointFilled(p),
                expected.rows[static_cast<size_t>(y)][static_cast<size_t>(x)] == '#');
    }
  }
}

/// The pixels that filling a path paints.
PixelRows filledRows(NSBezierPath& path, int64_t width, int64_t height, WindingRule rule) {
  const auto bitmap = NSBitmapImageRep::create(width, height);
  const ZTFocusScope focus(bitmap);
  NSColor::redColor()->setFill();
  path.setWindingRule(rule);
  path.fill();
  EXPECT_EQ(rowsOf(*bitmap, kClear), inverted(rowsOf(*bitmap, kRed))) << "nothing between";
  return rowsOf(*bitmap, kRed);
}

}  // namespace

TEST(ImageFill, RegionsAreThoseOfThePlainSearch) {
  std::mt19937 random(11);
  for (int i = 0; i < 150; ++i) {
    SCOPED_TRACE(i);
    const auto w = static_cast<int64_t>(1 + random() % (i % 10 == 0 ? 300 : 40));
    const auto h = static_cast<int64_t>(1 + random() % 24);
    const auto picture = randomPicture(w, h, random);
    const auto x = static_cast<int64_t>(random()) % w, y = static_cast<int64_t>(random()) % h;
    const auto fill =
        ImageFill::initWithImage(picture, {static_cast<double>(x), static_cast<double>(y)});
    fill->setFillColor(NSColor::redColor().get());
    EXPECT_EQ(fill->startPoint(), NSMakePoint(static_cast<double>(x), static_cast<double>(y)));
    // One engine through growing and shrinking tolerances.
    for (int search = 0; search < 4; ++search) {
      const auto tolerance = static_cast<int>(random() % 200);
      SCOPED_TRACE(tolerance);
      fill->fillWithTolerance(static_cast<uint32_t>(tolerance));
      EXPECT_EQ(fill->tolerance(), static_cast<uint32_t>(tolerance));
      const Reference expected(*picture, x, h - 1 - y, tolerance);
      expectRegion(*fill, expected);
      const bool seedIsRed = pixelAt(*picture, x, h - 1 - y) == kRed;
      EXPECT_EQ(fill->isFillNeeded(),
                fill->isFillAllRect() ? expected.differs : !seedIsRed || expected.differs);
      if (HasFailure()) return;
    }
  }
}

TEST(ImageFill, BordersEncloseTheRegion) {
  std::mt19937 random(5);
  for (unsigned i = 0; i < 80; ++i) {
    SCOPED_TRACE(i);
    const auto picture = randomPicture(static_cast<int64_t>(1 + random() % 60),
                                       static_cast<int64_t>(1 + random() % 30), random);
    const int64_t w = picture->pixelsWide(), h = picture->pixelsHigh();
    const auto fill =
        ImageFill::initWithImage(picture, {static_cast<double>(w / 2), static_cast<double>(h / 2)});
    EXPECT_EQ(fill->inputImage(), picture) << "the bitmap is kept";
    fill->fillWithTolerance(static_cast<uint32_t>(random() % 100));
    const auto mask = fill->imageMask();
    const auto expected =
        placedRows(w, h, rowsOf(*mask), static_cast<int64_t>(mask->maskStartPoint().x),
                   static_cast<int64_t>(mask->maskStartPoint().y));
    const auto border = fill->fillBorder();
    EXPECT_EQ(filledRows(*border, w, h, WindingRule::nonZero), expected);
    EXPECT_EQ(filledRows(*border, w, h, WindingRule::evenOdd), expected);
    EXPECT_EQ(border->bounds(), fill->fillRect());
  }
}

TEST(ImageFill, BordersTurnAtCornersOnly) {
  struct Case {
    PixelRows picture;
    int64_t subpaths, corners;
  };
  const Case cases[] = {
      {{"aaaa", "aaaa"}, 1, 4},
      {{"aaab", "abab", "aaab"}, 2, 8},
      {{"aabb", "abbb", "aaaa"}, 1, 8},
      // Where the hole and the outside touch, the outline runs through the corner twice.
      {{"aaab", "abab", "aabb"}, 1, 10},
  };
  for (const Case& c : cases) {
    const auto fill = fillOf(c.picture, {0, 0});
    fill->fillWithTolerance(0);
    const auto border = fill->fillBorder();
    // The first corner of a subpath is its move; the last close is followed by another.
    EXPECT_EQ(border->elementCount(), c.corners + c.subpaths + 1) << c.picture[0];
  }
}

TEST(ImageFill, SeedsAreRoundedAndMustBeInside) {
  struct Case {
    NSPoint point;
    bool isInside;
    NSPoint start;
  };
  const Case cases[] = {
      {{0, 0}, true, {0, 0}},     {{2.4, 1.4}, true, {2, 1}},     {{-0.4, -0.4}, true, {0, 0}},
      {{1.5, 0.5}, true, {2, 1}}, {{-0.5, 0}, false, {}},         {{2.5, 0}, false, {}},
      {{0, 1.5}, false, {}},      {{-1, 0}, false, {}},           {{0, 2}, false, {}},
      {{1e300, 0}, false, {}},    {{0, std::nan("")}, false, {}},
  };
  for (const Case& c : cases) {
    const auto fill = fillOf({"abc", "def"}, c.point);
    EXPECT_EQ(fill != nullptr, c.isInside) << c.point.x << ", " << c.point.y;
    if (fill == nullptr) continue;
    EXPECT_EQ(fill->startPoint(), c.start);
  }
  EXPECT_EQ(ImageFill::initWithImage(nullptr, {0, 0}), nullptr);
  EXPECT_EQ(ImageFill::initWithImage(NSBitmapImageRep::create(0, 0), {0, 0}), nullptr);
}

TEST(ImageFill, HasNoRegionBeforeTheFirstSearch) {
  const auto fill = fillOf({"ab", "ab"}, {0, 0});
  EXPECT_EQ(fill->imageMask(), nullptr);
  EXPECT_EQ(fill->fillImage(), nullptr);
  EXPECT_EQ(fill->fillRect(), NSZeroRect);
  EXPECT_TRUE(fill->fillBorder()->isEmpty());
  EXPECT_FALSE(fill->isPointFilled({0, 0}));
  EXPECT_EQ(rowsOf(*fill->invertedImageMask()), PixelRows(2, "##"));
  EXPECT_EQ(fill->tolerance(), 256U);
}

TEST(ImageFill, DistanceIsThatOfTheFarthestChannel) {
  const Pixel seed{100, 100, 100, 100};
  for (size_t channel = 0; channel < 4; ++channel) {
    for (const int step : {-20, 20}) {
      const auto picture = makeBitmap(2, 1, [&](int64_t x, int64_t) {
        Pixel p = seed;
        for (uint8_t& c : p) c = static_cast<uint8_t>(c + x * 10);
        p[channel] = static_cast<uint8_t>(seed[channel] + x * step);
        return p;
      });
      const auto fill = ImageFill::initWithImage(picture, {0, 0});
      fill->fillWithTolerance(19);
      EXPECT_EQ(fill->fillRect(), NSMakeRect(0, 0, 1, 1));
      fill->fillWithTolerance(20);
      EXPECT_EQ(fill->fillRect(), NSMakeRect(0, 0, 2, 1));
    }
  }
}

TEST(ImageFill, WhetherFillingIsNeeded) {
  struct Case {
    PixelRows picture;
    uint8_t red;  ///< of the fill colour; the seed is 'a' (97)
    uint32_t tolerance;
    bool isNeeded, isAll;
  };
  const Case cases[] = {
      {{"aaa", "aaa"}, 97, 0, false, true},    {{"aaa", "aaa"}, 200, 0, false, true},
      {{"aaa", "aaa"}, 200, 255, false, true}, {{"aab", "aaa"}, 97, 0, false, false},
      {{"aab", "aaa"}, 97, 1, true, true},     {{"aab", "aaz"}, 97, 1, true, false},
      {{"aab", "aaz"}, 200, 0, true, false},   {{"aab", "aaz"}, 200, 255, true, true},
  };
  for (const Case& c : cases) {
    const auto fill = fillOf(c.picture, {0, 0});
    fill->setFillColor(NSColor::colorWithCalibratedRed(c.red / 255.0, 0, 0, 1).get());
    fill->fillWithTolerance(c.tolerance);
    EXPECT_EQ(fill->isFillNeeded(), c.isNeeded)
        << c.picture[0] << c.picture[1] << int{c.red} << " " << c.tolerance;
    EXPECT_EQ(fill->isFillAllRect(), c.isAll) << c.picture[0] << c.picture[1] << c.tolerance;
  }
}

TEST(ImageFill, DiagonalNeighboursAreNotJoined) {
  const auto fill = fillOf({"ba", "ab"}, {0, 0});
  fill->fillWithTolerance(0);
  EXPECT_EQ(fill->fillRect(), NSMakeRect(0, 0, 1, 1));
  EXPECT_TRUE(fill->isPointFilled({0.99, 0}));
  EXPECT_FALSE(fill->isPointFilled({1, 1}));
  for (const NSPoint p : {NSPoint{-0.1, 0}, {0, -0.1}, {2, 0}, {0, 2}, {std::nan(""), 0}}) {
    EXPECT_FALSE(fill->isPointFilled(p));
  }
}

/// A growing tolerance paints over the old result; the same one does nothing, in any colour.
TEST(ImageFill, NewColoursApplyToNewSearches) {
  const auto fill = fillOf({"abz"}, {0, 0});
  fill->setFillColor(NSColor::redColor().get());
  fill->fillWithTolerance(1);
  fill->setFillColor(nullptr);
  fill->fillWithTolerance(1);
  EXPECT_EQ(rowsOf(*fill->fillImage(), kRed), PixelRows{"##."});
  fill->fillWithTolerance(0);
  EXPECT_EQ(rowsOf(*fill->fillImage(), kClear), PixelRows{"###"});
  fill->setFillColor(NSColor::redColor().get());
  fill->fillWithTolerance(999);
  EXPECT_EQ(fill->tolerance(), 255U);
  EXPECT_EQ(rowsOf(*fill->fillImage(), kRed), PixelRows{"###"});
  // Each colour stays where it was filled, whether or not anyone looked in between.
  fill->fillWithTolerance(0);
  fill->setFillColor(NSColor::blueColor().get());
  fill->setFillColor(NSColor::greenColor().get());
  EXPECT_EQ(rowsOf(*fill->fillImage(), kRed), PixelRows{"#.."});
  fill->fillWithTolerance(1);
  EXPECT_EQ(rowsOf(*fill->fillImage(), {0, 255, 0, 255}), PixelRows{"##."});
}

TEST(DrawMagicSelection, SelectsWhatAFillWouldReach) {
  const auto picture = makeBitmap(4, 2, [](int64_t x, int64_t y) {
    return Pixel{static_cast<uint8_t>(x == 1 && y == 1 ? 90 : 100 * (x / 2)), 0, 0, 255};
  });
  const auto selection = DrawMagicSelection::initWithPoint({0, 1}, 90, *picture);
  picture->clear();
  EXPECT_EQ(rowsOf(*selection->imageMaskForSelection()), PixelRows(2, "##"));
  EXPECT_FALSE(selection->isInverted());
  selection->setInverted(true);
  EXPECT_TRUE(selection->isInverted());
  EXPECT_EQ(rowsOf(*selection->imageMaskForSelection()), PixelRows(2, "..##"));
  EXPECT_TRUE(selection->isSelectTool());
  EXPECT_EQ(DrawMagicSelection::initWithPoint({4, 0}, 90, *picture), nullptr);
  EXPECT_EQ(DrawMagicSelection().imageMaskForSelection(), nullptr);
}
