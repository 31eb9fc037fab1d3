#include "platform/graphics/NSBitmapImageRep.h"

#include <sys/mman.h>

#include <algorithm>
#include <cassert>
#include <cstring>

#include "platform/foundation/Limits.h"

const NSClass NSBitmapImageRep::kClass{"NSBitmapImageRep", &NSObject::kClass,
                                       NSAllocate<NSBitmapImageRep>};

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::create(int64_t pixelsWide, int64_t pixelsHigh) {
  if (pixelsWide < 0 || pixelsHigh < 0) return nullptr;
  if (pixelsWide > 0 && pixelsHigh > limits::kMaxCanvasPixels / pixelsWide) return nullptr;
  uint8_t* data = nullptr;
  const size_t bytes = static_cast<size_t>(pixelsWide) * static_cast<size_t>(pixelsHigh) * 4;
  if (bytes > 0) {
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    data = static_cast<uint8_t*>(memory);
  }
  return std::shared_ptr<NSBitmapImageRep>(new NSBitmapImageRep(pixelsWide, pixelsHigh, data));
}

NSBitmapImageRep::~NSBitmapImageRep() {
  if (data_ != nullptr) munmap(data_, byteCount());
}

uint8_t* NSBitmapImageRep::writableRows(int64_t first, int64_t end) {
  assert(first >= 0 && first <= end && end <= height_);
  if (first < end) {
    used_ = used_.empty() ? RowRange{first, end}
                          : RowRange{std::min(used_.first, first), std::max(used_.end, end)};
  }
  return data_ + static_cast<size_t>(first) * bytesPerRow();
}

void NSBitmapImageRep::clear() {
  if (used_.empty()) return;
  const size_t offset = static_cast<size_t>(used_.first) * bytesPerRow();
  const size_t bytes = static_cast<size_t>(used_.end - used_.first) * bytesPerRow();
  constexpr size_t kReturnToSystem = size_t{1} << 22;
  // Dropping private anonymous pages makes them read as zero again.
  if (bytes < kReturnToSystem || madvise(data_, byteCount(), MADV_DONTNEED) != 0) {
    std::memset(data_ + offset, 0, bytes);
  }
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
