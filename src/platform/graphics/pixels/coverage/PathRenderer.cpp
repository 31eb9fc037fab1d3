#include "platform/graphics/pixels/coverage/PathRenderer.h"

#include <cmath>
#include <optional>

#include "platform/graphics/pixels/coverage/RectCoverage.h"
#include "platform/graphics/pixels/outline/PathFlattener.h"

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

bool isWhole(double v) {
  return (grid::snap(v) & (grid::kOne - 1)) == 0;
}

/// The box that clipping to `r` leaves of `box`, when the edges do not cut pixels.
std::optional<PixelBox> uncutPixels(const DeviceBounds& r, Antialias antialias,
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

/// The end of the pixel that the canvas ends in, for positions there.
double extendedEdge(double v, double canvasEnd) {
  constexpr double kNear = 1.0 / static_cast<double>(grid::kOne);
  return std::fabs(v - canvasEnd) < kNear ? std::ceil(canvasEnd - kNear) : v;
}

void extendAll(std::vector<NSPoint>& points, NSPoint canvasEnd) {
  for (NSPoint& p : points) {
    p = {extendedEdge(p.x, canvasEnd.x), extendedEdge(p.y, canvasEnd.y)};
  }
}

/// Calls `emit` with a sink that passes on to `sink` what lies inside `clip`.
template <class Emit>
void emitThrough(const ClipRegion& clip, CoverageSink& sink, Emit emit) {
  if (clip.isBox()) {
    emit(sink);
  } else {
    ClipSink clipped(clip, sink);
    emit(clipped);
  }
}

/// Scan converts an outline.
class ConverterSink : public OutlineSink {
 public:
  explicit ConverterSink(ScanConverter& converter) : converter_(converter) {}
  void addPoints(std::span<const NSPoint> points) override { converter_.addPoints(points); }
  void closeContour() override { converter_.closeContour(); }

 private:
  ScanConverter& converter_;
};

/// Makes a path of an outline.
class PathSink : public OutlineSink {
 public:
  PathSink(const CGAffineTransform& transform, PathData& path)
      : transform_(transform), path_(path) {}

  void addPoints(std::span<const NSPoint> points) override {
    for (const NSPoint& point : points) {
      const NSPoint p = CGPointApplyAffineTransform(point, transform_);
      inContour_ ? path_.line(p) : path_.move(p);
      inContour_ = true;
    }
  }
  void closeContour() override {
    if (inContour_) path_.close();
    inContour_ = false;
  }

 private:
  CGAffineTransform transform_;
  PathData& path_;
  bool inContour_ = false;
};

}  // namespace

PathData pathOfRect(const NSRect& r) {
  PathData path;
  path.move({NSMinX(r), NSMinY(r)});
  path.line({NSMaxX(r), NSMinY(r)});
  path.line({NSMaxX(r), NSMaxY(r)});
  path.line({NSMinX(r), NSMaxY(r)});
  path.close();
  return path;
}

PixelBox fillBox(const PathData& path, const CGAffineTransform& toDevice, const PixelBox& box) {
  return pixelsTouched(controlBounds(path, toDevice), box);
}

PixelBox strokeBox(const PathData& path, const StrokeStyle& style,
                   const CGAffineTransform& toDevice, const PixelBox& box) {
  StrokeGeometry stroke;
  if (!stroke.prepare(path, style, toDevice, DeviceBounds(box), StrokeGeometry::Dashes::ignore,
                      Antialias::on)) {
    return {};
  }
  return pixelsTouched(stroke.deviceBounds(), box);
}

void PathRenderer::fillPath(const PathData& path, WindingRule winding,
                            const CGAffineTransform& toDevice, Antialias antialias,
                            const ClipRegion& clip, CoverageSink& sink) {
  if (clip.isEmpty()) return;
  if (const auto rectangle = deviceRectangle(path, toDevice)) {
    fillRectangle(extended(*rectangle), antialias, clip, sink);
    return;
  }
  const PixelBox box = fillBox(path, toDevice, clip.box());
  if (box.empty()) return;
  const DeviceBounds visible(box);
  if (!flattenPath(path, toDevice, {kFillTolerance, &visible}, flat_)) return;
  if (canvasEnd_) extendAll(flat_.points, *canvasEnd_);
  fillFlat({winding, antialias}, box, clip, sink);
}

DeviceBounds PathRenderer::extended(DeviceBounds rectangle) const {
  if (canvasEnd_) {
    rectangle.x1 = extendedEdge(rectangle.x1, canvasEnd_->x);
    rectangle.y1 = extendedEdge(rectangle.y1, canvasEnd_->y);
  }
  return rectangle;
}

void PathRenderer::fillRectangle(const DeviceBounds& rectangle, Antialias antialias,
                                 const ClipRegion& clip, CoverageSink& sink) {
  emitThrough(clip, sink, [&](CoverageSink& target) {
    emitRectangle(rectangle, antialias, clip.box(), target);
  });
}

void PathRenderer::fillFlat(const CoverRule& rule, const PixelBox& box, const ClipRegion& clip,
                            CoverageSink& sink) {
  converter_.begin(box, rule);
  for (const FlatPath::Subpath& subpath : flat_.subpaths) {
    converter_.addPoints(std::span(flat_.points).subspan(subpath.first, subpath.count));
    converter_.closeContour();
  }
  emitThrough(clip, sink, [&](CoverageSink& target) { converter_.finish(target); });
}

void PathRenderer::strokePath(const PathData& path, const StrokeStyle& style,
                              const CGAffineTransform& toDevice, Antialias antialias,
                              const ClipRegion& clip, CoverageSink& sink) {
  DeviceBounds bounds = controlBounds(path, toDevice);
  bounds.grow(strokeReach(style, toDevice));
  const PixelBox box = pixelsTouched(bounds, clip.box());
  if (box.empty()) return;
  if (!stroke_.prepare(path, style, toDevice, DeviceBounds(box), StrokeGeometry::Dashes::apply,
                       antialias)) {
    return;
  }
  if (antialias == Antialias::off && stroke_.deviceWidth() <= 1) {
    thinLines_.begin(box);
    stroke_.addLines(thinLines_);
    emitThrough(clip, sink, [&](CoverageSink& target) { thinLines_.finish(target); });
  } else {
    converter_.begin(box, {WindingRule::nonZero, antialias});
    ConverterSink outline(converter_);
    stroke_.addOutline(outline);
    emitThrough(clip, sink, [&](CoverageSink& target) { converter_.finish(target); });
  }
}

PathData PathRenderer::strokeOutline(const PathData& path, const StrokeStyle& style,
                                     const CGAffineTransform& toDevice) {
  const DeviceBounds everywhere(-HUGE_VAL, -HUGE_VAL, HUGE_VAL, HUGE_VAL);
  PathData outline;
  if (!std::isnormal(CGAffineTransformDeterminant(toDevice)) ||
      !stroke_.prepare(path, style, toDevice, everywhere, StrokeGeometry::Dashes::ignore,
                       Antialias::on)) {
    return outline;
  }
  PathSink sink(CGAffineTransformInvert(toDevice), outline);
  stroke_.addOutline(sink);
  return outline;
}

ClipRegion PathRenderer::clipToPath(const PathData& path, WindingRule winding,
                                    const CGAffineTransform& toDevice, Antialias antialias,
                                    const ClipRegion& clip) {
  if (const auto rectangle = deviceRectangle(path, toDevice)) {
    if (const auto box = uncutPixels(extended(*rectangle), antialias, clip.box())) {
      return clip.intersected(*box);
    }
  }
  CoverageRowsBuilder builder;
  fillPath(path, winding, toDevice, antialias, clip, builder);
  return ClipRegion(builder.finish());
}
