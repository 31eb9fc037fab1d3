#include "platform/graphics/NSBitmapImageRep.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

#include "platform/foundation/Limits.h"

namespace {

/// What bitmaps share with pages and the like; archives list it among a bitmap's classes.
constexpr NSClass kImageRepClass{"NSImageRep", &NSObject::kClass, nullptr};

}  // namespace

const NSClass NSBitmapImageRep::kClass{"NSBitmapImageRep", &kImageRepClass,
                                       NSAllocate<NSBitmapImageRep>};

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::create(int64_t pixelsWide, int64_t pixelsHigh) {
  if (pixelsWide < 0 || pixelsHigh < 0) return nullptr;
  if (pixelsWide > 0 && pixelsHigh > limits::kMaxCanvasPixels / pixelsWide) return nullptr;
  const size_t bytes = static_cast<size_t>(pixelsWide) * static_cast<size_t>(pixelsHigh) * 4;
  ZeroedMemory memory(bytes);
  return std::shared_ptr<NSBitmapImageRep>(
      new NSBitmapImageRep(pixelsWide, pixelsHigh, std::move(memory)));
}

uint8_t* NSBitmapImageRep::writableRows(int64_t first, int64_t end) {
  assert(first >= 0 && first <= end && end <= height_);
  if (first < end) {
    used_ = used_.empty() ? RowRange{first, end}
                          : RowRange{std::min(used_.first, first), std::max(used_.end, end)};
  }
  return memory_.data() + static_cast<size_t>(first) * bytesPerRow();
}

void NSBitmapImageRep::clear() {
  if (used_.empty()) return;
  memory_.clear(static_cast<size_t>(used_.first) * bytesPerRow(),
                static_cast<size_t>(used_.end) * bytesPerRow());
  used_ = {};
}

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::copy() const {
  auto result = create(width_, height_);
  if (result == nullptr) return nullptr;
  if (!used_.empty()) {
    std::memcpy(result->writableRows(used_.first, used_.end), row(used_.first),
                static_cast<size_t>(used_.end - used_.first) * bytesPerRow());
  }
  result->hasAlpha_ = hasAlpha_;
  return result;
}
