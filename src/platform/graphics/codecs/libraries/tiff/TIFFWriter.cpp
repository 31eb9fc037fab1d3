#include "platform/graphics/codecs/libraries/tiff/TIFFWriter.h"

#include <cstring>

#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/libraries/tiff/TIFFHandle.h"

namespace {

/// Bytes that the library may take at once: more than any row has.
constexpr int64_t kLargestBlock = int64_t{1} << 30;

/// What a fraction of two 32-bit numbers holds with all of its places.
constexpr double kMostDotsPerInch = 1e6;

void describe(TIFF* tiff, const PictureSource& picture) {
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(picture.width));
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(picture.height));
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, picture.hasAlpha ? 4 : 3);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  if (picture.hasAlpha) {
    const uint16_t kind = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
  }
  if (picture.dotsPerInch >= 1 && picture.dotsPerInch <= kMostDotsPerInch) {
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, picture.dotsPerInch);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, picture.dotsPerInch);
  }
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
  TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

/// A row as it is stored; the library changes it when it predicts.
void packRow(const PictureSource& picture, int64_t y, uint8_t* out) {
  const auto width = static_cast<size_t>(picture.width);
  const uint8_t* in = picture.pixels + static_cast<size_t>(y) * width * 4;
  if (picture.hasAlpha) {
    std::memcpy(out, in, width * 4);
    return;
  }
  for (size_t x = 0; x < width; ++x) std::memcpy(out + x * 3, in + x * 4, 3);
}

}  // namespace

bool writeTIFF(const PictureSource& picture, std::vector<uint8_t>& file) {
  TIFFMemory memory;
  // Big-endian, as the host's own files.
  TIFFHandle tiff = memory.open("wb", kLargestBlock);
  if (tiff == nullptr) return false;
  describe(tiff.get(), picture);
  std::vector<uint8_t> row(static_cast<size_t>(picture.width) * 4);
  for (int64_t y = 0; y < picture.height; ++y) {
    packRow(picture, y, row.data());
    if (TIFFWriteScanline(tiff.get(), row.data(), static_cast<uint32_t>(y), 0) < 0) return false;
  }
  if (TIFFFlush(tiff.get()) != 1) return false;
  tiff.reset();
  file = memory.takeOutput();
  return true;
}
