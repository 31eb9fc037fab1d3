#include "platform/text/libraries/UnicodeText.h"

#include <unicode/ubidi.h>
#include <unicode/ubrk.h>

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

BidiLevels findBidiLevels(std::u16string_view text, BaseDirection base) {
  BidiLevels result;
  result.units.assign(text.size(), 0);
  const Bidi bidi(ubidi_open());
  if (bidi == nullptr) throw std::bad_alloc();
  UErrorCode status = U_ZERO_ERROR;
  ubidi_setPara(bidi.get(), text.data(), static_cast<int32_t>(text.size()), requestedLevel(base),
                nullptr, &status);
  const UBiDiLevel* levels = text.empty() ? nullptr : ubidi_getLevels(bidi.get(), &status);
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(status)) return result;
  result.paragraph = ubidi_getParaLevel(bidi.get());
  if (levels != nullptr) std::copy_n(levels, text.size(), result.units.begin());
  return result;
}
