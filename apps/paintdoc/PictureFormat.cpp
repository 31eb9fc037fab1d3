#include "paintdoc/PictureFormat.h"

#include <algorithm>
#include <cctype>

#include "paintdoc/PictureEdits.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"

namespace {

struct Ending {
  const char* name;
  PictureFormat format;
};

// The first ending of a format is its name.
constexpr Ending kEndings[] = {
    {"png", PictureFormat::png},   {"jpeg", PictureFormat::jpeg}, {"jpg", PictureFormat::jpeg},
    {"webp", PictureFormat::webp}, {"tiff", PictureFormat::tiff}, {"tif", PictureFormat::tiff},
};

std::vector<uint8_t> encodeOverWhite(const NSBitmapImageRep& bitmap, double quality,
                                     double dotsPerInch) {
  const auto flat = bitmapOver(bitmap, *NSColor::whiteColor());
  return flat == nullptr ? std::vector<uint8_t>() : encodeJPEG(*flat, quality, dotsPerInch);
}

}  // namespace

std::optional<PictureFormat> pictureFormatNamed(const std::string& name) {
  std::string lower = name;
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const Ending& ending : kEndings) {
    if (lower == ending.name) return ending.format;
  }
  return std::nullopt;
}

std::optional<PictureFormat> pictureFormatOfPath(const std::string& path) {
  const std::string file = path.substr(path.rfind('/') + 1);
  const size_t dot = file.rfind('.');
  return dot == std::string::npos ? PictureFormat::png : pictureFormatNamed(file.substr(dot + 1));
}

std::vector<std::string> knownPictureFormats() {
  std::vector<std::string> names;
  for (const Ending& ending : kEndings) names.emplace_back(ending.name);
  return names;
}

const char* nameOf(PictureFormat format) {
  return std::find_if(std::begin(kEndings), std::end(kEndings),
                      [&](const Ending& ending) { return ending.format == format; })
      ->name;
}

std::vector<uint8_t> encodePicture(const NSBitmapImageRep& bitmap, PictureFormat format,
                                   double quality, double dotsPerInch) {
  switch (format) {
    case PictureFormat::jpeg:
      return encodeOverWhite(bitmap, quality, dotsPerInch);
    case PictureFormat::webp:
      return encodeWebP(bitmap, quality);
    case PictureFormat::tiff:
      return encodeTIFF(bitmap, dotsPerInch);
    case PictureFormat::png:
      break;
  }
  return encodePNG(bitmap, {.texts = {}, .dotsPerInch = dotsPerInch});
}
