#include "platform/graphics/NSColor.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

/// NaN ends as 0 too.
double clipped(double value) {
  return value > 0 ? std::min(value, 1.0) : 0;
}

using Shared = std::shared_ptr<NSColor>;

}  // namespace

const NSClass NSColor::kClass{"NSColor", &NSObject::kClass, NSAllocate<NSColor>};

NSColor::NSColor(Space space, const SRGBColor& color, double alpha)
    : space_(space),
      red_(clipped(color[0])),
      green_(clipped(color[1])),
      blue_(clipped(color[2])),
      alpha_(clipped(alpha)) {}

Shared NSColor::make(Space space, const SRGBColor& color, double alpha) {
  return std::make_shared<NSColor>(NSColor(space, color, alpha));
}

Shared NSColor::colorWithCalibratedRed(double red, double green, double blue, double alpha) {
  return make(Space::kCalibratedRGB, {red, green, blue}, alpha);
}

Shared NSColor::colorWithDeviceRed(double red, double green, double blue, double alpha) {
  return make(Space::kDeviceRGB, {red, green, blue}, alpha);
}

Shared NSColor::colorWithSRGBRed(double red, double green, double blue, double alpha) {
  return make(Space::kSRGB, {red, green, blue}, alpha);
}

Shared NSColor::colorWithCalibratedWhite(double white, double alpha) {
  return make(Space::kCalibratedWhite, {white, white, white}, alpha);
}

Shared NSColor::colorWithDeviceWhite(double white, double alpha) {
  return make(Space::kDeviceWhite, {white, white, white}, alpha);
}

Shared NSColor::colorWithDeviceCyan(double cyan, double magenta, double yellow, double black,
                                    double alpha) {
  const double inks[] = {clipped(cyan), clipped(magenta), clipped(yellow), clipped(black)};
  const NSColorSpace space(NSColorSpace::ID::kDeviceCMYK);
  return make(Space::kSRGB, *space.sRGBFromComponents(inks), alpha);
}

Shared NSColor::colorWithPatternImage(std::shared_ptr<NSObject> image) {
  auto color = make(Space::kPattern, {0, 0, 0}, 1);
  color->pattern_ = std::move(image);
  return color;
}

const Shared& NSColor::blackColor() {
  static const Shared color = colorWithCalibratedWhite(0, 1);
  return color;
}
const Shared& NSColor::grayColor() {
  static const Shared color = colorWithCalibratedWhite(0.5, 1);
  return color;
}
const Shared& NSColor::whiteColor() {
  static const Shared color = colorWithCalibratedWhite(1, 1);
  return color;
}
const Shared& NSColor::clearColor() {
  static const Shared color = colorWithCalibratedWhite(0, 0);
  return color;
}
const Shared& NSColor::redColor() {
  static const Shared color = colorWithCalibratedRed(1, 0, 0, 1);
  return color;
}
const Shared& NSColor::greenColor() {
  static const Shared color = colorWithCalibratedRed(0, 1, 0, 1);
  return color;
}
const Shared& NSColor::blueColor() {
  static const Shared color = colorWithCalibratedRed(0, 0, 1, 1);
  return color;
}

bool NSColor::isGray() const {
  return space_ == Space::kCalibratedWhite || space_ == Space::kDeviceWhite ||
         space_ == Space::kGamma22White;
}

Shared NSColor::colorWithAlphaComponent(double alpha) const {
  auto color = std::make_shared<NSColor>(*this);
  color->alpha_ = clipped(alpha);
  return color;
}

bool NSColor::isEqual(const NSObject& other) const {
  const auto* color = dynamic_cast<const NSColor*>(&other);
  return color != nullptr && color->space_ == space_ && color->red_ == red_ &&
         color->green_ == green_ && color->blue_ == blue_ && color->alpha_ == alpha_ &&
         color->pattern_ == pattern_;
}

size_t NSColor::hash() const {
  const auto mix = [](size_t seed, double value) { return seed * 31 + std::hash<double>{}(value); };
  return mix(mix(mix(mix(0, red_), green_), blue_), alpha_);
}
