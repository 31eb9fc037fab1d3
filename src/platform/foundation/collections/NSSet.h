#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/foundation/NSObject.h"
#include "platform/foundation/collections/ObjectTable.h"

/// Distinct objects. Enumerated in the order in which they were added.
class NSSet : public NSObject {
 public:
  static const NSClass kClass;

  NSSet() = default;
  explicit NSSet(const std::vector<std::shared_ptr<NSObject>>& objects);

  size_t count() const { return table_.count(); }
  const std::vector<std::shared_ptr<NSObject>>& allObjects() const { return table_.objects(); }
  bool containsObject(const NSObject& object) const {
    return table_.find(object) != ObjectTable::kNotFound;
  }

  const NSClass& classInfo() const override { return kClass; }
  /// As for arrays: nil with a nil element, without references to objects still being decoded.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  ObjectTable table_;
};

class NSMutableSet : public NSSet {
 public:
  static const NSClass kClass;
  using NSSet::NSSet;

  /// Throws NSException (NSInvalidArgumentException) for null.
  void addObject(std::shared_ptr<NSObject> object);
  void removeObject(const NSObject& object);

  const NSClass& classInfo() const override { return kClass; }
};

/// Distinct objects in an order that matters.
class NSOrderedSet : public NSObject {
 public:
  static const NSClass kClass;

  NSOrderedSet() = default;
  explicit NSOrderedSet(const std::vector<std::shared_ptr<NSObject>>& objects);

  size_t count() const { return table_.count(); }
  const std::vector<std::shared_ptr<NSObject>>& objects() const { return table_.objects(); }

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  ObjectTable table_;
};
