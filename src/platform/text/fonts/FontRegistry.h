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
#include "platform/text/fonts/ClusterForms.h"
#include "platform/text/fonts/FontStyle.h"
#include "platform/text/fonts/HostFonts.h"

enum class SyntheticBold : uint8_t { no, yes };

/// What a font name comes to on this system: a face, and how it differs from what was asked.
struct ResolvedFont {
  std::shared_ptr<const FontFace> face;  ///< null when the system has no fonts at all
  double xScale = 1;                     ///< of advances and outlines
  double slant = 0;                      ///< synthetic italics: x += slant * y, y up
  SyntheticBold bold = SyntheticBold::no;
  /// What stands for the small letters of a family that has small capitals in their place; null
  /// for others. Its letters are capitals, `size` of the wanted size.
  std::shared_ptr<const ResolvedFont> smallCapitals;
  double size = 1;
  HostMetrics metrics;  ///< per em; those of the host's font where they are known
  LegacyLeading legacyLeading = LegacyLeading::none;
  FontStyle style;
  std::string faceName;  ///< PostScript name of the face; empty without one
};

/// A cluster that the font of its text lacks, and what decides which other font it takes.
struct FallbackQuery {
  const ClusterForms& cluster;
  FontStyle wanted;
  uint32_t script = 0;  ///< of the cluster or of its surroundings
  std::string_view language = {};
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

  /// A font with glyphs for the whole cluster: the host's choice for the script, else the face that
  /// has most of the characters around it, and of those the nearest in style. When no face has the
  /// whole, one for its first character; null when there is none either.
  std::shared_ptr<const ResolvedFont> fallback(const FallbackQuery& query);
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
    double xScale = 1;
    int weight = 0;  ///< that stands for the wanted one; 0: the same
  };
  struct FallbackKey {
    std::u32string cluster;
    bool italic;
    int weight;
    uint32_t script;
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

  void keepBestOf(std::vector<size_t>& sameName, size_t face) const;
  std::optional<size_t> faceNamed(std::string_view postScriptName) const;
  /// The first stand-in that is installed and, with a cluster, covers it.
  std::optional<StandIn> standIn(const HostFamily& family, const FontStyle& wanted, double size,
                                 const ClusterForms* cluster = nullptr) const;
  std::optional<StandIn> anyFace(const FontStyle& wanted) const;
  std::optional<size_t> nearest(std::string_view family, const FontStyle& wanted) const;
  bool covers(size_t face, const ClusterForms& cluster) const;
  std::optional<size_t> covering(const FallbackQuery& query) const;
  std::shared_ptr<const ResolvedFont> findFallback(const FallbackQuery& query);
  std::shared_ptr<const ResolvedFont> shareFallback(
      size_t face, const HostFamily* family, const std::shared_ptr<const ResolvedFont>& font);
  std::shared_ptr<const ResolvedFont> makeInstalled(size_t face, const HostFamily* family);
  std::shared_ptr<const ResolvedFont> makeStandIn(const HostFamily& family, const FontStyle& wanted,
                                                  double size);
  std::shared_ptr<const ResolvedFont> makeStandIn(const HostFamily& family, const FontStyle& wanted,
                                                  const std::optional<StandIn>& found);
  std::shared_ptr<const FontFace> open(size_t face);

  std::shared_ptr<const FontIndex> index_;
  /// Faces of a name: some variable fonts give one to faces of several styles.
  std::unordered_map<std::string_view, std::vector<size_t>> byName_;
  std::unordered_map<std::string_view, std::vector<size_t>> byFamily_;

  std::mutex mutex_;  // of what follows
  std::map<size_t, std::shared_ptr<const FontFace>> open_;
  std::map<FallbackKey, std::shared_ptr<const ResolvedFont>> fallbacks_;
  /// One object for each face and style, so that neighbouring characters are of one font.
  std::map<FallbackFont, std::shared_ptr<const ResolvedFont>> fallbackFonts_;
};
