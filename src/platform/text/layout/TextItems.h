#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/layout/StyledText.h"

enum class ItemKind : uint8_t {
  text,           ///< shaped and drawn
  tab,            ///< a tab character
  lineSeparator,  ///< ends the line but not the paragraph
  invisible,      ///< control characters and attachments: no width, not drawn
};

/// A stretch of a paragraph of one style, face, script and direction.
struct TextItem {
  size_t start = 0;
  size_t length = 0;
  const TextStyle* style = nullptr;
  const ResolvedFont* font = nullptr;
  uint32_t script = 0;
  uint8_t level = 0;  ///< bidirectional embedding level
  ItemKind kind = ItemKind::text;
  std::string_view language;

  size_t end() const { return start + length; }
  bool rightToLeft() const { return (level & 1) != 0; }
};

/// A paragraph cut into items, in logical order.
struct ParagraphItems {
  std::vector<TextItem> items;
  TextDirection direction = TextDirection::leftToRight;
  /// For each unit, counted from the paragraph's start: 1 where a user-perceived character begins.
  std::vector<uint8_t> clusterStarts;
};

/// Cuts paragraphs of one text into items. Keeps alive the fonts that it hands out.
class TextItemizer {
 public:
  explicit TextItemizer(const StyledText& text);

  /// Units [start, end) are one paragraph without the characters that end it.
  ParagraphItems itemize(size_t start, size_t end);

  /// The fonts of all items that are not the styles' own.
  const std::vector<std::shared_ptr<const ResolvedFont>>& fallbackFonts() const { return kept_; }

  /// Longest item: keeps the cost of shaping again around a line break bounded.
  static constexpr size_t kMaxItemUnits = 256;

 private:
  struct Paragraph;

  void findDirections(Paragraph& paragraph) const;
  void addCluster(Paragraph& paragraph, size_t start, size_t end);
  bool joins(const TextItem& last, const TextItem& next) const;
  const ResolvedFont* fontFor(const Paragraph& paragraph, std::u16string_view cluster,
                              const TextStyle& style);
  const ResolvedFont* emojiFont();
  uint32_t scriptOf(const Paragraph& paragraph, std::u16string_view cluster) const;
  const ResolvedFont* keep(std::shared_ptr<const ResolvedFont> font);

  const StyledText& text_;
  std::shared_ptr<FontRegistry> registry_;
  const TextLibraries* libraries_;
  std::vector<std::shared_ptr<const ResolvedFont>> kept_;
  std::optional<const ResolvedFont*> emoji_;
};
