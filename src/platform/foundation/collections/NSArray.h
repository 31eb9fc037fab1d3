#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "platform/foundation/NSObject.h"

/// A list of objects, none of them null.
class NSArray : public NSObject {
 public:
  using Objects = std::vector<std::shared_ptr<NSObject>>;
  static const NSClass kClass;

  NSArray() = default;
  /// Throws NSException (NSInvalidArgumentException) when an object is null.
  explicit NSArray(Objects objects);

  static std::shared_ptr<NSArray> arrayWithObjects(Objects objects) {
    return std::make_shared<NSArray>(std::move(objects));
  }

  size_t count() const { return objects_.size(); }
  Objects::const_iterator begin() const { return objects_.begin(); }
  Objects::const_iterator end() const { return objects_.end(); }
  /// Throws NSException (NSRangeException) beyond the end.
  const std::shared_ptr<NSObject>& objectAtIndex(size_t index) const;

  const NSClass& classInfo() const override { return kClass; }
  /// Nil as a whole when an element is nil. References to objects still being decoded are left
  /// out: they lead back to an owner of this array.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  Objects objects_;
};

class NSMutableArray : public NSArray {
 public:
  static const NSClass kClass;
  using NSArray::NSArray;

  // Indices beyond the end throw NSRangeException, null objects NSInvalidArgumentException.
  void addObject(std::shared_ptr<NSObject> object);
  void insertObject(std::shared_ptr<NSObject> object, size_t atIndex);
  void replaceObjectAtIndex(size_t index, std::shared_ptr<NSObject> withObject);
  void removeObjectAtIndex(size_t index);
  void removeAllObjects() { objects_.clear(); }

  const NSClass& classInfo() const override { return kClass; }
};
