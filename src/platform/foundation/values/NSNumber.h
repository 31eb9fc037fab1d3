#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/NSObject.h"

/// A number that remembers which kind it was made as, so that it is written as it was read.
class NSNumber : public NSObject {
 public:
  static const NSClass kClass;
  enum class Kind : uint8_t { kBool, kInteger, kUnsigned, kFloat, kDouble };

  NSNumber() = default;

  static std::shared_ptr<NSNumber> numberWithBool(bool value);
  static std::shared_ptr<NSNumber> numberWithInteger(int64_t value);
  static std::shared_ptr<NSNumber> numberWithUnsignedInteger(uint64_t value);
  static std::shared_ptr<NSNumber> numberWithFloat(float value);
  static std::shared_ptr<NSNumber> numberWithDouble(double value);

  /// kUnsigned only for integers that int64_t cannot hold.
  Kind kind() const { return kind_; }
  bool isReal() const { return kind_ == Kind::kFloat || kind_ == Kind::kDouble; }

  bool boolValue() const;
  /// Reals are truncated toward zero and clamped to the range, NaN is 0.
  int64_t integerValue() const;
  uint64_t unsignedIntegerValue() const;
  float floatValue() const;
  double doubleValue() const;

  const NSClass& classInfo() const override { return kClass; }
  /// Numbers are equal when their values are, whatever their kinds.
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  bool initWithCoder(NSCoder& coder) override;

 private:
  Kind kind_ = Kind::kInteger;
  uint64_t bits_ = 0;
  double real_ = 0;
};
