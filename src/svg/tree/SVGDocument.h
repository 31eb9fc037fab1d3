#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "svg/SVGStringParser.h"
#include "svg/draw/SVGRenderer.h"

namespace SVGNative {

class SVGDocumentImpl;

/// Values of custom properties ("--name"), which colours of a document may refer to.
using ColorMap = NameMap<ColorArray>;

/// A picture read from SVG text. Drawing goes to its renderer; sizes are in user units, 96 to the
/// inch.
class SVGDocument {
 public:
  /// Null when the text is not XML at all, is longer than limits::kMaxSvgBytes, or holds a colour
  /// that ParseColor throws at, and without a renderer. Any other damage costs no more than the
  /// parts that it is in: values are skipped one by one, and a document whose root is not "svg" is
  /// empty. Ends the process at an arc that ArcToCurve does not support.
  static std::unique_ptr<SVGDocument> CreateSVGDocument(const std::string& text,
                                                        std::shared_ptr<SVGRenderer> renderer);
  ~SVGDocument();

  /// Natural size, fractions dropped: "width" and "height" where given, else the view box's.
  int Width() const;
  int Height() const;

  const std::shared_ptr<SVGRenderer>& Renderer() const;

  /// Draws the picture into the box from (0, 0) to (width, height), its natural size where none is
  /// given, or only the element of that id (nothing when there is none). The whole natural size, as
  /// Width and Height answer it, is filled like the exact one.
  void Render() const;
  void Render(float width, float height) const;
  void Render(const ColorMap& colors) const;
  void Render(const ColorMap& colors, float width, float height) const;
  void Render(std::string_view id) const;
  void Render(std::string_view id, float width, float height) const;
  void Render(std::string_view id, const ColorMap& colors) const;
  void Render(std::string_view id, const ColorMap& colors, float width, float height) const;

  /// The box of what Render() paints (false when that is nothing), with renderers that can
  /// measure; throws what SVGRenderer::GetBounds throws with others.
  bool GetBoundingBox(Rect& bounds) const;
  bool GetBoundingBox(std::string_view id, Rect& bounds) const;

 private:
  explicit SVGDocument(std::unique_ptr<SVGDocumentImpl> impl);
  std::unique_ptr<SVGDocumentImpl> impl_;
};

}  // namespace SVGNative
