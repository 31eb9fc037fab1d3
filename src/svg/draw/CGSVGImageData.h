#pragma once

#include <memory>
#include <string_view>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "svg/draw/SVGRenderer.h"

namespace SVGNative {

/// A PNG or JPEG picture of a "data:" URL.
class CGSVGImageData : public ImageData {
 public:
  CGSVGImageData(std::string_view base64, ImageEncoding encoding);

  float Width() const override;
  float Height() const override;
  /// Null when the text does not decode to a picture of that encoding.
  const std::shared_ptr<NSBitmapImageRep>& bitmap() const { return bitmap_; }

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_;
};

}  // namespace SVGNative
