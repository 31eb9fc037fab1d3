#include "draw/raster/ImageMask.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "platform/foundation/Convert.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/PaintComponents.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "platform/graphics/pixels/paint/MaskKernels.h"

const NSClass ImageMask::kClass{"ImageMask", &NSObject::kClass, NSAllocate<ImageMask>};

namespace {

constexpr const char* kMask = "Mask";
constexpr const char* kXStart = "XStart";
constexpr const char* kYStart = "YStart";
constexpr const char* kWidth = "Width";
constexpr const char* kHeight = "Height";

/// Far outside every bitmap, and far from where adding sizes to positions would overflow.
constexpr int64_t kFarAway = std::numeric_limits<int64_t>::max() / 4;

int64_t position(CGFloat v) {
  return clampToInteger<int64_t>(std::floor(v));
}

uint32_t* pixelsOf(uint8_t* bytes) {
  return reinterpret_cast<uint32_t*>(bytes);
}

}  // namespace

uint32_t fillPixel(const NSColor* color) {
  if (color == nullptr) return 0;
  const RGBAColor c = paintComponents(*color);
  return unitToByte(c.red) | unitToByte(c.green) << 8 | unitToByte(c.blue) << 16 |
         unitToByte(c.alpha) << 24;
}

bool ImageMask::setContents(std::vector<uint8_t> data, int64_t width, int64_t height) {
  if (width <= 0 || height <= 0) return false;
  const auto bytes = static_cast<int64_t>(data.size());
  if (width > bytes / height) return false;
  w_ = width;
  h_ = height;
  data.resize(static_cast<size_t>(width * height));
  mask_ = std::move(data);
  return true;
}

std::shared_ptr<ImageMask> ImageMask::initWithData(std::vector<uint8_t> data, int64_t xStart,
                                                   int64_t yStart, int64_t width, int64_t height) {
  auto mask = std::make_shared<ImageMask>();
  if (!mask->setContents(std::move(data), width, height)) return nullptr;
  mask->xStart_ = xStart;
  mask->yStart_ = yStart;
  return mask;
}

NSRect ImageMask::maskRect() const {
  return NSMakeRect(static_cast<CGFloat>(xStart_), static_cast<CGFloat>(yStart_),
                    static_cast<CGFloat>(w_), static_cast<CGFloat>(h_));
}

void ImageMask::setMaskStartPoint(NSPoint start) {
  xStart_ = position(static_cast<float>(start.x));
  yStart_ = position(static_cast<float>(start.y));
}

ImageMask::Overlap ImageMask::overlapWith(const NSSize& image, int64_t xStart,
                                          int64_t yStart) const {
  const auto width = static_cast<int64_t>(image.width);
  const auto height = static_cast<int64_t>(image.height);
  const int64_t left = std::clamp(xStart, -kFarAway, kFarAway);
  const int64_t top = height - std::clamp(yStart, -kFarAway, kFarAway) - h_;
  Overlap o;
  o.imageX = std::max<int64_t>(0, left);
  o.imageRow = std::max<int64_t>(0, top);
  o.maskX = o.imageX - left;
  o.maskRow = o.imageRow - top;
  o.width = std::min(width, left + w_) - o.imageX;
  o.height = std::min(height, top + h_) - o.imageRow;
  return o;
}

void ImageMask::fillPixels(NSBitmapImageRep& image, uint32_t pixel, int64_t xStart,
                           int64_t yStart) const {
  const Overlap o = overlapWith(image.size(), xStart, yStart);
  if (o.empty()) return;
  uint8_t* out = image.writableRows(o.imageRow, o.imageRow + o.height) + o.imageX * 4;
  fillMaskedRows(pixelsOf(out), image.pixelsWide(), row(o.maskRow) + o.maskX, w_, o.width, o.height,
                 pixel);
}

void ImageMask::fillImage(NSBitmapImageRep* image, const NSColor* withColor) const {
  if (image != nullptr) fillPixels(*image, fillPixel(withColor), xStart_, yStart_);
}

void ImageMask::fillImage(NSBitmapImageRep* image, const NSColor* withColor,
                          NSPoint atStartPoint) const {
  if (image == nullptr) return;
  fillPixels(*image, fillPixel(withColor), position(atStartPoint.x), position(atStartPoint.y));
}

void ImageMask::fillCanvas(const NSColor* withColor) const {
  const auto& context = NSGraphicsContext::currentContext();
  if (context == nullptr) return;
  const Overlap o = overlapWith(context->graphicsPort()->canvasSize(), xStart_, yStart_);
  if (o.empty()) return;
  const PixelBox box{static_cast<int32_t>(o.imageX), static_cast<int32_t>(o.imageRow),
                     static_cast<int32_t>(o.imageX + o.width),
                     static_cast<int32_t>(o.imageRow + o.height)};
  context->graphicsPort()->replacePixels({row(o.maskRow) + o.maskX, w_, box}, fillPixel(withColor));
}

std::shared_ptr<NSBitmapImageRep> ImageMask::renderImageWithColor(const NSColor* color) const {
  std::shared_ptr<NSBitmapImageRep> image;
  if (InitImageRep(maskRect().size, &image)) fillPixels(*image, fillPixel(color), 0, 0);
  return image;
}

std::shared_ptr<NSBitmapImageRep> ImageMask::scissorImage(const NSBitmapImageRep* image) const {
  if (image == nullptr) return nullptr;
  const Overlap o = overlapWith(image->size(), xStart_, yStart_);
  if (o.empty()) return nullptr;
  auto result = NSBitmapImageRep::create(o.width, o.height);
  if (result == nullptr) return nullptr;
  for (int64_t y = 0; y < o.height; ++y) {
    const uint8_t* source = image->row(o.imageRow + y) + o.imageX * 4;
    copyMasked(pixelsOf(result->writableRows(y, y + 1)), reinterpret_cast<const uint32_t*>(source),
               row(o.maskRow + y) + o.maskX, static_cast<size_t>(o.width));
  }
  return result;
}

bool ImageMask::initWithCoder(NSCoder& coder) {
  const auto bytes = coder.decodeBytesForKey(kMask);
  const int64_t width = coder.decodeIntegerForKey(kWidth);
  const int64_t height = coder.decodeIntegerForKey(kHeight);
  xStart_ = coder.decodeIntegerForKey(kXStart);
  yStart_ = coder.decodeIntegerForKey(kYStart);
  return setContents({bytes.begin(), bytes.end()}, width, height);
}

void ImageMask::encodeWithCoder(NSCoder& coder) const {
  coder.encodeBytes(mask_, kMask);
  coder.encodeInteger(xStart_, kXStart);
  coder.encodeInteger(yStart_, kYStart);
  coder.encodeInteger(w_, kWidth);
  coder.encodeInteger(h_, kHeight);
}
