// The module's face to the engine.
#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/libraries/webp/WebPReader.h"
#include "platform/graphics/codecs/libraries/webp/WebPWriter.h"

namespace {

class WebPCodec final : public PictureCodec {
 public:
  void decode(std::span<const uint8_t> file, PictureTarget& target) const override {
    if (!withinMemory([&] { readWebP(file, target); })) target.lackMemory();
  }
  bool encode(const PictureSource& picture, double quality,
              std::vector<uint8_t>& file) const override {
    bool written = false;
    return withinMemory([&] { written = writeWebP(picture, quality, file); }) && written;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureCodec* paintPictureCodec() {
  static const WebPCodec codec;
  return &codec;
}
