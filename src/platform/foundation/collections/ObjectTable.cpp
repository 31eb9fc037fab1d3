#include "platform/foundation/collections/ObjectTable.h"

#include <bit>
#include <utility>

#include "platform/foundation/values/NSString.h"

namespace {

constexpr size_t kSearchedOneByOne = 8;

}  // namespace

template <class Matches>
size_t ObjectTable::search(size_t hash, Matches matches) const {
  const auto isAt = [&](size_t i) { return hashes_[i] == hash && matches(*objects_[i]); };
  if (slots_.empty()) {
    for (size_t i = 0; i < objects_.size(); ++i) {
      if (isAt(i)) return i;
    }
    return kNotFound;
  }
  const size_t mask = slots_.size() - 1;
  for (size_t slot = hash & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
    if (isAt(slots_[slot] - 1)) return slots_[slot] - 1;
  }
  return kNotFound;
}

size_t ObjectTable::find(const NSObject& object) const {
  return search(object.hash(), [&](const NSObject& o) { return o.isEqual(object); });
}

size_t ObjectTable::find(std::string_view text) const {
  return search(NSString::hashOf(text), [&](const NSObject& o) {
    const auto* string = dynamic_cast<const NSString*>(&o);
    return string != nullptr && string->string() == text;
  });
}

size_t ObjectTable::insert(std::shared_ptr<NSObject> object) {
  if (const size_t found = find(*object); found != kNotFound) return found;
  hashes_.push_back(object->hash());
  objects_.push_back(std::move(object));
  if (objects_.size() > kSearchedOneByOne && 2 * objects_.size() > slots_.size()) {
    rebuildIndex();
  } else if (!slots_.empty()) {
    index(objects_.size() - 1);
  }
  return objects_.size() - 1;
}

void ObjectTable::erase(size_t position) {
  objects_.erase(objects_.begin() + static_cast<std::ptrdiff_t>(position));
  hashes_.erase(hashes_.begin() + static_cast<std::ptrdiff_t>(position));
  if (!slots_.empty()) rebuildIndex();
}

void ObjectTable::index(size_t position) {
  const size_t mask = slots_.size() - 1;
  size_t slot = hashes_[position] & mask;
  while (slots_[slot] != 0) slot = (slot + 1) & mask;
  slots_[slot] = static_cast<uint32_t>(position + 1);
}

void ObjectTable::rebuildIndex() {
  slots_.assign(std::bit_ceil(4 * objects_.size()), 0);
  for (size_t i = 0; i < objects_.size(); ++i) index(i);
}
