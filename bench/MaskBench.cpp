// Writing masks into a bitmap, as multiples of memset over the pixels of the mask's rectangle.
#include <cmath>
#include <random>

#include "Ratio.h"
#include "draw/raster/ImageMask.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"

namespace {

/// Shapes by the number that names them in the benchmark: every pixel, an ellipse as a bucket fill
/// leaves it, stretches of 20 pixels in the mean, single pixels at random.
enum Shape : int64_t { kFull, kEllipse, kStretches, kNoise };

bool isIn(Shape shape, int64_t x, int64_t y, int64_t width, int64_t height, std::minstd_rand& r) {
  const double u = 2.0 * static_cast<double>(x) / static_cast<double>(width) - 1;
  const double v = 2.0 * static_cast<double>(y) / static_cast<double>(height) - 1;
  static bool inside = false;
  switch (shape) {
    case kFull:
      return true;
    case kEllipse:
      return u * u + v * v < 1;
    case kStretches:
      if (r() % 20 == 0) inside = !inside;
      return inside;
    case kNoise:
      return r() % 2 == 0;
  }
  return false;
}

std::shared_ptr<ImageMask> mask(Shape shape, int64_t width, int64_t height) {
  std::minstd_rand random(1);
  std::vector<uint8_t> data;
  for (int64_t y = 0; y < height; ++y) {
    for (int64_t x = 0; x < width; ++x) {
      data.push_back(isIn(shape, x, y, width, height, random));
    }
  }
  return ImageMask::initWithData(std::move(data), 0, 0, width, height);
}

void writeMask(benchmark::State& state) {
  const int64_t width = state.range(1), height = state.range(2);
  const auto region = mask(static_cast<Shape>(state.range(0)), width, height);
  const auto bitmap = NSBitmapImageRep::create(width, height);
  const auto color = NSColor::redColor();
  const size_t bytes = bitmap->bytesPerRow() * static_cast<size_t>(height);
  const double unit = bestSeconds(bytes < (size_t{1} << 22) ? 500 : 25, [&] {
    std::memset(bitmap->writableRows(0, height), 1, bytes);
    benchmark::ClobberMemory();
  });
  runAsMultiple(state, "x_memset", unit, [&] {
    region->fillImage(bitmap.get(), color.get());
    benchmark::ClobberMemory();
  });
}

}  // namespace

BENCHMARK(writeMask)
    ->ArgNames({"shape", "width", "height"})
    ->ArgsProduct({{kFull, kEllipse, kStretches, kNoise}, {4000}, {3000}})
    ->ArgsProduct({{kFull, kEllipse, kStretches, kNoise}, {500}, {400}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
