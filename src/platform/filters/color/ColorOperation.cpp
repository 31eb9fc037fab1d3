#include "platform/filters/color/ColorOperation.h"

#include <algorithm>

#include "platform/filters/color/ColorCache.h"
#include "platform/machine/AVX512.h"

namespace {

/// Every pixel for itself.
class UncachedStages {
 public:
  explicit UncachedStages(const std::vector<ColorStage>& stages) : stages_(stages) {}

  void apply(const uint32_t* in, uint32_t* out, size_t count) const {
    for (size_t begin = 0; begin < count; begin += kColorBatch) {
      prefetchPixels(in + begin + kColorBatch);
      applyStages(stages_, in + begin, out + begin, std::min(kColorBatch, count - begin));
    }
  }

 private:
  const std::vector<ColorStage>& stages_;
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

/// Roughly, in fifths of a nanosecond a pixel; none for what a table does.
int costOf(const ColorStage& stage) {
  if (std::holds_alternative<CurveStage>(stage)) return 0;
  if (std::holds_alternative<AffineStage>(stage)) return 2;
  const auto* tones = std::get_if<HighlightShadowStage>(&stage);
  return tones != nullptr && tones->shadows ? 9 : 3;
}

/// Beyond which cost looking colours up is cheaper, those included that are not found. Without wide
/// codes it takes longer, but all else even more so.
int lookUpCost() {
  return hasAVX512VBMI() ? 5 : 1;
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
  int cost = 0;
  for (const ColorStage& stage : stages_) cost += costOf(stage);
  const auto pixels = static_cast<size_t>((rows.end - rows.first) * target.bitmap.pixelsWide());
  if (cost == 0) {
    const CurveRows filter(stages_);
    renderRows(filter, source, target, rows);
  } else if (cost <= lookUpCost() || pixels < ColorCache::kLeastPixels) {
    const UncachedStages filter(stages_);
    renderRows(filter, source, target, rows);
  } else {
    auto* const origin =
        reinterpret_cast<uint32_t*>(target.bitmap.writableRows(rows.first, rows.end));
    ColorCache filter(stages_, origin);
    renderRows(filter, source, target, rows);
    filter.finish();
  }
}
