#include "platform/foundation/Geometry.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

std::string number(CGFloat value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  // The C library writes the decimal point of the locale; archives always hold a full stop.
  for (char& c : text) {
    if (c == ',') c = '.';
  }
  return text;
}

std::string pair(CGFloat a, CGFloat b) {
  return "{" + number(a) + ", " + number(b) + "}";
}

bool startsNumber(std::string_view text) {
  size_t i = (text[0] == '+' || text[0] == '-') ? 1 : 0;
  if (i < text.size() && text[i] == '.') ++i;
  return i < text.size() && text[i] >= '0' && text[i] <= '9';
}

/// What the C library makes of a number that double cannot hold.
CGFloat outOfRange(std::string_view number) {
  const bool isTiny = number.find("e-") != number.npos || number.find("E-") != number.npos;
  const CGFloat size = isTiny ? 0 : HUGE_VAL;
  return number.front() == '-' ? -size : size;
}

/// Picks up to four numbers in order of appearance; the rest stay 0.
std::array<CGFloat, 4> pickNumbers(std::string_view text) {
  std::array<CGFloat, 4> values{};
  size_t count = 0;
  while (!text.empty() && count < values.size()) {
    if (!startsNumber(text)) {
      text.remove_prefix(1);
      continue;
    }
    const char* first = text.data() + (text[0] == '+' ? 1 : 0);
    const auto [end, error] = std::from_chars(first, text.data() + text.size(), values[count]);
    // The value is left alone then.
    if (error == std::errc::result_out_of_range) values[count] = outOfRange({first, end});
    text.remove_prefix(std::max<size_t>(1, static_cast<size_t>(end - text.data())));
    ++count;
  }
  return values;
}

}  // namespace

NSRect NSUnionRect(const NSRect& a, const NSRect& b) {
  if (NSIsEmptyRect(a)) return NSIsEmptyRect(b) ? NSZeroRect : b;
  if (NSIsEmptyRect(b)) return a;
  const CGFloat x = std::min(NSMinX(a), NSMinX(b));
  const CGFloat y = std::min(NSMinY(a), NSMinY(b));
  return NSMakeRect(x, y, std::max(NSMaxX(a), NSMaxX(b)) - x, std::max(NSMaxY(a), NSMaxY(b)) - y);
}

NSRect NSIntersectionRect(const NSRect& a, const NSRect& b) {
  const CGFloat x = std::max(NSMinX(a), NSMinX(b));
  const CGFloat y = std::max(NSMinY(a), NSMinY(b));
  const NSRect r =
      NSMakeRect(x, y, std::min(NSMaxX(a), NSMaxX(b)) - x, std::min(NSMaxY(a), NSMaxY(b)) - y);
  return NSIsEmptyRect(r) ? NSZeroRect : r;
}

NSRect NSIntegralRect(const NSRect& r) {
  if (NSIsEmptyRect(r)) return NSZeroRect;
  const CGFloat x = std::floor(NSMinX(r));
  const CGFloat y = std::floor(NSMinY(r));
  return NSMakeRect(x, y, std::ceil(NSMaxX(r)) - x, std::ceil(NSMaxY(r)) - y);
}

bool NSPointInRect(const NSPoint& p, const NSRect& r) {
  return p.x >= NSMinX(r) && p.x < NSMaxX(r) && p.y >= NSMinY(r) && p.y < NSMaxY(r);
}

std::string NSStringFromPoint(const NSPoint& p) {
  return pair(p.x, p.y);
}
std::string NSStringFromSize(const NSSize& s) {
  return pair(s.width, s.height);
}
std::string NSStringFromRect(const NSRect& r) {
  return "{" + NSStringFromPoint(r.origin) + ", " + NSStringFromSize(r.size) + "}";
}

NSPoint NSPointFromString(std::string_view text) {
  const auto v = pickNumbers(text);
  return {v[0], v[1]};
}

NSSize NSSizeFromString(std::string_view text) {
  const auto v = pickNumbers(text);
  return {v[0], v[1]};
}

NSRect NSRectFromString(std::string_view text) {
  const auto v = pickNumbers(text);
  return NSMakeRect(v[0], v[1], v[2], v[3]);
}

CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty) {
  return {1, 0, 0, 1, tx, ty};
}

CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) {
  return {sx, 0, 0, sy, 0, 0};
}

CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle) {
  const CGFloat c = std::cos(angle);
  const CGFloat s = std::sin(angle);
  return {c, s, -s, c, 0, 0};
}

CGAffineTransform CGAffineTransformConcat(const CGAffineTransform& first,
                                          const CGAffineTransform& second) {
  return {first.a * second.a + first.b * second.c,
          first.a * second.b + first.b * second.d,
          first.c * second.a + first.d * second.c,
          first.c * second.b + first.d * second.d,
          first.tx * second.a + first.ty * second.c + second.tx,
          first.tx * second.b + first.ty * second.d + second.ty};
}

CGAffineTransform CGAffineTransformInvert(const CGAffineTransform& t) {
  const CGFloat det = CGAffineTransformDeterminant(t);
  if (det == 0 || !std::isfinite(det)) return t;
  return {t.d / det,
          -t.b / det,
          -t.c / det,
          t.a / det,
          (t.c * t.ty - t.d * t.tx) / det,
          (t.b * t.tx - t.a * t.ty) / det};
}

CGRect CGRectApplyAffineTransform(const CGRect& r, const CGAffineTransform& t) {
  const CGPoint corners[4] = {CGPointApplyAffineTransform({NSMinX(r), NSMinY(r)}, t),
                              CGPointApplyAffineTransform({NSMaxX(r), NSMinY(r)}, t),
                              CGPointApplyAffineTransform({NSMaxX(r), NSMaxY(r)}, t),
                              CGPointApplyAffineTransform({NSMinX(r), NSMaxY(r)}, t)};
  CGPoint low = corners[0];
  CGPoint high = corners[0];
  for (const CGPoint& p : corners) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  return {low, {high.x - low.x, high.y - low.y}};
}
