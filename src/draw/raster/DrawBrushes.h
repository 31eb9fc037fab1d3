#pragma once

#include "draw/core/DrawBase.h"

/// A freehand stroke, stored as a path whose line width is the brush width.
class DrawPen : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};

/// A stroke that erases to transparency.
class DrawEraser : public DrawPen {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool copyWhenComposite() const override { return true; }
};

/// A spray of dots.
class DrawAirbrush : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};
