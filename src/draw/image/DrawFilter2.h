#pragma once

#include "draw/image/DrawImage2.h"

/// A bitmap shown through an image filter.
class DrawFilter2 : public DrawImage2 {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};
