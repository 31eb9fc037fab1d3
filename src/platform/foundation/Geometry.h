#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Points, sizes and rectangles are double-precision canvas units, y upwards.
using CGFloat = double;

struct NSPoint {
  CGFloat x = 0;
  CGFloat y = 0;
  bool operator==(const NSPoint&) const = default;
};

struct NSSize {
  CGFloat width = 0;
  CGFloat height = 0;
  bool operator==(const NSSize&) const = default;
};

struct NSRect {
  NSPoint origin;
  NSSize size;
  bool operator==(const NSRect&) const = default;
};

struct NSRange {
  uint64_t location = 0;
  uint64_t length = 0;
  bool operator==(const NSRange&) const = default;
};

using CGPoint = NSPoint;
using CGRect = NSRect;

/// x' = a x + c y + tx, y' = b x + d y + ty.
struct CGAffineTransform {
  CGFloat a = 1;
  CGFloat b = 0;
  CGFloat c = 0;
  CGFloat d = 1;
  CGFloat tx = 0;
  CGFloat ty = 0;
  bool operator==(const CGAffineTransform&) const = default;
};

constexpr NSPoint NSMakePoint(CGFloat x, CGFloat y) {
  return {x, y};
}
constexpr NSSize NSMakeSize(CGFloat width, CGFloat height) {
  return {width, height};
}
constexpr NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}

inline constexpr NSPoint NSZeroPoint{};
inline constexpr NSSize NSZeroSize{};
inline constexpr NSRect NSZeroRect{};

constexpr CGFloat NSMinX(const NSRect& r) {
  return r.origin.x;
}
constexpr CGFloat NSMinY(const NSRect& r) {
  return r.origin.y;
}
constexpr CGFloat NSMaxX(const NSRect& r) {
  return r.origin.x + r.size.width;
}
constexpr CGFloat NSMaxY(const NSRect& r) {
  return r.origin.y + r.size.height;
}
constexpr CGFloat NSMidX(const NSRect& r) {
  return r.origin.x + r.size.width * 0.5;
}
constexpr CGFloat NSMidY(const NSRect& r) {
  return r.origin.y + r.size.height * 0.5;
}
constexpr CGFloat NSWidth(const NSRect& r) {
  return r.size.width;
}
constexpr CGFloat NSHeight(const NSRect& r) {
  return r.size.height;
}

/// True unless both sides are greater than zero (so also for NaN sides).
constexpr bool NSIsEmptyRect(const NSRect& r) {
  return !(r.size.width > 0 && r.size.height > 0);
}

/// The rectangle with each side moved inwards (outwards for negative amounts).
constexpr NSRect NSInsetRect(const NSRect& r, CGFloat dx, CGFloat dy) {
  return NSMakeRect(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx,
                    r.size.height - 2 * dy);
}

constexpr NSRect NSOffsetRect(const NSRect& r, CGFloat dx, CGFloat dy) {
  return NSMakeRect(r.origin.x + dx, r.origin.y + dy, r.size.width, r.size.height);
}

/// Smallest rectangle holding both; an empty rectangle does not count, two empty ones give zero.
NSRect NSUnionRect(const NSRect& a, const NSRect& b);

/// The common part; the zero rectangle when there is none.
NSRect NSIntersectionRect(const NSRect& a, const NSRect& b);

/// Rounded outward to whole units; the zero rectangle for an empty one.
NSRect NSIntegralRect(const NSRect& r);

/// Half-open: the lower edges belong to the rectangle, the upper edges do not.
bool NSPointInRect(const NSPoint& p, const NSRect& r);

/// Textual forms as archives hold them: "{x, y}", "{{x, y}, {w, h}}", numbers as C "%.17g".
std::string NSStringFromPoint(const NSPoint& p);
std::string NSStringFromSize(const NSSize& s);
std::string NSStringFromRect(const NSRect& r);

/// Lenient: numbers are picked in order, missing ones are 0, unparsable text gives zeros.
NSPoint NSPointFromString(std::string_view text);
NSSize NSSizeFromString(std::string_view text);
NSRect NSRectFromString(std::string_view text);

CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty);
CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
/// Counter-clockwise for positive angles in a y-up space; radians.
CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle);
/// Applies `first`, then `second`.
CGAffineTransform CGAffineTransformConcat(const CGAffineTransform& first,
                                          const CGAffineTransform& second);
/// The inverse; a singular transform is answered unchanged.
CGAffineTransform CGAffineTransformInvert(const CGAffineTransform& t);
constexpr CGFloat CGAffineTransformDeterminant(const CGAffineTransform& t) {
  return t.a * t.d - t.b * t.c;
}
constexpr CGPoint CGPointApplyAffineTransform(const CGPoint& p, const CGAffineTransform& t) {
  return {t.a * p.x + t.c * p.y + t.tx, t.b * p.x + t.d * p.y + t.ty};
}
/// Bounding box of the transformed corners.
CGRect CGRectApplyAffineTransform(const CGRect& r, const CGAffineTransform& t);
