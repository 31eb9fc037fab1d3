#pragma once

#include <cstdint>

#include "platform/graphics/pixels/paint/CompositingOperation.h"

/// d = f(s, d) over n pixels.
using BlendFunction = void (*)(uint32_t* d, const uint32_t* s, int32_t n);

/// The function of an operation at full coverage.
BlendFunction blendFunction(NSCompositingOperation operation);
