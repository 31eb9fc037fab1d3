#include "platform/foundation/collections/NSSet.h"

#include <utility>

#include "platform/foundation/NSException.h"
#include "platform/foundation/collections/CollectionCoding.h"

namespace {

void addAll(ObjectTable& table, const std::vector<std::shared_ptr<NSObject>>& objects) {
  for (const auto& object : objects) {
    if (object == nullptr) throw NSException(NSInvalidArgumentException, "nil in a set");
    table.insert(object);
  }
}

bool decodeTable(NSCoder& coder, ObjectTable& table) {
  auto objects = decodeElements(coder, "NS.objects", "NS.object.");
  if (!objects) return false;
  std::erase(*objects, nullptr);
  addAll(table, *objects);
  return true;
}

}  // namespace

const NSClass NSSet::kClass{"NSSet", &NSObject::kClass, NSAllocate<NSSet>};
const NSClass NSMutableSet::kClass{"NSMutableSet", &NSSet::kClass, NSAllocate<NSMutableSet>};
const NSClass NSOrderedSet::kClass{"NSOrderedSet", &NSObject::kClass, NSAllocate<NSOrderedSet>};

NSSet::NSSet(const std::vector<std::shared_ptr<NSObject>>& objects) {
  addAll(table_, objects);
}

bool NSSet::initWithCoder(NSCoder& coder) {
  return decodeTable(coder, table_);
}

void NSSet::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObjects(allObjects(), "NS.objects");
}

void NSMutableSet::addObject(std::shared_ptr<NSObject> object) {
  if (object == nullptr) throw NSException(NSInvalidArgumentException, "nil in a set");
  table_.insert(std::move(object));
}

void NSMutableSet::removeObject(const NSObject& object) {
  if (const size_t found = table_.find(object); found != ObjectTable::kNotFound) {
    table_.erase(found);
  }
}

NSOrderedSet::NSOrderedSet(const std::vector<std::shared_ptr<NSObject>>& objects) {
  addAll(table_, objects);
}

bool NSOrderedSet::initWithCoder(NSCoder& coder) {
  return decodeTable(coder, table_);
}

void NSOrderedSet::encodeWithCoder(NSCoder& coder) const {
  encodeNumberedElements(coder, objects(), "NS.object.");
}
