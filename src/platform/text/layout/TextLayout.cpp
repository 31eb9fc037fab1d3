#include "platform/text/layout/TextLayout.h"

#include <algorithm>

#include "platform/foundation/Limits.h"
#include "platform/text/TextCharacters.h"
#include "platform/text/TextLengths.h"
#include "platform/text/layout/LineFitting.h"
#include "platform/text/layout/LineMetrics.h"
#include "platform/text/layout/LinePlacement.h"
#include "platform/text/layout/LineTruncation.h"
#include "platform/text/layout/TextItems.h"

namespace {

/// Units that are laid out at first into an area of limited height, and the factor by which more of
/// them are when it is not full then.
constexpr size_t kFirstUnits = 8192;
constexpr size_t kMoreUnits = 8;
/// Characters next to a cut, whose shapes and breaks depend on what follows.
constexpr size_t kCutUnits = 1024;

/// A paragraph of the text: units [start, end) and the characters up to `next` that end it.
struct ParagraphRange {
  size_t start;
  size_t end;
  size_t next;
};

ParagraphRange paragraphAt(std::u16string_view text, size_t start) {
  const auto first = text.begin() + static_cast<ptrdiff_t>(start);
  const auto ends = [](char16_t c) { return endsParagraph(c) || c == kFormFeed; };
  const auto end = static_cast<size_t>(std::find_if(first, text.end(), ends) - text.begin());
  size_t next = end;
  if (end < text.size()) {
    const bool pair = text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n';
    next = end + (pair ? 2 : 1);
  }
  return {start, end, next};
}

/// Sets one text into one area.
class Typesetter {
 public:
  /// Sets the first units of the text.
  Typesetter(std::shared_ptr<const StyledText> text, size_t units, const LayoutArea& area)
      : styled_(*text),
        text_(std::u16string_view(styled_.text).substr(0, units)),
        area_(area),
        itemizer_(styled_, area.surroundings) {
    layout_.text = std::move(text);
  }

  TextLayout run() {
    size_t start = 0;
    bool goesOn = true;
    while (goesOn && start < text_.size()) {
      const ParagraphRange paragraph = paragraphAt(text_, start);
      goesOn = setParagraph(paragraph);
      if (paragraph.end < text_.size() && text_[paragraph.end] == kFormFeed) goesOn = false;
      start = paragraph.next;
    }
    if (goesOn && (text_.empty() || endsParagraph(text_.back()))) addExtraLine();
    layout_.fallbackFonts = itemizer_.fallbackFonts();
    measureUsed();
    return std::move(layout_);
  }

 private:
  /// Answers false when the area is full.
  bool setParagraph(const ParagraphRange& range);
  bool placeVertically(PlacedLine& line, const LineMetrics& metrics, const NSParagraphStyle& style);
  LineMetrics metricsOf(const FittedLine& line) const;
  LineRoom roomOf(const NSParagraphStyle& style, double indent, TextDirection direction) const;
  /// Distance of a line's end from the edge where lines start.
  double limitOf(const NSParagraphStyle& style) const;
  void addExtraLine();
  void measureUsed();

  double width() const { return area_.size.width - 2 * area_.padding; }
  bool boundedWidth() const { return area_.size.width < kUnboundedSide; }

  const StyledText& styled_;
  std::u16string_view text_;
  LayoutArea area_;
  TextItemizer itemizer_;
  TextLayout layout_;
  double top_ = 0;  // of the next line, without the gap
  double gap_ = 0;  // above the next line
};

bool Typesetter::setParagraph(const ParagraphRange& range) {
  const NSParagraphStyle& style = *styled_.styleAt(range.start).paragraph;
  if (range.start > 0) gap_ += layoutLength(style.paragraphSpacingBefore());
  LineFitter fitter(itemizer_, text_, range.start, range.end, style);
  const LineSetting setting{style.alignment(), fitter.direction()};
  if (range.start == 0) layout_.direction = fitter.direction();
  double indent = layoutLength(style.firstLineHeadIndent());
  while (!fitter.done()) {
    const double limit = limitOf(style);
    FittedLine line = fitter.next(indent, limit);
    truncateLine(line, {style.lineBreakMode(), limit - indent, text_, itemizer_, fitter});
    resolveTabs(line, style, indent, text_);
    const LineMetrics metrics = metricsOf(line);
    const size_t start = line.start;
    const size_t end = fitter.done() ? range.next : line.end;
    PlacedLine placed = placeLine(std::move(line), roomOf(style, indent, setting.direction),
                                  setting, text_, layout_);
    placed.start = start;
    placed.length = end - start;
    if (!placeVertically(placed, metrics, style)) return false;
    layout_.end = end;
    indent = layoutLength(style.headIndent());
  }
  gap_ += layoutLength(style.paragraphSpacing());
  return true;
}

bool Typesetter::placeVertically(PlacedLine& line, const LineMetrics& metrics,
                                 const NSParagraphStyle& style) {
  const double natural = metrics.height();
  const double multiple = layoutLength(style.lineHeightMultiple());
  const double minimum = layoutLength(style.minimumLineHeight());
  const double maximum = layoutLength(style.maximumLineHeight());
  line.height = std::max(multiple > 0 ? natural * multiple : natural, minimum);
  if (maximum > 0) line.height = std::min(line.height, maximum);
  line.baseline = metrics.baseline() + (line.height - natural);
  line.top = top_ + gap_;
  const bool fits = line.bottom() <= area_.size.height + kPositionTolerance;
  if (!fits && area_.size.height < kUnboundedSide) {
    layout_.glyphs.resize(line.runCount == 0 ? layout_.glyphs.size()
                                             : layout_.runs[line.firstRun].firstGlyph);
    layout_.runs.resize(line.firstRun);
    return false;
  }
  top_ = line.bottom();
  gap_ = layoutLength(style.lineSpacing());
  layout_.lines.push_back(line);
  return true;
}

LineMetrics Typesetter::metricsOf(const FittedLine& line) const {
  LineMetrics metrics;
  for (const ShapedItem& shaped : line.items) {
    metrics.include(lineMetrics(*shaped.item.font, *shaped.item.style, area_.leading));
    if (shaped.item.kind == ItemKind::attachment) {
      metrics.include(attachmentMetrics(shaped.item.style->attachmentBounds));
    }
  }
  if (line.items.empty()) {
    const TextStyle& style = styled_.styleAt(line.start);
    metrics = lineMetrics(*style.font->resolved(), style, area_.leading);
  }
  return metrics;
}

double Typesetter::limitOf(const NSParagraphStyle& style) const {
  const double tail = layoutLength(style.tailIndent());
  if (tail > 0) return tail;
  return boundedWidth() ? width() + tail : kMaxLayoutLength;
}

LineRoom Typesetter::roomOf(const NSParagraphStyle& style, double indent,
                            TextDirection direction) const {
  LineRoom room{indent, limitOf(style), boundedWidth()};
  if (room.bounded && direction == TextDirection::rightToLeft) {
    room = {width() - room.right, width() - room.left, true};
  }
  room.left += area_.padding;
  room.right += area_.padding;
  return room;
}

/// The empty line behind a text that ends with the end of a paragraph.
void Typesetter::addExtraLine() {
  const TextStyle& style = styled_.styleAt(text_.empty() ? 0 : text_.size() - 1);
  const LineSetting setting{NSTextAlignment::left, TextDirection::leftToRight};
  const LineRoom room =
      roomOf(*style.paragraph, layoutLength(style.paragraph->firstLineHeadIndent()),
             TextDirection::leftToRight);
  FittedLine empty;
  empty.start = empty.end = text_.size();
  PlacedLine line = placeLine(empty, room, setting, text_, layout_);
  line.start = text_.size();
  placeVertically(line, lineMetrics(*style.font->resolved(), style, area_.leading),
                  *style.paragraph);
}

void Typesetter::measureUsed() {
  if (layout_.lines.empty()) return;
  double left = layout_.lines.front().x;
  double right = left;
  for (const PlacedLine& line : layout_.lines) {
    left = std::min(left, line.x);
    right = std::max(right, line.x + line.usedWidth);
  }
  layout_.used = NSMakeRect(left, 0, right - left, layout_.lines.back().bottom());
}

}  // namespace

TextLayout layoutText(std::shared_ptr<const StyledText> text, const LayoutArea& area) {
  const size_t all = std::min(text->text.size(), limits::kMaxLaidOutUnits);
  if (area.size.height < kUnboundedSide) {
    // Of a text that does not fit only the beginning is looked at. Where it was cut plays no part
    // in lines that end well before.
    for (size_t units = kFirstUnits; units < all; units *= kMoreUnits) {
      TextLayout layout = Typesetter(text, units, area).run();
      if (layout.end + kCutUnits < units) return layout;
    }
  }
  return Typesetter(std::move(text), all, area).run();
}
