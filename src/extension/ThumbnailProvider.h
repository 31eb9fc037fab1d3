#pragma once

#include <memory>

#include "platform/foundation/PaintExport.h"
#include "platform/thumbnails/QLThumbnailProvider.h"

class NSBitmapImageRep;
class PaintManager;

/// Makes thumbnails of documents. Has no state of its own: any number of requests may run at once.
class PAINT_API ThumbnailProvider : public QLThumbnailProvider {
 public:
  /// Replies synchronously and without an error: a file that cannot be read or decoded, or for
  /// which there is no memory, gets a reply of zero size whose block draws nothing. Only when not
  /// even that could be made, the handler gets null and std::errc::not_enough_memory. Throws only
  /// what the handler does.
  void provideThumbnailForFileRequest(const QLFileThumbnailRequest& request,
                                      const CompletionHandler& completionHandler) override;

  /// The scale at which a canvas is composed for its thumbnail. Up to 2 megapixels that is 1. A
  /// larger one is reduced by the largest whole number that leaves its sides at least four times as
  /// long as the thumbnail's, and the longer at least 1024: so its pixels fall on whole blocks, and
  /// time and memory do not grow with it.
  static CGFloat composingScale(NSSize canvas, NSSize maximumSize);

  /// The picture of a document at composingScale; null when there is none.
  static std::shared_ptr<NSBitmapImageRep> composedImage(PaintManager& document,
                                                         NSSize maximumSize);

  /// The reply that shows a document's picture (null: nothing), which composedImage made, reduced
  /// with high quality to what contextSize says.
  static std::shared_ptr<QLThumbnailReply> replyForImage(
      std::shared_ptr<const NSBitmapImageRep> image, NSSize canvas, NSSize maximumSize);

  /// Size of the drawing context for a canvas in whole pixels: never larger than the canvas. One
  /// that is too high relative to its width gets a square context, into which it is stretched; one
  /// without width gets one without width.
  static NSSize contextSize(NSSize canvas, NSSize maximumSize);
};
