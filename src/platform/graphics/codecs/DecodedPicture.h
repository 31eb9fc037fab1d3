#pragma once

#include <memory>
#include <optional>

#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/ProfileConversion.h"
#include "platform/graphics/pixels/PixelBuffer.h"

/// Makes pixels of what a codec delivers: sRGB, premultiplied, upright.
class DecodedPicture final : public PictureTarget {
 public:
  uint8_t* begin(const PictureInfo& info) override;
  void finish(int64_t first, int64_t end) override;
  void finishInks(int64_t first, int64_t end, const uint8_t* alpha) override;
  void lackMemory() noexcept override { lacksMemory_ = true; }

  /// The pixels, to be called once, after decoding. Nothing when no row was finished; throws
  /// std::bad_alloc when there was no memory for it.
  std::optional<PixelBuffer> take();
  /// Whether the codec gave up because the picture is larger than a canvas may be.
  bool isTooLarge() const { return isTooLarge_; }

 private:
  std::optional<PixelBuffer> pixels_;
  bool lacksMemory_ = false;
  bool isTooLarge_ = false;
  PixelLayout layout_ = PixelLayout::opaqueRGB;
  int orientation_ = 1;
  std::shared_ptr<const ProfileConversion> conversion_;
};
