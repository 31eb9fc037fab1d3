#pragma once

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "svg/draw/SVGRenderer.h"
#include "svg/parse/RecordingPath.h"

/// Writes down what it is told to draw, a line per call:
///   save OPACITY [matrix] [clip], restore, path ..., image ...
class RecordingRenderer : public SVGNative::SVGRenderer {
 public:
  std::shared_ptr<SVGNative::ImageData> CreateImageData(std::string_view base64,
                                                        SVGNative::ImageEncoding encoding) override;
  std::shared_ptr<SVGNative::Path> CreatePath() override {
    return std::make_shared<RecordingPath>();
  }
  std::shared_ptr<SVGNative::Transform> CreateTransform() override {
    return std::make_shared<RecordingTransform>();
  }
  void Save(const SVGNative::GraphicStyleImpl& style) override;
  void Restore() override { lines.push_back("restore"); }
  void DrawPath(const SVGNative::Path& path, const SVGNative::GraphicStyleImpl& graphicStyle,
                const SVGNative::FillStyleImpl& fill,
                const SVGNative::StrokeStyleImpl& stroke) override;
  void DrawImage(const SVGNative::ImageData& image, const SVGNative::GraphicStyleImpl& graphicStyle,
                 const SVGNative::Rect& clipArea, const SVGNative::Rect& fillArea) override;
  /// The union of the bounds of all paths drawn.
  SVGNative::Rect GetBounds(const std::function<void()>& draw) override;

  std::vector<std::string> lines;

 private:
  SVGNative::Rect bounds_;
};
