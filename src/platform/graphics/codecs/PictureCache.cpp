#include "platform/graphics/codecs/PictureCache.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <string_view>

namespace {

thread_local PictureCache* gCurrent = nullptr;

/// Of few bytes from all over the data, so that large pictures cost no more than small ones.
size_t hashOf(const PictureKey& key) {
  constexpr size_t kPieces = 16;
  constexpr size_t kPieceBytes = 64;
  const std::string_view bytes(reinterpret_cast<const char*>(key.bytes.data()), key.bytes.size());
  size_t hash = bytes.size() * 4 + static_cast<size_t>(key.kind);
  const auto mix = [&hash](size_t value) { hash = hash * 0x9E3779B97F4A7C15 + value; };
  for (const int64_t number : key.numbers) mix(static_cast<size_t>(number));
  const size_t step = std::max(bytes.size() / kPieces, kPieceBytes);
  for (size_t at = 0; at < bytes.size(); at += step) {
    mix(std::hash<std::string_view>()(bytes.substr(at, kPieceBytes)));
  }
  return hash;
}

}  // namespace

bool PictureKey::operator==(const PictureKey& other) const {
  if (kind != other.kind || numbers != other.numbers || bytes.size() != other.bytes.size()) {
    return false;
  }
  return bytes.data() == other.bytes.data() || bytes.empty() ||
         std::memcmp(bytes.data(), other.bytes.data(), bytes.size()) == 0;
}

PictureCache* PictureCache::current() {
  return gCurrent;
}

PictureCache::Entries::iterator PictureCache::entryOf(const PictureKey& key, size_t hash) {
  // Files can be made to have equal hashes; comparing all of them would take as long as one likes.
  constexpr int kMostCompared = 8;
  const auto [first, end] = byHash_.equal_range(hash);
  int compared = 0;
  for (auto found = first; found != end && compared < kMostCompared; ++found, ++compared) {
    if (found->second->key == key) return found->second;
  }
  return entries_.end();
}

std::shared_ptr<const void> PictureCache::find(const PictureKey& key) {
  const auto entry = entryOf(key, hashOf(key));
  if (entry == entries_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, entry);
  return entry->made;
}

void PictureCache::add(const PictureKey& key, std::shared_ptr<const void> made, size_t cost,
                       Keep keep) {
  const size_t hash = hashOf(key);
  const auto known = entryOf(key, hash);
  const bool isKept = (keep == Keep::always || known != entries_.end()) && cost <= budget_;
  if (!isKept && known != entries_.end()) return;
  Entries entry;
  entry.push_back(
      {key, hash, isKept ? std::move(made) : nullptr, sizeof(Entry) + (isKept ? cost : 0)});
  byHash_.emplace(hash, entry.begin());
  entries_.splice(entries_.begin(), entry);
  cost_ += entries_.front().cost;
  if (known != entries_.end()) remove(known);
  while (cost_ > budget_ && entries_.size() > 1) remove(std::prev(entries_.end()));
}

void PictureCache::remove(Entries::iterator entry) {
  const auto [first, end] = byHash_.equal_range(entry->hash);
  byHash_.erase(std::find_if(first, end, [&](const auto& pair) { return pair.second == entry; }));
  cost_ -= entry->cost;
  entries_.erase(entry);
}

PictureCacheScope::PictureCacheScope(PictureCache& cache)
    : outer_(std::exchange(gCurrent, &cache)) {}

PictureCacheScope::~PictureCacheScope() {
  gCurrent = outer_;
}
