#pragma once

#include <cmath>
#include <cstdint>

#include "platform/graphics/pixels/PixelBox.h"

/// Where the pixels of a canvas lie on a device that shows it at a scale. Both count rows from the
/// top. The canvas may end inside of a device pixel. When it fills its last pixels, what reaches to
/// its end counts as reaching to the end of that pixel: nothing shines through there.
struct CanvasGrid {
  double scale = 1;  ///< device pixels a canvas pixel
  double x = 0;      ///< device position of the canvas's upper left corner
  double y = 0;
  double width = 0;  ///< of the canvas, in its own pixels
  double height = 0;
  bool fillsLastPixels = false;

  double right() const { return x + scale * width; }
  double bottom() const { return y + scale * height; }

  /// The device position of a canvas position.
  double deviceX(double canvasX) const {
    const double at = x + scale * canvasX;
    return fillsLastPixels && canvasX >= width ? std::fmax(at, endOfPixel(right())) : at;
  }
  double deviceY(double canvasY) const {
    const double at = y + scale * canvasY;
    return fillsLastPixels && canvasY >= height ? std::fmax(at, endOfPixel(bottom())) : at;
  }

  /// The device pixels that show any of a box of canvas pixels.
  PixelBox deviceBox(const PixelBox& canvas) const {
    if (canvas.empty()) return {};
    return {down(deviceX(canvas.x0)), down(deviceY(canvas.y0)), up(deviceX(canvas.x1)),
            up(deviceY(canvas.y1))};
  }
  /// The canvas pixels that any of a box of device pixels shows.
  PixelBox canvasBox(const PixelBox& device) const {
    if (device.empty()) return {};
    return {down((device.x0 - x) / scale), down((device.y0 - y) / scale),
            up((device.x1 - x) / scale), up((device.y1 - y) / scale)};
  }

  /// Positions closer than this to a whole pixel are whole: three thirds are one.
  static constexpr double kNoise = 1e-6;

 private:
  static double endOfPixel(double at) { return std::ceil(at - kNoise); }
  static int32_t edge(double v) {
    constexpr double kFarthest = 1 << 30;
    return static_cast<int32_t>(std::fmax(-kFarthest, std::fmin(kFarthest, v)));
  }
  static int32_t down(double v) { return edge(std::floor(v + kNoise)); }
  static int32_t up(double v) { return edge(std::ceil(v - kNoise)); }
};
