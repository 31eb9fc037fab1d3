#include "platform/graphics/pixels/paint/PixelSurface.h"

#include <cassert>
#include <utility>

PixelSurface::PixelSurface(std::shared_ptr<PixelBuffer> buffer, int32_t x0, int32_t y0)
    : buffer_(std::move(buffer)) {
  if (buffer_ == nullptr) return;
  box_ = {x0, y0, x0 + static_cast<int32_t>(buffer_->width()),
          y0 + static_cast<int32_t>(buffer_->height())};
  void* const bytes = buffer_->writableRows(0, 0);
  pixels_ = static_cast<uint32_t*>(bytes);
  stride_ = buffer_->width();
}

PixelBox PixelSurface::used() const {
  if (buffer_ == nullptr) return {};
  const RowRange rows = buffer_->usedRows();
  return {box_.x0, box_.y0 + static_cast<int32_t>(rows.first), box_.x1,
          box_.y0 + static_cast<int32_t>(rows.end)};
}

void PixelSurface::announcePainted(const PixelBox& box) {
  assert(box.empty() || box_.contains(box));
  if (box.empty()) return;
  painted_ = unionBox(painted_, box);
  buffer_->writableRows(box.y0 - box_.y0, box.y1 - box_.y0);
}

void PixelSurface::clear() {
  if (buffer_ != nullptr) buffer_->clear();
  painted_ = {};
}
