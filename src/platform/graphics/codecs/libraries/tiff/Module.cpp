// The module's face to the engine.
#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/libraries/tiff/TIFFReader.h"
#include "platform/graphics/codecs/libraries/tiff/TIFFWriter.h"

namespace {

class TIFFCodec final : public PictureCodec {
 public:
  void decode(std::span<const uint8_t> file, PictureTarget& target) const override {
    if (!withinMemory([&] { readTIFF(file, target); })) target.lackMemory();
  }
  bool encode(const PictureSource& picture, double, std::vector<uint8_t>& file) const override {
    bool written = false;
    return withinMemory([&] { written = writeTIFF(picture, file); }) && written;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureCodec* paintPictureCodec() {
  static const TIFFCodec codec;
  return &codec;
}
