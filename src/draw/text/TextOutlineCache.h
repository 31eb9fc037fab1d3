#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"

/// The "text outline cache": bitmaps of text outlines by the hash of the draw that they belong to.
/// When the bitmaps together cost more than the limit (4 for each pixel), those that were not used
/// for longest go. Shared by all threads.
class TextOutlineCache {
 public:
  static constexpr size_t kTotalCostLimit = 524288000;

  /// The cache of this process.
  static TextOutlineCache& shared();

  explicit TextOutlineCache(size_t totalCostLimit = kTotalCostLimit) : limit_(totalCostLimit) {}

  std::shared_ptr<NSBitmapImageRep> objectForKey(size_t key);
  /// A bitmap that costs more than the limit by itself is not kept.
  void setObject(std::shared_ptr<NSBitmapImageRep> bitmap, size_t forKey);
  void removeObjectForKey(size_t key);

 private:
  struct Entry {
    size_t key;
    std::shared_ptr<NSBitmapImageRep> bitmap;
  };
  using Entries = std::list<Entry>;

  void remove(Entries::iterator entry);

  const size_t limit_;
  std::mutex mutex_;  // of what follows
  Entries entries_;   ///< those used last in front
  std::unordered_map<size_t, Entries::iterator> byKey_;
  size_t cost_ = 0;
};
