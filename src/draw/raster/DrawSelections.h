#pragma once

#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectangle.h"

class ImageFill;
class ImageMask;

/// Selections outline an area for editing. They are archived like any draw and never rendered.

class DrawRectSelection : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool isSelectTool() const override { return true; }
};

class DrawCrop : public DrawRectSelection {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};

class DrawEllipseSelection : public DrawEllipse {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool isSelectTool() const override { return true; }
};

class DrawLassoSelection : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool isSelectTool() const override { return true; }
};

/// The magic wand: the pixels that a flood fill from a point would reach.
class DrawMagicSelection : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool isSelectTool() const override { return true; }

  /// Searches a copy of the document's picture from a pixel of it, with a tolerance of 0 to 255.
  /// Null for points outside the picture.
  static std::shared_ptr<DrawMagicSelection> initWithPoint(NSPoint point, uint32_t tolerance,
                                                           const NSBitmapImageRep& fullImage);
  /// Whether everything but the pixels found is selected.
  bool isInverted() const { return _isInverted; }
  void setInverted(bool inverted) { _isInverted = inverted; }
  /// What is selected; null for a selection that has not searched.
  std::shared_ptr<ImageMask> imageMaskForSelection() const;

 private:
  std::shared_ptr<ImageFill> fill_;
  bool _isInverted = false;
};

class DrawPolygonSelection : public DrawBezierPath {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool isSelectTool() const override { return true; }
};

class DrawOldPolygonSelection : public DrawFreePolygon {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool isSelectTool() const override { return true; }
};
