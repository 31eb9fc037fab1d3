#include "paintdoc/DocumentInfo.h"

#include <cstdio>
#include <vector>

#include "common/ExitStatus.h"
#include "document/DrawGroup.h"
#include "draw/image/DrawImage2.h"
#include "paintdoc/JsonWriter.h"
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
void writePicture(JsonWriter& json, PaintManager& document, DrawBase& draw) {
  if (*draw.pictureKind() == '\0') return;
  const PictureFailure failure = document.pictureFailure(draw);
  json.key("picture");
  json.beginObject();
  json.key("kind");
  json.value(draw.pictureKind());
  json.key("leftOut");
  failure == PictureFailure::none ? json.null() : json.value(describe(failure));
  json.endObject();
}

void writeDraw(JsonWriter& json, PaintManager& document, DrawBase& draw) {
  json.beginObject();
  json.key("class");
  json.value(draw.className());
  json.key("name");
  json.value(draw.title());
  const NSRect b = draw.pathBounds();
  json.key("bounds");
  json.beginArray();
  for (const double v : {b.origin.x, b.origin.y, b.size.width, b.size.height}) json.value(v);
  json.endArray();
  json.key("rotation");
  json.value(static_cast<double>(draw.rotateDegree()));
  json.key("opacity");
  json.value(static_cast<int64_t>(draw.opacity()));
  json.key("flags");
  json.beginArray();
  for (const char* flag : flagsOf(draw)) json.value(flag);
  if (&draw == document.backgroundDraw().get()) json.value("background");
  json.endArray();
  writePicture(json, document, draw);
  if (const auto* group = dynamic_cast<const DrawGroup*>(&draw)) {
    json.key("draws");
    json.beginArray();
    for (const auto& sub : group->draws()) writeDraw(json, document, *sub);
    json.endArray();
  }
  json.endObject();
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
  out += "draws " + std::to_string(document.allDraws().size()) + "\n";
  for (const auto& draw : document.allDraws()) appendDraw(out, document, *draw, 1);
  return out;
}

std::string infoJson(const DocumentFacts& facts) {
  PaintManager& document = facts.document;
  JsonWriter json;
  json.beginObject();
  json.key("canvas");
  json.beginArray();
  json.value(document.size().width);
  json.value(document.size().height);
  json.endArray();
  json.key("version");
  json.value(facts.version);
  json.key("resolution");
  facts.resolution != 0 ? json.value(facts.resolution) : json.null();
  json.key("backgroundColor");
  if (const auto& c = document.backgroundColor()) {
    json.beginArray();
    for (const double v :
         {c->redComponent(), c->greenComponent(), c->blueComponent(), c->alphaComponent()}) {
      json.value(v);
    }
    json.endArray();
  } else {
    json.null();
  }
  json.key("maskBackground");
  json.value(document.maskBackground());
  json.key("draws");
  json.beginArray();
  for (const auto& draw : document.allDraws()) writeDraw(json, document, *draw);
  json.endArray();
  json.endObject();
  return json.text() + "\n";
}

void writeLeftOut(JsonWriter& json, const std::vector<LeftOutPicture>& pictures) {
  json.key("leftOut");
  json.beginArray();
  for (const LeftOutPicture& picture : pictures) {
    json.beginObject();
    json.key("title");
    json.value(picture.title);
    json.key("kind");
    json.value(picture.kind);
    json.key("reason");
    json.value(picture.reason);
    json.endObject();
  }
  json.endArray();
}
