#pragma once

#include <memory>

#include "platform/foundation/NSObject.h"

/// Stands for nothing inside collections, which cannot hold nil.
class NSNull : public NSObject {
 public:
  static const NSClass kClass;
  static const std::shared_ptr<NSNull>& null();

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override { return other.isKindOfClass(kClass); }
  size_t hash() const override { return 0; }
};
