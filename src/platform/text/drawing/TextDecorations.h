#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/text/layout/TextLayout.h"

enum class DecorationKind : uint8_t { underline, strikethrough };

/// Rectangles to be filled with one colour; whole units, y down from the container's top.
struct Decoration {
  const TextStyle* style = nullptr;
  std::vector<NSRect> rects;
};

/// The decorations of a line from left to right. White space that ends the line is not decorated.
std::vector<Decoration> lineDecorations(const TextLayout& layout, const PlacedLine& line,
                                        DecorationKind kind);
