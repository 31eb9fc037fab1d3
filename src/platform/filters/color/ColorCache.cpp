#include "platform/filters/color/ColorCache.h"

#include <algorithm>

namespace {

/// Enough to make noise cost little more than no look-ups at all, and few enough to notice soon
/// when there is no more of it.
constexpr size_t kMostSkipped = 15;

}  // namespace

ColorCache::ColorCache(const std::vector<ColorStage>& stages, uint32_t* origin)
    : stages_(stages), origin_(origin), entries_(kCacheEntries) {}

void ColorCache::apply(const uint32_t* in, uint32_t* out, size_t count) {
  for (size_t begin = 0; begin < count; begin += kColorBatch) {
    const size_t length = std::min(kColorBatch, count - begin);
    prefetchPixels(in + begin + kColorBatch);
    if (toSkip_ > 0) {
      --toSkip_;
      applyStages(stages_, in + begin, out + begin, length);
      continue;
    }
    const auto number = static_cast<uint32_t>(out + begin - origin_);
    const size_t missed = findEntries(entries_.data(), in + begin, length, out + begin, number,
                                      pixels_ + waiting_, places_ + waiting_);
    skipped_ = missed <= length / 2 ? 0 : std::min(2 * skipped_ + 1, kMostSkipped);
    toSkip_ = skipped_;
    waiting_ += missed;
    if (waiting_ < kColorBatch) continue;
    compute(kColorBatch);
    waiting_ -= kColorBatch;
    std::copy_n(pixels_ + kColorBatch, waiting_, pixels_);
    std::copy_n(places_ + kColorBatch, waiting_, places_);
  }
}

void ColorCache::finish() {
  compute(waiting_);
  waiting_ = 0;
}

void ColorCache::compute(size_t count) {
  uint32_t results[kColorBatch];
  applyStages(stages_, pixels_, results, count);
  for (size_t i = 0; i < count; ++i) {
    origin_[places_[i]] = results[i];
    if ((pixels_[i] & kCacheTagMask) != kCacheTagMask) continue;
    const CacheSlot slot = cacheSlot(pixels_[i]);
    entries_[slot.index] = (results[i] & ~kCacheTagMask) | slot.tag;
  }
}
