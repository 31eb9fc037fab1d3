// Thumbnails of documents in KDE's file manager and dialogs. It runs in KIO's thumbnail worker, a
// process of its own that may end without harm.
#include <KIO/ThumbnailCreator>
#include <KPluginFactory>
#include <QImage>
#include <QUrl>
#include <cstring>
#include <memory>

#include "extension/ThumbnailProvider.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

namespace {

/// A copy: the bitmap's rows are R, G, B, A bytes, premultiplied, from the top.
QImage imageOf(const NSBitmapImageRep& bitmap) {
  QImage image(static_cast<int>(bitmap.pixelsWide()), static_cast<int>(bitmap.pixelsHigh()),
               QImage::Format_RGBA8888_Premultiplied);
  for (int y = 0; y < image.height(); ++y) {
    std::memcpy(image.scanLine(y),
                bitmap.bitmapData() + static_cast<size_t>(y) * bitmap.bytesPerRow(),
                bitmap.bytesPerRow());
  }
  return image;
}

class PaintThumbnailCreator : public KIO::ThumbnailCreator {
  Q_OBJECT

 public:
  using ThumbnailCreator::ThumbnailCreator;

  KIO::ThumbnailResult create(const KIO::ThumbnailRequest& request) override {
    const auto file = NSURL::fileURLWithPath(request.url().toLocalFile().toStdString());
    // The target size counts device pixels already.
    const QSize size = request.targetSize();
    std::shared_ptr<NSBitmapImageRep> bitmap;
    ThumbnailProvider().provideThumbnailForFileRequest(
        {file, {static_cast<double>(size.width()), static_cast<double>(size.height())}},
        [&bitmap](const std::shared_ptr<QLThumbnailReply>& reply, std::error_code) {
          bitmap = reply->drawnBitmap();
        });
    if (bitmap == nullptr) return KIO::ThumbnailResult::fail();
    return KIO::ThumbnailResult::pass(imageOf(*bitmap));
  }
};

}  // namespace

K_PLUGIN_CLASS_WITH_JSON(PaintThumbnailCreator, "paintthumbnail.json")

#include "PaintThumbnailCreator.moc"
