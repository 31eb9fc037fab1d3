#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "platform/filters/color/ColorCacheEntries.h"

namespace {

constexpr uint32_t kOpaque = 0xFF000000;

struct Found {
  std::vector<uint32_t> results;
  std::vector<uint32_t> missed;
  std::vector<uint32_t> numbers;
};
using Find = decltype(&findEntries);

Found found(Find find, const std::vector<uint32_t>& cache, const std::vector<uint32_t>& pixels,
            uint32_t first) {
  constexpr size_t kOverwritten = 16;
  Found all{std::vector<uint32_t>(pixels.size()),
            std::vector<uint32_t>(pixels.size() + kOverwritten),
            std::vector<uint32_t>(pixels.size() + kOverwritten)};
  const size_t misses = find(cache.data(), pixels.data(), pixels.size(), all.results.data(), first,
                             all.missed.data(), all.numbers.data());
  all.missed.resize(misses);
  all.numbers.resize(misses);
  return all;
}

TEST(ColorCacheEntries, NoTwoColoursHaveThePlaceAndTheMarkOfEachOther) {
  std::vector<bool> seen(size_t{1} << 24);
  for (uint32_t color = 0; color < 1 << 24; ++color) {
    const CacheSlot place = cacheSlot(color | kOpaque);
    ASSERT_LT(place.index, kCacheEntries);
    ASSERT_EQ(place.tag & ~kCacheTagMask, 0U);
    ASSERT_GE(place.tag, kCacheUsed) << "an entry that is not set has none";
    const size_t both = size_t{place.tag - kCacheUsed} >> 24 << kCacheIndexBits | place.index;
    ASSERT_FALSE(seen[both]) << color;
    seen[both] = true;
  }
}

TEST(ColorCacheEntries, ThePixelsThatHaveNoneAreListed) {
  std::mt19937 random(3);
  for (const uint32_t shareKnown : {0U, 1U, 50U, 99U, 100U}) {
    for (const size_t count : {0, 1, 15, 16, 63, 65, 512, 513, 1500}) {
      std::vector<uint32_t> cache(kCacheEntries);
      std::vector<uint32_t> pixels(count);
      std::vector<uint32_t> expected(count);
      std::vector<uint32_t> missed;
      std::vector<uint32_t> numbers;
      for (size_t i = 0; i < count; ++i) {
        pixels[i] = static_cast<uint32_t>(random()) | kOpaque;
        if (random() % 100 < shareKnown) {
          const CacheSlot place = cacheSlot(pixels[i]);
          cache[place.index] = (pixels[i] * 77 & ~kCacheTagMask) | place.tag;
        }
        if (random() % 10 == 0) pixels[i] &= 0xFEFFFFFF;
      }
      for (size_t i = 0; i < count; ++i) {
        const CacheSlot place = cacheSlot(pixels[i]);
        expected[i] = cache[place.index] | kOpaque;
        if (pixels[i] >= kOpaque && (cache[place.index] & kCacheTagMask) == place.tag) continue;
        missed.push_back(pixels[i]);
        numbers.push_back(1000 + static_cast<uint32_t>(i));
      }
      for (const Find find : {&findEntries, &findEntriesPlain}) {
        const Found all = found(find, cache, pixels, 1000);
        EXPECT_EQ(all.results, expected);
        EXPECT_EQ(all.missed, missed) << shareKnown << "% of " << count;
        EXPECT_EQ(all.numbers, numbers) << shareKnown << "% of " << count;
      }
    }
  }
}

}  // namespace
