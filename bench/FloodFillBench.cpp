// Flood fills, as multiples of OpenCV's on the same picture: it searches and paints three channels
// in place, we measure the distances of four, search, and make a mask and a bitmap of our own.
#include <malloc.h>

#include <cmath>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <random>

#include "Ratio.h"
#include "draw/raster/ImageFill.h"
#include "draw/raster/ImageMask.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"

namespace {

constexpr int64_t kWidth = 4000;
constexpr int64_t kHeight = 3000;

/// A flat background with discs on it; the slow waves of a photograph with some grain; specks that
/// leave a labyrinth; upright lines, the worst for searching by rows.
enum Picture : int64_t { kDrawing, kPhotograph, kSpecks, kComb };

uint32_t pixelOf(Picture picture, int64_t x, int64_t y, std::minstd_rand& random) {
  switch (picture) {
    case kDrawing: {
      const double u = static_cast<double>(x % 400 - 200), v = static_cast<double>(y % 400 - 200);
      return u * u + v * v < 150 * 150 ? 0xff2040a0 : 0xfff0f0f0;
    }
    case kPhotograph: {
      const double wave =
          std::sin(static_cast<double>(x) / 500) * std::cos(static_cast<double>(y) / 400);
      const auto level = static_cast<uint32_t>(128 + 100 * wave) + random() % 8;
      return 0xff000000 | static_cast<uint32_t>(level) * 0x010101;
    }
    case kComb:
      return x % 2 != 0 && y != 0 ? 0xff000000 : 0xffffffff;
    case kSpecks:
      return random() % 100 < 35 ? 0xff000000 : 0xffffffff;
  }
  return 0;
}

std::shared_ptr<NSBitmapImageRep> bitmapOf(Picture picture) {
  auto bitmap = NSBitmapImageRep::create(kWidth, kHeight);
  std::minstd_rand random(1);
  auto* out = reinterpret_cast<uint32_t*>(bitmap->writableRows(0, kHeight));
  for (int64_t i = 0; i < kWidth * kHeight; ++i) {
    *out++ = pixelOf(picture, i % kWidth, i / kWidth, random);
  }
  return bitmap;
}

cv::Mat matrixOf(const NSBitmapImageRep& bitmap) {
  cv::Mat matrix(kHeight, kWidth, CV_8UC3);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) std::memcpy(matrix.ptr(y, x), bitmap.row(y) + x * 4, 3);
  }
  return matrix;
}

constexpr int kTolerance = 40;
constexpr int kSeed = 6;

/// Seconds of the other library, and the pixels it found.
double peerSeconds(const cv::Mat& source, int64_t& area) {
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < 5; ++i) {
    cv::Mat matrix = source.clone();
    cv::Rect box;
    const auto range = cv::Scalar::all(kTolerance);
    best = std::min(best, bestSeconds(1, [&] {
                      area = cv::floodFill(matrix, {kSeed, kSeed}, {10, 20, 200}, &box, range,
                                           range, 4 | cv::FLOODFILL_FIXED_RANGE);
                    }));
  }
  return best;
}

std::shared_ptr<ImageFill> engine(const std::shared_ptr<NSBitmapImageRep>& bitmap) {
  auto fill = ImageFill::initWithImage(bitmap, {kSeed, kHeight - 1 - kSeed});
  fill->setFillColor(NSColor::redColor().get());
  return fill;
}

int64_t areaOf(const ImageFill& fill) {
  const auto mask = fill.imageMask();
  int64_t area = 0;
  for (const uint8_t byte : mask->maskData()) area += byte;
  return area;
}

enum class Result : uint8_t { mask, maskAndBitmap };

/// A bucket click: distances, search and mask, which is what a document keeps, and the fill bitmap
/// that an editor shows.
void bucketClick(benchmark::State& state, Result result) {
  const auto bitmap = bitmapOf(static_cast<Picture>(state.range(0)));
  int64_t area = 0;
  const double unit = peerSeconds(matrixOf(*bitmap), area);
  runAsMultiple(state, "x_opencv", unit, [&] {
    const auto fill = engine(bitmap);
    fill->fillWithTolerance(kTolerance);
    benchmark::DoNotOptimize(fill->imageMask());
    if (result == Result::maskAndBitmap) benchmark::DoNotOptimize(fill->fillImage());
  });
  const auto fill = engine(bitmap);
  fill->fillWithTolerance(kTolerance);
  if (const int64_t ours = areaOf(*fill); ours != area) {
    const std::string message =
        "the regions differ: " + std::to_string(ours) + " and " + std::to_string(area) + " pixels";
    state.SkipWithError(message.c_str());
  }
  state.counters["pixels"] = static_cast<double>(area);
}

/// What dragging the tolerance up and down costs at each step.
void newTolerance(benchmark::State& state) {
  const auto bitmap = bitmapOf(static_cast<Picture>(state.range(0)));
  int64_t area = 0;
  const double unit = peerSeconds(matrixOf(*bitmap), area);
  const auto fill = engine(bitmap);
  uint32_t step = 0;
  runAsMultiple(state, "x_opencv", unit,
                [&] { fill->fillWithTolerance(kTolerance + (step ^= 1)); });
}

void makeMask(benchmark::State& state) {
  const auto fill = engine(bitmapOf(static_cast<Picture>(state.range(0))));
  fill->fillWithTolerance(kTolerance);
  const double unit = memcpySeconds(kWidth * kHeight);
  runAsMultiple(state, "x_memcpy", unit, [&] { benchmark::DoNotOptimize(fill->imageMask()); });
}

}  // namespace

BENCHMARK_CAPTURE(bucketClick, mask, Result::mask)
    ->ArgName("picture")
    ->DenseRange(kDrawing, kComb)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bucketClick, maskAndBitmap, Result::maskAndBitmap)
    ->ArgName("picture")
    ->DenseRange(kDrawing, kComb)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(newTolerance)
    ->ArgName("picture")
    ->DenseRange(kDrawing, kComb)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(makeMask)->ArgName("picture")->DenseRange(kDrawing, kComb)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  // Both sides take and drop maps of 12 MB; whether the allocator gives them back to the system
  // each time depends on what else ran before, and the page faults cost as much as the search.
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
