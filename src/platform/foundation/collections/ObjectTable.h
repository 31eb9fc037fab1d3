#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/foundation/NSObject.h"

/// Distinct objects in the order in which they came, found by equality: what sets and the keys of
/// dictionaries are made of. Small tables are searched one by one, larger ones by hash.
class ObjectTable {
 public:
  static constexpr size_t kNotFound = SIZE_MAX;

  const std::vector<std::shared_ptr<NSObject>>& objects() const { return objects_; }
  size_t count() const { return objects_.size(); }

  /// Position of an object equal to this one, or kNotFound.
  size_t find(const NSObject& object) const;
  /// Position of the string of that text, or kNotFound.
  size_t find(std::string_view text) const;
  /// Adds an object; when an equal one is there already that one stays. Answers the position.
  size_t insert(std::shared_ptr<NSObject> object);
  /// Later objects move down by one.
  void erase(size_t position);

 private:
  template <class Matches>
  size_t search(size_t hash, Matches matches) const;
  void index(size_t position);
  void rebuildIndex();

  std::vector<std::shared_ptr<NSObject>> objects_;
  std::vector<size_t> hashes_;
  // Open addressing, a power of two at most half full; positions plus one, 0 for free. Empty
  // while the table is small.
  std::vector<uint32_t> slots_;
};
