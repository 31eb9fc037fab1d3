#pragma once

#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectangle.h"

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

class DrawMagicSelection : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool isSelectTool() const override { return true; }
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
