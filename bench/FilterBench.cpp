// Image filters as multiples of copying the picture: 4000 x 3000 pixels, one thread. Beside them
// what OpenCV and vips take for the operations that they have, on the picture's bytes as they are:
// they neither compute in linear light nor heed alpha.
#include <vips/vips.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <opencv2/imgproc.hpp>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

#include "Ratio.h"
#include "platform/filters/CIFilter.h"
#include "platform/foundation/values/NSNumber.h"

namespace {

constexpr int64_t kWidth = 4000;
constexpr int64_t kHeight = 3000;

/// What a photograph is to these filters: shapes with soft shading, and a sensor's noise.
enum class Content { kPhoto, kCleanPhoto, kNoise };

std::shared_ptr<NSBitmapImageRep> picture(Content content) {
  auto bitmap = NSBitmapImageRep::create(kWidth, kHeight);
  std::minstd_rand random(1);
  std::normal_distribution<double> grain(0, content == Content::kPhoto ? 1.5 : 0);
  uint8_t* p = bitmap->writableRows(0, kHeight);
  for (int64_t y = 0; y < kHeight; ++y) {
    for (int64_t x = 0; x < kWidth; ++x, p += 4) {
      const double u = static_cast<double>(x) / kWidth;
      const double v = static_cast<double>(y) / kHeight;
      const double wave = 0.5 + 0.5 * std::sin(9 * u + 4 * std::sin(5 * v));
      const double colors[] = {220 * wave * v + 30, 180 * wave * (1 - v) + 40,
                               200 * (1 - wave * u)};
      const double noise = content == Content::kCleanPhoto ? 0 : grain(random);
      for (int c = 0; c < 3; ++c) {
        p[c] = content == Content::kNoise
                   ? static_cast<uint8_t>(random() >> 8)
                   : static_cast<uint8_t>(std::clamp(colors[c] + noise, 0.0, 255.0));
      }
      p[3] = 255;
    }
  }
  return bitmap;
}

const std::shared_ptr<NSBitmapImageRep>& pictureOf(Content content) {
  static const std::shared_ptr<NSBitmapImageRep> pictures[] = {
      picture(Content::kPhoto), picture(Content::kCleanPhoto), picture(Content::kNoise)};
  return pictures[static_cast<int>(content)];
}

double unit() {
  static const double seconds = memcpySeconds(kWidth * kHeight * 4);
  return seconds;
}

using Settings = std::vector<std::pair<std::string_view, double>>;

std::shared_ptr<const CIImage> applied(std::string_view name, const Settings& settings,
                                       std::shared_ptr<const CIImage> image) {
  const auto filter = CIFilter::filterWithName(name);
  filter->setInputImage(std::move(image));
  for (const auto& [key, value] : settings) {
    filter->setValue(NSNumber::numberWithDouble(value), key);
  }
  return filter->outputImage();
}

void filter(benchmark::State& state, std::string_view name, const Settings& settings,
            Content content = Content::kPhoto) {
  const auto image = CIImage::initWithBitmapImageRep(pictureOf(content));
  runAsMultiple(state, "x_memcpy", unit(), [&] {
    const auto result = applied(name, settings, image->imageByClampingToExtent());
    benchmark::DoNotOptimize(result->imageByCroppingToRect(image->extent())->bitmap());
  });
}

/// The six colour filters of "Adjust Colors" one after the other.
void colorChain(benchmark::State& state, Content content) {
  const Settings settings{
      {"inputEV", 0.5},          {"inputSaturation", 1.3},      {"inputContrast", 1.1},
      {"inputBrightness", 0.05}, {"inputHighlightAmount", 0.6}, {"inputShadowAmount", 0.4},
      {"inputIntensity", 0.3},   {"inputAngle", 0.5},           {"inputPower", 0.9}};
  const auto image = CIImage::initWithBitmapImageRep(pictureOf(content));
  runAsMultiple(state, "x_memcpy", unit(), [&] {
    auto result = image;
    for (const std::string_view name :
         {"CIExposureAdjust", "CIColorControls", "CIHighlightShadowAdjust", "CISepiaTone",
          "CIHueAdjust", "CIGammaAdjust"}) {
      result = applied(name, settings, result);
    }
    benchmark::DoNotOptimize(result->bitmap());
  });
}

/// A new bitmap with the same pixels: what any filter costs at least.
void copy(benchmark::State& state) {
  const auto image = CIImage::initWithBitmapImageRep(pictureOf(Content::kPhoto));
  runAsMultiple(state, "x_memcpy", unit(), [&] { benchmark::DoNotOptimize(image->bitmap()); });
}

using OpenCVFilter = void (*)(const cv::Mat&, cv::Mat&);

void openCV(benchmark::State& state, OpenCVFilter filter) {
  cv::setNumThreads(1);
  const auto& bitmap = pictureOf(Content::kPhoto);
  const cv::Mat in(static_cast<int>(kHeight), static_cast<int>(kWidth), CV_8UC4,
                   const_cast<uint8_t*>(bitmap->bitmapData()));
  runAsMultiple(state, "x_memcpy", unit(), [&] {
    cv::Mat out;
    filter(in, out);
    benchmark::DoNotOptimize(out.data);
  });
}

template <int kSigma>
void openCVBlur(const cv::Mat& in, cv::Mat& out) {
  cv::GaussianBlur(in, out, {0, 0}, kSigma, kSigma, cv::BORDER_REPLICATE);
}

void openCVCurve(const cv::Mat& in, cv::Mat& out) {
  cv::Mat table(1, 256, CV_8U);
  for (int i = 0; i < 256; ++i) table.at<uint8_t>(i) = static_cast<uint8_t>(255 - i);
  cv::LUT(in, table, out);
}

void openCVMatrix(const cv::Mat& in, cv::Mat& out) {
  const cv::Mat matrix =
      (cv::Mat_<float>(4, 4) << .8F, .1F, .1F, 0, .2F, .7F, .1F, 0, .1F, .1F, .8F, 0, 0, 0, 0, 1);
  cv::transform(in, out, matrix);
}

void openCVPixellate(const cv::Mat& in, cv::Mat& out) {
  cv::Mat small;
  cv::resize(in, small, {}, 0.2, 0.2, cv::INTER_NEAREST);
  cv::resize(small, out, in.size(), 0, 0, cv::INTER_NEAREST);
}

using VipsFilter = int (*)(VipsImage*, VipsImage**);

void vips(benchmark::State& state, VipsFilter filter) {
  if (VIPS_INIT("FilterBench") != 0) return state.SkipWithError("vips does not start");
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  const auto& bitmap = pictureOf(Content::kPhoto);
  runAsMultiple(state, "x_memcpy", unit(), [&] {
    VipsImage* in = vips_image_new_from_memory(bitmap->bitmapData(), kWidth * kHeight * 4,
                                               static_cast<int>(kWidth), static_cast<int>(kHeight),
                                               4, VIPS_FORMAT_UCHAR);
    VipsImage* out = nullptr;
    size_t bytes = 0;
    if (filter(in, &out) == 0) g_free(vips_image_write_to_memory(out, &bytes));
    benchmark::DoNotOptimize(bytes);
    if (out != nullptr) g_object_unref(out);
    g_object_unref(in);
  });
}

template <int kSigma>
int vipsBlur(VipsImage* in, VipsImage** out) {
  return vips_gaussblur(in, out, kSigma, nullptr);
}

int vipsInvert(VipsImage* in, VipsImage** out) {
  return vips_invert(in, out, nullptr);
}

int vipsGamma(VipsImage* in, VipsImage** out) {
  return vips_gamma(in, out, "exponent", 1.5, nullptr);
}

int vipsMatrix(VipsImage* in, VipsImage** out) {
  VipsImage* matrix =
      vips_image_new_matrixv(4, 4, .8, .1, .1, 0., .2, .7, .1, 0., .1, .1, .8, 0., 0., 0., 0., 1.);
  const int result = vips_recomb(in, out, matrix, nullptr);
  g_object_unref(matrix);
  return result;
}

int vipsPixellate(VipsImage* in, VipsImage** out) {
  VipsImage* small = nullptr;
  if (vips_subsample(in, &small, 5, 5, nullptr) != 0) return -1;
  const int result = vips_zoom(small, out, 5, 5, nullptr);
  g_object_unref(small);
  return result;
}

}  // namespace

#define PEER_BENCHMARK(peer, label, ...) \
  BENCHMARK_CAPTURE(peer, label, __VA_ARGS__)->Unit(benchmark::kMillisecond)
#define FILTER_BENCHMARK(label, ...) \
  BENCHMARK_CAPTURE(filter, label, __VA_ARGS__)->Unit(benchmark::kMillisecond)

BENCHMARK(copy)->Unit(benchmark::kMillisecond);
FILTER_BENCHMARK(blur_2, "CIGaussianBlur", Settings{{"inputRadius", 2}});
FILTER_BENCHMARK(blur_4, "CIGaussianBlur", Settings{{"inputRadius", 4}});
FILTER_BENCHMARK(blur_10, "CIGaussianBlur", Settings{{"inputRadius", 10}});
FILTER_BENCHMARK(blur_40, "CIGaussianBlur", Settings{{"inputRadius", 40}});
FILTER_BENCHMARK(sharpen, "CISharpenLuminance", Settings{});
FILTER_BENCHMARK(invert, "CIColorInvert", Settings{});
FILTER_BENCHMARK(exposure, "CIExposureAdjust", Settings{{"inputEV", 1}});
FILTER_BENCHMARK(gamma, "CIGammaAdjust", Settings{{"inputPower", 1.5}});
FILTER_BENCHMARK(controls, "CIColorControls", Settings{{"inputSaturation", 1.3}});
FILTER_BENCHMARK(hue, "CIHueAdjust", Settings{{"inputAngle", 1}});
FILTER_BENCHMARK(hue_noise, "CIHueAdjust", Settings{{"inputAngle", 1}}, Content::kNoise);
FILTER_BENCHMARK(sepia, "CISepiaTone", Settings{{"inputIntensity", 0.8}});
FILTER_BENCHMARK(highlights, "CIHighlightShadowAdjust", Settings{{"inputHighlightAmount", 0.5}});
FILTER_BENCHMARK(shadows, "CIHighlightShadowAdjust", Settings{{"inputShadowAmount", 0.5}});
FILTER_BENCHMARK(shadows_clean, "CIHighlightShadowAdjust", Settings{{"inputShadowAmount", 0.5}},
                 Content::kCleanPhoto);
FILTER_BENCHMARK(shadows_noise, "CIHighlightShadowAdjust", Settings{{"inputShadowAmount", 0.5}},
                 Content::kNoise);
BENCHMARK_CAPTURE(colorChain, photo, Content::kPhoto)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(colorChain, clean, Content::kCleanPhoto)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(colorChain, noise, Content::kNoise)->Unit(benchmark::kMillisecond);
FILTER_BENCHMARK(pixellate_5, "CIPixellate", Settings{{"inputScale", 5}});
FILTER_BENCHMARK(pixellate_20, "CIPixellate", Settings{{"inputScale", 20}});
FILTER_BENCHMARK(crystallize_10, "CICrystallize", Settings{{"inputRadius", 10}});
FILTER_BENCHMARK(crystallize_2, "CICrystallize", Settings{{"inputRadius", 2}});
FILTER_BENCHMARK(pointillize_2, "CIPointillize", Settings{{"inputRadius", 2}});
FILTER_BENCHMARK(pointillize_20, "CIPointillize", Settings{{"inputRadius", 20}});
FILTER_BENCHMARK(edges_50, "CIEdges", Settings{{"inputIntensity", 50}});
FILTER_BENCHMARK(edge_work_05, "CIEdgeWork", Settings{{"inputRadius", 0.5}});
FILTER_BENCHMARK(edge_work_3, "CIEdgeWork", Settings{{"inputRadius", 3}});
// Half a minute a run with a sigma of 40 is what vips takes; that is left out.
PEER_BENCHMARK(openCV, blur_2, openCVBlur<2>);
PEER_BENCHMARK(openCV, blur_10, openCVBlur<10>);
PEER_BENCHMARK(openCV, blur_40, openCVBlur<40>)->Iterations(1);
PEER_BENCHMARK(openCV, curve, openCVCurve);
PEER_BENCHMARK(openCV, matrix, openCVMatrix);
PEER_BENCHMARK(openCV, pixellate_5, openCVPixellate);
PEER_BENCHMARK(vips, blur_2, vipsBlur<2>);
PEER_BENCHMARK(vips, blur_10, vipsBlur<10>)->Iterations(1);
PEER_BENCHMARK(vips, invert, vipsInvert);
PEER_BENCHMARK(vips, gamma, vipsGamma);
PEER_BENCHMARK(vips, matrix, vipsMatrix);
PEER_BENCHMARK(vips, pixellate_5, vipsPixellate);
BENCHMARK_MAIN();
