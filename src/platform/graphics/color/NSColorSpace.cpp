#include "platform/graphics/color/NSColorSpace.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"

namespace {

using ID = NSColorSpace::ID;
using Model = NSColorSpace::Model;

/// Rows give linear sRGB from linear components. Made from the chromaticities of the primaries and
/// white points of IEC 61966-2-1, Adobe RGB (1998) 4.3.1, SMPTE EG 432-1 (Display P3) and
/// SMPTE RP 431-2 (DCI P3, its white adapted to D65 by the Bradford transform).
using Matrix = double[3][3];
constexpr Matrix kIdentity = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
constexpr Matrix kFromAdobeRGB = {
    {1.3983557, -0.3983557, 0}, {0, 1, 0}, {0, -0.0429290, 1.0429290}};
constexpr Matrix kFromDisplayP3 = {
    {1.2249402, -0.2249402, 0}, {-0.0420570, 1.0420570, 0}, {-0.0196376, -0.0786360, 1.0982736}};
constexpr Matrix kFromDCIP3 = {{1.1575164, -0.1549624, -0.0025540},
                               {-0.0415001, 1.0455679, -0.0040679},
                               {-0.0180500, -0.0785783, 1.0966283}};

constexpr double kAdobeGamma = 563.0 / 256;
constexpr double kDCIGamma = 2.6;

SRGBColor convert(const Matrix& matrix, const SRGBColor& linear) {
  SRGBColor color{};
  for (size_t i = 0; i < 3; ++i) {
    double light = 0;
    for (size_t j = 0; j < 3; ++j) light += matrix[i][j] * linear[j];
    color[i] = sRGBCurve(std::clamp(light, 0.0, 1.0));
  }
  return color;
}

template <class Curve>
SRGBColor curved(const SRGBColor& color, Curve curve) {
  return {curve(color[0]), curve(color[1]), curve(color[2])};
}

SRGBColor fromRGB(ID space, const SRGBColor& color) {
  const auto gamma = [](double exponent) {
    return [exponent](double v) { return std::pow(v, exponent); };
  };
  switch (space) {
    case ID::kAdobeRGB:
      return convert(kFromAdobeRGB, curved(color, gamma(kAdobeGamma)));
    case ID::kDisplayP3:
      return convert(kFromDisplayP3, curved(color, sRGBInverseCurve));
    case ID::kDCIP3:
      return convert(kFromDCIP3, curved(color, gamma(kDCIGamma)));
    case ID::kLinearSRGB:
    case ID::kExtendedLinearSRGB:
      return convert(kIdentity, color);
    default:
      return color;
  }
}

/// Ink without a profile: each dye and the black let through what they do not cover.
SRGBColor fromInks(std::span<const double> inks) {
  const double light = 1 - inks[3];
  return {(1 - inks[0]) * light, (1 - inks[1]) * light, (1 - inks[2]) * light};
}

/// Profiles of one archive by their bytes: archives repeat the object, rarely the profile.
class ProfileCache : public NSObject {
 public:
  std::shared_ptr<const ColorProfile> profile(const std::shared_ptr<const NSData>& icc) {
    auto& known = profiles_[{icc->bytes().data(), icc->length()}];
    if (known == nullptr) known = std::make_shared<ColorProfile>(icc);
    return known;
  }

 private:
  std::map<std::pair<const uint8_t*, size_t>, std::shared_ptr<const ColorProfile>> profiles_;
};

std::shared_ptr<const ColorProfile> cachedProfile(NSCoder& coder,
                                                  const std::shared_ptr<const NSData>& icc) {
  constexpr const char* kKey = "NSColorSpace profiles";
  auto cache = std::dynamic_pointer_cast<ProfileCache>(coder.associatedObject(kKey));
  if (cache == nullptr) {
    cache = std::make_shared<ProfileCache>();
    coder.setAssociatedObject(kKey, cache);
  }
  return cache->profile(icc);
}

Model modelOfID(ID id) {
  switch (id) {
    case ID::kGenericGray:
    case ID::kDeviceGray:
    case ID::kGenericGrayGamma22:
    case ID::kExtendedGray:
      return Model::kGray;
    case ID::kGenericCMYK:
    case ID::kDeviceCMYK:
      return Model::kCMYK;
    case ID::kGenericRGB:
    case ID::kDeviceRGB:
    case ID::kSRGB:
    case ID::kAdobeRGB:
    case ID::kDisplayP3:
    case ID::kDCIP3:
    case ID::kExtendedSRGB:
    case ID::kLinearSRGB:
    case ID::kExtendedLinearSRGB:
      return Model::kRGB;
    case ID::kProfile:
    case ID::kUnknown:
      break;
  }
  return Model::kUnknown;
}

/// The space of that number in the archive, when it is one that needs no profile.
ID knownSpace(NSCoder& coder, const char* key) {
  const auto number = coder.decodeNumberForKey(key);
  const int64_t value = number != nullptr ? number->integerValue() : 0;
  const ID id = value > 0 && value < 255 ? static_cast<ID>(value) : ID::kUnknown;
  return modelOfID(id) == Model::kUnknown ? ID::kUnknown : id;
}

}  // namespace

const NSClass NSColorSpace::kClass{"NSColorSpace", &NSObject::kClass, NSAllocate<NSColorSpace>};

double sRGBCurve(double light) {
  return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

double sRGBInverseCurve(double value) {
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

const std::shared_ptr<NSColorSpace>& NSColorSpace::sRGBColorSpace() {
  static const auto space = std::make_shared<NSColorSpace>(ID::kSRGB);
  return space;
}

const std::shared_ptr<NSColorSpace>& NSColorSpace::genericGamma22GrayColorSpace() {
  static const auto space = std::make_shared<NSColorSpace>(ID::kGenericGrayGamma22);
  return space;
}

Model NSColorSpace::colorSpaceModel() const {
  if (id_ != ID::kProfile) return modelOfID(id_);
  switch (profile_->model()) {
    case ColorProfile::Model::kGray:
      return Model::kGray;
    case ColorProfile::Model::kRGB:
      return Model::kRGB;
    case ColorProfile::Model::kCMYK:
      return Model::kCMYK;
    case ColorProfile::Model::kOther:
      break;
  }
  return Model::kUnknown;
}

size_t NSColorSpace::numberOfColorComponents() const {
  switch (colorSpaceModel()) {
    case Model::kGray:
      return 1;
    case Model::kRGB:
      return 3;
    case Model::kCMYK:
      return 4;
    case Model::kUnknown:
      break;
  }
  return 0;
}

std::optional<SRGBColor> NSColorSpace::sRGBFromComponents(
    std::span<const double> components) const {
  const Model model = colorSpaceModel();
  if (model == Model::kUnknown || components.size() != numberOfColorComponents()) {
    return std::nullopt;
  }
  if (id_ == ID::kProfile) return profile_->sRGBFromComponents(components);
  std::array<double, 4> values{};
  for (size_t i = 0; i < components.size(); ++i) values[i] = std::clamp(components[i], 0.0, 1.0);
  if (model == Model::kGray) return SRGBColor{values[0], values[0], values[0]};
  if (model == Model::kCMYK) return fromInks(values);
  return fromRGB(id_, {values[0], values[1], values[2]});
}

bool NSColorSpace::initWithCoder(NSCoder& coder) {
  id_ = knownSpace(coder, "NSID");
  if (id_ == ID::kUnknown) id_ = knownSpace(coder, "NSSpaceID");
  if (id_ != ID::kUnknown) return true;
  if (const auto icc = coder.decodeDataForKey("NSICC")) {
    profile_ = cachedProfile(coder, icc);
    id_ = ID::kProfile;
  }
  return true;
}

void NSColorSpace::encodeWithCoder(NSCoder& coder) const {
  if (id_ == ID::kProfile) {
    coder.encodeObject(profile_->icc(), "NSICC");
  } else {
    const bool isNewer = id_ >= ID::kDisplayP3;
    coder.encodeInt32(static_cast<int32_t>(id_), isNewer ? "NSSpaceID" : "NSID");
  }
  const Model model = colorSpaceModel();
  if (model == Model::kGray || model == Model::kCMYK) {
    coder.encodeInt32(static_cast<int32_t>(model), "NSModel");
  }
}
