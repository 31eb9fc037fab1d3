#pragma once

#include <memory>

#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/ProfileConversion.h"

/// Makes a bitmap of what a codec delivers: sRGB, premultiplied, upright.
class DecodedPicture final : public PictureTarget {
 public:
  uint8_t* begin(const PictureInfo& info) override;
  void finish(int64_t first, int64_t end) override;

  /// The bitmap, to be called once, after decoding. Null when no row was finished; throws
  /// std::bad_alloc when there was no memory for it.
  std::shared_ptr<NSBitmapImageRep> take();

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_;
  bool lacksMemory_ = false;
  PixelLayout layout_ = PixelLayout::opaqueRGB;
  int orientation_ = 1;
  std::unique_ptr<ProfileConversion> conversion_;
};
