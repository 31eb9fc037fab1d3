#include "draw/core/PathGeometry.h"

#include <charconv>
#include <cmath>
#include <locale>
#include <numbers>
#include <sstream>
#include <string>

namespace {

/// An angle in (-360, 360] brought into [0, 360).
double normalized(double degrees) {
  if (degrees < 0) degrees += 360;
  if (degrees >= 360) degrees -= 360;
  return degrees;
}

/// The value of a number that is too large or too small for its kind; from_chars does not tell
/// which.
double outOfRangeValue(std::string_view text) {
  std::istringstream in{std::string(text)};
  in.imbue(std::locale::classic());
  double value = 0;
  in >> value;
  return std::fabs(value) < 1 ? 0 : HUGE_VAL;
}

/// The number a text begins with after blanks, 0 when it begins with none.
double doubleValue(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) return outOfRangeValue(text);
  return error == std::errc() && std::isfinite(value) ? value : 0;
}

}  // namespace

std::string GetDashArrayFromString(std::string_view text, double* dash, int* count) {
  if (count != nullptr) *count = 0;
  if (text.size() < 3) return {};
  if (text.back() == ':') text.remove_suffix(1);
  std::string normalizedText;
  int parts = 0;
  while (parts < kMaxDashCount) {
    const size_t colon = text.find(':');
    const std::string_view part = text.substr(0, colon);
    if (dash != nullptr) dash[parts] = doubleValue(part);
    if (parts > 0) normalizedText += ':';
    normalizedText += part;
    ++parts;
    if (colon == std::string_view::npos) break;
    text.remove_prefix(colon + 1);
  }
  if (count != nullptr) *count = parts;
  return normalizedText;
}

std::optional<CGPath> CreateCGPathFrom(const NSBezierPath& path) {
  if (path.elementCount() == 0) return std::nullopt;
  return CGPath(path.data());
}

void AppendCGPathToBezierPath(NSBezierPath& path, const CGPath& source) {
  const PathData& data = source.data();
  const NSPoint* p = data.points.data();
  for (const PathVerb verb : data.verbs) {
    switch (verb) {
      case PathVerb::move:
        path.moveToPoint(p[0]);
        break;
      case PathVerb::line:
        path.lineToPoint(p[0]);
        break;
      case PathVerb::quad:
        path.curveToPoint(p[1], p[0], p[0]);
        break;
      case PathVerb::cubic:
        path.curveToPoint(p[2], p[0], p[1]);
        break;
      case PathVerb::close:
        path.closePath();
        break;
    }
    p += pointCount(verb);
  }
}

double DistanceBetweenTwoPoints(NSPoint a, NSPoint b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

double DegreeOfLine(NSPoint p, NSPoint q) {
  constexpr double kTiny = 1e-6;
  const double dx = q.x - p.x;
  const double dy = q.y - p.y;
  if (std::fabs(dx) < kTiny) {
    if (std::fabs(dy) < kTiny) return 0;
    return dy > 0 ? 90 : 270;
  }
  return normalized(std::atan2(dy, dx) * 180 / std::numbers::pi);
}

double DegreeOfAngle(NSPoint vertex, NSPoint a, NSPoint b) {
  return normalized(DegreeOfLine(vertex, b) - DegreeOfLine(vertex, a));
}

NSPoint GetShiftPoint(NSPoint fixed, NSPoint moving) {
  const double dx = moving.x - fixed.x;
  const double dy = moving.y - fixed.y;
  if (std::fabs(dx) <= 1 && std::fabs(dy) <= 1) return moving;
  const double d = DegreeOfLine(fixed, moving);
  if (d < 25 || d > 335 || (d > 155 && d < 205)) return {moving.x, fixed.y};
  if ((d > 65 && d < 115) || (d > 245 && d < 295)) return {fixed.x, moving.y};
  const bool rising = (d >= 25 && d <= 65) || (d >= 205 && d <= 245);
  const double sign = rising ? 1 : -1;
  if (std::fabs(dx) >= std::fabs(dy)) return {moving.x, fixed.y + sign * dx};
  return {fixed.x + sign * dy, moving.y};
}

NSPoint PointRotateAt(NSPoint p, NSPoint center, double degrees) {
  NSAffineTransform t;
  t.translateXBy(center.x, center.y);
  t.rotateByDegrees(degrees);
  t.translateXBy(-center.x, -center.y);
  return t.transformPoint(p);
}

NSPoint PointBeforeRotateAt(NSPoint p, NSPoint center, double degrees) {
  return PointRotateAt(p, center, -degrees);
}

namespace {

/// Bends an angle in [0, 360) towards the ellipse's long axis, so that points spread by angle look
/// evenly spread on a flat ellipse.
double bentTowardsLongAxis(double degrees, double a, double b) {
  const double ratio = std::fmin(a, b) / std::fmax(a, b);
  if (ratio > 0.99 || std::fmod(degrees, 90) == 0) return degrees;
  double target = degrees;
  if (a <= b) {
    if (degrees > 45 && degrees < 135) target = 90;
    if (degrees > 225 && degrees < 315) target = 270;
  } else {
    if (degrees > 135 && degrees < 225) target = 180;
    if (degrees > 315) target = 360;
    if (degrees < 45) target = 0;
  }
  return degrees + (target - degrees) * (1 - ratio);
}

}  // namespace

NSPoint GetPointInEllipse(const NSRect& rect, double degrees) {
  constexpr double kTolerance = 0.01;
  const double a = NSWidth(rect) / 2;
  const double b = NSHeight(rect) / 2;
  const NSPoint center{NSMidX(rect), NSMidY(rect)};
  if (!(a >= 1 && b >= 1)) return center;
  double angle = std::fmod(degrees, 360);
  if (angle < 0) angle += 360;
  angle = bentTowardsLongAxis(angle, a, b);
  if (angle < kTolerance || angle > 360 - kTolerance) return {center.x + a, center.y};
  if (std::fabs(angle - 90) < kTolerance) return {center.x, center.y + b};
  if (std::fabs(angle - 180) < kTolerance) return {center.x - a, center.y};
  if (std::fabs(angle - 270) < kTolerance) return {center.x, center.y - b};
  const double slope = std::tan(angle * std::numbers::pi / 180);
  const double reach = std::sqrt(1 / (slope * slope / (b * b) + 1 / (a * a)));
  const double x = angle > 90 && angle < 270 ? -reach : reach;
  return {center.x + x, center.y + slope * x};
}
