#pragma once

#include <cstdint>
#include <optional>

#include "platform/foundation/Geometry.h"

/// How a picture gets into a box of another shape.
enum class PictureFit : uint8_t {
  contain,  ///< no larger than the box
  cover,    ///< no smaller; what the box has no room for is cut off at both ends
  stretch   ///< as the box, whatever becomes of its shape
};

/// Whole pixels.
struct PictureBox {
  int64_t width = 0;
  int64_t height = 0;
};

/// How large somebody wants a picture, and what of it. At most one of scale, density and box is
/// set; without them a canvas unit is a pixel.
struct PictureWish {
  double scale = 0;        ///< pixels a canvas unit
  double dotsPerInch = 0;  ///< the scale, for a canvas of a known density
  std::optional<PictureBox> box;
  PictureFit fit = PictureFit::contain;
  bool enlarges = false;       ///< to more than a pixel a canvas unit, for a box
  std::optional<NSRect> part;  ///< canvas units, from the lower left corner; else all
};

/// What is to be composed.
struct PictureLayout {
  NSRect part;  ///< canvas units; whole pixels at the scale, the last of the canvas maybe cut
  double scale = 1;
  PictureBox pixels;  ///< of the part at the scale; empty when it lies outside of the canvas
  std::optional<PictureBox> stretched;  ///< what the pixels are then drawn into

  bool isEmpty() const { return pixels.width < 1 || pixels.height < 1; }
  PictureBox result() const { return stretched.value_or(pixels); }
};

/// Pixels an inch of a canvas; 0 when it has no density that is one.
double densityOr0(double resolution);

/// The canvas is at least a unit wide and high. `resolution` is its density, units an inch, 72 when
/// it is none.
PictureLayout layoutOf(const PictureWish& wish, NSSize canvas, double resolution);
