// Masks in other forms: as a path, mirrored, scaled, turned.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "draw/raster/ImageMask.h"
#include "platform/foundation/Convert.h"
#include "platform/foundation/Limits.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

/// Longest path of lines: larger ones draw slower than the mask.
constexpr int64_t kMostElements = 5000;

bool holdsTooMuch(CGFloat width, CGFloat height) {
  return !(width * height <= static_cast<CGFloat>(limits::kMaxCanvasPixels));
}

}  // namespace

bool ImageMask::isFull() const {
  return std::memchr(mask_.data(), 0, mask_.size()) == nullptr;
}

std::shared_ptr<NSBezierPath> ImageMask::bezierPathForFill(bool* isPathOfLines) const {
  const bool isPixel = w_ == 1 && h_ == 1;
  const bool isRectangle = !isPixel && isFull();
  if (isPathOfLines != nullptr) *isPathOfLines = !isRectangle;
  if (isRectangle) return NSBezierPath::bezierPathWithRect(maskRect());

  auto path = NSBezierPath::bezierPath();
  const NSPoint start = maskStartPoint();
  const auto addLine = [&](int64_t first, int64_t last, int64_t y) {
    path->moveToPoint({start.x + static_cast<CGFloat>(first), start.y + static_cast<CGFloat>(y)});
    path->lineToPoint({start.x + static_cast<CGFloat>(last), start.y + static_cast<CGFloat>(y)});
  };
  if (isPixel) {
    addLine(0, 0, 0);
    return path;
  }
  for (int64_t y = 0; y < h_; ++y) {
    const uint8_t* bytes = row(h_ - 1 - y);
    for (int64_t x = 0; x < w_;) {
      if (bytes[x] == 0) {
        ++x;
        continue;
      }
      const int64_t first = x;
      while (x < w_ && bytes[x] != 0) ++x;
      addLine(first, x - 1, y);
      if (path->elementCount() > kMostElements) return nullptr;
    }
  }
  return path;
}

bool ImageMask::fillAtPoint(NSPoint point) const {
  const NSRect rect = maskRect();
  const CGFloat x = std::floor(point.x - NSMinX(rect)), y = std::floor(point.y - NSMinY(rect));
  if (!(x >= 0 && x < NSWidth(rect) && y >= 0 && y < NSHeight(rect))) return false;
  return row(h_ - 1 - static_cast<int64_t>(y))[static_cast<int64_t>(x)] != 0;
}

void ImageMask::flip(bool horizontal) {
  if (horizontal) {
    for (int64_t y = 0; y < h_; ++y) std::reverse(row(y), row(y) + w_);
  } else {
    for (int64_t y = 0; y < h_ / 2; ++y) std::swap_ranges(row(y), row(y) + w_, row(h_ - 1 - y));
  }
}

std::shared_ptr<ImageMask> ImageMask::imageMaskScaledByX(CGFloat x, CGFloat y) const {
  if (!(x > 0 && y > 0)) return nullptr;
  const CGFloat wide = std::max(1.0, std::round(static_cast<CGFloat>(w_) * x));
  const CGFloat high = std::max(1.0, std::round(static_cast<CGFloat>(h_) * y));
  if (holdsTooMuch(wide, high)) return nullptr;
  const auto width = static_cast<int64_t>(wide), height = static_cast<int64_t>(high);
  std::vector<uint8_t> data(static_cast<size_t>(width * height));
  uint8_t* out = data.data();
  for (int64_t j = 0; j < height; ++j) {
    // The source pixel under the centre of the new one: (j + 1/2) h / height, rounded down.
    const uint8_t* source = row((2 * j + 1) * h_ / (2 * height));
    for (int64_t i = 0; i < width; ++i) *out++ = source[(2 * i + 1) * w_ / (2 * width)];
  }
  return initWithData(std::move(data), xStart_, yStart_, width, height);
}

std::shared_ptr<ImageMask> ImageMask::imageMaskRotatedByDegree(CGFloat degree) const {
  const CGFloat turn = std::remainder(degree, 360) * std::numbers::pi / 180;
  const CGFloat c = std::cos(turn), s = std::sin(turn);
  const auto w = static_cast<CGFloat>(w_), h = static_cast<CGFloat>(h_);
  // Quarter turns are off by the rounding of pi; that must not cost a pixel.
  constexpr CGFloat kSlack = 1e-6;
  const CGFloat wide = std::ceil(std::fabs(w * c) + std::fabs(h * s) - kSlack);
  const CGFloat high = std::ceil(std::fabs(w * s) + std::fabs(h * c) - kSlack);
  if (holdsTooMuch(wide, high)) return nullptr;
  const auto width = static_cast<int64_t>(wide), height = static_cast<int64_t>(high);
  std::vector<uint8_t> data(static_cast<size_t>(width * height));
  for (int64_t j = 0; j < height; ++j) {
    const CGFloat dy = high / 2 - static_cast<CGFloat>(j) - 0.5;
    for (int64_t i = 0; i < width; ++i) {
      const CGFloat dx = static_cast<CGFloat>(i) + 0.5 - wide / 2;
      const CGFloat u = std::floor(w / 2 + dx * c + dy * s);
      const CGFloat v = std::floor(h / 2 - dx * s + dy * c);
      if (u < 0 || u >= w || v < 0 || v >= h) continue;
      data[static_cast<size_t>(j * width + i)] =
          row(h_ - 1 - static_cast<int64_t>(v))[static_cast<int64_t>(u)];
    }
  }
  const NSPoint start = maskStartPoint();
  return initWithData(std::move(data),
                      clampToInteger<int64_t>(std::floor(start.x + (w - wide) / 2)),
                      clampToInteger<int64_t>(std::floor(start.y + (h - high) / 2)), width, height);
}
