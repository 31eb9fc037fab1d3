#pragma once

#include <memory>
#include <utility>

#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"

/// A draw as its class initialises it.
template <class Draw>
std::shared_ptr<Draw> made() {
  auto draw = std::make_shared<Draw>();
  draw->init();
  return draw;
}

inline std::shared_ptr<NSShadow> shadow(NSSize offset, CGFloat blur,
                                        std::shared_ptr<NSColor> color) {
  auto result = std::make_shared<NSShadow>();
  result->setShadowOffset(offset);
  result->setShadowBlurRadius(blur);
  result->setShadowColor(std::move(color));
  return result;
}
