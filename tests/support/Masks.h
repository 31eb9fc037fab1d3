#pragma once

#include <memory>
#include <string>
#include <vector>

#include "draw/raster/ImageMask.h"
#include "support/Bitmaps.h"

/// Rows from the top down, "#" for pixels that are in.
using PixelRows = std::vector<std::string>;

std::shared_ptr<ImageMask> maskOf(const PixelRows& rows, int64_t xStart = 0, int64_t yStart = 0);
PixelRows rowsOf(const ImageMask& mask);
/// "#" for the pixels of that value, "." for the rest.
PixelRows rowsOf(const NSBitmapImageRep& bitmap, const Pixel& value);
/// Empty rows of a canvas with others put at a place, rows and y counted as masks do.
PixelRows placedRows(int64_t width, int64_t height, const PixelRows& rows, int64_t x, int64_t y);

/// A mask of random stretches, about as long as `stretch` in the mean, from one to many times as
/// long as what its kernels look at in one go.
std::shared_ptr<ImageMask> randomMask(int64_t width, int64_t height, uint64_t stretch,
                                      unsigned seed);
