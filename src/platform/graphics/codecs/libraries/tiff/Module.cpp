// The module's face to the engine.
#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/libraries/tiff/TIFFReader.h"
#include "platform/graphics/codecs/libraries/tiff/TIFFWriter.h"

namespace {

class TIFFCodec final : public PictureCodec {
 public:
  void decode(std::span<const uint8_t> file, PictureTarget& target) const override {
    readTIFF(file, target);
  }
  bool encode(const PictureSource& picture, double, std::vector<uint8_t>& file) const override {
    return writeTIFF(picture, file);
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const PictureCodec* paintPictureCodec() {
  static const TIFFCodec codec;
  return &codec;
}
