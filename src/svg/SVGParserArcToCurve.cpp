#include "svg/SVGParserArcToCurve.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "svg/draw/SVGAssertion.h"

namespace SVGNative {

namespace {

constexpr const char* kSource = "SVGParserArcToCurve";

// Pieces of at most a third of a circle keep the error of a cubic below 0.2 % of the radius.
constexpr double kMaxPiece = 2.0943951023931953;
constexpr double kFullCircle = 2.0 * std::numbers::pi;

// A half chord this much shorter than the radius is bent by less than a millionth of its length.
constexpr double kStraight = 1e-6;

struct Vector {
  double x;
  double y;
};

struct Circle {
  Vector center;
  double radius;
};

// Centre and, where it is too small to reach the end point, enlarged radius (SVG 1.1, appendices
// F.6.5 and F.6.6, with both radii equal and no rotation). `half` is half of start - end.
Circle circleThrough(Vector start, Vector half, double radius, LargeArc largeArc, Sweep sweep) {
  const double squaredHalf = half.x * half.x + half.y * half.y;
  const double lambda = squaredHalf / (radius * radius);
  if (lambda > 1.0) radius *= std::sqrt(lambda);
  double coefficient = std::sqrt(std::max(0.0, radius * radius / squaredHalf - 1.0));
  if ((largeArc == LargeArc::yes) == (sweep == Sweep::yes)) coefficient = -coefficient;
  return {{start.x - half.x + coefficient * half.y, start.y - half.y - coefficient * half.x},
          radius};
}

// Angle of a unit vector. The arc sine is taken of the shorter component: near +-1 single precision
// would lose half of its digits.
double angleOf(Vector unit) {
  const auto arcSine = [](double sine) {
    return static_cast<double>(asinf(static_cast<float>(sine)));
  };
  constexpr double kQuarter = std::numbers::pi / 2.0;
  if (std::abs(unit.y) > std::abs(unit.x)) {
    return unit.y > 0.0 ? kQuarter - arcSine(unit.x) : arcSine(unit.x) - kQuarter;
  }
  return unit.x >= 0.0 ? arcSine(unit.y) : std::numbers::pi - arcSine(unit.y);
}

// From the start angle to the end angle in the sweep direction. Angles are only known to single
// precision, so which side of zero a nearly empty or nearly full circle is on tells the flag.
double sweptAngle(Vector from, Vector to, LargeArc largeArc, Sweep sweep) {
  double swept = std::remainder(angleOf(to) - angleOf(from), kFullCircle);
  if (sweep == Sweep::yes && swept < 0.0) swept += kFullCircle;
  if (sweep == Sweep::no && swept > 0.0) swept -= kFullCircle;
  const double turn = sweep == Sweep::yes ? kFullCircle : -kFullCircle;
  if (largeArc == LargeArc::yes && std::abs(swept) < 1.0) swept += turn;
  if (largeArc == LargeArc::no && std::abs(swept) > kFullCircle - 1.0) swept -= turn;
  return swept;
}

Vector rotated(Vector v, double angle) {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {v.x * cosine - v.y * sine, v.x * sine + v.y * cosine};
}

// Circles may be larger than single precision can hold.
float toFloat(double value) {
  constexpr double kMax = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -kMax, kMax));
}

// One piece, from the point of the circle in direction `from` to the one in direction `to`. The
// control points stand on the tangents, 4/3 tan(angle/4) radii away.
void AddArcToCurve(Path& path, const Circle& circle, Vector from, Vector to, double angle) {
  const double distance = 4.0 / 3.0 * std::tan(angle / 4.0);
  const auto point = [&circle](double x, double y) {
    return std::pair(toFloat(circle.center.x + circle.radius * x),
                     toFloat(circle.center.y + circle.radius * y));
  };
  const auto [x1, y1] = point(from.x - distance * from.y, from.y + distance * from.x);
  const auto [x2, y2] = point(to.x + distance * to.y, to.y - distance * to.x);
  const auto [x3, y3] = point(to.x, to.y);
  path.CurveTo(x1, y1, x2, y2, x3, y3);
}

void addArc(Path& path, Vector start, Vector end, double radius, LargeArc largeArc, Sweep sweep) {
  const Vector half{(start.x - end.x) / 2.0, (start.y - end.y) / 2.0};
  const Circle circle = circleThrough(start, half, radius, largeArc, sweep);
  const auto direction = [&circle](Vector p) {
    return Vector{(p.x - circle.center.x) / circle.radius, (p.y - circle.center.y) / circle.radius};
  };
  Vector from = direction(start);
  const Vector to = direction(end);
  double remaining = sweptAngle(from, to, largeArc, sweep);
  const double piece = std::copysign(kMaxPiece, remaining);
  while (std::abs(remaining) > kMaxPiece) {
    const Vector next = rotated(from, piece);
    AddArcToCurve(path, circle, from, next, piece);
    from = next;
    remaining -= piece;
  }
  AddArcToCurve(path, circle, from, to, remaining);
}

}  // namespace

void ArcToCurve(Path& path, float startX, float startY, float radiusX, float radiusY, float angle,
                LargeArc largeArc, Sweep sweep, float endX, float endY, float& currentX,
                float& currentY) {
  SVG_ASSERT(angle == 0, kSource);
  SVG_ASSERT(radiusX == radiusY, kSource);
  currentX = endX;
  currentY = endY;
  if (startX == endX && startY == endY) return;
  const Vector start{startX, startY};
  const Vector end{endX, endY};
  const double radius = std::abs(static_cast<double>(radiusX));
  const double halfChord = std::hypot(start.x - end.x, start.y - end.y) / 2.0;
  if (radius == 0.0 || (largeArc == LargeArc::no && halfChord < radius * kStraight)) {
    path.LineTo(endX, endY);
    return;
  }
  addArc(path, start, end, radius, largeArc, sweep);
}

void RotatePoint(float /*x*/, float /*y*/, float /*angle*/) {
  assertionFailed("rotation is not supported", __func__, kSource);
}

}  // namespace SVGNative
