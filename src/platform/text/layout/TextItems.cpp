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

/// Which of the ideographic languages a paragraph is in, by the letters that only one of them has.
std::string_view ideographLanguage(std::u16string_view text) {
  for (const char16_t c : text) {
    if (c >= 0x3040 && c < 0x3100) return "ja";
    if ((c >= 0x1100 && c < 0x1200) || (c >= 0xac00 && c < 0xd7a4)) return "ko";
  }
  return "zh-Hans";
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
  ParagraphItems result;
};

TextItemizer::TextItemizer(const StyledText& text)
    : text_(text), registry_(FontRegistry::shared()), libraries_(textLibraries()) {}

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
    paragraph.ideographLanguage = ideographLanguage(paragraph.text);
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

void TextItemizer::findDirections(Paragraph& paragraph) const {
  const NSWritingDirection wanted =
      text_.styleAt(paragraph.start).paragraph->baseWritingDirection();
  const bool rightToLeft = wanted == NSWritingDirection::rightToLeft;
  if (libraries_ != nullptr && (rightToLeft || mayRunRightToLeft(paragraph.text))) {
    BidiLevels levels = libraries_->bidiLevels(paragraph.text, baseDirection(wanted));
    if ((levels.paragraph & 1) != 0) paragraph.result.direction = TextDirection::rightToLeft;
    paragraph.levels = std::move(levels.units);
  }
  if (rightToLeft) paragraph.result.direction = TextDirection::rightToLeft;
}

void TextItemizer::addCluster(Paragraph& paragraph, size_t start, size_t end) {
  while (paragraph.start + start >= text_.runs[paragraph.run].end) ++paragraph.run;
  const std::u16string_view cluster = paragraph.text.substr(start, end - start);
  TextItem item;
  item.start = paragraph.start + start;
  item.length = end - start;
  item.style = &text_.styles[text_.runs[paragraph.run].style];
  item.kind = kindOf(cluster[0]);
  item.level = paragraph.levels.empty() ? uint8_t{0} : paragraph.levels[start];
  item.script = paragraph.script = scriptOf(paragraph, cluster);
  if (isIdeographic(item.script)) item.language = paragraph.ideographLanguage;
  item.font = item.kind == ItemKind::text ? fontFor(paragraph, cluster, *item.style)
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
         (last.script == next.script || last.script == kCommon) && sameWords &&
         last.length + next.length <= kMaxItemUnits;
}

uint32_t TextItemizer::scriptOf(const Paragraph& paragraph, std::u16string_view cluster) const {
  if (paragraph.latin1) return kLatin;
  const uint32_t script = libraries_->scriptOf(characterAt(cluster, 0).character);
  return script == kCommon || script == kInherited ? paragraph.script : script;
}

const ResolvedFont* TextItemizer::fontFor(const Paragraph& paragraph, std::u16string_view cluster,
                                          const TextStyle& style) {
  const ResolvedFont* own = style.font->resolved().get();
  if (own->face == nullptr || libraries_ == nullptr) return own;
  char32_t missing = 0;
  bool emoji = false;
  bool asText = false;
  for (size_t i = 0; i < cluster.size();) {
    const auto [c, units] = characterAt(cluster, i);
    if (missing == 0 && !has(*own->face, c) && !libraries_->isDefaultIgnorable(c)) missing = c;
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
  if (missing == 0) return own;
  auto other = registry_->fallback(missing, own->style, paragraph.ideographLanguage);
  return other == nullptr ? own : keep(std::move(other));
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
