#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/text/TextLibraries.h"
#include "platform/text/fonts/FontStyle.h"
#include "platform/text/fonts/HostFonts.h"

enum class SyntheticBold : uint8_t { no, yes };

/// What a font name comes to on this system: a face, and how it differs from what was asked.
struct ResolvedFont {
  std::shared_ptr<const FontFace> face;  ///< null when the system has no fonts at all
  double xScale = 1;                     ///< of advances and outlines
  double slant = 0;                      ///< synthetic italics: x += slant * y, y up
  SyntheticBold bold = SyntheticBold::no;
  HostMetrics metrics;  ///< per em; those of the host's font where they are known
  LegacyLeading legacyLeading = LegacyLeading::none;
  FontStyle style;
};

/// The fonts of this process. Built at the first text and immutable from then on, but for caches
/// under a lock; safe on any thread.
class FontRegistry {
 public:
  /// Over the fonts that are installed, unless useFontFiles chose others.
  static std::shared_ptr<FontRegistry> shared();
  /// From now on shared() knows exactly these files. For tests, which must not depend on what is
  /// installed. Fonts that were resolved before keep what they have.
  static void useFontFiles(std::vector<std::string> files);

  /// The face for a PostScript name: the one installed under that name, else the best stand-in.
  std::shared_ptr<const ResolvedFont> resolve(std::string_view postScriptName, double size);

  /// A font with a glyph for the character, for text in `wanted` that lacks it: the host's choice
  /// for the character's script, else any face that has it, nearest in style. Null when none has.
  std::shared_ptr<const ResolvedFont> fallback(char32_t character, const FontStyle& wanted,
                                               std::string_view language);
  /// The coloured emoji font; null when there is none.
  std::shared_ptr<const ResolvedFont> emoji();

  /// The installed face of that name, or null.
  const FontFaceInfo* installedFace(std::string_view postScriptName) const;
  /// Installed faces of a family.
  std::vector<const FontFaceInfo*> installedFamily(std::string_view family) const;

 private:
  explicit FontRegistry(std::shared_ptr<const FontIndex> index);

  struct StandIn {
    size_t face;
    double xScale;
  };
  struct FallbackKey {
    char32_t character;
    bool italic;
    int weight;
    std::string language;
    auto operator<=>(const FallbackKey&) const = default;
  };

  struct FallbackFont {
    size_t face;
    const HostFamily* family;
    bool italic;
    int weight;
    auto operator<=>(const FallbackFont&) const = default;
  };

  std::optional<StandIn> standIn(const HostFamily& family, const FontStyle& wanted,
                                 double size) const;
  std::optional<StandIn> anyFace(const FontStyle& wanted) const;
  std::optional<size_t> nearest(std::string_view family, const FontStyle& wanted) const;
  std::optional<size_t> covering(char32_t character, const FontStyle& wanted) const;
  std::shared_ptr<const ResolvedFont> findFallback(char32_t character, const FontStyle& wanted,
                                                   std::string_view language);
  std::shared_ptr<const ResolvedFont> shareFallback(
      size_t face, const HostFamily* family, const std::shared_ptr<const ResolvedFont>& font);
  std::shared_ptr<const ResolvedFont> makeInstalled(size_t face, const HostFamily* family);
  std::shared_ptr<const ResolvedFont> makeStandIn(const HostFamily& family, const FontStyle& wanted,
                                                  double size);
  std::shared_ptr<const FontFace> open(size_t face);

  std::shared_ptr<const FontIndex> index_;
  std::unordered_map<std::string_view, size_t> byName_;
  std::unordered_map<std::string_view, std::vector<size_t>> byFamily_;

  std::mutex mutex_;  // of what follows
  std::map<size_t, std::shared_ptr<const FontFace>> open_;
  std::map<FallbackKey, std::shared_ptr<const ResolvedFont>> fallbacks_;
  /// One object for each face and style, so that neighbouring characters are of one font.
  std::map<FallbackFont, std::shared_ptr<const ResolvedFont>> fallbackFonts_;
};
