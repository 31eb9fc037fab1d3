#pragma once

#include "platform/foundation/Geometry.h"
#include "svg/draw/SVGRenderer.h"

namespace SVGNative {

/// A matrix of the drawing layer.
class CGSVGTransform : public Transform {
 public:
  const CGAffineTransform& matrix() const { return matrix_; }

  void Set(float a, float b, float c, float d, float tx, float ty) override;
  void Rotate(float angle) override;
  void Translate(float tx, float ty) override;
  void Scale(float sx, float sy) override;
  void Concat(float a, float b, float c, float d, float tx, float ty) override;
  void Concat(const Transform& other) override;

 private:
  void before(const CGAffineTransform& matrix) {
    matrix_ = CGAffineTransformConcat(matrix, matrix_);
  }

  CGAffineTransform matrix_;
};

/// The matrix of a transform that a CGSVGRenderer made; the identity for none.
CGAffineTransform matrixOf(const Transform* transform);

}  // namespace SVGNative
