#include "platform/graphics/pixels/PixelMoves.h"

#include <algorithm>
#include <cstring>

namespace {

/// Side of the squares in which pixels are transposed: their rows on both sides stay in the
/// first-level cache.
constexpr int64_t kBlock = 32;

const uint32_t* pixelRow(const PixelBuffer& pixels, int64_t y) {
  const void* const bytes = pixels.row(y);
  return static_cast<const uint32_t*>(bytes);
}

uint32_t* writablePixels(PixelBuffer& pixels, int64_t first, int64_t end) {
  void* const bytes = pixels.writableRows(first, end);
  return static_cast<uint32_t*>(bytes);
}

void moveRows(const PixelBuffer& source, const PixelMove& move, PixelBuffer& result) {
  const int64_t width = source.width();
  const RowRange used = source.usedRows();
  for (int64_t y = used.first; y < used.end; ++y) {
    const int64_t to = move.mirroredY ? source.height() - 1 - y : y;
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
void moveColumns(const PixelBuffer& source, const PixelMove& move, PixelBuffer& result) {
  const RowRange used = source.usedRows();
  if (used.empty() || source.width() == 0) return;
  const int64_t width = result.width();
  uint32_t* const out = writablePixels(result, 0, result.height());
  for (int64_t top = used.first; top < used.end; top += kBlock) {
    const int64_t bottom = std::min(top + kBlock, used.end);
    for (int64_t left = 0; left < source.width(); left += kBlock) {
      const int64_t right = std::min(left + kBlock, source.width());
      for (int64_t y = top; y < bottom; ++y) {
        const uint32_t* const from = pixelRow(source, y);
        const int64_t column = move.mirroredX ? width - 1 - y : y;
        for (int64_t x = left; x < right; ++x) {
          const int64_t row = move.mirroredY ? result.height() - 1 - x : x;
          out[row * width + column] = from[x];
        }
      }
    }
  }
}

}  // namespace

PixelBuffer movedPixels(const PixelBuffer& source, const PixelMove& move) {
  PixelBuffer result = move.transposed ? PixelBuffer(source.height(), source.width())
                                       : PixelBuffer(source.width(), source.height());
  if (move.transposed) {
    moveColumns(source, move, result);
  } else {
    moveRows(source, move, result);
  }
  result.setHasAlpha(source.hasAlpha());
  return result;
}
