#pragma once

#include "draw/core/DrawBase.h"
#include "platform/graphics/context/NSGraphicsContext.h"

/// Paints a draw, and names it to the recorder when what is drawn is recorded.
inline void paintDraw(DrawBase& draw, NSBitmapImageRep* image) {
  if (!isRecordingDrawing()) return draw.drawInImage(image);
  const auto recorder = NSGraphicsContext::currentContext()->graphicsPort()->recorder();
  recorder->beginDraw(std::string(draw.className()), draw.title());
  draw.drawInImage(image);
  recorder->endDraw();
}
