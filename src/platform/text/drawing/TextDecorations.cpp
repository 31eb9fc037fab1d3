#include "platform/text/drawing/TextDecorations.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "platform/text/TextCharacters.h"
#include "platform/text/TextLengths.h"
#include "platform/text/layout/LineStyle.h"

namespace {

/// Dashes of one line; with more of them it is drawn solid.
constexpr double kMaxDashes = 10000;

/// Lengths of dashes and gaps by turns, in line thicknesses.
std::span<const double> dashPattern(int32_t style) {
  static constexpr double kDot[] = {1, 1};
  static constexpr double kDash[] = {4, 2};
  static constexpr double kDashDot[] = {4, 2, 1, 2};
  static constexpr double kDashDotDot[] = {4, 2, 1, 2, 1, 2};
  switch (style & kLinePatternMask) {
    case kLinePatternDot:
      return kDot;
    case kLinePatternDash:
      return kDash;
    case kLinePatternDashDot:
      return kDashDot;
    case kLinePatternDashDotDot:
      return kDashDotDot;
    default:
      return {};
  }
}

/// 0 for no line; by-word and pattern bits alone draw nothing.
int32_t lineStyle(const TextStyle& style, DecorationKind kind) {
  const int32_t bits = kind == DecorationKind::underline ? style.underline : style.strikethrough;
  return (bits & kLineStyleMask) == 0 ? 0 : bits;
}

/// A stretch of a line under one decoration.
struct DecoratedSpan {
  double left;
  double right;
};

double thickness(const TextStyle& style, int32_t bits) {
  // Fonts that do not say have a twentieth of the em.
  constexpr double kUsual = 0.05;
  const double font = style.font->underlineThickness();
  const double t = font > 0 ? font : kUsual * style.font->pointSize();
  return std::max(1.0, std::ceil((bits & kLineStyleMask) == kLineStyleThick ? 2 * t : t));
}

/// Top of the line that decorates, from the container's top.
double lineTop(const PlacedLine& line, const PlacedRun& run, DecorationKind kind, double t) {
  const double baseline = line.top + line.baseline - run.rise;
  if (kind == DecorationKind::underline) return std::round(baseline) + t;
  return std::round(baseline - run.style->font->xHeight() / 2 - t / 2);
}

void addRects(const DecoratedSpan& stretch, double top, double t, int32_t bits,
              std::vector<NSRect>& rects) {
  const double left = std::floor(stretch.left);
  const double right = std::ceil(stretch.right);
  const std::span<const double> pattern = dashPattern(bits);
  if (pattern.empty() || right - left > kMaxDashes * t) {
    rects.push_back(NSMakeRect(left, top, right - left, t));
    return;
  }
  double x = left;
  for (size_t i = 0; x < right; i = (i + 1) % pattern.size()) {
    const double length = pattern[i] * t;
    if (i % 2 == 0) rects.push_back(NSMakeRect(x, top, std::min(length, right - x), t));
    x += length;
  }
}

bool isBlank(std::u16string_view text, const PlacedRun& run) {
  const std::u16string_view part = text.substr(run.start, run.length);
  return std::all_of(part.begin(), part.end(), hangs);
}

/// The part of a run that a decoration covers; empty when it covers none.
DecoratedSpan decoratedPart(std::u16string_view text, const PlacedLine& line, const PlacedRun& run,
                            int32_t bits) {
  if (bits == 0 || ((bits & kLineByWord) != 0 && isBlank(text, run))) return {0, 0};
  return {std::max(run.x, line.contentLeft), std::min(run.x + run.width, line.contentRight)};
}

}  // namespace

std::vector<Decoration> lineDecorations(const TextLayout& layout, const PlacedLine& line,
                                        DecorationKind kind) {
  std::vector<Decoration> decorations;
  const auto runs = std::span(layout.runs).subspan(line.firstRun, line.runCount);
  for (size_t i = 0; i < runs.size();) {
    const TextStyle* style = runs[i].style;
    const int32_t bits = lineStyle(*style, kind);
    DecoratedSpan stretch = decoratedPart(layout.text->text, line, runs[i], bits);
    // Neighbours of one style share a line, so that nothing is painted twice where they meet.
    const PlacedRun& first = runs[i];
    for (++i; i < runs.size() && runs[i].style == style; ++i) {
      const DecoratedSpan next = decoratedPart(layout.text->text, line, runs[i], bits);
      if (!(stretch.right > stretch.left) || next.left > stretch.right + kPositionTolerance) break;
      stretch.right = std::max(stretch.right, next.right);
    }
    if (!(stretch.right > stretch.left)) continue;
    const double t = thickness(*style, bits);
    const double top = lineTop(line, first, kind, t);
    Decoration decoration;
    decoration.style = style;
    addRects(stretch, top, t, bits, decoration.rects);
    if ((bits & kLineStyleMask) == kLineStyleDouble) {
      addRects(stretch, top + 2 * t, t, bits, decoration.rects);
    }
    decorations.push_back(std::move(decoration));
  }
  return decorations;
}
