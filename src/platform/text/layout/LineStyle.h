#pragma once

#include <cstdint>

// Lines drawn under and through text. Style bits, as archives hold them:
inline constexpr int32_t kLineStyleMask = 0x0f;
inline constexpr int32_t kLineStyleThick = 0x02;
inline constexpr int32_t kLineStyleDouble = 0x09;
inline constexpr int32_t kLinePatternMask = 0x0700;
inline constexpr int32_t kLinePatternDot = 0x0100;
inline constexpr int32_t kLinePatternDash = 0x0200;
inline constexpr int32_t kLinePatternDashDot = 0x0300;
inline constexpr int32_t kLinePatternDashDotDot = 0x0400;
inline constexpr int32_t kLineByWord = 0x8000;
