#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/NSObject.h"

/// A text, kept as UTF-8 (see Unicode.h for surrogates without a partner).
class NSString : public NSObject {
 public:
  static const NSClass kClass;

  NSString() = default;
  explicit NSString(std::string utf8) : utf8_(std::move(utf8)) {}

  static std::shared_ptr<NSString> stringWithString(std::string_view utf8) {
    return std::make_shared<NSString>(std::string(utf8));
  }

  const std::string& string() const { return utf8_; }
  /// Number of UTF-16 units, in which the platform counts ranges of text.
  size_t length() const;

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override { return hashOf(utf8_); }
  static size_t hashOf(std::string_view utf8) { return std::hash<std::string_view>{}(utf8); }
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::string utf8_;
};

class NSMutableString : public NSString {
 public:
  static const NSClass kClass;
  using NSString::NSString;

  const NSClass& classInfo() const override { return kClass; }
};
