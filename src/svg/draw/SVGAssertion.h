#pragma once

namespace SVGNative {

/// Ends the process (SIGABRT) in every kind of build, after one line on standard error that names
/// the condition, the function and the source.
[[noreturn]] void assertionFailed(const char* condition, const char* function, const char* source);

}  // namespace SVGNative

/// An assertion that stays in release builds.
#define SVG_ASSERT(condition, source) \
  ((condition) ? void() : SVGNative::assertionFailed(#condition, __func__, source))
