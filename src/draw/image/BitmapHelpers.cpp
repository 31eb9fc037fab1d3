#include "draw/image/BitmapHelpers.h"

#include <algorithm>

#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/pixels/PixelMoves.h"

namespace {

/// Draws the bitmap into a new one of another size, replacing its pixels.
NSBitmapImageRepPointer copied(const NSBitmapImageRep& image, const NSSize& size,
                               const NSRect& destination) {
  NSBitmapImageRepPointer result;
  if (!InitImageRep(size, &result)) return nullptr;
  ZTFocusScope focus(result);
  const auto& context = NSGraphicsContext::currentContext();
  context->setCompositingOperation(NSCompositingOperation::copy);
  context->setImageInterpolation(NSImageInterpolation::high);
  drawInRect(image, destination);
  return result;
}

NSBitmapImageRepPointer moved(const NSBitmapImageRep& image, const PixelMove& move) {
  auto result = std::make_shared<NSBitmapImageRep>(movedPixels(image.pixels(), move));
  result->setHasAlpha(true);
  return result;
}

bool isVisible(const uint8_t* pixel) {
  return pixel[3] != 0;
}

}  // namespace

void ClearImageInRect(const NSBitmapImageRepPointer& image, const NSRect& rect) {
  if (image == nullptr) return;
  ZTFocusScope focus(image);
  NSRectFillUsingOperation(rect, NSCompositingOperation::clear);
}

void ClearImage(const NSBitmapImageRepPointer& image) {
  if (image != nullptr) image->clear();
}

NSBitmapImageRepPointer ResizeImage(const NSBitmapImageRepPointer& image, CGFloat width,
                                    CGFloat height) {
  if (image == nullptr) return nullptr;
  const NSSize size{width, height};
  return copied(*image, size, {NSZeroPoint, size});
}

NSBitmapImageRepPointer CropImage(const NSBitmapImageRepPointer& image, const NSRect& rect) {
  if (image == nullptr || !(NSWidth(rect) >= 1) || !(NSHeight(rect) >= 1)) return nullptr;
  return copied(*image, rect.size, {{-NSMinX(rect), -NSMinY(rect)}, image->size()});
}

NSBitmapImageRepPointer ImageFliped(const NSBitmapImageRepPointer& image, bool horizontal) {
  return image == nullptr ? nullptr : moved(*image, {false, horizontal, !horizontal});
}

NSBitmapImageRepPointer ImageRotated(const NSBitmapImageRepPointer& image, bool counterclockwise) {
  if (image == nullptr) return nullptr;
  return moved(*image, counterclockwise ? kQuarterTurnCounterclockwise : kQuarterTurnClockwise);
}

NSRect ImageRectByTrimEmpty(const NSBitmapImageRepPointer& image) {
  if (image == nullptr) return NSZeroRect;
  const int64_t width = image->pixelsWide();
  int64_t left = width;
  int64_t right = 0;
  RowRange rows{image->pixelsHigh(), 0};
  for (int64_t y = image->usedRows().first; y < image->usedRows().end; ++y) {
    const uint8_t* const row = image->row(y);
    int64_t first = 0;
    while (first < width && !isVisible(row + first * 4)) ++first;
    if (first == width) continue;
    int64_t end = width;
    while (!isVisible(row + (end - 1) * 4)) --end;
    left = std::min(left, first);
    right = std::max(right, end);
    rows = {std::min(rows.first, y), y + 1};
  }
  if (rows.empty()) return NSZeroRect;
  return NSMakeRect(
      static_cast<CGFloat>(left), static_cast<CGFloat>(image->pixelsHigh() - rows.end),
      static_cast<CGFloat>(right - left), static_cast<CGFloat>(rows.end - rows.first));
}
