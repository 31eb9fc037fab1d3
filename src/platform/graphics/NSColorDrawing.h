#pragma once

#include "platform/graphics/NSColor.h"
#include "platform/graphics/pixels/RGBAColor.h"

/// A colour as the drawing context takes it.
inline RGBAColor paintComponents(const NSColor& color) {
  return {color.redComponent(), color.greenComponent(), color.blueComponent(),
          color.alphaComponent()};
}
