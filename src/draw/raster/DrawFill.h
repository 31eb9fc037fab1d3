#pragma once

#include "draw/core/DrawBase.h"

/// The stored result of a flood fill.
class DrawFill : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};

/// An area cleared to transparency.
class DrawClear : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};
