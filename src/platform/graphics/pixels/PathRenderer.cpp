#include "platform/graphics/pixels/PathRenderer.h"

#include <cmath>
#include <optional>

#include "platform/graphics/pixels/PathFlattener.h"
#include "platform/graphics/pixels/RectCoverage.h"

namespace {

/// Chords of fills leave the curve by this much at most: an error of 2 levels of 255 at the edge.
constexpr double kFillTolerance = 0.025;

/// Box around the transformed control points; empty when one of them is not finite.
DeviceBounds controlBounds(const PathData& path, const CGAffineTransform& toDevice) {
  DeviceBounds bounds;
  for (const NSPoint& point : path.points) {
    const NSPoint p = CGPointApplyAffineTransform(point, toDevice);
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return {};
    bounds.add(p);
  }
  return bounds;
}

PathData pathOfRect(const NSRect& r) {
  PathData path;
  path.move({NSMinX(r), NSMinY(r)});
  path.line({NSMaxX(r), NSMinY(r)});
  path.line({NSMaxX(r), NSMaxY(r)});
  path.line({NSMinX(r), NSMaxY(r)});
  path.close();
  return path;
}

bool isWhole(double v) {
  return (grid::snap(v) & (grid::kOne - 1)) == 0;
}

/// The box that clipping to `r` leaves of `box`, when the edges do not cut pixels.
std::optional<PixelBox> wholePixels(const DeviceBounds& r, Antialias antialias,
                                    const PixelBox& box) {
  const bool whole = isWhole(r.x0) && isWhole(r.y0) && isWhole(r.x1) && isWhole(r.y1);
  if (antialias == Antialias::on && !whole) return {};
  const auto snapped = [](double v) {
    return static_cast<double>(grid::snap(v)) / static_cast<double>(grid::kOne);
  };
  DeviceBounds onGrid{snapped(r.x0), snapped(r.y0), snapped(r.x1), snapped(r.y1)};
  if (onGrid.x0 == onGrid.x1 || onGrid.y0 == onGrid.y1) return PixelBox{};
  return pixelsTouched(onGrid, box);
}

}  // namespace

PixelBox fillBox(const PathData& path, const CGAffineTransform& toDevice, const PixelBox& box) {
  return pixelsTouched(controlBounds(path, toDevice), box);
}

void PathRenderer::fillPath(const PathData& path, WindingRule winding,
                            const CGAffineTransform& toDevice, Antialias antialias,
                            const ClipRegion& clip, CoverageSink& sink) {
  if (clip.isEmpty()) return;
  if (const auto rectangle = deviceRectangle(path, toDevice)) {
    fillRectangle(*rectangle, antialias, clip, sink);
    return;
  }
  const PixelBox box = fillBox(path, toDevice, clip.box());
  if (box.empty()) return;
  if (!flattenPath(path, toDevice, {kFillTolerance, &box}, flat_)) return;
  fillFlat({winding, antialias}, box, clip, sink);
}

void PathRenderer::fillRect(const NSRect& rect, const CGAffineTransform& toDevice,
                            Antialias antialias, const ClipRegion& clip, CoverageSink& sink) {
  fillPath(pathOfRect(rect), WindingRule::nonZero, toDevice, antialias, clip, sink);
}

void PathRenderer::fillRectangle(const DeviceBounds& rectangle, Antialias antialias,
                                 const ClipRegion& clip, CoverageSink& sink) {
  if (clip.isBox()) {
    emitRectangle(rectangle, antialias, clip.box(), sink);
  } else {
    ClipSink clipped(clip, sink);
    emitRectangle(rectangle, antialias, clip.box(), clipped);
  }
}

void PathRenderer::fillFlat(const CoverRule& rule, const PixelBox& box, const ClipRegion& clip,
                            CoverageSink& sink) {
  converter_.begin(box, rule);
  for (const FlatPath::Subpath& subpath : flat_.subpaths) {
    converter_.addPoints(std::span(flat_.points).subspan(subpath.first, subpath.count));
    converter_.closeContour();
  }
  if (clip.isBox()) {
    converter_.finish(sink);
  } else {
    ClipSink clipped(clip, sink);
    converter_.finish(clipped);
  }
}

ClipRegion PathRenderer::clipToPath(const PathData& path, WindingRule winding,
                                    const CGAffineTransform& toDevice, Antialias antialias,
                                    const ClipRegion& clip) {
  if (const auto rectangle = deviceRectangle(path, toDevice)) {
    if (const auto box = wholePixels(*rectangle, antialias, clip.box())) {
      return clip.intersected(*box);
    }
  }
  CoverageRowsBuilder builder;
  fillPath(path, winding, toDevice, antialias, clip, builder);
  return ClipRegion(builder.finish());
}

ClipRegion PathRenderer::clipToRect(const NSRect& rect, const CGAffineTransform& toDevice,
                                    Antialias antialias, const ClipRegion& clip) {
  return clipToPath(pathOfRect(rect), WindingRule::nonZero, toDevice, antialias, clip);
}
