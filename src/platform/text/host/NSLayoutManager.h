#pragma once

#include <memory>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/text/fonts/NSFont.h"
#include "platform/text/host/NSTextContainer.h"
#include "platform/text/layout/TextLayout.h"

class NSTextStorage;

/// Sets the text of a text storage into text containers and draws it. Glyphs are counted like
/// UTF-16 units: glyph i stands for unit i. Layout happens when something asks for it.
///
/// A layout manager belongs to one thread at a time.
class NSLayoutManager {
 public:
  NSLayoutManager() = default;
  NSLayoutManager(const NSLayoutManager&) = delete;
  NSLayoutManager& operator=(const NSLayoutManager&) = delete;
  ~NSLayoutManager();

  /// The text that it serves, not owned; null when it is not attached to one.
  NSTextStorage* textStorage() const { return textStorage_; }

  const std::vector<std::shared_ptr<NSTextContainer>>& textContainers() const {
    return containers_;
  }
  /// Text is set into the first container only.
  void addTextContainer(std::shared_ptr<NSTextContainer> container);

  void setUsesFontLeading(bool uses);

  /// The units that have a place in the container; {0, 0} for text that has none.
  NSRange glyphRangeForTextContainer(const NSTextContainer& container);
  /// What the lines take up, from the container's top left corner; zero without a line.
  NSRect usedRectForTextContainer(const NSTextContainer& container);
  /// Height of a line of text in the font.
  CGFloat defaultLineHeightForFont(const NSFont& font) const;
  /// Distance of the baseline from the top of such a line.
  CGFloat defaultBaselineOffsetForFont(const NSFont& font) const;

  // Drawing into the current graphics context, whose user space has y running down; the point is
  // where the container's top left corner goes. Lines that begin inside the range are drawn, whole.
  void drawBackgroundForGlyphRange(const NSRange& range, NSPoint atPoint);
  void drawGlyphsForGlyphRange(const NSRange& range, NSPoint atPoint);

  /// Lines and glyphs of the first container.
  const TextLayout& layout();

 private:
  friend class NSTextStorage;
  friend class NSTextContainer;

  void setTextStorage(NSTextStorage* storage);
  void textStorageDidChange() { invalidate(); }
  void textContainerChangedGeometry() { invalidate(); }
  void invalidate() { layout_.reset(); }
  bool serves(const NSTextContainer& container) const;

  NSTextStorage* textStorage_ = nullptr;
  std::vector<std::shared_ptr<NSTextContainer>> containers_;
  FontLeading leading_ = FontLeading::used;
  std::unique_ptr<TextLayout> layout_;
};
