// Decoding pictures, as multiples of the bare library reading into a buffer.
#include <cstdio>
// The library's header needs the one above.
#include <jpeglib.h>
#include <png.h>

#include <cmath>
#include <cstdlib>

#include "Ratio.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

namespace {

using Bytes = std::vector<uint8_t>;

/// Something between a photograph and a drawing.
std::shared_ptr<NSBitmapImageRep> picture(int64_t width, int64_t height, bool translucent) {
  auto bitmap = NSBitmapImageRep::create(width, height);
  uint8_t* p = bitmap->writableRows(0, height);
  uint32_t noise = 1;
  for (int64_t y = 0; y < height; ++y) {
    for (int64_t x = 0; x < width; ++x, p += 4) {
      noise = noise * 1664525 + 1013904223;
      const double wave = 60 * std::sin(static_cast<double>(x * y) * 1e-5) + 64;
      p[0] = static_cast<uint8_t>(wave + (noise >> 29));
      p[1] = static_cast<uint8_t>(x * 120 / width + (noise >> 28 & 3));
      p[2] = static_cast<uint8_t>(y * 120 / height);
      p[3] = translucent ? static_cast<uint8_t>(130 + x * 120 / width) : 255;
    }
  }
  return bitmap;
}

void readBarePNG(const Bytes& file, Bytes& pixels) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  const uint8_t* rest = file.data();
  png_set_read_fn(png, &rest, [](png_structp p, png_bytep out, size_t count) {
    auto& from = *static_cast<const uint8_t**>(png_get_io_ptr(p));
    std::memcpy(out, from, count);
    from += count;
  });
  png_read_info(png, info);
  const size_t rowBytes = png_get_rowbytes(png, info);
  const png_uint_32 height = png_get_image_height(png, info);
  pixels.resize(rowBytes * height);
  for (png_uint_32 y = 0; y < height; ++y) png_read_row(png, pixels.data() + y * rowBytes, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
}

void readBareJPEG(const Bytes& file, Bytes& pixels) {
  jpeg_decompress_struct decoder{};
  jpeg_error_mgr errors{};
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&decoder, TRUE);
  jpeg_start_decompress(&decoder);
  const size_t rowBytes = size_t{decoder.output_width} * 3;
  pixels.resize(rowBytes * decoder.output_height);
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW row = pixels.data() + decoder.output_scanline * rowBytes;
    jpeg_read_scanlines(&decoder, &row, 1);
  }
  jpeg_finish_decompress(&decoder);
  jpeg_destroy_decompress(&decoder);
}

template <class Reader>
void compare(benchmark::State& state, const Bytes& file, Reader bare) {
  // Fresh memory for both: a bitmap's pages are new each time, too.
  const double unit = bestSeconds(5, [&] {
    Bytes pixels;
    bare(file, pixels);
    benchmark::DoNotOptimize(pixels.data());
  });
  runAsMultiple(state, "x_library", unit, [&] { benchmark::DoNotOptimize(decodeImage(file)); });
}

void decodeRGBA(benchmark::State& state) {
  compare(state, encodePNG(*picture(4000, 3000, true), {PNGEffort::small, {}}), readBarePNG);
}

void decodeRGB(benchmark::State& state) {
  compare(state, encodePNG(*picture(4000, 3000, false), {PNGEffort::small, {}}), readBarePNG);
}

void decodeJPEG(benchmark::State& state) {
  compare(state, encodeJPEG(*picture(4000, 3000, false), 0.88), readBareJPEG);
}

void decodeTIFF(benchmark::State& state) {
  const Bytes file = encodeTIFF(*picture(4000, 3000, true));
  for (auto _ : state) benchmark::DoNotOptimize(decodeImage(file));
}

}  // namespace

BENCHMARK(decodeRGBA)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(decodeRGB)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(decodeJPEG)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(decodeTIFF)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
