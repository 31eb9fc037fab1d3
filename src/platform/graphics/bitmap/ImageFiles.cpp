#include "platform/graphics/bitmap/ImageFiles.h"

#include <cstring>
#include <new>
#include <string_view>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/codecs/DecodedPicture.h"
#include "platform/graphics/codecs/PNGReader.h"
#include "platform/machine/LoadableModule.h"

namespace {

using namespace std::string_view_literals;

bool startsWith(std::span<const uint8_t> file, std::string_view bytes, size_t offset = 0) {
  return file.size() >= offset + bytes.size() &&
         std::memcmp(file.data() + offset, bytes.data(), bytes.size()) == 0;
}

const PictureCodec* loadCodec(const char* module) {
  return loadModuleLibrary<PictureCodec>(module, kPictureCodecEntry);
}

// Each library costs only the documents that hold such pictures: linked, the three of them and what
// they stand on take 0.4 ms of every process's start, and TIFF most of it.

const PictureCodec* jpegCodec() {
  static const PictureCodec* const codec = loadCodec("paintjpeg");
  return codec;
}

const PictureCodec* tiffCodec() {
  static const PictureCodec* const codec = loadCodec("painttiff");
  return codec;
}

const PictureCodec* webpCodec() {
  static const PictureCodec* const codec = loadCodec("paintwebp");
  return codec;
}

std::vector<uint8_t> encode(const PictureCodec* codec, const NSBitmapImageRep& bitmap,
                            double quality, double dotsPerInch) {
  if (codec == nullptr || bitmap.pixelsWide() == 0 || bitmap.pixelsHigh() == 0) return {};
  const PictureSource source{bitmap.pixelsWide(), bitmap.pixelsHigh(), bitmap.bitmapData(),
                             bitmap.hasAlpha(), dotsPerInch};
  std::vector<uint8_t> file;
  if (!codec->encode(source, quality, file)) throw std::bad_alloc();
  return file;
}

}  // namespace

ImageFormat imageFormatOf(std::span<const uint8_t> file) {
  if (startsWith(file, "\x89PNG\r\n\x1a\n"sv)) return ImageFormat::png;
  if (startsWith(file, "\xff\xd8\xff"sv)) return ImageFormat::jpeg;
  // 42 is the number of TIFF, 43 of its form with wide offsets.
  for (const auto start : {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv}) {
    if (startsWith(file, start)) return ImageFormat::tiff;
  }
  if (startsWith(file, "RIFF"sv) && startsWith(file, "WEBP"sv, 8)) return ImageFormat::webp;
  return ImageFormat::unknown;
}

const char* nameOf(ImageFormat format) {
  switch (format) {
    case ImageFormat::png:
      return "PNG";
    case ImageFormat::jpeg:
      return "JPEG";
    case ImageFormat::tiff:
      return "TIFF";
    case ImageFormat::webp:
      return "WebP";
    case ImageFormat::unknown:
      break;
  }
  return "";
}

std::shared_ptr<NSBitmapImageRep> decodeImage(std::span<const uint8_t> file, bool* isTooLarge) {
  DecodedPicture picture;
  const PictureCodec* codec = nullptr;
  switch (imageFormatOf(file)) {
    case ImageFormat::png:
      readPNG(file, picture);
      break;
    case ImageFormat::jpeg:
      codec = jpegCodec();
      break;
    case ImageFormat::tiff:
      codec = tiffCodec();
      break;
    case ImageFormat::webp:
      codec = webpCodec();
      break;
    case ImageFormat::unknown:
      break;
  }
  if (codec != nullptr) codec->decode(file, picture);
  auto pixels = picture.take();
  if (isTooLarge != nullptr) *isTooLarge = picture.isTooLarge();
  return pixels ? std::make_shared<NSBitmapImageRep>(std::move(*pixels)) : nullptr;
}

std::vector<uint8_t> encodePNG(const NSBitmapImageRep& bitmap, const PNGOptions& options) {
  return writePNG(bitmap.pixels(), options);
}

std::vector<uint8_t> encodeTIFF(const NSBitmapImageRep& bitmap, double dotsPerInch) {
  return encode(tiffCodec(), bitmap, 1, dotsPerInch);
}

std::vector<uint8_t> encodeJPEG(const NSBitmapImageRep& bitmap, double quality,
                                double dotsPerInch) {
  return encode(jpegCodec(), bitmap, quality, dotsPerInch);
}

std::vector<uint8_t> encodeWebP(const NSBitmapImageRep& bitmap, double quality) {
  return encode(webpCodec(), bitmap, quality, 0);
}
