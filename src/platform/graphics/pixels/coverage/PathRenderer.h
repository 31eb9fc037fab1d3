#pragma once

#include <optional>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/coverage/ClipRegion.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"
#include "platform/graphics/pixels/coverage/ScanConverter.h"
#include "platform/graphics/pixels/coverage/ThinLines.h"
#include "platform/graphics/pixels/outline/DeviceGrid.h"
#include "platform/graphics/pixels/outline/FlatPath.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/graphics/pixels/outline/StrokeGeometry.h"
#include "platform/graphics/pixels/outline/StrokeStyle.h"

/// From paths in user space to coverage of device pixels (row 0 at the top): what a drawing
/// context calls to fill, stroke and clip.
///
/// `toDevice` maps user space to device pixels, y down. Coverage goes to `sink` row by row,
/// already multiplied by `clip`; pixels without coverage are not mentioned. A path with a
/// coordinate that is not finite after the transform, with missing points, or beyond the bounds of
/// Limits.h, paints nothing.
///
/// Owns the buffers that drawing needs, so keep one per context; one renderer serves one thread.
class PathRenderer {
 public:
  /// Where the canvas ends on the device, when that is inside of a pixel: rectangles and fills that
  /// end there end with that pixel.
  void setCanvasEnd(NSPoint end) { canvasEnd_ = end; }

  /// Fills the area inside the path; open subpaths are closed.
  void fillPath(const PathData& path, WindingRule winding, const CGAffineTransform& toDevice,
                Antialias antialias, const ClipRegion& clip, CoverageSink& sink);

  /// Strokes the path. The pen is round in user space: the transform shapes it. With
  /// antialiasing off, lines of up to one device pixel are drawn one pixel thin.
  void strokePath(const PathData& path, const StrokeStyle& style, const CGAffineTransform& toDevice,
                  Antialias antialias, const ClipRegion& clip, CoverageSink& sink);

  /// The area that strokePath covers as a path in user space, to be filled by the non-zero rule:
  /// straight lines, exact enough for drawing it under `toDevice`. Dashes are not applied.
  PathData strokeOutline(const PathData& path, const StrokeStyle& style,
                         const CGAffineTransform& toDevice);

  /// The part of `clip` inside the path. An empty path leaves nothing. Of a rectangle a box stays a
  /// box when the edges lie on pixel edges or antialiasing is off.
  ClipRegion clipToPath(const PathData& path, WindingRule winding,
                        const CGAffineTransform& toDevice, Antialias antialias,
                        const ClipRegion& clip);

 private:
  void fillRectangle(const DeviceBounds& rectangle, Antialias antialias, const ClipRegion& clip,
                     CoverageSink& sink);
  void fillFlat(const CoverRule& rule, const PixelBox& box, const ClipRegion& clip,
                CoverageSink& sink);

  /// `rectangle` to the end of the pixels that the canvas ends in.
  DeviceBounds extended(DeviceBounds rectangle) const;

  std::optional<NSPoint> canvasEnd_;
  FlatPath flat_;
  StrokeGeometry stroke_;
  ThinLines thinLines_;
  ScanConverter converter_;
};

/// A rectangle as a path, counter-clockwise from its origin.
PathData pathOfRect(const NSRect& rect);

/// The device pixels that filling `path` may touch inside `box`: the box around its control
/// points. Empty also for paths that paint nothing.
PixelBox fillBox(const PathData& path, const CGAffineTransform& toDevice, const PixelBox& box);

/// The same for stroking it: that box grown by the reach of the pen, caps and miters.
PixelBox strokeBox(const PathData& path, const StrokeStyle& style,
                   const CGAffineTransform& toDevice, const PixelBox& box);
