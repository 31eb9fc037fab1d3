#include "platform/graphics/pixels/PixelSurface.h"

#include <cassert>
#include <utility>

PixelSurface::PixelSurface(std::shared_ptr<NSBitmapImageRep> bitmap, int32_t x0, int32_t y0)
    : bitmap_(std::move(bitmap)) {
  if (bitmap_ == nullptr) return;
  box_ = {x0, y0, x0 + static_cast<int32_t>(bitmap_->pixelsWide()),
          y0 + static_cast<int32_t>(bitmap_->pixelsHigh())};
  void* const bytes = bitmap_->writableRows(0, 0);
  pixels_ = static_cast<uint32_t*>(bytes);
  stride_ = bitmap_->pixelsWide();
}

PixelBox PixelSurface::used() const {
  if (bitmap_ == nullptr) return {};
  const RowRange rows = bitmap_->usedRows();
  return {box_.x0, box_.y0 + static_cast<int32_t>(rows.first), box_.x1,
          box_.y0 + static_cast<int32_t>(rows.end)};
}

void PixelSurface::announcePainted(const PixelBox& box) {
  assert(box.empty() || box_.contains(box));
  if (box.empty()) return;
  painted_ = unionBox(painted_, box);
  bitmap_->writableRows(box.y0 - box_.y0, box.y1 - box_.y0);
}

void PixelSurface::clear() {
  if (bitmap_ != nullptr) bitmap_->clear();
  painted_ = {};
}
