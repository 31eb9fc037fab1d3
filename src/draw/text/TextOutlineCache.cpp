#include "draw/text/TextOutlineCache.h"

#include <iterator>
#include <utility>

#include "platform/graphics/bitmap/EncodedBitmap.h"

TextOutlineCache& TextOutlineCache::shared() {
  // Never destroyed: draws that outlive it would still take their entries out.
  static TextOutlineCache& cache = *new TextOutlineCache;
  return cache;
}

std::shared_ptr<NSBitmapImageRep> TextOutlineCache::objectForKey(size_t key) {
  const std::lock_guard lock(mutex_);
  const auto found = byKey_.find(key);
  if (found == byKey_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->bitmap;
}

void TextOutlineCache::setObject(std::shared_ptr<NSBitmapImageRep> bitmap, size_t forKey) {
  const std::lock_guard lock(mutex_);
  if (const auto old = byKey_.find(forKey); old != byKey_.end()) remove(old->second);
  Entries entry;
  entry.push_front({forKey, std::move(bitmap)});
  byKey_[forKey] = entry.begin();
  entries_.splice(entries_.begin(), entry);
  cost_ += pixelBytes(*entries_.front().bitmap);
  while (cost_ > limit_) remove(std::prev(entries_.end()));
}

void TextOutlineCache::removeObjectForKey(size_t key) {
  const std::lock_guard lock(mutex_);
  if (const auto found = byKey_.find(key); found != byKey_.end()) remove(found->second);
}

void TextOutlineCache::remove(Entries::iterator entry) {
  cost_ -= pixelBytes(*entry->bitmap);
  byKey_.erase(entry->key);
  entries_.erase(entry);
}
