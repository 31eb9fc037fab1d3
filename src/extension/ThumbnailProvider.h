#pragma once

#include <memory>

#include "platform/foundation/PaintExport.h"
#include "platform/thumbnails/QLThumbnailProvider.h"

class NSBitmapImageRep;

/// Makes thumbnails of documents. Has no state of its own: any number of requests may run at once.
class PAINT_API ThumbnailProvider : public QLThumbnailProvider {
 public:
  /// Replies synchronously and without an error: a file that cannot be read or decoded, or for
  /// which there is no memory, gets a reply of zero size whose block draws nothing. Only when not
  /// even that could be made, the handler gets null and std::errc::not_enough_memory. Throws only
  /// what the handler does.
  void provideThumbnailForFileRequest(const QLFileThumbnailRequest& request,
                                      const CompletionHandler& completionHandler) override;

  /// The reply that shows a document's picture (null: nothing), reduced with high quality to what
  /// contextSize says.
  static std::shared_ptr<QLThumbnailReply> replyForImage(
      std::shared_ptr<const NSBitmapImageRep> image, NSSize maximumSize);

  /// Size of the drawing context for a bitmap of that many pixels: never larger than the bitmap.
  /// A bitmap that is too high relative to its width gets a square context, into which it is
  /// stretched; one without width gets one without width.
  static NSSize contextSize(int64_t pixelsWide, int64_t pixelsHigh, NSSize maximumSize);
};
