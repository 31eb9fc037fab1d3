// SVG pictures through the engine of this library. What that asserts ends the process.
#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "helper/PictureLibrary.h"
#include "platform/foundation/Unicode.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/CGContext.h"
#include "svg/CGSVGRenderer.h"
#include "svg/tree/SVGDocument.h"

namespace {

using SVGNative::CGSVGRenderer;
using SVGNative::SVGDocument;

class BuiltInPicture final : public OpenedPicture {
 public:
  BuiltInPicture(std::shared_ptr<CGSVGRenderer> renderer, std::unique_ptr<SVGDocument> document)
      : renderer_(std::move(renderer)), document_(std::move(document)) {}

  NSSize size() const override {
    const NSSize size = NSMakeSize(document_->Width(), document_->Height());
    return size.width > 0 && size.height > 0 ? size : NSZeroSize;
  }

  PictureResult draw(const PixelTarget& target, const CGAffineTransform& transform) const override {
    try {
      const auto bitmap = NSBitmapImageRep::create(target.width, target.height);
      if (bitmap == nullptr) return PictureResult::failed;
      drawOnto(bitmap, transform);
      std::copy_n(bitmap->bitmapData(), target.width * target.height * 4, target.pixels);
      return PictureResult::done;
    } catch (const std::bad_alloc&) {
      return PictureResult::noMemory;
    } catch (const std::exception&) {
      return PictureResult::failed;
    }
  }

 private:
  void drawOnto(const std::shared_ptr<NSBitmapImageRep>& bitmap,
                const CGAffineTransform& transform) const {
    const auto context = std::make_shared<CGContext>(bitmap);
    // The context's y counts upwards, the transform's result downwards.
    context->concatenate(
        CGAffineTransformConcat(transform, {1, 0, 0, -1, 0, bitmap->size().height}));
    const NSSize own = size();
    renderer_->SetGraphicsContext(context);
    document_->Render(static_cast<float>(own.width), static_cast<float>(own.height));
    renderer_->SetGraphicsContext(nullptr);
  }

  std::shared_ptr<CGSVGRenderer> renderer_;
  std::unique_ptr<SVGDocument> document_;
};

class BuiltIn final : public PictureLibrary {
 public:
  PictureResult open(std::span<const uint8_t> file,
                     std::unique_ptr<OpenedPicture>* picture) const override {
    try {
      const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
      if (!isUTF8(text)) return PictureResult::failed;
      auto renderer = std::make_shared<CGSVGRenderer>();
      auto document = SVGDocument::CreateSVGDocument(std::string(text), renderer);
      if (document == nullptr) return PictureResult::failed;
      *picture = std::make_unique<BuiltInPicture>(std::move(renderer), std::move(document));
      return PictureResult::done;
    } catch (const std::bad_alloc&) {
      return PictureResult::noMemory;
    } catch (const std::exception&) {
      return PictureResult::failed;
    }
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureLibrary* paintPictureLibrary() {
  static const BuiltIn library;
  return &library;
}
