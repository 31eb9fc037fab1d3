#include "svg/draw/SVGAssertion.h"

#include <cstdio>
#include <cstdlib>

namespace SVGNative {

void assertionFailed(const char* condition, const char* function, const char* source) {
  std::fprintf(stderr, "%s: %s: assertion \"%s\" failed\n", source, function, condition);
  std::abort();
}

}  // namespace SVGNative
