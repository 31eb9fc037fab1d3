#include "platform/text/layout/TextItems.h"

#include <algorithm>

#include "platform/text/TextCharacters.h"
#include "platform/text/layout/LineStyle.h"

namespace {

constexpr uint32_t packed(const char (&code)[5]) {
  return static_cast<uint32_t>(code[0]) << 24 | static_cast<uint32_t>(code[1]) << 16 |
         static_cast<uint32_t>(code[2]) << 8 | static_cast<uint32_t>(code[3]);
}

constexpr uint32_t kLatin = packed("Latn");
constexpr uint32_t kCommon = packed("Zyyy");
constexpr uint32_t kInherited = packed("Zinh");
constexpr uint32_t kHan = packed("Hani");
constexpr uint32_t kHiragana = packed("Hira");
constexpr uint32_t kKatakana = packed("Kana");
constexpr uint32_t kHangul = packed("Hang");

constexpr char32_t kZeroWidthJoiner = 0x200d;
constexpr char32_t kTextSelector = 0xfe0e;
constexpr char32_t kEmojiSelector = 0xfe0f;
constexpr char32_t kKeycap = 0x20e3;

/// Everything below may be a cluster of its own, is common or Latin and runs left to right.
bool isLatin1(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x100; });
}

/// Below U+0590 no character runs right to left.
bool mayRunRightToLeft(std::u16string_view text) {
  return std::any_of(text.begin(), text.end(), [](char16_t c) { return c >= 0x590; });
}

bool isSkinTone(char32_t c) {
  return c >= 0x1f3fb && c <= 0x1f3ff;
}

ItemKind kindOf(char16_t c) {
  if (c == '\t') return ItemKind::tab;
  if (c == kLineSeparator) return ItemKind::lineSeparator;
  const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0);
  return control || c == kObjectReplacement ? ItemKind::invisible : ItemKind::text;
}

BaseDirection baseDirection(NSWritingDirection direction) {
  switch (direction) {
    case NSWritingDirection::leftToRight:
      return BaseDirection::leftToRight;
    case NSWritingDirection::rightToLeft:
      return BaseDirection::rightToLeft;
    case NSWritingDirection::natural:
      break;
  }
  return BaseDirection::natural;
}

/// Which of the ideographic languages a text is in, by the letters that only one of them has; empty
/// when it has none of those.
std::string_view ideographLanguage(std::u16string_view text) {
  for (const char16_t c : text) {
    if (c >= 0x3040 && c < 0x3100) return "ja";
    if ((c >= 0x1100 && c < 0x1200) || (c >= 0xac00 && c < 0xd7a4)) return "ko";
    if (c >= 0x3105 && c < 0x3130) return "zh-Hant";
  }
  return {};
}

bool isSpecific(uint32_t script) {
  return script != kCommon && script != kInherited;
}

bool contains(const std::vector<uint32_t>& scripts, uint32_t script) {
  return std::find(scripts.begin(), scripts.end(), script) != scripts.end();
}

/// Longest cluster: what is longer is no character that anybody reads, and the time that shaping
/// takes grows with the square of the length.
constexpr size_t kMaxClusterUnits = 64;

/// Makes long clusters several.
void cutLongClusters(std::vector<uint8_t>& starts) {
  size_t length = 0;
  for (uint8_t& start : starts) {
    if (start != 0 || length == kMaxClusterUnits) {
      start = 1;
      length = 0;
    }
    ++length;
  }
}

/// Emoji fonts have empty glyphs for the digits that keycaps are made of.
bool has(const FontFace& face, char32_t c) {
  return face.glyphForCharacter(c) != 0 && !(c < 0x80 && face.hasColorBitmaps());
}

bool decoratesByWord(const TextStyle& style) {
  return ((style.underline | style.strikethrough) & kLineByWord) != 0;
}

bool isIdeographic(uint32_t script) {
  return script == kHan || script == kHiragana || script == kKatakana || script == kHangul;
}

}  // namespace

struct TextItemizer::Paragraph {
  size_t start;
  std::u16string_view text;
  bool latin1;
  std::string_view ideographLanguage;
  std::vector<uint8_t> levels;  // empty: all of it runs left to right
  size_t run;                   // style run of the cluster to be added
  uint32_t script = kCommon;    // of the cluster before
  size_t nextSpecific = 0;      // first unit behind it of a character of one script
  uint32_t nextScript = kCommon;
  /// The face that the last cluster without a glyph in its own font took.
  const ResolvedFont* ownFont = nullptr;
  const ResolvedFont* neighbour = nullptr;
  uint32_t neighbourScript = kCommon;
  ParagraphItems result;
};

TextItemizer::TextItemizer(const StyledText& text, std::u16string_view surroundings)
    : text_(text),
      surroundings_(surroundings.empty() ? std::u16string_view(text.text) : surroundings),
      registry_(FontRegistry::shared()),
      libraries_(textLibraries()) {}

ParagraphItems TextItemizer::itemize(size_t start, size_t end) {
  Paragraph paragraph;
  paragraph.start = start;
  paragraph.text = std::u16string_view(text_.text).substr(start, end - start);
  paragraph.latin1 = libraries_ == nullptr || isLatin1(paragraph.text);
  paragraph.run = text_.runAt(start);
  std::vector<uint8_t>& starts = paragraph.result.clusterStarts;
  if (paragraph.latin1) {
    starts.assign(paragraph.text.size(), 1);
    paragraph.script = kLatin;
  } else {
    libraries_->findClusters(paragraph.text, starts);
    cutLongClusters(starts);
    paragraph.ideographLanguage = languageOf(paragraph.text);
  }
  findDirections(paragraph);
  for (size_t i = 0; i < paragraph.text.size();) {
    size_t next = i + 1;
    while (next < paragraph.text.size() && starts[next] == 0) ++next;
    addCluster(paragraph, i, next);
    i = next;
  }
  return std::move(paragraph.result);
}

/// Paragraphs of ideographs alone are in the language of those around them.
std::string_view TextItemizer::languageOf(std::u16string_view paragraph) {
  const std::string_view own = ideographLanguage(paragraph);
  if (!own.empty()) return language_ = own;
  if (language_.empty()) language_ = ideographLanguage(surroundings_);
  if (language_.empty()) language_ = "zh-Hans";
  return language_;
}

void TextItemizer::findDirections(Paragraph& paragraph) const {
  const NSWritingDirection wanted =
      text_.styleAt(paragraph.start).paragraph->baseWritingDirection();
  const bool rightToLeft = wanted == NSWritingDirection::rightToLeft;
  const bool embedded = hasEmbeddings(paragraph);
  if (libraries_ != nullptr && (rightToLeft || embedded || mayRunRightToLeft(paragraph.text))) {
    BidiLevels levels = libraries_->bidiLevels(paragraph.text, baseDirection(wanted));
    if (embedded) {
      levels = libraries_->bidiLevels(paragraph.text, levels.paragraph,
                                      explicitLevels(paragraph, levels.paragraph));
    }
    if ((levels.paragraph & 1) != 0) paragraph.result.direction = TextDirection::rightToLeft;
    paragraph.levels = std::move(levels.units);
  }
  if (rightToLeft) paragraph.result.direction = TextDirection::rightToLeft;
}

bool TextItemizer::hasEmbeddings(const Paragraph& paragraph) const {
  const size_t end = paragraph.start + paragraph.text.size();
  for (size_t run = paragraph.run, start = paragraph.start; run < text_.runs.size() && start < end;
       start = text_.runs[run++].end) {
    if (!text_.styles[text_.runs[run].style].embeddings.empty()) return true;
  }
  return false;
}

/// Each embedding takes its text to the next level of its direction (rules X2 to X5).
std::vector<uint8_t> TextItemizer::explicitLevels(const Paragraph& paragraph, uint8_t base) const {
  std::vector<uint8_t> levels(paragraph.text.size(), base);
  size_t run = paragraph.run;
  for (size_t i = 0; i < levels.size(); ++i) {
    while (paragraph.start + i >= text_.runs[run].end) ++run;
    uint8_t level = base;
    uint8_t overridden = 0;
    for (const TextEmbedding embedding : text_.styles[text_.runs[run].style].embeddings) {
      const int odd = embedding.direction == TextDirection::rightToLeft ? 1 : 0;
      const auto next = static_cast<uint8_t>(level + 1 + ((level + 1 + odd) & 1));
      if (next <= kHighestLevel) level = next;
      overridden = embedding.overrides ? kOverriddenLevel : 0;
    }
    levels[i] = level | overridden;
  }
  return levels;
}

void TextItemizer::addCluster(Paragraph& paragraph, size_t start, size_t end) {
  while (paragraph.start + start >= text_.runs[paragraph.run].end) ++paragraph.run;
  const std::u16string_view cluster = paragraph.text.substr(start, end - start);
  TextItem item;
  item.start = paragraph.start + start;
  item.length = end - start;
  item.style = &text_.styles[text_.runs[paragraph.run].style];
  item.kind = kindOf(cluster[0]);
  if (cluster[0] == kObjectReplacement && item.style->attachment != nullptr) {
    item.kind = ItemKind::attachment;
  }
  item.level = paragraph.levels.empty() ? uint8_t{0} : paragraph.levels[start];
  item.script = paragraph.script = scriptOf(paragraph, cluster);
  if (isIdeographic(item.script)) item.language = paragraph.ideographLanguage;
  item.font = item.kind == ItemKind::text ? fontFor(paragraph, cluster, item)
                                          : item.style->font->resolved().get();
  std::vector<TextItem>& items = paragraph.result.items;
  if (items.empty() || !joins(items.back(), item)) {
    items.push_back(item);
    return;
  }
  items.back().length += item.length;
  items.back().script = item.script;
  items.back().language = item.language;
}

bool TextItemizer::joins(const TextItem& last, const TextItem& next) const {
  if (last.kind != ItemKind::text || next.kind != ItemKind::text) return false;
  const bool sameWords = !decoratesByWord(*next.style) ||
                         hangs(text_.text[last.start]) == hangs(text_.text[next.start]);
  return last.style == next.style && last.font == next.font && last.level == next.level &&
         (last.script == next.script || last.script == kCommon) && sameWords;
}

/// Characters of no script of their own are of the script before them, or of the one behind where
/// they are used with that only.
uint32_t TextItemizer::scriptOf(Paragraph& paragraph, std::u16string_view cluster) const {
  if (paragraph.latin1) return kLatin;
  const char32_t first = characterAt(cluster, 0).character;
  const uint32_t script = libraries_->scriptOf(first);
  if (isSpecific(script)) return script;
  const std::vector<uint32_t> used = libraries_->scriptExtensions(first);
  if (used.empty() && paragraph.script != kCommon) return paragraph.script;
  if (contains(used, paragraph.script)) return paragraph.script;
  const size_t behind = static_cast<size_t>(cluster.data() - paragraph.text.data());
  const uint32_t next = specificScriptFrom(paragraph, behind);
  if (used.empty() || contains(used, next)) return next;
  return contains(used, kHan) ? kHan : paragraph.script;
}

uint32_t TextItemizer::specificScriptFrom(Paragraph& paragraph, size_t unit) const {
  size_t& at = paragraph.nextSpecific;
  if (at > unit || (at == unit && isSpecific(paragraph.nextScript))) return paragraph.nextScript;
  paragraph.nextScript = kCommon;
  for (at = unit; at < paragraph.text.size();) {
    const auto [c, units] = characterAt(paragraph.text, at);
    paragraph.nextScript = libraries_->scriptOf(c);
    if (isSpecific(paragraph.nextScript)) return paragraph.nextScript;
    at += units;
  }
  return paragraph.nextScript = kCommon;
}

const ResolvedFont* TextItemizer::fontFor(Paragraph& paragraph, std::u16string_view cluster,
                                          const TextItem& item) {
  const ResolvedFont* own = item.style->font->resolved().get();
  if (own->face == nullptr || libraries_ == nullptr) return own;
  bool missing = false;
  bool emoji = false;
  bool asText = false;
  for (size_t i = 0; i < cluster.size();) {
    const auto [c, units] = characterAt(cluster, i);
    missing |= !has(*own->face, c) && !libraries_->isDefaultIgnorable(c);
    emoji |= c == kEmojiSelector || c == kKeycap || c == kZeroWidthJoiner || isSkinTone(c);
    asText |= c == kTextSelector;
    i += units;
  }
  if (!paragraph.latin1 && !asText) {
    const char32_t first = characterAt(cluster, 0).character;
    emoji |= libraries_->hasEmojiPresentation(first);
    const ResolvedFont* font = emoji ? emojiFont() : nullptr;
    if (font != nullptr && font->face != nullptr && font->face->glyphForCharacter(first) != 0) {
      return font;
    }
  }
  if (missing) return fallbackFor(paragraph, cluster, item);
  const bool isSmall =
      own->smallCapitals != nullptr && libraries_->capitalOf(cluster[0]) != cluster[0];
  return isSmall ? own->smallCapitals.get() : own;
}

bool TextItemizer::covers(const ResolvedFont& font, const ClusterForms& cluster) {
  return font.face != nullptr &&
         cluster.coveredBy([&font](char32_t c) { return has(*font.face, c); });
}

const ResolvedFont* TextItemizer::fallbackFor(Paragraph& paragraph, std::u16string_view cluster,
                                              const TextItem& item) {
  const ResolvedFont* own = item.style->font->resolved().get();
  const ClusterForms forms(cluster);
  if (covers(*own, forms)) return own;
  const bool sameText = paragraph.ownFont == own && paragraph.neighbourScript == item.script;
  if (sameText && covers(*paragraph.neighbour, forms)) return paragraph.neighbour;
  auto other = registry_->fallback({forms, own->style, item.script, paragraph.ideographLanguage});
  if (other == nullptr) return own;
  paragraph.ownFont = own;
  paragraph.neighbourScript = item.script;
  return paragraph.neighbour = keep(std::move(other));
}

TextItem TextItemizer::insertedItem(const TextItem& beside, std::u16string_view characters) {
  TextItem item = beside;
  item.kind = ItemKind::text;
  item.start = beside.end();
  item.length = 0;
  const ClusterForms forms(characters);
  const ResolvedFont* own = beside.style->font->resolved().get();
  if (own->face == nullptr || libraries_ == nullptr || covers(*own, forms)) {
    item.font = own;
  } else if (!covers(*beside.font, forms)) {
    auto other = registry_->fallback({forms, own->style, beside.script, beside.language});
    item.font = other == nullptr ? own : keep(std::move(other));
  }
  return item;
}

const ResolvedFont* TextItemizer::emojiFont() {
  if (!emoji_) emoji_ = keep(registry_->emoji());
  return *emoji_;
}

const ResolvedFont* TextItemizer::keep(std::shared_ptr<const ResolvedFont> font) {
  const auto same = [&font](const auto& kept) { return kept == font; };
  const auto known = std::find_if(kept_.rbegin(), kept_.rend(), same);
  return known == kept_.rend() ? kept_.emplace_back(std::move(font)).get() : known->get();
}
