#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

class NSBezierPath;
class NSBitmapImageRep;
class NSColor;

/// A region of pixels: a rectangle of one byte per pixel (0: out, anything else: in), placed in a
/// bitmap. Bytes are stored from the top row down; positions count from the bitmap's lower left
/// pixel, y upwards. There is at least one pixel.
class ImageMask : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  /// Null when a side is not positive or the data holds fewer bytes than pixels; further bytes are
  /// dropped.
  static std::shared_ptr<ImageMask> initWithData(std::vector<uint8_t> data, int64_t xStart,
                                                 int64_t yStart, int64_t width, int64_t height);

  int64_t width() const { return w_; }
  int64_t height() const { return h_; }
  std::span<const uint8_t> maskData() const { return mask_; }
  /// Where the mask's pixels lie in the bitmap.
  NSRect maskRect() const;
  NSPoint maskStartPoint() const { return maskRect().origin; }
  /// Rounds down, after narrowing to single precision.
  void setMaskStartPoint(NSPoint start);

  /// The region as a path in the bitmap's coordinates; `isPathOfLines` (may be null) tells its
  /// kind. A mask with every pixel in is a rectangle to fill. Any other, and the mask of a single
  /// pixel, is a path of lines from the first pixel to the last of each run of a row, bottom row
  /// first, to be stroked one unit wide. Null when that takes more than 5000 elements.
  std::shared_ptr<NSBezierPath> bezierPathForFill(bool* isPathOfLines) const;

  /// Gives the bitmap's pixels under the mask the colour's straight components, alpha included, as
  /// bytes: nothing is blended. A null colour writes zeros. What lies outside the bitmap is left
  /// out; a null bitmap is left alone.
  void fillImage(NSBitmapImageRep* image, const NSColor* withColor) const;
  /// The same with the mask's lower left pixel at another place (rounded down).
  void fillImage(NSBitmapImageRep* image, const NSColor* withColor, NSPoint atStartPoint) const;

  /// The same canvas pixels of the current context, with the mask where it starts; nothing without
  /// a context.
  void fillCanvas(const NSColor* withColor) const;

  /// A new bitmap of the mask's size, filled under the mask. Null when that is too large.
  std::shared_ptr<NSBitmapImageRep> renderImageWithColor(const NSColor* color) const;
  /// A new bitmap of the part of `image` inside the mask's rectangle, transparent outside the mask.
  /// Null when that part is empty or the image is null.
  std::shared_ptr<NSBitmapImageRep> scissorImage(const NSBitmapImageRep* image) const;

  /// Whether the pixel that holds the point is in.
  bool fillAtPoint(NSPoint point) const;
  /// Mirrors the mask inside its rectangle.
  void flip(bool horizontal);
  /// A mask of the size scaled by factors above 0 and rounded (at least one pixel), at the same
  /// start point. Null for other factors and for masks larger than a canvas.
  std::shared_ptr<ImageMask> imageMaskScaledByX(CGFloat x, CGFloat y) const;
  /// A mask turned counter-clockwise about the centre of its rectangle, in the smallest rectangle
  /// of whole pixels that holds the turned one. Null for masks larger than a canvas.
  std::shared_ptr<ImageMask> imageMaskRotatedByDegree(CGFloat degree) const;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  /// The mask's part inside a bitmap, as columns and rows (from the top) of both.
  struct Overlap {
    int64_t maskX = 0, maskRow = 0;
    int64_t imageX = 0, imageRow = 0;
    int64_t width = 0, height = 0;
    bool empty() const { return width <= 0 || height <= 0; }
  };
  /// With a bitmap, or a canvas, of a size in pixels.
  Overlap overlapWith(const NSSize& image, int64_t xStart, int64_t yStart) const;
  void fillPixels(NSBitmapImageRep& image, uint32_t pixel, int64_t xStart, int64_t yStart) const;
  bool setContents(std::vector<uint8_t> data, int64_t width, int64_t height);
  bool isFull() const;
  const uint8_t* row(int64_t y) const { return mask_.data() + y * w_; }
  uint8_t* row(int64_t y) { return mask_.data() + y * w_; }

  int64_t w_ = 0;
  int64_t h_ = 0;
  int64_t xStart_ = 0;
  int64_t yStart_ = 0;
  std::vector<uint8_t> mask_;
};

/// The four bytes that filling writes for a colour (red in the lowest): its straight components
/// times 255, rounded; 0 for null.
uint32_t fillPixel(const NSColor* color);
