#pragma once

#include "draw/shapes/DrawRectangle.h"

struct FixedOutline;

/// Root of the preset shapes: draws whose outline is generated in a control rectangle, which is
/// archived beside the outline. Documents are drawn from the archived outline; setting the bounds
/// or a parameter rebuilds it.
class DrawRectShape : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Shape"; }

  /// Stores the rectangle as given and rebuilds the outline in it.
  void setBezierPathWithBounds(NSRect bounds) override;
  /// The box, as an NSValue: a preset shape is remembered by its box, not by its path.
  std::shared_ptr<NSObject> bezierPathData() const override;
  /// Takes an NSValue of a rectangle, null for the zero rectangle; ignores other objects.
  void setBezierPathWithData(const std::shared_ptr<NSObject>& data) override;

  NSRect controlBoundsBeforeRotation() const override { return rectControlBounds_; }
  void init() override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void mapGeometry(const AxisMap& map) override;
  void rebuildOutline() { setBezierPathWithBounds(rectControlBounds_); }

  /// The box that the outline is generated in, before rotation.
  NSRect rectControlBounds_;
};

/// A regular polygon, spread along the long axis of a flat box.
class DrawRectPolygon : public DrawRectShape {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override;

  int64_t pointsCount() const { return dPoints_; }
  /// Counts below 4 become 3; a new count rebuilds the outline.
  void setPointsCount(int64_t count);

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void appendOutline(NSBezierPath& path, const NSRect& bounds) const override;

 private:
  int64_t dPoints_ = 6;
};

/// A five-pointed star.
class DrawRectStar : public DrawRectShape {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Star"; }

  /// Size of the inner ellipse as fractions of the box.
  NSSize innerSize() const { return sizeInner_; }
  /// Rebuilds the outline.
  void setInnerSize(NSSize fractions);
  /// Size of the inner ellipse in a box. An axis that would be longer than the box or shorter than
  /// 1 is 0.4 of the box instead.
  NSSize effectiveInnerSizeWithControlSize(NSSize box) const;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void appendOutline(NSBezierPath& path, const NSRect& bounds) const override;

 private:
  NSSize sizeInner_;
};

/// One of the pictograms. All of them are this class to the compiler; archives tell them apart by
/// the class name that the outline's table gives.
class DrawFixedShape : public DrawRectShape {
 public:
  /// `index` in fixedOutlines().
  explicit DrawFixedShape(size_t index) : index_(index) {}
  /// The archived class of the pictogram at `index`.
  static const NSClass& classAt(size_t index);

  const NSClass& classInfo() const override { return classAt(index_); }
  std::string name() const override;
  CGFloat width2HeightRatioForShift() const override;

 protected:
  void appendOutline(NSBezierPath& path, const NSRect& bounds) const override;

 private:
  const FixedOutline& outline() const;

  size_t index_;
};
