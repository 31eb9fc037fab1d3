#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/foundation/PaintExport.h"
#include "platform/graphics/codecs/PNGWriter.h"

class NSBitmapImageRep;

enum class ImageFormat : uint8_t { unknown, png, jpeg, tiff, webp };

/// What the first bytes of a file say that it is.
ImageFormat imageFormatOf(std::span<const uint8_t> file);

/// "PNG" and so on; empty for the unknown one.
const char* nameOf(ImageFormat format);

/// The picture in a file of any of the formats: sRGB, premultiplied, upright, with hasAlpha as in
/// the file. Rows that a truncated file lacks are transparent. Null when nothing can be decoded,
/// and for pictures larger than limits::kMaxCanvasPixels.
PAINT_API std::shared_ptr<NSBitmapImageRep> decodeImage(std::span<const uint8_t> file,
                                                        bool* isTooLarge = nullptr);

/// The bitmap as a PNG file in memory: 8 bits, sRGB, straight alpha. Empty when a side is zero.
PAINT_API std::vector<uint8_t> encodePNG(const NSBitmapImageRep& bitmap,
                                         const PNGOptions& options = {});

/// Empty when a side is zero or beyond what the format can hold, or without the format's library.
/// `dotsPerInch` says how large it is meant to be, 0 nothing; so below.
PAINT_API std::vector<uint8_t> encodeTIFF(const NSBitmapImageRep& bitmap, double dotsPerInch = 0);
/// `quality` from 0 to 1. Translucent pixels appear over black.
PAINT_API std::vector<uint8_t> encodeJPEG(const NSBitmapImageRep& bitmap, double quality,
                                          double dotsPerInch = 0);
/// `quality` from 0 to 1, which is lossless; with alpha when the bitmap has it.
PAINT_API std::vector<uint8_t> encodeWebP(const NSBitmapImageRep& bitmap, double quality);
