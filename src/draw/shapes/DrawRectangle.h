#pragma once

#include "draw/core/DrawBase.h"

/// Root of the draws whose outline comes from one axis-aligned rectangle. A document stores the
/// outline itself; it is rebuilt only when bounds or a parameter are set.
class DrawRectangle : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  void init() override;
  bool classDrawBezierPathFill() const override { return classDrawBezierPath(); }
  std::string name() const override { return "Rectangle"; }

  /// A new path with the settings of the draw's own and the outline for a rectangle, whose sides
  /// count as at least 1.
  virtual std::shared_ptr<NSBezierPath> bezierPathWithBounds(NSRect bounds) const;
  /// Gives the draw's own path that outline.
  virtual void setBezierPathWithBounds(NSRect bounds);

  virtual NSRect controlBoundsBeforeRotation() const { return pathBounds(); }
  /// Bounds of the turned rectangle; zero without a path.
  NSRect controlBounds() const;
  NSPoint rotateCenter() const override;

  // ---- For editors.
  virtual CGFloat width2HeightRatioForShift() const { return 1; }
  virtual bool startFromCenterWhenCreating() const { return false; }
  virtual bool acceptMouseMoveEventWhenInitDraw() const { return false; }
  /// Whether the draw shows knobs to be resized by; not archived.
  bool hasResizeControlKnob() const { return hasResizeControlKnob_; }
  void setHasResizeControlKnob(bool on) { hasResizeControlKnob_ = on; }

 protected:
  /// Appends the outline of the class for a rectangle of at least 1 by 1.
  virtual void appendOutline(NSBezierPath& path, const NSRect& bounds) const;

 private:
  bool hasResizeControlKnob_ = true;
};

class DrawRoundRectangle : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Round Rectangle"; }

  float xRadius() const { return fXRadius_; }
  float yRadius() const { return fYRadius_; }
  /// Ignored when either is negative; rebuilds the outline of a path that is not empty.
  void setXRadius(float xRadius, float yRadius);
  bool hasRadiusControlKnob() const { return true; }

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void appendOutline(NSBezierPath& path, const NSRect& bounds) const override;
  void mapGeometry(const AxisMap& map) override;

  float fXRadius_ = 0;
  float fYRadius_ = 0;
};

class DrawEllipse : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  void init() override;
  std::string name() const override { return "Ellipse"; }
  /// Caps are round whatever the archived path says.
  bool initWithCoder(NSCoder& coder) override;

 protected:
  void appendOutline(NSBezierPath& path, const NSRect& bounds) const override;
};

/// A rectangle filled with a gradient, never stroked.
class DrawGradient : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  void init() override;
  bool classDrawStroke() const override { return false; }
  std::string name() const override { return "Gradient"; }

  /// Cannot be switched off.
  void setUseGradualFill(bool) override { bFillWithGdt_ = true; }
  /// Null is ignored.
  void setFillGradient(std::shared_ptr<NSGradient> gradient) override;
  bool initWithCoder(NSCoder& coder) override;
};
