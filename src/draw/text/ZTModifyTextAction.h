#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/foundation/NSObject.h"

/// What an action changes, and what its value is.
enum class ZTTextAttribute : int64_t {
  color = 0,          ///< NSColor
  font = 1,           ///< NSFont
  fontSize = 2,       ///< NSNumber, points
  fontFamily = 3,     ///< NSString
  fontTrait = 4,      ///< NSNumber, NSFontTraitMask; taken away when all of the text has it
  underline = 5,      ///< NSNumber, bool
  strikethrough = 6,  ///< NSNumber, bool
  alignment = 7,      ///< NSNumber, NSTextAlignment
  lineHeight = 8,     ///< NSNumber, multiple of the natural line height
  outline = 9,        ///< NSNumber, percent of the font size; value2: NSColor
};

/// A change to the style of a text, as an editor hands it over.
struct ZTModifyTextAction {
  ZTTextAttribute attributeAction = ZTTextAttribute::color;
  std::shared_ptr<NSObject> value;
  std::shared_ptr<NSObject> value2;

  static ZTModifyTextAction modifyTextActionWithAttribute(ZTTextAttribute attribute,
                                                          std::shared_ptr<NSObject> value) {
    return {attribute, std::move(value), nullptr};
  }
};
