#include "svg/draw/CGSVGTransform.h"

namespace SVGNative {

void CGSVGTransform::Set(float a, float b, float c, float d, float tx, float ty) {
  matrix_ = {a, b, c, d, tx, ty};
}

void CGSVGTransform::Rotate(float angle) {
  before(CGAffineTransformMakeRotation(angle));
}

void CGSVGTransform::Translate(float tx, float ty) {
  before(CGAffineTransformMakeTranslation(tx, ty));
}

void CGSVGTransform::Scale(float sx, float sy) {
  before(CGAffineTransformMakeScale(sx, sy));
}

void CGSVGTransform::Concat(float a, float b, float c, float d, float tx, float ty) {
  before({a, b, c, d, tx, ty});
}

void CGSVGTransform::Concat(const Transform& other) {
  before(matrixOf(&other));
}

CGAffineTransform matrixOf(const Transform* transform) {
  return transform == nullptr ? CGAffineTransform{}
                              : static_cast<const CGSVGTransform*>(transform)->matrix();
}

}  // namespace SVGNative
