#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/text/TextLayout.h"

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

enum class DecorationKind : uint8_t { underline, strikethrough };

/// Rectangles to be filled with one colour; whole units, y down from the container's top.
struct Decoration {
  const TextStyle* style = nullptr;
  std::vector<NSRect> rects;
};

/// The decorations of a line from left to right. White space that ends the line is not decorated.
std::vector<Decoration> lineDecorations(const TextLayout& layout, const PlacedLine& line,
                                        DecorationKind kind);
