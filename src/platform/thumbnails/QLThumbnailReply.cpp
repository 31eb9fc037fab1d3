#include "platform/thumbnails/QLThumbnailReply.h"

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"

std::shared_ptr<QLThumbnailReply> QLThumbnailReply::replyWithContextSize(
    NSSize contextSize, DrawingBlock currentContextDrawingBlock) {
  return std::shared_ptr<QLThumbnailReply>(
      new QLThumbnailReply(contextSize, std::move(currentContextDrawingBlock)));
}

std::shared_ptr<NSBitmapImageRep> QLThumbnailReply::drawnBitmap() const {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  if (!InitImageRep(contextSize_, &bitmap)) return nullptr;
  const ZTFocusScope focus(bitmap);
  return block_() ? bitmap : nullptr;
}
