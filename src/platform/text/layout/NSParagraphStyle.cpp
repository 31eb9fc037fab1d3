#include "platform/text/layout/NSParagraphStyle.h"

#include <algorithm>

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSCoder.h"

namespace {

constexpr int kDefaultTabCount = 12;
constexpr CGFloat kDefaultTabDistance = 28;

const NSParagraphStyle::TabStops& defaultTabStops() {
  static const NSParagraphStyle::TabStops stops = [] {
    NSParagraphStyle::TabStops list;
    for (int i = 1; i <= kDefaultTabCount; ++i) {
      list.push_back(std::make_shared<NSTextTab>(NSTextTabType::left, i * kDefaultTabDistance));
    }
    return list;
  }();
  return stops;
}

void sortByLocation(NSParagraphStyle::TabStops& stops) {
  std::stable_sort(stops.begin(), stops.end(),
                   [](const auto& a, const auto& b) { return a->location() < b->location(); });
}

/// The enumerator with that number, or the first one of the enumeration for a number it lacks.
template <class Enumeration>
Enumeration decodeEnumeration(NSCoder& coder, std::string_view key, Enumeration last) {
  const int32_t number = coder.decodeIntForKey(key);
  const bool known = number >= 0 && number <= static_cast<int32_t>(last);
  return static_cast<Enumeration>(known ? number : 0);
}

void encodeLength(NSCoder& coder, CGFloat value, std::string_view key) {
  if (value != 0) coder.encodeDouble(value, key);
}

}  // namespace

const NSClass NSParagraphStyle::kClass{"NSParagraphStyle", &NSObject::kClass,
                                       NSAllocate<NSParagraphStyle>};
const NSClass NSMutableParagraphStyle::kClass{"NSMutableParagraphStyle", &NSParagraphStyle::kClass,
                                              NSAllocate<NSMutableParagraphStyle>};

std::shared_ptr<const NSParagraphStyle> NSParagraphStyle::defaultParagraphStyle() {
  static const std::shared_ptr<const NSParagraphStyle> style = [] {
    auto natural = std::make_shared<NSParagraphStyle>();
    natural->alignment_ = NSTextAlignment::natural;
    return natural;
  }();
  return style;
}

const NSParagraphStyle::TabStops& NSParagraphStyle::tabStops() const {
  return tabStops_ ? *tabStops_ : defaultTabStops();
}

bool NSParagraphStyle::initWithCoder(NSCoder& coder) {
  alignment_ = decodeEnumeration(coder, "NSAlignment", NSTextAlignment::natural);
  lineBreakMode_ = decodeEnumeration(coder, "NSLineBreakMode", NSLineBreakMode::byTruncatingMiddle);
  // Stored one higher than its number, so that natural is an absent 0.
  const int32_t direction = coder.decodeIntForKey("NSWritingDirection");
  baseWritingDirection_ = direction == 1 || direction == 2
                              ? static_cast<NSWritingDirection>(direction - 1)
                              : NSWritingDirection::natural;
  lineSpacing_ = coder.decodeDoubleForKey("NSLineSpacing");
  paragraphSpacing_ = coder.decodeDoubleForKey("NSParagraphSpacing");
  paragraphSpacingBefore_ = coder.decodeDoubleForKey("NSParagraphSpacingBefore");
  headIndent_ = coder.decodeDoubleForKey("NSHeadIndent");
  firstLineHeadIndent_ = coder.decodeDoubleForKey("NSFirstLineHeadIndent");
  tailIndent_ = coder.decodeDoubleForKey("NSTailIndent");
  minimumLineHeight_ = coder.decodeDoubleForKey("NSMinLineHeight");
  maximumLineHeight_ = coder.decodeDoubleForKey("NSMaxLineHeight");
  lineHeightMultiple_ = coder.decodeDoubleForKey("NSLineHeightMultiple");
  defaultTabInterval_ = coder.decodeDoubleForKey("NSDefaultTabInterval");
  hyphenationFactor_ = coder.decodeFloatForKey("NSHyphenationFactor");
  if (const auto stops = coder.decodeObjectOfClass<NSArray>("NSTabStops")) {
    tabStops_.emplace();
    for (const auto& object : *stops) {
      if (auto tab = std::dynamic_pointer_cast<NSTextTab>(object)) tabStops_->push_back(tab);
    }
    sortByLocation(*tabStops_);
  }
  return true;
}

void NSParagraphStyle::encodeWithCoder(NSCoder& coder) const {
  if (alignment_ != NSTextAlignment::left) {
    coder.encodeInt32(static_cast<int32_t>(alignment_), "NSAlignment");
  }
  if (lineBreakMode_ != NSLineBreakMode::byWordWrapping) {
    coder.encodeInt32(static_cast<int32_t>(lineBreakMode_), "NSLineBreakMode");
  }
  if (baseWritingDirection_ != NSWritingDirection::natural) {
    coder.encodeInt32(static_cast<int32_t>(baseWritingDirection_) + 1, "NSWritingDirection");
  }
  encodeLength(coder, lineSpacing_, "NSLineSpacing");
  encodeLength(coder, paragraphSpacing_, "NSParagraphSpacing");
  encodeLength(coder, paragraphSpacingBefore_, "NSParagraphSpacingBefore");
  encodeLength(coder, headIndent_, "NSHeadIndent");
  encodeLength(coder, firstLineHeadIndent_, "NSFirstLineHeadIndent");
  encodeLength(coder, tailIndent_, "NSTailIndent");
  encodeLength(coder, minimumLineHeight_, "NSMinLineHeight");
  encodeLength(coder, maximumLineHeight_, "NSMaxLineHeight");
  encodeLength(coder, lineHeightMultiple_, "NSLineHeightMultiple");
  encodeLength(coder, defaultTabInterval_, "NSDefaultTabInterval");
  if (hyphenationFactor_ != 0) coder.encodeFloat(hyphenationFactor_, "NSHyphenationFactor");
  // Nil means the default stops and is written as such.
  std::shared_ptr<NSArray> stops;
  if (tabStops_) {
    stops = NSArray::arrayWithObjects({tabStops_->begin(), tabStops_->end()});
  }
  coder.encodeObject(stops, "NSTabStops");
}

void NSMutableParagraphStyle::setTabStops(TabStops stops) {
  sortByLocation(stops);
  tabStops_ = std::move(stops);
}
