#include "extension/ThumbnailProvider.h"

#include <cmath>

#include "document/PaintManager.h"
#include "platform/foundation/NSData.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/NSGraphicsContext.h"

namespace {

std::shared_ptr<NSBitmapImageRep> fullImageOfFile(const NSURL& url) {
  const auto data = NSData::dataWithContentsOfURL(url);
  const auto document = PaintManager::paintMgrWithPaintData(data, nullptr, nullptr);
  return document != nullptr ? document->fullImage() : nullptr;
}

}  // namespace

NSSize ThumbnailProvider::contextSize(int64_t pixelsWide, int64_t pixelsHigh, NSSize maximumSize) {
  const auto width = static_cast<double>(pixelsWide);
  const auto height = static_cast<double>(pixelsHigh);
  const double ratioW = width / maximumSize.width;
  const double ratioH = height / maximumSize.height;
  if (ratioW < 1 && ratioH < 1) return {width, height};
  if (ratioW > ratioH) return {maximumSize.width, std::floor(height / ratioW)};
  // The width comes from the height here: consumers rely on the square they get.
  if (ratioH > ratioW) return {std::floor(height / ratioH), maximumSize.height};
  return maximumSize;
}

void ThumbnailProvider::provideThumbnailForFileRequest(const QLFileThumbnailRequest& request,
                                                       const CompletionHandler& completionHandler) {
  const auto bitmap = fullImageOfFile(request.fileURL());
  const NSSize size =
      contextSize(bitmap != nullptr ? bitmap->pixelsWide() : 0,
                  bitmap != nullptr ? bitmap->pixelsHigh() : 0, request.maximumSize());
  const auto draw = [bitmap, size] {
    if (bitmap == nullptr || size.width < 1 || size.height < 1) return false;
    NSGraphicsContext::currentContext()->setImageInterpolation(NSImageInterpolation::high);
    drawInRect(*bitmap, {NSZeroPoint, size});
    return true;
  };
  completionHandler(QLThumbnailReply::replyWithContextSize(size, draw), {});
}
