#include "platform/graphics/pixels/paint/ImageSource.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/Convert.h"
#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/paint/FourTapKernels.h"

namespace {

/// Positions closer than this to a whole pixel count as whole: edges are painted to 1/256 pixel.
constexpr double kPositionNoise = 1.0 / 512;

bool nearlyWhole(double v, int32_t* whole) {
  const double rounded = std::round(v);
  *whole = std::fabs(rounded) < 1 << 30 ? static_cast<int32_t>(rounded) : 0;
  return std::fabs(rounded) < 1 << 30 && std::fabs(v - rounded) < kPositionNoise;
}

const uint32_t* imageRow(const PixelBuffer& image, int64_t y) {
  const void* const bytes = image.row(y);
  return static_cast<const uint32_t*>(bytes);
}

/// A sampling position in one direction: two neighbouring pixels and the weight of the second.
struct Tap {
  int32_t first;
  int32_t second;
  uint32_t weight;
};

Tap tapAt(double position, int32_t low, int32_t high) {
  const double inside = std::clamp<double>(position - 0.5, low, high - 1);
  const auto first = static_cast<int32_t>(inside);
  return {first, std::min(first + 1, high - 1),
          static_cast<uint32_t>(roundedHalfUp((inside - first) * 255))};
}

/// A sampling position in one direction: the pixel before it, and the steps from there.
struct Place {
  int32_t pixel;
  int32_t steps;
};

Place placeAt(double position, int32_t low, int32_t high) {
  const double inside = std::clamp<double>(position - 0.5, low, high - 1);
  const auto pixel = static_cast<int32_t>(inside);
  return {pixel, static_cast<int32_t>(roundedHalfUp((inside - pixel) * kFourTapSteps))};
}

/// The pixels around a position; those outside the part are its edge's. `room` holds sixteen.
const uint32_t* edgeWindow(const PixelBuffer& image, const ImagePart& part, int32_t x, int32_t y,
                           uint32_t* room) {
  for (int32_t i = 0; i < 16; ++i) {
    const int32_t column = std::clamp(x - 1 + i % 4, part.x0, part.x1 - 1);
    room[i] = imageRow(image, std::clamp(y - 1 + i / 4, part.y0, part.y1 - 1))[column];
  }
  return room;
}

}  // namespace

bool movesWholePixels(const CGAffineTransform& deviceToImage, int32_t* dx, int32_t* dy) {
  // Over the largest bitmap a scale this close to one is off by less than a pixel's noise.
  constexpr double kScaleNoise = 1e-8;
  const bool unscaled = std::fabs(deviceToImage.a - 1) < kScaleNoise &&
                        std::fabs(deviceToImage.d - 1) < kScaleNoise &&
                        std::fabs(deviceToImage.b) < kScaleNoise &&
                        std::fabs(deviceToImage.c) < kScaleNoise;
  return unscaled && nearlyWhole(deviceToImage.tx, dx) && nearlyWhole(deviceToImage.ty, dy);
}

const uint32_t* MovedImageSource::row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) {
  const int64_t imageX = int64_t{x} + dx_;
  const int64_t imageY = int64_t{y} + dy_;
  const bool rowExists = imageY >= 0 && imageY < image_.height();
  const int64_t first = std::max<int64_t>(imageX, 0);
  const int64_t end = std::min(imageX + n, image_.width());
  if (rowExists && first == imageX && end == imageX + n) return imageRow(image_, imageY) + imageX;
  std::fill_n(buffer, n, 0U);
  if (rowExists && first < end) {
    std::copy_n(imageRow(image_, imageY) + first, end - first, buffer + (first - imageX));
  }
  return buffer;
}

ScaledRowSource::Shown ScaledRowSource::shown(double from, double to, int32_t low,
                                              int32_t high) const {
  const double a = std::clamp<double>(from, low, high);
  const double b = std::clamp<double>(to, low, high);
  const auto first = std::min(static_cast<int32_t>(a + CanvasGrid::kNoise), high - 1);
  const auto end = static_cast<int32_t>(std::ceil(b - CanvasGrid::kNoise));
  return {first, std::max(end, first + 1), a, b};
}

const uint32_t* ScaledRowSource::row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) {
  const auto canvasX = [this](int64_t at) {
    return (static_cast<double>(at) - grid_.x) / grid_.scale;
  };
  const double step = 1 / grid_.scale;
  const double top = (y - grid_.y) * step;
  const Shown rows = shown(top, top + step, visible_.y0, visible_.y1);
  const Shown all = shown(canvasX(x), canvasX(int64_t{x} + n), visible_.x0, visible_.x1);
  pixels_.resize(static_cast<size_t>(all.end - all.first));
  sums_.assign(static_cast<size_t>(n) * 5, 0.0);
  for (int32_t r = rows.first; r < rows.end; ++r) {
    const uint32_t* const from = canvas_->row(all.first, r, all.end - all.first, pixels_.data());
    for (int32_t i = 0; i < n; ++i) {
      const Shown columns =
          shown(canvasX(int64_t{x} + i), canvasX(int64_t{x} + i + 1), visible_.x0, visible_.x1);
      double* const sum = &sums_[static_cast<size_t>(i) * 5];
      for (int32_t c = columns.first; c < columns.end; ++c) {
        const double weight = columns.weight(c) * rows.weight(r);
        const uint32_t pixel = from[c - all.first];
        for (int k = 0; k < 4; ++k) sum[k] += weight * (pixel >> (8 * k) & 0xff);
        sum[4] += weight;
      }
    }
  }
  for (int32_t i = 0; i < n; ++i) {
    const double* const sum = &sums_[static_cast<size_t>(i) * 5];
    buffer[i] = 0;
    if (!(sum[4] > 0)) continue;
    for (int k = 0; k < 4; ++k) {
      buffer[i] |= static_cast<uint32_t>(std::lrint(sum[k] / sum[4])) << (8 * k);
    }
  }
  return buffer;
}

TransformedImageSource::TransformedImageSource(const PixelBuffer& image, const ImagePart& part,
                                               const CGAffineTransform& deviceToImage,
                                               SamplingFilter filter)
    : image_(image), part_(part), deviceToImage_(deviceToImage), filter_(filter) {}

const uint32_t* TransformedImageSource::row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) {
  const NSPoint start = CGPointApplyAffineTransform({x + 0.5, y + 0.5}, deviceToImage_);
  switch (filter_) {
    case SamplingFilter::nearest:
      nearestRow(start, n, buffer);
      break;
    case SamplingFilter::bilinear:
      bilinearRow(start, n, buffer);
      break;
    case SamplingFilter::fourTap:
      fourTapRow(x, y, n, buffer);
      break;
  }
  return buffer;
}

void TransformedImageSource::nearestRow(NSPoint position, int32_t n, uint32_t* out) const {
  for (int32_t i = 0; i < n; ++i) {
    const double u = std::clamp<double>(position.x + deviceToImage_.a * i, part_.x0, part_.x1 - 1);
    const double v = std::clamp<double>(position.y + deviceToImage_.b * i, part_.y0, part_.y1 - 1);
    out[i] = imageRow(image_, static_cast<int64_t>(v))[static_cast<int64_t>(u)];
  }
}

void TransformedImageSource::bilinearRow(NSPoint position, int32_t n, uint32_t* out) const {
  for (int32_t i = 0; i < n; ++i) {
    const Tap u = tapAt(position.x + deviceToImage_.a * i, part_.x0, part_.x1);
    const Tap v = tapAt(position.y + deviceToImage_.b * i, part_.y0, part_.y1);
    const uint32_t* const upper = imageRow(image_, v.first);
    const uint32_t* const lower = imageRow(image_, v.second);
    out[i] = mixed(mixed(upper[u.first], upper[u.second], u.weight),
                   mixed(lower[u.first], lower[u.second], u.weight), v.weight);
  }
}

// Positions are worked out from the row's own start: parts of a row show what the whole shows.
void TransformedImageSource::fourTapRow(int32_t x, int32_t y, int32_t n, uint32_t* out) const {
  constexpr int32_t kBatch = 64;
  FourTapWindow windows[kBatch];
  uint32_t edges[kBatch][16];
  const NSPoint start = CGPointApplyAffineTransform({0.5, y + 0.5}, deviceToImage_);
  const auto stride = static_cast<ptrdiff_t>(image_.width());
  for (int32_t done = 0; done < n; done += kBatch) {
    const int32_t count = std::min(kBatch, n - done);
    for (int32_t i = 0; i < count; ++i) {
      const double column = static_cast<double>(x) + done + i;
      const Place u = placeAt(start.x + deviceToImage_.a * column, part_.x0, part_.x1);
      const Place v = placeAt(start.y + deviceToImage_.b * column, part_.y0, part_.y1);
      const bool isInside = u.pixel > part_.x0 && u.pixel + 2 < part_.x1 && v.pixel > part_.y0 &&
                            v.pixel + 2 < part_.y1;
      if (isInside) {
        windows[i] = {imageRow(image_, v.pixel - 1) + u.pixel - 1, stride, u.steps, v.steps};
      } else {
        windows[i] = {edgeWindow(image_, part_, u.pixel, v.pixel, edges[i]), 4, u.steps, v.steps};
      }
    }
    fourTapPixels(windows, count, out + done);
  }
}
