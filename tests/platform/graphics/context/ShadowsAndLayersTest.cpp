#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <optional>
#include <vector>

#include "platform/graphics/context/CGContext.h"
#include "platform/graphics/context/GradientDrawing.h"
#include "support/Bitmaps.h"
#include "support/ReferenceBlend.h"

namespace {

using Op = NSCompositingOperation;

constexpr RGBAColor kRed{1, 0, 0, 1};
constexpr RGBAColor kBlue{0, 0, 1, 1};
constexpr RGBAColor kBlack{0, 0, 0, 1};

uint32_t wordAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  uint32_t word = 0;
  std::memcpy(&word, bitmap.row(y) + 4 * x, 4);
  return word;
}

uint32_t alphaAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  return wordAt(bitmap, x, y) >> 24;
}

/// A plane of numbers over device pixels, zero outside what it was made for.
class Field {
 public:
  Field(int32_t side, const std::function<double(int32_t, int32_t)>& value) : side_(side) {
    for (int32_t y = 0; y < side; ++y) {
      for (int32_t x = 0; x < side; ++x) values_.push_back(value(x, y));
    }
  }
  double at(int32_t x, int32_t y) const {
    if (x < 0 || y < 0 || x >= side_ || y >= side_) return 0;
    return values_[static_cast<size_t>(y) * static_cast<size_t>(side_) + static_cast<size_t>(x)];
  }
  /// Convolved with the truncated Gaussian and moved.
  Field shadow(double blur, int32_t dx, int32_t dy) const {
    return convolved(blur, 1, 0).convolved(blur, 0, 1).moved(dx, dy);
  }

 private:
  Field convolved(double blur, int32_t stepX, int32_t stepY) const {
    const auto reach = static_cast<int32_t>(std::lround(blur));
    return Field(side_, [&](int32_t x, int32_t y) {
      double sum = 0;
      double weights = 0;
      for (int32_t k = -reach; k <= reach; ++k) {
        const double weight = reach == 0 ? 1 : std::exp(-2.0 * k * k / (blur * blur));
        sum += weight * at(x + k * stepX, y + k * stepY);
        weights += weight;
      }
      return sum / weights;
    });
  }
  Field moved(int32_t dx, int32_t dy) const {
    return Field(side_, [&](int32_t x, int32_t y) { return at(x - dx, y - dy); });
  }

  int32_t side_;
  std::vector<double> values_;
};

/// Coverage of a rectangle in user space on a bitmap `side` pixels high.
Field rectField(int32_t side, const NSRect& r) {
  const auto overlap = [](double low, double high, int32_t pixel) {
    return std::max(0.0, std::min<double>(high, pixel + 1) - std::max<double>(low, pixel));
  };
  return Field(side, [&](int32_t x, int32_t y) {
    return overlap(NSMinX(r), NSMaxX(r), x) * overlap(side - NSMaxY(r), side - NSMinY(r), y);
  });
}

UnitPixel painted(const RGBAColor& c, double alpha) {
  const double a = c.alpha * alpha;
  return {c.red * a, c.green * a, c.blue * a, a};
}

/// Every pixel of the bitmap against `expected`.
void expectPixels(const NSBitmapImageRep& bitmap, double tolerance,
                  const std::function<UnitPixel(int32_t, int32_t)>& expected) {
  for (int32_t y = 0; y < bitmap.pixelsHigh(); ++y) {
    for (int32_t x = 0; x < bitmap.pixelsWide(); ++x) {
      ASSERT_LE(distance(wordAt(bitmap, x, y), expected(x, y)), tolerance) << x << ' ' << y;
    }
  }
}

TEST(Shadow, LiesUnderTheShapeBlurredAndMoved) {
  constexpr int32_t kSide = 60;
  const NSRect rect = NSMakeRect(18.5, 20.25, 20, 17);
  const RGBAColor shadowColor{0.2, 0.4, 0, 0.7};
  const RGBAColor paint{0.9, 0.5, 0.1, 0.6};
  const Field shape = rectField(kSide, rect);
  for (const double blur : {0.0, 0.4, 3.0, 7.6}) {
    for (const double alpha : {1.0, 0.5}) {
      const auto before = randomBitmap(kSide, kSide, 2);
      const auto bitmap = before->copy();
      CGContext context(bitmap);
      context.setAlpha(alpha);
      context.setFillColor(paint);
      // Up by 6 and right by 9 after rounding: rows are counted from the top.
      context.setShadow({{9.4, 5.6}, blur, shadowColor});
      context.fill(rect);
      const Field cast = shape.shadow(blur < 0.5 ? 0 : blur, 9, -6);
      expectPixels(*bitmap, 2.5, [&](int32_t x, int32_t y) {
        const UnitPixel under = referenceBlend(
            Op::sourceOver, painted(shadowColor, alpha * paint.alpha * cast.at(x, y)),
            unitPixel(wordAt(*before, x, y)), 1);
        return referenceBlend(Op::sourceOver, painted(paint, alpha), under, shape.at(x, y));
      });
    }
  }
}

TEST(Shadow, ReachesExactlyTheBlurBeyondAnOpaqueSquare) {
  for (const int32_t blur : {5, 20}) {
    const auto bitmap = NSBitmapImageRep::create(100, 100);
    CGContext context(bitmap);
    context.setFillColor(kBlack);
    context.setShadow({{0, 0}, static_cast<double>(blur), kRed});
    context.fill(NSMakeRect(30, 30, 40, 40));
    EXPECT_GT(alphaAt(*bitmap, 30 - blur, 50), 0U);
    EXPECT_GT(alphaAt(*bitmap, 50, 69 + blur), 0U);
    EXPECT_EQ(alphaAt(*bitmap, 30 - blur - 1, 50), 0U);
    EXPECT_EQ(alphaAt(*bitmap, 50, 70 + blur), 0U);
    if (blur == 5) {
      EXPECT_NEAR(wordAt(*bitmap, 70, 50) & 255, 106.6, 1);
    }
  }
}

TEST(Shadow, OffsetIgnoresTheTransform) {
  const auto bitmap = NSBitmapImageRep::create(40, 40);
  CGContext context(bitmap);
  context.concatenate({0, 2, -2, 0, 20, 20});
  context.setFillColor(kBlack);
  context.setShadow({{10, 4}, 0, kRed});
  context.fill(NSMakeRect(0, 0, 2, 2));
  // The square covers x 16 to 20, y 20 to 24; its shadow x 26 to 30, y 24 to 28.
  EXPECT_EQ(wordAt(*bitmap, 26, 40 - 28), 0xff0000ffU);
  EXPECT_EQ(wordAt(*bitmap, 29, 40 - 25), 0xff0000ffU);
  EXPECT_EQ(wordAt(*bitmap, 25, 40 - 25), 0U);
  EXPECT_EQ(wordAt(*bitmap, 29, 40 - 24), 0U);
}

TEST(Shadow, IsCastFromOutsideTheClipAndCutByIt) {
  const auto bitmap = NSBitmapImageRep::create(20, 20);
  CGContext context(bitmap);
  context.clip(NSMakeRect(0, 0, 10, 20));
  context.setFillColor(kBlack);
  context.setShadow({{-12, 0}, 0, kRed});
  context.fill(NSMakeRect(15, 0, 10, 20));
  for (int64_t x = 0; x < 20; ++x) {
    EXPECT_EQ(wordAt(*bitmap, x, 5), x >= 3 && x < 10 ? 0xff0000ffU : 0U) << x;
  }
}

TEST(Shadow, EveryKindOfPaintingCastsOne) {
  const auto dot = makeBitmap(4, 4, [](int64_t, int64_t) { return Pixel{0, 0, 0, 255}; });
  PathData line;
  line.move({2, 4});
  line.line({6, 4});
  StrokeStyle pen;
  pen.width = 4;
  const CGGradient gradient({{0, kBlack}, {1, kBlack}});
  const std::function<void(CGContext&)> kinds[] = {
      [](CGContext& c) { c.fill(NSMakeRect(2, 2, 4, 4)); },
      [](CGContext& c) { c.fill(pathOfRect(NSMakeRect(2, 2, 4, 4)), WindingRule::evenOdd); },
      [&](CGContext& c) { c.stroke(line, pen); },
      [&](CGContext& c) { c.draw(*dot, NSMakeRect(2, 2, 4, 4)); },
      [&](CGContext& c) {
        CGTransparencyLayerScope layer(c);
        drawGradientInRect(c, gradient, NSMakeRect(2, 2, 4, 4), 0);
        layer.end();
      },
  };
  for (const auto& kind : kinds) {
    const auto bitmap = NSBitmapImageRep::create(20, 8);
    CGContext context(bitmap);
    context.setShadow({{10, 0}, 0, kRed});
    kind(context);
    for (int64_t y = 0; y < 8; ++y) {
      for (int64_t x = 0; x < 20; ++x) {
        const bool inRows = y >= 2 && y < 6;
        const uint32_t expected = !inRows             ? 0
                                  : x >= 2 && x < 6   ? 0xff000000U
                                  : x >= 12 && x < 16 ? 0xff0000ffU
                                                      : 0;
        ASSERT_EQ(wordAt(*bitmap, x, y), expected) << &kind - kinds << ": " << x << ' ' << y;
      }
    }
  }
}

TEST(Shadow, OfAGradientInAPathIsCutByThePath) {
  const auto bitmap = NSBitmapImageRep::create(20, 8);
  CGContext context(bitmap);
  context.setShadow({{10, 0}, 2, kRed});
  drawGradientInRect(context, CGGradient({{0, kBlack}, {1, kBlack}}), NSMakeRect(2, 2, 4, 4), 0);
  EXPECT_EQ(wordAt(*bitmap, 3, 3), 0xff000000U);
  for (int64_t x = 6; x < 20; ++x) EXPECT_EQ(wordAt(*bitmap, x, 3), 0U);
}

TEST(Shadow, AbsurdValuesAreBounded) {
  for (const double blur : {1e9, static_cast<double>(NAN), -3.0, static_cast<double>(INFINITY)}) {
    for (const double offset :
         {0.0, static_cast<double>(NAN), 1e300, -static_cast<double>(INFINITY)}) {
      const auto bitmap = NSBitmapImageRep::create(10, 10);
      CGContext context(bitmap);
      context.setFillColor(kBlue);
      context.setShadow({{offset, offset}, blur, kRed});
      context.fill(NSMakeRect(2, 2, 4, 4));
      {
        CGTransparencyLayerScope layer(context);
        context.fill(NSMakeRect(6, 6, 2, 2));
        layer.end();
      }
      EXPECT_EQ(wordAt(*bitmap, 3, 5), 0xffff0000U);
      EXPECT_EQ(wordAt(*bitmap, 6, 2), 0xffff0000U);
    }
  }
}

TEST(Layer, IsPaintedAsAWholeWithTheStateOfItsBeginning) {
  const auto bitmap = NSBitmapImageRep::create(6, 1);
  CGContext context(bitmap);
  context.setAlpha(0.5);
  context.setFillColor(kRed);
  context.setShadow({{100, 0}, 0, kBlack});
  context.beginTransparencyLayer();
  EXPECT_EQ(context.state().alpha, 1);
  EXPECT_FALSE(context.state().shadow.visible());
  EXPECT_EQ(context.state().operation, Op::sourceOver);
  EXPECT_EQ(context.state().fillColor, kRed);
  context.fill(NSMakeRect(0, 0, 4, 1));
  context.setFillColor(kBlue);
  context.setOperation(Op::copy);
  context.fill(NSMakeRect(2, 0, 4, 1));
  context.saveGState();
  context.saveGState();
  context.endTransparencyLayer();
  EXPECT_EQ(context.state().alpha, 0.5);
  EXPECT_TRUE(context.state().shadow.visible());
  EXPECT_EQ(context.state().operation, Op::sourceOver);
  EXPECT_EQ(context.state().fillColor, kRed);
  for (int64_t x = 0; x < 6; ++x) {
    EXPECT_EQ(wordAt(*bitmap, x, 0), x < 2 ? 0x80000080U : 0x80800000U) << x;
  }
}

TEST(Layer, AppliesTheOuterClipOnce) {
  const auto bitmap = NSBitmapImageRep::create(4, 1);
  CGContext context(bitmap);
  context.setFillColor(kRed);
  context.clip(NSMakeRect(0.5, 0, 3, 1));
  {
    CGTransparencyLayerScope outer(context);
    CGTransparencyLayerScope inner(context);
    context.fill(NSMakeRect(0, 0, 4, 1));
    inner.end();
    outer.end();
  }
  EXPECT_EQ(alphaAt(*bitmap, 0, 0), 128U);
  EXPECT_EQ(alphaAt(*bitmap, 1, 0), 255U);
  EXPECT_EQ(alphaAt(*bitmap, 3, 0), 128U);
}

TEST(Layer, OperationReachesTheWholeClip) {
  for (const Op operation : {Op::destinationIn, Op::sourceIn, Op::sourceOut, Op::copy}) {
    const auto bitmap = NSBitmapImageRep::create(8, 8);
    CGContext context(bitmap);
    context.setFillColor(kRed);
    context.fill(NSMakeRect(0, 0, 8, 8));
    context.setFillColor(kBlue);
    context.setOperation(operation);
    context.clip(NSMakeRect(1, 1, 6, 6));
    {
      CGTransparencyLayerScope layer(context);
      context.fill(NSMakeRect(3, 3, 2, 2));
      layer.end();
    }
    const uint32_t inLayer = operation == Op::destinationIn ? 0xff0000ffU
                             : operation == Op::sourceOut   ? 0U
                                                            : 0xffff0000U;
    for (int64_t y = 0; y < 8; ++y) {
      for (int64_t x = 0; x < 8; ++x) {
        const bool clipped = x >= 1 && x < 7 && y >= 1 && y < 7;
        const bool layered = x >= 3 && x < 5 && y >= 3 && y < 5;
        EXPECT_EQ(wordAt(*bitmap, x, y), layered   ? inLayer
                                         : clipped ? 0U
                                                   : 0xff0000ffU)
            << static_cast<int>(operation) << ": " << x << ' ' << y;
      }
    }
  }
}

TEST(Layer, ShadowFallsOnceUnderTheWholeContent) {
  constexpr int32_t kSide = 40;
  const NSRect left = NSMakeRect(8, 12, 12, 12);
  const NSRect right = NSMakeRect(16, 16, 12, 12);
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  CGContext context(bitmap);
  context.setAlpha(0.5);
  context.setShadow({{5, -4}, 6, kBlack});
  {
    CGTransparencyLayerScope layer(context);
    context.setFillColor(kRed);
    context.fill(left);
    context.fill(right);
    layer.end();
  }
  const Field l = rectField(kSide, left);
  const Field r = rectField(kSide, right);
  const Field both(kSide, [&](int32_t x, int32_t y) { return std::max(l.at(x, y), r.at(x, y)); });
  const Field cast = both.shadow(6, 5, 4);
  expectPixels(*bitmap, 2, [&](int32_t x, int32_t y) {
    return referenceBlend(Op::sourceOver, painted(kRed, 0.5 * both.at(x, y)),
                          painted(kBlack, 0.5 * cast.at(x, y)), 1);
  });
}

TEST(Layer, ContentOutsideTheClipCastsItsShadowIntoIt) {
  const auto bitmap = NSBitmapImageRep::create(20, 4);
  CGContext context(bitmap);
  context.clip(NSMakeRect(0, 0, 10, 4));
  context.setFillColor(kBlue);
  context.setShadow({{-30, 0}, 0, kRed});
  {
    CGTransparencyLayerScope layer(context);
    context.fill(NSMakeRect(34, 0, 100, 4));
    layer.end();
  }
  for (int64_t x = 0; x < 20; ++x) {
    EXPECT_EQ(wordAt(*bitmap, x, 2), x >= 4 && x < 10 ? 0xff0000ffU : 0U) << x;
  }
}

TEST(Layer, InnerShadowRecipeGivesItsClosedForm) {
  constexpr int32_t kSide = 50;
  const NSRect shapeRect = NSMakeRect(10.5, 12, 26, 24.25);
  const RGBAColor fill{0.3, 0.8, 0.2, 0.75};
  const RGBAColor shadow{0.1, 0, 0.6, 1};
  constexpr double kShadowAlpha = 0.8;
  const auto before = randomBitmap(kSide, kSide, 8);
  const auto bitmap = before->copy();
  CGContext context(bitmap);
  const PathData path = pathOfRect(shapeRect);
  context.saveGState();
  context.clip(NSMakeRect(10, 12, 27, 25));
  context.setAlpha(kShadowAlpha);
  context.beginTransparencyLayer();
  context.setShadow({{4, -3}, 5, shadow});
  context.setOperation(Op::sourceOut);
  context.beginTransparencyLayer();
  context.setFillColor(shadow);
  context.fill(path, WindingRule::nonZero);
  context.setOperation(Op::destinationIn);
  context.beginTransparencyLayer();
  context.setFillColor(fill);
  context.fill(path, WindingRule::nonZero);
  for (int i = 0; i < 3; ++i) context.endTransparencyLayer();
  context.restoreGState();

  const Field cover = rectField(kSide, shapeRect);
  // The path's coverage counts twice where it is partial: it was filled, and cut by its own fill.
  const Field mask(
      kSide, [&](int32_t x, int32_t y) { return cover.at(x, y) * cover.at(x, y) * fill.alpha; });
  const Field blurred = mask.shadow(5, 4, 3);
  expectPixels(*bitmap, 2.5, [&](int32_t x, int32_t y) {
    const double m = mask.at(x, y) * (1 - blurred.at(x, y)) * kShadowAlpha;
    const bool clipped = x >= 10 && x < 37 && y >= kSide - 37 && y < kSide - 12;
    return referenceBlend(Op::sourceOver, painted(shadow, clipped ? m : 0),
                          unitPixel(wordAt(*before, x, y)), 1);
  });
}

TEST(Layer, ReflectionRecipeFadesTheMirroredDraw) {
  // A rectangle reflected about its bottom edge, at opacity 0.5 and reflection 0.5.
  constexpr int32_t kSide = 40;
  const NSRect rect = NSMakeRect(8, 24, 20, 12);
  constexpr double kDistance = 3;
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  CGContext context(bitmap);
  context.setAlpha(0.5);
  context.setFillColor(kRed);
  context.saveGState();
  context.concatenate({1, 0, 0, -1, 0, 2 * NSMinY(rect) - kDistance});
  const NSRect strip = NSMakeRect(8, 24, 20, 6);
  context.clip(strip);
  {
    CGTransparencyLayerScope mirrored(context);
    context.fill(rect);
    context.setOperation(Op::destinationIn);
    CGTransparencyLayerScope fade(context);
    drawGradientInRect(context, CGGradient({{0, {0, 0, 0, 0.7}}, {1, {0, 0, 0, 0}}}), strip, 90);
    fade.end();
    mirrored.end();
  }
  context.restoreGState();
  expectPixels(*bitmap, 1.5, [&](int32_t x, int32_t y) {
    // The strip's mirrored image starts 3 below the rectangle and is 6 high.
    const double below = y + 0.5 - (kSide - 21);
    const bool inside = x >= 8 && x < 28 && below > 0 && below < 6;
    return painted(kRed, inside ? 0.5 * 0.7 * (1 - below / 6) : 0);
  });
}

TEST(Layer, UnbalancedCallsAreHarmless) {
  const auto bitmap = NSBitmapImageRep::create(2, 2);
  CGContext context(bitmap);
  context.endTransparencyLayer();
  context.setFillColor(kRed);
  context.saveGState();
  context.beginTransparencyLayer();
  context.setFillColor(kBlue);
  for (int i = 0; i < 3; ++i) context.restoreGState();
  EXPECT_EQ(context.state().fillColor, kBlue);
  context.fill(NSMakeRect(0, 0, 1, 1));
  context.endTransparencyLayer();
  context.endTransparencyLayer();
  EXPECT_EQ(context.state().fillColor, kRed);
  EXPECT_EQ(wordAt(*bitmap, 0, 1), 0xffff0000U);
  for (int i = 0; i < 300; ++i) context.beginTransparencyLayer();
  context.fill(NSMakeRect(1, 0, 1, 1));
  for (int i = 0; i < 299; ++i) context.endTransparencyLayer();
  EXPECT_EQ(wordAt(*bitmap, 1, 1), 0U);
  context.endTransparencyLayer();
  EXPECT_EQ(wordAt(*bitmap, 1, 1), 0xff0000ffU);
}

TEST(Layer, OfARectangleLosesOnlyWhatLiesOutsideIt) {
  const auto draw = [](const NSBitmapImageRep& bitmap, const std::optional<NSRect>& content) {
    auto result = bitmap.copy();
    CGContext context(result);
    context.concatenate({0.8, 0.6, -0.6, 0.8, 20, 0});
    context.setShadow({{4, 3}, 6, kRed});
    context.setAlpha(0.7);
    content ? context.beginTransparencyLayer(*content) : context.beginTransparencyLayer();
    context.setFillColor(kBlue);
    context.fill(NSMakeRect(10.5, 10.25, 12, 9.5));
    context.endTransparencyLayer();
    return result;
  };
  const auto canvas = NSBitmapImageRep::create(50, 50);
  const auto whole = draw(*canvas, std::nullopt);
  // Nothing is missing when the rectangle holds what is painted, however closely.
  EXPECT_EQ(maxDifference(*draw(*canvas, NSMakeRect(10.5, 10.25, 12, 9.5)), *whole), 0);
  EXPECT_EQ(maxDifference(*draw(*canvas, NSMakeRect(-1e9, -1e9, 2e9, 2e9)), *whole), 0);
  EXPECT_EQ(maxDifference(*draw(*canvas, NSMakeRect(200, 200, 5, 5)), *canvas), 0);
  EXPECT_EQ(maxDifference(*draw(*canvas, NSMakeRect(NAN, 0, NAN, 5)), *canvas), 0);
}

TEST(Layer, NothingVisibleTakesNoMemory) {
  const auto bitmap = NSBitmapImageRep::create(8, 8);
  CGContext context(bitmap);
  context.setFillColor(kRed);
  context.clip(NSMakeRect(20, 20, 5, 5));
  CGTransparencyLayerScope layer(context);
  EXPECT_TRUE(context.state().clip.isEmpty());
  context.fill(NSMakeRect(0, 0, 8, 8));
  layer.end();
}

}  // namespace
