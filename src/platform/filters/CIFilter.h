#pragma once

#include <string_view>
#include <vector>

#include "platform/filters/CIImage.h"

class NSAffineTransform;
struct FilterDescription;

/// An image filter made by name, with inputs set by key. The filters known are listed in
/// FilterCatalogue.cpp with their keys, defaults and ranges.
class CIFilter {
 public:
  /// Null for an unknown name. All inputs have their defaults.
  static std::shared_ptr<CIFilter> filterWithName(std::string_view name);
  explicit CIFilter(const FilterDescription& description);

  void setDefaults();
  /// "inputImage" and the keys of the filter's own settings.
  std::vector<std::string_view> inputKeys() const;
  /// Sets an input: a CIImage for "inputImage", an NSAffineTransform for "inputTransform", a point
  /// for "inputCenter", a number for all others. Numbers are clamped to the input's range; an
  /// unknown key, a value of another class and NaN change nothing.
  void setValue(const std::shared_ptr<const NSObject>& value, std::string_view forKey);
  void setInputImage(std::shared_ptr<const CIImage> image) { image_ = std::move(image); }

  /// The filtered image; null without an input image.
  std::shared_ptr<const CIImage> outputImage() const;

 private:
  const FilterDescription& description_;
  std::shared_ptr<const CIImage> image_;
  std::vector<double> numbers_;
  NSPoint center_;
  CGAffineTransform transform_;
};
