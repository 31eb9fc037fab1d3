#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/NSObject.h"
#include "platform/foundation/collections/ObjectTable.h"

/// Objects by key. Enumerated in the order in which the keys were added.
class NSDictionary : public NSObject {
 public:
  using Pair = std::pair<std::shared_ptr<NSObject>, std::shared_ptr<NSObject>>;
  static const NSClass kClass;

  NSDictionary() = default;
  /// Of equal keys the first counts. Throws NSException (NSInvalidArgumentException) for null.
  explicit NSDictionary(const std::vector<Pair>& pairs);

  size_t count() const { return keys_.count(); }
  /// Keys and values correspond by position.
  const std::vector<std::shared_ptr<NSObject>>& allKeys() const { return keys_.objects(); }
  const std::vector<std::shared_ptr<NSObject>>& allValues() const { return values_; }
  /// The value, or null when the key is not there.
  std::shared_ptr<NSObject> objectForKey(const NSObject& key) const;
  std::shared_ptr<NSObject> objectForKey(std::string_view key) const;
  /// The value when it is a T, else null.
  template <class T>
  std::shared_ptr<T> objectOfClass(std::string_view key) const {
    return std::dynamic_pointer_cast<T>(objectForKey(key));
  }

  const NSClass& classInfo() const override { return kClass; }
  /// Nil as a whole when a key or value is nil. A pair with an object that is still being decoded
  /// is left out; when there are more keys than values or the reverse, the shorter count holds.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  /// Answers false and changes nothing when the key is there.
  bool add(const std::shared_ptr<NSObject>& key, const std::shared_ptr<NSObject>& value);

  ObjectTable keys_;
  std::vector<std::shared_ptr<NSObject>> values_;
};

class NSMutableDictionary : public NSDictionary {
 public:
  static const NSClass kClass;
  using NSDictionary::NSDictionary;
  /// A dictionary with the same pairs, to be changed.
  explicit NSMutableDictionary(const NSDictionary& other) : NSDictionary(other) {}

  /// Replaces the value of an equal key. Throws NSException (NSInvalidArgumentException) for null.
  void setObject(std::shared_ptr<NSObject> object, const std::shared_ptr<NSObject>& forKey);
  void setObject(std::shared_ptr<NSObject> object, std::string_view forKey);
  void removeObjectForKey(const NSObject& key);

  const NSClass& classInfo() const override { return kClass; }
};
