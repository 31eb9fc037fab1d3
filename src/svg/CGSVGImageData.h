#pragma once

#include <memory>
#include <string_view>

#include "platform/graphics/NSBitmapImageRep.h"
#include "svg/SVGRenderer.h"

namespace SVGNative {

/// A PNG or JPEG picture of a "data:" URL. There are no decoders in the drawing layer yet, so that
/// every image is one without a picture: it measures 0 by 0 and draws nothing.
class CGSVGImageData : public ImageData {
 public:
  CGSVGImageData(std::string_view base64, ImageEncoding encoding);

  float Width() const override;
  float Height() const override;
  /// Null without a picture.
  const std::shared_ptr<NSBitmapImageRep>& bitmap() const { return bitmap_; }

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_;
};

}  // namespace SVGNative
