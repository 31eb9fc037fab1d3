#include "platform/text/layout/LinePlacement.h"

#include <algorithm>
#include <numeric>

#include "platform/text/TextCharacters.h"
#include "platform/text/layout/LineMetrics.h"

namespace {

/// First unit of the white space that ends the line.
size_t contentEnd(const FittedLine& line, std::u16string_view text) {
  size_t end = line.end;
  while (end > line.start && hangs(text[end - 1])) --end;
  return end;
}

double widthFrom(const FittedLine& line, size_t unit) {
  double width = 0;
  for (const ShapedItem& shaped : line.items) {
    for (size_t u = std::max(unit, shaped.item.start); u < shaped.item.end(); ++u) {
      width += shaped.advances[u - shaped.item.start];
    }
  }
  return width;
}

double totalWidth(const FittedLine& line) {
  return std::accumulate(line.items.begin(), line.items.end(), 0.0,
                         [](double sum, const ShapedItem& item) { return sum + item.width; });
}

bool stretches(char16_t c) {
  return c == ' ' || c == 0xa0;
}

/// Widens the spaces between `first` and `end` by `extra` in all.
void justify(FittedLine& line, size_t first, size_t end, double extra, std::u16string_view text) {
  const auto count = std::count_if(text.begin() + static_cast<ptrdiff_t>(first),
                                   text.begin() + static_cast<ptrdiff_t>(end), stretches);
  if (count == 0 || !(extra > 0)) return;
  const double each = extra / static_cast<double>(count);
  for (ShapedItem& shaped : line.items) {
    for (ItemGlyph& glyph : shaped.glyphs) {
      const size_t unit = shaped.item.start + glyph.cluster;
      if (unit < first || unit >= end || !stretches(text[unit])) continue;
      glyph.advance += each;
      shaped.advances[glyph.cluster] += each;
      shaped.width += each;
    }
  }
}

/// Where justification may begin: behind the white space that starts the line, and behind the last
/// tab, whose text must stay where the tab puts it.
size_t justifiedFrom(const FittedLine& line, size_t end, std::u16string_view text) {
  size_t first = line.start;
  while (first < end && hangs(text[first])) ++first;
  for (const ShapedItem& shaped : line.items) {
    if (shaped.item.kind == ItemKind::tab && shaped.item.end() <= end) {
      first = std::max(first, shaped.item.end());
    }
  }
  return first;
}

/// White space at a line's end runs in the paragraph's direction (rule L1 of the bidirectional
/// algorithm).
void settleTrailingSpace(FittedLine& line, size_t from, TextDirection direction,
                         std::u16string_view text) {
  const uint8_t level = direction == TextDirection::rightToLeft ? 1 : 0;
  for (size_t i = 0; i < line.items.size(); ++i) {
    ShapedItem& shaped = line.items[i];
    if (shaped.item.level == level || shaped.item.end() <= from) continue;
    if (shaped.item.start < from) {
      SplitItem split = splitItem(std::move(shaped), from, text, line.start, line.end);
      shaped = std::move(split.before);
      line.items.insert(line.items.begin() + static_cast<ptrdiff_t>(i) + 1, std::move(split.after));
    } else {
      shaped.item.level = level;
    }
  }
}

/// Positions of the items from left to right (rule L2: every stretch of a level and above is
/// turned round, from the highest level down to the lowest odd one).
std::vector<size_t> visualOrder(const std::vector<ShapedItem>& items) {
  std::vector<size_t> order(items.size());
  std::iota(order.begin(), order.end(), size_t{0});
  uint8_t highest = 0;
  for (const ShapedItem& shaped : items) highest = std::max(highest, shaped.item.level);
  for (uint8_t level = highest; level > 0; --level) {
    const auto belongs = [&items, level](size_t i) { return items[i].item.level >= level; };
    for (auto it = order.begin(); it != order.end();) {
      const auto first = std::find_if(it, order.end(), belongs);
      it = std::find_if_not(first, order.end(), belongs);
      std::reverse(first, it);
    }
  }
  return order;
}

double startX(const LineRoom& room, const LineSetting& setting, double width) {
  const bool rightToLeft = setting.direction == TextDirection::rightToLeft;
  if (!room.bounded) return room.left;
  const double spare = room.width() - width;
  if (spare <= 0) return rightToLeft ? room.left + spare : room.left;
  switch (setting.alignment) {
    case NSTextAlignment::left:
      return room.left;
    case NSTextAlignment::right:
      return room.left + spare;
    case NSTextAlignment::center:
      return room.left + spare / 2;
    case NSTextAlignment::justified:
    case NSTextAlignment::natural:
      break;
  }
  return rightToLeft ? room.left + spare : room.left;
}

void emitRun(const ShapedItem& shaped, double x, TextLayout& layout) {
  PlacedRun run;
  run.font = shaped.item.font;
  run.style = shaped.item.style;
  run.start = shaped.item.start;
  run.length = shaped.item.length;
  run.x = x;
  run.width = shaped.width;
  run.rise = baselineRise(*shaped.item.style);
  run.firstGlyph = static_cast<uint32_t>(layout.glyphs.size());
  run.glyphCount = static_cast<uint32_t>(shaped.glyphs.size());
  double pen = 0;
  for (const ItemGlyph& glyph : shaped.glyphs) {
    layout.glyphs.push_back({glyph.glyph, static_cast<float>(pen) + glyph.dx, glyph.dy});
    pen += glyph.advance;
  }
  layout.runs.push_back(run);
}

}  // namespace

PlacedLine placeLine(FittedLine line, const LineRoom& room, const LineSetting& setting,
                     std::u16string_view text, TextLayout& layout) {
  const size_t end = contentEnd(line, text);
  const double trailing = widthFrom(line, end);
  if (setting.alignment == NSTextAlignment::justified && room.bounded &&
      line.reason == LineEnd::wrapped) {
    justify(line, justifiedFrom(line, end, text), end, room.width() - (totalWidth(line) - trailing),
            text);
  }
  settleTrailingSpace(line, end, setting.direction, text);

  const double content = totalWidth(line) - trailing;
  const bool rightToLeft = setting.direction == TextDirection::rightToLeft;
  PlacedLine placed;
  placed.contentLeft = startX(room, setting, content);
  if (rightToLeft && !room.bounded) placed.contentLeft += trailing;
  placed.contentRight = placed.contentLeft + content;
  const double free =
      rightToLeft ? placed.contentLeft - room.left : room.right - placed.contentRight;
  // White space that is kerned to less than nothing does not hang.
  const double hanging = std::max(0.0, room.bounded ? std::min(free, trailing) : trailing);
  placed.x = rightToLeft ? placed.contentLeft - hanging : placed.contentLeft;
  placed.usedWidth = content + hanging;

  placed.firstRun = static_cast<uint32_t>(layout.runs.size());
  double x = rightToLeft ? placed.contentLeft - trailing : placed.contentLeft;
  for (const size_t i : visualOrder(line.items)) {
    emitRun(line.items[i], x, layout);
    x += line.items[i].width;
  }
  placed.runCount = static_cast<uint32_t>(layout.runs.size()) - placed.firstRun;
  return placed;
}
