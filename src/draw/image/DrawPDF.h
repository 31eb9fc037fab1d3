#pragma once

#include "draw/image/DrawImage2.h"

/// The first page of a PDF document.
class DrawPDF : public DrawImage2 {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool shouldEncodeImage() const override { return false; }
};
