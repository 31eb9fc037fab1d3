#include "platform/graphics/PixelMoves.h"

#include <algorithm>
#include <cstring>

#include "platform/graphics/NSBitmapImageRep.h"

namespace {

/// Side of the squares in which pixels are transposed: their rows on both sides stay in the
/// first-level cache.
constexpr int64_t kBlock = 32;

const uint32_t* pixelRow(const NSBitmapImageRep& bitmap, int64_t y) {
  const void* const bytes = bitmap.row(y);
  return static_cast<const uint32_t*>(bytes);
}

uint32_t* writablePixels(NSBitmapImageRep& bitmap, int64_t first, int64_t end) {
  void* const bytes = bitmap.writableRows(first, end);
  return static_cast<uint32_t*>(bytes);
}

void moveRows(const NSBitmapImageRep& source, const PixelMove& move, NSBitmapImageRep& result) {
  const int64_t width = source.pixelsWide();
  const RowRange used = source.usedRows();
  for (int64_t y = used.first; y < used.end; ++y) {
    const int64_t to = move.mirroredY ? source.pixelsHigh() - 1 - y : y;
    const uint32_t* const from = pixelRow(source, y);
    uint32_t* const out = writablePixels(result, to, to + 1);
    if (move.mirroredX) {
      std::reverse_copy(from, from + width, out);
    } else {
      std::copy_n(from, width, out);
    }
  }
}

/// Column x of the source becomes a row of the result, one block of source rows at a time.
void moveColumns(const NSBitmapImageRep& source, const PixelMove& move, NSBitmapImageRep& result) {
  const RowRange used = source.usedRows();
  if (used.empty() || source.pixelsWide() == 0) return;
  const int64_t width = result.pixelsWide();
  uint32_t* const out = writablePixels(result, 0, result.pixelsHigh());
  for (int64_t top = used.first; top < used.end; top += kBlock) {
    const int64_t bottom = std::min(top + kBlock, used.end);
    for (int64_t left = 0; left < source.pixelsWide(); left += kBlock) {
      const int64_t right = std::min(left + kBlock, source.pixelsWide());
      for (int64_t y = top; y < bottom; ++y) {
        const uint32_t* const from = pixelRow(source, y);
        const int64_t column = move.mirroredX ? width - 1 - y : y;
        for (int64_t x = left; x < right; ++x) {
          const int64_t row = move.mirroredY ? result.pixelsHigh() - 1 - x : x;
          out[row * width + column] = from[x];
        }
      }
    }
  }
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> movedPixels(const NSBitmapImageRep& source,
                                              const PixelMove& move) {
  const int64_t width = source.pixelsWide();
  const int64_t height = source.pixelsHigh();
  auto result = move.transposed ? NSBitmapImageRep::create(height, width)
                                : NSBitmapImageRep::create(width, height);
  if (move.transposed) {
    moveColumns(source, move, *result);
  } else {
    moveRows(source, move, *result);
  }
  result->setHasAlpha(source.hasAlpha());
  return result;
}
