#pragma once

#include <array>
#include <cmath>
#include <initializer_list>
#include <sstream>
#include <string>

#include "svg/draw/SVGRenderer.h"

/// Writes down the calls it gets, as path data with absolute coordinates; shapes as "R", "RR", "E".
class RecordingPath : public SVGNative::Path {
 public:
  void Reserve(size_t) override {}
  void Rect(float x, float y, float w, float h) override {
    add("R", {x, y, w, h});
    addPoint(x, y);
    addPoint(x + w, y + h);
  }
  void RoundedRect(float x, float y, float w, float h, float rx, float ry) override {
    add("RR", {x, y, w, h, rx, ry});
  }
  void Ellipse(float cx, float cy, float rx, float ry) override {
    add("E", {cx, cy, rx, ry});
    addPoint(cx - rx, cy - ry);
    addPoint(cx + rx, cy + ry);
  }
  void MoveTo(float x, float y) override {
    add("M", {x, y});
    addPoint(x, y);
  }
  void LineTo(float x, float y) override {
    add("L", {x, y});
    addPoint(x, y);
  }
  void CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) override {
    add("C", {x1, y1, x2, y2, x3, y3});
  }
  void CurveToV(float x1, float y1, float x2, float y2) override { add("Q", {x1, y1, x2, y2}); }
  void ClosePath() override { add("Z", {}); }
  void AddPath(const SVGNative::Path& other, const SVGNative::Transform* transform) override;
  /// The box of all coordinates.
  SVGNative::Rect Bounds() const override { return bounds_; }

  std::string text() const { return text_.str(); }

 private:
  void add(const char* verb, std::initializer_list<float> numbers) {
    if (text_.tellp() > 0) text_ << ' ';
    text_ << verb;
    for (const float number : numbers) text_ << ' ' << number;
  }
  void addPoint(float x, float y) { bounds_ = bounds_.Union({{x, x}, {y, y}}); }

  std::ostringstream text_;
  SVGNative::Rect bounds_;
};

/// A matrix in double precision, multiplied out the long way.
class RecordingTransform : public SVGNative::Transform {
 public:
  using Matrix = std::array<double, 6>;

  void Set(float a, float b, float c, float d, float tx, float ty) override {
    matrix_ = {a, b, c, d, tx, ty};
  }
  void Rotate(float angle) override {
    const double cosine = std::cos(static_cast<double>(angle));
    const double sine = std::sin(static_cast<double>(angle));
    before({cosine, sine, -sine, cosine, 0, 0});
  }
  void Translate(float tx, float ty) override { before({1, 0, 0, 1, tx, ty}); }
  void Scale(float sx, float sy) override { before({sx, 0, 0, sy, 0, 0}); }
  void Concat(float a, float b, float c, float d, float tx, float ty) override {
    before({a, b, c, d, tx, ty});
  }
  void Concat(const SVGNative::Transform& other) override {
    before(static_cast<const RecordingTransform&>(other).matrix_);
  }

  const Matrix& matrix() const { return matrix_; }

 private:
  void before(const Matrix& m) {
    const Matrix& o = matrix_;
    matrix_ = {o[0] * m[0] + o[2] * m[1],        o[1] * m[0] + o[3] * m[1],
               o[0] * m[2] + o[2] * m[3],        o[1] * m[2] + o[3] * m[3],
               o[0] * m[4] + o[2] * m[5] + o[4], o[1] * m[4] + o[3] * m[5] + o[5]};
  }

  Matrix matrix_{1, 0, 0, 1, 0, 0};
};

inline void RecordingPath::AddPath(const SVGNative::Path& other,
                                   const SVGNative::Transform* transform) {
  if (text_.tellp() > 0) text_ << ' ';
  text_ << '(' << static_cast<const RecordingPath&>(other).text() << ')';
  if (transform == nullptr) return;
  for (const double value : static_cast<const RecordingTransform*>(transform)->matrix()) {
    text_ << ' ' << value;
  }
}
