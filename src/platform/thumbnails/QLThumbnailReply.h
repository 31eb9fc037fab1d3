#pragma once

#include <functional>
#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/PaintExport.h"

class NSBitmapImageRep;

/// A thumbnail provider's answer: how large the thumbnail is and how it is painted.
class PAINT_API QLThumbnailReply {
 public:
  /// Paints into the current graphics context, whose size is the reply's context size. Answers
  /// false when there is nothing to show.
  using DrawingBlock = std::function<bool()>;

  /// Size in pixels. The block may be called after the provider has returned, and owns what it
  /// paints.
  static std::shared_ptr<QLThumbnailReply> replyWithContextSize(
      NSSize contextSize, DrawingBlock currentContextDrawingBlock);

  NSSize contextSize() const { return contextSize_; }

  /// What the thumbnail service does with a reply: makes a bitmap of the context size (truncated to
  /// whole pixels), makes it the current context and runs the block. Null when the block answers
  /// false and when the bitmap would be too large; throws std::bad_alloc when memory is lacking.
  std::shared_ptr<NSBitmapImageRep> drawnBitmap() const;

 private:
  QLThumbnailReply(NSSize contextSize, DrawingBlock block)
      : contextSize_(contextSize), block_(std::move(block)) {}

  NSSize contextSize_;
  DrawingBlock block_;
};
