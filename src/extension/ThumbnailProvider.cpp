#include "extension/ThumbnailProvider.h"

#include <cmath>
#include <new>
#include <utility>

#include "document/PaintManager.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"

namespace {

std::shared_ptr<NSBitmapImageRep> composedImageOfFile(const NSURL& url) {
  const auto data = NSData::dataWithContentsOfURL(url);
  const auto document = PaintManager::paintMgrWithPaintData(data, nullptr, nullptr);
  return document != nullptr ? document->composedImage() : nullptr;
}

}  // namespace

NSSize ThumbnailProvider::contextSize(int64_t pixelsWide, int64_t pixelsHigh, NSSize maximumSize) {
  const auto width = static_cast<double>(pixelsWide);
  const auto height = static_cast<double>(pixelsHigh);
  const double ratioW = width / maximumSize.width;
  const double ratioH = height / maximumSize.height;
  if (ratioW < 1 && ratioH < 1) return {width, height};
  if (ratioW > ratioH) return {maximumSize.width, std::floor(height / ratioW)};
  // The width comes from the height here: consumers rely on the square they get. Only nothing
  // cannot be stretched to it.
  if (ratioH > ratioW) {
    return {pixelsWide > 0 ? std::floor(height / ratioH) : 0, maximumSize.height};
  }
  return maximumSize;
}

std::shared_ptr<QLThumbnailReply> ThumbnailProvider::replyForImage(
    std::shared_ptr<const NSBitmapImageRep> image, NSSize maximumSize) {
  const NSSize size = contextSize(image != nullptr ? image->pixelsWide() : 0,
                                  image != nullptr ? image->pixelsHigh() : 0, maximumSize);
  return QLThumbnailReply::replyWithContextSize(size, [image = std::move(image), size] {
    if (image == nullptr || size.width < 1 || size.height < 1) return false;
    NSGraphicsContext::currentContext()->setImageInterpolation(NSImageInterpolation::high);
    drawInRect(*image, {NSZeroPoint, size});
    return true;
  });
}

void ThumbnailProvider::provideThumbnailForFileRequest(const QLFileThumbnailRequest& request,
                                                       const CompletionHandler& completionHandler) {
  std::shared_ptr<QLThumbnailReply> reply;
  std::error_code error;
  try {
    reply = replyForImage(nullptr, request.maximumSize());
    reply = replyForImage(composedImageOfFile(request.fileURL()), request.maximumSize());
  } catch (const std::bad_alloc&) {
    if (reply == nullptr) error = std::make_error_code(std::errc::not_enough_memory);
  }
  completionHandler(reply, error);
}
