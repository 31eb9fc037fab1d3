#include "platform/text/fonts/FontRegistry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <numeric>
#include <tuple>
#include <utility>

#include "platform/graphics/pixels/outline/PathBounds.h"
#include "platform/machine/AddressSpace.h"

namespace {

/// Families that serve when nothing better is known, in this order.
constexpr std::string_view kCommonFamilies[] = {"Nimbus Sans", "Liberation Sans", "DejaVu Sans",
                                                "Noto Sans", "Droid Sans Fallback"};

/// Shear of synthetic italics: 12 degrees, what the common font libraries use.
constexpr double kSyntheticSlant = 0.2126;
/// Of small capitals, in parts of the font's size.
constexpr double kSmallCapitalSize = 0.8;
/// Stand-ins at least this much lighter than a bold original are emboldened.
constexpr int kSyntheticBoldFrom = 600;
/// Characters whose fallback is remembered; a text that needs more of them starts over.
constexpr size_t kMaxFallbacks = 65536;

/// Distance in style; a wrong posture or width weighs more than any weight.
int styleDistance(const FontFaceInfo& face, const FontStyle& wanted) {
  constexpr int kOtherPosture = 2000;
  constexpr int kOtherWidth = 5000;
  const FontStyle has = fontStyleOf(face.weight, face.width, face.italic, face.fixedPitch);
  return std::abs(face.weight - wanted.weight) +
         (has.italic() != wanted.italic() ? kOtherPosture : 0) +
         (has.narrow() != wanted.narrow() ? kOtherWidth : 0);
}

/// How far letters with marks and letters with tails reach from the baseline, font units.
void includeInk(const FontFace& face, FaceMetrics& m) {
  for (const char32_t c : U"\u00c5\u00c9\u00d1\u00d6dlgpqyj\u00c7,") {
    const uint32_t glyph = c == 0 ? 0 : face.glyphForCharacter(c);
    if (glyph == 0 || face.hasColorBitmaps()) continue;
    const auto box = tightPathBounds(face.outline(glyph));
    if (!box) continue;
    m.ascent = std::max(m.ascent, static_cast<int32_t>(std::ceil(NSMaxY(*box))));
    m.descent = std::max(m.descent, static_cast<int32_t>(std::ceil(-NSMinY(*box))));
  }
}

/// Some fonts tell heights that their own capitals with accents do not keep to. What these need
/// more is taken from the space between lines.
HostMetrics ownMetrics(const FontFace* face) {
  if (face == nullptr) return {0.8, 0.2, 0};
  FaceMetrics m = face->metrics();
  const int32_t told = m.ascent + m.descent;
  includeInk(*face, m);
  m.leading = std::max(0, m.leading - (m.ascent + m.descent - told));
  const double em = m.unitsPerEm;
  return {m.ascent / em, m.descent / em, m.leading / em};
}

auto styleOrder(const FontFaceInfo& face) {
  return std::tuple(face.weight, face.width, face.italic);
}

/// A total order of faces by what they are, not by where they were found.
bool precedes(const FontFaceInfo& a, const FontFaceInfo& b) {
  const auto key = [](const FontFaceInfo& f) {
    return std::tuple(std::string_view(f.family), styleOrder(f), std::string_view(f.postScriptName),
                      -static_cast<int64_t>(f.version), std::string_view(f.file), f.index);
  };
  return key(a) < key(b);
}

std::optional<size_t> nearestOf(const std::vector<FontFaceInfo>& faces,
                                const std::vector<size_t>& members, const FontStyle& wanted) {
  std::optional<size_t> best;
  int bestDistance = 0;
  for (const size_t face : members) {
    const int distance = styleDistance(faces[face], wanted);
    const bool better = !best || distance < bestDistance ||
                        (distance == bestDistance && precedes(faces[face], faces[*best]));
    if (!better) continue;
    best = face;
    bestDistance = distance;
  }
  return best;
}

HostMetrics metricsOf(const HostFamily* family, const FontFace* face) {
  return family != nullptr && family->metrics.known() ? family->metrics : ownMetrics(face);
}

/// The characters of a character's script in its part of the code space, for which a face of that
/// script has glyphs too.
std::vector<char32_t> charactersAround(char32_t character) {
  constexpr char32_t kPart = 128;
  const TextLibraries& libraries = *textLibraries();
  const uint32_t script = libraries.scriptOf(character);
  std::vector<char32_t> around;
  const char32_t first = character / kPart * kPart;
  for (char32_t c = first; c < first + kPart; ++c) {
    if (libraries.scriptOf(c) == script) around.push_back(c);
  }
  return around;
}

/// Whether a file could be mapped, if it is there.
bool hasAddressSpaceFor(const std::string& file) {
  std::error_code error;
  const auto size = std::filesystem::file_size(file, error);
  return error || hasAddressSpace(std::max<size_t>(size, 1));
}

std::mutex sharedMutex;
std::shared_ptr<FontRegistry>& sharedRegistry() {
  static std::shared_ptr<FontRegistry> registry;
  return registry;
}

}  // namespace

std::shared_ptr<FontRegistry> FontRegistry::shared() {
  const std::lock_guard lock(sharedMutex);
  std::shared_ptr<FontRegistry>& registry = sharedRegistry();
  if (registry == nullptr) {
    const TextLibraries* libraries = textLibraries();
    registry.reset(new FontRegistry(libraries == nullptr ? nullptr : libraries->installedFonts()));
  }
  return registry;
}

void FontRegistry::useFontFiles(std::vector<std::string> files) {
  const TextLibraries* libraries = textLibraries();
  const std::lock_guard lock(sharedMutex);
  sharedRegistry().reset(
      new FontRegistry(libraries == nullptr ? nullptr : libraries->fontsInFiles(files)));
}

FontRegistry::FontRegistry(std::shared_ptr<const FontIndex> index) : index_(std::move(index)) {
  if (index_ == nullptr) return;
  const std::vector<FontFaceInfo>& faces = index_->faces();
  for (size_t i = 0; i < faces.size(); ++i) keepBestOf(byName_[faces[i].postScriptName], i);
  for (size_t i = 0; i < faces.size(); ++i) {
    const std::vector<size_t>& kept = byName_.at(faces[i].postScriptName);
    if (std::find(kept.begin(), kept.end(), i) != kept.end()) {
      byFamily_[faces[i].family].push_back(i);
    }
  }
}

/// The same face in several packages: the newest file, and only that, counts.
void FontRegistry::keepBestOf(std::vector<size_t>& sameName, size_t face) const {
  const std::vector<FontFaceInfo>& faces = index_->faces();
  const auto same = std::find_if(sameName.begin(), sameName.end(), [&](size_t other) {
    return styleOrder(faces[other]) == styleOrder(faces[face]);
  });
  if (same == sameName.end()) {
    sameName.push_back(face);
  } else if (precedes(faces[face], faces[*same])) {
    *same = face;
  }
}

std::optional<size_t> FontRegistry::faceNamed(std::string_view postScriptName) const {
  const auto found = byName_.find(postScriptName);
  if (found == byName_.end()) return std::nullopt;
  if (found->second.size() == 1) return found->second.front();
  const FontStyle wanted = fontStyleNamed(splitPostScriptName(postScriptName).style);
  return nearestOf(index_->faces(), found->second, wanted);
}

std::shared_ptr<const ResolvedFont> FontRegistry::resolve(std::string_view postScriptName,
                                                          double size) {
  const HostFaceMatch host = hostFaceNamed(postScriptName);
  if (const auto face = faceNamed(postScriptName)) return makeInstalled(*face, host.family);
  if (host) return makeStandIn(*host.family, fontStyleNamed(host.face->style), size);
  return makeStandIn(hostFamilyLike(postScriptName),
                     fontStyleNamed(splitPostScriptName(postScriptName).style), size);
}

std::shared_ptr<const ResolvedFont> FontRegistry::makeInstalled(size_t position,
                                                                const HostFamily* family) {
  const FontFaceInfo& info = index_->faces()[position];
  auto font = std::make_shared<ResolvedFont>();
  font->face = open(position);
  font->metrics = metricsOf(family, font->face.get());
  font->style = fontStyleOf(info.weight, info.width, info.italic, info.fixedPitch);
  font->faceName = info.postScriptName;
  if (family != nullptr) font->legacyLeading = family->legacyLeading;
  return font;
}

std::shared_ptr<const ResolvedFont> FontRegistry::makeStandIn(const HostFamily& family,
                                                              const FontStyle& wanted,
                                                              double size) {
  std::optional<StandIn> found = standIn(family, wanted, size);
  if (!found) found = anyFace(wanted);
  return makeStandIn(family, wanted, found);
}

std::shared_ptr<const ResolvedFont> FontRegistry::makeStandIn(const HostFamily& family,
                                                              const FontStyle& wanted,
                                                              const std::optional<StandIn>& found) {
  auto font = std::make_shared<ResolvedFont>();
  font->style = wanted;
  if (found) {
    const FontFaceInfo& info = index_->faces()[found->face];
    if (found->weight != 0) font->style.weight = found->weight;
    font->face = open(found->face);
    font->faceName = info.postScriptName;
    font->xScale = found->xScale;
    if (wanted.italic() && !info.italic) font->slant = kSyntheticSlant;
    if (font->style.weight >= kSyntheticBoldFrom && info.weight < kSyntheticBoldFrom) {
      font->bold = SyntheticBold::yes;
    }
  }
  font->metrics = metricsOf(&family, font->face.get());
  font->legacyLeading = family.legacyLeading;
  if (family.smallLetters == SmallLetters::capitals) {
    auto small = std::make_shared<ResolvedFont>(*font);
    small->size = kSmallCapitalSize;
    font->smallCapitals = std::move(small);
  }
  return font;
}

std::optional<FontRegistry::StandIn> FontRegistry::standIn(const HostFamily& family,
                                                           const FontStyle& wanted, double size,
                                                           const ClusterForms* cluster) const {
  for (const HostSubstitute& s : family.substitutes) {
    if (wanted.weight < s.minimumWeight || wanted.weight > s.maximumWeight) continue;
    if (size < s.minimumSize) continue;
    FontStyle style = wanted;
    if (s.weight != 0) style.weight = s.weight;
    std::optional<size_t> face;
    // Some families have their condensed faces in one of their own.
    if (wanted.narrow()) face = nearest(std::string(s.family) + " Narrow", style);
    if (!face) face = nearest(s.family, style);
    if (!face || (cluster != nullptr && !covers(*face, *cluster))) continue;
    return StandIn{*face, s.xScale, s.weight};
  }
  return std::nullopt;
}

std::optional<FontRegistry::StandIn> FontRegistry::anyFace(const FontStyle& wanted) const {
  for (const std::string_view family : kCommonFamilies) {
    if (const auto face = nearest(family, wanted)) return StandIn{*face};
  }
  if (index_ == nullptr || index_->faces().empty()) return std::nullopt;
  std::vector<size_t> all(index_->faces().size());
  std::iota(all.begin(), all.end(), size_t{0});
  return StandIn{*nearestOf(index_->faces(), all, wanted)};
}

std::optional<size_t> FontRegistry::nearest(std::string_view family,
                                            const FontStyle& wanted) const {
  const auto members = byFamily_.find(family);
  if (members == byFamily_.end()) return std::nullopt;
  return nearestOf(index_->faces(), members->second, wanted);
}

bool FontRegistry::covers(size_t face, const ClusterForms& cluster) const {
  return cluster.coveredBy([&](char32_t c) { return index_->covers(face, c); });
}

std::optional<size_t> FontRegistry::covering(const FallbackQuery& query) const {
  for (const std::string_view family : kCommonFamilies) {
    const auto face = nearest(family, query.wanted);
    if (face && covers(*face, query.cluster)) return face;
  }
  const std::vector<char32_t> around = charactersAround(query.cluster.composed().front());
  std::optional<size_t> best;
  std::pair<int, int> bestRank;
  const std::vector<FontFaceInfo>& faces = index_->faces();
  for (size_t i = 0; i < faces.size(); ++i) {
    if (!covers(i, query.cluster)) continue;
    const auto has = std::count_if(around.begin(), around.end(),
                                   [&](char32_t c) { return index_->covers(i, c); });
    // Letters of one script should come from one face: quarters of it count before the style.
    const int quarters = static_cast<int>(4 * has / static_cast<ptrdiff_t>(around.size()));
    const std::pair rank{-quarters, styleDistance(faces[i], query.wanted)};
    if (best && (rank > bestRank || (rank == bestRank && !precedes(faces[i], faces[*best])))) {
      continue;
    }
    best = i;
    bestRank = rank;
  }
  return best;
}

std::shared_ptr<const ResolvedFont> FontRegistry::fallback(const FallbackQuery& query) {
  if (query.cluster.empty()) return nullptr;
  const FallbackKey key{query.cluster.composed(), query.wanted.italic(), query.wanted.weight,
                        query.script, std::string(query.language)};
  {
    const std::lock_guard lock(mutex_);
    const auto known = fallbacks_.find(key);
    if (known != fallbacks_.end()) return known->second;
  }
  std::shared_ptr<const ResolvedFont> font = findFallback(query);
  if (font == nullptr && query.cluster.composed().size() > 1) {
    const ClusterForms base = query.cluster.base();
    font = findFallback({base, query.wanted, query.script, query.language});
  }
  const std::lock_guard lock(mutex_);
  if (fallbacks_.size() >= kMaxFallbacks) fallbacks_.clear();
  return fallbacks_.emplace(key, std::move(font)).first->second;
}

std::shared_ptr<const ResolvedFont> FontRegistry::findFallback(const FallbackQuery& query) {
  if (index_ == nullptr) return nullptr;
  if (const HostFaceMatch host = hostFaceNamed(hostFaceForScript(query.script, query.language))) {
    if (const auto found = standIn(*host.family, query.wanted, 0, &query.cluster)) {
      return shareFallback(found->face, host.family,
                           makeStandIn(*host.family, query.wanted, found));
    }
  }
  const auto face = covering(query);
  return face ? shareFallback(*face, nullptr, makeInstalled(*face, nullptr)) : nullptr;
}

std::shared_ptr<const ResolvedFont> FontRegistry::shareFallback(
    size_t face, const HostFamily* family, const std::shared_ptr<const ResolvedFont>& font) {
  const std::lock_guard lock(mutex_);
  const FallbackFont key{face, family, font->style.italic(), font->style.weight};
  return fallbackFonts_.try_emplace(key, font).first->second;
}

std::shared_ptr<const ResolvedFont> FontRegistry::emoji() {
  const HostFamily* family = hostFamilyNamed("Apple Color Emoji");
  const auto found = standIn(*family, FontStyle{}, 0);
  return found ? shareFallback(found->face, family, makeInstalled(found->face, family)) : nullptr;
}

std::shared_ptr<const FontFace> FontRegistry::open(size_t face) {
  const std::lock_guard lock(mutex_);
  const auto [entry, isNew] = open_.try_emplace(face);
  const FontFaceInfo& info = index_->faces()[face];
  if (!isNew) return entry->second;
  entry->second = textLibraries()->openFace(info.file, info.index);
  if (entry->second == nullptr && !hasAddressSpaceFor(info.file)) {
    open_.erase(entry);
    throw std::bad_alloc();
  }
  return entry->second;
}

const FontFaceInfo* FontRegistry::installedFace(std::string_view postScriptName) const {
  const auto face = faceNamed(postScriptName);
  return face ? &index_->faces()[*face] : nullptr;
}

std::vector<const FontFaceInfo*> FontRegistry::installedFamily(std::string_view family) const {
  std::vector<const FontFaceInfo*> faces;
  const auto members = byFamily_.find(family);
  if (members == byFamily_.end()) return faces;
  for (const size_t face : members->second) faces.push_back(&index_->faces()[face]);
  return faces;
}
