#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "platform/foundation/NSObject.h"
#include "platform/graphics/color/ColorProfile.h"

/// A space that colour components are numbers in. All drawing is in sRGB numbers; calibrated,
/// device, generic and sRGB red, green and blue share them, and so do the greys.
class NSColorSpace : public NSObject {
 public:
  static const NSClass kClass;

  /// The numbers under which archives know the spaces.
  enum class ID : uint8_t {
    kUnknown = 0,
    kGenericRGB = 1,
    kGenericGray = 2,
    kGenericCMYK = 3,
    kDeviceRGB = 4,
    kDeviceGray = 5,
    kDeviceCMYK = 6,
    kSRGB = 7,
    kAdobeRGB = 8,
    kGenericGrayGamma22 = 9,
    kDisplayP3 = 12,
    kDCIP3 = 13,
    kExtendedSRGB = 14,
    kExtendedGray = 15,
    kLinearSRGB = 16,
    kExtendedLinearSRGB = 17,
    /// Described by a profile only.
    kProfile = 255
  };
  enum class Model : uint8_t { kGray = 0, kRGB = 1, kCMYK = 2, kUnknown = 255 };

  NSColorSpace() = default;
  explicit NSColorSpace(ID id) : id_(id) {}

  static const std::shared_ptr<NSColorSpace>& sRGBColorSpace();
  static const std::shared_ptr<NSColorSpace>& genericGamma22GrayColorSpace();

  ID identifier() const { return id_; }
  Model colorSpaceModel() const;
  /// Without alpha; 0 when the model is not known.
  size_t numberOfColorComponents() const;

  /// The colour in sRGB, clipped to 0...1. Nothing when the number of components is not the
  /// space's, the space is not known, or its profile is malformed.
  std::optional<SRGBColor> sRGBFromComponents(std::span<const double> components) const;

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  ID id_ = ID::kUnknown;
  std::shared_ptr<const ColorProfile> profile_;
};

/// The curve of sRGB: light to number and back (IEC 61966-2-1). Inputs of 0 to 1.
double sRGBCurve(double light);
double sRGBInverseCurve(double value);
