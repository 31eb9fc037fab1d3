#include "draw/shapes/RoundedOutline.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/graphics/path/NSBezierPath.h"

namespace {

constexpr CGFloat kRadian = std::numbers::pi / 180;

NSPoint direction(CGFloat degrees) {
  return {std::cos(degrees * kRadian), std::sin(degrees * kRadian)};
}

/// Lengths below this are rounding noise.
constexpr CGFloat kShortest = 1e-9;

/// Where the straight part of an edge ends; it begins at the radius.
CGFloat farEnd(CGFloat side, CGFloat radius) {
  const CGFloat end = side - radius;
  return end - radius < kShortest ? radius : end;
}

}  // namespace

RoundedOutline::RoundedOutline(NSSize box, CGFloat radius)
    : radius_(std::max(0.0, std::min({radius, box.width / 2, box.height / 2}))),
      right_(farEnd(box.width, radius_)),
      top_(farEnd(box.height, radius_)) {
  const CGFloat r = radius_;
  const NSPoint centers[] = {{right_, r}, {right_, top_}, {r, top_}, {r, r}};
  const NSPoint edgeStarts[] = {{r, 0}, {right_ + r, r}, {right_, top_ + r}, {0, top_}};
  for (size_t side = 0; side < 4; ++side) {
    const CGFloat edge = side % 2 == 0 ? right_ - r : top_ - r;
    const CGFloat normal = static_cast<CGFloat>(side) * 90 - 90;
    pieces_[2 * side] = {length_, edge, edgeStarts[side], normal, false};
    length_ += edge;
    const CGFloat arc = r * std::numbers::pi / 2;
    pieces_[2 * side + 1] = {length_, arc, centers[side], normal, true};
    length_ += arc;
  }
}

CGFloat RoundedOutline::wrapped(CGFloat position) const {
  const CGFloat rest = std::fmod(position, length_);
  return rest < 0 ? rest + length_ : rest;
}

size_t RoundedOutline::pieceAt(CGFloat position) const {
  size_t piece = 0;
  while (piece + 1 < pieces_.size() && position >= pieces_[piece + 1].start) ++piece;
  return piece;
}

NSPoint RoundedOutline::pointOn(const Piece& piece, CGFloat along) const {
  if (piece.isArc) {
    const CGFloat turned = piece.length > 0 ? along / piece.length * 90 : 0;
    const NSPoint d = direction(piece.degrees + turned);
    return {piece.anchor.x + radius_ * d.x, piece.anchor.y + radius_ * d.y};
  }
  const NSPoint d = direction(piece.degrees + 90);
  return {piece.anchor.x + along * d.x, piece.anchor.y + along * d.y};
}

NSPoint RoundedOutline::pointAt(CGFloat position) const {
  const CGFloat at = wrapped(position);
  const Piece& piece = pieces_[pieceAt(at)];
  return pointOn(piece, std::min(at - piece.start, piece.length));
}

RoundedOutline::Nearest RoundedOutline::nearest(NSPoint p) const {
  // The rounded box is everything within the radius of a core rectangle.
  const NSPoint core{std::clamp(p.x, radius_, right_), std::clamp(p.y, radius_, top_)};
  const NSPoint off{p.x - core.x, p.y - core.y};
  const CGFloat outside = std::hypot(off.x, off.y);
  if (outside > 0 && off.x != 0 && off.y != 0) {
    // Corners are numbered from the lower right one on.
    const size_t corner = off.y < 0 ? (off.x > 0 ? 0 : 3) : (off.x > 0 ? 1 : 2);
    const Piece& arc = pieces_[2 * corner + 1];
    const CGFloat turned = std::remainder(std::atan2(off.y, off.x) / kRadian - arc.degrees, 360);
    return {arc.start + std::clamp(turned / 90, 0.0, 1.0) * arc.length, outside - radius_};
  }
  const CGFloat beyond[] = {radius_ - p.y, p.x - right_, p.y - top_, radius_ - p.x};
  const auto side = static_cast<size_t>(std::max_element(beyond, beyond + 4) - beyond);
  const Piece& edge = pieces_[2 * side];
  const CGFloat alongSides[] = {core.x - radius_, core.y - radius_, right_ - core.x, top_ - core.y};
  return {edge.start + std::min(alongSides[side], edge.length), beyond[side] - radius_};
}

CGFloat RoundedOutline::clearOfCorners(CGFloat position) const {
  const CGFloat at = wrapped(position);
  const size_t index = pieceAt(at);
  const Piece& arc = pieces_[index];
  if (!arc.isArc) return position;
  const bool back = pieces_[index - 1].length > 0;
  const bool ahead = pieces_[(index + 1) % pieces_.size()].length > 0;
  if (!back && !ahead) return position;
  const CGFloat along = at - arc.start;
  const bool goesBack = back && (!ahead || along < arc.length / 2);
  return position + (goesBack ? -along : arc.length - along);
}

RoundedOutline::Stretch RoundedOutline::visiblePart(const Piece& piece, NSPoint p,
                                                    CGFloat tolerance) const {
  constexpr CGFloat kOfTangent = 0.98;
  constexpr Stretch kNothing{1, 0};
  const NSPoint off{p.x - piece.anchor.x, p.y - piece.anchor.y};
  if (!piece.isArc) {
    const NSPoint normal = direction(piece.degrees);
    return off.x * normal.x + off.y * normal.y > tolerance ? Stretch{0, piece.length} : kNothing;
  }
  if (piece.length == 0) return {0, 0};
  const CGFloat distance = std::hypot(off.x, off.y);
  if (distance <= radius_) return kNothing;
  const CGFloat half = kOfTangent * std::acos(radius_ / distance) / kRadian;
  const CGFloat middle =
      std::remainder(std::atan2(off.y, off.x) / kRadian - piece.degrees - 45, 360) + 45;
  const CGFloat from = std::max(0.0, middle - half), to = std::min(90.0, middle + half);
  return {from / 90 * piece.length, to / 90 * piece.length};
}

RoundedOutline::Stretch RoundedOutline::visibleFrom(NSPoint p, CGFloat nearestPosition,
                                                    CGFloat tolerance) const {
  const size_t n = pieces_.size();
  const CGFloat at = wrapped(nearestPosition);
  const size_t first = pieceAt(at);
  const CGFloat along = at - pieces_[first].start;
  Stretch seen{nearestPosition, nearestPosition};
  CGFloat base = nearestPosition - along;
  for (size_t i = 0; i < n; ++i) {
    const Piece& piece = pieces_[(first + i) % n];
    const Stretch part = visiblePart(piece, p, tolerance);
    if (part.from > part.to || part.from > (i == 0 ? along : 0)) break;
    seen.to = std::max(seen.to, base + part.to);
    if (part.to < piece.length) break;
    base += piece.length;
  }
  base = nearestPosition - along;
  for (size_t i = along > 0 ? 0 : 1; i < n; ++i) {
    const Piece& piece = pieces_[(first + n - i) % n];
    if (i > 0) base -= piece.length;
    const Stretch part = visiblePart(piece, p, tolerance);
    if (part.from > part.to || part.to < (i == 0 ? along : piece.length)) break;
    seen.from = std::min(seen.from, base + part.from);
    if (part.from > 0) break;
  }
  return seen;
}

RoundedOutline::Stretch RoundedOutline::clearOfCorners(const Stretch& stretch) const {
  const CGFloat from = wrapped(stretch.from), to = wrapped(stretch.to);
  const Piece& first = pieces_[pieceAt(from)];
  const Piece& last = pieces_[pieceAt(to)];
  return {stretch.from + (first.isArc ? first.length - (from - first.start) : 0),
          stretch.to - (last.isArc ? to - last.start : 0)};
}

void RoundedOutline::append(NSBezierPath& path, const Stretch& stretch, NSPoint origin) const {
  const auto lineTo = [&](NSPoint p) { path.lineToPoint({origin.x + p.x, origin.y + p.y}); };
  CGFloat at = wrapped(stretch.from);
  CGFloat left = stretch.to - stretch.from;
  size_t index = pieceAt(at);
  if (!pieces_[index].isArc) lineTo(pointOn(pieces_[index], at - pieces_[index].start));
  while (left > kShortest) {
    const Piece& piece = pieces_[index];
    const CGFloat along = std::clamp(at - piece.start, 0.0, piece.length);
    const CGFloat step = std::min(piece.length - along, left);
    left -= step;
    if (step > kShortest && piece.isArc) {
      const CGFloat degrees = piece.degrees + along / piece.length * 90;
      const CGFloat turned = step / piece.length * 90;
      path.appendBezierPathWithArcWithCenter({origin.x + piece.anchor.x, origin.y + piece.anchor.y},
                                             radius_, degrees, degrees + turned);
    } else if (!piece.isArc && (left <= kShortest || pieces_[index + 1].length == 0)) {
      // A line to the arc that follows comes with the arc.
      lineTo(pointOn(piece, along + step));
    }
    index = (index + 1) % pieces_.size();
    at = pieces_[index].start;
  }
}
