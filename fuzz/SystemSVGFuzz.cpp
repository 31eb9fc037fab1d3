// SVG texts through the system's renderer, as the picture helper draws them.
#include "HelperPictureFuzz.h"

/// The renderer keeps texts of entities, which end with the helper.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:libxml2.so";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  drawAsHelperDoes(PictureKind::systemSVG, data, size);
  return 0;
}
