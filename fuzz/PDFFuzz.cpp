// PDF files, as far as the picture helper goes with them: the first page.
#include "HelperPictureFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  drawAsHelperDoes(PictureKind::pdf, data, size);
  return 0;
}
