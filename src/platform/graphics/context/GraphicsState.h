#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/coverage/ClipRegion.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/graphics/pixels/outline/StrokeStyle.h"
#include "platform/graphics/pixels/paint/CompositingOperation.h"
#include "platform/graphics/pixels/paint/RGBAColor.h"

/// How scaled bitmaps are sampled. The numbers are those that callers use.
enum class NSImageInterpolation : uint8_t {
  automatic = 0,  ///< as high
  none = 1,       ///< the nearest pixel
  low = 2,        ///< bilinear
  high = 3,       ///< the resampling filter, turned pictures too
};

/// A drop shadow. The offset is in the canvas's own axes (x to the right, y up, canvas units),
/// whatever the transform; `blur` is the distance in canvas units that the shadow reaches beyond
/// the shape.
struct ShadowStyle {
  NSSize offset;
  CGFloat blur = 0;
  RGBAColor color{0, 0, 0, 0};

  /// A shadow of a colour without alpha is none.
  bool visible() const { return color.alpha > 0; }
};

/// A clip as it was asked for; what it clips is inside of all clips before it, too.
struct RecordedClip {
  std::shared_ptr<const RecordedClip> before;  ///< null for the first
  PathData path;
  WindingRule winding = WindingRule::nonZero;
  CGAffineTransform transform;  ///< the path's space to the canvas
  bool antialias = true;
};

/// What saving and restoring the state of a drawing context keeps.
struct GraphicsState {
  CGAffineTransform transform;  ///< user space to the canvas, both y upwards
  ClipRegion clip;              ///< device pixels, rows from the top; inside the surface
  CGFloat alpha = 1;
  NSCompositingOperation operation = NSCompositingOperation::sourceOver;
  ShadowStyle shadow;
  RGBAColor fillColor;
  RGBAColor strokeColor;
  bool antialias = true;
  NSImageInterpolation interpolation = NSImageInterpolation::automatic;

  StrokeStyle stroke;  ///< the pen of strokePath

  /// The clip in force, of contexts that record; null without one. There `clip` is a box around it.
  std::shared_ptr<const RecordedClip> recordedClip;
};
