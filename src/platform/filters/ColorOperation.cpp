#include "platform/filters/ColorOperation.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

void applyToCodes(const CurveStage& stage, CodeBatch& codes) {
  for (int c = 0; c < 3; ++c) {
    lookUpBytes(stage.codes, KeptBytes::kNone, codes.channels[c], codes.count, codes.channels[c]);
  }
}

template <class Stage>
void applyToCodes(const Stage& stage, CodeBatch& codes) {
  ColorBatch batch;
  batch.count = codes.count;
  float* const lights[] = {batch.red, batch.green, batch.blue};
  for (int c = 0; c < 3; ++c) lightsOfCodes(codes.channels[c], codes.count, lights[c]);
  applyStage(stage, batch);
  for (int c = 0; c < 3; ++c) codesOfLights(lights[c], codes.count, codes.channels[c]);
}

/// The stages applied to whole pixels, `count` of them at most kColorBatch.
void applyStages(const std::vector<ColorStage>& stages, const uint32_t* in, uint32_t* out,
                 size_t count) {
  CodeBatch codes;
  splitPixels(in, count, codes);
  for (size_t s = 0; s < stages.size(); ++s) {
    if (s > 0) roundTrip(codes);
    std::visit([&](const auto& stage) { applyToCodes(stage, codes); }, stages[s]);
  }
  joinPixels(codes, out);
}

/// Every pixel for itself.
class PixelRows {
 public:
  explicit PixelRows(const std::vector<ColorStage>& stages) : stages_(stages) {}

  void apply(const uint32_t* in, uint32_t* out, size_t count) const {
    for (size_t begin = 0; begin < count; begin += kColorBatch) {
      applyStages(stages_, in + begin, out + begin, std::min(kColorBatch, count - begin));
    }
  }

 private:
  const std::vector<ColorStage>& stages_;
};

/// Results by pixel value: pictures repeat their colours far more often than they show new ones,
/// and looking one up costs less than several filters. Pixels that are not found wait until there
/// is a batch of them. The empty table is right for transparent pixels, which stay transparent.
class ColorMemo {
 public:
  ColorMemo(const std::vector<ColorStage>& stages, size_t pixelCount)
      : stages_(stages),
        bits_(std::clamp(static_cast<int>(std::bit_width(pixelCount)), 6, kMostBits)),
        entries_(size_t{1} << bits_) {}

  /// The results are all there after finish() only.
  void apply(const uint32_t* in, uint32_t* out, size_t count) {
    for (size_t begin = 0; begin < count; begin += kColorBatch) {
      lookUp(in + begin, out + begin, std::min(kColorBatch, count - begin));
      if (waiting_ < kColorBatch) continue;
      compute(kColorBatch);
      waiting_ -= kColorBatch;
      std::copy_n(pixels_ + kColorBatch, waiting_, pixels_);
      std::copy_n(targets_ + kColorBatch, waiting_, targets_);
    }
  }

  void finish() {
    compute(waiting_);
    waiting_ = 0;
  }

 private:
  /// Entries that fit a second-level cache with room for the pixels.
  static constexpr int kMostBits = 16;
  struct Entry {
    uint32_t in = 0;
    uint32_t out = 0;
  };

  Entry& entryOf(uint32_t pixel) { return entries_[(pixel * 0x9E3779B1U) >> (32 - bits_)]; }

  void lookUp(const uint32_t* in, uint32_t* out, size_t count) {
    size_t waiting = waiting_;
    for (size_t i = 0; i < count; ++i) {
      const Entry& entry = entryOf(in[i]);
      out[i] = entry.out;
      pixels_[waiting] = in[i];
      targets_[waiting] = out + i;
      waiting += entry.in != in[i] ? 1 : 0;
    }
    waiting_ = waiting;
  }

  void compute(size_t count) {
    uint32_t results[kColorBatch];
    applyStages(stages_, pixels_, results, count);
    for (size_t i = 0; i < count; ++i) {
      *targets_[i] = results[i];
      entryOf(pixels_[i]) = {pixels_[i], results[i]};
    }
  }

  const std::vector<ColorStage>& stages_;
  int bits_;
  std::vector<Entry> entries_;
  size_t waiting_ = 0;
  uint32_t pixels_[2 * kColorBatch];
  uint32_t* targets_[2 * kColorBatch];
};

/// Curves alone cost less than looking colours up.
class CurveRows {
 public:
  explicit CurveRows(const std::vector<ColorStage>& stages) : stages_(stages) {
    for (size_t i = 0; i < 256; ++i) {
      uint8_t code = static_cast<uint8_t>(i);
      for (const ColorStage& stage : stages) code = std::get<CurveStage>(stage).codes[code];
      all_[i] = code;
    }
  }

  void apply(const uint32_t* in, uint32_t* out, size_t count) const {
    for (size_t begin = 0; begin < count; begin += kColorBatch) {
      const size_t length = std::min(kColorBatch, count - begin);
      if (allOpaque(in + begin, length)) {
        lookUpBytes(all_, KeptBytes::kAlphas, reinterpret_cast<const uint8_t*>(in + begin),
                    4 * length, reinterpret_cast<uint8_t*>(out + begin));
      } else {
        applyStages(stages_, in + begin, out + begin, length);
      }
    }
  }

 private:
  const std::vector<ColorStage>& stages_;
  CodeTable all_;
};

/// Roughly, with an affine stage as the unit and none for what a table does.
int costOf(const ColorStage& stage) {
  if (std::holds_alternative<CurveStage>(stage)) return 0;
  if (std::holds_alternative<AffineStage>(stage)) return 1;
  return std::holds_alternative<SepiaStage>(stage) ? 2 : 4;
}

/// The common part of the picture and the target, row by row. Colour filters have no business
/// with what surrounds a picture: an extended one is extended again from their result.
template <class Rows>
void renderRows(Rows& filter, const OperationSource& source, const OperationTarget& target,
                RowRange rows) {
  const int64_t dx = target.left - source.left;
  const int64_t dy = source.top - target.top;
  const int64_t begin = std::max<int64_t>(0, -dx);
  const int64_t end = std::min(target.bitmap.pixelsWide(), source.bitmap->pixelsWide() - dx);
  if (begin >= end) return;
  for (int64_t y = rows.first; y < rows.end; ++y) {
    const int64_t from = y + dy;
    if (from < 0 || from >= source.bitmap->pixelsHigh()) continue;
    const auto* in = reinterpret_cast<const uint32_t*>(source.bitmap->row(from)) + begin + dx;
    auto* out = reinterpret_cast<uint32_t*>(target.bitmap.writableRows(y, y + 1)) + begin;
    filter.apply(in, out, static_cast<size_t>(end - begin));
  }
}

}  // namespace

std::shared_ptr<const ColorOperation> ColorOperation::followedBy(const ColorOperation& next) const {
  std::vector<ColorStage> stages = stages_;
  stages.insert(stages.end(), next.stages_.begin(), next.stages_.end());
  return std::make_shared<ColorOperation>(std::move(stages));
}

void ColorOperation::render(const OperationSource& source, const OperationTarget& target,
                            RowRange rows) const {
  constexpr int kLookUpCost = 1;
  int cost = 0;
  for (const ColorStage& stage : stages_) cost += costOf(stage);
  if (cost == 0) {
    const CurveRows filter(stages_);
    renderRows(filter, source, target, rows);
  } else if (cost <= kLookUpCost) {
    const PixelRows filter(stages_);
    renderRows(filter, source, target, rows);
  } else {
    const int64_t pixels = (rows.end - rows.first) * target.bitmap.pixelsWide();
    ColorMemo filter(stages_, static_cast<size_t>(pixels));
    renderRows(filter, source, target, rows);
    filter.finish();
  }
}
