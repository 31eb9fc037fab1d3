#include "platform/filters/image/ImageOperation.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/machine/TargetClones.h"

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

namespace {

/// Samples along one axis: the pixel centre before each, how far it lies from there to the next,
/// and whether it lies on the picture.
struct AxisPlaces {
  int32_t whole[kSampleBatch];
  float fraction[kSampleBatch];
  int32_t inside[kSampleBatch];
};

TARGET_CLONES void placeSamples(const double* __restrict x, size_t count, double shift, double size,
                                AxisPlaces& places) {
  for (size_t i = 0; i < count; ++i) {
    const double at = x[i] + shift;
    places.inside[i] = (at >= 0 ? 1 : 0) & (at < size ? 1 : 0);
    const double beyond = at > 0 ? at : 0.0;
    // Half a pixel more instead of less, so that truncation rounds down.
    const double clamped = (beyond < size ? beyond : size) + 0.5;
    const auto whole = static_cast<int32_t>(clamped);
    places.whole[i] = whole - 1;
    places.fraction[i] = static_cast<float>(clamped - static_cast<double>(whole));
  }
}

TARGET_CLONES void mixCorners(const float (*__restrict lights)[4 * kSampleBatch],
                              const float (*__restrict fractions)[4 * kSampleBatch],
                              float* __restrict out, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const float upper = lights[0][i] + (lights[1][i] - lights[0][i]) * fractions[0][i];
    const float lower = lights[2][i] + (lights[3][i] - lights[2][i]) * fractions[0][i];
    out[i] = upper + (lower - upper) * fractions[1][i];
  }
}

}  // namespace

SourceView::SourceView(const OperationSource& source, const OperationTarget& target)
    : bitmap_(*source.bitmap),
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

void SourceView::decodeChannel(int64_t x, int64_t row, size_t count, size_t channel,
                               float* out) const {
  decodeSpan(x, row, count, 1, out, [&](const uint8_t* pixels, size_t length, float* values) {
    ::decodeChannel(pixels, length, channel, values);
  });
}

void SourceView::decodeLuma(int64_t x, int64_t row, size_t count, const LumaWeights& weights,
                            float* out) const {
  decodeSpan(x, row, count, 1, out, [&](const uint8_t* pixels, size_t length, float* values) {
    ::decodeLuma(pixels, length, weights, values);
  });
}

void SourceView::copyPixels(const std::vector<int64_t>& columns, int64_t row, uint32_t* out) const {
  row += dy_;
  const int64_t nearest = std::clamp<int64_t>(row, 0, bitmap_.pixelsHigh() - 1);
  const uint8_t* const pixels = bitmap_.row(nearest);
  const int64_t last = bitmap_.pixelsWide() - 1;
  for (const int64_t column : columns) {
    const int64_t x = std::clamp<int64_t>(column + dx_, 0, last);
    const bool inside = extended_ || (row == nearest && x == column + dx_);
    uint32_t value;
    std::memcpy(&value, pixels + 4 * x, sizeof value);
    *out++ = inside ? value : 0;
  }
}

void SourceView::prefetchRow(int64_t row) const {
  constexpr int64_t kLine = 64;
  const uint8_t* const bytes = pixel(0, row + dy_);
  const int64_t end = 4 * bitmap_.pixelsWide();
  for (int64_t i = 0; i < end; i += kLine) __builtin_prefetch(bytes + i);
}

/// A pixel by the source's own columns and rows.
const uint8_t* SourceView::pixel(int64_t column, int64_t row) const {
  constexpr static uint8_t kTransparent[4] = {};
  const int64_t x = std::clamp<int64_t>(column, 0, bitmap_.pixelsWide() - 1);
  const int64_t y = std::clamp<int64_t>(row, 0, bitmap_.pixelsHigh() - 1);
  if (!extended_ && (x != column || y != row)) return kTransparent;
  return bitmap_.row(y) + x * 4;
}

void SourceView::sample(const double* x, const double* y, size_t count, float* out) const {
  for (size_t begin = 0; begin < count; begin += kSampleBatch) {
    const size_t length = std::min(kSampleBatch, count - begin);
    sampleBatch(x + begin, y + begin, length, out + 4 * begin);
  }
}

/// The pixels from (column, row) on to the next ones right and down.
void SourceView::copyCorners(int64_t column, int64_t row, CornerPixels& corners, size_t i) const {
  const bool inner = column >= 0 && row >= 0 && column + 1 < bitmap_.pixelsWide() &&
                     row + 1 < bitmap_.pixelsHigh();
  for (int64_t side = 0; side < 2; ++side) {
    for (int64_t line = 0; line < 2; ++line) {
      const uint8_t* const p =
          inner ? bitmap_.row(row + line) + 4 * (column + side) : pixel(column + side, row + line);
      std::memcpy(&corners[2 * line + side][i], p, 4);
    }
  }
}

void SourceView::sampleBatch(const double* x, const double* y, size_t count, float* out) const {
  AxisPlaces columns;
  AxisPlaces rows;
  placeSamples(x, count, static_cast<double>(dx_), static_cast<double>(bitmap_.pixelsWide()),
               columns);
  placeSamples(y, count, static_cast<double>(dy_), static_cast<double>(bitmap_.pixelsHigh()), rows);
  CornerPixels corners;
  float fractions[2][4 * kSampleBatch];
  for (size_t i = 0; i < count; ++i) {
    copyCorners(columns.whole[i], rows.whole[i], corners, i);
    std::fill_n(fractions[0] + 4 * i, 4, columns.fraction[i]);
    std::fill_n(fractions[1] + 4 * i, 4, rows.fraction[i]);
  }
  float lights[4][4 * kSampleBatch];
  for (int corner = 0; corner < 4; ++corner) {
    decodePixels(reinterpret_cast<const uint8_t*>(corners[corner]), count, lights[corner]);
  }
  mixCorners(lights, fractions, out, 4 * count);
  if (extended_) return;
  for (size_t i = 0; i < count; ++i) {
    if (!columns.inside[i] || !rows.inside[i]) std::fill_n(out + 4 * i, 4, 0.0F);
  }
}
