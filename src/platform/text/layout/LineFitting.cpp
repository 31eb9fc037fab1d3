#include "platform/text/layout/LineFitting.h"

#include <algorithm>
#include <optional>

#include "platform/text/TextCharacters.h"
#include "platform/text/TextLengths.h"
#include "platform/text/layout/TabStops.h"

namespace {

constexpr std::u16string_view kHyphen = u"-";
constexpr char16_t kDecimalPoint = u'.';

/// Longest item: keeps the cost of shaping again around a line break bounded. Looked at for its end
/// is what lies before the last characters, whose shapes depend on what follows.
constexpr size_t kMaxItemUnits = 512;
constexpr size_t kContextUnits = 64;
/// Where no glyph up to here stands for itself, the item is cut at a character.
constexpr size_t kMaxSearchedUnits = 1024;

bool endsWithSeparator(const FittedLine& line) {
  return !line.items.empty() && line.items.back().item.kind == ItemKind::lineSeparator;
}

/// Running x position along a line with tabs.
class LineCursor {
 public:
  explicit LineCursor(double x) : tabX_(x), stop_{x, NSTextTabType::left} {}

  double x() const { return after(segment_); }
  double after(double width) const {
    return startAfterTab(stop_, tabX_, width, untilPoint_.value_or(width)) + width;
  }
  double with(double advance) const { return after(segment_ + advance); }
  void move(double advance, char16_t character) {
    if (character == kDecimalPoint && !untilPoint_) untilPoint_ = segment_;
    segment_ += advance;
  }
  void tab(const TabStop& stop) {
    tabX_ = x();
    stop_ = stop;
    segment_ = 0;
    untilPoint_.reset();
  }

 private:
  double tabX_;
  TabStop stop_;
  double segment_ = 0;  // width of the text since the tab
  std::optional<double> untilPoint_;
};

}  // namespace

LineFitter::LineFitter(TextItemizer& itemizer, std::u16string_view text, size_t start, size_t end,
                       const NSParagraphStyle& style)
    : itemizer_(itemizer),
      text_(text),
      start_(start),
      end_(end),
      items_(itemizer.itemize(start, end)),
      style_(style),
      position_(start) {}

ShapedItem LineFitter::take() {
  if (!ready_.empty()) {
    ShapedItem item = std::move(ready_.front());
    ready_.pop_front();
    return item;
  }
  if (items_.items[next_].length > kMaxItemUnits) return takePart(items_.items[next_]);
  return shapeItem(items_.items[next_++], text_, start_, end_);
}

ShapedItem LineFitter::takePart(TextItem& rest) {
  TextItem part = rest;
  ShapedItem shaped;
  size_t end = 0;
  const size_t most = searchFailed_ == next_ ? 0 : kMaxSearchedUnits;
  for (size_t units = kMaxItemUnits; end == 0 && units <= most; units *= 2) {
    part.length = std::min(units, rest.length);
    shaped = shapeItem(part, text_, start_, end_);
    if (part.length == rest.length) {
      ++next_;
      return shaped;
    }
    end = safeEnd(shaped);
  }
  if (end != 0) {
    shaped = splitItem(std::move(shaped), end, text_, start_, end_).before;
  } else {
    searchFailed_ = next_;
    for (end = rest.start + kMaxItemUnits - kContextUnits; !isBoundary(end);) --end;
    part.length = end - rest.start;
    shaped = shapeItem(part, text_, start_, end_);
  }
  rest.length = rest.end() - end;
  rest.start = end;
  return shaped;
}

size_t LineFitter::safeEnd(const ShapedItem& part) const {
  size_t end = 0;
  for (const ItemGlyph& glyph : part.glyphs) {
    const size_t unit = part.item.start + glyph.cluster;
    if (glyph.unsafeToBreak || glyph.cluster == 0 || unit + kContextUnits > part.item.end()) {
      continue;
    }
    if (unit > end && isBoundary(unit)) end = unit;
  }
  return end;
}

bool LineFitter::wraps() const {
  return style_.lineBreakMode() == NSLineBreakMode::byWordWrapping ||
         style_.lineBreakMode() == NSLineBreakMode::byCharWrapping;
}

/// Whether what follows is going to be left out for an ellipsis: it need not be shaped.
bool LineFitter::losesTail(const TextItem& last, double x, double limit) const {
  return style_.lineBreakMode() == NSLineBreakMode::byTruncatingTail &&
         !(last.style->kern.value_or(0) < 0) && x > limit + kPositionTolerance;
}

void LineFitter::skipToLineEnd(FittedLine& line) {
  const auto separates = [](const TextItem& i) { return i.kind == ItemKind::lineSeparator; };
  const auto rest = items_.items.begin() + static_cast<ptrdiff_t>(next_);
  const auto end = std::find_if(rest, items_.items.end(), separates);
  next_ = static_cast<size_t>(end - items_.items.begin());
  if (end != items_.items.end()) line.items.push_back(take());
  line.end = end == items_.items.end() ? end_ : line.items.back().item.end();
}

FittedLine LineFitter::next(double indent, double limit) {
  FittedLine line;
  line.start = position_;
  positions_.clear();
  LineCursor pen(indent);
  std::optional<size_t> overflow;
  bool tabEndsLine = false;
  bool hasTab = false;
  bool lostTail = false;
  while (!overflow && !tabEndsLine && !lostTail && !exhausted()) {
    line.items.push_back(take());
    const ShapedItem& shaped = line.items.back();
    const TextItem& item = shaped.item;
    if (item.kind == ItemKind::lineSeparator) break;
    if (item.kind == ItemKind::tab) {
      positions_.push_back(pen.x());
      const auto stop = tabStopAfter(style_, pen.x());
      if (stop) pen.tab(*stop);
      tabEndsLine = !stop && wraps();
      hasTab = true;
      continue;
    }
    for (size_t u = item.start; u < item.end(); ++u) {
      const double advance = shaped.advances[u - item.start];
      const bool fits = hangs(text_[u]) || pen.with(advance) <= limit + kPositionTolerance;
      if (!fits && wraps() && u > line.start && items_.clusterStarts[u - start_] != 0) {
        overflow = u;
        break;
      }
      positions_.push_back(pen.x());
      pen.move(advance, text_[u]);
    }
    lostTail = !hasTab && losesTail(item, pen.x(), limit);
  }
  if (overflow) {
    cut(line, breakBefore(line, *overflow, limit));
    addHyphen(line);
  }
  line.end = line.items.empty() ? line.start : line.items.back().item.end();
  if (lostTail) skipToLineEnd(line);
  position_ = line.end;
  const bool separated = endsWithSeparator(line);
  if (separated) line.reason = LineEnd::lineSeparator;
  if (!separated && !exhausted()) line.reason = LineEnd::wrapped;
  done_ = !separated && exhausted();
  return line;
}

size_t LineFitter::breakBefore(const FittedLine& line, size_t unit, double limit) {
  if (style_.lineBreakMode() == NSLineBreakMode::byCharWrapping) return unit;
  const TextLibraries* libraries = textLibraries();
  if (breaks_.empty() && libraries != nullptr) {
    libraries->findLineBreaks(text_.substr(start_, end_ - start_), breaks_);
  }
  for (size_t u = unit; u > line.start; --u) {
    if (u - start_ >= breaks_.size() || breaks_[u - start_] == 0) continue;
    if (text_[u - 1] != kSoftHyphen) return u;
    const double hyphen = hyphenBehind(line.items.back().item).width;
    const double x =
        u - line.start < positions_.size() ? positions_[u - line.start] : positions_.back();
    if (x + hyphen <= limit + kPositionTolerance) return u;
  }
  return unit;
}

void LineFitter::cut(FittedLine& line, size_t unit) {
  while (line.items.back().item.start >= unit) {
    ready_.push_front(std::move(line.items.back()));
    line.items.pop_back();
  }
  if (line.items.back().item.end() == unit) return;
  SplitItem split = splitItem(std::move(line.items.back()), unit, text_, start_, end_);
  line.items.back() = std::move(split.before);
  ready_.push_front(std::move(split.after));
}

ShapedItem LineFitter::hyphenBehind(const TextItem& last) const {
  return shapeInserted(itemizer_.insertedItem(last, kHyphen), kHyphen);
}

void LineFitter::addHyphen(FittedLine& line) const {
  const TextItem last = line.items.back().item;
  if (last.kind == ItemKind::text && text_[last.end() - 1] == kSoftHyphen) {
    line.items.push_back(hyphenBehind(last));
  }
}

void resolveTabs(FittedLine& line, const NSParagraphStyle& style, double indent,
                 std::u16string_view text) {
  double x = indent;
  for (size_t i = 0; i < line.items.size(); ++i) {
    ShapedItem& tab = line.items[i];
    if (tab.item.kind != ItemKind::tab) {
      x += tab.width;
      continue;
    }
    const auto stop = tabStopAfter(style, x);
    if (!stop) continue;
    LineCursor pen(x);
    pen.tab(*stop);
    double segment = 0;
    for (size_t j = i + 1; j < line.items.size(); ++j) {
      const ShapedItem& shaped = line.items[j];
      if (shaped.item.kind == ItemKind::tab) break;
      for (size_t u = 0; u < shaped.advances.size(); ++u) {
        pen.move(shaped.advances[u], text[shaped.item.start + u]);
      }
      segment += shaped.width;
    }
    tab.width = tab.advances[0] = pen.x() - segment - x;
    x += tab.width;
  }
}
