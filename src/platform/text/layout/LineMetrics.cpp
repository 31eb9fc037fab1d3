#include "platform/text/layout/LineMetrics.h"

#include <algorithm>
#include <cmath>

#include "platform/text/TextLengths.h"

namespace {

/// What the platform adds to lines of its oldest families, which have no leading of their own.
constexpr double kLegacyLeading = 0.2;

/// Halves go up, also those of negative numbers.
double roundHalfUp(double value) {
  return std::floor(value + 0.5);
}

}  // namespace

void LineMetrics::include(const LineMetrics& other) {
  legacyLeading = std::max(legacyLeading, other.legacyLeading);
  ascent = std::max(ascent, other.ascent);
  descent = std::max(descent, other.descent);
  leading = std::max(leading, other.leading);
}

LineMetrics lineMetrics(const ResolvedFont& font, const TextStyle& style, FontLeading leading) {
  const double size = style.font->pointSize() * std::abs(style.font->matrix().d);
  LineMetrics m;
  m.ascent = roundHalfUp(font.metrics.ascent * size);
  m.descent = roundHalfUp(font.metrics.descent * size);
  const double gap = roundHalfUp(std::max(font.metrics.leading, 0.0) * size);
  if (font.legacyLeading == LegacyLeading::added && gap == 0) {
    m.legacyLeading = roundHalfUp(kLegacyLeading * (m.ascent + m.descent));
  }
  if (leading == FontLeading::used) m.leading = gap;
  m.ascent += std::max(0.0, roundHalfUp(baselineRise(style)));
  return m;
}

LineMetrics attachmentMetrics(const NSRect& bounds) {
  LineMetrics m;
  m.ascent = std::max(0.0, roundHalfUp(NSMaxY(bounds)));
  m.descent = std::max(0.0, roundHalfUp(-NSMinY(bounds)));
  return m;
}

double baselineRise(const TextStyle& style) {
  const double superscript = style.superscript == 0 ? 0 : style.superscript * style.font->xHeight();
  return layoutLength(style.baselineOffset + superscript);
}
