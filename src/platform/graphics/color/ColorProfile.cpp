#include "platform/graphics/color/ColorProfile.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/foundation/Limits.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/color/ColorLibrary.h"

namespace {

using Model = ColorProfile::Model;

/// The colour space signature stands in bytes 16 to 19 of the header (ICC.1:2010, 7.2.6).
Model modelOf(std::span<const uint8_t> icc) {
  if (icc.size() < 128 || icc.size() > limits::kMaxProfileBytes) return Model::kOther;
  const auto is = [&](const char* signature) {
    return std::memcmp(icc.data() + 16, signature, 4) == 0;
  };
  if (is("RGB ")) return Model::kRGB;
  if (is("GRAY")) return Model::kGray;
  return is("CMYK") ? Model::kCMYK : Model::kOther;
}

struct Layout {
  SampleForm form;
  size_t count;
  /// The library counts inks in percent.
  double scale;
};

Layout layoutOf(Model model) {
  switch (model) {
    case Model::kGray:
      return {SampleForm::grayNumbers, 1, 1};
    case Model::kRGB:
      return {SampleForm::rgbNumbers, 3, 1};
    case Model::kCMYK:
      return {SampleForm::cmykNumbers, 4, 100};
    case Model::kOther:
      break;
  }
  return {SampleForm::rgbNumbers, 0, 0};
}

}  // namespace

ColorProfile::ColorProfile(std::shared_ptr<const NSData> icc)
    : icc_(std::move(icc)), model_(modelOf(icc_->bytes())) {}

ColorProfile::~ColorProfile() = default;

std::optional<SRGBColor> ColorProfile::sRGBFromComponents(
    std::span<const double> components) const {
  const Layout layout = layoutOf(model_);
  if (layout.count == 0 || components.size() != layout.count) return std::nullopt;
  std::call_once(opened_, [&] { transform_ = openColorTransform(icc_->bytes(), layout.form); });
  if (transform_ == nullptr) return std::nullopt;
  std::array<double, 4> input{};
  for (size_t i = 0; i < layout.count; ++i) {
    input[i] = std::clamp(components[i], 0.0, 1.0) * layout.scale;
  }
  SRGBColor color{};
  transform_->convert(input.data(), color.data(), 1);
  // Written so that NaN, which a damaged profile can produce, ends as 0.
  for (double& c : color) c = c > 0 ? std::min(c, 1.0) : 0;
  return color;
}
