#include "platform/graphics/path/CGPath.h"

#include "platform/graphics/path/PathShapes.h"
#include "platform/graphics/pixels/outline/PathBounds.h"

void CGPath::reserve(size_t elements, size_t points) {
  data_.verbs.reserve(elements);
  data_.points.reserve(points);
}

void CGPath::addLineToPoint(CGPoint p) {
  if (data_.empty()) return data_.move(p);
  data_.line(p);
}

void CGPath::addQuadCurveToPoint(CGPoint control, CGPoint p) {
  if (data_.empty()) return data_.move(p);
  data_.quad(control, p);
}

void CGPath::addCurveToPoint(CGPoint control1, CGPoint control2, CGPoint p) {
  if (data_.empty()) return data_.move(p);
  data_.verbs.push_back(PathVerb::cubic);
  const size_t first = data_.points.size();
  data_.points.resize(first + 3);
  data_.points[first] = control1;
  data_.points[first + 1] = control2;
  data_.points[first + 2] = p;
}

void CGPath::closeSubpath() {
  if (!data_.empty() && data_.verbs.back() != PathVerb::close) data_.close();
}

void CGPath::addRect(const CGRect& r) {
  appendRect(data_, r);
}

void CGPath::addRoundedRect(const CGRect& r, CGFloat cornerWidth, CGFloat cornerHeight) {
  appendRoundedRect(data_, r, cornerWidth, cornerHeight);
}

void CGPath::addEllipseInRect(const CGRect& r) {
  appendEllipse(data_, r, 0);
}

void CGPath::addPath(const CGPath& other, const CGAffineTransform& transform) {
  const PathData source = other.data_;  // a path may be added to itself
  data_.verbs.insert(data_.verbs.end(), source.verbs.begin(), source.verbs.end());
  data_.points.reserve(data_.points.size() + source.points.size());
  for (const CGPoint& p : source.points) {
    data_.points.push_back(CGPointApplyAffineTransform(p, transform));
  }
}

CGRect CGPath::boundingBox() const {
  return controlPointBounds(data_).value_or(NSZeroRect);
}

CGRect CGPath::pathBoundingBox() const {
  return tightPathBounds(data_).value_or(NSZeroRect);
}
