#pragma once

#include "svg/draw/SVGAssertion.h"

/// Thrown in place of the assertion that ends the process at an arc of an unsupported kind: such
/// inputs are no findings. Include in one source of a fuzz target; its definition is taken instead
/// of the library's.
struct UnsupportedArc {};

namespace SVGNative {

void assertionFailed(const char* /*condition*/, const char* /*function*/, const char* /*source*/) {
  throw UnsupportedArc();
}

}  // namespace SVGNative
