#pragma once

#include <memory>
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
  /// Of a longer text the rest is left out: none of that length can be read along a path.
  static constexpr size_t kMaxCharacters = 2000;

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
  struct Character;

  /// Of text that starts with the path, what lies far beyond its end is not looked at.
  void measure(const NSAttributedString& text, double length, NSTextAlignment alignment);
  /// Decides what has a place: a stretch of the path of `length` to be filled.
  void fit(double length, NSTextAlignment alignment);
  void place(PathMeasure& path);

  std::vector<Character> characters_;
  double start_ = 0;
  double end_ = 0;
  double height_ = 0;
};
