#include <gtest/gtest.h>

#include <string>

#include "platform/graphics/codecs/PictureCache.h"

namespace {

using Keep = PictureCache::Keep;

/// A key for the bytes of a text, which must outlive it.
PictureKey keyOf(const std::string& text, int64_t number = 0,
                 PictureKey::Kind kind = PictureKey::Kind::bitmap) {
  return {kind, {number}, {reinterpret_cast<const uint8_t*>(text.data()), text.size()}, nullptr};
}

constexpr size_t kBudget = 10000;
constexpr size_t kCost = 3000;

class Cache : public testing::Test {
 protected:
  /// What the cache keeps for the key after something was made for it `times` times.
  std::shared_ptr<const void> keptAfter(const PictureKey& key, int times,
                                        Keep keep = Keep::whenRepeated, size_t cost = kCost) {
    for (int i = 0; i < times; ++i) cache_.add(key, std::make_shared<int>(i), cost, keep);
    return cache_.find(key);
  }
  PictureCache cache_{kBudget};
};

}  // namespace

TEST_F(Cache, KeepsWhatIsMadeTwiceOrWantedAtOnce) {
  const std::string a(5000, 'a'), b(5000, 'b');
  EXPECT_EQ(keptAfter(keyOf(a), 1), nullptr);
  EXPECT_LT(cache_.cost(), 1000U);
  EXPECT_NE(keptAfter(keyOf(a), 1), nullptr);
  EXPECT_NE(keptAfter(keyOf(b), 1, Keep::always), nullptr);
  EXPECT_GT(cache_.cost(), 2 * kCost);
  const std::string large = "large";
  EXPECT_EQ(keptAfter(keyOf(large), 3, Keep::always, kBudget + 1), nullptr);
}

TEST_F(Cache, TellsKeysApart) {
  std::string text(5000, 'x');
  const std::string same = text;
  ASSERT_NE(keptAfter(keyOf(text), 1, Keep::always), nullptr);
  EXPECT_NE(cache_.find(keyOf(same)), nullptr);
  EXPECT_EQ(cache_.find(keyOf(text, 1)), nullptr);
  EXPECT_EQ(cache_.find(keyOf(text, 0, PictureKey::Kind::svg)), nullptr);
  const std::string longer = same + "x";
  EXPECT_EQ(cache_.find(keyOf(longer)), nullptr);
  // Wherever they differ, also between the bytes that are looked at first.
  for (size_t i = 0; i < same.size(); i += 7) {
    std::string other = same;
    other[i] = 'y';
    ASSERT_EQ(cache_.find(keyOf(other)), nullptr) << i;
  }
}

TEST_F(Cache, DropsWhatWasUsedLeastRecently) {
  const std::string texts[] = {"one", "two", "three", "four"};
  for (int i = 0; i < 3; ++i) ASSERT_NE(keptAfter(keyOf(texts[i]), 1, Keep::always), nullptr);
  EXPECT_NE(cache_.find(keyOf(texts[0])), nullptr);
  ASSERT_NE(keptAfter(keyOf(texts[3]), 1, Keep::always), nullptr);
  for (const std::string& text : texts) {
    EXPECT_EQ(cache_.find(keyOf(text)) == nullptr, text == "two") << text;
  }
  EXPECT_LE(cache_.cost(), kBudget);
  const PictureCache copy = cache_;
  EXPECT_EQ(copy.cost(), 0U);
}

TEST_F(Cache, IsCurrentInItsScopeOnly) {
  const std::string text = "picture";
  int made = 0;
  const auto make = [&] { return std::make_shared<int>(++made); };
  const auto get = [&] {
    return *remembered<int>(keyOf(text), Keep::whenRepeated, make, [](int) { return kCost; });
  };
  EXPECT_EQ(get(), 1);
  EXPECT_EQ(get(), 2);
  {
    const PictureCacheScope scope(cache_);
    EXPECT_EQ(get(), 3);
    EXPECT_EQ(get(), 4);
    EXPECT_EQ(get(), 4);
    PictureCache inner(kBudget);
    const PictureCacheScope nested(inner);
    EXPECT_EQ(get(), 5);
  }
  EXPECT_EQ(PictureCache::current(), nullptr);
}
