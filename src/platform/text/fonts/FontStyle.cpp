#include "platform/text/fonts/FontStyle.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace {

struct WeightWord {
  std::string_view word;
  int weight;
  int managerWeight;
};

// The platform's published list of weight words for its 0 to 15 scale, with the nearest weights of
// the OpenType scale. W0 to W9 are the Japanese weight classes.
constexpr WeightWord kWeightWords[] = {
    {"ultralight", 200, 1},  {"thin", 100, 2},      {"light", 300, 3},       {"extralight", 200, 3},
    {"book", 375, 4},        {"regular", 400, 5},   {"plain", 400, 5},       {"display", 400, 5},
    {"roman", 400, 5},       {"semilight", 350, 4}, {"medium", 500, 6},      {"demi", 600, 7},
    {"demibold", 600, 7},    {"semi", 600, 8},      {"semibold", 600, 8},    {"emphasized", 600, 8},
    {"bold", 700, 9},        {"extra", 800, 10},    {"extrabold", 800, 10},  {"heavy", 800, 11},
    {"black", 900, 12},      {"super", 900, 12},    {"ultra", 950, 13},      {"ultrabold", 950, 13},
    {"ultrablack", 950, 13}, {"fat", 950, 13},      {"extrablack", 950, 14}, {"obese", 950, 14},
    {"nord", 950, 14},       {"w0", 100, 1},        {"w1", 100, 2},          {"w2", 200, 3},
    {"w3", 300, 4},          {"w4", 400, 5},        {"w5", 500, 6},          {"w6", 600, 8},
    {"w7", 700, 9},          {"w8", 800, 10},       {"w9", 900, 12},
};

struct TraitWord {
  std::string_view word;
  NSFontTraitMask trait;
};

constexpr TraitWord kTraitWords[] = {
    {"italic", NSFontTraitMask::italic},       {"oblique", NSFontTraitMask::italic},
    {"slanted", NSFontTraitMask::italic},      {"inclined", NSFontTraitMask::italic},
    {"it", NSFontTraitMask::italic},           {"ita", NSFontTraitMask::italic},
    {"condensed", NSFontTraitMask::condensed}, {"cond", NSFontTraitMask::condensed},
    {"narrow", NSFontTraitMask::narrow},       {"compressed", NSFontTraitMask::compressed},
    {"expanded", NSFontTraitMask::expanded},   {"extended", NSFontTraitMask::expanded},
    {"poster", NSFontTraitMask::poster},
};

bool isUpper(char c) {
  return std::isupper(static_cast<unsigned char>(c)) != 0;
}

bool isLower(char c) {
  return std::islower(static_cast<unsigned char>(c)) != 0;
}

/// Whether a word begins at `i`: a capital after a small letter, or before one.
bool startsWord(std::string_view text, size_t i) {
  if (i == 0 || !isUpper(text[i])) return false;
  return isLower(text[i - 1]) ||
         (i + 1 < text.size() && isLower(text[i + 1]) && text[i - 1] != ' ');
}

std::string withSpaces(std::string_view joined) {
  std::string out;
  for (size_t i = 0; i < joined.size(); ++i) {
    if (startsWord(joined, i)) out += ' ';
    out += joined[i];
  }
  return out;
}

void applyWord(std::string_view word, FontStyle& style) {
  for (const WeightWord& w : kWeightWords) {
    if (w.word != word) continue;
    style.weight = w.weight;
    style.managerWeight = w.managerWeight;
  }
  for (const TraitWord& t : kTraitWords) {
    if (t.word == word) style.traits = style.traits | t.trait;
  }
}

/// Weight words of two parts ("Demi Bold") read as one.
std::string joinTwoPartWeights(std::string style) {
  for (const std::string_view first : {"ultra ", "extra ", "demi ", "semi "}) {
    const size_t at = style.find(first);
    if (at == std::string::npos) continue;
    const std::string_view rest = std::string_view(style).substr(at + first.size());
    if (rest.starts_with("bold") || rest.starts_with("light") || rest.starts_with("black")) {
      style.erase(at + first.size() - 1, 1);
    }
  }
  return style;
}

constexpr int kBoldManagerWeight = 9;

void addBoldTrait(FontStyle& style) {
  if (style.managerWeight >= kBoldManagerWeight) {
    style.traits = style.traits | NSFontTraitMask::bold;
  }
}

}  // namespace

FontStyle fontStyleNamed(std::string_view name) {
  std::string text = withSpaces(name);
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) {
    return c == '-' || c == '_' ? ' ' : static_cast<char>(std::tolower(c));
  });
  text = joinTwoPartWeights(text);
  FontStyle style;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find(' ', start), text.size());
    applyWord(std::string_view(text).substr(start, end - start), style);
    start = end + 1;
  }
  addBoldTrait(style);
  return style;
}

FontStyle fontStyleOf(int weight, int width, bool italic, bool fixedPitch) {
  // Manager weights of the OpenType hundreds from 100 to 900.
  constexpr std::array<int, 9> kManagerWeights = {2, 3, 3, 5, 6, 8, 9, 10, 12};
  constexpr int kNarrowBelow = 95;
  constexpr int kExpandedFrom = 106;
  FontStyle style;
  style.weight = weight;
  style.managerWeight =
      kManagerWeights[static_cast<size_t>(std::clamp((weight + 50) / 100, 1, 9)) - 1];
  if (italic) style.traits = style.traits | NSFontTraitMask::italic;
  if (fixedPitch) style.traits = style.traits | NSFontTraitMask::fixedPitch;
  if (width < kNarrowBelow) style.traits = style.traits | NSFontTraitMask::condensed;
  if (width >= kExpandedFrom) style.traits = style.traits | NSFontTraitMask::expanded;
  addBoldTrait(style);
  return style;
}

FontNameParts splitPostScriptName(std::string_view name) {
  const size_t dash = name.find('-');
  std::string_view family = name.substr(0, dash);
  for (const std::string_view suffix : {"PSMT", "MT", "PS"}) {
    if (family.size() > suffix.size() && family.ends_with(suffix)) {
      family.remove_suffix(suffix.size());
      break;
    }
  }
  std::string_view style = dash == std::string_view::npos ? "Regular" : name.substr(dash + 1);
  if (style.size() > 2 && style.ends_with("MT")) style.remove_suffix(2);
  return {withSpaces(family), withSpaces(style)};
}
