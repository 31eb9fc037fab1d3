#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>

class ColorTransform;
class NSData;

/// Red, green and blue of the sRGB space, 0 to 1, encoded with its curve.
using SRGBColor = std::array<double, 3>;

/// An ICC profile that single colours are converted from. The colour management library is loaded
/// when the first one is.
class ColorProfile {
 public:
  enum class Model : uint8_t { kGray, kRGB, kCMYK, kOther };

  explicit ColorProfile(std::shared_ptr<const NSData> icc);
  ~ColorProfile();
  ColorProfile(const ColorProfile&) = delete;
  ColorProfile& operator=(const ColorProfile&) = delete;

  /// What the profile's header says; kOther for anything that is not converted here.
  Model model() const { return model_; }
  const std::shared_ptr<const NSData>& icc() const { return icc_; }

  /// The colour in sRGB (relative colorimetric, black point compensated, clipped to 0...1), for
  /// components of 0 to 1; nothing when the profile is malformed or has another number of them.
  /// Safe to call from several threads.
  std::optional<SRGBColor> sRGBFromComponents(std::span<const double> components) const;

 private:
  std::shared_ptr<const NSData> icc_;
  Model model_;
  mutable std::once_flag opened_;
  mutable std::unique_ptr<ColorTransform> transform_;
};
