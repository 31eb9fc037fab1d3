#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/outline/FlatPath.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// What a pen leaves where a subpath has no length.
enum class ZeroLengthMarks : uint8_t {
  draw,  ///< a disc with round caps, a square with square caps, nothing with butt caps
  skip,
};

/// A round pen and how it draws, in the space of the path that it strokes.
struct Pen {
  double halfWidth = 0.5;  ///< greater than zero, at most 1e10
  LineCap cap = LineCap::butt;
  LineJoin join = LineJoin::miter;
  /// Miters longer than this many widths become bevels; all of them below 1.
  double miterLimit = 10;
  /// Largest distance between round parts and their chords.
  double tolerance = 0.05;
  /// Points closer than this, relative to coordinates above 1, are one.
  double coincidence = 1e-6;
  /// Unit vector along which the squares of zero-length subpaths lie.
  NSPoint axis{1, 0};
  ZeroLengthMarks zeroLengthMarks = ZeroLengthMarks::draw;
};

/// Takes the contours of a stroke outline, in pieces.
class OutlineSink {
 public:
  virtual ~OutlineSink() = default;
  /// Continues the current contour, or starts one.
  virtual void addPoints(std::span<const NSPoint> points) = 0;
  virtual void closeContour() = 0;
};

/// Outlines of stroked paths, to be filled by the non-zero rule.
///
/// The outline is the sum of a quadrilateral per segment and a wedge per join on its outer side,
/// all turning the same way, so that no part of the stroke cancels another: the filled outline
/// is the union, also where the pen is wider than the curve that it follows. Smooth points get
/// round joins whatever the pen's. Turns so slight that mitering them stays within the tolerance
/// are mitered. A line that only runs back along itself is outlined once: accumulated areas of
/// two outlines in one place would add up in the edge pixels.
class PathStroker {
 public:
  /// Strokes every subpath of `path`. Buffers are kept for the next call.
  void stroke(const FlatPath& path, const Pen& pen, OutlineSink& sink);

 private:
  struct Vertex {
    NSPoint at;
    NSPoint toNext;     ///< unit vector; unset for the last vertex of open subpaths
    double length = 0;  ///< of the segment to the next vertex
    bool smooth = false;
  };

  void prepare(const FlatPath& path);
  void load(const FlatPath& path, const FlatPath::Subpath& subpath);
  void strokeLoaded(bool closed);
  bool isSamePoint(NSPoint a, NSPoint b) const;
  void strokeOpen(LineCap startCap, LineCap endCap);
  void strokeClosed();
  void addJoin(const Vertex& v, NSPoint in, NSPoint out, double shorter);
  void addOuterJoin(const Vertex& v, NSPoint from, NSPoint to, double cosine);
  void addInnerJoin(NSPoint at, NSPoint from, NSPoint to, double halfTangent, double cosine,
                    double shorter);
  void addArc(NSPoint centre, NSPoint from, NSPoint to);
  void addCap(LineCap cap, NSPoint at, NSPoint outward);
  void addMark(NSPoint at);
  void emit(NSPoint p);
  void emit(NSPoint centre, NSPoint offset) { emit({centre.x + offset.x, centre.y + offset.y}); }
  void closeContour();
  void flush();
  NSPoint offset(NSPoint direction) const;

  Pen pen_;
  OutlineSink* sink_ = nullptr;
  std::vector<Vertex> vertices_;
  std::vector<NSPoint> out_;  ///< points not yet handed over
  size_t outCount_ = 0;
  // Of the pen: one step of an arc, and what 1 + cosine of a turn must be at least.
  NSPoint arcStep_;  ///< cosine and sine
  int arcSteps_ = 1;
  double straightEnough_ = 2;
  double miterable_ = 2;
};
