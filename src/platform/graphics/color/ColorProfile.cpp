#include "platform/graphics/color/ColorProfile.h"

#include <lcms2.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/foundation/Limits.h"
#include "platform/foundation/values/NSData.h"

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
  cmsUInt32Number format;
  size_t count;
  /// The library counts inks in percent.
  double scale;
};

Layout layoutOf(Model model) {
  switch (model) {
    case Model::kGray:
      return {TYPE_GRAY_DBL, 1, 1};
    case Model::kRGB:
      return {TYPE_RGB_DBL, 3, 1};
    case Model::kCMYK:
      return {TYPE_CMYK_DBL, 4, 100};
    case Model::kOther:
      break;
  }
  return {0, 0, 0};
}

struct CloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, CloseProfile>;

}  // namespace

struct ColorProfile::Transform {
  Transform(std::span<const uint8_t> icc, cmsUInt32Number format) {
    const Profile source(
        cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size())));
    const Profile target(cmsCreate_sRGBProfile());
    if (source == nullptr || target == nullptr) return;
    // A handful of colours each: tables made for whole pictures would cost far more than they save.
    handle = cmsCreateTransform(
        source.get(), format, target.get(), TYPE_RGB_DBL, INTENT_RELATIVE_COLORIMETRIC,
        cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE | cmsFLAGS_BLACKPOINTCOMPENSATION);
  }
  Transform(const Transform&) = delete;
  Transform& operator=(const Transform&) = delete;
  ~Transform() {
    if (handle != nullptr) cmsDeleteTransform(handle);
  }

  cmsHTRANSFORM handle = nullptr;
};

ColorProfile::ColorProfile(std::shared_ptr<const NSData> icc)
    : icc_(std::move(icc)), model_(modelOf(icc_->bytes())) {}

ColorProfile::~ColorProfile() = default;

std::optional<SRGBColor> ColorProfile::sRGBFromComponents(
    std::span<const double> components) const {
  const Layout layout = layoutOf(model_);
  if (layout.count == 0 || components.size() != layout.count) return std::nullopt;
  std::call_once(opened_,
                 [&] { transform_ = std::make_unique<Transform>(icc_->bytes(), layout.format); });
  if (transform_->handle == nullptr) return std::nullopt;
  std::array<double, 4> input{};
  for (size_t i = 0; i < layout.count; ++i) {
    input[i] = std::clamp(components[i], 0.0, 1.0) * layout.scale;
  }
  SRGBColor color{};
  cmsDoTransform(transform_->handle, input.data(), color.data(), 1);
  // Written so that NaN, which a damaged profile can produce, ends as 0.
  for (double& c : color) c = c > 0 ? std::min(c, 1.0) : 0;
  return color;
}
