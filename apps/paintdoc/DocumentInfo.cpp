#include "paintdoc/DocumentInfo.h"

#include <cstdio>
#include <ctime>
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

/// What a draw covers: of a group, what the visible draws in it paint.
NSRect boundsOf(const DrawBase& draw) {
  return dynamic_cast<const DrawGroup*>(&draw) != nullptr ? draw.drawRect() : draw.pathBounds();
}

/// UTC; empty for what no calendar shows.
std::string dateText(double secondsSince1970) {
  constexpr double kEndOfYear9999 = 253402300800;
  if (!(secondsSince1970 >= 0 && secondsSince1970 < kEndOfYear9999)) return {};
  const auto seconds = static_cast<std::time_t>(secondsSince1970);
  std::tm date{};
  char text[32];
  if (gmtime_r(&seconds, &date) == nullptr) return {};
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &date)};
}

void appendFile(std::string& out, const PaintDataFacts& file) {
  const std::string date = dateText(file.savedDate.value_or(-1));
  if (!date.empty()) out += "saved " + date + "\n";
  std::string writer;
  if (!file.application.empty()) writer += " \"" + printable(file.application) + "\"";
  if (!file.shortVersion.empty()) writer += " version " + printable(file.shortVersion);
  if (!file.buildVersion.empty()) writer += " build " + printable(file.buildVersion);
  if (!file.bundleIdentifier.empty()) writer += " (" + printable(file.bundleIdentifier) + ")";
  if (!writer.empty()) out += "application" + writer + "\n";
}

Json jsonText(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

Json fileJson(const PaintDataFacts& file) {
  return {{"name", jsonText(file.application)},
          {"identifier", jsonText(file.bundleIdentifier)},
          {"version", jsonText(file.shortVersion)},
          {"build", jsonText(file.buildVersion)}};
}

void appendPicture(std::string& out, const DrawBase& draw, const PictureFacts& facts) {
  const std::string kind = draw.pictureKind(), format = facts.format;
  out += " " + kind;
  // "PDF page" says it already.
  if (!format.empty() && !kind.starts_with(format)) out += " " + format;
  if (facts.size.width > 0) out += formatted(" %g x %g", facts.size.width, facts.size.height);
  if (facts.failure != PictureFailure::none) {
    out += std::string(" left out: ") + describe(facts.failure);
  }
}

/// The start of a text, in one line.
std::string beginningOf(const std::string& text) {
  constexpr size_t kShownBytes = 60;
  if (text.size() <= kShownBytes) return printable(text);
  size_t end = kShownBytes;
  while (end > 0 && (static_cast<uint8_t>(text[end]) & 0xC0) == 0x80) --end;  // inside a character
  return printable(text.substr(0, end)) + "...";
}

void appendFont(std::string& out, const UsedFont& font) {
  out += "font \"" + printable(font.wanted) + "\"";
  for (const double size : font.sizes) out += formatted(" %g", size);
  out += " drawn with";
  for (const std::string& face : font.faces) out += " " + printable(face);
  if (!font.isDrawn()) out += " none";
}

void appendText(std::string& out, const ShownText& text) {
  out += " text \"" + beginningOf(text.string) + "\"";
  for (const UsedFont& font : text.fonts) appendFont(out += ", ", font);
}

/// The draws of a list are counted from 1, the lowest; those in a group after its number.
std::string numberOf(const std::string& list, size_t index) {
  return (list.empty() ? "" : list + ".") + std::to_string(index + 1);
}

void appendDraws(std::string& out, PaintManager& document, const DrawArray& draws,
                 const std::string& number, size_t depth);

void appendDraw(std::string& out, PaintManager& document, DrawBase& draw, const std::string& number,
                size_t depth) {
  const NSRect b = boundsOf(draw);
  out += std::string(depth * 2, ' ') + number + " " + std::string(draw.className());
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
  if (*draw.pictureKind() != '\0') appendPicture(out, draw, document.pictureFacts(draw));
  if (const auto text = shownText(draw)) appendText(out, *text);
  out += '\n';
  if (const auto* group = dynamic_cast<const DrawGroup*>(&draw)) {
    appendDraws(out, document, group->draws(), number, depth + 1);
  }
}

void appendDraws(std::string& out, PaintManager& document, const DrawArray& draws,
                 const std::string& number, size_t depth) {
  for (size_t i = 0; i < draws.size(); ++i) {
    appendDraw(out, document, *draws[i], numberOf(number, i), depth);
  }
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

/// Of draws that show an embedded picture.
Json pictureJson(PaintManager& document, DrawBase& draw) {
  const PictureFacts facts = document.pictureFacts(draw);
  const bool isDrawn = facts.failure == PictureFailure::none;
  const bool isRead = facts.size.width > 0;
  return {{"kind", draw.pictureKind()},
          {"format", jsonText(facts.format)},
          {"size", isRead ? jsonNumbers({facts.size.width, facts.size.height}) : Json()},
          {"leftOut", isDrawn ? Json() : Json(describe(facts.failure))}};
}

Json drawsJson(PaintManager& document, const DrawArray& draws, const std::string& number = {});

Json drawJson(PaintManager& document, DrawBase& draw, const std::string& number) {
  const NSRect b = boundsOf(draw);
  Json json = {{"number", number},
               {"class", draw.className()},
               {"name", draw.title()},
               {"bounds", jsonNumbers({b.origin.x, b.origin.y, b.size.width, b.size.height})},
               {"rotation", jsonNumber(static_cast<double>(draw.rotateDegree()))},
               {"opacity", draw.opacity()},
               {"flags", flagsJson(document, draw)}};
  if (*draw.pictureKind() != '\0') json["picture"] = pictureJson(document, draw);
  if (const auto text = shownText(draw)) {
    json["text"] = {{"string", text->string}, {"fonts", jsonOf(text->fonts)}};
  }
  if (const auto* group = dynamic_cast<const DrawGroup*>(&draw)) {
    json["draws"] = drawsJson(document, group->draws(), number);
  }
  return json;
}

Json drawsJson(PaintManager& document, const DrawArray& draws, const std::string& number) {
  Json list = Json::array();
  for (size_t i = 0; i < draws.size(); ++i) {
    list.push_back(drawJson(document, *draws[i], numberOf(number, i)));
  }
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
  out += "version " + std::to_string(facts.file.version) + "\n";
  if (facts.resolution != 0) out += formatted("resolution %g\n", facts.resolution);
  appendFile(out, facts.file);
  if (const auto& color = document.backgroundColor()) {
    out += "background color " + colorText(*color) + "\n";
  }
  if (document.maskBackground()) out += "masked with background\n";
  for (const UsedFont& font : usedFonts(document)) {
    appendFont(out, font);
    out += '\n';
  }
  out += "draws " + std::to_string(document.allDraws().size()) + "\n";
  appendDraws(out, document, document.allDraws(), {}, 1);
  return out;
}

std::string infoJson(const DocumentFacts& facts) {
  PaintManager& document = facts.document;
  const auto& color = document.backgroundColor();
  return textOf({{"canvas", jsonNumbers({document.size().width, document.size().height})},
                 {"version", facts.file.version},
                 {"resolution", facts.resolution != 0 ? jsonNumber(facts.resolution) : Json()},
                 {"saved", jsonText(dateText(facts.file.savedDate.value_or(-1)))},
                 {"application", fileJson(facts.file)},
                 {"backgroundColor", color ? colorJson(*color) : Json()},
                 {"maskBackground", document.maskBackground()},
                 {"fonts", jsonOf(usedFonts(document))},
                 {"draws", drawsJson(document, document.allDraws())}},
                JsonLayout::indented);
}
