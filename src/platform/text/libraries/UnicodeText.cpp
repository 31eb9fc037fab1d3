#include "platform/text/libraries/UnicodeText.h"

#include <hb.h>
#include <unicode/ubidi.h>
#include <unicode/ubrk.h>
#include <unicode/unorm2.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <new>

#include "platform/machine/AddressSpace.h"
#include "platform/text/libraries/ObjectPool.h"

namespace {

struct IcuClose {
  void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
  void operator()(UBiDi* bidi) const { ubidi_close(bidi); }
};
using BreakIterator = std::unique_ptr<UBreakIterator, IcuClose>;
using Bidi = std::unique_ptr<UBiDi, IcuClose>;

BreakIterator openIterator(UBreakIteratorType type) {
  // The library reads its data and names its locale here, and does not survive without memory.
  requireAddressSpace(kLibraryTables);
  UErrorCode status = U_ZERO_ERROR;
  UBreakIterator* iterator = ubrk_open(type, "", nullptr, 0, &status);
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  return BreakIterator(U_SUCCESS(status) ? iterator : nullptr);
}

/// Marks every boundary but the end. Without an iterator (no Unicode data) only the start is one.
void markBoundaries(UBreakIterator* iterator, std::u16string_view text,
                    std::vector<uint8_t>& marks) {
  marks.assign(text.size(), 0);
  if (text.empty()) return;
  marks[0] = 1;
  if (iterator == nullptr) return;
  UErrorCode status = U_ZERO_ERROR;
  ubrk_setText(iterator, text.data(), static_cast<int32_t>(text.size()), &status);
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(status)) return;
  for (int32_t i = ubrk_next(iterator); i != UBRK_DONE; i = ubrk_next(iterator)) {
    if (static_cast<size_t>(i) < text.size()) marks[static_cast<size_t>(i)] = 1;
  }
}

const UNormalizer2* openNormalizer(Normalization form) {
  // The library reads its data here.
  requireAddressSpace(kLibraryTables);
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* normalizer = form == Normalization::composed ? unorm2_getNFCInstance(&status)
                                                                   : unorm2_getNFDInstance(&status);
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  return normalizer;
}

const UNormalizer2* normalizerTo(Normalization form) {
  static const UNormalizer2* const composing = openNormalizer(Normalization::composed);
  static const UNormalizer2* const decomposing = openNormalizer(Normalization::decomposed);
  return form == Normalization::composed ? composing : decomposing;
}

UBiDiLevel requestedLevel(BaseDirection base) {
  switch (base) {
    case BaseDirection::leftToRight:
      return 0;
    case BaseDirection::rightToLeft:
      return 1;
    case BaseDirection::natural:
      break;
  }
  return UBIDI_DEFAULT_LTR;
}

BidiLevels levelsOf(std::u16string_view text, UBiDiLevel base, UBiDiLevel* explicitLevels) {
  BidiLevels result;
  result.units.assign(text.size(), 0);
  const Bidi bidi(ubidi_open());
  if (bidi == nullptr) throw std::bad_alloc();
  UErrorCode status = U_ZERO_ERROR;
  ubidi_setPara(bidi.get(), text.data(), static_cast<int32_t>(text.size()), base, explicitLevels,
                &status);
  const UBiDiLevel* levels = text.empty() ? nullptr : ubidi_getLevels(bidi.get(), &status);
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(status)) return result;
  result.paragraph = ubidi_getParaLevel(bidi.get());
  if (levels != nullptr) std::copy_n(levels, text.size(), result.units.begin());
  return result;
}

}  // namespace

void findClusterStarts(std::u16string_view text, std::vector<uint8_t>& starts) {
  static auto& pool = *new ObjectPool<BreakIterator>;
  const auto iterator = pool.take([] { return openIterator(UBRK_CHARACTER); });
  markBoundaries(iterator.get(), text, starts);
}

void findLineStarts(std::u16string_view text, std::vector<uint8_t>& breaks) {
  static auto& pool = *new ObjectPool<BreakIterator>;
  const auto iterator = pool.take([] { return openIterator(UBRK_LINE); });
  markBoundaries(iterator.get(), text, breaks);
}

std::vector<uint32_t> findScriptExtensions(char32_t character) {
  constexpr int32_t kMost = 64;  // no character has half as many
  UScriptCode codes[kMost];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t count =
      uscript_getScriptExtensions(static_cast<UChar32>(character), codes, kMost, &status);
  std::vector<uint32_t> scripts;
  if (U_FAILURE(status)) return scripts;
  for (int32_t i = 0; i < count; ++i) {
    if (codes[i] == USCRIPT_COMMON || codes[i] == USCRIPT_INHERITED) continue;
    const char* name = uscript_getShortName(codes[i]);
    scripts.push_back(hb_script_to_iso15924_tag(hb_script_from_string(name, -1)));
  }
  return scripts;
}

std::u16string normalizeText(std::u16string_view text, Normalization form) {
  const UNormalizer2* normalizer = normalizerTo(form);
  UErrorCode status = U_ZERO_ERROR;
  // No canonical form is longer than four times the text.
  std::u16string result(4 * text.size(), u'\0');
  const int32_t length =
      unorm2_normalize(normalizer, text.data(), static_cast<int32_t>(text.size()), result.data(),
                       static_cast<int32_t>(result.size()), &status);
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(status)) return std::u16string(text);
  result.resize(static_cast<size_t>(length));
  return result;
}

BidiLevels findBidiLevels(std::u16string_view text, BaseDirection base) {
  return levelsOf(text, requestedLevel(base), nullptr);
}

BidiLevels findBidiLevels(std::u16string_view text, uint8_t paragraph,
                          std::vector<uint8_t> explicitLevels) {
  static_assert(kOverriddenLevel == UBIDI_LEVEL_OVERRIDE &&
                kHighestLevel < UBIDI_MAX_EXPLICIT_LEVEL);
  return levelsOf(text, paragraph, explicitLevels.data());
}
