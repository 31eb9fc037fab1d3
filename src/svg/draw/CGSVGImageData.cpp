#include "svg/draw/CGSVGImageData.h"

#include <cstdint>
#include <span>
#include <string>

#include "platform/graphics/bitmap/ImageFiles.h"
#include "svg/draw/Base64.h"

namespace SVGNative {

namespace {

std::shared_ptr<NSBitmapImageRep> decode(std::string_view base64, ImageEncoding encoding) {
  const std::string text = base64_decode(base64);
  const std::span<const uint8_t> file(reinterpret_cast<const uint8_t*>(text.data()), text.size());
  const ImageFormat expected =
      encoding == ImageEncoding::png ? ImageFormat::png : ImageFormat::jpeg;
  return imageFormatOf(file) == expected ? decodeImage(file) : nullptr;
}

}  // namespace

CGSVGImageData::CGSVGImageData(std::string_view base64, ImageEncoding encoding)
    : bitmap_(decode(base64, encoding)) {}

float CGSVGImageData::Width() const {
  return bitmap_ == nullptr ? 0.0f : static_cast<float>(bitmap_->pixelsWide());
}

float CGSVGImageData::Height() const {
  return bitmap_ == nullptr ? 0.0f : static_cast<float>(bitmap_->pixelsHigh());
}

}  // namespace SVGNative
