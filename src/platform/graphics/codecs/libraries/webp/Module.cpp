// The module's face to the engine.
#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/libraries/webp/WebPReader.h"
#include "platform/graphics/codecs/libraries/webp/WebPWriter.h"

namespace {

class WebPCodec final : public PictureCodec {
 public:
  void decode(std::span<const uint8_t> file, PictureTarget& target) const override {
    readWebP(file, target);
  }
  std::vector<uint8_t> encode(const PictureSource& picture, double quality) const override {
    return writeWebP(picture, quality);
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureCodec* paintPictureCodec() {
  static const WebPCodec codec;
  return &codec;
}
