#pragma once

#include <initializer_list>
#include <string_view>
#include <utility>

#include "support/Bitmaps.h"

using FilterSettings = std::initializer_list<std::pair<std::string_view, double>>;

/// The bitmap through one filter; `extended` continues its edges and crops the result back. Null
/// when there is no result.
std::shared_ptr<NSBitmapImageRep> filtered(const std::shared_ptr<NSBitmapImageRep>& bitmap,
                                           std::string_view name, FilterSettings settings = {},
                                           bool extended = false);

/// Grey ramp, black and white edges, colour patches, and a ramp of alpha: 96 x 64 pixels.
std::shared_ptr<NSBitmapImageRep> filterChart();
/// The same without the ramp of alpha.
std::shared_ptr<NSBitmapImageRep> opaqueChart();
/// One opaque colour.
std::shared_ptr<NSBitmapImageRep> plainBitmap(int64_t width, int64_t height, Pixel color);
