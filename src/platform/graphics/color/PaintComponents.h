#pragma once

#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/pixels/paint/RGBAColor.h"

/// A colour as the drawing context takes it.
inline RGBAColor paintComponents(const NSColor& color) {
  return {color.redComponent(), color.greenComponent(), color.blueComponent(),
          color.alphaComponent()};
}
