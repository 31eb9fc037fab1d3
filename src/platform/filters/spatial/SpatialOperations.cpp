#include "platform/filters/spatial/SpatialOperations.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/filters/light/PlanarPixels.h"
#include "platform/foundation/Convert.h"
#include "platform/machine/TargetClones.h"

namespace {

constexpr LumaWeights kLuminance{0.2125F, 0.7154F, 0.0721F};
constexpr LumaWeights kVideoLuma{0.299F, 0.587F, 0.114F};
/// Contrast of edge work: a difference of 1/400 of full light is opaque.
constexpr float kEdgeWorkGain = 400;
/// How far a blur grows a picture, in radii.
constexpr double kGrowthInRadii = 3;

/// Upright strips of a picture, so narrow that the rows of values that a blur holds stay in a
/// processor's own cache, and so wide that what it reads beyond the strips' sides counts little.
template <class Function>
void forEachStrip(int64_t width, int64_t margin, const Function& function) {
  const int64_t strip = std::max<int64_t>(512, 16 * margin);
  const int64_t strips = std::max<int64_t>(1, (width + strip / 2) / strip);
  constexpr int64_t kVectors = 64;
  const int64_t step = (width / strips + kVectors - 1) / kVectors * kVectors;
  for (int64_t begin = 0; begin < width; begin += step) {
    function(ColumnRange{begin, std::min(begin + step, width)});
  }
}

RowStreamFactory pixelRows(const SourceView& view) {
  return [&view](ColumnRange columns) {
    return std::make_unique<FunctionStream>(
        columns, Channels::kFour,
        [&](int64_t row, int64_t x, size_t count, float* out) { view.decode(x, row, count, out); });
  };
}

RowStreamFactory channelRows(const SourceView& view, size_t channel) {
  return [&view, channel](ColumnRange columns) {
    return std::make_unique<FunctionStream>(
        columns, Channels::kOne,
        [&view, channel](int64_t row, int64_t x, size_t count, float* out) {
          view.decodeChannel(x, row, count, channel, out);
        });
  };
}

bool isOpaque(const NSBitmapImageRep& bitmap) {
  const auto width = static_cast<size_t>(bitmap.pixelsWide());
  for (int64_t y = 0; y < bitmap.pixelsHigh(); ++y) {
    if (!allOpaque(reinterpret_cast<const uint32_t*>(bitmap.row(y)), width)) return false;
  }
  return true;
}

RowStreamFactory lumaRows(const SourceView& view, const LumaWeights& weights) {
  return [&view, &weights](ColumnRange columns) {
    return std::make_unique<FunctionStream>(columns, Channels::kOne,
                                            [&](int64_t row, int64_t x, size_t count, float* out) {
                                              view.decodeLuma(x, row, count, weights, out);
                                            });
  };
}

ColumnRange columnsOf(const OperationTarget& target) {
  return {0, target.bitmap.pixelsWide()};
}

TARGET_CLONES void sharpenRow(const float* __restrict luma, const float* __restrict blurred,
                              float amount, float* __restrict pixels, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    float* p = pixels + i * 4;
    const float delta = amount * (luma[i] - blurred[i]);
    const float alpha = p[3];
    for (int c = 0; c < 3; ++c) {
      const float value = p[c] + delta;
      p[c] = value > 0 ? (value < alpha ? value : alpha) : 0.0F;
    }
  }
}

TARGET_CLONES void edgesRow(const float* __restrict upper, const float* __restrict lower,
                            float intensity, float* __restrict out, size_t count) {
  for (size_t i = 0; i < count * 4; ++i) {
    const float down = lower[i + 4] - upper[i];
    const float up = upper[i + 4] - lower[i];
    out[i] = intensity * (down * down + up * up);
  }
  for (size_t i = 0; i < count; ++i) out[i * 4 + 3] = upper[i * 4 + 3];
}

/// Premultiplied white has the same value in all channels, and needs no transfer function.
TARGET_CLONES void edgeWorkRow(const float* __restrict fine, const float* __restrict coarse,
                               uint32_t* __restrict out, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const float alpha = kEdgeWorkGain * (fine[i] - coarse[i]);
    const float clamped = alpha > 0 ? (alpha < 1 ? alpha : 1.0F) : 0.0F;
    out[i] = static_cast<uint32_t>(roundedHalfUp(clamped * 255.0F)) * 0x01010101U;
  }
}

}  // namespace

int64_t BlurOperation::growth() const {
  return static_cast<int64_t>(std::ceil(kGrowthInRadii * sigma_));
}

void BlurOperation::render(const OperationSource& source, const OperationTarget& target,
                           RowRange rows) const {
  const SourceView view(source, target);
  if (source.surround == Surround::kNearestPixel && isOpaque(*source.bitmap)) {
    renderOpaque(view, target, rows);
    return;
  }
  forEachStrip(target.bitmap.pixelsWide(), plan_.margin(), [&](ColumnRange strip) {
    const auto stream = makeGaussianStream(plan_, strip, pixelRows(view));
    std::vector<float> values(stream->valueCount());
    for (int64_t y = rows.first; y < rows.end; ++y) {
      stream->produce(y, values.data());
      encodePixels(values.data(), strip.count(),
                   target.bitmap.writableRows(y, y + 1) + 4 * strip.begin);
    }
  });
}

/// Where everything is opaque there are three channels to blur instead of four.
void BlurOperation::renderOpaque(const SourceView& view, const OperationTarget& target,
                                 RowRange rows) const {
  forEachStrip(target.bitmap.pixelsWide(), plan_.margin(), [&](ColumnRange strip) {
    const size_t stride = AlignedFloats::padded(strip.count());
    AlignedFloats values(3 * stride);
    float* const channels[] = {values.data(), values.data() + stride, values.data() + 2 * stride};
    std::unique_ptr<RowStream> streams[3];
    for (size_t c = 0; c < 3; ++c) {
      streams[c] = makeGaussianStream(plan_, strip, channelRows(view, c));
    }
    for (int64_t y = rows.first; y < rows.end; ++y) {
      for (size_t c = 0; c < 3; ++c) streams[c]->produce(y, channels[c]);
      auto* out = reinterpret_cast<uint32_t*>(target.bitmap.writableRows(y, y + 1));
      encodeChannels(channels[0], channels[1], channels[2], strip.count(), out + strip.begin);
    }
  });
}

void SharpenOperation::render(const OperationSource& source, const OperationTarget& target,
                              RowRange rows) const {
  OperationSource extended = source;
  extended.surround = Surround::kNearestPixel;
  const SourceView view(extended, target);
  const SourceView plain(source, target);
  const auto stream = makeGaussianStream(plan_, columnsOf(target), lumaRows(view, kLuminance));
  const size_t count = columnsOf(target).count();
  std::vector<float> blurred(count);
  std::vector<float> luma(count);
  std::vector<float> pixels(count * 4);
  for (int64_t y = rows.first; y < rows.end; ++y) {
    stream->produce(y, blurred.data());
    plain.decodeLuma(0, y, count, kLuminance, luma.data());
    plain.decode(0, y, count, pixels.data());
    sharpenRow(luma.data(), blurred.data(), amount_, pixels.data(), count);
    encodePixels(pixels.data(), count, target.bitmap.writableRows(y, y + 1));
  }
}

void EdgesOperation::render(const OperationSource& source, const OperationTarget& target,
                            RowRange rows) const {
  const SourceView view(source, target);
  const size_t count = columnsOf(target).count();
  std::vector<float> upper((count + 1) * 4);
  std::vector<float> lower((count + 1) * 4);
  std::vector<float> out(count * 4);
  view.decode(0, rows.first, count + 1, lower.data());
  for (int64_t y = rows.first; y < rows.end; ++y) {
    upper.swap(lower);
    view.decode(0, y + 1, count + 1, lower.data());
    edgesRow(upper.data(), lower.data(), intensity_, out.data(), count);
    encodePixels(out.data(), count, target.bitmap.writableRows(y, y + 1));
  }
}

int64_t EdgeWorkOperation::growth() const {
  return static_cast<int64_t>(std::ceil(kGrowthInRadii * radius_));
}

void EdgeWorkOperation::render(const OperationSource& source, const OperationTarget& target,
                               RowRange rows) const {
  const SourceView view(source, target);
  const auto fine = makeGaussianStream(fine_, columnsOf(target), lumaRows(view, kVideoLuma));
  const auto coarse = makeGaussianStream(coarse_, columnsOf(target), lumaRows(view, kVideoLuma));
  const size_t count = columnsOf(target).count();
  std::vector<float> fineRow(count);
  std::vector<float> coarseRow(count);
  for (int64_t y = rows.first; y < rows.end; ++y) {
    fine->produce(y, fineRow.data());
    coarse->produce(y, coarseRow.data());
    auto* out = reinterpret_cast<uint32_t*>(target.bitmap.writableRows(y, y + 1));
    edgeWorkRow(fineRow.data(), coarseRow.data(), out, count);
  }
}
