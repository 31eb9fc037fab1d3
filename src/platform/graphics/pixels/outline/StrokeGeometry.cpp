#include "platform/graphics/pixels/outline/StrokeGeometry.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/graphics/pixels/outline/PathDasher.h"
#include "platform/graphics/pixels/outline/PathFlattener.h"

namespace {

/// Chords of centre lines and of round joins and caps leave their curve by this much at most.
constexpr double kStrokeTolerance = 0.05;

/// The same without antialiasing, where the least overhang paints a pixel: it is lost when the
/// outline is snapped to the grid.
constexpr double kCrispTolerance = 0.25 / static_cast<double>(grid::kOne);

/// A pen that covers every bitmap from everywhere.
constexpr double kWidestPen = 4e9;

/// Transforms that stretch one direction this much more than the other leave no area.
constexpr double kMostUneven = 1e9;

/// How much the linear part of a transform stretches: most and least of all directions.
struct SingularValues {
  double most = 0;
  double least = 0;

  explicit SingularValues(const CGAffineTransform& t) {
    // Half the sum and half the difference of the singular values of a 2 x 2 matrix.
    const double sum = std::hypot(t.a + t.d, t.b - t.c) / 2;
    const double difference = std::hypot(t.a - t.d, t.b + t.c) / 2;
    most = sum + difference;
    least = std::abs(sum - difference);
  }
};

/// Width on the device.
double penWidth(const StrokeStyle& style, double scale) {
  return style.width == 0 ? style.canvasPixel : std::min(style.width * scale, kWidestPen);
}

double capReach(LineCap cap) {
  return cap == LineCap::square ? M_SQRT2 : 1;
}

/// The bounds of `b` after a linear transform.
DeviceBounds transformed(const DeviceBounds& b, const CGAffineTransform& t) {
  DeviceBounds out;
  for (const double x : {b.x0, b.x1}) {
    for (const double y : {b.y0, b.y1}) out.add(CGPointApplyAffineTransform({x, y}, t));
  }
  return out;
}

void transformAll(std::vector<NSPoint>& points, const CGAffineTransform& t) {
  for (NSPoint& p : points) p = CGPointApplyAffineTransform(p, t);
}

/// Takes an outline to another space.
class TransformingSink : public OutlineSink {
 public:
  TransformingSink(const CGAffineTransform& transform, OutlineSink& next)
      : transform_(transform), next_(next) {}
  void addPoints(std::span<const NSPoint> points) override {
    points_.assign(points.begin(), points.end());
    transformAll(points_, transform_);
    next_.addPoints(points_);
  }
  void closeContour() override { next_.closeContour(); }

 private:
  const CGAffineTransform& transform_;
  OutlineSink& next_;
  std::vector<NSPoint> points_;
};

}  // namespace

double strokeReach(const StrokeStyle& style, const CGAffineTransform& toDevice) {
  const double miter = style.join == LineJoin::miter ? std::max(1.0, style.miterLimit) : 1;
  return penWidth(style, SingularValues(toDevice).most) / 2 * std::max(miter, capReach(style.cap));
}

bool StrokeGeometry::findSpace(const CGAffineTransform& toDevice, Space& space) {
  const SingularValues stretch(toDevice);
  if (!std::isfinite(stretch.most) || !(stretch.least * kMostUneven > stretch.most)) return false;
  const double s = 1 / stretch.most;
  const CGAffineTransform linear{
      toDevice.a * s, toDevice.b * s, toDevice.c * s, toDevice.d * s, 0, 0};
  space.scale = stretch.most;
  space.isDevice = stretch.least > stretch.most * (1 - 1e-9);
  if (space.isDevice) {
    space.axis = {linear.a, linear.b};
  } else {
    space.axis = {1, 0};
    space.toDevice = linear;
    space.fromDevice = CGAffineTransformInvert(linear);
  }
  return true;
}

void StrokeGeometry::setPen(const StrokeStyle& style, Antialias antialias) {
  pen_ = Pen();
  pen_.halfWidth = penWidth(style, space_.scale) / 2;
  pen_.cap = style.cap;
  pen_.join = style.join;
  pen_.miterLimit = style.miterLimit;
  const bool crisp = antialias == Antialias::off && deviceWidth() > 1;
  pen_.tolerance = crisp ? kCrispTolerance : kStrokeTolerance;
  pen_.axis = space_.axis;
}

bool StrokeGeometry::prepare(const PathData& path, const StrokeStyle& style,
                             const CGAffineTransform& toDevice, const DeviceBounds& visible,
                             Dashes dashes, Antialias antialias) {
  if (!(style.width >= 0) || !findSpace(toDevice, space_)) return false;
  setPen(style, antialias);
  if (!(pen_.halfWidth > 0)) return false;
  const bool dashed = dashes == Dashes::apply && !style.dash.empty();
  DeviceBounds reached = visible;
  reached.grow(strokeReach(style, toDevice));
  // Miters continue the directions of chords, so they are right where chords are as on the canvas.
  const double finest = style.join == LineJoin::miter ? std::min(1.0, style.canvasPixel) : 1;
  // Dashing needs the length of what is out of sight.
  if (!flattenPath(path, toDevice, {pen_.tolerance * finest, dashed ? nullptr : &reached}, flat_)) {
    return false;
  }
  if (!space_.isDevice) transformAll(flat_.points, space_.fromDevice);
  lines_ = &flat_;
  if (dashed) {
    dash(style, space_.isDevice ? reached : transformed(reached, space_.fromDevice));
  }
  if (style.width == 0 && !space_.isDevice) {
    // A line of one pixel is as wide in all directions on the device.
    transformAll(lines_ == &flat_ ? flat_.points : dashes_.points, space_.toDevice);
    space_.isDevice = true;
  }
  return true;
}

void StrokeGeometry::dash(const StrokeStyle& style, const DeviceBounds& visible) {
  const auto pattern = dashPattern(style.dash, style.dashPhase, space_.scale);
  if (!pattern || dashPath(flat_, *pattern, visible, dashes_) == DashResult::tooMany) return;
  lines_ = &dashes_;
  pen_.zeroLengthMarks = ZeroLengthMarks::skip;
}

/// Length of the longest miter in half widths, 1 when there is none.
double StrokeGeometry::longestMiter() const {
  double least = 2;  // 1 + cosine of the sharpest turn that gets a miter
  if (pen_.join != LineJoin::miter || !(pen_.miterLimit > 1)) return 1;
  const double bevelled = 2 / (pen_.miterLimit * pen_.miterLimit);
  for (const FlatPath::Subpath& s : lines_->subpaths) {
    const size_t end = s.closed ? 0 : 1;  // the ends of open subpaths have caps
    for (size_t i = end; i + end < s.count; ++i) {
      if (lines_->smooth[s.first + i] != 0) continue;
      const NSPoint p = lines_->points[s.first + i];
      const NSPoint a = lines_->points[s.first + (i > 0 ? i - 1 : s.count - 1)];
      const NSPoint b = lines_->points[s.first + (i + 1 < s.count ? i + 1 : 0)];
      const NSPoint in{p.x - a.x, p.y - a.y};
      const NSPoint out{b.x - p.x, b.y - p.y};
      const double lengths =
          std::sqrt((in.x * in.x + in.y * in.y) * (out.x * out.x + out.y * out.y));
      const double turn = 1 + (in.x * out.x + in.y * out.y) / lengths;
      if (turn >= bevelled) least = std::min(least, turn);
      // Points that coincide are merged before joining; what the join is then is not known here.
      if (!(lengths > 0)) least = bevelled;
    }
  }
  return std::sqrt(2 / least);
}

DeviceBounds StrokeGeometry::deviceBounds() const {
  DeviceBounds bounds;
  for (const NSPoint& p : lines_->points) bounds.add(onDevice(p));
  bounds.grow(pen_.halfWidth * std::max(capReach(pen_.cap), longestMiter()));
  // Curves are outlined by miters that long.
  const bool isCurved =
      std::find(lines_->smooth.begin(), lines_->smooth.end(), 1) != lines_->smooth.end();
  if (isCurved) bounds.grow(pen_.tolerance);
  return bounds;
}

void StrokeGeometry::addOutline(OutlineSink& sink) {
  if (space_.isDevice) {
    stroker_.stroke(*lines_, pen_, sink);
  } else {
    TransformingSink toDevice(space_.toDevice, sink);
    stroker_.stroke(*lines_, pen_, toDevice);
  }
}

void StrokeGeometry::addLines(LineSink& sink) const {
  for (const FlatPath::Subpath& s : lines_->subpaths) {
    const NSPoint* p = lines_->points.data() + s.first;
    const bool isMark = std::all_of(p, p + s.count, [&](NSPoint q) { return q == p[0]; });
    if (isMark) {
      if (pen_.cap != LineCap::butt && pen_.zeroLengthMarks == ZeroLengthMarks::draw) {
        sink.addLine(onDevice(p[0]), onDevice(p[0]));
      }
      continue;
    }
    for (size_t i = 0; i + 1 < s.count; ++i) sink.addLine(onDevice(p[i]), onDevice(p[i + 1]));
    if (s.closed) sink.addLine(onDevice(p[s.count - 1]), onDevice(p[0]));
  }
}
