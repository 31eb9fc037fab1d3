#include "platform/text/layout/LineTruncation.h"

#include <algorithm>
#include <numeric>

#include "platform/text/TextLengths.h"

namespace {

constexpr std::u16string_view kEllipsis = u"\u2026";
constexpr std::u16string_view kThreePeriods = u"...";

double widthOf(const FittedLine& line) {
  return std::accumulate(line.items.begin(), line.items.end(), 0.0,
                         [](double sum, const ShapedItem& item) { return sum + item.width; });
}

/// Takes characters out of a line until it fits with an ellipsis in their place.
class LineTruncator {
 public:
  LineTruncator(FittedLine& line, const TruncationSetting& setting)
      : line_(line), setting_(setting) {}

  void truncate();

 private:
  /// Characters [0, head) and [tail, count) stay.
  struct Kept {
    size_t head;
    size_t tail;
  };

  void measureCharacters();
  Kept charactersThatFit(double width) const;
  size_t fittingFromStart(double width) const;
  size_t fittingFromEnd(double width) const;
  /// One of them, or more, fewer.
  Kept fewer(Kept kept, size_t count) const;
  void splitAt(size_t unit);
  /// Position of the first item that starts at the unit or behind.
  size_t itemAt(size_t unit) const;
  void drop(const Kept& kept);
  ShapedItem ellipsis(size_t at) const;

  FittedLine& line_;
  const TruncationSetting& setting_;
  std::vector<size_t> starts_;  // of the line's characters, and the line's end
  std::vector<double> widths_;
  size_t ellipsisAt_ = 0;  // in the line's items, once it is there
  bool hasEllipsis_ = false;
};

void LineTruncator::measureCharacters() {
  for (const ShapedItem& item : line_.items) {
    for (size_t u = 0; u < item.advances.size(); ++u) {
      const size_t unit = item.item.start + u;
      if (starts_.empty() || setting_.paragraph.isBoundary(unit)) {
        starts_.push_back(unit);
        widths_.push_back(0);
      }
      widths_.back() += item.advances[u];
    }
  }
  starts_.push_back(line_.end);
}

size_t LineTruncator::fittingFromStart(double width) const {
  size_t count = 0;
  for (double x = 0; count < widths_.size(); ++count) {
    x += widths_[count];
    if (x > width + kPositionTolerance) break;
  }
  return count;
}

size_t LineTruncator::fittingFromEnd(double width) const {
  size_t count = 0;
  for (double x = 0; count < widths_.size(); ++count) {
    x += widths_[widths_.size() - 1 - count];
    if (x > width + kPositionTolerance) break;
  }
  return count;
}

LineTruncator::Kept LineTruncator::charactersThatFit(double width) const {
  const size_t all = widths_.size();
  switch (setting_.mode) {
    case NSLineBreakMode::byTruncatingHead:
      return {0, all - fittingFromEnd(width)};
    case NSLineBreakMode::byTruncatingMiddle: {
      const size_t head = fittingFromStart(width / 2);
      return {head, std::max(head, all - fittingFromEnd(width / 2))};
    }
    default:
      return {fittingFromStart(width), all};
  }
}

LineTruncator::Kept LineTruncator::fewer(Kept kept, size_t count) const {
  const size_t tail = widths_.size() - kept.tail;
  if (kept.head >= tail) {
    kept.head -= std::min(count, kept.head);
  } else {
    kept.tail += std::min(count, tail);
  }
  return kept;
}

void LineTruncator::splitAt(size_t unit) {
  const auto inside = std::find_if(line_.items.begin(), line_.items.end(), [unit](const auto& i) {
    return i.item.start < unit && unit < i.item.end();
  });
  if (inside == line_.items.end()) return;
  SplitItem split = splitItem(std::move(*inside), unit, setting_.text, line_.start, line_.end);
  *inside = std::move(split.before);
  line_.items.insert(inside + 1, std::move(split.after));
}

size_t LineTruncator::itemAt(size_t unit) const {
  const auto found = std::find_if(line_.items.begin(), line_.items.end(),
                                  [unit](const auto& i) { return i.item.start >= unit; });
  return static_cast<size_t>(found - line_.items.begin());
}

/// The ellipsis for a gap before the item at the position, in the style of the text that is left.
ShapedItem LineTruncator::ellipsis(size_t at) const {
  const bool ofTail = at == 0 || setting_.mode == NSLineBreakMode::byTruncatingHead;
  const TextItem& beside = line_.items[ofTail ? std::min(at, line_.items.size() - 1) : at - 1].item;
  TextItem item = setting_.itemizer.insertedItem(beside, kEllipsis);
  std::u16string_view characters = kEllipsis;
  if (!TextItemizer::covers(*item.font, ClusterForms(kEllipsis))) {
    characters = kThreePeriods;
    item = setting_.itemizer.insertedItem(beside, characters);
  }
  // It runs as a neutral character there would.
  const bool between = at > 0 && at < line_.items.size() &&
                       line_.items[at - 1].item.level == line_.items[at].item.level;
  const bool rightToLeft = setting_.paragraph.direction() == TextDirection::rightToLeft;
  if (!between) item.level = rightToLeft ? 1 : 0;
  return shapeInserted(item, characters);
}

/// Leaves out what is not kept.
void LineTruncator::drop(const Kept& kept) {
  if (hasEllipsis_) line_.items.erase(line_.items.begin() + static_cast<ptrdiff_t>(ellipsisAt_));
  splitAt(starts_[kept.head]);
  splitAt(starts_[kept.tail]);
  const size_t first = itemAt(starts_[kept.head]);
  const size_t last = itemAt(starts_[kept.tail]);
  const auto begin = line_.items.begin();
  // An item of what goes is left where nothing else is, for its style.
  const bool none = first == 0 && last == line_.items.size();
  line_.items.erase(begin + static_cast<ptrdiff_t>(first),
                    begin + static_cast<ptrdiff_t>(last) - (none ? 1 : 0));
  ShapedItem made = ellipsis(first);
  made.item.start = starts_[kept.head];
  if (none) line_.items.clear();
  line_.items.insert(line_.items.begin() + static_cast<ptrdiff_t>(first), std::move(made));
  ellipsisAt_ = first;
  hasEllipsis_ = true;
}

void LineTruncator::truncate() {
  measureCharacters();
  const double room = setting_.available - ellipsis(0).width;
  Kept kept = charactersThatFit(room);
  drop(kept);
  // Letters may be wider where their neighbours are gone: a few, then ever more of them go too.
  for (size_t count = 1; widthOf(line_) > setting_.available + kPositionTolerance; count *= 2) {
    const bool none = kept.head == 0 && kept.tail == widths_.size();
    if (none) return line_.items.clear();
    kept = fewer(kept, count);
    drop(kept);
  }
}

}  // namespace

void truncateLine(FittedLine& line, const TruncationSetting& setting) {
  if (setting.mode < NSLineBreakMode::byTruncatingHead || line.items.empty()) return;
  if (widthOf(line) <= setting.available + kPositionTolerance) return;
  LineTruncator(line, setting).truncate();
}
