#include "platform/graphics/codecs/PNGReader.h"

#include <png.h>

#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/foundation/Limits.h"
#include "platform/graphics/codecs/PictureCodec.h"

namespace {

constexpr size_t kSignatureBytes = 8;
constexpr size_t kChunkHeader = 8;  // length and name
constexpr size_t kChecksumBytes = 4;

/// The library reports errors with longjmp, which must not pass over destructors: everything that
/// owns something is a member, and the functions that call the library have plain local variables.
class PNGReader {
 public:
  PNGReader(std::span<const uint8_t> file, PictureTarget& target)
      : file_(file),
        target_(target),
        png_(png_create_read_struct_2(PNG_LIBPNG_VER_STRING, this, onError, onWarning, this,
                                      allocate, release)),
        info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {}
  PNGReader(const PNGReader&) = delete;
  PNGReader& operator=(const PNGReader&) = delete;
  ~PNGReader() { png_destroy_read_struct(&png_, &info_, nullptr); }

  void decode();

 private:
  [[noreturn]] static void onError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
  static void onWarning(png_structp, png_const_charp) {}
  static png_voidp allocate(png_structp png, png_alloc_size_t bytes);
  static void release(png_structp, png_voidp memory) { std::free(memory); }
  static void read(png_structp png, png_bytep out, size_t count);
  void findCutData();
  void limitChunks();
  void readHeader();
  void askForRGBA();
  std::span<const uint8_t> profile();
  std::span<const uint8_t> exif();
  void readRows(uint8_t* pixels);

  std::span<const uint8_t> file_;
  size_t position_ = 0;
  size_t cutData_ = SIZE_MAX;  // where the chunk of pixels begins that the file ends in
  PictureTarget& target_;
  png_structp png_;
  png_infop info_;
  PictureInfo picture_;
  size_t rowBytes_ = 0;
  bool interlaced_ = false;
  int64_t finishedRows_ = 0;
  uint8_t* interlacedPixels_ = nullptr;
};

/// Without memory the library leaves out what it can do without, colour profiles among it.
png_voidp PNGReader::allocate(png_structp png, png_alloc_size_t bytes) {
  void* const memory = std::malloc(bytes);
  if (memory == nullptr) static_cast<PNGReader*>(png_get_mem_ptr(png))->target_.lackMemory();
  return memory;
}

void PNGReader::read(png_structp png, png_bytep out, size_t count) {
  auto& reader = *static_cast<PNGReader*>(png_get_io_ptr(png));
  if (reader.file_.size() - reader.position_ < count) png_error(png, "file too short");
  std::memcpy(out, reader.file_.data() + reader.position_, count);
  if (reader.position_ == reader.cutData_ && count == kChunkHeader) {
    png_save_uint_32(out, static_cast<uint32_t>(reader.file_.size() - reader.position_ - count));
  }
  reader.position_ += count;
}

/// A chunk of pixels that the file ends in is given the length that is there: the library reads
/// many rows at once, and would have none of them.
void PNGReader::findCutData() {
  size_t at = kSignatureBytes;
  while (at + kChunkHeader <= file_.size()) {
    const size_t end = at + kChunkHeader + png_get_uint_32(file_.data() + at);
    const bool isData = std::memcmp(file_.data() + at + 4, "IDAT", 4) == 0;
    if (isData && end > file_.size()) cutData_ = at;
    at = end + kChecksumBytes;
  }
}

/// Texts and times are not read at all; what is read may not grow without bound.
void PNGReader::limitChunks() {
  static constexpr png_byte kUsed[] = "iCCP\0tRNS\0eXIf";
  png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
  png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_AS_DEFAULT, kUsed, sizeof kUsed / 5);
  png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_chunk_malloc_max(png_, limits::kMaxProfileBytes);
}

void PNGReader::askForRGBA() {
  png_set_expand(png_);
  png_set_scale_16(png_);
  png_set_gray_to_rgb(png_);
  png_set_add_alpha(png_, 255, PNG_FILLER_AFTER);
  if (interlaced_) png_set_interlace_handling(png_);
  png_read_update_info(png_, info_);
}

std::span<const uint8_t> PNGReader::profile() {
  png_charp name = nullptr;
  png_bytep bytes = nullptr;
  png_uint_32 length = 0;
  int compression = 0;
  if (png_get_iCCP(png_, info_, &name, &compression, &bytes, &length) == 0) return {};
  return {bytes, length};
}

std::span<const uint8_t> PNGReader::exif() {
  png_bytep bytes = nullptr;
  png_uint_32 length = 0;
  if (png_get_eXIf_1(png_, info_, &length, &bytes) == 0) return {};
  return {bytes, length};
}

void PNGReader::readHeader() {
  png_read_info(png_, info_);
  const int type = png_get_color_type(png_, info_);
  const bool hasAlpha =
      (type & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
  picture_.width = png_get_image_width(png_, info_);
  picture_.height = png_get_image_height(png_, info_);
  picture_.layout = hasAlpha ? PixelLayout::straightRGBA : PixelLayout::opaqueRGB;
  picture_.model = (type & PNG_COLOR_MASK_COLOR) != 0 ? ColorModel::rgb : ColorModel::gray;
  picture_.profile = profile();
  picture_.exif = exif();
  interlaced_ = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
}

void PNGReader::readRows(uint8_t* pixels) {
  rowBytes_ = static_cast<size_t>(picture_.width) * 4;
  if (!interlaced_) {
    for (int64_t y = 0; y < picture_.height; ++y) {
      png_read_row(png_, pixels + static_cast<size_t>(y) * rowBytes_, nullptr);
      target_.finish(y, y + 1);
      finishedRows_ = y + 1;
    }
    return;
  }
  interlacedPixels_ = pixels;
  for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
    for (int64_t y = 0; y < picture_.height; ++y) {
      png_read_row(png_, nullptr, pixels + static_cast<size_t>(y) * rowBytes_);
    }
  }
}

void PNGReader::decode() {
  if (info_ == nullptr) return target_.lackMemory();
  if (setjmp(png_jmpbuf(png_)) == 0) {
    png_set_read_fn(png_, this, read);
    findCutData();
    limitChunks();
    // The stream's own checksum stands behind everything that it is of.
    png_set_option(png_, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
    readHeader();
    if (uint8_t* const pixels = target_.begin(picture_)) {
      askForRGBA();
      readRows(pixels);
    }
  }
  // Every pass shows the whole picture, only coarser.
  if (interlacedPixels_ != nullptr) return target_.finish(0, picture_.height);
  // The last row was there, but what stands behind it was not as it should be.
  const bool isWhole = finishedRows_ == picture_.height - 1 &&
                       png_get_current_row_number(png_) == png_get_image_height(png_, info_);
  if (isWhole) target_.finish(finishedRows_, picture_.height);
}

}  // namespace

void readPNG(std::span<const uint8_t> file, PictureTarget& target) {
  PNGReader(file, target).decode();
}
