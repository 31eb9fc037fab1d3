// PDF files through poppler, which draws with Cairo.
#include <poppler.h>

#include <cmath>
#include <exception>
#include <memory>
#include <new>
#include <utility>

#include "helper/libraries/CairoTiles.h"

namespace {

template <class T>
using GObjectPointer = std::unique_ptr<T, Releaser<g_object_unref>>;

NSSize sizeOf(PopplerPage* page) {
  NSSize size;
  poppler_page_get_size(page, &size.width, &size.height);
  const bool sound =
      std::isfinite(size.width) && std::isfinite(size.height) && size.width > 0 && size.height > 0;
  return sound ? size : NSZeroSize;
}

class PopplerPicture final : public OpenedPicture {
 public:
  PopplerPicture(GObjectPointer<PopplerDocument> document, GObjectPointer<PopplerPage> page)
      : document_(std::move(document)), page_(std::move(page)) {}

  NSSize size() const override { return sizeOf(page_.get()); }

  PictureResult draw(const PixelTarget& target, const CGAffineTransform& transform) const override {
    try {
      const PictureResult result =
          drawThroughCairo(target, size(), transform, [this](cairo_t* context) {
            poppler_page_render(page_.get(), context);
            return PictureResult::done;
          });
      if (result == PictureResult::done) exchangeRedAndBlue(target);
      return result;
    } catch (const std::bad_alloc&) {
      return PictureResult::noMemory;
    } catch (const std::exception&) {
      return PictureResult::failed;
    }
  }

 private:
  GObjectPointer<PopplerDocument> document_;
  GObjectPointer<PopplerPage> page_;  // let go before its document
};

class Poppler final : public PictureLibrary {
 public:
  PictureResult open(std::span<const uint8_t> file,
                     std::unique_ptr<OpenedPicture>* picture) const override {
    try {
      *picture = openFirstPage(file);
      return *picture == nullptr ? PictureResult::failed : PictureResult::done;
    } catch (const std::bad_alloc&) {
      return PictureResult::noMemory;
    } catch (const std::exception&) {
      return PictureResult::failed;
    }
  }

 private:
  static std::unique_ptr<OpenedPicture> openFirstPage(std::span<const uint8_t> file) {
    const std::unique_ptr<GBytes, Releaser<g_bytes_unref>> bytes(
        g_bytes_new_static(file.data(), file.size()));
    GObjectPointer<PopplerDocument> document(
        poppler_document_new_from_bytes(bytes.get(), nullptr, nullptr));
    if (document == nullptr || poppler_document_get_n_pages(document.get()) < 1) return nullptr;
    GObjectPointer<PopplerPage> page(poppler_document_get_page(document.get(), 0));
    if (page == nullptr || sizeOf(page.get()) == NSZeroSize) return nullptr;
    return std::make_unique<PopplerPicture>(std::move(document), std::move(page));
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureLibrary* paintPictureLibrary() {
  static const Poppler library;
  return &library;
}
