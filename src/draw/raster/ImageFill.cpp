#include "draw/raster/ImageFill.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "draw/raster/FillKernels.h"
#include "draw/raster/ImageMask.h"
#include "draw/raster/RegionBorder.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "platform/graphics/pixels/paint/MaskKernels.h"

namespace {

constexpr uint8_t kInRegion = 2;

/// Of the inclusive range [first, last].
size_t lengthOf(int32_t first, int32_t last) {
  return static_cast<size_t>(last) - static_cast<size_t>(first) + 1;
}

}  // namespace

std::shared_ptr<ImageFill> ImageFill::initWithImage(std::shared_ptr<NSBitmapImageRep> image,
                                                    NSPoint point) {
  if (image == nullptr) return nullptr;
  const CGFloat x = std::round(point.x), y = std::round(point.y);
  if (!(x >= 0 && x < image->size().width && y >= 0 && y < image->size().height)) return nullptr;
  auto fill = std::make_shared<ImageFill>();
  fill->imgSrc_ = std::move(image);
  fill->w_ = static_cast<int32_t>(fill->imgSrc_->pixelsWide());
  fill->h_ = static_cast<int32_t>(fill->imgSrc_->pixelsHigh());
  fill->xStart_ = static_cast<int32_t>(x);
  fill->yStart_ = fill->h_ - 1 - static_cast<int32_t>(y);
  fill->measureTolerances();
  return fill;
}

void ImageFill::measureTolerances() {
  tolerance_ = std::make_unique_for_overwrite<uint8_t[]>(pixelCount());
  const auto* pixels = reinterpret_cast<const uint32_t*>(imgSrc_->bitmapData());
  maxTolerance_ =
      colorDistances(tolerance_.get(), pixels, pixelCount(), pixels[indexOf(xStart_, yStart_)]);
}

void ImageFill::setFillColor(const NSColor* color) {
  const uint32_t pixel = fillPixel(color);
  if (pixel == fillColorPixel()) return;
  paintRegion();
  rFill_ = static_cast<uint8_t>(pixel);
  gFill_ = static_cast<uint8_t>(pixel >> 8);
  bFill_ = static_cast<uint8_t>(pixel >> 16);
  aFill_ = static_cast<uint8_t>(pixel >> 24);
}

uint32_t ImageFill::fillColorPixel() const {
  return rFill_ | static_cast<uint32_t>(gFill_) << 8 | static_cast<uint32_t>(bFill_) << 16 |
         static_cast<uint32_t>(aFill_) << 24;
}

bool ImageFill::seedHasFillColor() const {
  const uint8_t fill[] = {rFill_, gFill_, bFill_, aFill_};
  return std::memcmp(imgSrc_->row(yStart_) + size_t{4} * static_cast<size_t>(xStart_), fill, 4) ==
         0;
}

void ImageFill::fillWithTolerance(uint32_t tolerance) {
  tolerance = std::min(tolerance, 255U);
  if (tolerance == toleranceSearch_) return;
  if (toleranceSearch_ < tolerance && bFillAll_) {
    toleranceSearch_ = tolerance;
    return;
  }
  if (search_ == nullptr) search_ = std::make_unique_for_overwrite<uint8_t[]>(pixelCount());
  // A smaller region starts anew; a larger one is painted over the old.
  if (imgDst_ != nullptr && toleranceSearch_ > tolerance) imgDst_->clear();
  bPainted_ = false;
  bFillNeeded_ = !seedHasFillColor();
  toleranceSearch_ = tolerance;
  if (maxTolerance_ <= tolerance) return fillAll();
  markBeyond(search_.get(), tolerance_.get(), pixelCount(), static_cast<uint8_t>(tolerance));
  searchPoints();
}

void ImageFill::fillAll() {
  std::memset(search_.get(), kInRegion, pixelCount());
  x1_ = y1_ = 0;
  x2_ = w_ - 1;
  y2_ = h_ - 1;
  bFillAll_ = true;
  bFillNeeded_ = maxTolerance_ != 0;
}

void ImageFill::searchPoints() {
  // Some pixel lies beyond the tolerance, so the region ends somewhere.
  bFillAll_ = false;
  x1_ = x2_ = xStart_;
  y1_ = y2_ = yStart_;
  // As if reached from below, where nothing was taken.
  searchRow({xStart_, xStart_, yStart_ + 1, -1, 0, 0}, -1, xStart_, xStart_ + 1);
  // By generations, which keeps to neighbouring rows and the list of spans short.
  for (std::vector<Span> generation; !reached_.empty(); generation.clear()) {
    generation.swap(reached_);
    for (const Span& span : generation) {
      searchRow(span, span.dy, span.x0, span.x1);
      // Back where the search came from only what lies to the left and right of that is new.
      searchRow(span, -span.dy, span.x0, std::min(span.from0, span.x1));
      searchRow(span, -span.dy, std::max(span.from1, span.x0), span.x1);
    }
  }
  if (!bFillNeeded_) bFillNeeded_ = regionDiffersFromSeed();
}

const std::shared_ptr<NSBitmapImageRep>& ImageFill::fillImage() {
  paintRegion();
  return imgDst_;
}

void ImageFill::paintRegion() {
  if (bPainted_) return;
  if (imgDst_ == nullptr) imgDst_ = NSBitmapImageRep::create(w_, h_);
  bPainted_ = true;
  const size_t width = lengthOf(x1_, x2_);
  std::vector<uint8_t> mask(width);
  for (int32_t y = y1_; y <= y2_; ++y) {
    selectMarks(mask.data(), search_.get() + indexOf(x1_, y), width, kInRegion);
    auto* row = reinterpret_cast<uint32_t*>(imgDst_->writableRows(y, y + 1));
    fillMasked(row + x1_, mask.data(), width, fillColorPixel());
  }
}

/// Takes the stretches of the row next to a span, in the direction `dy`, that can be reached from
/// its pixels [x0, x1).
void ImageFill::searchRow(const Span& from, int32_t dy, int32_t x0, int32_t x1) {
  const int32_t y = from.y + dy;
  if (y < 0 || y >= h_ || x0 >= x1) return;
  const uint8_t* row = search_.get() + indexOf(0, y);
  const uint8_t* end = row + x1;
  for (const uint8_t* p = firstZero(row + x0, end); p < end; p = firstZero(p, end)) {
    const uint8_t* start = p == row + x0 ? startOfZeros(row, p) : p;
    p = firstNonZero(p, row + w_);
    takeSpan({static_cast<int32_t>(start - row), static_cast<int32_t>(p - row), y, dy, from.x0,
              from.x1});
  }
}

void ImageFill::takeSpan(const Span& span) {
  const auto length = static_cast<size_t>(span.x1 - span.x0);
  std::memset(search_.get() + indexOf(span.x0, span.y), kInRegion, length);
  x1_ = std::min(x1_, span.x0);
  x2_ = std::max(x2_, span.x1 - 1);
  y1_ = std::min(y1_, span.y);
  y2_ = std::max(y2_, span.y);
  reached_.push_back(span);
}

bool ImageFill::regionDiffersFromSeed() const {
  for (size_t i = indexOf(0, y1_); i < indexOf(0, y2_ + 1); ++i) {
    if (search_[i] == kInRegion && tolerance_[i] != 0) return true;
  }
  return false;
}

std::shared_ptr<ImageMask> ImageFill::imageMask() const {
  if (!hasRegion()) return nullptr;
  const size_t width = lengthOf(x1_, x2_), height = lengthOf(y1_, y2_);
  std::vector<uint8_t> data(width * height);
  for (size_t y = 0; y < height; ++y) {
    const uint8_t* row = search_.get() + indexOf(x1_, y1_ + static_cast<int32_t>(y));
    selectMarks(data.data() + y * width, row, width, kInRegion);
  }
  return ImageMask::initWithData(std::move(data), x1_, h_ - 1 - y2_, x2_ - x1_ + 1, y2_ - y1_ + 1);
}

std::shared_ptr<ImageMask> ImageFill::invertedImageMask() const {
  std::vector<uint8_t> data(pixelCount(), 1);
  if (hasRegion()) {
    for (size_t i = 0; i < data.size(); ++i) data[i] = search_[i] != kInRegion;
  }
  return ImageMask::initWithData(std::move(data), 0, 0, w_, h_);
}

NSRect ImageFill::fillRect() const {
  if (!hasRegion()) return NSZeroRect;
  return NSMakeRect(x1_, h_ - 1 - y2_, x2_ - x1_ + 1, y2_ - y1_ + 1);
}

std::shared_ptr<NSBezierPath> ImageFill::fillBorder() const {
  if (bFillAll_) return NSBezierPath::bezierPathWithRect(fillRect());
  const auto mask = imageMask();
  return mask != nullptr ? regionBorder(*mask) : NSBezierPath::bezierPath();
}

NSPoint ImageFill::startPoint() const {
  return NSMakePoint(xStart_, h_ - 1 - yStart_);
}

bool ImageFill::isPointFilled(NSPoint point) const {
  if (!hasRegion()) return false;
  if (!(point.x >= 0 && point.x < w_ && point.y >= 0 && point.y < h_)) return false;
  const auto x = static_cast<int32_t>(point.x), y = static_cast<int32_t>(point.y);
  return search_[indexOf(x, h_ - 1 - y)] == kInRegion;
}
