#include "paintdoc/PictureEdits.h"

#include <algorithm>
#include <cstring>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"

namespace {

constexpr int64_t kPixelBytes = 4;

bool isPainted(const uint8_t* row, int64_t x) {
  return row[x * kPixelBytes + 3] != 0;
}

/// Makes [left, right) take in the painted pixels of a row; answers whether there are any.
bool growToRow(const uint8_t* row, int64_t width, int64_t& left, int64_t& right) {
  int64_t first = 0;
  while (first < width && !isPainted(row, first)) ++first;
  if (first == width) return false;
  int64_t end = width;
  while (!isPainted(row, end - 1)) --end;
  left = std::min(left, first);
  right = std::max(right, end);
  return true;
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> croppedBitmap(const NSBitmapImageRep& bitmap, int64_t x,
                                                int64_t y, PictureBox size) {
  auto part = NSBitmapImageRep::create(size.width, size.height);
  if (part == nullptr || size.width == 0 || size.height == 0) return part;
  uint8_t* row = part->writableRows(0, size.height);
  for (int64_t i = 0; i < size.height; ++i, row += part->bytesPerRow()) {
    std::memcpy(row, bitmap.row(y + i) + x * kPixelBytes, part->bytesPerRow());
  }
  return part;
}

std::shared_ptr<NSBitmapImageRep> trimmedBitmap(const NSBitmapImageRep& bitmap) {
  const int64_t width = bitmap.pixelsWide();
  int64_t left = width;
  int64_t right = 0;
  int64_t top = bitmap.pixelsHigh();
  int64_t bottom = 0;
  for (int64_t y = bitmap.usedRows().first; y < bitmap.usedRows().end; ++y) {
    if (!growToRow(bitmap.row(y), width, left, right)) continue;
    top = std::min(top, y);
    bottom = y + 1;
  }
  if (right <= left) return NSBitmapImageRep::create(0, 0);
  return croppedBitmap(bitmap, left, top, {right - left, bottom - top});
}

std::shared_ptr<NSBitmapImageRep> resizedBitmap(const NSBitmapImageRep& bitmap, PictureBox size) {
  auto resized = NSBitmapImageRep::create(size.width, size.height);
  if (resized == nullptr) return nullptr;
  const ZTFocusScope focus(resized);
  NSGraphicsContext::currentContext()->setImageInterpolation(NSImageInterpolation::high);
  drawInRect(bitmap, {NSZeroPoint, resized->size()});
  return resized;
}

std::shared_ptr<NSBitmapImageRep> bitmapOver(const NSBitmapImageRep& bitmap, const NSColor& color) {
  auto flat = NSBitmapImageRep::create(bitmap.pixelsWide(), bitmap.pixelsHigh());
  if (flat == nullptr) return nullptr;
  const ZTFocusScope focus(flat);
  color.set();
  NSRectFill({NSZeroPoint, bitmap.size()});
  drawInRect(bitmap, {NSZeroPoint, bitmap.size()});
  return flat;
}
