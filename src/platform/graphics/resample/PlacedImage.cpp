#include "platform/graphics/resample/PlacedImage.h"

#include <cmath>
#include <utility>

#include "platform/graphics/pixels/paint/ImageSource.h"
#include "platform/graphics/resample/ResampledImageSource.h"

namespace {

bool isFinite(const CGAffineTransform& t) {
  return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
         std::isfinite(t.tx) && std::isfinite(t.ty);
}

/// True when rows of the image become rows of the device, up to rounding noise.
bool isUpright(const CGAffineTransform& t) {
  constexpr CGFloat kNoise = 1e-9;
  return std::fabs(t.b) <= kNoise * std::fabs(t.a) && std::fabs(t.c) <= kNoise * std::fabs(t.d);
}

ImagePart pixelsHolding(const NSRect& part) {
  return {static_cast<int32_t>(std::floor(NSMinX(part))),
          static_cast<int32_t>(std::floor(NSMinY(part))),
          static_cast<int32_t>(std::ceil(NSMaxX(part))),
          static_cast<int32_t>(std::ceil(NSMaxY(part)))};
}

/// A bitmap made for drawing another one, sampled as it is laid on the device.
class ReducedImageSource final : public RowSource {
 public:
  ReducedImageSource(std::shared_ptr<const NSBitmapImageRep> image, const ImagePlacement& placement)
      : image_(std::move(image)),
        pixels_(image_->pixels(), pixelsHolding(placement.part),
                CGAffineTransformInvert(placement.toDevice), SamplingFilter::fourTap) {}
  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override {
    return pixels_.row(x, y, n, buffer);
  }

 private:
  std::shared_ptr<const NSBitmapImageRep> image_;
  TransformedImageSource pixels_;
};

/// For pictures that are turned: the part reduced to about the size at which it will be seen, so
/// that sampling single pixels of it is good enough. Null when it is not seen reduced.
std::unique_ptr<RowSource> reducedSource(const NSBitmapImageRep& image,
                                         const ImagePlacement& placement) {
  const CGAffineTransform& t = placement.toDevice;
  const NSSize size = placement.part.size;
  const CGFloat width = std::ceil(size.width * std::min(1.0, std::hypot(t.a, t.b)));
  const CGFloat height = std::ceil(size.height * std::min(1.0, std::hypot(t.c, t.d)));
  if (width >= size.width && height >= size.height) return nullptr;
  const auto smaller = resampledPart(image, placement.part, static_cast<int64_t>(width),
                                     static_cast<int64_t>(height));
  if (smaller == nullptr) return nullptr;
  const NSRect all{{}, smaller->size()};
  const CGAffineTransform toPart{
      size.width / NSWidth(all), 0, 0, size.height / NSHeight(all), NSMinX(placement.part),
      NSMinY(placement.part)};
  return std::make_unique<ReducedImageSource>(
      smaller, ImagePlacement{all, CGAffineTransformConcat(toPart, t)});
}

std::unique_ptr<RowSource> sampledSource(const NSBitmapImageRep& image,
                                         const ImagePlacement& placement, ImageQuality quality) {
  if (quality == ImageQuality::filtered) {
    if (auto reduced = reducedSource(image, placement)) return reduced;
  }
  constexpr SamplingFilter kFilters[] = {SamplingFilter::nearest, SamplingFilter::bilinear,
                                         SamplingFilter::fourTap};
  return std::make_unique<TransformedImageSource>(image.pixels(), pixelsHolding(placement.part),
                                                  CGAffineTransformInvert(placement.toDevice),
                                                  kFilters[static_cast<size_t>(quality)]);
}

}  // namespace

PlacedImage placeImage(const NSBitmapImageRep& image, const ImagePlacement& placement,
                       ImageQuality quality, const PixelBox& visible) {
  const CGAffineTransform& t = placement.toDevice;
  const CGAffineTransform fromDevice = CGAffineTransformInvert(t);
  if (CGAffineTransformDeterminant(t) == 0 || !isFinite(t) || !isFinite(fromDevice)) return {};
  if (visible.empty()) return {};
  int32_t dx = 0;
  int32_t dy = 0;
  if (movesWholePixels(fromDevice, &dx, &dy)) {
    const RowRange used = image.usedRows();
    return {std::make_unique<MovedImageSource>(image.pixels(), dx, dy),
            {used.first - dy, used.end - dy}};
  }
  if (quality == ImageQuality::filtered && isUpright(t)) {
    const ResampleMapping mapping{placement.part, CGRectApplyAffineTransform(placement.part, t),
                                  t.a < 0, t.d < 0};
    auto source = std::make_unique<ResampledImageSource>(image, mapping, visible);
    const RowRange rows = source->paintedRows();
    return {std::move(source), rows};
  }
  return {sampledSource(image, placement, quality), {visible.y0, visible.y1}};
}
