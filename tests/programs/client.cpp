// A program of somebody else: the canvas of a document, and that pictures of both kinds come out.
#include <paintengine.h>

#include <cstdio>

int main(int, char** argv) {
  const auto data = NSData::dataWithContentsOfFile(argv[1]);
  const auto document = PaintManager::paintMgrWithPaintData(data, nullptr, nullptr);
  if (document == nullptr) return 1;
  size_t groups = 0;
  for (const auto& draw : document->allDraws()) {
    if (dynamic_cast<const DrawGroup*>(draw.get()) != nullptr) ++groups;
  }
  std::shared_ptr<NSBitmapImageRep> thumbnail;
  ThumbnailProvider().provideThumbnailForFileRequest(
      {NSURL::fileURLWithPath(argv[1]), {64, 64}},
      [&](const auto& reply, std::error_code) { thumbnail = reply->drawnBitmap(); });
  // WebP comes from a module beside the library.
  const bool encoded = thumbnail != nullptr && !encodePNG(*thumbnail).empty() &&
                       !encodeWebP(*thumbnail, 0.8).empty();
  std::printf("%g x %g, %zu draws, %zu groups\n", document->size().width, document->size().height,
              document->allDraws().size(), groups);
  if (!encoded || document->fullImage() == nullptr) return 1;
  // PDF and SVG come from the program that is installed with the library.
  for (const LeftOutPicture& picture : document->leftOutPictures()) {
    std::printf("left out: %s: %s\n", picture.kind.c_str(), picture.reason.c_str());
  }
  return document->leftOutPictures().empty() ? 0 : 1;
}
