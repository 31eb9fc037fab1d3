#pragma once

#include <memory>
#include <vector>

#include "platform/graphics/context/CGContext.h"
#include "svg/draw/CGSVGPath.h"
#include "svg/draw/SVGRenderer.h"

namespace SVGNative {

/// Draws onto a drawing context. The context's y axis points up: give it a transform that turns it
/// before drawing a document.
class CGSVGRenderer : public SVGRenderer {
 public:
  /// Keeps the context until it gets another one, or null. Drawing without a context is a mistake
  /// of the caller: Save and DrawImage end the process, DrawPath does nothing.
  void SetGraphicsContext(std::shared_ptr<CGContext> context);

  std::shared_ptr<ImageData> CreateImageData(std::string_view base64,
                                             ImageEncoding encoding) override;
  std::shared_ptr<Path> CreatePath() override;
  std::shared_ptr<Transform> CreateTransform() override;

  void Save(const GraphicStyleImpl& style) override;
  void Restore() override;
  void DrawPath(const Path& path, const GraphicStyleImpl& graphicStyle,
                const FillStyleImpl& fillStyle, const StrokeStyleImpl& strokeStyle) override;
  void DrawImage(const ImageData& image, const GraphicStyleImpl& graphicStyle, const Rect& clipArea,
                 const Rect& fillArea) override;
  /// Not supported: throws.
  Rect GetBounds(const std::function<void()>& draw) override;

 private:
  enum class Layering { never, whenNeeded };
  void save(const GraphicStyleImpl& style, Layering layering);
  void clipTo(const ClippingPath& clip);
  void fill(const CGSVGPath& path, const FillStyleImpl& style);
  void stroke(const CGSVGPath& path, const StrokeStyleImpl& style);
  void fillWithGradient(const PathData& path, WindingRule rule, const GradientImpl& gradient,
                        float opacity);
  void DrawGradientToContext(const GradientImpl& gradient, float opacity);

  std::shared_ptr<CGContext> context_;
  // Where new paths are made: in blocks that live as long as anything in them. A picture has
  // thousands of paths, and making them one by one costs a tenth of reading it.
  std::shared_ptr<std::vector<CGSVGPath>> paths_;
  std::vector<bool> layers_;  // for each Save, whether it began a transparency layer
  int openLayers_ = 0;
};

}  // namespace SVGNative
