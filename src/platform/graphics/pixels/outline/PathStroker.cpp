#include "platform/graphics/pixels/outline/PathStroker.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/Limits.h"

namespace {

constexpr size_t kOutlineBlock = 1024;

NSPoint negated(NSPoint p) {
  return {-p.x, -p.y};
}

}  // namespace

void PathStroker::stroke(const FlatPath& path, const Pen& pen, OutlineSink& sink) {
  pen_ = pen;
  sink_ = &sink;
  prepare(path);
  for (const FlatPath::Subpath& subpath : path.subpaths) {
    load(path, subpath);
    strokeLoaded(subpath.closed);
  }
}

void PathStroker::strokeLoaded(bool closed) {
  // What a join leaves at a turn by 180 degrees.
  const LineCap turnCap = pen_.join == LineJoin::round ? LineCap::round : LineCap::butt;
  const size_t count = vertices_.size();
  if (count == 1) {
    if (pen_.zeroLengthMarks == ZeroLengthMarks::draw) addMark(vertices_[0].at);
  } else if (closed && count == 2) {
    strokeOpen(turnCap, turnCap);
  } else if (closed) {
    strokeClosed();
  } else if (count == 3 && isSamePoint(vertices_[0].at, vertices_[2].at)) {
    vertices_.pop_back();
    strokeOpen(pen_.cap, turnCap);
  } else {
    strokeOpen(pen_.cap, pen_.cap);
  }
}

void PathStroker::prepare(const FlatPath& path) {
  out_.resize(kOutlineBlock);
  outCount_ = 0;
  const double relative = std::min(1.0, pen_.tolerance / pen_.halfWidth);
  // A chord over the angle s leaves the circle by r (1 - cos(s / 2)).
  const double step = 2 * std::acos(1 - relative);
  const size_t share = limits::kMaxFlattenedPoints / std::max<size_t>(1, path.points.size());
  const double most =
      std::clamp(static_cast<double>(share), 4.0, static_cast<double>(limits::kMaxCurveSteps));
  arcSteps_ = static_cast<int>(std::clamp(std::ceil(M_PI / step), 2.0, most));
  arcStep_ = {std::cos(M_PI / arcSteps_), std::sin(M_PI / arcSteps_)};
  // A miter reaches r / cos(turn / 2) = r sqrt(2 / (1 + cos turn)).
  straightEnough_ = 2 / ((1 + relative) * (1 + relative));
  miterable_ = pen_.miterLimit >= 1 ? 2 / (pen_.miterLimit * pen_.miterLimit) : HUGE_VAL;
}

bool PathStroker::isSamePoint(NSPoint a, NSPoint b) const {
  const double size = std::max({1.0, std::abs(b.x), std::abs(b.y)});
  const double distance = std::max(std::abs(a.x - b.x), std::abs(a.y - b.y));
  return distance <= pen_.coincidence * size;
}

/// Fills vertices_: points that coincide with their predecessor are merged into it, as corners if
/// either is one.
void PathStroker::load(const FlatPath& path, const FlatPath::Subpath& subpath) {
  vertices_.clear();
  vertices_.reserve(subpath.count);
  for (size_t i = subpath.first; i < subpath.first + subpath.count; ++i) {
    const NSPoint p = path.points[i];
    const bool smooth = path.smooth[i] != 0;
    if (!vertices_.empty() && isSamePoint(vertices_.back().at, p)) {
      vertices_.back().smooth = vertices_.back().smooth && smooth;
    } else {
      vertices_.push_back({p, {}, 0, smooth});
    }
  }
  while (subpath.closed && vertices_.size() > 1 &&
         isSamePoint(vertices_.back().at, vertices_.front().at)) {
    vertices_.front().smooth = vertices_.front().smooth && vertices_.back().smooth;
    vertices_.pop_back();
  }
  for (size_t i = 0; i < vertices_.size(); ++i) {
    Vertex& v = vertices_[i];
    const NSPoint next = vertices_[i + 1 < vertices_.size() ? i + 1 : 0].at;
    const double x = next.x - v.at.x;
    const double y = next.y - v.at.y;
    v.length = std::sqrt(x * x + y * y);
    v.toNext = {x / v.length, y / v.length};
  }
}

void PathStroker::strokeOpen(LineCap startCap, LineCap endCap) {
  const size_t last = vertices_.size() - 1;
  const auto& v = vertices_;
  for (size_t i = 1; i < last; ++i) {
    addJoin(v[i], v[i - 1].toNext, v[i].toNext, std::min(v[i - 1].length, v[i].length));
  }
  addCap(endCap, v[last].at, v[last - 1].toNext);
  for (size_t i = last - 1; i > 0; --i) {
    addJoin(v[i], negated(v[i].toNext), negated(v[i - 1].toNext),
            std::min(v[i - 1].length, v[i].length));
  }
  addCap(startCap, v[0].at, negated(v[0].toNext));
  closeContour();
}

void PathStroker::strokeClosed() {
  const size_t count = vertices_.size();
  const auto& v = vertices_;
  const Vertex* before = &v[count - 1];
  for (size_t i = 0; i < count; ++i) {
    addJoin(v[i], before->toNext, v[i].toNext, std::min(before->length, v[i].length));
    before = &v[i];
  }
  closeContour();
  for (size_t i = count; i-- > 0;) {
    before = &v[i > 0 ? i - 1 : count - 1];
    addJoin(v[i], negated(v[i].toNext), negated(before->toNext),
            std::min(before->length, v[i].length));
  }
  closeContour();
}

/// The vector from the path to the side of the pen that is being outlined.
inline NSPoint PathStroker::offset(NSPoint direction) const {
  return {direction.y * pen_.halfWidth, -direction.x * pen_.halfWidth};
}

/// The outline on one side of a vertex, from a segment along `in` to one along `out`.
inline void PathStroker::addJoin(const Vertex& v, NSPoint in, NSPoint out, double shorter) {
  const double sine = in.x * out.y - in.y * out.x;
  const double cosine = in.x * out.x + in.y * out.y;
  const NSPoint from = offset(in);
  const NSPoint to = offset(out);
  if (sine >= 0) {
    addOuterJoin(v, from, to, cosine);
  } else {
    addInnerJoin(v.at, from, to, -sine / (1 + cosine), cosine, shorter);
  }
}

inline void PathStroker::addOuterJoin(const Vertex& v, NSPoint from, NSPoint to, double cosine) {
  const LineJoin join = v.smooth ? LineJoin::round : pen_.join;
  const bool miter = join == LineJoin::miter && 1 + cosine >= miterable_ && cosine > -1;
  if (miter || 1 + cosine >= straightEnough_) {
    const double scale = 1 / (1 + cosine);
    emit(v.at, {(from.x + to.x) * scale, (from.y + to.y) * scale});
    return;
  }
  emit(v.at, from);
  if (join == LineJoin::round) addArc(v.at, from, to);
  emit(v.at, to);
}

/// On the inside the offset lines meet, unless a segment is too short for that: then the outline
/// goes through the vertex, which keeps both quadrilaterals whole.
inline void PathStroker::addInnerJoin(NSPoint at, NSPoint from, NSPoint to, double halfTangent,
                                      double cosine, double shorter) {
  if (pen_.halfWidth * halfTangent <= shorter / 2) {
    const double scale = 1 / (1 + cosine);
    emit(at, {(from.x + to.x) * scale, (from.y + to.y) * scale});
    return;
  }
  emit(at, from);
  emit(at);
  emit(at, to);
}

/// The points between `from` and `to` on the circle, turning by up to half a turn.
void PathStroker::addArc(NSPoint centre, NSPoint from, NSPoint to) {
  const double lastStep = pen_.halfWidth * pen_.halfWidth * arcStep_.x;
  NSPoint p = from;
  for (int i = 0; i < arcSteps_ && p.x * to.x + p.y * to.y < lastStep; ++i) {
    p = {p.x * arcStep_.x - p.y * arcStep_.y, p.x * arcStep_.y + p.y * arcStep_.x};
    emit(centre, p);
  }
}

void PathStroker::addCap(LineCap cap, NSPoint at, NSPoint outward) {
  const NSPoint from = offset(outward);
  const NSPoint to = negated(from);
  const NSPoint reach = cap == LineCap::square
                            ? NSPoint{outward.x * pen_.halfWidth, outward.y * pen_.halfWidth}
                            : NSPoint{};
  const NSPoint end{at.x + reach.x, at.y + reach.y};
  emit(end, from);
  if (cap == LineCap::round) {
    NSPoint p = from;
    for (int i = 1; i < arcSteps_; ++i) {
      p = {p.x * arcStep_.x - p.y * arcStep_.y, p.x * arcStep_.y + p.y * arcStep_.x};
      emit(at, p);
    }
  }
  emit(end, to);
}

void PathStroker::addMark(NSPoint at) {
  if (pen_.cap == LineCap::butt) return;
  addCap(pen_.cap, at, pen_.axis);
  addCap(pen_.cap, at, negated(pen_.axis));
  closeContour();
}

inline void PathStroker::emit(NSPoint p) {
  out_[outCount_++] = p;
  if (outCount_ == kOutlineBlock) flush();
}

void PathStroker::flush() {
  if (outCount_ > 0) sink_->addPoints(std::span(out_.data(), outCount_));
  outCount_ = 0;
}

void PathStroker::closeContour() {
  flush();
  sink_->closeContour();
}
