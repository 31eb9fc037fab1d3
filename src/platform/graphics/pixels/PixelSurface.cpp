#include "platform/graphics/pixels/PixelSurface.h"

#include <cassert>
#include <utility>

PixelSurface::PixelSurface(std::shared_ptr<NSBitmapImageRep> bitmap, int32_t x0, int32_t y0)
    : bitmap_(std::move(bitmap)) {
  if (bitmap_ == nullptr) return;
  box_ = {x0, y0, x0 + static_cast<int32_t>(bitmap_->pixelsWide()),
          y0 + static_cast<int32_t>(bitmap_->pixelsHigh())};
}

PixelBox PixelSurface::used() const {
  if (bitmap_ == nullptr) return {};
  const RowRange rows = bitmap_->usedRows();
  return {box_.x0, box_.y0 + static_cast<int32_t>(rows.first), box_.x1,
          box_.y0 + static_cast<int32_t>(rows.end)};
}

uint32_t* PixelSurface::paint(const PixelBox& pixels) {
  assert(!pixels.empty() && box_.contains(pixels));
  painted_ = unionBox(painted_, pixels);
  void* const bytes = bitmap_->writableRows(pixels.y0 - box_.y0, pixels.y1 - box_.y0);
  return static_cast<uint32_t*>(bytes) + (pixels.x0 - box_.x0);
}

const uint32_t* PixelSurface::pixels(int32_t x, int32_t y) const {
  const void* const bytes = bitmap_->row(y - box_.y0);
  return static_cast<const uint32_t*>(bytes) + (x - box_.x0);
}

void PixelSurface::clear() {
  if (bitmap_ != nullptr) bitmap_->clear();
  painted_ = {};
}
