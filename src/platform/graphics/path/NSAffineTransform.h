#pragma once

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

/// An affine map of the plane, copied like a value. The modifying calls prepend: the last call is
/// the first to be applied to a point, as with a graphics context's transform.
class NSAffineTransform final : public NSObject {
 public:
  static const NSClass kClass;

  NSAffineTransform() = default;
  explicit NSAffineTransform(const CGAffineTransform& t) : t_(t) {}
  const NSClass& classInfo() const override { return kClass; }

  const CGAffineTransform& transformStruct() const { return t_; }
  bool isIdentity() const { return t_ == CGAffineTransform{}; }

  void translateXBy(CGFloat dx, CGFloat dy);
  void scaleXBy(CGFloat sx, CGFloat sy);
  /// Counter-clockwise for positive angles. Multiples of 90 degrees are exact.
  void rotateByDegrees(CGFloat degrees);
  void appendTransform(const NSAffineTransform& other);
  /// Becomes its inverse; a singular transform stays as it is.
  void invert() { t_ = CGAffineTransformInvert(t_); }

  NSPoint transformPoint(const NSPoint& p) const { return CGPointApplyAffineTransform(p, t_); }

  /// Archived as big-endian floats under "NSTransformStruct": 24 bytes, or a short form.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  CGAffineTransform t_;
};
