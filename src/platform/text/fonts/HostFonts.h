#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// What the platform that writes the documents knows of its own fonts, and which free fonts stand
// in for them here. Tables only; nothing in this header touches a font file.

/// Vertical line metrics as fractions of the font size. Descent is positive downwards. Line
/// heights must come from these: a stand-in's own metrics differ by up to a third.
struct HostMetrics {
  double ascent = 0;
  double descent = 0;
  double leading = 0;
  bool known() const { return ascent > 0; }
};

/// A face of a family: PostScript name and style name. Weight and traits follow from the style.
struct HostFace {
  std::string_view postScriptName;
  std::string_view style;
};

/// A free family that may stand in for a host family.
struct HostSubstitute {
  std::string_view family;
  double xScale = 1;      ///< keeps line lengths close to the original's
  int minimumWeight = 0;  ///< serves wanted weights of this range only
  int maximumWeight = 1000;
  double minimumSize = 0;  ///< serves sizes from this on
  int weight = 0;          ///< to take instead of the wanted one; 0: the wanted one
};

enum class HostFontKind : uint8_t { ordinary, fixedPitch };
/// Whether lines without leading get a fifth of their height added, as lines of the three oldest
/// families do.
enum class LegacyLeading : uint8_t { none, added };

/// Whether small letters look like capitals, only smaller.
enum class SmallLetters : uint8_t { own, capitals };

struct HostFamily {
  std::string_view name;
  HostMetrics metrics;
  std::span<const HostFace> faces;
  std::span<const HostSubstitute> substitutes;  ///< in order of preference
  HostFontKind kind = HostFontKind::ordinary;
  LegacyLeading legacyLeading = LegacyLeading::none;
  SmallLetters smallLetters = SmallLetters::own;
};

/// A face found by its name.
struct HostFaceMatch {
  const HostFamily* family = nullptr;
  const HostFace* face = nullptr;
  explicit operator bool() const { return face != nullptr; }
};

/// Every family, sorted as the tables are.
std::span<const HostFamily> hostFamilies();
/// Case-sensitive, as the platform's names are.
HostFaceMatch hostFaceNamed(std::string_view postScriptName);
const HostFamily* hostFamilyNamed(std::string_view family);

/// The family whose stand-ins serve a font that no table knows, by hints in its name (a serif, a
/// fixed-pitch or a script face); the plain sans family without a hint.
const HostFamily& hostFamilyLike(std::string_view postScriptName);

/// PostScript name of the host face for characters of a script (ISO 15924, big-endian packed) that
/// the text's own font lacks; empty when the host leaves it to coverage.
std::string_view hostFaceForScript(uint32_t script, std::string_view language);
