#include "svg/tree/RecordingRenderer.h"

#include <cmath>

using namespace SVGNative;

namespace {

class RecordingImage : public ImageData {
 public:
  // The text stands for the picture: "20x10" is one of that size.
  explicit RecordingImage(std::string_view text) : text_(text) {
    std::istringstream in(text_);
    char x = 0;
    in >> width_ >> x >> height_;
  }
  float Width() const override { return width_; }
  float Height() const override { return height_; }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
  float width_ = 0.0f;
  float height_ = 0.0f;
};

// Rounded, so that expectations can be written by hand.
double rounded(double value) {
  return std::round(value * 1000.0) / 1000.0 + 0.0;
}

std::string write(const Transform& transform) {
  std::ostringstream out;
  out << " [";
  for (const double value : static_cast<const RecordingTransform&>(transform).matrix()) {
    out << (out.tellp() > 2 ? " " : "") << rounded(value);
  }
  out << "]";
  return out.str();
}

std::string write(const ColorArray& color) {
  std::ostringstream out;
  for (size_t i = 0; i < 4; ++i) out << (i > 0 ? "," : "") << rounded(color[i]);
  return out.str();
}

std::string write(const GradientImpl& gradient) {
  std::ostringstream out;
  if (gradient.type == GradientType::linear) {
    out << "linear(" << gradient.x1 << ' ' << gradient.y1 << ' ' << gradient.x2 << ' '
        << gradient.y2;
  } else {
    out << "radial(" << gradient.fx << ' ' << gradient.fy << ' ' << gradient.cx << ' '
        << gradient.cy << ' ' << gradient.r;
  }
  if (gradient.units == GradientUnits::objectBoundingBox) out << " fractions";
  if (gradient.spread == SpreadMethod::reflect) out << " reflect";
  if (gradient.spread == SpreadMethod::repeat) out << " repeat";
  out << ")";
  if (gradient.transform != nullptr) out << write(*gradient.transform);
  for (const ColorStopImpl& stop : *gradient.stops) {
    out << ' ' << stop.offset << ':' << write(std::get<ColorArray>(stop.color)) << '@'
        << stop.opacity;
  }
  return out.str();
}

std::string write(const Paint& paint) {
  if (const auto* color = std::get_if<ColorArray>(&paint)) return write(*color);
  if (const auto* gradient = std::get_if<GradientPaint>(&paint)) return write(*gradient->gradient);
  return "UNRESOLVED";
}

std::string write(const GraphicStyleImpl& style) {
  std::ostringstream out;
  if (style.opacity != 1.0f) out << " opacity " << style.opacity;
  if (style.transform != nullptr) out << write(*style.transform);
  if (style.clippingPath != nullptr) {
    const ClippingPath& clip = *style.clippingPath;
    out << " clip(" << static_cast<const RecordingPath&>(*clip.path).text() << ")";
    if (clip.clipRule == WindingRule::evenOdd) out << " evenodd";
    if (clip.transform != nullptr) out << write(*clip.transform);
  }
  return out.str();
}

std::string write(const StrokeStyleImpl& stroke) {
  std::ostringstream out;
  out << " stroke " << write(stroke.paint) << " width " << stroke.lineWidth;
  if (stroke.strokeOpacity != 1.0f) out << '@' << stroke.strokeOpacity;
  if (stroke.lineCap == LineCap::round) out << " roundcap";
  if (stroke.lineCap == LineCap::square) out << " squarecap";
  if (stroke.lineJoin == LineJoin::round) out << " roundjoin";
  if (stroke.lineJoin == LineJoin::bevel) out << " beveljoin";
  if (stroke.miterLimit != 4.0f) out << " miter " << stroke.miterLimit;
  if (stroke.dashArray != nullptr) out << " dashes " << stroke.dashArray->size();
  if (stroke.dashOffset != 0.0f) out << " phase " << stroke.dashOffset;
  return out.str();
}

std::string write(const Rect& rect) {
  std::ostringstream out;
  out << rect.x.min << ' ' << rect.y.min << ' ' << rect.Width() << ' ' << rect.Height();
  return out.str();
}

}  // namespace

std::shared_ptr<ImageData> RecordingRenderer::CreateImageData(std::string_view base64,
                                                              ImageEncoding encoding) {
  lines.push_back(encoding == ImageEncoding::png ? "png" : "jpeg");
  return std::make_shared<RecordingImage>(base64);
}

void RecordingRenderer::Save(const GraphicStyleImpl& style) {
  lines.push_back("save" + write(style));
}

void RecordingRenderer::DrawPath(const Path& path, const GraphicStyleImpl& graphicStyle,
                                 const FillStyleImpl& fill, const StrokeStyleImpl& stroke) {
  bounds_ = bounds_.Union(path.Bounds());
  std::ostringstream out;
  out << "path " << static_cast<const RecordingPath&>(path).text() << write(graphicStyle);
  if (fill.hasFill) {
    out << " fill " << write(fill.paint);
    if (fill.fillOpacity != 1.0f) out << '@' << fill.fillOpacity;
    if (fill.fillRule == WindingRule::evenOdd) out << " evenodd";
  }
  if (stroke.hasStroke) out << write(stroke);
  lines.push_back(out.str());
}

void RecordingRenderer::DrawImage(const ImageData& image, const GraphicStyleImpl& graphicStyle,
                                  const Rect& clipArea, const Rect& fillArea) {
  lines.push_back("image " + static_cast<const RecordingImage&>(image).text() +
                  write(graphicStyle) + " in " + write(clipArea) + " at " + write(fillArea));
}

Rect RecordingRenderer::GetBounds(const std::function<void()>& draw) {
  bounds_ = {};
  draw();
  return bounds_;
}
