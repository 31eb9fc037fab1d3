#pragma once

#include <memory>
#include <utility>

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSNumber.h"

/// Whether two attribute dictionaries say the same; the class names they come from play no part.
/// Null counts as empty.
bool IsEqualDrawAttributes(const NSDictionary* a, const NSDictionary* b);

/// Builds an attribute dictionary key by key; null objects are left out.
class AttributeWriter {
 public:
  AttributeWriter() : dictionary_(std::make_shared<NSMutableDictionary>()) {}
  /// Starts with the pairs of another dictionary.
  explicit AttributeWriter(const NSDictionary& base)
      : dictionary_(std::make_shared<NSMutableDictionary>(base)) {}
  void put(const char* key, std::shared_ptr<NSObject> value) {
    if (value != nullptr) dictionary_->setObject(std::move(value), key);
  }
  void put(const char* key, bool value) { put(key, NSNumber::numberWithBool(value)); }
  void put(const char* key, float value) { put(key, NSNumber::numberWithFloat(value)); }
  std::shared_ptr<NSDictionary> take() { return std::move(dictionary_); }

 private:
  std::shared_ptr<NSMutableDictionary> dictionary_;
};

/// Reads an attribute dictionary key by key: a setter is called when the key holds a value of the
/// right kind.
class AttributeReader {
 public:
  explicit AttributeReader(const NSDictionary& dictionary) : dictionary_(dictionary) {}

  template <class T, class Set>
  void object(const char* key, Set set) {
    if (auto value = dictionary_.objectOfClass<T>(key)) {
      set(value);
      applied_ = true;
    }
  }
  template <class Set>
  void number(const char* key, Set set) {
    object<NSNumber>(key, [&](const auto& n) { set(*n); });
  }
  template <class Set>
  void boolean(const char* key, Set set) {
    number(key, [&](const NSNumber& n) { set(n.boolValue()); });
  }
  /// Whether any key was there.
  bool applied() const { return applied_; }

 private:
  const NSDictionary& dictionary_;
  bool applied_ = false;
};
