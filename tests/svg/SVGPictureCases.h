#pragma once

#include <ostream>
#include <span>
#include <string_view>

/// Small pictures that use only what the engine supports, by feature. `content` is what stands
/// inside an "svg" element of 120 by 120 units, or a whole text when it begins with "<svg".
struct SVGPictureCase {
  std::string_view name;
  std::string_view content;
};

/// A text that is drawn differently on purpose: as another renderer draws `equivalent`.
struct SVGDifferenceCase {
  std::string_view name;
  std::string_view content;
  std::string_view equivalent;
};

/// Found by the test framework, which would print the bytes of the views.
inline void PrintTo(const SVGPictureCase& c, std::ostream* out) {
  *out << c.name;
}
inline void PrintTo(const SVGDifferenceCase& c, std::ostream* out) {
  *out << c.name;
}

std::span<const SVGPictureCase> svgPictureCases();
std::span<const SVGDifferenceCase> svgDifferenceCases();
