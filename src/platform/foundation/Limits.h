#pragma once

#include <cstddef>
#include <cstdint>

/// Every bound that a document may run into, each with its reason.
namespace limits {

/// The format's own limit on a canvas; no bitmap of any kind may be larger.
inline constexpr int64_t kMaxCanvasPixels = 250'000'000;

/// Largest file read. Documents hold pictures, so hundreds of megabytes are legitimate; beyond
/// this 32-bit tools that share the format give up too.
inline constexpr int64_t kMaxFileBytes = int64_t{2} << 30;

/// Containers inside containers in a property list; what the platform's own reader allows.
inline constexpr int kMaxPropertyListDepth = 512;

/// Objects being decoded inside each other. Groups, arrays and texts of real documents nest a
/// dozen deep; the limit keeps the stack of a hostile chain of objects bounded.
inline constexpr int kMaxDecodingDepth = 256;

}  // namespace limits
