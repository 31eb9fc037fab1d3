#include "platform/graphics/codecs/DecodedPicture.h"

#include <new>
#include <utility>
#include <vector>

#include "platform/graphics/codecs/ExifOrientation.h"
#include "platform/graphics/codecs/PictureCache.h"
#include "platform/graphics/codecs/PixelConversion.h"
#include "platform/graphics/pixels/PixelMoves.h"

namespace {

/// How a picture stored with an orientation is set upright (TIFF 6.0, Orientation).
PixelMove uprighting(int orientation) {
  constexpr PixelMove kMoves[] = {{false, false, false}, {false, true, false},
                                  {false, true, true},   {false, false, true},
                                  {true, false, false},  kQuarterTurnClockwise,
                                  {true, true, true},    kQuarterTurnCounterclockwise};
  return orientation >= 1 && orientation <= 8 ? kMoves[orientation - 1] : kMoves[0];
}

/// What a profile was found to mean; no conversion for one that changes nothing.
struct KnownProfile {
  std::vector<uint8_t> bytes;
  std::shared_ptr<const ProfileConversion> conversion;
};

/// Making a conversion costs as much as a picture of some 100,000 pixels: those of a document are
/// remembered.
std::shared_ptr<const ProfileConversion> conversionFor(const PictureInfo& info) {
  if (info.profile.empty()) return nullptr;
  PictureCache* const cache = PictureCache::current();
  PictureKey key{
      PictureKey::Kind::profile, {static_cast<int64_t>(info.model)}, info.profile, nullptr};
  const auto known = cache == nullptr ? nullptr : cache->find(key);
  if (known != nullptr) return std::static_pointer_cast<const KnownProfile>(known)->conversion;
  std::shared_ptr<const ProfileConversion> conversion =
      ProfileConversion::create(info.profile, info.model);
  if (cache == nullptr) return conversion;
  // The bytes of the key go with the picture.
  const auto made = std::make_shared<KnownProfile>(
      KnownProfile{{info.profile.begin(), info.profile.end()}, conversion});
  key.bytes = made->bytes;
  key.owner = made;
  cache->add(key, made, made->bytes.size() + ProfileConversion::kBytes, PictureCache::Keep::always);
  return conversion;
}

}  // namespace

uint8_t* DecodedPicture::begin(const PictureInfo& info) {
  if (info.width <= 0 || info.height <= 0) return nullptr;
  isTooLarge_ = !PixelBuffer::canHold(info.width, info.height);
  if (isTooLarge_) return nullptr;
  try {
    pixels_.emplace(info.width, info.height);
    conversion_ = conversionFor(info);
  } catch (const std::bad_alloc&) {
    // Codecs may stand on C code, which nothing may be thrown through.
    lacksMemory_ = true;
    return nullptr;
  }
  layout_ = info.layout;
  orientation_ = info.exif.empty() ? info.orientation : exifOrientation(info.exif);
  pixels_->setHasAlpha(layout_ == PixelLayout::straightRGBA ||
                       layout_ == PixelLayout::premultipliedRGBA ||
                       layout_ == PixelLayout::cmykAlpha);
  return pixels_->writableRows(0, 0);
}

void DecodedPicture::finish(int64_t first, int64_t end) {
  uint8_t* const rows = pixels_->writableRows(first, end);
  const auto width = static_cast<size_t>(pixels_->width());
  for (int64_t y = first; y < end; ++y) {
    uint8_t* const row = rows + static_cast<size_t>(y - first) * width * 4;
    if (layout_ == PixelLayout::premultipliedRGBA && conversion_ != nullptr) {
      unpremultiplyRow(row, row, width);
    }
    if (conversion_ != nullptr) {
      conversion_->convert(row, width);
    } else if (layout_ == PixelLayout::cmyk || layout_ == PixelLayout::cmykAlpha) {
      inksToOpaqueRow(row, row, width);
    }
    if (layout_ == PixelLayout::straightRGBA ||
        (layout_ == PixelLayout::premultipliedRGBA && conversion_ != nullptr)) {
      premultiplyRow(row, row, width);
    }
  }
}

void DecodedPicture::finishInks(int64_t first, int64_t end, const uint8_t* alpha) {
  finish(first, end);
  uint8_t* const rows = pixels_->writableRows(first, end);
  const size_t count = static_cast<size_t>(end - first) * static_cast<size_t>(pixels_->width());
  for (size_t i = 0; i < count; ++i) rows[i * 4 + 3] = alpha[i];
  premultiplyRow(rows, rows, count);
}

std::optional<PixelBuffer> DecodedPicture::take() {
  if (lacksMemory_) throw std::bad_alloc();
  if (!pixels_ || pixels_->usedRows().empty()) return std::nullopt;
  if (orientation_ <= 1 || orientation_ > 8) return std::move(pixels_);
  return movedPixels(*std::exchange(pixels_, std::nullopt), uprighting(orientation_));
}
