#include "platform/graphics/codecs/ExifOrientation.h"

#include <cstddef>
#include <cstring>

namespace {

/// Numbers of a TIFF structure in its own byte order; reading past the end gives 0.
class ExifReader {
 public:
  explicit ExifReader(std::span<const uint8_t> bytes)
      : bytes_(bytes), bigEndian_(!bytes.empty() && bytes[0] == 'M') {}

  uint32_t number(size_t offset, size_t size) const {
    if (offset > bytes_.size() || bytes_.size() - offset < size) return 0;
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i) {
      value = value << 8 | bytes_[offset + (bigEndian_ ? i : size - 1 - i)];
    }
    return value;
  }

 private:
  std::span<const uint8_t> bytes_;
  bool bigEndian_;
};

}  // namespace

int exifOrientation(std::span<const uint8_t> exif) {
  // Numbers of the Exif 2.3 standard, 4.6.2 and 4.6.4: entries of 12 bytes with tag, type, count
  // and value, of which only those of the first directory count.
  constexpr uint32_t kTagOrientation = 0x112;
  constexpr uint32_t kTypeShort = 3;
  constexpr size_t kPrefix = 6;
  if (exif.size() > kPrefix && std::memcmp(exif.data(), "Exif\0", 5) == 0) {
    exif = exif.subspan(kPrefix);
  }
  if (exif.size() < 8) return 1;
  const ExifReader reader(exif);
  if (reader.number(2, 2) != 42) return 1;
  const size_t directory = reader.number(4, 4);
  const size_t count = reader.number(directory, 2);
  for (size_t i = 0; i < count; ++i) {
    const size_t entry = directory + 2 + 12 * i;
    if (reader.number(entry, 2) != kTagOrientation) continue;
    if (reader.number(entry + 2, 2) != kTypeShort) return 1;
    const uint32_t value = reader.number(entry + 8, 2);
    return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
  }
  return 1;
}
