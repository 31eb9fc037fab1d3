#pragma once

#include "platform/graphics/pixels/outline/PathData.h"

/// A path as the drawing layer takes it: geometry only, no stroke settings. Copied like a value.
class CGPath {
 public:
  CGPath() = default;
  explicit CGPath(PathData data) : data_(std::move(data)) {}

  const PathData& data() const { return data_; }
  /// Makes room for that many elements and points in all.
  void reserve(size_t elements, size_t points);
  bool isEmpty() const { return data_.empty(); }

  void moveToPoint(CGPoint p) { data_.move(p); }
  /// A drawing call on an empty path starts it at its end point.
  void addLineToPoint(CGPoint p);
  void addQuadCurveToPoint(CGPoint control, CGPoint p);
  void addCurveToPoint(CGPoint control1, CGPoint control2, CGPoint p);
  void closeSubpath();

  /// Counter-clockwise from the origin, closed.
  void addRect(const CGRect& r);
  /// From the left end of the top edge, counter-clockwise, closed; radii are clamped to half the
  /// sides, and a zero radius gives the plain rectangle.
  void addRoundedRect(const CGRect& r, CGFloat cornerWidth, CGFloat cornerHeight);
  /// Four cubics, counter-clockwise from (maxX, midY), closed.
  void addEllipseInRect(const CGRect& r);
  void addPath(const CGPath& other, const CGAffineTransform& transform = {});

  /// The box of all points, control points included; zero for an empty path.
  CGRect boundingBox() const;
  /// The tight box of what is drawn; zero for an empty path.
  CGRect pathBoundingBox() const;

 private:
  PathData data_;
};
