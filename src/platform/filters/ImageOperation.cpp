#include "platform/filters/ImageOperation.h"

#include <algorithm>
#include <cmath>

void runOperation(const ImageOperation& operation, const OperationSource& source,
                  const OperationTarget& target) {
  const RowRange used = source.bitmap->usedRows();
  const int64_t height = target.bitmap.pixelsHigh();
  if (used.empty() || height == 0 || target.bitmap.pixelsWide() == 0) return;
  const int64_t offset = target.top - source.top;
  const int64_t reach = operation.reach();
  RowRange rows{used.first + offset - reach, used.end + offset + reach};
  // A painted edge row goes on beyond the picture.
  if (source.surround == Surround::kNearestPixel) {
    if (used.first == 0) rows.first = 0;
    if (used.end == source.bitmap->pixelsHigh()) rows.end = height;
  }
  rows = {std::max<int64_t>(rows.first, 0), std::min(rows.end, height)};
  if (!rows.empty()) operation.render(source, target, rows);
}

SourceView::SourceView(const OperationSource& source, const OperationTarget& target)
    : bitmap_(*source.bitmap),
      tables_(linearLightTables()),
      dx_(target.left - source.left),
      dy_(source.top - target.top),
      extended_(source.surround == Surround::kNearestPixel) {}

template <class Decode>
void SourceView::decodeSpan(int64_t x, int64_t row, size_t count, size_t channels, float* out,
                            const Decode& decode) const {
  const int64_t width = bitmap_.pixelsWide();
  const int64_t height = bitmap_.pixelsHigh();
  const auto length = static_cast<int64_t>(count);
  x += dx_;
  row += dy_;
  if (extended_) row = std::clamp<int64_t>(row, 0, height - 1);
  // Pixels before the picture, then on it, then after it.
  int64_t first = std::clamp<int64_t>(-x, 0, length);
  int64_t end = std::clamp<int64_t>(width - x, first, length);
  if (extended_ && first == end) {
    // All on one side: the edge pixel stands for the picture.
    first = x < 0 ? length - 1 : 0;
    end = first + 1;
  }
  if (row < 0 || row >= height || first == end) {
    std::fill_n(out, count * channels, 0.0F);
    return;
  }
  const int64_t column = std::clamp<int64_t>(x + first, 0, width - 1);
  decode(bitmap_.row(row) + column * 4, static_cast<size_t>(end - first),
         out + static_cast<size_t>(first) * channels);
  const auto fill = [&](int64_t from, int64_t to, int64_t edge) {
    for (int64_t i = from; i < to; ++i) {
      for (size_t c = 0; c < channels; ++c) {
        out[static_cast<size_t>(i) * channels + c] =
            extended_ ? out[static_cast<size_t>(edge) * channels + c] : 0.0F;
      }
    }
  };
  fill(0, first, first);
  fill(end, length, end - 1);
}

void SourceView::decode(int64_t x, int64_t row, size_t count, float* out) const {
  decodeSpan(x, row, count, 4, out, decodePixels);
}

void SourceView::decodeLuma(int64_t x, int64_t row, size_t count, const LumaWeights& weights,
                            float* out) const {
  decodeSpan(x, row, count, 1, out, [&](const uint8_t* pixels, size_t length, float* values) {
    ::decodeLuma(pixels, length, weights, values);
  });
}

/// A pixel by the source's own columns and rows.
const uint8_t* SourceView::pixel(int64_t column, int64_t row) const {
  constexpr static uint8_t kTransparent[4] = {};
  const int64_t x = std::clamp<int64_t>(column, 0, bitmap_.pixelsWide() - 1);
  const int64_t y = std::clamp<int64_t>(row, 0, bitmap_.pixelsHigh() - 1);
  if (!extended_ && (x != column || y != row)) return kTransparent;
  return bitmap_.row(y) + x * 4;
}

void SourceView::sample(double x, double y, float* out) const {
  const auto width = static_cast<double>(bitmap_.pixelsWide());
  const auto height = static_cast<double>(bitmap_.pixelsHigh());
  x += static_cast<double>(dx_);
  y += static_cast<double>(dy_);
  if (!extended_ && !(x >= 0 && x < width && y >= 0 && y < height)) {
    std::fill_n(out, 4, 0.0F);
    return;
  }
  x = std::clamp(x, 0.0, width) - 0.5;
  y = std::clamp(y, 0.0, height) - 0.5;
  const double left = std::floor(x);
  const double top = std::floor(y);
  const auto column = static_cast<int64_t>(left);
  const auto row = static_cast<int64_t>(top);
  if (x == left && y == top) return decodePixel(tables_, pixel(column, row), out);
  const auto fx = static_cast<float>(x - left);
  const auto fy = static_cast<float>(y - top);
  float corners[4][4];
  for (int64_t i = 0; i < 4; ++i)
    decodePixel(tables_, pixel(column + i % 2, row + i / 2), corners[i]);
  for (size_t c = 0; c < 4; ++c) {
    const float upper = corners[0][c] + (corners[1][c] - corners[0][c]) * fx;
    const float lower = corners[2][c] + (corners[3][c] - corners[2][c]) * fx;
    out[c] = upper + (lower - upper) * fy;
  }
}
