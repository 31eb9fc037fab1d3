#include "support/FilterChart.h"

#include "platform/filters/CIFilter.h"
#include "platform/foundation/values/NSNumber.h"

namespace {

constexpr int64_t kWidth = 96;
constexpr int64_t kHeight = 64;
constexpr Pixel kPatches[] = {{64, 128, 192, 255}, {200, 30, 90, 255},  {255, 255, 0, 255},
                              {10, 5, 2, 255},     {0, 255, 255, 255},  {255, 0, 0, 255},
                              {30, 200, 80, 255},  {250, 240, 230, 255}};

Pixel chartPixel(int64_t x, int64_t y) {
  if (y < 12) {
    const auto grey = static_cast<uint8_t>(x * 255 / (kWidth - 1));
    return {grey, grey, grey, 255};
  }
  if (y < 24) return (x / 8 + y / 6) % 2 == 0 ? Pixel{0, 0, 0, 255} : Pixel{255, 255, 255, 255};
  if (y < 44) return kPatches[x / 12];
  const auto alpha = static_cast<unsigned>(x * 255 / (kWidth - 1));
  const Pixel patch = kPatches[(y - 44) / 5 + 1];
  Pixel p{0, 0, 0, static_cast<uint8_t>(alpha)};
  for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>((patch[c] * alpha + 127) / 255);
  return p;
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> filtered(const std::shared_ptr<NSBitmapImageRep>& bitmap,
                                           std::string_view name, FilterSettings settings,
                                           bool extended) {
  const auto filter = CIFilter::filterWithName(name);
  if (filter == nullptr) return nullptr;
  auto image = CIImage::initWithBitmapImageRep(bitmap);
  const NSRect extent = image->extent();
  filter->setInputImage(extended ? image->imageByClampingToExtent() : image);
  for (const auto& [key, value] : settings) {
    filter->setValue(NSNumber::numberWithDouble(value), key);
  }
  image = filter->outputImage();
  if (extended && image != nullptr) image = image->imageByCroppingToRect(extent);
  return image != nullptr ? image->bitmap() : nullptr;
}

std::shared_ptr<NSBitmapImageRep> filterChart() {
  return makeBitmap(kWidth, kHeight, chartPixel);
}

std::shared_ptr<NSBitmapImageRep> opaqueChart() {
  return makeBitmap(kWidth, 44, chartPixel);
}

std::shared_ptr<NSBitmapImageRep> plainBitmap(int64_t width, int64_t height, Pixel color) {
  return makeBitmap(width, height, [&](int64_t, int64_t) { return color; });
}
