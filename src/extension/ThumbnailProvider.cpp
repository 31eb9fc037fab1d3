#include "extension/ThumbnailProvider.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "document/PaintManager.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"

namespace {

/// What is composed for a thumbnail.
struct Composed {
  std::shared_ptr<const NSBitmapImageRep> image;  ///< null when there is none
  NSSize canvas;
};

Composed composedImageOfFile(const NSURL& url, NSSize maximumSize) {
  const auto data = NSData::dataWithContentsOfURL(url);
  const auto document = PaintManager::paintMgrWithPaintData(data, nullptr, nullptr);
  if (document == nullptr) return {};
  const NSSize canvas = document->size();
  return {ThumbnailProvider::composedImage(*document, maximumSize), canvas};
}

/// Whether a canvas side ends in the first half of its last pixel: that one shows more of what lies
/// beyond the canvas, so its neighbour stands for it.
bool endsEarly(CGFloat side) {
  const CGFloat part = side - std::floor(side);
  return side > 1 && part > CanvasGrid::kNoise && part < 0.5;
}

void repeatLastColumn(NSBitmapImageRep& image) {
  const int64_t x = image.pixelsWide() - 1;
  uint8_t* row = image.writableRows(image.usedRows().first, image.usedRows().end);
  for (int64_t y = image.usedRows().first; y < image.usedRows().end; ++y) {
    std::memcpy(row + x * 4, row + (x - 1) * 4, 4);
    row += image.bytesPerRow();
  }
}

void repeatLastRow(NSBitmapImageRep& image) {
  const int64_t y = image.pixelsHigh() - 1;
  std::memcpy(image.writableRows(y, y + 1), image.row(y - 1), image.bytesPerRow());
}

}  // namespace

NSSize ThumbnailProvider::contextSize(NSSize canvas, NSSize maximumSize) {
  const double ratioW = canvas.width / maximumSize.width;
  const double ratioH = canvas.height / maximumSize.height;
  if (ratioW < 1 && ratioH < 1) return canvas;
  if (ratioW > ratioH) return {maximumSize.width, std::floor(canvas.height / ratioW)};
  // The width comes from the height here: consumers rely on the square they get. Only nothing
  // cannot be stretched to it.
  if (ratioH > ratioW) {
    return {canvas.width > 0 ? std::floor(canvas.height / ratioH) : 0, maximumSize.height};
  }
  return maximumSize;
}

CGFloat ThumbnailProvider::composingScale(NSSize canvas, NSSize maximumSize) {
  constexpr double kComposedWhole = 1 << 21;
  constexpr double kSpare = 4;
  // Small thumbnails are made as that of 256: fine edges add up in fewer pixels.
  constexpr double kLeastSide = 1024;
  if (canvas.width * canvas.height <= kComposedWhole) return 1;
  const NSSize size = contextSize(canvas, maximumSize);
  const double n = std::floor(
      std::min({canvas.width / (kSpare * size.width), canvas.height / (kSpare * size.height),
                std::max(canvas.width, canvas.height) / kLeastSide}));
  return n > 1 ? 1 / n : 1;
}

std::shared_ptr<NSBitmapImageRep> ThumbnailProvider::composedImage(PaintManager& document,
                                                                   NSSize maximumSize) {
  const NSSize canvas = document.size();
  const CGFloat scale = composingScale(canvas, maximumSize);
  auto image = document.composedImage(scale);
  if (image == nullptr) return nullptr;
  if (endsEarly(canvas.width * scale)) repeatLastColumn(*image);
  if (endsEarly(canvas.height * scale)) repeatLastRow(*image);
  return image;
}

std::shared_ptr<QLThumbnailReply> ThumbnailProvider::replyForImage(
    std::shared_ptr<const NSBitmapImageRep> image, NSSize canvas, NSSize maximumSize) {
  const NSSize size = contextSize(image != nullptr ? canvas : NSZeroSize, maximumSize);
  const CGFloat scale = composingScale(canvas, maximumSize);
  return QLThumbnailReply::replyWithContextSize(
      size, [image = std::move(image), size, canvas, scale] {
        if (image == nullptr || size.width < 1 || size.height < 1) return false;
        NSGraphicsContext::currentContext()->setImageInterpolation(NSImageInterpolation::high);
        // The canvas may end inside of the bitmap's last pixels.
        const NSSize shown{canvas.width * scale, canvas.height * scale};
        const NSRect source{{0, image->size().height - shown.height}, shown};
        drawInRect(*image, {NSZeroPoint, size}, source, NSCompositingOperation::sourceOver, 1);
        return true;
      });
}

void ThumbnailProvider::provideThumbnailForFileRequest(const QLFileThumbnailRequest& request,
                                                       const CompletionHandler& completionHandler) {
  const NSSize maximum = request.maximumSize();
  std::shared_ptr<QLThumbnailReply> reply;
  std::error_code error;
  try {
    reply = replyForImage(nullptr, NSZeroSize, maximum);
    Composed composed = composedImageOfFile(request.fileURL(), maximum);
    reply = replyForImage(std::move(composed.image), composed.canvas, maximum);
  } catch (const std::bad_alloc&) {
    if (reply == nullptr) error = std::make_error_code(std::errc::not_enough_memory);
  }
  completionHandler(reply, error);
}
