#include "platform/graphics/codecs/libraries/tiff/TIFFReader.h"

#include <algorithm>
#include <bit>
#include <optional>

#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/codecs/libraries/tiff/TIFFHandle.h"
#include "platform/graphics/codecs/libraries/tiff/TIFFSamples.h"

namespace {

/// Bytes that the library may take at once: a whole canvas of eight bits in one strip, as some
/// programs write them. It is not touched before something is decoded into it.
constexpr int64_t kLargestBlock = int64_t{1} << 30;

/// Bytes of a tile or a row: four thousand pixels square.
constexpr uint64_t kLargestPiece = uint64_t{64} << 20;

/// Colours, alpha, and some that nobody knows.
constexpr size_t kMaxSamples = 16;

TIFFSampleLayout planeOf(const TIFFSampleLayout& layout) {
  TIFFSampleLayout plane = layout;
  plane.color = TIFFColor::blackIsZero;
  plane.samples = 1;
  plane.alpha = TIFFAlpha::none;
  return plane;
}

class TIFFReader {
 public:
  TIFFReader(std::span<const uint8_t> file, PictureTarget& target)
      : fileBytes_(file.size()), memory_(file), target_(target) {}

  void decode();

 private:
  /// A tag of the file, or its default.
  template <class T>
  T field(uint32_t tag, T fallback) const {
    T value = fallback;
    return TIFFGetFieldDefaulted(tiff_.get(), tag, &value) == 1 ? value : fallback;
  }

  void readInfo();
  TIFFAlpha alphaKind() const;
  std::optional<TIFFSampleLayout> sampleLayout() const;
  std::optional<TIFFColor> color() const;
  bool hasPlanes() const;
  bool canReadPlanes(const TIFFSampleLayout& layout) const;
  bool readPalette(TIFFSampleLayout& layout) const;
  bool piecesFit(const TIFFSampleLayout& layout, bool tiled) const;
  void onFailure();
  void describe(const TIFFSampleLayout& layout);
  void readStrips(const TIFFSampleLayout& layout, uint8_t* pixels);
  void readTiles(const TIFFSampleLayout& layout, uint8_t* pixels);
  void readPlanes(const TIFFSampleLayout& layout, uint8_t* pixels);
  int64_t readPlane(const TIFFSampleLayout& plane, uint16_t sample, uint8_t* out);
  void finish(int64_t first, int64_t end);
  void readThroughLibrary();

  uint64_t fileBytes_;
  TIFFMemory memory_;
  PictureTarget& target_;
  TIFFHandle tiff_;
  PictureInfo picture_;
  std::vector<uint8_t> alphas_;  // of the inks of the rows that are being read
};

std::optional<TIFFColor> TIFFReader::color() const {
  switch (field<uint16_t>(TIFFTAG_PHOTOMETRIC, UINT16_MAX)) {
    case PHOTOMETRIC_MINISWHITE:
      return TIFFColor::whiteIsZero;
    case PHOTOMETRIC_MINISBLACK:
      return TIFFColor::blackIsZero;
    case PHOTOMETRIC_RGB:
      return TIFFColor::rgb;
    case PHOTOMETRIC_PALETTE:
      return TIFFColor::palette;
    case PHOTOMETRIC_SEPARATED:
      if (field<uint16_t>(TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK) return TIFFColor::cmyk;
      break;
    case PHOTOMETRIC_CIELAB:
      return TIFFColor::signedLab;
    case PHOTOMETRIC_ICCLAB:
      return TIFFColor::iccLab;
    default:
      break;
  }
  return std::nullopt;
}

/// What the first sample beyond the colours is. Files with a fourth sample that do not say what it
/// is mean premultiplied alpha.
TIFFAlpha TIFFReader::alphaKind() const {
  uint16_t count = 0;
  const uint16_t* kinds = nullptr;
  TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds);
  const uint16_t kind = count > 0 ? kinds[0] : uint16_t{EXTRASAMPLE_UNSPECIFIED};
  const auto samples = field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
  const bool unnamed = kind == EXTRASAMPLE_UNSPECIFIED && samples == 4 &&
                       field<uint16_t>(TIFFTAG_PHOTOMETRIC, 0) == PHOTOMETRIC_RGB;
  if (kind == EXTRASAMPLE_ASSOCALPHA || unnamed) return TIFFAlpha::premultiplied;
  return kind == EXTRASAMPLE_UNASSALPHA ? TIFFAlpha::straight : TIFFAlpha::none;
}

bool TIFFReader::readPalette(TIFFSampleLayout& layout) const {
  const uint16_t* maps[3] = {};
  if (TIFFGetField(tiff_.get(), TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) != 1) return false;
  layout.palette.resize(size_t{1} << layout.bits);
  // Old writers stored bytes.
  bool wide = false;
  for (const uint16_t* map : maps) {
    wide = wide || std::any_of(map, map + layout.palette.size(), [](auto v) { return v > 255; });
  }
  for (size_t i = 0; i < layout.palette.size(); ++i) {
    for (size_t c = 0; c < 3; ++c) {
      const uint32_t value = maps[c][i];
      layout.palette[i][c] = static_cast<uint8_t>(wide ? (value * 255 + 32767) / 65535 : value);
    }
  }
  return true;
}

bool canUnpack(const TIFFSampleLayout& layout) {
  const int bits = layout.bits;
  if (layout.isFloat && bits != 16 && bits != 32 && bits != 64) return false;
  if (!layout.isFloat && (bits < 1 || (bits > 16 && bits != 32))) return false;
  const bool isLab = layout.color == TIFFColor::signedLab || layout.color == TIFFColor::iccLab;
  if (isLab && (layout.isFloat || (bits != 8 && bits != 16))) return false;
  if (layout.color == TIFFColor::palette && (layout.isFloat || bits > 16)) return false;
  return layout.samples >= layout.colorSamples() && layout.samples <= kMaxSamples;
}

bool TIFFReader::hasPlanes() const {
  return field<uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
}

/// Planes that the library would not show, where each is one byte of the pixels. A single one is
/// nothing special.
bool TIFFReader::canReadPlanes(const TIFFSampleLayout& layout) const {
  if (!layout.isFloat && layout.bits <= 16) return false;
  if (layout.samples == 1) return true;
  if (TIFFIsTiled(tiff_.get()) != 0) return false;
  return layout.color == TIFFColor::rgb ||
         (layout.color == TIFFColor::cmyk && layout.alpha == TIFFAlpha::none);
}

/// The layout of rows that are unpacked here; nothing for the rarer forms.
std::optional<TIFFSampleLayout> TIFFReader::sampleLayout() const {
  const auto whatColor = color();
  const auto format = field<uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  const bool isFloat = format == SAMPLEFORMAT_IEEEFP;
  if (!whatColor || (format != SAMPLEFORMAT_UINT && format != SAMPLEFORMAT_VOID && !isFloat)) {
    return std::nullopt;
  }
  TIFFSampleLayout layout;
  layout.color = *whatColor;
  layout.bits = field<uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
  layout.isFloat = isFloat;
  layout.samples = field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
  if (!canUnpack(layout)) return std::nullopt;
  if (layout.samples > layout.colorSamples()) layout.alpha = alphaKind();
  if (hasPlanes() && !canReadPlanes(layout)) return std::nullopt;
  if (layout.color == TIFFColor::palette && !readPalette(layout)) return std::nullopt;
  return layout;
}

void TIFFReader::readInfo() {
  picture_.width = field<uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
  picture_.height = field<uint32_t>(TIFFTAG_IMAGELENGTH, 0);
  const int orientation = field<uint16_t>(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  picture_.orientation = orientation <= ORIENTATION_LEFTBOT ? orientation : ORIENTATION_TOPLEFT;
  uint32_t length = 0;
  const uint8_t* profile = nullptr;
  if (TIFFGetField(tiff_.get(), TIFFTAG_ICCPROFILE, &length, &profile) == 1) {
    picture_.profile = {profile, length};
  }
}

void TIFFReader::finish(int64_t first, int64_t end) {
  if (picture_.layout == PixelLayout::cmykAlpha) {
    target_.finishInks(first, end, alphas_.data());
  } else {
    target_.finish(first, end);
  }
}

void TIFFReader::readStrips(const TIFFSampleLayout& layout, uint8_t* pixels) {
  const auto width = static_cast<size_t>(picture_.width);
  if (picture_.layout == PixelLayout::cmykAlpha) alphas_.resize(width);
  const auto stripRows = std::max<uint32_t>(1, field<uint32_t>(TIFFTAG_ROWSPERSTRIP, UINT32_MAX));
  std::vector<uint8_t> packed(static_cast<size_t>(TIFFScanlineSize64(tiff_.get())));
  for (int64_t y = 0; y < picture_.height;) {
    if (TIFFReadScanline(tiff_.get(), packed.data(), static_cast<uint32_t>(y), 0) < 0) {
      onFailure();
      // The rest of the strip is lost.
      y = (y / stripRows + 1) * stripRows;
      continue;
    }
    unpackRow(layout, packed.data(), width, pixels + static_cast<size_t>(y) * width * 4,
              alphas_.empty() ? nullptr : alphas_.data());
    finish(y, y + 1);
    ++y;
  }
}

void TIFFReader::readTiles(const TIFFSampleLayout& layout, uint8_t* pixels) {
  const int64_t tileWidth = field<uint32_t>(TIFFTAG_TILEWIDTH, 0);
  const int64_t tileHeight = field<uint32_t>(TIFFTAG_TILELENGTH, 0);
  const auto rowBytes = static_cast<size_t>(TIFFTileRowSize64(tiff_.get()));
  std::vector<uint8_t> packed(static_cast<size_t>(TIFFTileSize64(tiff_.get())));
  const bool hasAlphas = picture_.layout == PixelLayout::cmykAlpha;
  for (int64_t top = 0; top < picture_.height; top += tileHeight) {
    const int64_t bottom = std::min(top + tileHeight, picture_.height);
    if (hasAlphas) alphas_.assign(static_cast<size_t>((bottom - top) * picture_.width), 0);
    for (int64_t left = 0; left < picture_.width; left += tileWidth) {
      if (TIFFReadTile(tiff_.get(), packed.data(), static_cast<uint32_t>(left),
                       static_cast<uint32_t>(top), 0, 0) < 0) {
        onFailure();
        continue;
      }
      const auto count = static_cast<size_t>(std::min(tileWidth, picture_.width - left));
      for (int64_t y = top; y < bottom; ++y) {
        const auto inRows = static_cast<size_t>((y - top) * picture_.width + left);
        unpackRow(layout, packed.data() + static_cast<size_t>(y - top) * rowBytes, count,
                  pixels + static_cast<size_t>(y * picture_.width + left) * 4,
                  hasAlphas ? alphas_.data() + inRows : nullptr);
      }
    }
    finish(top, bottom);
  }
}

/// A plane's bytes to every fourth byte from `out` on. Answers how many rows are there.
int64_t TIFFReader::readPlane(const TIFFSampleLayout& plane, uint16_t sample, uint8_t* out) {
  const auto width = static_cast<size_t>(picture_.width);
  std::vector<uint8_t> packed(static_cast<size_t>(TIFFScanlineSize64(tiff_.get())));
  std::vector<uint8_t> grays(width * 4);
  for (int64_t y = 0; y < picture_.height; ++y, out += width * 4) {
    if (TIFFReadScanline(tiff_.get(), packed.data(), static_cast<uint32_t>(y), sample) < 0) {
      onFailure();
      return y;
    }
    unpackRow(plane, packed.data(), width, grays.data(), nullptr);
    for (size_t x = 0; x < width; ++x) out[x * 4] = grays[x * 4];
  }
  return picture_.height;
}

/// One plane after the other, each as a grey picture.
void TIFFReader::readPlanes(const TIFFSampleLayout& layout, uint8_t* pixels) {
  const TIFFSampleLayout plane = planeOf(layout);
  const size_t count = layout.colorSamples() + (layout.alpha == TIFFAlpha::none ? 0 : 1);
  const size_t size = static_cast<size_t>(picture_.width * picture_.height) * 4;
  for (size_t i = 3; count == 3 && i < size; i += 4) pixels[i] = 255;
  int64_t whole = picture_.height;
  for (uint16_t sample = 0; sample < count; ++sample) {
    whole = std::min(whole, readPlane(plane, sample, pixels + sample));
  }
  std::fill(pixels + static_cast<size_t>(picture_.width * whole) * 4, pixels + size, uint8_t{0});
  if (whole > 0) finish(0, whole);
}

/// The forms that are not unpacked here, as the library shows them.
void TIFFReader::readThroughLibrary() {
  char reason[1024] = {};
  if (TIFFRGBAImageOK(tiff_.get(), reason) != 1) return;
  static_assert(std::endian::native == std::endian::little, "red is the lowest byte of a pixel");
  picture_.layout = PixelLayout::premultipliedRGBA;
  picture_.model = ColorModel::rgb;
  const auto whatColor = color();
  const bool isConverted = whatColor == TIFFColor::cmyk || whatColor == TIFFColor::signedLab ||
                           whatColor == TIFFColor::iccLab;
  if (isConverted) picture_.profile = {};
  void* const pixels = target_.begin(picture_);
  if (pixels == nullptr) return;
  if (TIFFReadRGBAImageOriented(tiff_.get(), static_cast<uint32_t>(picture_.width),
                                static_cast<uint32_t>(picture_.height),
                                static_cast<uint32_t*>(pixels), picture_.orientation, 0) == 1) {
    target_.finish(0, picture_.height);
  } else {
    onFailure();
  }
}

/// The library does not tell damage from want of memory. What it was refused, it cannot have now.
void TIFFReader::onFailure() {
  const bool tiled = TIFFIsTiled(tiff_.get()) != 0;
  const uint64_t piece = tiled ? TIFFTileSize64(tiff_.get()) : TIFFStripSize64(tiff_.get());
  const auto most = std::min(piece, static_cast<uint64_t>(kLargestBlock));
  if (!hasAddressSpace(static_cast<size_t>(most + fileBytes_) + kLibraryTables)) {
    target_.lackMemory();
  }
}

/// False when rows or tiles are shorter than their pixels need, or too large.
bool TIFFReader::piecesFit(const TIFFSampleLayout& layout, bool tiled) const {
  TIFF* const tiff = tiff_.get();
  const auto pixels =
      tiled ? field<uint32_t>(TIFFTAG_TILEWIDTH, 0) : static_cast<uint32_t>(picture_.width);
  const uint64_t rowBytes = tiled ? TIFFTileRowSize64(tiff) : TIFFScanlineSize64(tiff);
  const uint64_t piece = tiled ? TIFFTileSize64(tiff) : rowBytes;
  return rowBytes >= layout.rowBytes(pixels) && piece <= kLargestPiece;
}

/// Completes the picture's description for rows of a layout.
void TIFFReader::describe(const TIFFSampleLayout& layout) {
  if (layout.color == TIFFColor::cmyk) {
    picture_.model = ColorModel::cmyk;
    const bool hasAlpha = layout.alpha != TIFFAlpha::none;
    picture_.layout = hasAlpha ? PixelLayout::cmykAlpha : PixelLayout::cmyk;
    return;
  }
  const bool isGray =
      layout.color == TIFFColor::whiteIsZero || layout.color == TIFFColor::blackIsZero;
  picture_.model = isGray ? ColorModel::gray : ColorModel::rgb;
  const bool isLab = layout.color == TIFFColor::signedLab || layout.color == TIFFColor::iccLab;
  if (isLab) picture_.profile = {};
  constexpr PixelLayout kLayouts[] = {PixelLayout::opaqueRGB, PixelLayout::straightRGBA,
                                      PixelLayout::premultipliedRGBA};
  picture_.layout = kLayouts[static_cast<size_t>(layout.alpha)];
}

void TIFFReader::decode() {
  requireAddressSpace(kLibraryTables);
  tiff_ = memory_.open("r", kLargestBlock);
  if (tiff_ == nullptr) return;
  readInfo();
  const bool tiled = TIFFIsTiled(tiff_.get()) != 0;
  const uint64_t pieces = tiled ? TIFFNumberOfTiles(tiff_.get()) : TIFFNumberOfStrips(tiff_.get());
  if (pieces > fileBytes_) return;
  const auto layout = sampleLayout();
  if (!layout) {
    readThroughLibrary();
    return;
  }
  const bool planes = hasPlanes() && layout->samples > 1;
  if (!piecesFit(planes ? planeOf(*layout) : *layout, tiled)) return;
  describe(*layout);
  uint8_t* const pixels = target_.begin(picture_);
  if (pixels == nullptr) return;
  if (planes) {
    readPlanes(*layout, pixels);
  } else if (tiled) {
    readTiles(*layout, pixels);
  } else {
    readStrips(*layout, pixels);
  }
}

}  // namespace

void readTIFF(std::span<const uint8_t> file, PictureTarget& target) {
  TIFFReader(file, target).decode();
}
