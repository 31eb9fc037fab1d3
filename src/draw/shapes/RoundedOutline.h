#pragma once

#include <array>

#include "platform/foundation/Geometry.h"

class NSBezierPath;

/// The outline of a box with rounded corners as a closed line that is measured counter-clockwise
/// from the left end of the lower edge. The box's lower left corner is the origin. Positions wrap
/// around: any number is one.
class RoundedOutline {
 public:
  /// The radius is at most half of either side.
  RoundedOutline(NSSize box, CGFloat radius);

  CGFloat length() const { return length_; }
  NSPoint pointAt(CGFloat position) const;

  struct Nearest {
    CGFloat position;
    /// Negative inside.
    CGFloat distance;
  };
  Nearest nearest(NSPoint p) const;

  /// The nearest position that is not on the arc of a corner, where the edges leave one.
  CGFloat clearOfCorners(CGFloat position) const;

  struct Stretch {
    CGFloat from;
    CGFloat to;
  };
  /// What a point outside sees of the outline, around the position nearest to it. Edges seen at
  /// less than `tolerance` and the outermost parts of arcs do not count.
  Stretch visibleFrom(NSPoint p, CGFloat nearestPosition, CGFloat tolerance) const;

  /// The stretch without what it has of corner arcs at its ends.
  Stretch clearOfCorners(const Stretch& stretch) const;

  /// Appends the stretch from a position to a later one, moved to `origin` and joined by a line to
  /// the path's current point.
  void append(NSBezierPath& path, const Stretch& stretch, NSPoint origin) const;

 private:
  /// An edge, or the arc of the corner behind it.
  struct Piece {
    CGFloat start;
    CGFloat length;
    /// Edges: start and outward normal in degrees. Arcs: centre and first angle.
    NSPoint anchor;
    CGFloat degrees;
    bool isArc;
  };
  size_t pieceAt(CGFloat wrapped) const;
  NSPoint pointOn(const Piece& piece, CGFloat along) const;
  CGFloat wrapped(CGFloat position) const;
  Stretch visiblePart(const Piece& piece, NSPoint p, CGFloat tolerance) const;

  CGFloat radius_;
  /// The corners' centres lie at radius_ and at these.
  CGFloat right_;
  CGFloat top_;
  CGFloat length_ = 0;
  std::array<Piece, 8> pieces_;
};
