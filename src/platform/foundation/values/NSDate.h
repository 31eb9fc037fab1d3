#pragma once

#include <memory>

#include "platform/foundation/NSObject.h"

/// A point in time.
class NSDate : public NSObject {
 public:
  static const NSClass kClass;
  /// Seconds from 1970-01-01 to the reference date 2001-01-01, both 00:00 UTC.
  static constexpr double kIntervalBetween1970AndReferenceDate = 978307200;

  NSDate() = default;
  static std::shared_ptr<NSDate> dateWithTimeIntervalSinceReferenceDate(double seconds);
  static std::shared_ptr<NSDate> dateWithTimeIntervalSince1970(double seconds);

  double timeIntervalSince1970() const { return seconds_ + kIntervalBetween1970AndReferenceDate; }

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  double seconds_ = 0;
};
