#pragma once

#include "draw/core/DrawBase.h"

/// An open draw whose ends may carry arrow heads. New ones have butt caps.
class DrawArrowed : public DrawBase {
 public:
  int64_t arrowStyle() const override { return arrowStyle_; }
  void setArrowStyle(int64_t style) { arrowStyle_ = style; }

  void init() override;
  std::shared_ptr<NSDictionary> drawAttributes() const override;
  bool setDrawAttributes(const NSDictionary& attributes) override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  int64_t arrowStyle_ = 0;
};

class DrawLine : public DrawArrowed {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Line"; }

  /// Rebuilds the path as one line.
  void setStartPoint(NSPoint start, NSPoint endPoint);
  NSPoint startPoint() const { return ptStart_; }
  NSPoint endPoint() const { return ptEnd_; }
  /// Derives the points from the path; zero points unless it is one line.
  void updatePoints();
  void setBezierPathWithData(const std::shared_ptr<NSObject>& data) override;
  bool initWithCoder(NSCoder& coder) override;

 protected:
  void mapGeometry(const AxisMap& map) override;

 private:
  NSPoint ptStart_;
  NSPoint ptEnd_;
};

class DrawCurve : public DrawArrowed {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Curve"; }

  /// Rebuilds the path as one cubic.
  void setStartPoint(NSPoint start, NSPoint ctlPoint1, NSPoint ctlPoint2, NSPoint endPoint);
  NSPoint startPoint() const { return ptStart_; }
  NSPoint ctlPoint1() const { return ptCtl1_; }
  NSPoint ctlPoint2() const { return ptCtl2_; }
  NSPoint endPoint() const { return ptEnd_; }
  /// Derives the points from the path; zero points unless it is one cubic.
  void updatePoints();
  void setBezierPathWithData(const std::shared_ptr<NSObject>& data) override;
  bool initWithCoder(NSCoder& coder) override;

 protected:
  void mapGeometry(const AxisMap& map) override;

 private:
  NSPoint ptStart_;
  NSPoint ptEnd_;
  NSPoint ptCtl1_;
  NSPoint ptCtl2_;
};

class DrawFreePolygon;

class DrawBrokenLine : public DrawArrowed {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Polyline"; }

  /// The polygon that closing the polyline makes, unfilled, with the polyline's stroke.
  std::shared_ptr<DrawFreePolygon> polygonForClosedPath() const;
};

/// Always filled, when its fill is on; joins are round.
class DrawFreePolygon : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool classDrawBezierPathFill() const override { return true; }
  std::string name() const override;

  /// Number of sides while the draw is being created; not archived.
  int64_t semgents() const { return _semgents; }
  void setSemgents(int64_t count) { _semgents = count; }
  /// A triangle in the making stays one.
  bool canAddCurvedSegment() const override;

  void init() override;
  bool initWithCoder(NSCoder& coder) override;

 private:
  int64_t _semgents = 0;
};

/// A general path: filled exactly when closed; only an open one can have a stroke outline.
class DrawBezierPath : public DrawArrowed {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool classDrawBezierPathFill() const override;
  bool hasStrokeOutline() const override;
  bool hasBorder() const override { return !isBeingDragged(); }
  std::string name() const override;
  /// While the path is created by dragging, without the element that follows the pointer.
  void drawInImage(NSBitmapImageRep* image) override;
  static bool mustClosePath() { return false; }
  static bool canResizedWithRectangleKnobs() { return true; }

  /// The draw whose guide this path is, not owned; null for a path of its own. Not archived.
  DrawBase* master() const { return _master; }
  void setMaster(DrawBase* master) { _master = master; }
  /// The element that is being edited, -1 for none; not archived.
  int64_t focusElementIndex() const { return _focusElementIndex; }
  void setFocusElementIndex(int64_t index) { _focusElementIndex = index; }
  /// The path's last element follows the pointer while the draw is being created; not archived.
  bool isDraggingWhenInitDraw() const { return _isDraggingWhenInitDraw; }
  void setDraggingWhenInitDraw(bool on) { _isDraggingWhenInitDraw = on; }
  /// Answers whether an element of the path was being edited.
  bool resetSelectedElement();
  /// No element is being edited afterwards.
  void setBezierPathWithData(const std::shared_ptr<NSObject>& data) override;
  // Arrow styles are copied among lines only.
  std::shared_ptr<NSDictionary> drawAttributes() const override;
  bool setDrawAttributes(const NSDictionary& attributes) override;

 private:
  bool isBeingDragged() const { return bCreatingWithEvent_ && _isDraggingWhenInitDraw; }

  int64_t _focusElementIndex = -1;
  bool _isDraggingWhenInitDraw = false;
  DrawBase* _master = nullptr;
};
