#pragma once

#include <cairo.h>

#include <algorithm>
#include <bit>
#include <memory>

#include "helper/PictureLibrary.h"

static_assert(std::endian::native == std::endian::little, "Cairo's words have blue lowest");

template <auto release>
struct Releaser {
  void operator()(auto* object) const { release(object); }
};
using SurfacePointer = std::unique_ptr<cairo_surface_t, Releaser<cairo_surface_destroy>>;
using CairoPointer = std::unique_ptr<cairo_t, Releaser<cairo_destroy>>;

inline PictureResult pictureResultOf(cairo_status_t status) {
  if (status == CAIRO_STATUS_SUCCESS) return PictureResult::done;
  return status == CAIRO_STATUS_NO_MEMORY ? PictureResult::noMemory : PictureResult::failed;
}

/// Draws a picture through Cairo. `paint` gets a context of the picture's own space, clipped to its
/// natural size, and returns a PictureResult.
template <class Paint>
PictureResult drawThroughCairo(const PixelTarget& target, const NSSize& natural,
                               const CGAffineTransform& t, const Paint& paint) {
  // Cairo's surfaces have sides up to 32767; larger pictures are drawn in tiles.
  constexpr int64_t kTile = 16384;
  const int64_t stride = target.width * 4;
  for (int64_t y = 0; y < target.height; y += kTile) {
    for (int64_t x = 0; x < target.width; x += kTile) {
      const SurfacePointer surface(cairo_image_surface_create_for_data(
          target.pixels + y * stride + x * 4, CAIRO_FORMAT_ARGB32,
          static_cast<int>(std::min(kTile, target.width - x)),
          static_cast<int>(std::min(kTile, target.height - y)), static_cast<int>(stride)));
      const CairoPointer context(cairo_create(surface.get()));
      const cairo_matrix_t matrix{
          t.a, t.b, t.c, t.d, t.tx - static_cast<double>(x), t.ty - static_cast<double>(y)};
      cairo_set_matrix(context.get(), &matrix);
      cairo_rectangle(context.get(), 0, 0, natural.width, natural.height);
      cairo_clip(context.get());
      const PictureResult result = paint(context.get());
      if (result != PictureResult::done) return result;
      cairo_surface_finish(surface.get());
      for (const cairo_status_t status :
           {cairo_status(context.get()), cairo_surface_status(surface.get())}) {
        if (status != CAIRO_STATUS_SUCCESS) return pictureResultOf(status);
      }
    }
  }
  return PictureResult::done;
}

/// From Cairo's words to the engine's bytes.
inline void exchangeRedAndBlue(const PixelTarget& target) {
  void* const start = target.pixels;
  auto* const pixels = static_cast<uint32_t*>(start);
  const auto count = static_cast<size_t>(target.width * target.height);
  for (size_t i = 0; i < count; ++i) {
    const uint32_t p = pixels[i];
    pixels[i] = (p & 0xff00ff00) | (p >> 16 & 0xff) | (p & 0xff) << 16;
  }
}
