#include "platform/graphics/codecs/libraries/jpeg/JPEGReader.h"

#include <cstdio>
// The library's header needs the one above.
#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <cstring>

#include "platform/graphics/codecs/PictureCodec.h"

namespace {

constexpr int kMarkerExif = JPEG_APP0 + 1;
constexpr int kMarkerProfile = JPEG_APP0 + 2;

/// A picture whose scans are kept in memory needs six bytes for each pixel before one is seen. No
/// Huffman-coded block of 64 pixels takes less than a bit, so a file with less data than this is a
/// fragment at best.
constexpr int64_t kMaxPixelsPerByte = 1024;

/// Pixels decoded in all scans together. Encoders write about ten scans; a hostile file can repeat
/// empty ones by the thousand.
constexpr int64_t kMaxScanPixels = 10'000'000'000;

/// The library reports errors with longjmp, which must not pass over destructors: everything that
/// owns something is a member, and the functions that call the library have plain local variables.
class JPEGReader {
 public:
  JPEGReader(std::span<const uint8_t> file, PictureTarget& target);
  JPEGReader(const JPEGReader&) = delete;
  JPEGReader& operator=(const JPEGReader&) = delete;
  ~JPEGReader();

  void decode();

 private:
  static JPEGReader& of(j_common_ptr common) {
    return *static_cast<JPEGReader*>(common->client_data);
  }
  [[noreturn]] static void onError(j_common_ptr common);
  static void onMessage(j_common_ptr common, int level);
  static void onProgress(j_common_ptr common);
  static void nothing(j_decompress_ptr) {}
  static boolean onEnd(j_decompress_ptr decoder);
  static void skip(j_decompress_ptr decoder, long count);

  bool readHeader();
  std::span<const uint8_t> exif() const;
  void readRows(uint8_t* pixels);

  std::span<const uint8_t> file_;
  PictureTarget& target_;
  PictureInfo picture_;
  jpeg_error_mgr errors_{};
  jpeg_source_mgr source_{};
  jpeg_progress_mgr progress_{};
  jpeg_decompress_struct decoder_{};
  std::jmp_buf escape_{};
  JOCTET* profile_ = nullptr;
  unsigned profileLength_ = 0;
  bool truncated_ = false;
};

JPEGReader::JPEGReader(std::span<const uint8_t> file, PictureTarget& target)
    : file_(file), target_(target) {
  decoder_.err = jpeg_std_error(&errors_);
  errors_.error_exit = onError;
  errors_.emit_message = onMessage;
  decoder_.client_data = this;
  source_.init_source = nothing;
  source_.fill_input_buffer = onEnd;
  source_.skip_input_data = skip;
  source_.resync_to_restart = jpeg_resync_to_restart;
  source_.term_source = nothing;
  source_.next_input_byte = file.data();
  source_.bytes_in_buffer = file.size();
  progress_.progress_monitor = onProgress;
}

JPEGReader::~JPEGReader() {
  jpeg_destroy_decompress(&decoder_);
  std::free(profile_);
}

void JPEGReader::onError(j_common_ptr common) {
  JPEGReader& reader = of(common);
  if (reader.errors_.msg_code == JERR_OUT_OF_MEMORY) reader.target_.lackMemory();
  std::longjmp(reader.escape_, 1);
}

void JPEGReader::onProgress(j_common_ptr common) {
  const JPEGReader& reader = of(common);
  const int64_t pixels = std::max<int64_t>(1, reader.picture_.width * reader.picture_.height);
  if (reader.decoder_.input_scan_number > kMaxScanPixels / pixels) onError(common);
}

/// A warning says that a scan ended early; the marker that ended it, that nothing follows.
void JPEGReader::onMessage(j_common_ptr common, int level) {
  JPEGReader& reader = of(common);
  const bool scanEnded = level < 0 && reader.errors_.msg_code == JWRN_HIT_MARKER;
  if (scanEnded && reader.decoder_.unread_marker == JPEG_EOI) reader.truncated_ = true;
}

/// The file ended: the library gets the end marker that it waits for.
boolean JPEGReader::onEnd(j_decompress_ptr decoder) {
  static constexpr JOCTET kEndMarker[] = {0xff, JPEG_EOI};
  decoder->src->next_input_byte = kEndMarker;
  decoder->src->bytes_in_buffer = sizeof kEndMarker;
  return TRUE;
}

void JPEGReader::skip(j_decompress_ptr decoder, long count) {
  if (count <= 0) return;
  jpeg_source_mgr& source = *decoder->src;
  if (static_cast<size_t>(count) > source.bytes_in_buffer) {
    onEnd(decoder);
  } else {
    source.next_input_byte += count;
    source.bytes_in_buffer -= static_cast<size_t>(count);
  }
}

std::span<const uint8_t> JPEGReader::exif() const {
  for (jpeg_saved_marker_ptr m = decoder_.marker_list; m != nullptr; m = m->next) {
    if (m->marker == kMarkerExif && m->data_length > 6 && std::memcmp(m->data, "Exif\0", 5) == 0) {
      return {m->data, m->data_length};
    }
  }
  return {};
}

bool JPEGReader::readHeader() {
  jpeg_create_decompress(&decoder_);
  decoder_.src = &source_;
  jpeg_save_markers(&decoder_, kMarkerExif, 0xffff);
  jpeg_save_markers(&decoder_, kMarkerProfile, 0xffff);
  if (jpeg_read_header(&decoder_, TRUE) != JPEG_HEADER_OK) return false;
  const bool inks = decoder_.jpeg_color_space == JCS_CMYK || decoder_.jpeg_color_space == JCS_YCCK;
  decoder_.out_color_space = inks ? JCS_CMYK : JCS_EXT_RGBA;
  picture_.width = decoder_.image_width;
  picture_.height = decoder_.image_height;
  picture_.layout = inks ? PixelLayout::cmyk : PixelLayout::opaqueRGB;
  picture_.model = inks                                         ? ColorModel::cmyk
                   : decoder_.jpeg_color_space == JCS_GRAYSCALE ? ColorModel::gray
                                                                : ColorModel::rgb;
  if (jpeg_read_icc_profile(&decoder_, &profile_, &profileLength_) != 0) {
    picture_.profile = {profile_, profileLength_};
  }
  picture_.exif = exif();
  // Arithmetic coding does not notice its end.
  const bool anyLength = !jpeg_has_multiple_scans(&decoder_) && !decoder_.arith_code;
  return anyLength ||
         picture_.width * picture_.height <= static_cast<int64_t>(file_.size()) * kMaxPixelsPerByte;
}

void JPEGReader::readRows(uint8_t* pixels) {
  decoder_.progress = &progress_;
  jpeg_start_decompress(&decoder_);
  // All scans of such a file are in memory now; what is missing makes it coarser, not shorter.
  const bool complete = jpeg_has_multiple_scans(&decoder_) != 0;
  // Adobe's programs store full ink as 0.
  const bool inverted = picture_.layout == PixelLayout::cmyk && decoder_.saw_Adobe_marker != 0;
  const size_t rowBytes = static_cast<size_t>(picture_.width) * 4;
  for (int64_t y = 0; y < picture_.height; ++y) {
    JSAMPROW row = pixels + static_cast<size_t>(y) * rowBytes;
    jpeg_read_scanlines(&decoder_, &row, 1);
    if (truncated_ && !complete) {
      std::memset(row, 0, rowBytes);
      return;
    }
    if (inverted) {
      for (size_t i = 0; i < rowBytes; ++i) row[i] = static_cast<uint8_t>(255 - row[i]);
    }
    target_.finish(y, y + 1);
  }
}

void JPEGReader::decode() {
  if (setjmp(escape_) != 0) return;
  if (!readHeader()) return;
  if (uint8_t* const pixels = target_.begin(picture_)) readRows(pixels);
}

}  // namespace

void readJPEG(std::span<const uint8_t> file, PictureTarget& target) {
  JPEGReader(file, target).decode();
}
