#include "platform/graphics/codecs/libraries/jpeg/JPEGWriter.h"

#include <cstdio>
// The library's header needs the one above.
#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdlib>

#include "platform/graphics/codecs/PictureCodec.h"

namespace {

constexpr double kFullColourQuality = 0.9;
constexpr UINT8 kDotsPerInch = 1;  // JFIF's units of density

/// As for reading: nothing that owns something is a local variable of what calls the library.
class JPEGWriter {
 public:
  JPEGWriter() {
    encoder_.err = jpeg_std_error(&errors_);
    errors_.error_exit = onError;
    encoder_.client_data = this;
  }
  JPEGWriter(const JPEGWriter&) = delete;
  JPEGWriter& operator=(const JPEGWriter&) = delete;
  ~JPEGWriter() {
    jpeg_destroy_compress(&encoder_);
    std::free(file_);
  }

  bool write(const PictureSource& picture, double quality);
  std::vector<uint8_t> file() const { return {file_, file_ + length_}; }

 private:
  static void onError(j_common_ptr common) {
    std::longjmp(static_cast<JPEGWriter*>(common->client_data)->escape_, 1);
  }
  void setUp(const PictureSource& picture, double quality);

  jpeg_error_mgr errors_{};
  jpeg_compress_struct encoder_{};
  std::jmp_buf escape_{};
  unsigned char* file_ = nullptr;
  unsigned long length_ = 0;
};

void JPEGWriter::setUp(const PictureSource& picture, double quality) {
  jpeg_create_compress(&encoder_);
  jpeg_mem_dest(&encoder_, &file_, &length_);
  encoder_.image_width = static_cast<JDIMENSION>(picture.width);
  encoder_.image_height = static_cast<JDIMENSION>(picture.height);
  encoder_.input_components = 4;
  encoder_.in_color_space = JCS_EXT_RGBX;
  jpeg_set_defaults(&encoder_);
  const double density = std::round(picture.dotsPerInch);
  if (density >= 1 && density <= UINT16_MAX) {
    encoder_.density_unit = kDotsPerInch;
    encoder_.X_density = encoder_.Y_density = static_cast<UINT16>(density);
  }
  jpeg_set_quality(&encoder_, static_cast<int>(std::lround(quality * 100)), TRUE);
  if (quality >= kFullColourQuality) {
    encoder_.comp_info[0].h_samp_factor = 1;
    encoder_.comp_info[0].v_samp_factor = 1;
  }
}

bool JPEGWriter::write(const PictureSource& picture, double quality) {
  if (setjmp(escape_) != 0) return false;
  setUp(picture, quality);
  jpeg_start_compress(&encoder_, TRUE);
  const size_t rowBytes = static_cast<size_t>(picture.width) * 4;
  for (int64_t y = 0; y < picture.height; ++y) {
    // The library does not write to its input.
    auto* row = const_cast<uint8_t*>(picture.pixels) + static_cast<size_t>(y) * rowBytes;
    jpeg_write_scanlines(&encoder_, &row, 1);
  }
  jpeg_finish_compress(&encoder_);
  return true;
}

}  // namespace

bool writeJPEG(const PictureSource& picture, double quality, std::vector<uint8_t>& file) {
  constexpr int64_t kMaxSide = JPEG_MAX_DIMENSION;
  if (picture.width > kMaxSide || picture.height > kMaxSide) return true;
  JPEGWriter writer;
  const double inRange = quality >= 0 ? std::min(quality, 1.0) : 0;
  if (!writer.write(picture, inRange)) return false;
  file = writer.file();
  return true;
}
