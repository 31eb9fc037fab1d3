// SVG pictures through librsvg, which draws with Cairo. The library is looked up by name, because
// it is recommended and not required.
#include <dlfcn.h>
#include <librsvg/rsvg.h>

#include <cmath>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "helper/libraries/CairoTiles.h"

namespace {

/// Of a name that every version of the library since 2.52 has.
constexpr const char* kLibrary = "librsvg-2.so.2";

/// CSS pixels to the inch.
constexpr double kResolution = 96;

/// The library's functions.
struct RsvgFunctions {
  decltype(&rsvg_handle_new_from_data) newFromData = nullptr;
  decltype(&rsvg_handle_set_dpi) setResolution = nullptr;
  decltype(&rsvg_handle_get_intrinsic_size_in_pixels) sizeInPixels = nullptr;
  decltype(&rsvg_handle_get_intrinsic_dimensions) dimensions = nullptr;
  decltype(&rsvg_handle_get_geometry_for_layer) layerGeometry = nullptr;
  decltype(&rsvg_handle_render_document) render = nullptr;

  bool find();
};

bool RsvgFunctions::find() {
  void* const library = dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) return false;
  const auto look = [library](const char* name, auto& function) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
    return function != nullptr;
  };
  return look("rsvg_handle_new_from_data", newFromData) &&
         look("rsvg_handle_set_dpi", setResolution) &&
         look("rsvg_handle_get_intrinsic_size_in_pixels", sizeInPixels) &&
         look("rsvg_handle_get_intrinsic_dimensions", dimensions) &&
         look("rsvg_handle_get_geometry_for_layer", layerGeometry) &&
         look("rsvg_handle_render_document", render);
}

struct FreeError {
  void operator()(GError* error) const { g_error_free(error); }
};
using ErrorPointer = std::unique_ptr<GError, FreeError>;

class RsvgPicture final : public OpenedPicture {
 public:
  RsvgPicture(const RsvgFunctions& functions,
              std::unique_ptr<RsvgHandle, Releaser<g_object_unref>> handle)
      : functions_(functions), handle_(std::move(handle)), size_(naturalSize()) {}

  NSSize size() const override { return size_; }

  PictureResult draw(const PixelTarget& target, const CGAffineTransform& transform) const override {
    const PictureResult result =
        drawThroughCairo(target, size_, transform, [this](cairo_t* context) {
          const RsvgRectangle viewport{0, 0, size_.width, size_.height};
          GError* error = nullptr;
          if (functions_.render(handle_.get(), context, &viewport, &error) != FALSE) {
            return PictureResult::done;
          }
          const ErrorPointer owned(error);
          return PictureResult::failed;
        });
    if (result == PictureResult::done) exchangeRedAndBlue(target);
    return result;
  }

 private:
  /// What the picture says, else the size of its view box, else that of what it shows.
  NSSize naturalSize() const {
    NSSize size;
    if (functions_.sizeInPixels(handle_.get(), &size.width, &size.height) != FALSE) {
      return sound(size);
    }
    gboolean hasWidth = FALSE;
    gboolean hasHeight = FALSE;
    gboolean hasViewBox = FALSE;
    RsvgLength width;
    RsvgLength height;
    RsvgRectangle viewBox;
    functions_.dimensions(handle_.get(), &hasWidth, &width, &hasHeight, &height, &hasViewBox,
                          &viewBox);
    if (hasViewBox != FALSE) return sound({viewBox.width, viewBox.height});
    constexpr RsvgRectangle kUnit{0, 0, 1, 1};
    RsvgRectangle shown{};
    functions_.layerGeometry(handle_.get(), nullptr, &kUnit, &shown, nullptr, nullptr);
    return sound({shown.width, shown.height});
  }

  static NSSize sound(const NSSize& size) {
    const bool isSound = std::isfinite(size.width) && std::isfinite(size.height) &&
                         size.width > 0 && size.height > 0;
    return isSound ? size : NSZeroSize;
  }

  const RsvgFunctions& functions_;
  std::unique_ptr<RsvgHandle, Releaser<g_object_unref>> handle_;
  NSSize size_;
};

class Rsvg final : public PictureLibrary {
 public:
  bool find() { return functions_.find(); }

  PictureResult open(std::span<const uint8_t> file,
                     std::unique_ptr<OpenedPicture>* picture) const override {
    // Without a base address it reads no other files.
    GError* error = nullptr;
    std::unique_ptr<RsvgHandle, Releaser<g_object_unref>> handle(
        functions_.newFromData(file.data(), file.size(), &error));
    const ErrorPointer owned(error);
    if (handle == nullptr) return PictureResult::failed;
    functions_.setResolution(handle.get(), kResolution);
    picture->reset(new (std::nothrow) RsvgPicture(functions_, std::move(handle)));
    return *picture == nullptr ? PictureResult::noMemory : PictureResult::done;
  }

 private:
  RsvgFunctions functions_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureLibrary* paintPictureLibrary() {
  static Rsvg library;
  static const bool found = library.find();
  return found ? &library : nullptr;
}
