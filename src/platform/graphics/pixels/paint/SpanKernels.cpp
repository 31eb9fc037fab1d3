#include "platform/graphics/pixels/paint/SpanKernels.h"

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/machine/TargetClones.h"

TARGET_CLONES void fillSpan(uint32_t* d, int32_t n, uint32_t s) {
  for (int32_t i = 0; i < n; ++i) d[i] = s;
}

TARGET_CLONES void mixSolid(uint32_t* d, int32_t n, uint32_t s, uint32_t cover) {
  for (int32_t i = 0; i < n; ++i) d[i] = mixed(d[i], s, cover);
}

TARGET_CLONES void mixSolid(uint32_t* d, int32_t n, uint32_t s, const uint8_t* covers) {
  for (int32_t i = 0; i < n; ++i) d[i] = mixed(d[i], s, covers[i]);
}

TARGET_CLONES void mixRow(uint32_t* d, int32_t n, const uint32_t* s, uint32_t cover) {
  for (int32_t i = 0; i < n; ++i) d[i] = mixed(d[i], s[i], cover);
}

TARGET_CLONES void mixRow(uint32_t* d, int32_t n, const uint32_t* s, const uint8_t* covers) {
  for (int32_t i = 0; i < n; ++i) d[i] = mixed(d[i], s[i], covers[i]);
}

TARGET_CLONES void overSolid(uint32_t* d, int32_t n, uint32_t s, uint32_t cover) {
  const uint32_t covered = scaled(s, cover);
  const uint32_t rest = 255 - alphaOf(covered);
  for (int32_t i = 0; i < n; ++i) d[i] = covered + scaled(d[i], rest);
}

TARGET_CLONES void overSolid(uint32_t* d, int32_t n, uint32_t s, const uint8_t* covers) {
  for (int32_t i = 0; i < n; ++i) d[i] = sourceOver(scaled(s, covers[i]), d[i]);
}

TARGET_CLONES void overRow(uint32_t* d, int32_t n, const uint32_t* s, uint32_t cover) {
  if (cover == 255) {
    for (int32_t i = 0; i < n; ++i) d[i] = sourceOverSaturating(s[i], d[i]);
  } else {
    for (int32_t i = 0; i < n; ++i) d[i] = sourceOverSaturating(scaled(s[i], cover), d[i]);
  }
}

TARGET_CLONES void overRow(uint32_t* d, int32_t n, const uint32_t* s, const uint8_t* covers) {
  for (int32_t i = 0; i < n; ++i) d[i] = sourceOverSaturating(scaled(s[i], covers[i]), d[i]);
}

TARGET_CLONES void scaleRow(uint32_t* d, int32_t n, uint32_t alpha) {
  for (int32_t i = 0; i < n; ++i) d[i] = scaled(d[i], alpha);
}
