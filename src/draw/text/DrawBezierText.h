#pragma once

#include "draw/text/DrawText.h"

/// Text along a guide path.
class DrawBezierText : public DrawText {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Curved Text"; }
};
