#pragma once

#include <cmath>
#include <initializer_list>

#include "platform/graphics/pixels/outline/PathData.h"

/// Paths that several tests draw.
namespace shapes {

inline PathData polygon(std::initializer_list<NSPoint> points) {
  PathData path;
  for (const NSPoint& p : points) path.empty() ? path.move(p) : path.line(p);
  path.close();
  return path;
}

inline PathData polyline(std::initializer_list<NSPoint> points) {
  PathData path;
  for (const NSPoint& p : points) path.empty() ? path.move(p) : path.line(p);
  return path;
}

inline PathData rectangle(double x, double y, double w, double h) {
  return polygon({{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}});
}

enum class Turn { left, right };

/// Four cubics; the usual constant 4/3 (sqrt(2) - 1) keeps them within 0.03 % of the circle.
inline void addCircle(PathData& path, NSPoint c, double r, Turn turn = Turn::left) {
  const double k = 0.5522847498 * r;
  const double s = turn == Turn::left ? 1 : -1;
  const auto at = [&](double x, double y) { return NSPoint{c.x + x, c.y + s * y}; };
  path.move(at(r, 0));
  path.cubic(at(r, k), at(k, r), at(0, r));
  path.cubic(at(-k, r), at(-r, k), at(-r, 0));
  path.cubic(at(-r, -k), at(-k, -r), at(0, -r));
  path.cubic(at(k, -r), at(r, -k), at(r, 0));
  path.close();
}

inline PathData circle(NSPoint c, double r, Turn turn = Turn::left) {
  PathData path;
  addCircle(path, c, r, turn);
  return path;
}

}  // namespace shapes
