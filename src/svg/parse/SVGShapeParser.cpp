#include "svg/parse/SVGShapeParser.h"

#include <algorithm>
#include <vector>

#include "svg/SVGStringParser.h"

namespace SVGNative {

namespace {

// The lengths of one element, by attribute.
struct ShapeReader {
  const AttributeSet& attributes;
  const LengthContext& lengths;
  Path& path;

  float x(Attribute attribute) const { return length(attribute, LengthType::horizontal); }
  float y(Attribute attribute) const { return length(attribute, LengthType::vertical); }
  float length(Attribute attribute, LengthType type) const {
    return lengths.ParseLengthFromAttr(attributes, attribute, type, 0.0f);
  }
  // A radius that is missing, invalid or negative counts as not given.
  std::optional<float> radius(Attribute attribute, LengthType type) const {
    const std::optional<float> value = lengths.ParseLength(attributes, attribute, type);
    return value && *value >= 0.0f ? value : std::nullopt;
  }
};

void parseRect(const ShapeReader& read) {
  const float width = read.x(Attribute::width);
  const float height = read.y(Attribute::height);
  if (!(width > 0.0f && height > 0.0f)) return;
  const float x = read.x(Attribute::x);
  const float y = read.y(Attribute::y);
  const std::optional<float> givenX = read.radius(Attribute::rx, LengthType::horizontal);
  const std::optional<float> givenY = read.radius(Attribute::ry, LengthType::vertical);
  const float rx = std::min(givenX.value_or(givenY.value_or(0.0f)), width / 2.0f);
  const float ry = std::min(givenY.value_or(givenX.value_or(0.0f)), height / 2.0f);
  if (rx > 0.0f || ry > 0.0f) {
    read.path.RoundedRect(x, y, width, height, rx, ry);
  } else {
    read.path.Rect(x, y, width, height);
  }
}

void addEllipse(const ShapeReader& read, float rx, float ry) {
  if (!(rx > 0.0f && ry > 0.0f)) return;
  read.path.Ellipse(read.x(Attribute::cx), read.y(Attribute::cy), rx, ry);
}

void parseEllipse(const ShapeReader& read) {
  addEllipse(read, read.x(Attribute::rx), read.y(Attribute::ry));
}

void parseCircle(const ShapeReader& read) {
  const float radius = read.length(Attribute::r, LengthType::diagonal);
  addEllipse(read, radius, radius);
}

void parseLine(const ShapeReader& read) {
  read.path.MoveTo(read.x(Attribute::x1), read.y(Attribute::y1));
  read.path.LineTo(read.x(Attribute::x2), read.y(Attribute::y2));
}

// Lines through the points; false when there are none. A coordinate without its partner is left
// out.
bool addPoints(const ShapeReader& read) {
  std::vector<float> numbers;
  if (!SVGStringParser::ParseListOfNumbers(read.attributes.text(Attribute::points), numbers,
                                           SVGStringParser::Separators::optional) ||
      numbers.size() < 2) {
    return false;
  }
  read.path.Reserve(numbers.size() / 2);
  read.path.MoveTo(numbers[0], numbers[1]);
  for (size_t i = 2; i + 1 < numbers.size(); i += 2) read.path.LineTo(numbers[i], numbers[i + 1]);
  return true;
}

void parsePolyline(const ShapeReader& read) {
  addPoints(read);
}

void parsePolygon(const ShapeReader& read) {
  if (addPoints(read)) read.path.ClosePath();
}

// Drawing programs write a dozen bytes for a point.
void parsePath(const ShapeReader& read) {
  constexpr size_t kBytesPerPoint = 12;
  const std::string_view data = read.attributes.text(Attribute::d);
  read.path.Reserve(data.size() / kBytesPerPoint);
  SVGStringParser::ParsePathString(data, read.path);
}

struct Shape {
  std::string_view name;
  void (*parse)(const ShapeReader&);
};

constexpr Shape kShapes[] = {
    {"path", parsePath},         {"rect", parseRect},       {"circle", parseCircle},
    {"ellipse", parseEllipse},   {"polygon", parsePolygon}, {"line", parseLine},
    {"polyline", parsePolyline},
};

const Shape* shapeNamed(std::string_view name) {
  const auto* found = std::find_if(std::begin(kShapes), std::end(kShapes),
                                   [name](const Shape& shape) { return shape.name == name; });
  return found == std::end(kShapes) ? nullptr : found;
}

}  // namespace

bool isShape(std::string_view elementName) {
  return shapeNamed(elementName) != nullptr;
}

void ParseGeometry(std::string_view elementName, const AttributeSet& attributes,
                   const LengthContext& lengths, Path& path) {
  const Shape* shape = shapeNamed(elementName);
  if (shape != nullptr) shape->parse({attributes, lengths, path});
}

}  // namespace SVGNative
