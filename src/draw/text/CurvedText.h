#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/text/layout/NSTextTab.h"

class CGContext;
class NSAttributedString;
class NSBezierPath;
class PathMeasure;
struct TextLayout;

/// A text set along a path, each composed character on its own: its middle on the path, turned to
/// the path's direction there.
///
/// Text up to a tenth wider than its path is set closer, so that it ends where the path ends. Of
/// wider text those characters are left out whose middle lies beyond an end of the path; centred
/// text loses characters at both ends alike and what is left is centred.
class CurvedText {
 public:
  /// Different characters and styles that are set, which bounds the time; a text goes on to the
  /// first that is one too many. Of one kind there may be as many as any text may hold.
  static constexpr size_t kMaxKinds = 16384;

  CurvedText(const NSAttributedString& text, const NSBezierPath& path, NSTextAlignment alignment);
  ~CurvedText();

  /// Whether any character has a place.
  bool isEmpty() const { return characters_.empty(); }
  /// Where the text starts and ends on the path.
  double start() const { return start_; }
  double end() const { return end_; }
  /// Height of the highest character.
  double height() const { return height_; }

  /// Everything that drawing may touch, in the path's space.
  NSRect drawnRect() const;
  /// Draws into the path's space, y up.
  void draw(CGContext& context) const;

 private:
  /// A character in a style, set once for all its occurrences.
  struct Kind;
  struct Character;
  using KindKey = std::pair<std::u16string_view, const void*>;

  const Kind* kindOf(const NSAttributedString& text, const NSRange& range);
  /// Of text that starts with the path, what lies far beyond its end is not looked at.
  void measure(const NSAttributedString& text, double length, NSTextAlignment alignment);
  /// Decides what has a place: a stretch of the path of `length` to be filled.
  void fit(double length, NSTextAlignment alignment);
  void place(PathMeasure& path);

  std::map<KindKey, Kind> kinds_;
  std::vector<Character> characters_;
  double start_ = 0;
  double end_ = 0;
  double height_ = 0;
};
