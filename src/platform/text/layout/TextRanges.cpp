#include "platform/text/layout/TextRanges.h"

#include <algorithm>

#include "platform/text/TextCharacters.h"
#include "platform/text/TextLibraries.h"

namespace {

/// Below U+0300 only a carriage return and a line feed make one character of two units.
bool isSimple(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x300 && c != '\r'; });
}

}  // namespace

std::vector<NSRange> composedCharacterRanges(std::u16string_view text) {
  std::vector<uint8_t> starts(text.size(), 1);
  if (!isSimple(text)) {
    if (const TextLibraries* libraries = textLibraries()) libraries->findClusters(text, starts);
  }
  std::vector<NSRange> ranges;
  for (size_t i = 0; i < text.size(); ++i) {
    if (starts[i] != 0) ranges.push_back({i, 0});
    ++ranges.back().length;
  }
  return ranges;
}

std::vector<NSRange> lineRanges(std::u16string_view text) {
  std::vector<NSRange> ranges;
  for (size_t start = 0; start < text.size();) {
    size_t end = start;
    while (end < text.size() && !endsParagraph(text[end]) && text[end] != kLineSeparator) ++end;
    ranges.push_back({start, end - start});
    const bool pair = end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n';
    start = end + (pair ? 2 : 1);
  }
  return ranges;
}
