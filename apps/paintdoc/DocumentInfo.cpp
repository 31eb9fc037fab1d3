#include "paintdoc/DocumentInfo.h"

#include <cstdio>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <vector>

#include "common/ExitStatus.h"
#include "document/DrawGroup.h"
#include "draw/image/DrawImage2.h"
#include "paintdoc/Json.h"
#include "platform/graphics/color/NSColor.h"

namespace {

std::string formatted(const char* format, auto... values) {
  char text[256];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

/// What a draw does not do by default, as words.
std::vector<const char*> flagsOf(const DrawBase& draw) {
  std::vector<const char*> flags;
  if (!draw.visible()) flags.push_back("hidden");
  if (draw.locked()) flags.push_back("locked");
  if (!draw.smooth()) flags.push_back("jagged");
  if (draw.enableShadow()) flags.push_back("shadow");
  if (draw.enableInnerShadow()) flags.push_back("inner-shadow");
  if (draw.enableReflection()) flags.push_back("reflection");
  return flags;
}

std::string colorText(const NSColor& color) {
  return formatted("%.3g %.3g %.3g alpha %.3g", color.redComponent(), color.greenComponent(),
                   color.blueComponent(), color.alphaComponent());
}

void appendDraw(std::string& out, PaintManager& document, DrawBase& draw, size_t depth) {
  const NSRect b = draw.pathBounds();
  out += std::string(depth * 2, ' ') + std::string(draw.className());
  if (const std::string title = draw.title(); !title.empty()) {
    out += " \"" + printable(title) + "\"";
  }
  out += formatted(" bounds %g %g %g %g", b.origin.x, b.origin.y, b.size.width, b.size.height);
  if (draw.rotateDegree() != 0) {
    out += formatted(" rotation %g", static_cast<double>(draw.rotateDegree()));
  }
  if (draw.opacity() != 100) out += " opacity " + std::to_string(draw.opacity()) + "%";
  for (const char* flag : flagsOf(draw)) out += std::string(" ") + flag;
  if (&draw == document.backgroundDraw().get()) out += " background";
  const PictureFailure failure = document.pictureFailure(draw);
  if (failure != PictureFailure::none) {
    out += std::string(" ") + draw.pictureKind() + " left out: " + describe(failure);
  }
  out += '\n';
  if (const auto* group = dynamic_cast<const DrawGroup*>(&draw)) {
    for (const auto& sub : group->draws()) appendDraw(out, document, *sub, depth + 1);
  }
}

/// Of draws that show an embedded picture.
Json pictureJson(PaintManager& document, DrawBase& draw) {
  const PictureFailure failure = document.pictureFailure(draw);
  const bool isDrawn = failure == PictureFailure::none;
  return {{"kind", draw.pictureKind()}, {"leftOut", isDrawn ? Json() : Json(describe(failure))}};
}

Json flagsJson(PaintManager& document, DrawBase& draw) {
  Json flags = flagsOf(draw);
  if (&draw == document.backgroundDraw().get()) flags.push_back("background");
  return flags;
}

Json jsonNumbers(std::initializer_list<double> numbers) {
  Json list = Json::array();
  for (const double number : numbers) list.push_back(jsonNumber(number));
  return list;
}

void appendFont(std::string& out, const UsedFont& font) {
  out += "font \"" + printable(font.wanted) + "\" drawn with";
  for (const std::string& face : font.faces) out += " " + printable(face);
  out += font.isDrawn() ? "\n" : " none\n";
}

Json drawsJson(PaintManager& document, const DrawArray& draws);

Json drawJson(PaintManager& document, DrawBase& draw) {
  const NSRect b = draw.pathBounds();
  Json json = {{"class", draw.className()},
               {"name", draw.title()},
               {"bounds", jsonNumbers({b.origin.x, b.origin.y, b.size.width, b.size.height})},
               {"rotation", jsonNumber(static_cast<double>(draw.rotateDegree()))},
               {"opacity", draw.opacity()},
               {"flags", flagsJson(document, draw)}};
  if (*draw.pictureKind() != '\0') json["picture"] = pictureJson(document, draw);
  if (const auto* group = dynamic_cast<const DrawGroup*>(&draw)) {
    json["draws"] = drawsJson(document, group->draws());
  }
  return json;
}

Json drawsJson(PaintManager& document, const DrawArray& draws) {
  Json list = Json::array();
  for (const auto& draw : draws) list.push_back(drawJson(document, *draw));
  return list;
}

Json colorJson(const NSColor& color) {
  return jsonNumbers({color.redComponent(), color.greenComponent(), color.blueComponent(),
                      color.alphaComponent()});
}

}  // namespace

std::string infoText(const DocumentFacts& facts) {
  PaintManager& document = facts.document;
  std::string out = formatted("canvas %g x %g\n", document.size().width, document.size().height);
  out += "version " + std::to_string(facts.version) + "\n";
  if (facts.resolution != 0) out += formatted("resolution %g\n", facts.resolution);
  if (const auto& color = document.backgroundColor()) {
    out += "background color " + colorText(*color) + "\n";
  }
  if (document.maskBackground()) out += "masked with background\n";
  for (const UsedFont& font : usedFonts(document)) appendFont(out, font);
  out += "draws " + std::to_string(document.allDraws().size()) + "\n";
  for (const auto& draw : document.allDraws()) appendDraw(out, document, *draw, 1);
  return out;
}

std::string infoJson(const DocumentFacts& facts) {
  PaintManager& document = facts.document;
  const auto& color = document.backgroundColor();
  return textOf({{"canvas", jsonNumbers({document.size().width, document.size().height})},
                 {"version", facts.version},
                 {"resolution", facts.resolution != 0 ? jsonNumber(facts.resolution) : Json()},
                 {"backgroundColor", color ? colorJson(*color) : Json()},
                 {"maskBackground", document.maskBackground()},
                 {"fonts", jsonOf(usedFonts(document))},
                 {"draws", drawsJson(document, document.allDraws())}},
                JsonLayout::indented);
}
