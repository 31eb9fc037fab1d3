// PNG files of any kind.
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (imageFormatOf({data, size}) == ImageFormat::png) decodeImage({data, size});
  return 0;
}
