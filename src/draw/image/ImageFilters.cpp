#include "draw/image/ImageFilters.h"

#include "platform/filters/CIFilter.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

using Bitmap = std::shared_ptr<NSBitmapImageRep>;
using Image = std::shared_ptr<const CIImage>;

/// Sets what the filter knows of the settings.
void applySettings(CIFilter& filter, const NSDictionary& settings) {
  for (const std::string_view key : filter.inputKeys()) {
    if (const auto value = settings.objectForKey(key)) filter.setValue(value, key);
  }
}

Image filteredImage(CIFilter& filter, const Image& image, ExtendEdges extendEdges,
                    const NSDictionary* settings) {
  const bool extends = extendEdges == ExtendEdges::yes;
  filter.setInputImage(extends ? image->imageByClampingToExtent() : image);
  if (settings != nullptr) applySettings(filter, *settings);
  Image output = filter.outputImage();
  if (output != nullptr && extends) output = output->imageByCroppingToRect(image->extent());
  return output;
}

std::shared_ptr<NSDictionary> oneSetting(std::string_view key, double value) {
  auto settings = std::make_shared<NSMutableDictionary>();
  settings->setObject(NSNumber::numberWithDouble(value), key);
  return settings;
}

}  // namespace

Bitmap ImageWithFilters(const Bitmap& image, std::span<const std::string_view> filterNames,
                        ExtendEdges extendEdges, const NSDictionary* settings) {
  Image result = CIImage::initWithBitmapImageRep(image);
  for (const std::string_view name : filterNames) {
    if (result == nullptr) return nullptr;
    if (const auto filter = CIFilter::filterWithName(name)) {
      result = filteredImage(*filter, result, extendEdges, settings);
    }
  }
  return result != nullptr ? result->bitmap() : nullptr;
}

Bitmap ImageWithFilter(const Bitmap& image, std::optional<std::string_view> filterName,
                       ExtendEdges extendEdges, const NSDictionary* settings) {
  if (image == nullptr || !filterName) return nullptr;
  if (CIFilter::filterWithName(*filterName) == nullptr) return image;
  return ImageWithFilters(image, {&*filterName, 1}, extendEdges, settings);
}

Bitmap ImageBlured(const Bitmap& image, float radius) {
  if (!(radius > 0)) return nullptr;
  const auto settings = oneSetting("inputRadius", static_cast<double>(radius));
  return ImageWithFilter(image, "CIGaussianBlur", ExtendEdges::yes, settings.get());
}

Bitmap ImageInvertedColors(const Bitmap& image) {
  return ImageWithFilter(image, "CIColorInvert", ExtendEdges::no, nullptr);
}

Bitmap ImageToBlackAndWhite(const Bitmap& image) {
  const auto settings = oneSetting("inputSaturation", 0);
  return ImageWithFilter(image, "CIColorControls", ExtendEdges::no, settings.get());
}

Bitmap ScissorImage(const Bitmap& image, const NSBezierPath& path) {
  Bitmap result;
  if (image == nullptr || !InitImageRep(image->size(), &result)) return nullptr;
  const ZTFocusScope focus(result);
  path.addClip();
  drawInRect(*image, {NSZeroPoint, image->size()});
  return result;
}
