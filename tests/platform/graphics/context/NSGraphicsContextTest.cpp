#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <thread>

#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/resample/Resampler.h"

namespace {

uint32_t pixelAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  uint32_t pixel = 0;
  std::memcpy(&pixel, bitmap.row(y) + 4 * x, 4);
  return pixel;
}

std::shared_ptr<NSBitmapImageRep> bitmapOf(double width, double height) {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  EXPECT_TRUE(InitImageRep({width, height}, &bitmap));
  return bitmap;
}

void setFill(const RGBAColor& color) {
  NSGraphicsContext::currentContext()->graphicsPort()->setFillColor(color);
}

constexpr RGBAColor kRed{1, 0, 0, 1};
constexpr uint32_t kRedPixel = 0xff0000ff;
constexpr uint32_t kBluePixel = 0xffff0000;

TEST(NSGraphicsContext, FocusNestsAndIsRestored) {
  const auto outer = bitmapOf(4, 4);
  const auto inner = bitmapOf(4, 4);
  EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
  {
    ZTFocusScope outerFocus(outer);
    setFill(kRed);
    NSGraphicsContext::currentContext()->setCompositingOperation(NSCompositingOperation::copy);
    {
      ZTFocusScope innerFocus(inner);
      EXPECT_EQ(NSGraphicsContext::currentContext()->compositingOperation(),
                NSCompositingOperation::sourceOver);
      setFill({0, 0, 1, 1});
      NSRectFill(NSMakeRect(0, 0, 1, 1));
    }
    EXPECT_EQ(NSGraphicsContext::currentContext()->compositingOperation(),
              NSCompositingOperation::copy);
    NSRectFill(NSMakeRect(3, 3, 1, 1));
  }
  EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
  EXPECT_EQ(pixelAt(*inner, 0, 3), kBluePixel);
  EXPECT_EQ(pixelAt(*outer, 3, 0), kRedPixel);
  EXPECT_EQ(pixelAt(*outer, 0, 3), 0U);
}

TEST(NSGraphicsContext, UnbalancedCallsAndMissingContextsAreHarmless) {
  NSGraphicsContext::restoreGraphicsState();
  NSRectFill(NSMakeRect(0, 0, 1, 1));
  NSRectClip(NSMakeRect(0, 0, 1, 1));
  drawInRect(*bitmapOf(1, 1), NSMakeRect(0, 0, 1, 1));
  {
    NSGraphicsStateScope none;
    ZTFocusScope empty(nullptr);
    setFill(kRed);
    NSRectFill(NSMakeRect(0, 0, 1, 1));
    for (int i = 0; i < 3; ++i)
      NSGraphicsContext::currentContext()->graphicsPort()->restoreGState();
  }
  EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
}

TEST(NSGraphicsContext, EachThreadHasItsOwnCurrentContext) {
  ZTFocusScope focus(bitmapOf(1, 1));
  std::thread([] { EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr); }).join();
}

TEST(InitImageRep, TruncatesAndRefusesWhatCannotBe) {
  EXPECT_EQ(bitmapOf(3.9, 2.1)->pixelsWide(), 3);
  std::shared_ptr<NSBitmapImageRep> bitmap = bitmapOf(1, 1);
  for (const NSSize& size : {NSSize{-1, 5}, NSSize{NAN, 5}, NSSize{5, INFINITY}, NSSize{1e300, 1},
                             NSSize{20000, 12501}}) {
    EXPECT_FALSE(InitImageRep(size, &bitmap));
    EXPECT_EQ(bitmap, nullptr);
  }
}

TEST(NSRectFill, CopiesWhateverTheOperation) {
  const auto bitmap = bitmapOf(4, 2);
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  NSRectFill(NSMakeRect(0, 0, 4, 2));
  setFill({0, 0, 1, 0.5});
  NSGraphicsContext::currentContext()->setCompositingOperation(NSCompositingOperation::sourceOver);
  NSRectFill(NSMakeRect(0, 0, 1, 1));
  NSRectFillUsingOperation(NSMakeRect(1, 0, 1, 1), NSCompositingOperation::sourceOver);
  NSRectFillUsingOperation(NSMakeRect(2, 0, 1, 1), NSCompositingOperation::clear);
  EXPECT_EQ(pixelAt(*bitmap, 0, 1), 0x80800000U);
  EXPECT_EQ(pixelAt(*bitmap, 1, 1), 0xff80007fU);
  EXPECT_EQ(pixelAt(*bitmap, 2, 1), 0U);
  EXPECT_EQ(pixelAt(*bitmap, 3, 1), kRedPixel);
  EXPECT_EQ(pixelAt(*bitmap, 0, 0), kRedPixel);
}

TEST(NSRectFill, EdgesOnFractionsAreCoveredByArea) {
  // A rectangle from (1.5, 0.25) to (3.25, 1.5) on a bitmap two pixels high.
  const auto bitmap = bitmapOf(5, 2);
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  NSRectFillUsingOperation(NSMakeRect(1.5, 0.25, 1.75, 1.25), NSCompositingOperation::sourceOver);
  const auto alpha = [&](int64_t x, int64_t y) { return pixelAt(*bitmap, x, y) >> 24; };
  EXPECT_EQ(alpha(0, 1), 0U);
  EXPECT_EQ(alpha(1, 1), 96U);   // 0.5 x 0.75 x 255 = 95.6
  EXPECT_EQ(alpha(2, 1), 191U);  // 0.75 x 255 = 191.25
  EXPECT_EQ(alpha(3, 1), 48U);   // 0.25 x 0.75 x 255 = 47.8
  EXPECT_EQ(alpha(2, 0), 128U);  // 0.5 x 255 = 127.5
  EXPECT_EQ(alpha(4, 1), 0U);
  NSGraphicsContext::currentContext()->setShouldAntialias(false);
  NSRectFill(NSMakeRect(1.5, 0.25, 1.75, 1.25));
  for (int64_t y = 0; y < 2; ++y) {
    for (int64_t x = 0; x < 5; ++x) {
      EXPECT_EQ(pixelAt(*bitmap, x, y), x >= 1 && x <= 3 ? kRedPixel : 0U) << x << ' ' << y;
    }
  }
}

TEST(NSRectFill, ClearingEverythingForgetsTheUsedRows) {
  const auto bitmap = bitmapOf(6, 6);
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  NSRectFill(NSMakeRect(0, 2, 6, 2));
  setFill({0, 0, 0, 0});
  NSRectFill(NSMakeRect(0, 0, 5, 6));
  EXPECT_EQ(pixelAt(*bitmap, 4, 3), 0U);
  EXPECT_EQ(pixelAt(*bitmap, 5, 3), kRedPixel);
  NSRectFill(NSMakeRect(0, 0, 6, 6));
  EXPECT_EQ(pixelAt(*bitmap, 5, 3), 0U);
  EXPECT_TRUE(bitmap->usedRows().empty());
}

TEST(NSRectClip, IntersectsUntilTheStateIsRestored) {
  const auto bitmap = bitmapOf(4, 4);
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  {
    NSGraphicsStateScope state;
    NSRectClip(NSMakeRect(0, 0, 2, 4));
    NSRectClip(NSMakeRect(1, 1, 3, 9));
    NSRectFill(NSMakeRect(0, 0, 4, 4));
  }
  for (int64_t y = 0; y < 4; ++y) {
    for (int64_t x = 0; x < 4; ++x) {
      EXPECT_EQ(pixelAt(*bitmap, x, y), x == 1 && y < 3 ? kRedPixel : 0U) << x << ' ' << y;
    }
  }
  NSRectFill(NSMakeRect(3, 0, 1, 1));
  EXPECT_EQ(pixelAt(*bitmap, 3, 3), kRedPixel);
}

std::shared_ptr<NSBitmapImageRep> numbered(int64_t width, int64_t height) {
  auto bitmap = NSBitmapImageRep::create(width, height);
  uint8_t* out = bitmap->writableRows(0, height);
  for (int64_t i = 0; i < width * height; ++i) {
    const uint32_t pixel = 0xff000000U + static_cast<uint32_t>(i);
    std::memcpy(out + 4 * i, &pixel, 4);
  }
  return bitmap;
}

TEST(DrawInRect, WholePixelPlacementCopiesRows) {
  const auto source = numbered(3, 2);
  const auto bitmap = bitmapOf(6, 5);
  ZTFocusScope focus(bitmap);
  drawInRect(*source, NSMakeRect(2, 1, 3, 2));
  for (int64_t y = 0; y < 5; ++y) {
    for (int64_t x = 0; x < 6; ++x) {
      const bool inside = x >= 2 && x < 5 && y >= 2 && y < 4;
      EXPECT_EQ(pixelAt(*bitmap, x, y), inside ? pixelAt(*source, x - 2, y - 2) : 0U);
    }
  }
}

TEST(DrawInRect, PartsAreCountedFromTheBottomLeft) {
  const auto source = numbered(4, 4);
  const auto bitmap = bitmapOf(4, 4);
  ZTFocusScope focus(bitmap);
  drawInRect(*source, NSMakeRect(0, 0, 2, 1), NSMakeRect(1, 0, 2, 1), NSCompositingOperation::copy,
             1);
  EXPECT_EQ(pixelAt(*bitmap, 0, 3), pixelAt(*source, 1, 3));
  EXPECT_EQ(pixelAt(*bitmap, 1, 3), pixelAt(*source, 2, 3));
  EXPECT_EQ(pixelAt(*bitmap, 2, 3), 0U);
}

TEST(DrawInRect, DestinationInCutsInsideTheRectangleOnly) {
  // The mask is opaque in its lower row only; its upper rows were never drawn on.
  const auto mask = NSBitmapImageRep::create(2, 3);
  std::memset(mask->writableRows(2, 3), 255, 8);
  const auto bitmap = bitmapOf(4, 4);
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  NSRectFill(NSMakeRect(0, 0, 4, 4));
  NSGraphicsContext::currentContext()->setCompositingOperation(
      NSCompositingOperation::destinationIn);
  drawInRect(*mask, NSMakeRect(1, 0, 2, 3));
  for (int64_t y = 0; y < 4; ++y) {
    for (int64_t x = 0; x < 4; ++x) {
      const bool cut = x >= 1 && x < 3 && y >= 1 && y < 3;
      EXPECT_EQ(pixelAt(*bitmap, x, y), cut ? 0U : kRedPixel) << x << ' ' << y;
    }
  }
}

TEST(DrawInRect, CopyReplacesRowsThatTheSourceNeverUsed) {
  const auto source = bitmapOf(3, 4);
  const auto bitmap = bitmapOf(3, 4);
  {
    ZTFocusScope focus(source);
    setFill({0, 0, 1, 1});
    NSRectFill(NSMakeRect(0, 0, 3, 1));
  }
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  NSRectFill(NSMakeRect(0, 0, 3, 2));
  NSGraphicsContext::currentContext()->setCompositingOperation(NSCompositingOperation::copy);
  drawInRect(*source, NSMakeRect(0, 0, 3, 4));
  for (int64_t y = 0; y < 4; ++y) EXPECT_EQ(pixelAt(*bitmap, 1, y), y == 3 ? kBluePixel : 0U) << y;
  // Nothing on nothing is not written at all.
  EXPECT_EQ(bitmap->usedRows().first, 2);
}

TEST(DrawInRect, FractionReplacesTheContextsAlpha) {
  const auto source = numbered(1, 1);
  const auto bitmap = bitmapOf(2, 1);
  ZTFocusScope focus(bitmap);
  NSGraphicsContext::currentContext()->graphicsPort()->setAlpha(0.5);
  drawInRect(*source, NSMakeRect(0, 0, 1, 1), NSZeroRect, NSCompositingOperation::sourceOver, 0.5);
  drawInRect(*source, NSMakeRect(1, 0, 1, 1), NSZeroRect, NSCompositingOperation::sourceOver, 7);
  EXPECT_EQ(pixelAt(*bitmap, 0, 0) >> 24, 128U);
  EXPECT_EQ(pixelAt(*bitmap, 1, 0) >> 24, 255U);
}

TEST(DrawInRect, EnlargedBitmapsExtendTheirEdges) {
  const auto source = NSBitmapImageRep::create(2, 1);
  const uint32_t pixels[] = {0xff000000, 0xffffffff};
  std::memcpy(source->writableRows(0, 1), pixels, 8);
  const auto bitmap = bitmapOf(8, 2);
  ZTFocusScope focus(bitmap);
  NSGraphicsContext::currentContext()->setImageInterpolation(NSImageInterpolation::none);
  drawInRect(*source, NSMakeRect(0, 0, 8, 1));
  NSGraphicsContext::currentContext()->setImageInterpolation(NSImageInterpolation::low);
  drawInRect(*source, NSMakeRect(0, 1, 8, 1));
  // Bilinear: the weight of the white pixel at x is (x + 0.5) / 4 - 0.5, held within 0..1.
  const uint32_t bilinear[] = {0, 0, 32, 96, 159, 223, 255, 255};
  for (int64_t x = 0; x < 8; ++x) {
    EXPECT_EQ(pixelAt(*bitmap, x, 1), x < 4 ? 0xff000000U : 0xffffffffU) << x;
    EXPECT_NEAR(pixelAt(*bitmap, x, 0) & 255, bilinear[x], 1) << x;
    EXPECT_EQ(pixelAt(*bitmap, x, 0) >> 24, 255U) << x;
  }
}

/// Stripes of opaque white and black, one pixel each: the hardest picture to reduce.
std::shared_ptr<NSBitmapImageRep> stripes(int64_t width, int64_t height) {
  auto bitmap = NSBitmapImageRep::create(width, height);
  uint8_t* p = bitmap->writableRows(0, height);
  for (int64_t i = 0; i < width * height; ++i, p += 4) {
    const uint32_t pixel = i % width % 2 == 0 ? 0xffffffff : 0xff000000;
    std::memcpy(p, &pixel, 4);
  }
  return bitmap;
}

TEST(DrawInRect, UprightPicturesGoThroughTheResamplingFilter) {
  const auto source = stripes(90, 70);
  for (const bool mirrored : {false, true}) {
    const auto bitmap = bitmapOf(40, 30);
    ZTFocusScope focus(bitmap);
    CGContext* port = NSGraphicsContext::currentContext()->graphicsPort();
    if (mirrored) port->concatenate({-1, 0, 0, 1, 40, 0});
    drawInRect(*source, NSMakeRect(4, 3, 29, 17));
    // The rectangle's upper edge is at row 30 - 20; mirrored it starts at column 40 - 33.
    const int64_t left = mirrored ? 7 : 4;
    const ResampleMapping mapping{
        {{0, 0}, {90, 70}}, {{static_cast<double>(left), 10}, {29, 17}}, mirrored, false};
    Resampler expected(*source, mapping, {0, 0, 40, 30});
    for (int64_t y = 0; y < 30; ++y) {
      for (int64_t x = 0; x < 40; ++x) {
        const bool inside = x >= left && x < left + 29 && y >= 10 && y < 27;
        uint32_t pixel = 0;
        if (inside) std::memcpy(&pixel, expected.row(y) + 4 * x, 4);
        ASSERT_EQ(pixelAt(*bitmap, x, y), pixel) << x << "," << y;
      }
    }
  }
}

TEST(DrawInRect, ClippingCostsOnlyWhatIsVisibleAndChangesNothing) {
  const auto source = stripes(300, 200);
  const auto whole = bitmapOf(50, 50);
  const auto clipped = bitmapOf(50, 50);
  const NSRect destination = NSMakeRect(-10.25, 5.5, 70, 33.3);
  {
    ZTFocusScope focus(whole);
    drawInRect(*source, destination);
  }
  ZTFocusScope focus(clipped);
  NSRectClip(NSMakeRect(20, 10, 7, 6));
  drawInRect(*source, destination);
  for (int64_t y = 0; y < 50; ++y) {
    for (int64_t x = 0; x < 50; ++x) {
      const bool inside = x >= 20 && x < 27 && y >= 34 && y < 40;
      EXPECT_EQ(pixelAt(*clipped, x, y), inside ? pixelAt(*whole, x, y) : 0U) << x << "," << y;
    }
  }
}

TEST(DrawInRect, TurnedPicturesAreReducedBeforeTheyAreSampled) {
  const auto source = stripes(400, 400);
  const auto bitmap = bitmapOf(40, 40);
  ZTFocusScope focus(bitmap);
  CGContext* port = NSGraphicsContext::currentContext()->graphicsPort();
  port->concatenate(CGAffineTransformMakeRotation(M_PI / 7));
  drawInRect(*source, NSMakeRect(0, -20, 60, 60));
  for (int64_t y = 10; y < 30; ++y) {
    for (int64_t x = 10; x < 30; ++x) {
      ASSERT_NEAR(pixelAt(*bitmap, x, y) & 255, 127, 4) << x << "," << y;
      ASSERT_EQ(pixelAt(*bitmap, x, y) >> 24, 255U);
    }
  }
}

TEST(DrawInRect, CopyErasesWhereAScaledSourceWasNeverPainted) {
  const auto source = NSBitmapImageRep::create(100, 100);
  std::memset(source->writableRows(0, 10), 255, 10 * source->bytesPerRow());
  const auto bitmap = bitmapOf(20, 20);
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  NSRectFill(NSMakeRect(0, 0, 20, 20));
  drawInRect(*source, NSMakeRect(0, 0, 19, 20), NSZeroRect, NSCompositingOperation::copy, 1);
  EXPECT_EQ(pixelAt(*bitmap, 5, 0), 0xffffffffU);
  EXPECT_EQ(pixelAt(*bitmap, 5, 10), 0U);
  EXPECT_EQ(pixelAt(*bitmap, 19, 10), kRedPixel);
}

TEST(DrawInRect, DrawingABitmapOntoItselfReadsItAsItWas) {
  const auto bitmap = numbered(4, 1);
  ZTFocusScope focus(bitmap);
  drawInRect(*bitmap, NSMakeRect(1, 0, 4, 1));
  for (int64_t x = 0; x < 4; ++x) {
    EXPECT_EQ(pixelAt(*bitmap, x, 0), 0xff000000U + static_cast<uint32_t>(x == 0 ? 0 : x - 1));
  }
}

TEST(DrawInRect, HostileRectanglesPaintNothing) {
  const auto source = numbered(2, 2);
  const auto bitmap = bitmapOf(2, 2);
  ZTFocusScope focus(bitmap);
  setFill(kRed);
  for (const NSRect& rect :
       {NSMakeRect(NAN, 0, 2, 2), NSMakeRect(0, 0, NAN, 2), NSMakeRect(0, 0, -1, 2),
        NSMakeRect(INFINITY, 0, 2, 2), NSMakeRect(0, 1e300, 1e300, 1), NSMakeRect(0, 0, 0, 2)}) {
    drawInRect(*source, rect);
    drawInRect(*source, NSMakeRect(0, 0, 2, 2), rect, NSCompositingOperation::sourceOver, 1);
  }
  CGContext* port = NSGraphicsContext::currentContext()->graphicsPort();
  port->concatenate({0, 0, 0, 0, 0, 0});
  drawInRect(*source, NSMakeRect(0, 0, 2, 2));
  NSRectFill(NSMakeRect(0, 0, 2, 2));
  EXPECT_TRUE(bitmap->usedRows().empty());
}

}  // namespace
