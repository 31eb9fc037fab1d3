#pragma once

#include <memory>
#include <utility>
#include <variant>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

/// A geometric value as an object.
class NSValue : public NSObject {
 public:
  using Content = std::variant<NSPoint, NSSize, NSRect, NSRange, CGAffineTransform>;
  static const NSClass kClass;

  NSValue() = default;
  explicit NSValue(const Content& content) : content_(content) {}

  static std::shared_ptr<NSValue> valueWithPoint(const NSPoint& point);
  static std::shared_ptr<NSValue> valueWithSize(const NSSize& size);
  static std::shared_ptr<NSValue> valueWithRect(const NSRect& rect);
  static std::shared_ptr<NSValue> valueWithRange(const NSRange& range);

  // Zero when the value is of another type.
  NSPoint pointValue() const { return get<NSPoint>(); }
  NSSize sizeValue() const { return get<NSSize>(); }
  NSRect rectValue() const { return get<NSRect>(); }
  NSRange rangeValue() const { return get<NSRange>(); }
  const Content& content() const { return content_; }

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  /// Answers false for types that are not known here.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  template <class T>
  T get() const {
    const T* value = std::get_if<T>(&content_);
    return value != nullptr ? *value : T{};
  }

  Content content_;
};
