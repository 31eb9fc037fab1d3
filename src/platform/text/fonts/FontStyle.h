#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Font traits, with the numbers of the platform.
enum class NSFontTraitMask : uint32_t {
  none = 0,
  italic = 0x1,
  bold = 0x2,
  unbold = 0x4,
  narrow = 0x10,
  expanded = 0x20,
  condensed = 0x40,
  smallCaps = 0x80,
  poster = 0x100,
  compressed = 0x200,
  fixedPitch = 0x400,
  unitalic = 0x1000000,
};
constexpr NSFontTraitMask operator|(NSFontTraitMask a, NSFontTraitMask b) {
  return static_cast<NSFontTraitMask>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
constexpr NSFontTraitMask operator&(NSFontTraitMask a, NSFontTraitMask b) {
  return static_cast<NSFontTraitMask>(static_cast<uint32_t>(a) & static_cast<uint32_t>(b));
}
constexpr NSFontTraitMask operator~(NSFontTraitMask a) {
  return static_cast<NSFontTraitMask>(~static_cast<uint32_t>(a));
}
constexpr bool any(NSFontTraitMask traits) {
  return traits != NSFontTraitMask::none;
}

/// What the words of a style name ("Condensed Bold Italic") say.
struct FontStyle {
  int weight = 400;       ///< 1 to 1000, 400 regular, 700 bold
  int managerWeight = 5;  ///< the font manager's scale: 5 regular, 9 bold, 14 heaviest
  NSFontTraitMask traits = NSFontTraitMask::none;

  bool italic() const { return any(traits & NSFontTraitMask::italic); }
  bool narrow() const {
    return any(traits & (NSFontTraitMask::narrow | NSFontTraitMask::condensed |
                         NSFontTraitMask::compressed));
  }
};

/// Style from its name; words without a meaning count as regular.
FontStyle fontStyleNamed(std::string_view style);

/// Style of an installed face, whose weight is a number.
FontStyle fontStyleOf(int weight, int width, bool italic, bool fixedPitch);

/// Family and style read out of a PostScript name that no table knows: "GillSansMT-BoldItalic" is
/// "Gill Sans", "Bold Italic".
struct FontNameParts {
  std::string family;
  std::string style;
};
FontNameParts splitPostScriptName(std::string_view name);
