// The module's face to the engine.
#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/libraries/jpeg/JPEGReader.h"
#include "platform/graphics/codecs/libraries/jpeg/JPEGWriter.h"

namespace {

class JPEGCodec final : public PictureCodec {
 public:
  void decode(std::span<const uint8_t> file, PictureTarget& target) const override {
    if (!withinMemory([&] { readJPEG(file, target); })) target.lackMemory();
  }
  bool encode(const PictureSource& picture, double quality,
              std::vector<uint8_t>& file) const override {
    bool written = false;
    return withinMemory([&] { written = writeJPEG(picture, quality, file); }) && written;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureCodec* paintPictureCodec() {
  static const JPEGCodec codec;
  return &codec;
}
