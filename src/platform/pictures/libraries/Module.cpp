// PDF files through poppler, which draws with Cairo.
#include <cairo.h>
#include <poppler.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <memory>
#include <mutex>
#include <tuple>
#include <utility>

#include "platform/machine/TargetClones.h"
#include "platform/pictures/PDFLibrary.h"

namespace {

static_assert(std::endian::native == std::endian::little, "Cairo's words have blue lowest");

template <auto release>
struct Releaser {
  void operator()(auto* object) const { release(object); }
};
template <class T>
using GObjectPointer = std::unique_ptr<T, Releaser<g_object_unref>>;
using SurfacePointer = std::unique_ptr<cairo_surface_t, Releaser<cairo_surface_destroy>>;
using CairoPointer = std::unique_ptr<cairo_t, Releaser<cairo_destroy>>;

/// The library has mutable parts that all documents share.
std::mutex& libraryMutex() {
  static std::mutex mutex;
  return mutex;
}

/// Set before the library's statics are destroyed; documents that live longer are left alone.
bool processEnds = false;

/// What an operation of the library answers, or `otherwise` when it throws.
template <class Result, class Operation>
Result guarded(Result otherwise, const Operation& operation) {
  const std::lock_guard lock(libraryMutex());
  try {
    return operation();
  } catch (const std::exception&) {
    return otherwise;
  }
}

TARGET_CLONES void exchangeRedAndBlue(uint32_t* pixels, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t p = pixels[i];
    pixels[i] = (p & 0xff00ff00) | (p >> 16 & 0xff) | (p & 0xff) << 16;
  }
}

/// Cairo's surfaces have sides up to 32767; larger pictures are drawn in tiles.
constexpr int64_t kTile = 16384;

bool drawTile(PopplerPage* page, const PDFPicture& picture, const NSSize& scale, int64_t x,
              int64_t y) {
  const auto width = static_cast<int>(std::min(kTile, picture.width - x));
  const auto height = static_cast<int>(std::min(kTile, picture.height - y));
  const int64_t stride = picture.width * 4;
  const SurfacePointer surface(
      cairo_image_surface_create_for_data(picture.pixels + y * stride + x * 4, CAIRO_FORMAT_ARGB32,
                                          width, height, static_cast<int>(stride)));
  const CairoPointer context(cairo_create(surface.get()));
  cairo_translate(context.get(), static_cast<double>(-x), static_cast<double>(-y));
  cairo_scale(context.get(), scale.width, scale.height);
  poppler_page_render(page, context.get());
  cairo_surface_finish(surface.get());
  return cairo_status(context.get()) == CAIRO_STATUS_SUCCESS &&
         cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS;
}

NSSize sizeOf(PopplerPage* page) {
  NSSize size;
  poppler_page_get_size(page, &size.width, &size.height);
  const bool sound =
      std::isfinite(size.width) && std::isfinite(size.height) && size.width > 0 && size.height > 0;
  return sound ? size : NSZeroSize;
}

bool drawPage(PopplerPage* page, const PDFPicture& picture) {
  const NSSize size = sizeOf(page);
  if (size == NSZeroSize) return false;
  const NSSize scale{static_cast<double>(picture.width) / size.width,
                     static_cast<double>(picture.height) / size.height};
  for (int64_t y = 0; y < picture.height; y += kTile) {
    for (int64_t x = 0; x < picture.width; x += kTile) {
      if (!drawTile(page, picture, scale, x, y)) return false;
    }
  }
  void* const pixels = picture.pixels;
  exchangeRedAndBlue(static_cast<uint32_t*>(pixels),
                     static_cast<size_t>(picture.width * picture.height));
  return true;
}

class PopplerFile final : public PDFFile {
 public:
  explicit PopplerFile(GObjectPointer<PopplerDocument> document) : document_(std::move(document)) {}
  ~PopplerFile() override {
    const std::lock_guard lock(libraryMutex());
    if (processEnds) {
      std::ignore = document_.release();
    } else {
      document_.reset();
    }
  }

  NSSize firstPageSize() const override {
    return guarded(NSZeroSize, [this] {
      const auto page = firstPage();
      return page == nullptr ? NSZeroSize : sizeOf(page.get());
    });
  }
  bool drawFirstPage(const PDFPicture& picture) const override {
    return guarded(false, [&] {
      const auto page = firstPage();
      return page != nullptr && drawPage(page.get(), picture);
    });
  }

 private:
  GObjectPointer<PopplerPage> firstPage() const {
    if (poppler_document_get_n_pages(document_.get()) < 1) return nullptr;
    return GObjectPointer<PopplerPage>(poppler_document_get_page(document_.get(), 0));
  }

  GObjectPointer<PopplerDocument> document_;
};

class Poppler final : public PDFLibrary {
 public:
  std::unique_ptr<PDFFile> open(std::span<const uint8_t> file) const override {
    return guarded(std::unique_ptr<PDFFile>(), [file]() -> std::unique_ptr<PDFFile> {
      const std::unique_ptr<GBytes, Releaser<g_bytes_unref>> bytes(
          g_bytes_new_static(file.data(), file.size()));
      GObjectPointer<PopplerDocument> document(
          poppler_document_new_from_bytes(bytes.get(), nullptr, nullptr));
      return document == nullptr ? nullptr : std::make_unique<PopplerFile>(std::move(document));
    });
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PDFLibrary* paintPDFLibrary() {
  static const Poppler library;
  static const int registered = std::atexit([] { processEnds = true; });
  return registered == 0 ? &library : nullptr;
}
