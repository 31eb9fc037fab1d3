#include "platform/text/fonts/NSFontManager.h"

#include <cstdlib>
#include <limits>
#include <optional>

namespace {

constexpr int kRegularWeight = 5;
constexpr int kBoldWeight = 9;

// Traits that tell the faces of a family apart, besides their weight.
constexpr NSFontTraitMask kShapeTraits = NSFontTraitMask::italic | NSFontTraitMask::narrow |
                                         NSFontTraitMask::condensed | NSFontTraitMask::compressed |
                                         NSFontTraitMask::expanded | NSFontTraitMask::poster |
                                         NSFontTraitMask::smallCaps;

bool has(NSFontTraitMask traits, NSFontTraitMask trait) {
  return any(traits & trait);
}

struct WantedFace {
  NSFontTraitMask shape;
  int weight;
};

WantedFace wantedLike(const FontStyle& style) {
  return {style.traits & kShapeTraits, style.managerWeight};
}

void addTraits(WantedFace& wanted, NSFontTraitMask traits) {
  wanted.shape = wanted.shape | (traits & kShapeTraits);
  if (has(traits, NSFontTraitMask::unitalic))
    wanted.shape = wanted.shape & ~NSFontTraitMask::italic;
  if (has(traits, NSFontTraitMask::bold) && wanted.weight < kBoldWeight)
    wanted.weight = kBoldWeight;
  if (has(traits, NSFontTraitMask::unbold) && wanted.weight >= kBoldWeight) {
    wanted.weight = kRegularWeight;
  }
}

bool isBold(int weight) {
  return weight >= kBoldWeight;
}

/// The member of the wanted shape and boldness that is nearest in weight.
std::optional<FontMember> exactMember(std::string_view family, const WantedFace& wanted) {
  std::optional<FontMember> best;
  int bestDistance = std::numeric_limits<int>::max();
  for (FontMember& member : membersOfFontFamily(family)) {
    const int distance = std::abs(member.style.managerWeight - wanted.weight);
    if ((member.style.traits & kShapeTraits) != wanted.shape ||
        isBold(member.style.managerWeight) != isBold(wanted.weight) || distance >= bestDistance) {
      continue;
    }
    best = std::move(member);
    bestDistance = distance;
  }
  return best;
}

/// The nearest member, whatever differs; posture counts more than width, width more than weight.
std::optional<FontMember> nearestMember(std::string_view family, const WantedFace& wanted) {
  constexpr int kOtherPosture = 1000;
  constexpr int kOtherWidth = 100;
  std::optional<FontMember> best;
  int bestDistance = std::numeric_limits<int>::max();
  for (FontMember& member : membersOfFontFamily(family)) {
    const NSFontTraitMask shape = member.style.traits & kShapeTraits;
    const bool sameItalic =
        has(shape, NSFontTraitMask::italic) == has(wanted.shape, NSFontTraitMask::italic);
    const bool sameWidth =
        (shape & ~NSFontTraitMask::italic) == (wanted.shape & ~NSFontTraitMask::italic);
    const int distance = std::abs(member.style.managerWeight - wanted.weight) +
                         (sameItalic ? 0 : kOtherPosture) + (sameWidth ? 0 : kOtherWidth);
    if (distance >= bestDistance) continue;
    best = std::move(member);
    bestDistance = distance;
  }
  return best;
}

std::shared_ptr<NSFont> memberOr(const std::optional<FontMember>& member,
                                 const std::shared_ptr<NSFont>& font) {
  if (!member || member->postScriptName == font->fontName()) return font;
  return std::make_shared<NSFont>(member->postScriptName, font->pointSize());
}

}  // namespace

const NSFontManager& NSFontManager::sharedFontManager() {
  static const NSFontManager manager;
  return manager;
}

NSFontTraitMask NSFontManager::traitsOfFont(const NSFont& font) const {
  return styleOfFontNamed(font.fontName()).traits;
}

int64_t NSFontManager::weightOfFont(const NSFont& font) const {
  return styleOfFontNamed(font.fontName()).managerWeight;
}

std::shared_ptr<NSFont> NSFontManager::convertFont(const std::shared_ptr<NSFont>& font,
                                                   CGFloat toSize) const {
  if (font->pointSize() == toSize) return font;
  return std::make_shared<NSFont>(font->fontName(), toSize);
}

std::shared_ptr<NSFont> NSFontManager::convertFont(const std::shared_ptr<NSFont>& font,
                                                   std::string_view toFamily) const {
  if (font->familyName() == toFamily) return font;
  return memberOr(nearestMember(toFamily, wantedLike(styleOfFontNamed(font->fontName()))), font);
}

std::shared_ptr<NSFont> NSFontManager::convertFont(const std::shared_ptr<NSFont>& font,
                                                   NSFontTraitMask toHaveTrait) const {
  const FontStyle style = styleOfFontNamed(font->fontName());
  WantedFace wanted = wantedLike(style);
  addTraits(wanted, toHaveTrait);
  const WantedFace has = wantedLike(style);
  if (wanted.shape == has.shape && wanted.weight == has.weight) return font;
  return memberOr(exactMember(font->familyName(), wanted), font);
}

std::shared_ptr<NSFont> NSFontManager::convertFontToNotHaveTrait(
    const std::shared_ptr<NSFont>& font, NSFontTraitMask traits) const {
  NSFontTraitMask taken = NSFontTraitMask::none;
  if (has(traits, NSFontTraitMask::bold)) taken = taken | NSFontTraitMask::unbold;
  if (has(traits, NSFontTraitMask::italic)) taken = taken | NSFontTraitMask::unitalic;
  return convertFont(font, taken);
}

std::shared_ptr<NSFont> NSFontManager::convertWeight(NSFontWeightChange change,
                                                     const std::shared_ptr<NSFont>& ofFont) const {
  const WantedFace now = wantedLike(styleOfFontNamed(ofFont->fontName()));
  const int sign = change == NSFontWeightChange::heavier ? 1 : -1;
  std::optional<FontMember> best;
  int bestStep = std::numeric_limits<int>::max();
  for (FontMember& member : membersOfFontFamily(ofFont->familyName())) {
    const int step = sign * (member.style.managerWeight - now.weight);
    if ((member.style.traits & kShapeTraits) != now.shape || step <= 0 || step >= bestStep)
      continue;
    best = std::move(member);
    bestStep = step;
  }
  return memberOr(best, ofFont);
}

std::shared_ptr<NSFont> NSFontManager::fontWithFamily(std::string_view family,
                                                      NSFontTraitMask traits, int64_t weight,
                                                      CGFloat size) const {
  WantedFace wanted{NSFontTraitMask::none, static_cast<int>(weight)};
  addTraits(wanted, traits);
  const auto member = exactMember(family, wanted);
  return member ? std::make_shared<NSFont>(member->postScriptName, size) : nullptr;
}
