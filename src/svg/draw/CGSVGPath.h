#pragma once

#include <optional>

#include "platform/graphics/path/CGPath.h"
#include "svg/draw/SVGRenderer.h"

namespace SVGNative {

/// A path of the drawing layer.
class CGSVGPath : public Path {
 public:
  const CGPath& path() const { return path_; }
  /// The rectangle that the path is, when it is one and nothing else.
  std::optional<NSRect> asRect() const;

  void Reserve(size_t points) override;
  void Rect(float x, float y, float width, float height) override;
  void RoundedRect(float x, float y, float width, float height, float rx, float ry) override;
  void Ellipse(float cx, float cy, float rx, float ry) override;
  void MoveTo(float x, float y) override;
  void LineTo(float x, float y) override;
  void CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) override;
  void CurveToV(float x1, float y1, float x2, float y2) override;
  void ClosePath() override;
  void AddPath(const Path& other, const Transform* transform) override;
  SVGNative::Rect Bounds() const override;

 private:
  CGPath path_;
  std::optional<NSRect> firstRect_;  // when the path began with one
};

}  // namespace SVGNative
