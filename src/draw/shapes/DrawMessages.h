#pragma once

#include "draw/shapes/DrawRectShape.h"

/// A speech bubble: a rounded box with a tail. Whatever its parameters, the outline is one simple
/// closed polygon.
class DrawRectMessage : public DrawRectShape {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Message"; }

  /// Where the parameters put the outline in a box.
  struct Layout {
    NSPoint arrow;
    /// Where the tail leaves the rounded box; the outline runs counter-clockwise from A to B.
    NSPoint arrowA;
    NSPoint arrowB;
    float radius = 0;
    NSPoint radiusKnob;
  };
  /// Base points are moved to where the tail can reach them: onto the outline, clear of the
  /// corners where there is room, at a distance from each other, on the side that faces the tip.
  Layout getArrowPoint(const NSRect& withBounds) const;

  /// Corner radius as a fraction of the box's height.
  float radius() const { return fRadius_; }
  /// Offsets from the box's origin.
  NSPoint arrow() const { return ptArrow_; }
  NSPoint arrowA() const { return ptArrowA_; }
  NSPoint arrowB() const { return ptArrowB_; }
  /// Each rebuilds the outline.
  void setRadius(float fraction);
  void setArrow(NSPoint tip, NSPoint a, NSPoint b);

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void appendOutline(NSBezierPath& path, const NSRect& bounds) const override;
  void mapGeometry(const AxisMap& map) override;

 private:
  float fRadius_ = 0.2F;
  NSPoint ptArrow_{10, -30};
  NSPoint ptArrowA_{20, 0};
  NSPoint ptArrowB_{40, 0};
};

/// A speech bubble from an ellipse: the tail leaves it towards the tip.
class DrawEllipseMessage : public DrawRectShape {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Ellipse Message"; }

  /// Offset from the box's origin.
  NSPoint arrow() const { return ptArrow_; }
  /// Rebuilds the outline.
  void setArrow(NSPoint tip);

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void appendOutline(NSBezierPath& path, const NSRect& bounds) const override;
  void mapGeometry(const AxisMap& map) override;

 private:
  NSPoint ptArrow_{10, -30};
};
