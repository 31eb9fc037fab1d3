#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/graphics/pixels/PixelBuffer.h"

enum class PNGEffort : uint8_t {
  fast,  ///< several times faster for about a tenth more bytes
  small
};

enum class PNGAlpha : uint8_t {
  whenNeeded,  ///< no alpha channel when every pixel is opaque
  asInBitmap   ///< an alpha channel when the bitmap has one
};

/// A text that goes into the file. The keyword has 1 to 79 characters; both are Latin-1.
struct PNGText {
  std::string keyword;
  std::string text;
};

struct PNGOptions {
  PNGEffort effort = PNGEffort::fast;
  std::vector<PNGText> texts;
  PNGAlpha alpha = PNGAlpha::whenNeeded;
  double dotsPerInch = 0;  ///< how large it is meant to be; 0 when nobody says
};

/// The pixels as a PNG file in memory: 8 bits, sRGB, straight alpha. Empty when a side is zero.
std::vector<uint8_t> writePNG(const PixelBuffer& pixels, const PNGOptions& options);
