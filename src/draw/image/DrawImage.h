#pragma once

#include "draw/image/DrawImage2.h"

/// Legacy bitmap draw; documents replace it by its convertedDraw when they are read.
class DrawImage : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool classDrawBezierPath() const override { return false; }

  /// A DrawImage2 (or, for filters, a DrawFilter2) with the same bitmap and common attributes.
  virtual std::shared_ptr<DrawImage2> convertedDraw() const;

 protected:
  std::shared_ptr<NSBitmapImageRep> image_;
};

/// The replacement of a draw whose class is exactly one of the legacy classes; null for all others.
std::shared_ptr<DrawBase> convertedLegacyDraw(const std::shared_ptr<DrawBase>& draw);
