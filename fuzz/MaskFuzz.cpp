// Masks with any sizes, places and bytes: those of an archived fill, or, when the bytes are no
// archive, one built from them. Writing into a bitmap must change just the pixels under the mask;
// what was decoded must survive being written and read again.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "document/DocumentClasses.h"
#include "draw/raster/DrawFill.h"
#include "draw/raster/ImageMask.h"
#include "draw/raster/RegionBorder.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

constexpr int64_t kWidth = 64;
constexpr int64_t kHeight = 48;

void require(bool condition) {
  if (!condition) std::abort();
}

/// Small numbers mostly; some that are not.
int64_t number(const uint8_t*& data, const uint8_t* end) {
  constexpr int64_t kOdd[] = {INT64_MIN,        INT64_MAX, INT64_MAX / 2,   -1,
                              int64_t{1} << 32, 0,         int64_t{1} << 62};
  if (data == end) return 0;
  const uint8_t byte = *data++;
  return byte >= 240 && byte < 240 + std::size(kOdd) ? kOdd[byte - 240] : byte - 30;
}

std::shared_ptr<ImageMask> builtMask(const uint8_t* data, const uint8_t* end) {
  const int64_t width = number(data, end), height = number(data, end);
  const int64_t x = number(data, end), y = number(data, end);
  const int64_t repeats = number(data, end);
  std::vector<uint8_t> bytes(data, end);
  // Few bytes may stand for many, so that masks reach beyond the bitmap.
  for (int64_t i = 0; i < repeats && bytes.size() < 20000; ++i) {
    bytes.insert(bytes.end(), data, end);
  }
  return ImageMask::initWithData(std::move(bytes), x, y, width, height);
}

void checkWriting(const ImageMask& mask) {
  const auto bitmap = NSBitmapImageRep::create(kWidth, kHeight);
  mask.fillImage(bitmap.get(), NSColor::redColor().get());
  for (int64_t y = 0; y < kHeight; ++y) {
    for (int64_t x = 0; x < kWidth; ++x) {
      uint32_t pixel = 0;
      std::memcpy(&pixel, bitmap->row(kHeight - 1 - y) + x * 4, 4);
      const bool isIn = mask.fillAtPoint({static_cast<CGFloat>(x), static_cast<CGFloat>(y)});
      require(pixel == (isIn ? 0xff0000ff : 0));
    }
  }
  const auto part = mask.scissorImage(bitmap.get());
  require(part == nullptr || (part->pixelsWide() <= kWidth && part->pixelsHigh() <= kHeight));
}

void checkShapes(const ImageMask& mask) {
  bool isPathOfLines = false;
  const auto path = mask.bezierPathForFill(&isPathOfLines);
  require(path == nullptr || path->elementCount() <= 5000);
  regionBorder(mask);
  for (const double factor : {0.3, 1.7}) {
    const auto scaled = mask.imageMaskScaledByX(factor, 1 / factor);
    require(scaled == nullptr ||
            scaled->width() * scaled->height() == static_cast<int64_t>(scaled->maskData().size()));
  }
  mask.imageMaskRotatedByDegree(33);
}

void checkDrawing(DrawFill& fill) {
  const auto bitmap = NSBitmapImageRep::create(kWidth, kHeight);
  const ZTFocusScope focus(bitmap);
  fill.drawInImage(bitmap.get());
  fill.draw();
  fill.flip(true);
  fill.moveByX(3, -2.5);
  fill.setRotateDegree(fill.rotateDegree() + 20);
  fill.draw();
}

std::shared_ptr<NSObject> decoded(const uint8_t* data, size_t size) {
  try {
    return NSKeyedUnarchiver::unarchiveObjectWithData(NSData::dataWithBytes({data, size}));
  } catch (const NSException&) {
    return nullptr;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  registerDocumentClasses();
  const bool isArchive = size >= 6 && std::memcmp(data, "bplist", 6) == 0;
  std::shared_ptr<ImageMask> mask;
  std::shared_ptr<DrawFill> fill;
  if (isArchive) {
    const auto object = decoded(data, size);
    fill = std::dynamic_pointer_cast<DrawFill>(object);
    mask = fill ? fill->mask() : std::dynamic_pointer_cast<ImageMask>(object);
  } else {
    mask = builtMask(data, data + size);
  }
  if (mask != nullptr) {
    checkWriting(*mask);
    checkShapes(*mask);
  }
  if (fill == nullptr) fill = DrawFill::initWithImageMask(mask);
  if (fill == nullptr) return 0;
  fill->setFillColor(NSColor::redColor());
  const auto again = std::dynamic_pointer_cast<DrawFill>(
      DrawBase::drawFromEncodedData(DrawBase::encodedData(fill)));
  require(again != nullptr);
  checkDrawing(*again);
  return 0;
}
