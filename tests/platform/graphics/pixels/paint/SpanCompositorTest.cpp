#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/paint/RGBAColor.h"
#include "platform/graphics/pixels/paint/SpanCompositor.h"
#include "support/ReferenceBlend.h"

namespace {

using Pixels = std::vector<uint32_t>;

class Generator {
 public:
  explicit Generator(uint32_t seed) : engine_(seed) {}
  uint32_t below(uint32_t n) { return static_cast<uint32_t>(engine_() % n); }
  /// Premultiplied; fully transparent and opaque pixels are frequent.
  uint32_t pixel() {
    const std::array<uint32_t, 4> alphas{0, 255, below(256), below(256)};
    const uint32_t a = alphas[below(4)];
    return below(a + 1) | below(a + 1) << 8 | below(a + 1) << 16 | a << 24;
  }
  uint8_t cover() { return static_cast<uint8_t>(1 + below(255)); }
  Pixels pixels(size_t n) {
    Pixels result(n);
    for (uint32_t& p : result) p = pixel();
    return result;
  }

 private:
  std::mt19937 engine_;
};

class ListSource final : public RowSource {
 public:
  explicit ListSource(Pixels pixels) : pixels_(std::move(pixels)) {}
  const uint32_t* row(int32_t x, int32_t, int32_t, uint32_t*) override {
    return &pixels_[static_cast<size_t>(x)];
  }
  const Pixels& pixels() const { return pixels_; }

 private:
  Pixels pixels_;
};

PixelSurface surfaceOf(const Pixels& pixels) {
  const auto width = static_cast<int32_t>(pixels.size());
  PixelSurface surface(std::make_shared<PixelBuffer>(width, 1), 0, 0);
  std::copy(pixels.begin(), pixels.end(), surface.pixels(0, 0));
  surface.announcePainted(surface.box());
  return surface;
}

/// Paints one run of `length` pixels at x = 3 into a row of random pixels, and compares every
/// pixel with the formula; pixels outside the run must keep their value.
void checkRun(NSCompositingOperation operation, bool solid, bool covers, int32_t length,
              Generator& random) {
  const auto width = static_cast<size_t>(length) + 6;
  const Pixels before = random.pixels(width);
  PixelSurface surface = surfaceOf(before);
  ListSource list(random.pixels(width));
  std::vector<uint8_t> coverBytes(static_cast<size_t>(length));
  for (uint8_t& c : coverBytes) c = random.cover();
  const uint8_t cover = random.below(2) == 0 ? 255 : random.cover();
  const uint32_t alpha = random.below(2) == 0 ? 255 : random.below(256);
  const uint32_t pixel = random.pixel();
  const SpanPaint paint = solid ? SpanPaint::solid(pixel) : SpanPaint::rows(list, alpha);
  const CoverageRun run{3, length, covers ? coverBytes.data() : nullptr, cover};
  SpanCompositor(surface, operation, paint).row(0, {&run, 1});

  for (size_t i = 0; i < width; ++i) {
    const uint32_t result = surface.pixels(static_cast<int32_t>(i), 0)[0];
    if (i < 3 || i >= width - 3) {
      ASSERT_EQ(result, before[i]);
      continue;
    }
    UnitPixel source = unitPixel(solid ? pixel : list.pixels()[i]);
    if (!solid) {
      for (double& c : source) c = std::round(c * alpha) / 255;
    }
    const double m = (covers ? coverBytes[i - 3] : cover) / 255.0;
    const UnitPixel expected = referenceBlend(operation, source, unitPixel(before[i]), m);
    // Half a level each for rounding the covered source, its alpha as a factor, and the product.
    ASSERT_LE(distance(result, expected), 1.5)
        << "operation " << static_cast<int>(operation) << " solid " << solid << " covers " << covers
        << std::hex << " source " << (solid ? pixel : list.pixels()[i]) << " destination "
        << before[i] << " result " << result << std::dec << " m " << m << " alpha " << alpha;
  }
}

TEST(SpanCompositor, EveryOperationFollowsItsFormulaBoundedByTheRun) {
  Generator random(1);
  for (int operation = 0; operation <= 28; ++operation) {
    for (const int32_t length : {1, 2, 7, 8, 9, 31, 64, 257, 1500}) {
      for (int form = 0; form < 4; ++form) {
        checkRun(static_cast<NSCompositingOperation>(operation), (form & 1) != 0, (form & 2) != 0,
                 length, random);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(SpanCompositor, FullCoverageIsExactForTheWholeFactors) {
  // Operations whose factors are 0 or 1 must not lose a bit.
  Generator random(2);
  for (int round = 0; round < 200; ++round) {
    const Pixels before = random.pixels(40);
    ListSource list(random.pixels(40));
    PixelSurface copied = surfaceOf(before);
    PixelSurface cleared = surfaceOf(before);
    const CoverageRun run{0, 40, nullptr, 255};
    SpanCompositor(copied, NSCompositingOperation::copy, SpanPaint::rows(list)).row(0, {&run, 1});
    SpanCompositor(cleared, NSCompositingOperation::clear, SpanPaint::rows(list)).row(0, {&run, 1});
    for (int32_t i = 0; i < 40; ++i) {
      ASSERT_EQ(copied.pixels(i, 0)[0], list.pixels()[static_cast<size_t>(i)]);
      ASSERT_EQ(cleared.pixels(i, 0)[0], 0U);
    }
  }
}

TEST(SpanCompositor, TranslucentRedOverOpaqueBlue) {
  // Worked by hand: half red at coverage 128 / 255 over opaque blue.
  PixelSurface surface = surfaceOf({0xffff0000, 0xffff0000});
  const uint8_t covers[] = {128, 255};
  const CoverageRun run{0, 2, covers, 0};
  SpanCompositor(surface, NSCompositingOperation::sourceOver, SpanPaint::solid(0x80000080))
      .row(0, {&run, 1});
  EXPECT_EQ(surface.pixels(0, 0)[0], 0xffbf0040U);
  EXPECT_EQ(surface.pixels(1, 0)[0], 0xff7f0080U);
}

TEST(SpanCompositor, SourcesWithColourAboveAlphaSaturate) {
  PixelSurface surface = surfaceOf(Pixels(20, 0xffc0c0c0));
  ListSource list(Pixels(20, 0x10ffffff));
  const CoverageRun run{0, 20, nullptr, 255};
  SpanCompositor(surface, NSCompositingOperation::sourceOver, SpanPaint::rows(list))
      .row(0, {&run, 1});
  EXPECT_EQ(surface.pixels(11, 0)[0], 0xffffffffU);
}

TEST(SpanCompositor, RunsAreCutToTheSurfaceAndOnlyPaintedRowsAreAnnounced) {
  PixelSurface surface(std::make_shared<PixelBuffer>(10, 10), 100, 50);
  const std::vector<uint8_t> covers(40, 255);
  const CoverageRun runs[] = {
      {-5, 3, nullptr, 255}, {80, 25, covers.data(), 0}, {108, 90, nullptr, 255}};
  {
    SpanCompositor compositor(surface, NSCompositingOperation::copy, SpanPaint::solid(0xff0000ff));
    compositor.row(49, runs);
    compositor.row(53, runs);
    compositor.row(60, runs);
  }
  EXPECT_EQ(surface.painted(), (PixelBox{100, 53, 110, 54}));
  EXPECT_EQ(surface.buffer()->usedRows().first, 3);
  EXPECT_EQ(surface.buffer()->usedRows().end, 4);
  for (int32_t x = 100; x < 110; ++x) {
    EXPECT_EQ(surface.pixels(x, 53)[0], x < 105 || x >= 108 ? 0xff0000ffU : 0U) << x;
  }
}

TEST(PixelMath, ProductsAreRoundedExactly) {
  for (uint32_t v = 0; v < 256; ++v) {
    for (uint32_t c = 0; c < 256; ++c) {
      const uint32_t expected = (2 * v * c + 255) / 510;
      ASSERT_EQ(scaled(v * 0x01010101U, c), expected * 0x01010101U);
      ASSERT_EQ(mixed(0, v * 0x01010101U, c), expected * 0x01010101U);
      ASSERT_EQ(addedSaturating(v * 0x01010101U, c * 0x01010101U),
                std::min(v + c, 255U) * 0x01010101U);
    }
  }
}

TEST(RGBAColor, PremultipliesAndClamps) {
  EXPECT_EQ(premultipliedPixel({1, 0.5, 0, 0.5}), 0x80004080U);
  EXPECT_EQ(premultipliedPixel({2, -1, 1, 7}), 0xffff00ffU);
  EXPECT_EQ(premultipliedPixel({1, 1, 1, 1}, 0.5), 0x80808080U);
  EXPECT_EQ(premultipliedPixel({std::nan(""), 1, 1, 1}), 0xffffff00U);
}

}  // namespace
