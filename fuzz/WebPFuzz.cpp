// WebP files of any kind.
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/codecs/ImageDecoder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (imageFormatOf({data, size}) == ImageFormat::webp) decodeImage({data, size});
  return 0;
}
