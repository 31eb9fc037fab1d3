#include "svg/CGSVGRenderer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "platform/foundation/Limits.h"
#include "platform/graphics/gradient/CGGradient.h"
#include "svg/draw/CGSVGImageData.h"
#include "svg/draw/CGSVGTransform.h"
#include "svg/draw/SVGAssertion.h"

namespace SVGNative {

namespace {

constexpr const char* kSource = "CGSVGRenderer";

// The space that a stroke may cover beyond its path, with some room so that a clip of that size
// never touches an edge.
CGFloat strokeReach(const StrokeStyleImpl& style) {
  const CGFloat longest = std::max<CGFloat>(
      style.lineJoin == LineJoin::miter ? style.miterLimit : 1.0, std::numbers::sqrt2);
  return style.lineWidth / 2.0 * longest + 2.0;
}

CGGradient gradientOf(const GradientImpl& gradient, float opacity) {
  std::vector<CGFloat> components;
  std::vector<CGFloat> locations;
  for (const ColorStopImpl& stop : *gradient.stops) {
    const ColorArray& color = std::get<ColorArray>(stop.color);
    components.insert(components.end(),
                      {color[0], color[1], color[2], CGFloat{color[3]} * stop.opacity * opacity});
    locations.push_back(stop.offset);
  }
  return CGGradientCreateWithColorComponents(components, locations);
}

LinearAxis linearAxis(const GradientImpl& gradient) {
  return {{gradient.x1, gradient.y1}, {gradient.x2, gradient.y2}};
}

// From the focus to the circle. A focus outside the circle is moved onto it (SVG 1.1, section
// 13.2.3), in fact a little inside: circles that all touch in one point leave half of the plane
// unpainted.
RadialAxis radialAxis(const GradientImpl& gradient) {
  const NSPoint center{gradient.cx, gradient.cy};
  const CGFloat radius = gradient.r;
  const CGFloat dx = gradient.fx - center.x;
  const CGFloat dy = gradient.fy - center.y;
  const CGFloat farthest = radius * 0.99;
  const CGFloat scale = std::min(1.0, farthest / std::hypot(dx, dy));
  const NSPoint focus =
      dx == 0.0 && dy == 0.0 ? center : NSMakePoint(center.x + dx * scale, center.y + dy * scale);
  return {focus, 0.0, center, radius};
}

PathData transformedPath(const PathData& path, const CGAffineTransform& matrix) {
  PathData moved = path;
  for (NSPoint& point : moved.points) point = CGPointApplyAffineTransform(point, matrix);
  return moved;
}

NSRect toNSRect(const Rect& rect) {
  return NSMakeRect(rect.x.min, rect.y.min, rect.Width(), rect.Height());
}

}  // namespace

void CGSVGRenderer::SetGraphicsContext(std::shared_ptr<CGContext> context) {
  context_ = std::move(context);
}

std::shared_ptr<ImageData> CGSVGRenderer::CreateImageData(std::string_view base64,
                                                          ImageEncoding encoding) {
  return std::make_shared<CGSVGImageData>(base64, encoding);
}

std::shared_ptr<Path> CGSVGRenderer::CreatePath() {
  constexpr size_t kPathsInBlock = 64;
  if (paths_ == nullptr || paths_->size() == kPathsInBlock) {
    paths_ = std::make_shared<std::vector<CGSVGPath>>();
    paths_->reserve(kPathsInBlock);
  }
  return {paths_, &paths_->emplace_back()};
}

std::shared_ptr<Transform> CGSVGRenderer::CreateTransform() {
  return std::make_shared<CGSVGTransform>();
}

void CGSVGRenderer::Save(const GraphicStyleImpl& style) {
  save(style, Layering::whenNeeded);
}

// What paints each pixel once at most looks the same drawn directly and as a layer: then the alpha
// alone is enough. So does an opaque group, unless the edges of the clip cut pixels: there, what
// lies below in the group would shine through.
void CGSVGRenderer::save(const GraphicStyleImpl& style, Layering layering) {
  SVG_ASSERT(context_ != nullptr, kSource);
  context_->saveGState();
  if (style.transform != nullptr) context_->concatenate(matrixOf(style.transform.get()));
  if (style.clippingPath != nullptr) clipTo(*style.clippingPath);
  const bool cutsPixels = style.hasSeveralParts && !context_->state().clip.isBox();
  const bool layer = layering == Layering::whenNeeded && (style.opacity < 1.0f || cutsPixels) &&
                     openLayers_ < limits::kMaxSvgLayers;
  context_->setAlpha(layer || layering == Layering::never ? style.opacity : 1.0);
  if (layer) {
    context_->beginTransparencyLayer();
    ++openLayers_;
  }
  layers_.push_back(layer);
}

void CGSVGRenderer::Restore() {
  if (layers_.back()) {
    context_->endTransparencyLayer();
    --openLayers_;
  }
  layers_.pop_back();
  context_->restoreGState();
}

void CGSVGRenderer::clipTo(const ClippingPath& clip) {
  const auto& path = static_cast<const CGSVGPath&>(*clip.path);
  if (clip.transform != nullptr) {
    context_->clip(transformedPath(path.path().data(), matrixOf(clip.transform.get())),
                   clip.clipRule);
  } else if (const std::optional<NSRect> rect = path.asRect()) {
    context_->clip(*rect);
  } else {
    context_->clip(path.path().data(), clip.clipRule);
  }
}

void CGSVGRenderer::DrawPath(const Path& path, const GraphicStyleImpl& graphicStyle,
                             const FillStyleImpl& fillStyle, const StrokeStyleImpl& strokeStyle) {
  if (context_ == nullptr) return;
  const auto& drawn = static_cast<const CGSVGPath&>(path);
  const bool isPair = fillStyle.hasFill && strokeStyle.hasStroke;
  const bool isLayer =
      isPair && (graphicStyle.opacity < 1.0f || graphicStyle.clippingPath != nullptr ||
                 !context_->state().clip.isBox());
  if (isLayer) {
    // The layer should be no larger than the shape.
    context_->saveGState();
    GraphicStyleImpl outer = graphicStyle;
    const CGFloat reach = strokeReach(strokeStyle);
    if (graphicStyle.transform != nullptr) {
      context_->concatenate(matrixOf(graphicStyle.transform.get()));
      outer.transform = nullptr;
    }
    context_->clip(NSInsetRect(drawn.path().boundingBox(), -reach, -reach));
    save(outer, Layering::whenNeeded);
  } else {
    save(graphicStyle, Layering::never);
  }
  if (fillStyle.hasFill) fill(drawn, fillStyle);
  if (strokeStyle.hasStroke) stroke(drawn, strokeStyle);
  Restore();
  if (isLayer) context_->restoreGState();
}

void CGSVGRenderer::fill(const CGSVGPath& path, const FillStyleImpl& style) {
  const PathData& data = path.path().data();
  if (const auto* gradient = std::get_if<GradientPaint>(&style.paint)) {
    fillWithGradient(data, style.fillRule, *gradient->gradient, style.fillOpacity);
  } else if (const auto* color = std::get_if<ColorArray>(&style.paint)) {
    const auto [red, green, blue, alpha] = *color;
    context_->setFillColor({red, green, blue, CGFloat{alpha} * style.fillOpacity});
    context_->fill(data, style.fillRule);
  }
}

void CGSVGRenderer::stroke(const CGSVGPath& path, const StrokeStyleImpl& style) {
  StrokeStyle& pen = context_->strokeStyle();
  pen.width = style.lineWidth;
  pen.cap = style.lineCap;
  pen.join = style.lineJoin;
  pen.miterLimit = style.miterLimit;
  const PathData& data = path.path().data();
  if (const auto* color = std::get_if<ColorArray>(&style.paint)) {
    const auto [red, green, blue, alpha] = *color;
    context_->setStrokeColor({red, green, blue, CGFloat{alpha} * style.strokeOpacity});
    context_->stroke(data, pen);
  } else if (const auto* gradient = std::get_if<GradientPaint>(&style.paint)) {
    context_->saveGState();
    context_->beginPath();
    context_->addPath(data);
    context_->replacePathWithStrokedPath();
    context_->clipToPath(WindingRule::nonZero);
    context_->concatenate(matrixOf(gradient->gradient->transform.get()));
    DrawGradientToContext(*gradient->gradient, style.strokeOpacity);
    context_->restoreGState();
  }
}

// Filling the path with the gradient, in the gradient's own space, saves making a clip of it.
void CGSVGRenderer::fillWithGradient(const PathData& path, WindingRule rule,
                                     const GradientImpl& gradient, float opacity) {
  const CGAffineTransform matrix = matrixOf(gradient.transform.get());
  const CGFloat determinant = CGAffineTransformDeterminant(matrix);
  if (determinant == 0.0 || !std::isfinite(determinant)) return;
  context_->saveGState();
  context_->concatenate(matrix);
  const PathData moved = transformedPath(path, CGAffineTransformInvert(matrix));
  const CGGradient colors = gradientOf(gradient, opacity);
  if (gradient.type == GradientType::linear) {
    context_->fill(moved, rule, colors, linearAxis(gradient));
  } else {
    context_->fill(moved, rule, colors, radialAxis(gradient));
  }
  context_->restoreGState();
}

// Beyond its ends a gradient goes on with the end colours, whatever its spread method says:
// pictures look as they always did in this application.
void CGSVGRenderer::DrawGradientToContext(const GradientImpl& gradient, float opacity) {
  const CGGradient colors = gradientOf(gradient, opacity);
  if (gradient.type == GradientType::linear) {
    context_->draw(colors, linearAxis(gradient), GradientExtent::both);
  } else {
    context_->draw(colors, radialAxis(gradient), GradientExtent::both);
  }
}

void CGSVGRenderer::DrawImage(const ImageData& image, const GraphicStyleImpl& graphicStyle,
                              const Rect& clipArea, const Rect& fillArea) {
  save(graphicStyle, Layering::never);
  if (const auto& bitmap = static_cast<const CGSVGImageData&>(image).bitmap()) {
    context_->clip(toNSRect(clipArea));
    context_->concatenate({1, 0, 0, -1, 0, CGFloat{fillArea.y.min} + fillArea.y.max});
    context_->draw(*bitmap, toNSRect(fillArea));
  }
  Restore();
}

Rect CGSVGRenderer::GetBounds(const std::function<void()>& /*draw*/) {
  throw std::runtime_error("Bound calculation functionality not implemented in this port");
}

}  // namespace SVGNative
