#include "platform/graphics/codecs/PNGWriter.h"

#include <png.h>

#include <cmath>
#include <csetjmp>
#include <new>

#include "platform/graphics/codecs/PixelConversion.h"

namespace {

bool isOpaque(const PixelBuffer& pixels) {
  const RowRange used = pixels.usedRows();
  if (used.first > 0 || used.end < pixels.height()) return false;
  for (int64_t y = used.first; y < used.end; ++y) {
    if (!isOpaqueRow(pixels.row(y), static_cast<size_t>(pixels.width()))) return false;
  }
  return true;
}

bool keepsAlpha(const PixelBuffer& pixels, const PNGOptions& options) {
  return options.alpha == PNGAlpha::asInBitmap && pixels.hasAlpha();
}

/// The library reports errors with longjmp, which must not pass over destructors: everything that
/// owns something is a member, and write() has plain local variables only.
class Writer {
 public:
  Writer(const PixelBuffer& pixels, const PNGOptions& options)
      : pixels_(pixels),
        options_(options),
        opaque_(!keepsAlpha(pixels, options) && isOpaque(pixels)),
        row_(pixels.bytesPerRow()),
        png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, this, onError, onWarning)),
        info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { png_destroy_write_struct(&png_, &info_); }

  bool write();
  std::vector<uint8_t> takeFile() { return std::move(file_); }

 private:
  [[noreturn]] static void onError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
  static void onWarning(png_structp, png_const_charp) {}
  static void append(png_structp png, png_bytep bytes, size_t count);
  void writeHeader();
  void writeDensity();
  void writeRow(int64_t y);

  const PixelBuffer& pixels_;
  const PNGOptions& options_;
  const bool opaque_;
  std::vector<uint8_t> row_;
  std::vector<uint8_t> file_;
  png_structp png_;
  png_infop info_;
};

void Writer::append(png_structp png, png_bytep bytes, size_t count) {
  auto& file = static_cast<Writer*>(png_get_io_ptr(png))->file_;
  bool appended = true;
  try {
    file.insert(file.end(), bytes, bytes + count);
  } catch (const std::bad_alloc&) {
    appended = false;
  }
  if (!appended) png_error(png, "out of memory");
}

void Writer::writeDensity() {
  constexpr double kInchesPerMetre = 1 / 0.0254;
  const double dotsPerMetre = std::round(options_.dotsPerInch * kInchesPerMetre);
  if (!(dotsPerMetre >= 1 && dotsPerMetre <= PNG_UINT_31_MAX)) return;
  const auto density = static_cast<png_uint_32>(dotsPerMetre);
  png_set_pHYs(png_, info_, density, density, PNG_RESOLUTION_METER);
}

void Writer::writeHeader() {
  png_set_IHDR(png_, info_, static_cast<png_uint_32>(pixels_.width()),
               static_cast<png_uint_32>(pixels_.height()), 8,
               opaque_ ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_sRGB(png_, info_, PNG_sRGB_INTENT_PERCEPTUAL);
  writeDensity();
  for (const PNGText& entry : options_.texts) {
    png_text text{};
    text.compression = PNG_TEXT_COMPRESSION_NONE;
    // The library copies both and changes neither.
    text.key = const_cast<char*>(entry.keyword.c_str());
    text.text = const_cast<char*>(entry.text.c_str());
    text.text_length = entry.text.size();
    png_set_text(png_, info_, &text, 1);
  }
  const bool fast = options_.effort == PNGEffort::fast;
  png_set_compression_level(png_, fast ? 1 : 6);
  png_set_filter(png_, PNG_FILTER_TYPE_BASE, fast ? PNG_FILTER_SUB : PNG_ALL_FILTERS);
  png_set_compression_buffer_size(png_, size_t{1} << 16);
  png_write_info(png_, info_);
  if (opaque_) png_set_filler(png_, 0, PNG_FILLER_AFTER);
}

void Writer::writeRow(int64_t y) {
  if (opaque_) {
    png_write_row(png_, pixels_.row(y));
    return;
  }
  unpremultiplyRow(pixels_.row(y), row_.data(), static_cast<size_t>(pixels_.width()));
  png_write_row(png_, row_.data());
}

bool Writer::write() {
  if (info_ == nullptr) return false;
  if (setjmp(png_jmpbuf(png_)) != 0) return false;
  png_set_write_fn(png_, this, append, nullptr);
  png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  writeHeader();
  for (int64_t y = 0; y < pixels_.height(); ++y) writeRow(y);
  png_write_end(png_, nullptr);
  return true;
}

}  // namespace

std::vector<uint8_t> writePNG(const PixelBuffer& pixels, const PNGOptions& options) {
  if (pixels.width() == 0 || pixels.height() == 0) return {};
  Writer writer(pixels, options);
  // The format holds every bitmap, so that nothing else can fail.
  if (!writer.write()) throw std::bad_alloc();
  return writer.takeFile();
}
