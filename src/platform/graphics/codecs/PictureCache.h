#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <unordered_map>
#include <utility>

#include "platform/foundation/Limits.h"

/// What something was made of: the bytes of a picture or of a colour profile, and numbers such as
/// the size that was asked for. Equal keys have equal bytes and numbers.
struct PictureKey {
  enum class Kind : uint8_t { bitmap, svg, pdf, profile, text };

  Kind kind = Kind::bitmap;
  std::array<int64_t, 3> numbers{};
  std::span<const uint8_t> bytes;
  std::shared_ptr<const void> owner;  ///< keeps the bytes alive

  bool operator==(const PictureKey& other) const;
};

/// What was made of the pictures of one document and is needed again: bitmaps and colour
/// conversions, within one budget. What was used least recently goes first. Not to be used by two
/// threads at once.
class PictureCache {
 public:
  /// The cache of what the calling thread draws; null outside of documents.
  static PictureCache* current();

  explicit PictureCache(size_t budget = limits::kPictureCacheBytes) : budget_(budget) {}
  /// A copy of a document starts with nothing.
  PictureCache(const PictureCache& other) : PictureCache(other.budget_) {}
  PictureCache& operator=(const PictureCache& other) { return *this = PictureCache(other); }
  PictureCache(PictureCache&&) = default;
  PictureCache& operator=(PictureCache&&) = default;

  /// Null when nothing is kept for the key.
  std::shared_ptr<const void> find(const PictureKey& key);

  enum class Keep : uint8_t { always, whenRepeated };
  /// Keeps what was made, or with whenRepeated only notes the key the first time: most pictures are
  /// shown once, and need no memory afterwards. `cost` is in bytes; what costs more than the budget
  /// is not kept.
  void add(const PictureKey& key, std::shared_ptr<const void> made, size_t cost, Keep keep);

  size_t cost() const { return cost_; }

 private:
  struct Entry {
    PictureKey key;
    size_t hash = 0;
    std::shared_ptr<const void> made;  ///< null for a key that is only noted
    size_t cost = 0;
  };
  using Entries = std::list<Entry>;

  /// The end of the list when the key is not known.
  Entries::iterator entryOf(const PictureKey& key, size_t hash);
  void remove(Entries::iterator entry);

  size_t budget_;
  size_t cost_ = 0;
  Entries entries_;  ///< the one used last comes first
  std::unordered_multimap<size_t, Entries::iterator> byHash_;
};

/// Makes a cache current for the length of a scope.
class PictureCacheScope {
 public:
  explicit PictureCacheScope(PictureCache& cache);
  PictureCacheScope(const PictureCacheScope&) = delete;
  PictureCacheScope& operator=(const PictureCacheScope&) = delete;
  ~PictureCacheScope();

 private:
  PictureCache* outer_;
};

/// What `make` makes, or what the current cache keeps for the key. `costOf` tells the bytes
/// of what was made. A null pointer is not remembered.
template <class T, class Make, class CostOf>
std::shared_ptr<T> remembered(const PictureKey& key, PictureCache::Keep keep, Make make,
                              CostOf costOf) {
  PictureCache* const cache = PictureCache::current();
  if (cache == nullptr) return make();
  if (auto known = cache->find(key)) {
    return std::const_pointer_cast<T>(std::static_pointer_cast<const T>(std::move(known)));
  }
  std::shared_ptr<T> made = make();
  if (made != nullptr) cache->add(key, made, costOf(*made), keep);
  return made;
}
