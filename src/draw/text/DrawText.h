#pragma once

#include "draw/shapes/DrawRectangle.h"

/// A text box.
class DrawText : public DrawRoundRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Text"; }
};

/// Text along a guide path.
class DrawBezierText : public DrawText {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};
