#include "platform/graphics/codecs/libraries/webp/WebPWriter.h"

#include <webp/encode.h>

#include <algorithm>

#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/PixelConversion.h"

namespace {

std::vector<uint8_t> straightPixels(const PictureSource& picture) {
  const auto count = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
  std::vector<uint8_t> pixels(count * 4);
  unpremultiplyRow(picture.pixels, pixels.data(), count);
  return pixels;
}

class WebPPictureHolder {
 public:
  WebPPictureHolder() : valid_(WebPPictureInit(&picture_) != 0) {
    WebPMemoryWriterInit(&writer_);
    picture_.writer = WebPMemoryWrite;
    picture_.custom_ptr = &writer_;
  }
  WebPPictureHolder(const WebPPictureHolder&) = delete;
  WebPPictureHolder& operator=(const WebPPictureHolder&) = delete;
  ~WebPPictureHolder() {
    WebPPictureFree(&picture_);
    WebPMemoryWriterClear(&writer_);
  }

  bool encode(const PictureSource& source, const WebPConfig& config, std::vector<uint8_t>& file);

 private:
  WebPPicture picture_{};
  WebPMemoryWriter writer_{};
  bool valid_;
};

bool WebPPictureHolder::encode(const PictureSource& source, const WebPConfig& config,
                               std::vector<uint8_t>& file) {
  if (!valid_) return true;
  picture_.width = static_cast<int>(source.width);
  picture_.height = static_cast<int>(source.height);
  picture_.use_argb = config.lossless;
  const int stride = picture_.width * 4;
  const int imported = source.hasAlpha
                           ? WebPPictureImportRGBA(&picture_, straightPixels(source).data(), stride)
                           : WebPPictureImportRGBX(&picture_, source.pixels, stride);
  if (imported == 0 || WebPEncode(&config, &picture_) == 0) {
    // Other errors are numbers that do not fit into the format.
    return picture_.error_code != VP8_ENC_ERROR_OUT_OF_MEMORY &&
           picture_.error_code != VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY &&
           picture_.error_code != VP8_ENC_ERROR_BAD_WRITE;
  }
  file.assign(writer_.mem, writer_.mem + writer_.size);
  return true;
}

}  // namespace

bool writeWebP(const PictureSource& picture, double quality, std::vector<uint8_t>& file) {
  if (picture.width > WEBP_MAX_DIMENSION || picture.height > WEBP_MAX_DIMENSION) return true;
  WebPConfig config;
  const double inRange = quality >= 0 ? std::min(quality, 1.0) : 0;
  if (WebPConfigPreset(&config, WEBP_PRESET_DRAWING, static_cast<float>(inRange * 100)) == 0) {
    return true;
  }
  if (inRange == 1) WebPConfigLosslessPreset(&config, 1);
  return WebPPictureHolder().encode(picture, config, file);
}
