#include "platform/foundation/collections/NSArray.h"

#include <string>

#include "platform/foundation/NSException.h"
#include "platform/foundation/collections/CollectionCoding.h"

namespace {

void requireIndex(bool valid, size_t index) {
  if (!valid) {
    throw NSException(NSRangeException, "index " + std::to_string(index) + " beyond the array");
  }
}

std::shared_ptr<NSObject> required(std::shared_ptr<NSObject> object) {
  if (object == nullptr) throw NSException(NSInvalidArgumentException, "nil in an array");
  return object;
}

}  // namespace

const NSClass NSArray::kClass{"NSArray", &NSObject::kClass, NSAllocate<NSArray>};
const NSClass NSMutableArray::kClass{"NSMutableArray", &NSArray::kClass,
                                     NSAllocate<NSMutableArray>};

NSArray::NSArray(Objects objects) : objects_(std::move(objects)) {
  for (const auto& object : objects_) required(object);
}

const std::shared_ptr<NSObject>& NSArray::objectAtIndex(size_t index) const {
  requireIndex(index < objects_.size(), index);
  return objects_[index];
}

bool NSArray::initWithCoder(NSCoder& coder) {
  auto objects = decodeElements(coder, "NS.objects", "NS.object.");
  if (!objects) return false;
  std::erase(*objects, nullptr);
  objects_ = *std::move(objects);
  return true;
}

void NSArray::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObjects(objects_, "NS.objects");
}

void NSMutableArray::addObject(std::shared_ptr<NSObject> object) {
  objects_.push_back(required(std::move(object)));
}

void NSMutableArray::insertObject(std::shared_ptr<NSObject> object, size_t atIndex) {
  requireIndex(atIndex <= objects_.size(), atIndex);
  objects_.insert(objects_.begin() + static_cast<std::ptrdiff_t>(atIndex),
                  required(std::move(object)));
}

void NSMutableArray::replaceObjectAtIndex(size_t index, std::shared_ptr<NSObject> withObject) {
  requireIndex(index < objects_.size(), index);
  objects_[index] = required(std::move(withObject));
}

void NSMutableArray::removeObjectAtIndex(size_t index) {
  requireIndex(index < objects_.size(), index);
  objects_.erase(objects_.begin() + static_cast<std::ptrdiff_t>(index));
}
