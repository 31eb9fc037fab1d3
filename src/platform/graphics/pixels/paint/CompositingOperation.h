#pragma once

#include <cstdint>

/// How a source S combines with the destination D. Both are premultiplied; Sa and Da are their
/// alphas. The result applies only where something was painted, in proportion to its coverage.
/// The numbers are those that documents and callers use.
enum class NSCompositingOperation : uint8_t {
  clear = 0,            ///< 0
  copy = 1,             ///< S
  sourceOver = 2,       ///< S + D (1 - Sa)
  sourceIn = 3,         ///< S Da
  sourceOut = 4,        ///< S (1 - Da)
  sourceAtop = 5,       ///< S Da + D (1 - Sa)
  destinationOver = 6,  ///< S (1 - Da) + D
  destinationIn = 7,    ///< D Sa
  destinationOut = 8,   ///< D (1 - Sa)
  destinationAtop = 9,  ///< S (1 - Da) + D Sa
  exclusiveOr = 10,     ///< S (1 - Da) + D (1 - Sa)
  plusDarker = 11,      ///< max(0, A - (Sa - S) - (Da - D)), A = min(1, Sa + Da)
  highlight = 12,       ///< the same as sourceOver
  plusLighter = 13,     ///< min(1, S + D)
  multiply = 14,        ///< 14 to 28: the blend modes of W3C "Compositing and Blending Level 1"
  screen = 15,
  overlay = 16,
  darken = 17,
  lighten = 18,
  colorDodge = 19,
  colorBurn = 20,
  softLight = 21,
  hardLight = 22,
  difference = 23,
  exclusion = 24,
  hue = 25,
  saturation = 26,
  color = 27,
  luminosity = 28,
};

/// True when a fully transparent source leaves every destination as it is.
constexpr bool keepsDestinationUnderNothing(NSCompositingOperation operation) {
  switch (operation) {
    case NSCompositingOperation::clear:
    case NSCompositingOperation::copy:
    case NSCompositingOperation::sourceIn:
    case NSCompositingOperation::sourceOut:
    case NSCompositingOperation::destinationIn:
    case NSCompositingOperation::destinationAtop:
      return false;
    default:
      return true;
  }
}
