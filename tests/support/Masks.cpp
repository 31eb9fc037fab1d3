#include "support/Masks.h"

#include <random>

std::shared_ptr<ImageMask> maskOf(const PixelRows& rows, int64_t xStart, int64_t yStart) {
  std::vector<uint8_t> data;
  for (const std::string& row : rows) {
    for (const char c : row) data.push_back(c == '#');
  }
  return ImageMask::initWithData(std::move(data), xStart, yStart,
                                 static_cast<int64_t>(rows.at(0).size()),
                                 static_cast<int64_t>(rows.size()));
}

PixelRows rowsOf(const ImageMask& mask) {
  PixelRows rows;
  const auto width = static_cast<size_t>(mask.width());
  for (size_t i = 0; i < mask.maskData().size(); i += width) {
    rows.emplace_back();
    for (const uint8_t byte : mask.maskData().subspan(i, width)) rows.back() += byte ? '#' : '.';
  }
  return rows;
}

PixelRows rowsOf(const NSBitmapImageRep& bitmap, const Pixel& value) {
  PixelRows rows;
  for (int64_t y = 0; y < bitmap.pixelsHigh(); ++y) {
    rows.emplace_back();
    for (int64_t x = 0; x < bitmap.pixelsWide(); ++x) {
      rows.back() += pixelAt(bitmap, x, y) == value ? '#' : '.';
    }
  }
  return rows;
}

PixelRows placedRows(int64_t width, int64_t height, const PixelRows& rows, int64_t x, int64_t y) {
  PixelRows canvas(static_cast<size_t>(height), std::string(static_cast<size_t>(width), '.'));
  const int64_t top = height - y - static_cast<int64_t>(rows.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    canvas.at(static_cast<size_t>(top) + i)
        .replace(static_cast<size_t>(x), rows[i].size(), rows[i]);
  }
  return canvas;
}

std::shared_ptr<ImageMask> randomMask(int64_t width, int64_t height, uint64_t stretch,
                                      unsigned seed) {
  std::mt19937 random(seed);
  std::vector<uint8_t> data;
  uint8_t value = 0;
  while (data.size() < static_cast<size_t>(width * height)) {
    data.insert(data.end(), 1 + random() % (2 * stretch), value);
    value ^= 1;
  }
  return ImageMask::initWithData(std::move(data), 0, 0, width, height);
}
