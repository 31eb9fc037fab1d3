#include "platform/foundation/collections/NSDictionary.h"

#include <algorithm>

#include "platform/foundation/NSException.h"
#include "platform/foundation/collections/CollectionCoding.h"
#include "platform/foundation/values/NSString.h"

namespace {

void requireObject(const std::shared_ptr<NSObject>& object) {
  if (object == nullptr) throw NSException(NSInvalidArgumentException, "nil in a dictionary");
}

}  // namespace

const NSClass NSDictionary::kClass{"NSDictionary", &NSObject::kClass, NSAllocate<NSDictionary>};
const NSClass NSMutableDictionary::kClass{"NSMutableDictionary", &NSDictionary::kClass,
                                          NSAllocate<NSMutableDictionary>};

NSDictionary::NSDictionary(const std::vector<Pair>& pairs) {
  for (const auto& [key, value] : pairs) {
    requireObject(key);
    requireObject(value);
    add(key, value);
  }
}

bool NSDictionary::add(const std::shared_ptr<NSObject>& key,
                       const std::shared_ptr<NSObject>& value) {
  if (keys_.insert(key) != values_.size()) return false;
  values_.push_back(value);
  return true;
}

std::shared_ptr<NSObject> NSDictionary::objectForKey(const NSObject& key) const {
  const size_t found = keys_.find(key);
  return found == ObjectTable::kNotFound ? nullptr : values_[found];
}

std::shared_ptr<NSObject> NSDictionary::objectForKey(std::string_view key) const {
  const size_t found = keys_.find(key);
  return found == ObjectTable::kNotFound ? nullptr : values_[found];
}

bool NSDictionary::initWithCoder(NSCoder& coder) {
  const auto keys = decodeElements(coder, "NS.keys", "NS.key.");
  const auto values = decodeElements(coder, "NS.objects", "NS.object.");
  if (!keys || !values) return false;
  const size_t count = std::min(keys->size(), values->size());
  for (size_t i = 0; i < count; ++i) {
    if ((*keys)[i] != nullptr && (*values)[i] != nullptr) add((*keys)[i], (*values)[i]);
  }
  return true;
}

void NSDictionary::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObjects(allKeys(), "NS.keys");
  coder.encodeObjects(values_, "NS.objects");
}

void NSMutableDictionary::setObject(std::shared_ptr<NSObject> object,
                                    const std::shared_ptr<NSObject>& forKey) {
  requireObject(object);
  requireObject(forKey);
  const size_t position = keys_.insert(forKey);
  if (position == values_.size()) values_.emplace_back();
  values_[position] = std::move(object);
}

void NSMutableDictionary::setObject(std::shared_ptr<NSObject> object, std::string_view forKey) {
  setObject(std::move(object), NSString::stringWithString(forKey));
}

void NSMutableDictionary::removeObjectForKey(const NSObject& key) {
  const size_t found = keys_.find(key);
  if (found == ObjectTable::kNotFound) return;
  keys_.erase(found);
  values_.erase(values_.begin() + static_cast<std::ptrdiff_t>(found));
}
