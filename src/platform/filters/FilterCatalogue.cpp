#include "platform/filters/FilterCatalogue.h"

#include <algorithm>
#include <cmath>

#include "platform/filters/CIImage.h"
#include "platform/filters/color/ColorOperation.h"
#include "platform/filters/spatial/PixellateOperation.h"
#include "platform/filters/spatial/SiteOperation.h"
#include "platform/filters/spatial/SpatialOperations.h"
#include "platform/foundation/Limits.h"

namespace {

using Image = std::shared_ptr<const CIImage>;

constexpr FilterInput number(std::string_view key, double standard, double least, double most) {
  return {key, FilterInputKind::kNumber, standard, least, most};
}

/// Far beyond any use, and far from where single precision overflows.
constexpr double kAny = 1e6;
constexpr FilterInput kCenter{"inputCenter", FilterInputKind::kPoint};

constexpr FilterInput kClamp[] = {{"inputTransform", FilterInputKind::kTransform}};
constexpr FilterInput kBlur[] = {number("inputRadius", 10, 0, limits::kMaxBlurRadius)};
constexpr FilterInput kSharpen[] = {number("inputSharpness", 0.4, -kAny, kAny),
                                    number("inputRadius", 1.69, 0, limits::kMaxBlurRadius)};
constexpr FilterInput kControls[] = {number("inputSaturation", 1, 0, kAny),
                                     number("inputBrightness", 0, -kAny, kAny),
                                     number("inputContrast", 1, 0, kAny)};
constexpr FilterInput kExposure[] = {number("inputEV", 0, -128, 128)};
constexpr FilterInput kTones[] = {number("inputRadius", 0, 0, kAny),
                                  number("inputShadowAmount", 0, -1, 1),
                                  number("inputHighlightAmount", 1, 0, 1)};
constexpr FilterInput kSepia[] = {number("inputIntensity", 1, -kAny, kAny)};
constexpr FilterInput kHue[] = {number("inputAngle", 0, -kAny, kAny)};
constexpr FilterInput kGamma[] = {number("inputPower", 1, -kAny, kAny)};
constexpr FilterInput kCrystallize[] = {number("inputRadius", 20, 1, limits::kMaxGridPitch),
                                        kCenter};
constexpr FilterInput kEdges[] = {number("inputIntensity", 1, 0, kAny)};
constexpr FilterInput kEdgeWork[] = {number("inputRadius", 3, 0, limits::kMaxBlurRadius)};
constexpr FilterInput kPixellate[] = {kCenter, number("inputScale", 8, 1, limits::kMaxGridPitch)};

/// Blurs narrower than this change nothing.
constexpr double kLeastRadius = 1e-3;

Image applied(const CIImage& image, std::shared_ptr<const ImageOperation> operation) {
  return image.imageByApplying(std::move(operation));
}
Image recolored(const CIImage& image, ColorStage stage) {
  return image.imageByApplying(
      std::make_shared<const ColorOperation>(std::vector<ColorStage>{std::move(stage)}));
}
Image unchanged(const CIImage& image) {
  return std::make_shared<CIImage>(image);
}

/// Only the identity is used and known; every other transform gives no image.
Image clamp(const CIImage& image, const FilterValues& v) {
  return v.transform == CGAffineTransform{} ? image.imageByClampingToExtent() : nullptr;
}

Image blur(const CIImage& image, const FilterValues& v) {
  if (v.numbers[0] < kLeastRadius) return unchanged(image);
  return applied(image, std::make_shared<BlurOperation>(v.numbers[0]));
}

Image sharpen(const CIImage& image, const FilterValues& v) {
  if (v.numbers[0] == 0 || v.numbers[1] < kLeastRadius) return unchanged(image);
  return applied(image, std::make_shared<SharpenOperation>(v.numbers[0], v.numbers[1]));
}

Image controls(const CIImage& image, const FilterValues& v) {
  if (v.numbers[0] == 1 && v.numbers[1] == 0 && v.numbers[2] == 1) return unchanged(image);
  return recolored(image, makeColorControls(v.numbers[0], v.numbers[1], v.numbers[2]));
}

Image exposure(const CIImage& image, const FilterValues& v) {
  if (v.numbers[0] == 0) return unchanged(image);
  const double factor = std::exp2(v.numbers[0]);
  return recolored(image, makeCurve([=](double c) { return c * factor; }));
}

/// The form for radius 0, which looks at no neighbours; the radius is not used.
Image tones(const CIImage& image, const FilterValues& v) {
  const double shadow = v.numbers[1];
  const double highlight = v.numbers[2];
  if (std::fabs(shadow) < 0.05 && highlight > 0.95) return unchanged(image);
  return recolored(image, makeHighlightShadow(shadow, highlight));
}

Image sepia(const CIImage& image, const FilterValues& v) {
  if (v.numbers[0] == 0) return unchanged(image);
  return recolored(image, makeSepia(v.numbers[0]));
}

Image hue(const CIImage& image, const FilterValues& v) {
  if (v.numbers[0] == 0) return unchanged(image);
  return recolored(image, makeHueRotation(v.numbers[0]));
}

Image gamma(const CIImage& image, const FilterValues& v) {
  const double power = v.numbers[0];
  if (power == 1) return unchanged(image);
  return recolored(image, makeCurve([=](double c) { return std::pow(c, power); }));
}

Image invert(const CIImage& image, const FilterValues&) {
  return recolored(image, makeCurve([](double c) { return 1 - c; }));
}

Image crystallize(const CIImage& image, const FilterValues& v) {
  return applied(
      image, std::make_shared<SiteOperation>(SiteShape::kCell, SiteGrid{v.numbers[0], v.center}));
}

Image pointillize(const CIImage& image, const FilterValues& v) {
  return applied(
      image, std::make_shared<SiteOperation>(SiteShape::kDot, SiteGrid{v.numbers[0], v.center}));
}

Image edges(const CIImage& image, const FilterValues& v) {
  return applied(image, std::make_shared<EdgesOperation>(v.numbers[0]));
}

Image edgeWork(const CIImage& image, const FilterValues& v) {
  // Nothing shows below some 0.15 pixels; this keeps the narrower Gaussian's weights finite.
  const double radius = std::max(v.numbers[0], 0.01);
  return applied(image, std::make_shared<EdgeWorkOperation>(radius));
}

Image pixellate(const CIImage& image, const FilterValues& v) {
  return applied(image, std::make_shared<PixellateOperation>(v.numbers[1], v.center));
}

constexpr FilterDescription kFilters[] = {
    {"CIAffineClamp", kClamp, clamp},
    {"CIGaussianBlur", kBlur, blur},
    {"CISharpenLuminance", kSharpen, sharpen},
    {"CIColorControls", kControls, controls},
    {"CIExposureAdjust", kExposure, exposure},
    {"CIHighlightShadowAdjust", kTones, tones},
    {"CISepiaTone", kSepia, sepia},
    {"CIHueAdjust", kHue, hue},
    {"CIGammaAdjust", kGamma, gamma},
    {"CIColorInvert", {}, invert},
    {"CICrystallize", kCrystallize, crystallize},
    {"CIEdges", kEdges, edges},
    {"CIEdgeWork", kEdgeWork, edgeWork},
    {"CIPixellate", kPixellate, pixellate},
    {"CIPointillize", kCrystallize, pointillize},
};

}  // namespace

const FilterDescription* filterDescription(std::string_view name) {
  for (const FilterDescription& filter : kFilters) {
    if (filter.name == name) return &filter;
  }
  return nullptr;
}
