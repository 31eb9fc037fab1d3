#pragma once

#include <memory>
#include <string_view>

#include "platform/text/fonts/FontFamilies.h"
#include "platform/text/fonts/FontStyle.h"
#include "platform/text/fonts/NSFont.h"

enum class NSFontWeightChange : uint8_t { lighter, heavier };

/// Finds relatives of fonts. A conversion answers the font itself when its family has no such
/// face: faces are never synthesised here. Fonts must not be null. Safe on any thread.
class NSFontManager {
 public:
  static const NSFontManager& sharedFontManager();

  NSFontTraitMask traitsOfFont(const NSFont& font) const;
  /// 5 is regular, from 9 on a font is bold.
  int64_t weightOfFont(const NSFont& font) const;

  std::shared_ptr<NSFont> convertFont(const std::shared_ptr<NSFont>& font, CGFloat toSize) const;
  /// Keeps weight and posture as near as the other family can.
  std::shared_ptr<NSFont> convertFont(const std::shared_ptr<NSFont>& font,
                                      std::string_view toFamily) const;
  /// The unbold and unitalic traits take bold and italic away.
  std::shared_ptr<NSFont> convertFont(const std::shared_ptr<NSFont>& font,
                                      NSFontTraitMask toHaveTrait) const;
  /// convertFont:toNotHaveTrait:.
  std::shared_ptr<NSFont> convertFontToNotHaveTrait(const std::shared_ptr<NSFont>& font,
                                                    NSFontTraitMask traits) const;
  /// The family's next weight in that direction, in the same posture and width.
  std::shared_ptr<NSFont> convertWeight(NSFontWeightChange change,
                                        const std::shared_ptr<NSFont>& ofFont) const;
  /// Null when the family is unknown or has no face with these traits.
  std::shared_ptr<NSFont> fontWithFamily(std::string_view family, NSFontTraitMask traits,
                                         int64_t weight, CGFloat size) const;
};
