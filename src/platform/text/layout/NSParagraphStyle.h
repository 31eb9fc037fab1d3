#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/text/layout/NSTextTab.h"

/// Numbers are those of archives.
enum class NSLineBreakMode : int32_t {
  byWordWrapping = 0,
  byCharWrapping = 1,
  byClipping = 2,
  byTruncatingHead = 3,
  byTruncatingTail = 4,
  byTruncatingMiddle = 5,
};

enum class NSWritingDirection : int32_t { natural = -1, leftToRight = 0, rightToLeft = 1 };

/// How a paragraph is set. Lengths are points.
class NSParagraphStyle : public NSObject {
 public:
  static const NSClass kClass;
  using TabStops = std::vector<std::shared_ptr<NSTextTab>>;

  /// Left aligned, as an archived style without keys is.
  NSParagraphStyle() = default;
  /// What text without a style is set in: natural alignment, otherwise as above.
  static std::shared_ptr<const NSParagraphStyle> defaultParagraphStyle();

  NSTextAlignment alignment() const { return alignment_; }
  NSLineBreakMode lineBreakMode() const { return lineBreakMode_; }
  NSWritingDirection baseWritingDirection() const { return baseWritingDirection_; }
  /// Space below each line but the last.
  CGFloat lineSpacing() const { return lineSpacing_; }
  /// Space after each paragraph but the last.
  CGFloat paragraphSpacing() const { return paragraphSpacing_; }
  /// Space before each paragraph but the first.
  CGFloat paragraphSpacingBefore() const { return paragraphSpacingBefore_; }
  /// Start of the lines after the first, from the edge where lines start.
  CGFloat headIndent() const { return headIndent_; }
  CGFloat firstLineHeadIndent() const { return firstLineHeadIndent_; }
  /// End of the lines: above 0 from the edge where lines start, else from the other edge.
  CGFloat tailIndent() const { return tailIndent_; }
  CGFloat minimumLineHeight() const { return minimumLineHeight_; }
  /// 0: no limit.
  CGFloat maximumLineHeight() const { return maximumLineHeight_; }
  /// Factor of the natural line height; 0: none.
  CGFloat lineHeightMultiple() const { return lineHeightMultiple_; }
  /// Distance of the stops after the last one; 0: there are none.
  CGFloat defaultTabInterval() const { return defaultTabInterval_; }
  float hyphenationFactor() const { return hyphenationFactor_; }
  /// Sorted by location. Twelve left stops 28 points apart unless the style has its own.
  const TabStops& tabStops() const;

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  NSTextAlignment alignment_ = NSTextAlignment::left;
  NSLineBreakMode lineBreakMode_ = NSLineBreakMode::byWordWrapping;
  NSWritingDirection baseWritingDirection_ = NSWritingDirection::natural;
  CGFloat lineSpacing_ = 0;
  CGFloat paragraphSpacing_ = 0;
  CGFloat paragraphSpacingBefore_ = 0;
  CGFloat headIndent_ = 0;
  CGFloat firstLineHeadIndent_ = 0;
  CGFloat tailIndent_ = 0;
  CGFloat minimumLineHeight_ = 0;
  CGFloat maximumLineHeight_ = 0;
  CGFloat lineHeightMultiple_ = 0;
  CGFloat defaultTabInterval_ = 0;
  float hyphenationFactor_ = 0;
  std::optional<TabStops> tabStops_;
};

class NSMutableParagraphStyle : public NSParagraphStyle {
 public:
  static const NSClass kClass;

  NSMutableParagraphStyle() = default;
  /// A copy of another style, to be changed.
  explicit NSMutableParagraphStyle(const NSParagraphStyle& style) : NSParagraphStyle(style) {}

  void setAlignment(NSTextAlignment value) { alignment_ = value; }
  void setLineBreakMode(NSLineBreakMode value) { lineBreakMode_ = value; }
  void setBaseWritingDirection(NSWritingDirection value) { baseWritingDirection_ = value; }
  void setLineSpacing(CGFloat value) { lineSpacing_ = value; }
  void setParagraphSpacing(CGFloat value) { paragraphSpacing_ = value; }
  void setParagraphSpacingBefore(CGFloat value) { paragraphSpacingBefore_ = value; }
  void setHeadIndent(CGFloat value) { headIndent_ = value; }
  void setFirstLineHeadIndent(CGFloat value) { firstLineHeadIndent_ = value; }
  void setTailIndent(CGFloat value) { tailIndent_ = value; }
  void setMinimumLineHeight(CGFloat value) { minimumLineHeight_ = value; }
  void setMaximumLineHeight(CGFloat value) { maximumLineHeight_ = value; }
  void setLineHeightMultiple(CGFloat value) { lineHeightMultiple_ = value; }
  void setDefaultTabInterval(CGFloat value) { defaultTabInterval_ = value; }
  /// Sorts them by location.
  void setTabStops(TabStops stops);

  const NSClass& classInfo() const override { return kClass; }
};
