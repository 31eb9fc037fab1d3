// Path data.
#include <array>
#include <cmath>

#include "svg/SVGParserArcToCurve.h"
#include "svg/SVGScanner.h"
#include "svg/SVGStringParser.h"

namespace SVGNative::SVGStringParser {

namespace {

struct Point {
  float x = 0.0f;
  float y = 0.0f;
};

bool isFinite(Point p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

class PathParser {
 public:
  PathParser(std::string_view text, Path& path) : cursor_(text), path_(path) {}
  bool parse();

 private:
  using Segment = bool (PathParser::*)();
  static const std::array<Segment, 'z' - 'A' + 1> kSegments;
  static constexpr std::array<Segment, 'z' - 'A' + 1> makeSegments();
  static Segment segmentFor(char command);

  bool parseRepetitions(Segment segment);

  // Each parses one set of arguments of its command and adds what it says. Nothing is added when an
  // argument is missing or leaves the range of single precision.
  bool moveTo();
  bool lineTo();
  bool horizontalTo();
  bool verticalTo();
  bool cubicTo();
  bool smoothCubicTo();
  bool quadTo();
  bool smoothQuadTo();
  bool arcTo();
  bool closePath();

  bool scanArgument(float& number);
  bool scanFlag(bool& flag);
  bool scanPoint(Point& point);
  // The first coordinate that a subpath gives to the path after a close command is its own start.
  void beginDrawing();
  bool addLine(Point to);
  bool addCubic(Point c1, Point c2, Point to);
  bool addQuad(Point c, Point to);
  Point reflected() const;

  // What the control point before the current point belongs to.
  enum class Control { none, cubic, quad };

  Cursor cursor_;
  Path& path_;
  bool relative_ = false;
  bool firstArgument_ = true;
  bool closed_ = false;
  Point current_;
  Point start_;
  Point control_;
  Control controlOf_ = Control::none;
};

constexpr std::array<PathParser::Segment, 'z' - 'A' + 1> PathParser::makeSegments() {
  std::array<Segment, 'z' - 'A' + 1> table{};
  const auto set = [&table](char upper, Segment segment) {
    table[static_cast<size_t>(upper - 'A')] = segment;
    table[static_cast<size_t>(upper - 'A' + 'a' - 'A')] = segment;
  };
  set('M', &PathParser::moveTo);
  set('L', &PathParser::lineTo);
  set('H', &PathParser::horizontalTo);
  set('V', &PathParser::verticalTo);
  set('C', &PathParser::cubicTo);
  set('S', &PathParser::smoothCubicTo);
  set('Q', &PathParser::quadTo);
  set('T', &PathParser::smoothQuadTo);
  set('A', &PathParser::arcTo);
  set('Z', &PathParser::closePath);
  return table;
}

constexpr std::array<PathParser::Segment, 'z' - 'A' + 1> PathParser::kSegments = makeSegments();

PathParser::Segment PathParser::segmentFor(char command) {
  return command >= 'A' && command <= 'z' ? kSegments[static_cast<size_t>(command - 'A')] : nullptr;
}

bool PathParser::parse() {
  skipSpace(cursor_);
  if (cursor_.atEnd()) return true;
  if (!IsMoveCmd(*cursor_.pos)) return false;
  while (!cursor_.atEnd()) {
    const char command = *cursor_.pos++;
    const Segment segment = segmentFor(command);
    if (segment == nullptr) return false;
    relative_ = command >= 'a';
    firstArgument_ = true;
    skipSpace(cursor_);
    if (IsCloseCmd(command)) {
      closePath();
    } else if (!parseRepetitions(segment)) {
      return false;
    }
    skipSpace(cursor_);
  }
  return true;
}

// A command's letter may be left out when it is that of the command before; after a move the
// further points are lines.
bool PathParser::parseRepetitions(Segment segment) {
  const auto startsNumber = [this] {
    return !cursor_.atEnd() &&
           (isDigit(*cursor_.pos) || cursor_.at('.') || cursor_.at('-') || cursor_.at('+'));
  };
  do {
    if (!(this->*segment)()) return false;
    if (segment == &PathParser::moveTo) segment = &PathParser::lineTo;
    skipSpace(cursor_);
  } while (cursor_.at(',') || startsNumber());
  return true;
}

// Before every argument but a command's first there may be whitespace and one comma.
bool PathParser::scanArgument(float& number) {
  if (!firstArgument_) skipSeparator(cursor_);
  firstArgument_ = false;
  return scanNumber(cursor_, number);
}

bool PathParser::scanFlag(bool& flag) {
  skipSeparator(cursor_);
  flag = cursor_.at('1');
  if (!flag && !cursor_.at('0')) return false;
  ++cursor_.pos;
  return true;
}

bool PathParser::scanPoint(Point& point) {
  if (!scanArgument(point.x) || !scanArgument(point.y)) return false;
  if (relative_) point = {current_.x + point.x, current_.y + point.y};
  return isFinite(point);
}

void PathParser::beginDrawing() {
  if (closed_) path_.MoveTo(start_.x, start_.y);
  closed_ = false;
}

bool PathParser::addLine(Point to) {
  if (!isFinite(to)) return false;
  beginDrawing();
  path_.LineTo(to.x, to.y);
  current_ = to;
  controlOf_ = Control::none;
  return true;
}

bool PathParser::addCubic(Point c1, Point c2, Point to) {
  beginDrawing();
  path_.CurveTo(c1.x, c1.y, c2.x, c2.y, to.x, to.y);
  current_ = to;
  control_ = c2;
  controlOf_ = Control::cubic;
  return true;
}

bool PathParser::addQuad(Point c, Point to) {
  beginDrawing();
  path_.CurveToV(c.x, c.y, to.x, to.y);
  current_ = to;
  control_ = c;
  controlOf_ = Control::quad;
  return true;
}

Point PathParser::reflected() const {
  return {2.0f * current_.x - control_.x, 2.0f * current_.y - control_.y};
}

bool PathParser::moveTo() {
  Point to;
  if (!scanPoint(to)) return false;
  path_.MoveTo(to.x, to.y);
  current_ = start_ = to;
  closed_ = false;
  controlOf_ = Control::none;
  return true;
}

bool PathParser::lineTo() {
  Point to;
  return scanPoint(to) && addLine(to);
}

bool PathParser::horizontalTo() {
  float x = 0.0f;
  return scanArgument(x) && addLine({relative_ ? current_.x + x : x, current_.y});
}

bool PathParser::verticalTo() {
  float y = 0.0f;
  return scanArgument(y) && addLine({current_.x, relative_ ? current_.y + y : y});
}

bool PathParser::cubicTo() {
  Point c1;
  Point c2;
  Point to;
  return scanPoint(c1) && scanPoint(c2) && scanPoint(to) && addCubic(c1, c2, to);
}

bool PathParser::smoothCubicTo() {
  const Point c1 = controlOf_ == Control::cubic ? reflected() : current_;
  Point c2;
  Point to;
  return scanPoint(c2) && scanPoint(to) && isFinite(c1) && addCubic(c1, c2, to);
}

bool PathParser::quadTo() {
  Point c;
  Point to;
  return scanPoint(c) && scanPoint(to) && addQuad(c, to);
}

bool PathParser::smoothQuadTo() {
  const Point c = controlOf_ == Control::quad ? reflected() : current_;
  Point to;
  return scanPoint(to) && isFinite(c) && addQuad(c, to);
}

bool PathParser::arcTo() {
  Point radii;
  float angle = 0.0f;
  bool large = false;
  bool sweep = false;
  Point to;
  if (!scanArgument(radii.x) || !scanArgument(radii.y) || !scanArgument(angle) ||
      !scanFlag(large) || !scanFlag(sweep) || !scanPoint(to)) {
    return false;
  }
  beginDrawing();
  ArcToCurve(path_, current_.x, current_.y, radii.x, radii.y, angle,
             large ? LargeArc::yes : LargeArc::no, sweep ? Sweep::yes : Sweep::no, to.x, to.y,
             current_.x, current_.y);
  controlOf_ = Control::none;
  return true;
}

bool PathParser::closePath() {
  if (!closed_) path_.ClosePath();
  closed_ = true;
  current_ = start_;
  controlOf_ = Control::none;
  return true;
}

}  // namespace

bool ParsePathString(std::string_view text, Path& path) {
  return PathParser(text, path).parse();
}

}  // namespace SVGNative::SVGStringParser
