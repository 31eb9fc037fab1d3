#include "platform/text/fonts/FontRegistry.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <new>

#include "platform/machine/AddressSpace.h"

namespace {

/// Families that serve when nothing better is known, in this order.
constexpr std::string_view kCommonFamilies[] = {"Nimbus Sans", "Liberation Sans", "DejaVu Sans",
                                                "Noto Sans", "Droid Sans Fallback"};

/// Shear of synthetic italics: 12 degrees, what the common font libraries use.
constexpr double kSyntheticSlant = 0.2126;
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

HostMetrics ownMetrics(const FontFace* face) {
  if (face == nullptr) return {0.8, 0.2, 0};
  const FaceMetrics& m = face->metrics();
  const double em = m.unitsPerEm;
  return {m.ascent / em, m.descent / em, m.leading / em};
}

HostMetrics metricsOf(const HostFamily* family, const FontFace* face) {
  return family != nullptr && family->metrics.known() ? family->metrics : ownMetrics(face);
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
  for (size_t i = 0; i < faces.size(); ++i) {
    const auto [entry, isNew] = byName_.try_emplace(faces[i].postScriptName, i);
    // The same face in several packages: the newest file, and only that, counts.
    if (!isNew && faces[i].version > faces[entry->second].version) entry->second = i;
  }
  for (size_t i = 0; i < faces.size(); ++i) {
    if (byName_.at(faces[i].postScriptName) == i) byFamily_[faces[i].family].push_back(i);
  }
}

std::shared_ptr<const ResolvedFont> FontRegistry::resolve(std::string_view postScriptName,
                                                          double size) {
  const HostFaceMatch host = hostFaceNamed(postScriptName);
  const auto installed = byName_.find(postScriptName);
  if (installed != byName_.end()) return makeInstalled(installed->second, host.family);
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
  if (family != nullptr) font->legacyLeading = family->legacyLeading;
  return font;
}

std::shared_ptr<const ResolvedFont> FontRegistry::makeStandIn(const HostFamily& family,
                                                              const FontStyle& wanted,
                                                              double size) {
  auto font = std::make_shared<ResolvedFont>();
  font->style = wanted;
  std::optional<StandIn> found = standIn(family, wanted, size);
  if (!found) found = anyFace(wanted);
  if (found) {
    const FontFaceInfo& info = index_->faces()[found->face];
    font->face = open(found->face);
    font->xScale = found->xScale;
    if (wanted.italic() && !info.italic) font->slant = kSyntheticSlant;
    if (wanted.weight >= kSyntheticBoldFrom && info.weight < kSyntheticBoldFrom) {
      font->bold = SyntheticBold::yes;
    }
  }
  font->metrics = metricsOf(&family, font->face.get());
  font->legacyLeading = family.legacyLeading;
  return font;
}

std::optional<FontRegistry::StandIn> FontRegistry::standIn(const HostFamily& family,
                                                           const FontStyle& wanted,
                                                           double size) const {
  for (const HostSubstitute& s : family.substitutes) {
    if (wanted.weight < s.minimumWeight || wanted.weight > s.maximumWeight) continue;
    if (size < s.minimumSize) continue;
    std::optional<size_t> face;
    // Some families have their condensed faces in one of their own.
    if (wanted.narrow()) face = nearest(std::string(s.family) + " Narrow", wanted);
    if (!face) face = nearest(s.family, wanted);
    if (face) return StandIn{*face, s.xScale};
  }
  return std::nullopt;
}

std::optional<FontRegistry::StandIn> FontRegistry::anyFace(const FontStyle& wanted) const {
  for (const std::string_view family : kCommonFamilies) {
    if (const auto face = nearest(family, wanted)) return StandIn{*face, 1};
  }
  if (index_ == nullptr || index_->faces().empty()) return std::nullopt;
  return StandIn{0, 1};
}

std::optional<size_t> FontRegistry::nearest(std::string_view family,
                                            const FontStyle& wanted) const {
  const auto members = byFamily_.find(family);
  if (members == byFamily_.end()) return std::nullopt;
  std::optional<size_t> best;
  int bestDistance = 0;
  for (const size_t face : members->second) {
    const int distance = styleDistance(index_->faces()[face], wanted);
    if (best && distance >= bestDistance) continue;
    best = face;
    bestDistance = distance;
  }
  return best;
}

std::optional<size_t> FontRegistry::covering(char32_t character, const FontStyle& wanted) const {
  for (const std::string_view family : kCommonFamilies) {
    const auto face = nearest(family, wanted);
    if (face && index_->covers(*face, character)) return face;
  }
  std::optional<size_t> best;
  int bestDistance = 0;
  const std::vector<FontFaceInfo>& faces = index_->faces();
  for (size_t i = 0; i < faces.size(); ++i) {
    const int distance = styleDistance(faces[i], wanted);
    if (best && distance >= bestDistance) continue;
    if (!index_->covers(i, character)) continue;
    best = i;
    bestDistance = distance;
  }
  return best;
}

std::shared_ptr<const ResolvedFont> FontRegistry::fallback(char32_t character,
                                                           const FontStyle& wanted,
                                                           std::string_view language) {
  const FallbackKey key{character, wanted.italic(), wanted.weight, std::string(language)};
  {
    const std::lock_guard lock(mutex_);
    const auto known = fallbacks_.find(key);
    if (known != fallbacks_.end()) return known->second;
  }
  std::shared_ptr<const ResolvedFont> font = findFallback(character, wanted, language);
  const std::lock_guard lock(mutex_);
  if (fallbacks_.size() >= kMaxFallbacks) fallbacks_.clear();
  return fallbacks_.emplace(key, std::move(font)).first->second;
}

std::shared_ptr<const ResolvedFont> FontRegistry::findFallback(char32_t character,
                                                               const FontStyle& wanted,
                                                               std::string_view language) {
  if (index_ == nullptr) return nullptr;
  const std::string_view hostFace =
      hostFaceForScript(textLibraries()->scriptOf(character), language);
  if (const HostFaceMatch host = hostFaceNamed(hostFace)) {
    const auto found = standIn(*host.family, wanted, 0);
    if (found && index_->covers(found->face, character)) {
      return shareFallback(found->face, host.family, makeStandIn(*host.family, wanted, 0));
    }
  }
  const auto face = covering(character, wanted);
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
  const auto found = byName_.find(postScriptName);
  return found == byName_.end() ? nullptr : &index_->faces()[found->second];
}

std::vector<const FontFaceInfo*> FontRegistry::installedFamily(std::string_view family) const {
  std::vector<const FontFaceInfo*> faces;
  const auto members = byFamily_.find(family);
  if (members == byFamily_.end()) return faces;
  for (const size_t face : members->second) faces.push_back(&index_->faces()[face]);
  return faces;
}
