#pragma once

#include <cstdint>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/outline/DeviceGrid.h"
#include "platform/graphics/pixels/outline/FlatPath.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/graphics/pixels/outline/PathStroker.h"
#include "platform/graphics/pixels/outline/StrokeStyle.h"

/// Takes lines between device points.
class LineSink {
 public:
  virtual ~LineSink() = default;
  virtual void addLine(NSPoint a, NSPoint b) = 0;
};

/// From a path and a style to what the pen draws on the device. Owns the buffers on the way.
class StrokeGeometry {
 public:
  enum class Dashes : uint8_t { apply, ignore };

  /// Flattens and dashes `path`. Parts outside `visible` (device pixels) may be left out. Without
  /// antialiasing, pens wider than a pixel follow curves more closely.
  /// False when nothing is to be drawn: a width or a coordinate that cannot be, or a transform
  /// that squeezes the plane to a line.
  bool prepare(const PathData& path, const StrokeStyle& style, const CGAffineTransform& toDevice,
               const DeviceBounds& visible, Dashes dashes, Antialias antialias);

  /// Largest width of the prepared pen on the device.
  double deviceWidth() const { return 2 * pen_.halfWidth; }

  /// Box around everything that the prepared pen draws on the device, miters included.
  DeviceBounds deviceBounds() const;

  /// The prepared stroke's outline in device space.
  void addOutline(OutlineSink& sink);

  /// The prepared stroke's centre lines in device space; a dot is a line of equal ends.
  void addLines(LineSink& sink) const;

 private:
  /// The space that the pen is round in: the device turned and stretched so that no length grows
  /// on the way to the device. For transforms that keep angles it is the device.
  struct Space {
    bool isDevice = true;
    CGAffineTransform toDevice;
    CGAffineTransform fromDevice;
    double scale = 1;    ///< length of a user space unit
    NSPoint axis{1, 0};  ///< where the user space's x axis points
  };

  static bool findSpace(const CGAffineTransform& toDevice, Space& space);
  void setPen(const StrokeStyle& style, Antialias antialias);
  void dash(const StrokeStyle& style, const DeviceBounds& visible);
  double longestMiter() const;
  NSPoint onDevice(NSPoint p) const {
    return space_.isDevice ? p : CGPointApplyAffineTransform(p, space_.toDevice);
  }

  Space space_;
  Pen pen_;
  FlatPath flat_;
  FlatPath dashes_;
  const FlatPath* lines_ = &flat_;
  PathStroker stroker_;
};

/// How far from its path a stroke can reach on the device at most, whatever the path.
double strokeReach(const StrokeStyle& style, const CGAffineTransform& toDevice);
