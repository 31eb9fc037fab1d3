#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/NSObject.h"
#include "platform/graphics/color/NSColorSpace.h"

/// A colour that never changes: sRGB numbers and alpha, each 0 to 1, not premultiplied. Components
/// outside that range are clipped when a colour is made, NaN becomes 0.
class NSColor : public NSObject {
 public:
  static const NSClass kClass;

  /// The space that the colour is written in again. Colours of other spaces (inks, profiles, wide
  /// gamuts) are converted when they are made or decoded.
  enum class Space : uint8_t {
    kCalibratedRGB,
    kDeviceRGB,
    kSRGB,
    kCalibratedWhite,
    kDeviceWhite,
    kGamma22White,
    kPattern
  };

  /// Black.
  NSColor() = default;

  static std::shared_ptr<NSColor> colorWithCalibratedRed(double red, double green, double blue,
                                                         double alpha);
  static std::shared_ptr<NSColor> colorWithDeviceRed(double red, double green, double blue,
                                                     double alpha);
  static std::shared_ptr<NSColor> colorWithSRGBRed(double red, double green, double blue,
                                                   double alpha);
  /// In the sRGB space.
  static std::shared_ptr<NSColor> colorWithRed(double red, double green, double blue,
                                               double alpha) {
    return colorWithSRGBRed(red, green, blue, alpha);
  }
  static std::shared_ptr<NSColor> colorWithCalibratedWhite(double white, double alpha);
  static std::shared_ptr<NSColor> colorWithDeviceWhite(double white, double alpha);
  static std::shared_ptr<NSColor> colorWithDeviceCyan(double cyan, double magenta, double yellow,
                                                      double black, double alpha);
  /// A colour that stands for a repeated picture; its components are black.
  static std::shared_ptr<NSColor> colorWithPatternImage(std::shared_ptr<NSObject> image);

  // Calibrated whites 0, 0.5 and 1; clearColor is black with alpha 0.
  static const std::shared_ptr<NSColor>& blackColor();
  static const std::shared_ptr<NSColor>& grayColor();
  static const std::shared_ptr<NSColor>& whiteColor();
  static const std::shared_ptr<NSColor>& clearColor();
  // Calibrated primaries.
  static const std::shared_ptr<NSColor>& redColor();
  static const std::shared_ptr<NSColor>& greenColor();
  static const std::shared_ptr<NSColor>& blueColor();

  double redComponent() const { return red_; }
  double greenComponent() const { return green_; }
  double blueComponent() const { return blue_; }
  double alphaComponent() const { return alpha_; }
  /// Made as a grey: red, green and blue are its white.
  bool isGray() const;
  Space space() const { return space_; }
  /// The picture of a pattern colour, else null.
  const std::shared_ptr<NSObject>& patternImage() const { return pattern_; }

  std::shared_ptr<NSColor> colorWithAlphaComponent(double alpha) const;

  // Make the colour the current graphics context's paint: for fills and strokes, or one of them.
  void set() const;
  void setFill() const;
  void setStroke() const;

  const NSClass& classInfo() const override { return kClass; }
  /// The same numbers in the same space.
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  /// Never nil: what cannot be understood is black.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  NSColor(Space space, const SRGBColor& color, double alpha);
  static std::shared_ptr<NSColor> make(Space space, const SRGBColor& color, double alpha);
  void decodeCatalogColor(NSCoder& coder);
  bool decodeComponents(NSCoder& coder, const NSColorSpace& space);
  void decodeOlderText(NSCoder& coder, int64_t code, const NSColorSpace* custom);
  void encodeRGB(NSCoder& coder) const;
  void encodeWhite(NSCoder& coder) const;

  Space space_ = Space::kCalibratedWhite;
  double red_ = 0;
  double green_ = 0;
  double blue_ = 0;
  double alpha_ = 1;
  std::shared_ptr<NSObject> pattern_;
};
