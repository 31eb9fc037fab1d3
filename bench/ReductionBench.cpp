// Scaling pictures down to thumbnails and to screen size, and turning them, as multiples of copying
// the source and of OpenCV's Lanczos filter. That one reads eight by eight pixels however strong
// the reduction is: it is the same work where sizes are near, and leaves most of the picture out
// for thumbnails, for which OpenCV has its averages of areas.
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <random>
#include <vector>

#include "Ratio.h"
#include "platform/graphics/resample/PlacedImage.h"
#include "platform/graphics/resample/Resampler.h"

namespace {

std::shared_ptr<NSBitmapImageRep> noise(int64_t width, int64_t height) {
  auto bitmap = NSBitmapImageRep::create(width, height);
  std::minstd_rand random(1);
  uint8_t* p = bitmap->writableRows(0, height);
  for (int64_t i = 0; i < width * height; ++i, p += 4) {
    p[3] = static_cast<uint8_t>(128 + random() % 128);
    for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(random() % 128);
  }
  return bitmap;
}

double openCVSeconds(const NSBitmapImageRep& source, int width, int height, int filter) {
  cv::setNumThreads(1);
  const cv::Mat from(static_cast<int>(source.pixelsHigh()), static_cast<int>(source.pixelsWide()),
                     CV_8UC4, const_cast<uint8_t*>(source.bitmapData()));
  cv::Mat to;
  return bestSeconds(3, [&] { cv::resize(from, to, {width, height}, 0, 0, filter); });
}

void scale(benchmark::State& state) {
  const auto source = noise(4000, 3000);
  const double unit = memcpySeconds(source->bytesPerRow() * 3000);
  const ResampleMapping mapping{
      {{0, 0}, source->size()},
      {{0, 0}, {static_cast<double>(state.range(0)), static_cast<double>(state.range(1))}}};
  runAsMultiple(state, "x_memcpy", unit, [&] {
    const PixelBox visible{0, 0, static_cast<int32_t>(state.range(0)),
                           static_cast<int32_t>(state.range(1))};
    Resampler resampler(*source, mapping, visible);
    for (int64_t y = 0; y < state.range(1); ++y) benchmark::DoNotOptimize(resampler.row(y));
  });
  const double seconds = state.counters["x_memcpy"] * unit;
  const auto width = static_cast<int>(state.range(0));
  const auto height = static_cast<int>(state.range(1));
  const double lanczos = openCVSeconds(*source, width, height, cv::INTER_LANCZOS4);
  state.counters["x_opencv_lanczos"] = seconds / lanczos;
  if (width > source->pixelsWide()) return;
  state.counters["x_opencv_area"] = seconds / openCVSeconds(*source, width, height, cv::INTER_AREA);
}

/// A picture turned by seven degrees, as a multiple of sampling it between four pixels.
void turned(benchmark::State& state) {
  const auto source = noise(2000, 2000);
  const PixelBox visible{0, 0, 1600, 1600};
  CGAffineTransform turn = CGAffineTransformMakeTranslation(200, -100);
  turn = CGAffineTransformConcat(CGAffineTransformMakeRotation(7 * std::numbers::pi / 180), turn);
  std::vector<uint32_t> row(1600);
  const auto draw = [&](ImageQuality quality) {
    const auto placed = placeImage(*source, {{{0, 0}, source->size()}, turn}, quality, visible);
    for (int32_t y = 0; y < 1600; ++y) {
      benchmark::DoNotOptimize(placed.source->row(0, y, 1600, row.data()));
      benchmark::ClobberMemory();
    }
  };
  const double unit = bestSeconds(5, [&] { draw(ImageQuality::bilinear); });
  runAsMultiple(state, "x_bilinear", unit, [&] { draw(ImageQuality::filtered); });
  state.counters["bilinear_ns_per_pixel"] = unit / (1600 * 1600) * 1e9;
}

/// A canvas of the largest size on which nothing was painted.
void emptyCanvas(benchmark::State& state) {
  const double unit = memcpySeconds(size_t{20000} * 12500 * 4);
  runAsMultiple(state, "x_memcpy", unit, [&] {
    const auto canvas = NSBitmapImageRep::create(20000, 12500);
    benchmark::DoNotOptimize(resampledBitmap(*canvas, 256, 160));
  });
}

}  // namespace

BENCHMARK(scale)
    ->ArgNames({"width", "height"})
    ->Args({256, 192})
    ->Args({1000, 750})
    ->Args({60, 45})
    ->Args({28, 21})
    ->Args({3900, 2925})
    ->Args({5000, 3750})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(turned)->Unit(benchmark::kMillisecond);
BENCHMARK(emptyCanvas)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
