#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/foundation/Geometry.h"

// What the engine takes from the PDF library. That lives in a module that is loaded with the first
// PDF page: with the libraries below it, it costs a process some 9 ms of start-up.

/// Memory for a picture: premultiplied R, G, B, A, rows top first and without gaps, all zero.
struct PDFPicture {
  int64_t width = 0;
  int64_t height = 0;
  uint8_t* pixels = nullptr;
};

/// An opened document. All functions may be called from any thread.
class PDFFile {
 public:
  virtual ~PDFFile() = default;

  /// Size of the first page's crop box in points, after the page's rotation; zero when the page is
  /// damaged.
  virtual NSSize firstPageSize() const = 0;
  /// Draws the crop box of the first page over the whole picture, whatever its aspect ratio. The
  /// page's paper is transparent. False when the library fails; the pixels are then undefined.
  virtual bool drawFirstPage(const PDFPicture& picture) const = 0;
};

class PDFLibrary {
 public:
  virtual ~PDFLibrary() = default;

  /// The document in a file, which must outlive it unchanged. Null when it is none, damaged beyond
  /// repair, or asks for a password.
  virtual std::unique_ptr<PDFFile> open(std::span<const uint8_t> file) const = 0;
};

/// Name of the module's one exported function, of type PDFLibraryEntry.
inline constexpr const char* kPDFLibraryEntry = "paintPDFLibrary";
using PDFLibraryEntry = const PDFLibrary* (*)();
