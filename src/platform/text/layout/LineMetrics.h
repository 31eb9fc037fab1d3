#pragma once

#include "platform/text/layout/TextLayout.h"

/// Extent of a line above and below its baseline, whole points.
struct LineMetrics {
  double legacyLeading = 0;  ///< above the ascent: see LegacyLeading
  double ascent = 0;
  double descent = 0;
  double leading = 0;  ///< below the descent

  double height() const { return baseline() + descent + leading; }
  /// From the line's top.
  double baseline() const { return legacyLeading + ascent; }
  /// Takes the larger of each.
  void include(const LineMetrics& other);
};

/// Of text in a face. Each part is rounded by itself, as the platform does: that makes line tops
/// and baselines whole points.
LineMetrics lineMetrics(const ResolvedFont& font, const TextStyle& style, FontLeading leading);

/// Of a picture that stands at the baseline, `bounds` from there, y up.
LineMetrics attachmentMetrics(const NSRect& bounds);

/// Distance of a style's baseline above the line's, points.
double baselineRise(const TextStyle& style);
