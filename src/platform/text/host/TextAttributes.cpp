#include "platform/text/host/TextAttributes.h"

// From the attributes of archives to the styles of layout.
#include <cmath>
#include <unordered_map>

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/text/TextLengths.h"
#include "platform/text/host/NSAttributedString.h"
#include "platform/text/host/NSTextAttachment.h"

namespace {

/// The name that some systems use besides NSSuperscriptAttributeName.
constexpr const char* kOtherSuperscriptName = "NSSuperscript";
/// The bidirectional algorithm knows no more levels.
constexpr size_t kMaxEmbeddings = 60;
/// Levels beyond this are damaged values.
constexpr int64_t kMaxSuperscript = 100;

/// Reads attributes of known kinds out of a dictionary.
class TextAttributeReader {
 public:
  explicit TextAttributeReader(const NSDictionary& attributes) : attributes_(attributes) {}

  template <class T>
  std::shared_ptr<T> object(const char* name) const {
    return attributes_.objectOfClass<T>(name);
  }

  std::optional<double> real(const char* name) const {
    const auto number = object<NSNumber>(name);
    if (number == nullptr || !std::isfinite(number->doubleValue())) return std::nullopt;
    return layoutLength(number->doubleValue());
  }

  int64_t integer(const char* name) const {
    const auto number = object<NSNumber>(name);
    return number == nullptr ? 0 : number->integerValue();
  }

  bool has(const char* name) const { return object<NSNumber>(name) != nullptr; }

 private:
  const NSDictionary& attributes_;
};

Ligatures ligatures(const TextAttributeReader& reader) {
  if (!reader.has(NSLigatureAttributeName)) return Ligatures::standard;
  switch (reader.integer(NSLigatureAttributeName)) {
    case 0:
      return Ligatures::required;
    case 2:
      return Ligatures::all;
    default:
      return Ligatures::standard;
  }
}

int32_t superscript(const TextAttributeReader& reader) {
  const char* name =
      reader.has(NSSuperscriptAttributeName) ? NSSuperscriptAttributeName : kOtherSuperscriptName;
  return static_cast<int32_t>(std::clamp(reader.integer(name), -kMaxSuperscript, kMaxSuperscript));
}

/// The low 16 bits hold everything that line styles are made of.
int32_t lineStyle(const TextAttributeReader& reader, const char* name) {
  return static_cast<int32_t>(reader.integer(name) & 0xffff);
}

std::vector<TextEmbedding> embeddings(const TextAttributeReader& reader) {
  std::vector<TextEmbedding> all;
  const auto list = reader.object<NSArray>(NSWritingDirectionAttributeName);
  if (list == nullptr) return all;
  for (size_t i = 0; i < list->count() && all.size() < kMaxEmbeddings; ++i) {
    const auto number = std::dynamic_pointer_cast<NSNumber>(list->objectAtIndex(i));
    const int64_t value = number == nullptr ? -1 : number->integerValue();
    if (value < 0 || value > 3) continue;
    const bool rightToLeft = (value & 1) != 0;
    all.push_back(
        {rightToLeft ? TextDirection::rightToLeft : TextDirection::leftToRight, (value & 2) != 0});
  }
  return all;
}

void readAttachment(const TextAttributeReader& reader, TextStyle& style) {
  const auto attachment = reader.object<NSTextAttachment>(NSAttachmentAttributeName);
  if (attachment == nullptr) return;
  style.attachment = attachment->picture();
  if (style.attachment == nullptr) return;
  NSRect bounds = attachment->bounds();
  if (NSIsEmptyRect(bounds)) bounds.size = style.attachment->bitmap()->size();
  style.attachmentBounds = {{layoutLength(bounds.origin.x), layoutLength(bounds.origin.y)},
                            {layoutLength(bounds.size.width), layoutLength(bounds.size.height)}};
}

}  // namespace

TextStyle textStyle(const NSDictionary* attributes) {
  TextStyle style;
  if (attributes == nullptr) return style;
  const TextAttributeReader reader(*attributes);
  if (const auto font = reader.object<NSFont>(NSFontAttributeName)) style.font = font;
  if (const auto paragraph = reader.object<NSParagraphStyle>(NSParagraphStyleAttributeName)) {
    style.paragraph = paragraph;
  }
  style.kern = reader.real(NSKernAttributeName);
  style.ligatures = ligatures(reader);
  style.superscript = superscript(reader);
  style.baselineOffset = reader.real(NSBaselineOffsetAttributeName).value_or(0);
  style.obliqueness = reader.real(NSObliquenessAttributeName).value_or(0);
  style.expansion = reader.real(NSExpansionAttributeName).value_or(0);
  style.strokeWidth = reader.real(NSStrokeWidthAttributeName).value_or(0);
  style.embeddings = embeddings(reader);
  readAttachment(reader, style);
  style.underline = lineStyle(reader, NSUnderlineStyleAttributeName);
  style.strikethrough = lineStyle(reader, NSStrikethroughStyleAttributeName);
  style.foreground = reader.object<NSColor>(NSForegroundColorAttributeName);
  style.background = reader.object<NSColor>(NSBackgroundColorAttributeName);
  style.underlineColor = reader.object<NSColor>(NSUnderlineColorAttributeName);
  style.strikethroughColor = reader.object<NSColor>(NSStrikethroughColorAttributeName);
  style.strokeColor = reader.object<NSColor>(NSStrokeColorAttributeName);
  style.shadow = reader.object<NSShadow>(NSShadowAttributeName);
  return style;
}

std::shared_ptr<const StyledText> makeStyledText(const NSAttributedString& text) {
  auto styled = std::make_shared<StyledText>();
  styled->text = text.units();
  std::unordered_map<const NSDictionary*, uint32_t> known;
  for (size_t start = 0; start < text.length();) {
    NSRange run;
    const NSAttributedString::Attributes attributes = text.attributesAtIndex(start, &run);
    start = run.location + run.length;
    const auto [entry, isNew] =
        known.try_emplace(attributes.get(), static_cast<uint32_t>(styled->styles.size()));
    if (isNew) styled->styles.push_back(textStyle(attributes.get()));
    styled->runs.push_back({start, entry->second});
  }
  if (styled->styles.empty()) styled->styles.emplace_back();
  return styled;
}
