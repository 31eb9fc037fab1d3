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
  attachment,     ///< a picture
  invisible,      ///< control characters and attachments without a picture: no width, not drawn
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
  /// `surroundings` tell the language of ideographs; the text itself when they are empty.
  explicit TextItemizer(const StyledText& text, std::u16string_view surroundings = {});

  /// Units [start, end) are one paragraph without the characters that end it.
  ParagraphItems itemize(size_t start, size_t end);

  /// An item of no units for characters that are not in the text, next to one that is, in the
  /// text's own font where it has them.
  TextItem insertedItem(const TextItem& beside, std::u16string_view characters);

  /// Whether the font draws these characters.
  static bool covers(const ResolvedFont& font, const ClusterForms& cluster);

  /// The fonts of all items that are not the styles' own.
  const std::vector<std::shared_ptr<const ResolvedFont>>& fallbackFonts() const { return kept_; }

 private:
  struct Paragraph;

  void findDirections(Paragraph& paragraph) const;
  bool hasEmbeddings(const Paragraph& paragraph) const;
  std::vector<uint8_t> explicitLevels(const Paragraph& paragraph, uint8_t base) const;
  void addCluster(Paragraph& paragraph, size_t start, size_t end);
  bool joins(const TextItem& last, const TextItem& next) const;
  std::string_view languageOf(std::u16string_view paragraph);
  const ResolvedFont* fontFor(Paragraph& paragraph, std::u16string_view cluster,
                              const TextItem& item);
  /// For a cluster that some character of is missing in the text's own font.
  const ResolvedFont* fallbackFor(Paragraph& paragraph, std::u16string_view cluster,
                                  const TextItem& item);
  const ResolvedFont* emojiFont();
  uint32_t scriptOf(Paragraph& paragraph, std::u16string_view cluster) const;
  /// Script of the first character from the unit on that has one of its own.
  uint32_t specificScriptFrom(Paragraph& paragraph, size_t unit) const;
  const ResolvedFont* keep(std::shared_ptr<const ResolvedFont> font);

  const StyledText& text_;
  std::u16string_view surroundings_;
  std::shared_ptr<FontRegistry> registry_;
  const TextLibraries* libraries_;
  std::vector<std::shared_ptr<const ResolvedFont>> kept_;
  std::optional<const ResolvedFont*> emoji_;
  std::string_view language_;  ///< of the last ideographs
};
