#include "platform/graphics/pixels/PixelBuffer.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

#include "platform/foundation/Limits.h"

bool PixelBuffer::canHold(int64_t width, int64_t height) {
  if (width < 0 || height < 0) return false;
  return width == 0 || height <= limits::kMaxCanvasPixels / width;
}

PixelBuffer::PixelBuffer(int64_t width, int64_t height)
    : width_(width),
      height_(height),
      memory_(static_cast<size_t>(width) * static_cast<size_t>(height) * 4) {}

PixelBuffer::PixelBuffer(int64_t width, int64_t height, ZeroedMemory pixels)
    : width_(width), height_(height), memory_(std::move(pixels)), used_{0, height} {
  assert(memory_.size() == bytesPerRow() * static_cast<size_t>(height));
}

void PixelBuffer::swap(PixelBuffer& other) noexcept {
  std::swap(width_, other.width_);
  std::swap(height_, other.height_);
  std::swap(memory_, other.memory_);
  std::swap(used_, other.used_);
  std::swap(hasAlpha_, other.hasAlpha_);
}

uint8_t* PixelBuffer::writableRows(int64_t first, int64_t end) {
  assert(first >= 0 && first <= end && end <= height_);
  if (first < end) {
    used_ = used_.empty() ? RowRange{first, end}
                          : RowRange{std::min(used_.first, first), std::max(used_.end, end)};
  }
  return memory_.data() + static_cast<size_t>(first) * bytesPerRow();
}

void PixelBuffer::clear() {
  if (used_.empty()) return;
  memory_.clear(static_cast<size_t>(used_.first) * bytesPerRow(),
                static_cast<size_t>(used_.end) * bytesPerRow());
  used_ = {};
}

PixelBuffer PixelBuffer::copy() const {
  PixelBuffer result(width_, height_);
  if (!used_.empty()) {
    std::memcpy(result.writableRows(used_.first, used_.end), row(used_.first),
                static_cast<size_t>(used_.end - used_.first) * bytesPerRow());
  }
  result.hasAlpha_ = hasAlpha_;
  return result;
}
