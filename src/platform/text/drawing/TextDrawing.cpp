#include "platform/text/drawing/TextDrawing.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/color/PaintComponents.h"
#include "platform/graphics/context/CGContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/text/TextCharacters.h"
#include "platform/text/drawing/GlyphPainter.h"
#include "platform/text/drawing/TextDecorations.h"

namespace {

using Runs = std::span<const PlacedRun>;

Runs runsOf(const TextLayout& layout, const PlacedLine& line) {
  return Runs(layout.runs).subspan(line.firstRun, line.runCount);
}

bool beginsIn(const PlacedLine& line, const NSRange& units) {
  return line.start >= units.location && line.start - units.location < units.length;
}

bool sameColor(const std::shared_ptr<const NSColor>& a, const std::shared_ptr<const NSColor>& b) {
  return a == b || (a != nullptr && b != nullptr && a->isEqual(*b));
}

/// How many of the runs from the first on are alike.
template <class Alike>
size_t countAlike(Runs runs, Alike alike) {
  size_t count = 1;
  while (count < runs.size() && alike(*runs[0].style, *runs[count].style)) ++count;
  return count;
}

NSRect moved(const NSRect& r, NSPoint by) {
  return NSOffsetRect(r, by.x, by.y);
}

/// A shadow in force up to end(), on a layer that is no larger than what it shows.
class ShadowScope {
 public:
  /// `ink` holds all that is going to be drawn, in user space.
  ShadowScope(CGContext& context, const NSShadow& shadow, const NSRect& ink) : state_(context) {
    const NSSize offset = shadow.shadowOffset();
    const double reach = shadow.shadowBlurRadius();
    // Offsets are in the bitmap's axes: back to those of the text.
    CGAffineTransform axes = context.state().transform;
    axes.tx = axes.ty = 0;
    const NSPoint there =
        CGPointApplyAffineTransform({offset.width, offset.height}, CGAffineTransformInvert(axes));
    const NSRect cast = NSInsetRect(moved(ink, there), -reach, -reach);
    context.clip(NSIntegralRect(NSUnionRect(ink, cast)));
    context.setShadow({offset, reach, paintComponents(*shadow.shadowColor())});
    layer_.emplace(context);
  }
  void end() { layer_->end(); }

 private:
  CGContextStateScope state_;
  std::optional<CGTransparencyLayerScope> layer_;
};

/// Draws the lines of one text.
class LineDrawer {
 public:
  LineDrawer(const TextLayout& layout, NSPoint at, CGContext& context)
      : layout_(layout), at_(at), context_(context), painter_(context) {}

  void drawGlyphs(const PlacedLine& line);
  void drawBackground(const PlacedLine& line);

 private:
  void drawRuns(const PlacedLine& line, Runs runs);
  bool isAttachment(const PlacedRun& run) const;
  void drawAttachment(const TextStyle& style, NSPoint baseline);
  void drawDecorations(const PlacedLine& line, DecorationKind kind);
  NSPoint originOf(const PlacedLine& line, const PlacedRun& run) const {
    return {at_.x + run.x, at_.y + line.top + line.baseline - run.rise};
  }

  const TextLayout& layout_;
  NSPoint at_;
  CGContext& context_;
  GlyphPainter painter_;
};

void LineDrawer::drawBackground(const PlacedLine& line) {
  const auto alike = [](const TextStyle& a, const TextStyle& b) {
    return sameColor(a.background, b.background);
  };
  for (Runs rest = runsOf(layout_, line); !rest.empty();) {
    const Runs runs = rest.first(countAlike(rest, alike));
    rest = rest.subspan(runs.size());
    const auto& color = runs[0].style->background;
    if (color == nullptr) continue;
    const double left = std::max(runs.front().x, line.x);
    const double right = std::min(runs.back().x + runs.back().width, line.x + line.usedWidth);
    if (!(right > left)) continue;
    context_.setFillColor(paintComponents(*color));
    context_.fill(moved(NSMakeRect(left, line.top, right - left, line.height), at_));
  }
}

void LineDrawer::drawGlyphs(const PlacedLine& line) {
  const auto alike = [](const TextStyle& a, const TextStyle& b) { return a.shadow == b.shadow; };
  for (Runs rest = runsOf(layout_, line); !rest.empty();) {
    const Runs runs = rest.first(countAlike(rest, alike));
    rest = rest.subspan(runs.size());
    drawRuns(line, runs);
  }
  drawDecorations(line, DecorationKind::underline);
  drawDecorations(line, DecorationKind::strikethrough);
}

void LineDrawer::drawRuns(const PlacedLine& line, Runs runs) {
  const auto& shadow = runs[0].style->shadow;
  std::optional<ShadowScope> scope;
  if (shadow != nullptr && shadow->shadowColor() != nullptr) {
    NSRect ink = NSZeroRect;
    for (const PlacedRun& run : runs) {
      ink = NSUnionRect(ink, moved(glyphBounds(layout_, run), originOf(line, run)));
    }
    if (NSIsEmptyRect(ink)) return;
    scope.emplace(context_, *shadow, ink);
  }
  for (const PlacedRun& run : runs) {
    if (isAttachment(run)) {
      drawAttachment(*run.style, originOf(line, run));
    } else {
      painter_.paint(layout_, run, originOf(line, run));
    }
  }
  if (scope) scope->end();
}

bool LineDrawer::isAttachment(const PlacedRun& run) const {
  return run.style->attachment != nullptr && run.length == 1 &&
         layout_.text->text[run.start] == kObjectReplacement;
}

void LineDrawer::drawAttachment(const TextStyle& style, NSPoint baseline) {
  const auto bitmap = style.attachment->bitmap();
  if (bitmap == nullptr) return;
  const CGContextStateScope state(context_);
  context_.concatenate({1, 0, 0, -1, baseline.x, baseline.y});
  context_.draw(*bitmap, style.attachmentBounds);
}

void LineDrawer::drawDecorations(const PlacedLine& line, DecorationKind kind) {
  for (const Decoration& decoration : lineDecorations(layout_, line, kind)) {
    const TextStyle& style = *decoration.style;
    const auto& own =
        kind == DecorationKind::underline ? style.underlineColor : style.strikethroughColor;
    const NSColor* color = own != nullptr ? own.get() : style.foreground.get();
    std::optional<ShadowScope> scope;
    if (style.shadow != nullptr && style.shadow->shadowColor() != nullptr) {
      NSRect ink = NSZeroRect;
      for (const NSRect& rect : decoration.rects) ink = NSUnionRect(ink, rect);
      scope.emplace(context_, *style.shadow, moved(ink, at_));
    }
    context_.setFillColor(color == nullptr ? RGBAColor{} : paintComponents(*color));
    for (const NSRect& rect : decoration.rects) context_.fill(moved(rect, at_));
    if (scope) scope->end();
  }
}

}  // namespace

void drawTextBackground(const TextLayout& layout, const NSRange& units, NSPoint at,
                        CGContext& context) {
  const CGContextStateScope state(context);
  LineDrawer drawer(layout, at, context);
  for (const PlacedLine& line : layout.lines) {
    if (beginsIn(line, units)) drawer.drawBackground(line);
  }
}

void drawTextGlyphs(const TextLayout& layout, const NSRange& units, NSPoint at,
                    CGContext& context) {
  const CGContextStateScope state(context);
  LineDrawer drawer(layout, at, context);
  for (const PlacedLine& line : layout.lines) {
    if (beginsIn(line, units)) drawer.drawGlyphs(line);
  }
}

NSRect drawnBounds(const TextLayout& layout) {
  NSRect all = layout.used;
  for (const PlacedLine& line : layout.lines) {
    for (const PlacedRun& run : runsOf(layout, line)) {
      NSRect ink =
          NSUnionRect(moved(glyphBounds(layout, run), {run.x, line.top + line.baseline - run.rise}),
                      NSMakeRect(run.x, line.top, run.width, line.height));
      if (const auto& shadow = run.style->shadow) {
        const NSSize offset = shadow->shadowOffset();
        const double reach = std::hypot(offset.width, offset.height) + shadow->shadowBlurRadius();
        ink = NSInsetRect(ink, -reach, -reach);
      }
      all = NSUnionRect(all, ink);
    }
  }
  return all;
}

InkOverflow inkBeyondLines(const TextLayout& layout) {
  InkOverflow over;
  if (layout.lines.empty()) return over;
  const PlacedLine& first = layout.lines.front();
  for (const PlacedRun& run : runsOf(layout, first)) {
    const auto ink = inkHeight(layout, run);
    if (!ink || run.style->paragraph->maximumLineHeight() > 0) continue;
    over.above = std::max(over.above, ink->above + run.rise - (first.top + first.baseline));
  }
  const PlacedLine& last = layout.lines.back();
  for (const PlacedRun& run : runsOf(layout, last)) {
    const auto ink = inkHeight(layout, run);
    if (!ink) continue;
    over.below = std::max(over.below, ink->below - run.rise - (last.height - last.baseline));
  }
  over.above = std::min(over.above, first.height);
  over.below = std::min(over.below, last.height);
  return over;
}
