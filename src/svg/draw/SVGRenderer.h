#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/graphics/pixels/outline/PathData.h"
#include "svg/draw/SVGColor.h"
#include "svg/draw/SVGRect.h"

/// What a document needs to be drawn: a renderer, which also makes the paths, matrices and bitmaps
/// that the document keeps. Coordinates are user units of the element, x to the right, y down.
namespace SVGNative {

/// A picture inside a document.
class ImageData {
 public:
  virtual ~ImageData() = default;
  /// Size in pixels; 0 when there is no picture.
  virtual float Width() const = 0;
  virtual float Height() const = 0;
};

enum class ImageEncoding : uint8_t { png = 0, jpeg = 1 };

/// An affine matrix, identity as made: x' = a x + c y + tx, y' = b x + d y + ty. Every operation
/// but Set acts before what is there already, as the functions of a "transform" attribute do.
class Transform {
 public:
  virtual ~Transform() = default;
  virtual void Set(float a, float b, float c, float d, float tx, float ty) = 0;
  /// `angle` in radians, from the x axis to the y axis.
  virtual void Rotate(float angle) = 0;
  virtual void Translate(float tx, float ty) = 0;
  virtual void Scale(float sx, float sy) = 0;
  virtual void Concat(float a, float b, float c, float d, float tx, float ty) = 0;
  virtual void Concat(const Transform& other) = 0;
};

class Path {
 public:
  virtual ~Path() = default;
  /// Announces about how many points will be added; a hint.
  virtual void Reserve(size_t points) = 0;
  virtual void Rect(float x, float y, float width, float height) = 0;
  /// Radii of at most half the sides.
  virtual void RoundedRect(float x, float y, float width, float height, float rx, float ry) = 0;
  virtual void Ellipse(float cx, float cy, float rx, float ry) = 0;
  virtual void MoveTo(float x, float y) = 0;
  virtual void LineTo(float x, float y) = 0;
  /// A cubic curve: two control points and the end point.
  virtual void CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) = 0;
  /// A quadratic curve: the control point and the end point.
  virtual void CurveToV(float x1, float y1, float x2, float y2) = 0;
  virtual void ClosePath() = 0;
  /// Adds the elements of `other`, a path of the same renderer, moved by `transform`, a matrix of
  /// the same renderer (null for none).
  virtual void AddPath(const Path& other, const Transform* transform) = 0;
  /// The tight box of the geometry, pen not included; empty for an empty path.
  virtual SVGNative::Rect Bounds() const = 0;
};

enum class GradientType : uint8_t { linear, radial };
enum class SpreadMethod : uint8_t { pad, reflect, repeat };
/// What the gradient's coordinates count: units of the element's user space, or fractions of the
/// box of the element's geometry.
enum class GradientUnits : uint8_t { objectBoundingBox, userSpaceOnUse };

struct ColorStopImpl {
  float offset = 0.0f;  ///< 0..1, never below that of the stop before
  Color color = kOpaqueBlack;
  float opacity = 1.0f;
  /// What "currentcolor" is at the stop itself; null for black.
  std::shared_ptr<const Color> currentColor;
};

struct GradientImpl {
  GradientType type = GradientType::linear;
  SpreadMethod spread = SpreadMethod::pad;
  GradientUnits units = GradientUnits::objectBoundingBox;
  float x1 = 0.0f, y1 = 0.0f, x2 = 1.0f, y2 = 0.0f;
  float cx = 0.5f, cy = 0.5f, fx = 0.5f, fy = 0.5f, r = 0.5f;
  std::shared_ptr<const Transform> transform;  ///< null for none
  /// Shared by every gradient that takes its stops from another one; null or empty paints nothing.
  std::shared_ptr<const std::vector<ColorStopImpl>> stops;
};

/// Gradients are shared rather than copied into each paint: thousands of shapes may use one.
struct GradientPaint {
  std::shared_ptr<const GradientImpl> gradient;  ///< never null
  /// Painted where the gradient cannot be; null for nothing.
  std::shared_ptr<const Color> fallback;
};
using Paint = std::variant<ColorArray, GradientPaint, ColorVariable, ColorKeys>;

struct FillStyleImpl {
  bool hasFill = true;
  WindingRule fillRule = WindingRule::nonZero;
  float fillOpacity = 1.0f;
  Paint paint = kOpaqueBlack;
};

struct StrokeStyleImpl {
  bool hasStroke = false;
  float strokeOpacity = 1.0f;
  float lineWidth = 1.0f;
  LineCap lineCap = LineCap::butt;
  LineJoin lineJoin = LineJoin::miter;
  float miterLimit = 4.0f;
  /// For the record: strokes are always drawn solid. Null for none.
  std::shared_ptr<const std::vector<float>> dashArray;
  float dashOffset = 0.0f;
  Paint paint = kOpaqueBlack;
};

struct ClippingPath {
  std::shared_ptr<const Path> path;
  std::shared_ptr<const Transform> transform;  ///< null for none
  WindingRule clipRule = WindingRule::nonZero;
};

/// What applies to an element as a whole.
struct GraphicStyleImpl {
  float opacity = 1.0f;
  /// False when it applies to one part only, which cares for its own parts.
  bool hasSeveralParts = true;
  std::shared_ptr<const Transform> transform;        ///< null for none
  std::shared_ptr<const ClippingPath> clippingPath;  ///< null for none; inside `transform`
};

/// Draws. Paints given to it are resolved: colours, or gradients whose coordinates are user units
/// and whose stops are colours.
class SVGRenderer {
 public:
  virtual ~SVGRenderer() = default;

  /// `base64` is the text after the comma of a "data:" URL. Never null: undecodable data gives an
  /// image without a picture.
  virtual std::shared_ptr<ImageData> CreateImageData(std::string_view base64,
                                                     ImageEncoding encoding) = 0;
  virtual std::shared_ptr<Path> CreatePath() = 0;
  virtual std::shared_ptr<Transform> CreateTransform() = 0;

  /// Opens a group: everything until the matching Restore is drawn with the style.
  virtual void Save(const GraphicStyleImpl& style) = 0;
  virtual void Restore() = 0;
  virtual void DrawPath(const Path& path, const GraphicStyleImpl& graphicStyle,
                        const FillStyleImpl& fillStyle, const StrokeStyleImpl& strokeStyle) = 0;
  /// Draws the whole picture into `fillArea`, as far as it lies inside `clipArea`.
  virtual void DrawImage(const ImageData& image, const GraphicStyleImpl& graphicStyle,
                         const Rect& clipArea, const Rect& fillArea) = 0;
  /// The box of what `draw` paints through this renderer. Throws std::runtime_error where measuring
  /// is not supported.
  virtual Rect GetBounds(const std::function<void()>& draw) = 0;
};

}  // namespace SVGNative
