#include "platform/text/layout/LineTruncation.h"

#include <algorithm>

#include "platform/text/TextLengths.h"

namespace {

constexpr std::u16string_view kEllipsis = u"\u2026";

struct UnitRange {
  size_t start;
  size_t end;
};

/// Advances of a line's units, in logical order.
std::vector<double> unitAdvances(const FittedLine& line) {
  std::vector<double> advances;
  advances.reserve(line.end - line.start);
  for (const ShapedItem& item : line.items) {
    advances.insert(advances.end(), item.advances.begin(), item.advances.end());
  }
  return advances;
}

/// Number of units from the start whose widths fit. Units without width stay with the one before.
template <class Iterator>
size_t unitsThatFit(Iterator first, Iterator last, double width) {
  double x = 0;
  Iterator it = first;
  while (it != last && x + *it <= width + kPositionTolerance) x += *it++;
  return static_cast<size_t>(it - first);
}

/// The units to leave out so that `width` is not exceeded.
UnitRange unitsToDrop(const FittedLine& line, NSLineBreakMode mode, double width) {
  const std::vector<double> advances = unitAdvances(line);
  const size_t all = advances.size();
  switch (mode) {
    case NSLineBreakMode::byTruncatingHead:
      return {line.start,
              line.start + all - unitsThatFit(advances.rbegin(), advances.rend(), width)};
    case NSLineBreakMode::byTruncatingMiddle: {
      const size_t head = unitsThatFit(advances.begin(), advances.end(), width / 2);
      const size_t tail = unitsThatFit(advances.rbegin(), advances.rend(), width / 2);
      return {line.start + head, line.start + std::max(head, all - tail)};
    }
    default:
      return {line.start + unitsThatFit(advances.begin(), advances.end(), width), line.start + all};
  }
}

/// Makes an item boundary at the unit, when it is inside an item.
void splitLineAt(FittedLine& line, size_t unit, std::u16string_view text) {
  const auto inside = std::find_if(line.items.begin(), line.items.end(), [unit](const auto& i) {
    return i.item.start < unit && unit < i.item.end();
  });
  if (inside == line.items.end()) return;
  SplitItem split = splitItem(std::move(*inside), unit, text, line.start, line.end);
  *inside = std::move(split.before);
  line.items.insert(inside + 1, std::move(split.after));
}

}  // namespace

void truncateLine(FittedLine& line, NSLineBreakMode mode, double available,
                  std::u16string_view text) {
  if (mode < NSLineBreakMode::byTruncatingHead || line.items.empty()) return;
  double width = 0;
  for (const ShapedItem& item : line.items) width += item.width;
  if (width <= available + kPositionTolerance) return;
  ShapedItem ellipsis = shapeInserted(line.items.front().item, kEllipsis);
  const UnitRange drop = unitsToDrop(line, mode, available - ellipsis.width);
  splitLineAt(line, drop.start, text);
  splitLineAt(line, drop.end, text);
  const auto first = std::find_if(line.items.begin(), line.items.end(),
                                  [&drop](const auto& i) { return i.item.start >= drop.start; });
  const auto last = std::find_if(first, line.items.end(),
                                 [&drop](const auto& i) { return i.item.start >= drop.end; });
  ellipsis.item.start = drop.start;
  line.items.insert(line.items.erase(first, last), std::move(ellipsis));
}
