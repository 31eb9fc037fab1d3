#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/foundation/Geometry.h"

// What paint-picture-helper takes from the libraries that read and draw PDF and SVG. Each lives in
// a module that is loaded with the first picture of its kind. Modules may have a C++ library of
// their own, so no exception leaves them.

/// Memory for a picture: premultiplied R, G, B, A, rows top first and without gaps, all zero.
struct PixelTarget {
  int64_t width = 0;
  int64_t height = 0;
  uint8_t* pixels = nullptr;
};

enum class PictureResult : uint8_t { done, failed, noMemory };

/// A picture that was read.
class OpenedPicture {
 public:
  virtual ~OpenedPicture() = default;

  /// The natural size: of a PDF page the size of its crop box in points, after its rotation; of an
  /// SVG in pixels. Zero when there is none.
  virtual NSSize size() const = 0;
  /// Draws the picture, cut to its natural size. `transform` leads from there (y downwards from the
  /// upper edge) to pixels, rows counted from the top. The pixels are undefined unless it is done.
  virtual PictureResult draw(const PixelTarget& target,
                             const CGAffineTransform& transform) const = 0;
};

class PictureLibrary {
 public:
  virtual ~PictureLibrary() = default;

  /// The picture in a file, which must outlive it unchanged. It fails, and leaves null, when that
  /// is none or damaged beyond repair; of PDF files also when it asks for a password.
  virtual PictureResult open(std::span<const uint8_t> file,
                             std::unique_ptr<OpenedPicture>* picture) const = 0;
};

/// Name of the one function that the modules "paintpdf", "paintsvg" and "paintbuiltinsvg" export.
/// It returns null when the library that the module looks up itself is not installed.
inline constexpr const char* kPictureLibraryEntry = "paintPictureLibrary";
