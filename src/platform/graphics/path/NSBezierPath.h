#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/foundation/NSObject.h"
#include "platform/graphics/path/NSAffineTransform.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/graphics/pixels/outline/StrokeStyle.h"

class CGPath;

enum NSBezierPathElement : int64_t {
  NSMoveToBezierPathElement = 0,
  NSLineToBezierPathElement = 1,
  NSCurveToBezierPathElement = 2,
  NSClosePathBezierPathElement = 3,
};

/// A path with the settings it is stroked and filled with, in user space (y up).
///
/// Element counts are the host platform's: `closePath` appends a close element and a move element
/// back to the subpath's start, both counted and archived.
class NSBezierPath : public NSObject {
 public:
  static const NSClass kClass;

  static std::shared_ptr<NSBezierPath> bezierPath() { return std::make_shared<NSBezierPath>(); }
  static std::shared_ptr<NSBezierPath> bezierPathWithRect(const NSRect& r);
  static std::shared_ptr<NSBezierPath> bezierPathWithOvalInRect(const NSRect& r);
  const NSClass& classInfo() const override { return kClass; }
  /// A new path with the same elements and settings.
  std::shared_ptr<NSBezierPath> copy() const { return std::make_shared<NSBezierPath>(*this); }

  // Construction. A line or curve on an empty path starts it at its end point.
  void moveToPoint(NSPoint p);
  void lineToPoint(NSPoint p);
  void curveToPoint(NSPoint end, NSPoint controlPoint1, NSPoint controlPoint2);
  /// No effect on an empty path.
  void closePath();
  /// Removes the elements, keeps the settings.
  void removeAllPoints();
  /// Appends the elements, not the settings.
  void appendBezierPath(const NSBezierPath& other);
  void appendBezierPathWithRect(const NSRect& r);
  /// Starts at -45 degrees, as the host's does.
  void appendBezierPathWithOvalInRect(const NSRect& r);
  /// Radii are clamped to half the sides; a zero radius gives the plain rectangle.
  void appendBezierPathWithRoundedRect(const NSRect& r, CGFloat xRadius, CGFloat yRadius);
  /// Counter-clockwise arc, angles in degrees; joined by a line to the current point.
  void appendBezierPathWithArcWithCenter(NSPoint center, CGFloat radius, CGFloat startAngle,
                                         CGFloat endAngle);
  /// Arc of the circle inscribed in the corner current point - p1 - p2; a line leads to it.
  void appendBezierPathWithArcFromPoint(NSPoint p1, NSPoint p2, CGFloat radius);

  // Elements.
  int64_t elementCount() const { return static_cast<int64_t>(data_.verbs.size()); }
  /// The kind of element i; its points (1, 3 for a curve, for a close the subpath's start) are
  /// stored through `points` unless null. The index must be below elementCount.
  NSBezierPathElement elementAtIndex(int64_t index, NSPoint* points = nullptr) const;
  /// Replaces the points of one element, never its kind; a close element has none.
  void setAssociatedPoints(const NSPoint* points, int64_t index);
  /// Drops element `index` and all after it.
  void removeElementsFrom(int64_t index);
  bool isEmpty() const { return data_.empty(); }
  /// Where the next element starts; nothing for an empty path.
  std::optional<NSPoint> currentPoint() const;
  const PathData& data() const { return data_; }

  /// Tight bounds of what is drawn; zero for an empty path. Line width plays no part.
  NSRect bounds() const;
  /// Box of all points, control points included; zero for an empty path.
  NSRect controlPointBounds() const;
  /// Whether a point is inside the filled path, by its winding rule.
  bool containsPoint(NSPoint p) const;

  /// Each subpath reversed on its own; closed ones stay closed and keep their start.
  std::shared_ptr<NSBezierPath> bezierPathByReversingPath() const;
  /// Maps the points; width and dash stay.
  void transformUsingAffineTransform(const NSAffineTransform& transform);
  /// Makes coordinates and dashes what an archive keeps of them: single precision. For editing, so
  /// that what is shown is what a file will show.
  void roundToArchivedPrecision();

  // Settings.
  CGFloat lineWidth() const { return lineWidth_; }
  void setLineWidth(CGFloat width) { lineWidth_ = width; }
  LineCap lineCapStyle() const { return cap_; }
  void setLineCapStyle(LineCap cap) { cap_ = cap; }
  LineJoin lineJoinStyle() const { return join_; }
  void setLineJoinStyle(LineJoin join) { join_ = join; }
  CGFloat miterLimit() const { return miterLimit_; }
  void setMiterLimit(CGFloat limit) { miterLimit_ = limit; }
  CGFloat flatness() const { return flatness_; }
  WindingRule windingRule() const { return windingRule_; }
  void setWindingRule(WindingRule rule) { windingRule_ = rule; }
  std::span<const CGFloat> lineDash() const { return dash_; }
  CGFloat lineDashPhase() const { return dashPhase_; }
  /// An empty pattern means a solid line.
  void setLineDash(std::span<const CGFloat> pattern, CGFloat phase);

  // Drawing into the current graphics context with its colours, operation and shadow.
  void fill() const;
  void stroke() const;
  /// Intersects the clip with the inside of the path.
  void addClip() const;
  /// The settings as the drawing context takes them.
  StrokeStyle strokeStyle() const;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  void append(PathVerb verb, std::initializer_list<NSPoint> points);
  void indexElement(PathVerb verb, uint32_t nextPoint);
  void appendShape(const PathData& shape);
  void reindex();

  PathData data_;
  /// For each element the index of its first point in data_.points; for a close that of the point
  /// where its subpath began.
  std::vector<uint32_t> firstPoint_;
  /// The index of the point where the current subpath began.
  uint32_t start_ = 0;
  CGFloat lineWidth_ = 1;
  CGFloat miterLimit_ = 10;
  CGFloat flatness_ = 0.6;
  LineCap cap_ = LineCap::butt;
  LineJoin join_ = LineJoin::miter;
  WindingRule windingRule_ = WindingRule::nonZero;
  std::vector<CGFloat> dash_;
  CGFloat dashPhase_ = 0;
};
