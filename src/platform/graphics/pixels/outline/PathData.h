#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "platform/foundation/Geometry.h"

/// One path element. Numbers 0 to 4 are those of archived paths.
enum class PathVerb : uint8_t {
  move = 0,   ///< 1 point
  line = 1,   ///< 1 point
  cubic = 2,  ///< 3 points: control 1, control 2, end
  close = 3,  ///< no point of its own
  quad = 4,   ///< 2 points: control, end
};

constexpr int pointCount(PathVerb verb) {
  switch (verb) {
    case PathVerb::move:
    case PathVerb::line:
      return 1;
    case PathVerb::cubic:
      return 3;
    case PathVerb::quad:
      return 2;
    case PathVerb::close:
      break;
  }
  return 0;
}

/// Geometry of a path: verbs, and their points back to back. What NSBezierPath and CGPath share
/// and what the pixel pipeline reads.
struct PathData {
  std::vector<PathVerb> verbs;
  std::vector<NSPoint> points;

  bool empty() const { return verbs.empty(); }
  void clear() {
    verbs.clear();
    points.clear();
  }
  void move(NSPoint p) { add(PathVerb::move, {p}); }
  void line(NSPoint p) { add(PathVerb::line, {p}); }
  void quad(NSPoint c, NSPoint p) { add(PathVerb::quad, {c, p}); }
  void cubic(NSPoint c1, NSPoint c2, NSPoint p) { add(PathVerb::cubic, {c1, c2, p}); }
  void close() { verbs.push_back(PathVerb::close); }

 private:
  void add(PathVerb verb, std::initializer_list<NSPoint> list) {
    verbs.push_back(verb);
    // One by one: g++ 12 sees overruns in an inlined range insertion where there are none.
    for (const NSPoint& p : list) points.push_back(p);
  }
};

enum class WindingRule : uint8_t { nonZero = 0, evenOdd = 1 };
enum class LineCap : uint8_t { butt = 0, round = 1, square = 2 };
enum class LineJoin : uint8_t { miter = 0, round = 1, bevel = 2 };
