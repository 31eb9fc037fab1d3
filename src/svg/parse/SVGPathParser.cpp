// Path data.
#include <array>
#include <cmath>

#include "svg/SVGParserArcToCurve.h"
#include "svg/SVGStringParser.h"
#include "svg/parse/SVGScanner.h"

namespace SVGNative::SVGStringParser {

namespace {

struct Point {
  float x = 0.0f;
  float y = 0.0f;
};

bool isFinite(Point p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

bool startsNumber(const Cursor& cursor) {
  return !cursor.atEnd() &&
         (isDigit(*cursor.pos) || *cursor.pos == '.' || *cursor.pos == '-' || *cursor.pos == '+');
}

// The end of what a function has scanned; null when that is not valid. Cursors go in and positions
// come out by value, in registers: how fast a number is read is how soon its position is known.
using Position = const char*;

class PathParser {
 public:
  explicit PathParser(Path& path) : path_(path) {}
  bool parse(Cursor cursor);

 private:
  using Segment = Position (PathParser::*)(Cursor);
  static const std::array<Segment, 'z' - 'A' + 1> kSegments;
  static constexpr std::array<Segment, 'z' - 'A' + 1> makeSegments();
  static Segment segmentFor(char command);

  Position parseRepetitions(Segment segment, Cursor cursor);

  // Each parses one set of arguments of its command and adds what it says. Nothing is added when an
  // argument is missing or leaves the range of single precision.
  Position moveTo(Cursor cursor);
  Position lineTo(Cursor cursor);
  Position horizontalTo(Cursor cursor);
  Position verticalTo(Cursor cursor);
  Position cubicTo(Cursor cursor);
  Position smoothCubicTo(Cursor cursor);
  Position quadTo(Cursor cursor);
  Position smoothQuadTo(Cursor cursor);
  Position arcTo(Cursor cursor);
  Position closePath(Cursor cursor);

  template <size_t N>
  Position scanPoints(Cursor cursor, std::array<Point, N>& points) const;
  // The first coordinate that a subpath gives to the path after a close command is its own start.
  void beginDrawing();
  void addLine(Point to);
  void addCubic(Point c1, Point c2, Point to);
  void addQuad(Point c, Point to);
  Point reflected() const;

  // What the control point before the current point belongs to.
  enum class Control { none, cubic, quad };

  Path& path_;
  bool relative_ = false;
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

bool PathParser::parse(Cursor cursor) {
  skipSpace(cursor);
  if (cursor.atEnd()) return true;
  if (!IsMoveCmd(*cursor.pos)) return false;
  while (!cursor.atEnd()) {
    const char command = *cursor.pos++;
    const Segment segment = segmentFor(command);
    if (segment == nullptr) return false;
    relative_ = command >= 'a';
    skipSpace(cursor);
    cursor.pos = IsCloseCmd(command) ? closePath(cursor) : parseRepetitions(segment, cursor);
    if (cursor.pos == nullptr) return false;
  }
  return true;
}

// A command's letter may be left out when it is that of the command before; after a move the
// further points are lines.
Position PathParser::parseRepetitions(Segment segment, Cursor cursor) {
  bool more = true;
  while (more) {
    cursor.pos = (this->*segment)(cursor);
    if (cursor.pos == nullptr) return nullptr;
    if (segment == &PathParser::moveTo) segment = &PathParser::lineTo;
    more = skipSeparator(cursor) == Separator::comma || startsNumber(cursor);
  }
  return cursor.pos;
}

// Between arguments there may be whitespace and one comma.
template <size_t N>
Position scanNumbers(Cursor cursor, std::array<float, N>& numbers) {
  for (size_t i = 0; i < N; ++i) {
    if (i > 0) skipSeparator(cursor);
    if (!scanNumber(cursor, numbers[i])) return nullptr;
  }
  return cursor.pos;
}

Position scanFlag(Cursor cursor, bool& flag) {
  skipSeparator(cursor);
  flag = cursor.at('1');
  return flag || cursor.at('0') ? cursor.pos + 1 : nullptr;
}

template <size_t N>
Position PathParser::scanPoints(Cursor cursor, std::array<Point, N>& points) const {
  for (size_t i = 0; i < N; ++i) {
    float x = 0.0f;
    float y = 0.0f;
    if (i > 0) skipSeparator(cursor);
    if (!scanNumber(cursor, x)) return nullptr;
    skipSeparator(cursor);
    if (!scanNumber(cursor, y)) return nullptr;
    points[i] = relative_ ? Point{current_.x + x, current_.y + y} : Point{x, y};
    if (!isFinite(points[i])) return nullptr;
  }
  return cursor.pos;
}

void PathParser::beginDrawing() {
  if (closed_) path_.MoveTo(start_.x, start_.y);
  closed_ = false;
}

void PathParser::addLine(Point to) {
  beginDrawing();
  path_.LineTo(to.x, to.y);
  current_ = to;
  controlOf_ = Control::none;
}

void PathParser::addCubic(Point c1, Point c2, Point to) {
  beginDrawing();
  path_.CurveTo(c1.x, c1.y, c2.x, c2.y, to.x, to.y);
  current_ = to;
  control_ = c2;
  controlOf_ = Control::cubic;
}

void PathParser::addQuad(Point c, Point to) {
  beginDrawing();
  path_.CurveToV(c.x, c.y, to.x, to.y);
  current_ = to;
  control_ = c;
  controlOf_ = Control::quad;
}

Point PathParser::reflected() const {
  return {2.0f * current_.x - control_.x, 2.0f * current_.y - control_.y};
}

Position PathParser::moveTo(Cursor cursor) {
  std::array<Point, 1> to;
  const Position end = scanPoints(cursor, to);
  if (end == nullptr) return nullptr;
  path_.MoveTo(to[0].x, to[0].y);
  current_ = start_ = to[0];
  closed_ = false;
  controlOf_ = Control::none;
  return end;
}

Position PathParser::lineTo(Cursor cursor) {
  std::array<Point, 1> to;
  const Position end = scanPoints(cursor, to);
  if (end != nullptr) addLine(to[0]);
  return end;
}

Position PathParser::horizontalTo(Cursor cursor) {
  float x = 0.0f;
  if (!scanNumber(cursor, x)) return nullptr;
  if (relative_) x = current_.x + x;
  if (!std::isfinite(x)) return nullptr;
  addLine({x, current_.y});
  return cursor.pos;
}

Position PathParser::verticalTo(Cursor cursor) {
  float y = 0.0f;
  if (!scanNumber(cursor, y)) return nullptr;
  if (relative_) y = current_.y + y;
  if (!std::isfinite(y)) return nullptr;
  addLine({current_.x, y});
  return cursor.pos;
}

Position PathParser::cubicTo(Cursor cursor) {
  std::array<Point, 3> p;
  const Position end = scanPoints(cursor, p);
  if (end != nullptr) addCubic(p[0], p[1], p[2]);
  return end;
}

Position PathParser::smoothCubicTo(Cursor cursor) {
  const Point c1 = controlOf_ == Control::cubic ? reflected() : current_;
  std::array<Point, 2> p;
  const Position end = isFinite(c1) ? scanPoints(cursor, p) : nullptr;
  if (end != nullptr) addCubic(c1, p[0], p[1]);
  return end;
}

Position PathParser::quadTo(Cursor cursor) {
  std::array<Point, 2> p;
  const Position end = scanPoints(cursor, p);
  if (end != nullptr) addQuad(p[0], p[1]);
  return end;
}

Position PathParser::smoothQuadTo(Cursor cursor) {
  const Point c = controlOf_ == Control::quad ? reflected() : current_;
  std::array<Point, 1> to;
  const Position end = isFinite(c) ? scanPoints(cursor, to) : nullptr;
  if (end != nullptr) addQuad(c, to[0]);
  return end;
}

Position PathParser::arcTo(Cursor cursor) {
  std::array<float, 3> shape;  // the radii and the angle
  std::array<bool, 2> flags;   // large arc, sweep
  std::array<Point, 1> to;
  cursor.pos = scanNumbers(cursor, shape);
  for (bool& flag : flags) {
    if (cursor.pos != nullptr) cursor.pos = scanFlag(cursor, flag);
  }
  if (cursor.pos == nullptr) return nullptr;
  skipSeparator(cursor);
  const Position end = scanPoints(cursor, to);
  if (end == nullptr) return nullptr;
  beginDrawing();
  ArcToCurve(path_, current_.x, current_.y, shape[0], shape[1], shape[2],
             flags[0] ? LargeArc::yes : LargeArc::no, flags[1] ? Sweep::yes : Sweep::no, to[0].x,
             to[0].y, current_.x, current_.y);
  controlOf_ = Control::none;
  return end;
}

Position PathParser::closePath(Cursor cursor) {
  if (!closed_) path_.ClosePath();
  closed_ = true;
  current_ = start_;
  controlOf_ = Control::none;
  return cursor.pos;
}

}  // namespace

bool ParsePathString(std::string_view text, Path& path) {
  return PathParser(path).parse(Cursor(text));
}

}  // namespace SVGNative::SVGStringParser
