#pragma once

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CanvasGrid.h"
#include "platform/graphics/pixels/coverage/ClipRegion.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"
#include "platform/graphics/pixels/outline/DeviceGrid.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// A shape in device space that can tell its coverage as often as it is asked.
class CoverageShape {
 public:
  virtual ~CoverageShape() = default;
  /// A box inside `box` that holds all of the shape's pixels there; empty when there are none.
  virtual PixelBox bounds(const PixelBox& box) const = 0;
  /// The coverage inside the region, multiplied by it.
  virtual void cover(const ClipRegion& clip, CoverageSink& sink) const = 0;
  /// True when every pixel of `box` is known to be covered in full.
  virtual bool fills(const PixelBox& box) const = 0;
};

/// Every pixel of a box.
class BoxShape final : public CoverageShape {
 public:
  explicit BoxShape(const PixelBox& box) : box_(box) {}
  PixelBox bounds(const PixelBox& box) const override { return intersection(box_, box); }
  void cover(const ClipRegion& clip, CoverageSink& sink) const override {
    clip.intersected(box_).emit(sink);
  }
  bool fills(const PixelBox& box) const override { return box_.contains(box); }

 private:
  PixelBox box_;
};

/// How user space becomes device pixels.
struct CoverStyle {
  CGAffineTransform toDevice;
  Antialias antialias = Antialias::on;
  /// When set, `toDevice` leads to canvas pixels, whose coverage is scaled. Must outlive the shape.
  const CanvasGrid* grid = nullptr;
};

/// The inside of a path.
class FillShape final : public CoverageShape {
 public:
  /// The path and the renderer must outlive the shape.
  FillShape(PathRenderer& renderer, const PathData& path, WindingRule winding,
            const CoverStyle& style)
      : renderer_(renderer), path_(path), winding_(winding), style_(style) {}
  PixelBox bounds(const PixelBox& box) const override;
  void cover(const ClipRegion& clip, CoverageSink& sink) const override;
  bool fills(const PixelBox& box) const override;

 private:
  PathRenderer& renderer_;
  const PathData& path_;
  WindingRule winding_;
  CoverStyle style_;
};

/// The line along a path.
class StrokeShape final : public CoverageShape {
 public:
  /// The path, the style and the renderer must outlive the shape.
  StrokeShape(PathRenderer& renderer, const PathData& path, const StrokeStyle& style,
              const CoverStyle& cover)
      : renderer_(renderer), path_(path), style_(style), cover_(cover) {}
  PixelBox bounds(const PixelBox& box) const override;
  void cover(const ClipRegion& clip, CoverageSink& sink) const override;
  bool fills(const PixelBox&) const override { return false; }

 private:
  PathRenderer& renderer_;
  const PathData& path_;
  const StrokeStyle& style_;
  CoverStyle cover_;
};
