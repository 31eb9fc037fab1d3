#pragma once

#include "draw/image/DrawImage.h"

/// Legacy filter draw; documents replace it by its convertedDraw when they are read.
class DrawFilter : public DrawImage {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::shared_ptr<DrawImage2> convertedDraw() const override;
};
