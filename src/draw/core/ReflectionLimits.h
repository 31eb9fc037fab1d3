#pragma once

/// A reflection is never nearer to its draw than this.
inline constexpr float kLowestReflectionDistance = -60;

/// No distance was ever set: far below the lowest, so that decoding takes 0 instead.
inline constexpr float kUnsetReflectionDistance = -10060;
