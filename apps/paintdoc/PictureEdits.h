#pragma once

#include <memory>

#include "paintdoc/PictureLayout.h"

class NSBitmapImageRep;
class NSColor;

// All of these make new bitmaps; null when there is no memory for one.

/// The pixels of a bitmap from a place, counted from its upper left corner, all inside of it.
std::shared_ptr<NSBitmapImageRep> croppedBitmap(const NSBitmapImageRep& bitmap, int64_t x,
                                                int64_t y, PictureBox size);

/// Without the rows and columns at the edges that are wholly transparent; empty, not null, when all
/// are.
std::shared_ptr<NSBitmapImageRep> trimmedBitmap(const NSBitmapImageRep& bitmap);

/// Resampled into another size.
std::shared_ptr<NSBitmapImageRep> resizedBitmap(const NSBitmapImageRep& bitmap, PictureBox size);

/// Over a colour.
std::shared_ptr<NSBitmapImageRep> bitmapOver(const NSBitmapImageRep& bitmap, const NSColor& color);
