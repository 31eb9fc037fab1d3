#include "support/Bitmaps.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

std::shared_ptr<NSBitmapImageRep> makeBitmap(int64_t width, int64_t height,
                                             const std::function<Pixel(int64_t, int64_t)>& pixel) {
  auto bitmap = NSBitmapImageRep::create(width, height);
  uint8_t* out = bitmap->writableRows(0, height);
  for (int64_t y = 0; y < height; ++y) {
    for (int64_t x = 0; x < width; ++x, out += 4) {
      const Pixel p = pixel(x, y);
      std::copy(p.begin(), p.end(), out);
    }
  }
  return bitmap;
}

std::shared_ptr<NSBitmapImageRep> randomBitmap(int64_t width, int64_t height, unsigned seed) {
  std::mt19937 random(seed);
  return makeBitmap(width, height, [&](int64_t, int64_t) {
    const unsigned alpha = random() % 256;
    const auto colour = [&] { return static_cast<uint8_t>(random() % (alpha + 1)); };
    return Pixel{colour(), colour(), colour(), static_cast<uint8_t>(alpha)};
  });
}

Pixel pixelAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  Pixel p;
  std::memcpy(p.data(), bitmap.row(y) + x * 4, p.size());
  return p;
}

int maxDifference(const NSBitmapImageRep& a, const NSBitmapImageRep& b) {
  if (a.pixelsWide() != b.pixelsWide() || a.pixelsHigh() != b.pixelsHigh()) return 256;
  int result = 0;
  const size_t count = a.bytesPerRow() * static_cast<size_t>(a.pixelsHigh());
  for (size_t i = 0; i < count; ++i) {
    result = std::max(result, std::abs(a.bitmapData()[i] - b.bitmapData()[i]));
  }
  return result;
}
