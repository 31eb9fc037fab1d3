#include "svg/CGSVGImageData.h"

namespace SVGNative {

CGSVGImageData::CGSVGImageData(std::string_view /*base64*/, ImageEncoding /*encoding*/) {}

float CGSVGImageData::Width() const {
  return bitmap_ == nullptr ? 0.0f : static_cast<float>(bitmap_->pixelsWide());
}

float CGSVGImageData::Height() const {
  return bitmap_ == nullptr ? 0.0f : static_cast<float>(bitmap_->pixelsHigh());
}

}  // namespace SVGNative
