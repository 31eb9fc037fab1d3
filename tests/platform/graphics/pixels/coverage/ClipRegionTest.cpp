#include <gtest/gtest.h>

#include <random>

#include "platform/graphics/pixels/coverage/ClipRegion.h"
#include "platform/graphics/pixels/coverage/CoverageRaster.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"
#include "platform/graphics/pixels/coverage/Shapes.h"

namespace {

constexpr PixelBox kCanvas{0, 0, 90, 70};
constexpr CGAffineTransform kIdentity;

CoverageRaster raster(const ClipRegion& region) {
  CoverageRaster out(kCanvas);
  region.emit(out);
  return out;
}

CoverageRaster fillThrough(const ClipRegion& region, const PathData& path) {
  CoverageRaster out(kCanvas);
  PathRenderer().fillPath(path, WindingRule::nonZero, kIdentity, Antialias::on, region, out);
  return out;
}

ClipRegion clipTo(const PathData& path, Antialias antialias = Antialias::on,
                  const ClipRegion& clip = ClipRegion(kCanvas)) {
  return PathRenderer().clipToPath(path, WindingRule::nonZero, kIdentity, antialias, clip);
}

PathData star() {
  return shapes::polygon({{45, 3}, {60, 60}, {5, 20}, {85, 25}, {25, 66}});
}

/// a b / 255 to the nearest, the slow way.
uint8_t product(uint8_t a, uint8_t b) {
  return static_cast<uint8_t>(std::lround(a * b / 255.0));
}

TEST(ClipRegion, PaintingThroughARegionMultipliesCoverage) {
  const PathData circle = shapes::circle({44, 33}, 28.3);
  std::vector<uint8_t> mask(static_cast<size_t>(kCanvas.width() * kCanvas.height()));
  for (size_t i = 0; i < mask.size(); ++i) mask[i] = static_cast<uint8_t>(i * i / 97);
  const struct {
    const char* name;
    ClipRegion region;
  } cases[] = {
      {"box", ClipRegion({10, 20, 50, 41})},
      {"path", clipTo(star())},
      {"path, no antialiasing", clipTo(star(), Antialias::off)},
      {"fractional rectangle", clipTo(shapes::rectangle(10.3, 11.7, 40.2, 33.9))},
      {"mask", ClipRegion::ofMask(kCanvas, mask.data(), static_cast<size_t>(kCanvas.width()))},
      {"path within a box", clipTo(star()).intersected(PixelBox{20, 10, 63, 42})},
      {"nothing", ClipRegion()},
  };
  const CoverageRaster plain = fillThrough(ClipRegion(kCanvas), circle);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const CoverageRaster clip = raster(c.region);
    const CoverageRaster result = fillThrough(c.region, circle);
    for (size_t i = 0; i < plain.covers().size(); ++i) {
      ASSERT_EQ(result.covers()[i], product(plain.covers()[i], clip.covers()[i])) << i;
    }
  }
}

TEST(ClipRegion, IntersectionIsThePixelwiseProduct) {
  const ClipRegion a = clipTo(star());
  const ClipRegion b = clipTo(shapes::circle({40, 30}, 25.5));
  const CoverageRaster ra = raster(a), rb = raster(b), both = raster(a.intersected(b));
  const CoverageRaster nested = raster(clipTo(star(), Antialias::on, b));
  EXPECT_GT(both.area(), 0);
  for (size_t i = 0; i < ra.covers().size(); ++i) {
    ASSERT_EQ(both.covers()[i], product(ra.covers()[i], rb.covers()[i])) << i;
  }
  EXPECT_EQ(both.covers(), nested.covers());
  EXPECT_TRUE(a.intersected(PixelBox{100, 0, 120, 10}).isEmpty());
  EXPECT_TRUE(a.intersected(ClipRegion()).isEmpty());
  EXPECT_EQ(raster(a.intersected(ClipRegion({3, 4, 50, 60}))).covers(),
            raster(ClipRegion({3, 4, 50, 60}).intersected(a)).covers());
}

TEST(ClipRegion, WholePixelRectanglesStayBoxes) {
  PathRenderer renderer;
  const ClipRegion canvas(kCanvas);
  const auto clip = [&](const NSRect& r, Antialias antialias) {
    return renderer.clipToPath(pathOfRect(r), WindingRule::nonZero, kIdentity, antialias, canvas);
  };
  EXPECT_TRUE(clip(NSMakeRect(3, 4, 20, 30), Antialias::on).isBox());
  EXPECT_EQ(clip(NSMakeRect(3, 4, 20, 30), Antialias::on).box(), (PixelBox{3, 4, 23, 34}));
  EXPECT_EQ(clip(NSMakeRect(23, 34, -20, -30), Antialias::on).box(), (PixelBox{3, 4, 23, 34}));
  EXPECT_FALSE(clip(NSMakeRect(3.5, 4, 20, 30), Antialias::on).isBox());
  EXPECT_TRUE(clip(NSMakeRect(3.5, 4, 20, 30), Antialias::off).isBox());
  EXPECT_EQ(clip(NSMakeRect(3.5, 4, 20, 30), Antialias::off).box(), (PixelBox{3, 4, 24, 34}));
  EXPECT_TRUE(clip(NSMakeRect(3, 4, 0, 30), Antialias::on).isEmpty());
  EXPECT_TRUE(clip(NSMakeRect(1000, 4, 10, 30), Antialias::on).isEmpty());
  EXPECT_TRUE(clip(NSMakeRect(-1e9, -1e9, 2e9, 2e9), Antialias::on).isBox());
  EXPECT_EQ(clip(NSMakeRect(-1e9, -1e9, 2e9, 2e9), Antialias::on).box(), kCanvas);
  // A rotation by a quarter keeps rectangles.
  const CGAffineTransform quarter{0, 1, -1, 0, 50, 0};
  EXPECT_EQ(renderer
                .clipToPath(pathOfRect(NSMakeRect(3, 4, 20, 30)), WindingRule::nonZero, quarter,
                            Antialias::on, canvas)
                .box(),
            (PixelBox{16, 3, 46, 23}));
}

TEST(ClipRegion, EmptyPathsClipEverythingAway) {
  EXPECT_TRUE(clipTo(PathData()).isEmpty());
  EXPECT_TRUE(clipTo(shapes::polyline({{3, 3}, {30, 30}})).isEmpty());
}

TEST(ClipRegion, LongOpaqueRunsStayRuns) {
  const ClipRegion ellipse = clipTo(shapes::circle({44, 33}, 30));
  CoverageRaster out(kCanvas);
  PathRenderer().fillPath(shapes::rectangle(0, 0, 90, 70), WindingRule::nonZero, kIdentity,
                          Antialias::on, ellipse, out);
  // At most the two edges and the inside of the circle in each row.
  EXPECT_LE(out.runCount(), 3 * out.rowCalls());
  EXPECT_EQ(out.covers(), raster(ellipse).covers());
}

TEST(ClipRegion, RegionsWiderThanAStripAreJoined) {
  const PixelBox box{0, 0, 200000, 4};
  PathRenderer renderer;
  const PathData slanted = shapes::polygon({{10, 0}, {199990, 1}, {199990, 3}, {10, 2}});
  const ClipRegion region =
      renderer.clipToPath(slanted, WindingRule::nonZero, kIdentity, Antialias::on, ClipRegion(box));
  CoverageRaster direct(box), clipped(box);
  renderer.fillPath(slanted, WindingRule::nonZero, kIdentity, Antialias::on, ClipRegion(box),
                    direct);
  region.emit(clipped);
  EXPECT_EQ(direct.covers(), clipped.covers());
  EXPECT_EQ(clipped.rowCalls(), 3u);
}

}  // namespace
