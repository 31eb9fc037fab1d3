// SVG texts through the system's renderer, as the picture helper draws them.
#include "HelperPictureFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  drawAsHelperDoes(PictureKind::systemSVG, data, size);
  return 0;
}
