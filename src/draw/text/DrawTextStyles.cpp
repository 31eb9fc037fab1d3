// Queries and changes of the style of the whole text.
#include <algorithm>
#include <cmath>

#include "draw/core/ZTSmallKits.h"
#include "draw/text/DrawText.h"
#include "draw/text/ZTModifyTextAction.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/text/fonts/NSFontManager.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/layout/NSParagraphStyle.h"

namespace {

/// Sizes nearer than this are the same to a user.
constexpr CGFloat kSizeStep = 0.1;

NSRange wholeOf(const NSAttributedString& text) {
  return {0, text.length()};
}

/// Calls `visit(value, range)` for each run of an attribute; the value is null where it is not set.
template <class Visit>
void forEachRun(const NSAttributedString& text, std::string_view name, Visit visit) {
  text.enumerateAttribute(name, wholeOf(text),
                          [&](const std::shared_ptr<NSObject>& value, const NSRange& range, bool*) {
                            visit(value, range);
                          });
}

/// The font of a run; the default one where none is set.
std::shared_ptr<NSFont> fontOf(const std::shared_ptr<NSObject>& value) {
  if (auto font = std::dynamic_pointer_cast<NSFont>(value)) return font;
  return std::make_shared<NSFont>();
}

/// The values of an attribute that differ as a user sees it.
template <class T, class Equal>
std::vector<std::shared_ptr<T>> distinct(std::vector<std::shared_ptr<T>> values, Equal equal) {
  std::vector<std::shared_ptr<T>> kept;
  for (auto& value : values) {
    const bool known = std::any_of(kept.begin(), kept.end(),
                                   [&](const auto& k) { return equal(k.get(), value.get()); });
    if (!known) kept.push_back(std::move(value));
  }
  return kept;
}

CGFloat realOf(const std::shared_ptr<NSObject>& value) {
  const auto* number = dynamic_cast<const NSNumber*>(value.get());
  return number == nullptr ? 0 : number->doubleValue();
}

}  // namespace

// ---- Queries.

std::vector<std::shared_ptr<NSColor>> DrawText::textColors() const {
  std::vector<std::shared_ptr<NSColor>> colors;
  forEachRun(*textStorage_, NSForegroundColorAttributeName, [&](const auto& value, const NSRange&) {
    auto color = std::dynamic_pointer_cast<NSColor>(value);
    colors.push_back(color != nullptr ? std::move(color) : NSColor::blackColor());
  });
  return distinct(std::move(colors), zt_isEqualWithColor);
}

std::vector<std::shared_ptr<NSFont>> DrawText::textFonts() const {
  std::vector<std::shared_ptr<NSFont>> fonts;
  forEachRun(*textStorage_, NSFontAttributeName,
             [&](const auto& value, const NSRange&) { fonts.push_back(fontOf(value)); });
  return distinct(std::move(fonts), zt_isEqualWithFont);
}

std::shared_ptr<NSObject> DrawText::firstAttribute(std::string_view name) const {
  return textStorage_->length() == 0 ? nullptr : textStorage_->attribute(name, 0);
}

bool DrawText::allOfTextHas(std::string_view name) const {
  bool all = textStorage_->length() > 0;
  forEachRun(*textStorage_, name,
             [&](const auto& value, const NSRange&) { all = all && realOf(value) != 0; });
  return all;
}

bool DrawText::underline() const {
  return allOfTextHas(NSUnderlineStyleAttributeName);
}

bool DrawText::strikethrough() const {
  return allOfTextHas(NSStrikethroughStyleAttributeName);
}

std::shared_ptr<const NSParagraphStyle> DrawText::firstParagraphStyle() const {
  const auto style =
      std::dynamic_pointer_cast<NSParagraphStyle>(firstAttribute(NSParagraphStyleAttributeName));
  return style != nullptr ? style : NSParagraphStyle::defaultParagraphStyle();
}

NSTextAlignment DrawText::textAlignment() const {
  return firstParagraphStyle()->alignment();
}

CGFloat DrawText::textLineHeight() const {
  return firstParagraphStyle()->lineHeightMultiple();
}

CGFloat DrawText::textOutlineWidth() const {
  return realOf(firstAttribute(NSStrokeWidthAttributeName));
}

std::shared_ptr<NSColor> DrawText::textOutlineColor() const {
  return std::dynamic_pointer_cast<NSColor>(firstAttribute(NSStrokeColorAttributeName));
}

// ---- Changes.

void DrawText::setTextAttribute(std::string_view name, const std::shared_ptr<NSObject>& value) {
  NSTextStorage& text = editableText();
  if (value != nullptr) {
    text.addAttribute(name, value, wholeOf(text));
  } else {
    text.removeAttribute(name, wholeOf(text));
  }
  textChanged();
}

void DrawText::editFonts(const EditFont& edit) {
  NSTextStorage& text = editableText();
  const NSAttributedString before(text);
  forEachRun(before, NSFontAttributeName, [&](const auto& value, const NSRange& range) {
    const auto font = fontOf(value);
    if (auto changed = edit(font); changed != font) {
      text.addAttribute(NSFontAttributeName, std::move(changed), range);
    }
  });
  textChanged();
}

void DrawText::editParagraphs(const std::function<void(NSMutableParagraphStyle&)>& edit) {
  NSTextStorage& text = editableText();
  const NSAttributedString before(text);
  forEachRun(before, NSParagraphStyleAttributeName, [&](const auto& value, const NSRange& range) {
    const auto* style = dynamic_cast<const NSParagraphStyle*>(value.get());
    auto changed = std::make_shared<NSMutableParagraphStyle>(
        style != nullptr ? *style : *NSParagraphStyle::defaultParagraphStyle());
    edit(*changed);
    text.addAttribute(NSParagraphStyleAttributeName, std::move(changed), range);
  });
  textChanged();
}

void DrawText::setTextColor(const std::shared_ptr<NSColor>& color) {
  setTextAttribute(NSForegroundColorAttributeName, color);
}

void DrawText::setTextFont(const std::shared_ptr<NSFont>& font) {
  setTextAttribute(NSFontAttributeName, font);
}

void DrawText::setTextFontSize(CGFloat size) {
  editFonts([size](const auto& font) {
    if (std::fabs(font->pointSize() - size) < kSizeStep) return font;
    return NSFontManager::sharedFontManager().convertFont(font, size);
  });
}

void DrawText::setTextFontFamily(std::string_view family) {
  editFonts([family](const auto& font) {
    return NSFontManager::sharedFontManager().convertFont(font, family);
  });
}

void DrawText::setTextFontTrait(NSFontTraitMask trait) {
  editFonts([trait](const auto& font) {
    return NSFontManager::sharedFontManager().convertFont(font, trait);
  });
}

void DrawText::toggleTextFontTrait(NSFontTraitMask trait) {
  const NSFontManager& manager = NSFontManager::sharedFontManager();
  const auto fonts = textFonts();
  const bool all = std::all_of(fonts.begin(), fonts.end(), [&](const auto& font) {
    return (manager.traitsOfFont(*font) & trait) == trait;
  });
  if (!all) return setTextFontTrait(trait);
  editFonts([&](const auto& font) { return manager.convertFontToNotHaveTrait(font, trait); });
}

void DrawText::setTextUnderline(bool on) {
  setTextAttribute(NSUnderlineStyleAttributeName, NSNumber::numberWithInteger(on ? 1 : 0));
}

void DrawText::setTextStrikethrough(bool on) {
  setTextAttribute(NSStrikethroughStyleAttributeName, NSNumber::numberWithInteger(on ? 1 : 0));
}

void DrawText::setTextAligment(NSTextAlignment alignment) {
  editParagraphs([alignment](NSMutableParagraphStyle& style) { style.setAlignment(alignment); });
}

void DrawText::setTextLineHeight(CGFloat multiple) {
  editParagraphs(
      [multiple](NSMutableParagraphStyle& style) { style.setLineHeightMultiple(multiple); });
}

void DrawText::setTextOutlineWidth(CGFloat width) {
  setTextAttribute(NSStrokeWidthAttributeName, NSNumber::numberWithDouble(width));
}

void DrawText::setTextOutlineColor(const std::shared_ptr<NSColor>& color) {
  setTextAttribute(NSStrokeColorAttributeName, color);
}

void DrawText::setTextOutlineWidth(CGFloat width, const std::shared_ptr<NSColor>& color) {
  setTextOutlineWidth(width);
  setTextOutlineColor(color);
}

void DrawText::applyModifyTextAction(const ZTModifyTextAction& action) {
  const CGFloat number = realOf(action.value);
  const auto color = [](const auto& value) { return std::dynamic_pointer_cast<NSColor>(value); };
  switch (action.attributeAction) {
    case ZTTextAttribute::color:
      return setTextColor(color(action.value));
    case ZTTextAttribute::font:
      return setTextFont(std::dynamic_pointer_cast<NSFont>(action.value));
    case ZTTextAttribute::fontSize:
      return setTextFontSize(number);
    case ZTTextAttribute::fontFamily:
      if (const auto* family = dynamic_cast<const NSString*>(action.value.get())) {
        setTextFontFamily(family->string());
      }
      return;
    case ZTTextAttribute::fontTrait:
      return toggleTextFontTrait(static_cast<NSFontTraitMask>(static_cast<uint32_t>(number)));
    case ZTTextAttribute::underline:
      return setTextUnderline(number != 0);
    case ZTTextAttribute::strikethrough:
      return setTextStrikethrough(number != 0);
    case ZTTextAttribute::alignment:
      return setTextAligment(static_cast<NSTextAlignment>(static_cast<int32_t>(number)));
    case ZTTextAttribute::lineHeight:
      return setTextLineHeight(number);
    case ZTTextAttribute::outline:
      return setTextOutlineWidth(number, color(action.value2));
  }
}
