#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "platform/text/layout/ShapedItem.h"

enum class LineEnd : uint8_t { wrapped, lineSeparator, paragraphEnd };

/// The items of one line, in logical order.
struct FittedLine {
  size_t start = 0;
  size_t end = 0;  ///< units [start, end), with white space that hangs over the line's end
  LineEnd reason = LineEnd::paragraphEnd;
  std::vector<ShapedItem> items;
};

/// Breaks one paragraph into lines, one at a time: what no line asks for is never shaped.
class LineFitter {
 public:
  /// The itemizer's paragraph of the units [start, end) of `text`.
  LineFitter(TextItemizer& itemizer, std::u16string_view text, size_t start, size_t end,
             const NSParagraphStyle& style);

  TextDirection direction() const { return items_.direction; }
  /// Whether a user-perceived character begins at the unit, or the paragraph ends there.
  bool isBoundary(size_t unit) const {
    return unit >= end_ || items_.clusterStarts[unit - start_] != 0;
  }

  /// Whether everything has been handed out. A paragraph without characters still has one line.
  bool done() const { return done_; }

  /// The next line: it starts at `indent` and its visible text ends at `limit`, both measured from
  /// the edge where lines start. It holds at least one character.
  FittedLine next(double indent, double limit);

 private:
  ShapedItem take();
  /// The beginning of an item that is too long to be shaped again around a line break. It ends
  /// where the glyphs on either side do not depend on each other.
  ShapedItem takePart(TextItem& rest);
  size_t safeEnd(const ShapedItem& part) const;
  bool exhausted() const { return ready_.empty() && next_ == items_.items.size(); }
  /// Cuts the line before the unit and keeps the rest for the next one.
  void cut(FittedLine& line, size_t unit);
  /// Where to break a line whose character at `unit` does not fit.
  size_t breakBefore(const FittedLine& line, size_t unit, double limit);
  ShapedItem hyphenBehind(const TextItem& last) const;
  void addHyphen(FittedLine& line) const;
  bool wraps() const;
  bool losesTail(const TextItem& last, double x, double limit) const;
  void skipToLineEnd(FittedLine& line);

  TextItemizer& itemizer_;
  std::u16string_view text_;
  size_t start_;
  size_t end_;
  ParagraphItems items_;
  const NSParagraphStyle& style_;
  size_t next_ = 0;
  size_t searchFailed_ = SIZE_MAX;  ///< the item that has no safe place to be cut at
  std::deque<ShapedItem> ready_;    // shaped, and before items_[next_]
  std::vector<uint8_t> breaks_;     // of the paragraph, found when the first line overflows
  std::vector<double> positions_;   // x at each unit of the current line
  size_t position_;                 // first unit of the next line
  bool done_ = false;
};

/// Widths of the line's tabs: all text before a tab lies left of it (in a left-to-right paragraph).
void resolveTabs(FittedLine& line, const NSParagraphStyle& style, double indent,
                 std::u16string_view text);
