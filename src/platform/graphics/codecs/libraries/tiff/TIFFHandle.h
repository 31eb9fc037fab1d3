#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

/// The library's handle, closed when it goes.
struct CloseTIFF {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TIFFHandle = std::unique_ptr<TIFF, CloseTIFF>;

/// A file in memory as the library sees it. Must outlive its handle.
class TIFFMemory {
 public:
  explicit TIFFMemory(std::span<const uint8_t> file) : input_(file) {}
  TIFFMemory() = default;
  TIFFMemory(const TIFFMemory&) = delete;
  TIFFMemory& operator=(const TIFFMemory&) = delete;

  /// Null when the file is none. `mode` is that of TIFFOpen. The library may not take more than
  /// `largestBlock` bytes at once, and reports nothing anywhere.
  TIFFHandle open(const char* mode, int64_t largestBlock);

  std::vector<uint8_t> takeOutput() { return std::move(output_); }

 private:
  static tmsize_t read(thandle_t memory, void* out, tmsize_t count);
  static tmsize_t write(thandle_t memory, void* bytes, tmsize_t count);
  static toff_t seek(thandle_t memory, toff_t offset, int from);
  static toff_t size(thandle_t memory);
  static int map(thandle_t memory, void** base, toff_t* size);

  std::span<const uint8_t> input_;
  std::vector<uint8_t> output_;
  uint64_t position_ = 0;
};
