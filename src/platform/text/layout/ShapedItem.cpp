#include "platform/text/layout/ShapedItem.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// e^3 is a twentyfold widening; what lies beyond is a damaged value.
constexpr double kMaxExpansion = 3;

ShapingRun shapingRun(const TextItem& item) {
  ShapingRun run;
  run.script = item.script;
  run.direction = item.rightToLeft() ? TextDirection::rightToLeft : TextDirection::leftToRight;
  run.language = item.language;
  run.kerning = item.style->kern == 0.0 ? Kerning::off : Kerning::on;
  run.ligatures = item.style->ligatures;
  return run;
}

/// Points per font unit, horizontally and vertically.
struct UnitScale {
  double x;
  double y;
};

UnitScale unitScale(const TextItem& item) {
  const double y =
      item.style->font->pointSize() * item.font->size / item.font->face->metrics().unitsPerEm;
  return {y * horizontalScale(*item.font, *item.style), y};
}

/// Kerning by attribute goes after each cluster: behind its last glyph where text runs left to
/// right, before its first glyph where it runs right to left.
void addKern(ShapedItem& shaped, double kern) {
  std::vector<ItemGlyph>& glyphs = shaped.glyphs;
  const bool rightToLeft = shaped.item.rightToLeft();
  for (size_t i = 0; i < glyphs.size(); ++i) {
    if (rightToLeft) glyphs[i].dx += static_cast<float>(kern);
    const bool lastOfCluster = i + 1 == glyphs.size() || glyphs[i + 1].cluster != glyphs[i].cluster;
    if (lastOfCluster) glyphs[i].advance += kern;
  }
}

ShapedItem shape(const TextItem& item, const ShapingRun& run) {
  std::vector<ShapedGlyph> glyphs;
  ShapedItem shaped;
  shaped.item = item;
  if (item.kind != ItemKind::text || item.font->face == nullptr) return shaped;
  item.font->face->shape(run, glyphs);
  const UnitScale scale = unitScale(item);
  shaped.glyphs.reserve(glyphs.size());
  for (const ShapedGlyph& g : glyphs) {
    shaped.glyphs.push_back({g.glyph, g.cluster - static_cast<uint32_t>(run.start),
                             g.advance * scale.x, static_cast<float>(g.dx * scale.x),
                             static_cast<float>(g.dy * scale.y), g.unsafeToBreak});
  }
  if (item.style->kern.value_or(0) != 0) addKern(shaped, *item.style->kern);
  for (const ItemGlyph& g : shaped.glyphs) shaped.width += g.advance;
  return shaped;
}

/// Unit for unit.
std::u16string inCapitals(std::u16string_view text) {
  const TextLibraries* libraries = textLibraries();
  std::u16string capitals(text);
  for (char16_t& c : capitals) {
    const char32_t capital = libraries == nullptr ? c : libraries->capitalOf(c);
    if (capital < 0x10000) c = static_cast<char16_t>(capital);
  }
  return capitals;
}

void measureUnits(ShapedItem& shaped) {
  shaped.advances.assign(shaped.item.length, 0);
  if (shaped.item.kind == ItemKind::attachment) {
    const double width = shaped.item.style->attachmentBounds.size.width;
    shaped.advances[0] = shaped.width = width + shaped.item.style->kern.value_or(0);
  }
  for (const ItemGlyph& g : shaped.glyphs) shaped.advances[g.cluster] += g.advance;
}

bool safeToSplit(const ShapedItem& shaped, uint32_t unit) {
  return std::any_of(shaped.glyphs.begin(), shaped.glyphs.end(),
                     [unit](const ItemGlyph& g) { return g.cluster == unit && !g.unsafeToBreak; });
}

/// Distributes the glyphs over two items without changing them.
SplitItem divide(ShapedItem shaped, const TextItem& first, const TextItem& second) {
  SplitItem split;
  split.before.item = first;
  split.after.item = second;
  for (ItemGlyph g : shaped.glyphs) {
    if (g.cluster < first.length) {
      split.before.glyphs.push_back(g);
    } else {
      g.cluster -= static_cast<uint32_t>(first.length);
      split.after.glyphs.push_back(g);
    }
  }
  const auto middle = shaped.advances.begin() + static_cast<ptrdiff_t>(first.length);
  split.before.advances.assign(shaped.advances.begin(), middle);
  split.after.advances.assign(middle, shaped.advances.end());
  split.before.width = std::accumulate(shaped.advances.begin(), middle, 0.0);
  split.after.width = std::accumulate(middle, shaped.advances.end(), 0.0);
  return split;
}

}  // namespace

double horizontalScale(const ResolvedFont& font, const TextStyle& style) {
  const double expansion = std::clamp(style.expansion, -kMaxExpansion, kMaxExpansion);
  return font.xScale * style.font->matrix().a * (expansion == 0 ? 1 : std::exp(expansion));
}

ShapedItem shapeItem(const TextItem& item, std::u16string_view text, size_t paragraphStart,
                     size_t paragraphEnd) {
  ShapingRun run = shapingRun(item);
  run.paragraph = text.substr(paragraphStart, paragraphEnd - paragraphStart);
  run.start = item.start - paragraphStart;
  run.length = item.length;
  std::u16string capitals;
  if (item.font->size != 1) {
    // They need no surroundings: what joins has no capitals.
    capitals = inCapitals(run.paragraph.substr(run.start, run.length));
    run.paragraph = capitals;
    run.start = 0;
  }
  ShapedItem shaped = shape(item, run);
  measureUnits(shaped);
  return shaped;
}

ShapedItem shapeInserted(const TextItem& item, std::u16string_view characters) {
  ShapingRun run = shapingRun(item);
  run.paragraph = characters;
  run.length = characters.size();
  return shape(item, run);
}

SplitItem splitItem(ShapedItem shaped, size_t unit, std::u16string_view text, size_t paragraphStart,
                    size_t paragraphEnd) {
  TextItem first = shaped.item;
  TextItem second = shaped.item;
  first.length = unit - first.start;
  second.start = unit;
  second.length = shaped.item.length - first.length;
  if (safeToSplit(shaped, static_cast<uint32_t>(first.length))) {
    return divide(std::move(shaped), first, second);
  }
  return {shapeItem(first, text, paragraphStart, unit),
          shapeItem(second, text, unit, paragraphEnd)};
}
