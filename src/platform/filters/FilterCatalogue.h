#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "platform/foundation/Geometry.h"

class CIImage;

enum class FilterInputKind { kNumber, kPoint, kTransform };

/// An input of a filter. Range and default are those of a number.
struct FilterInput {
  std::string_view key;
  FilterInputKind kind = FilterInputKind::kNumber;
  double standard = 0;
  double least = 0;
  double most = 0;
};

/// The values of all inputs; numbers in the order of the description's inputs.
struct FilterValues {
  std::span<const double> numbers;
  NSPoint center;
  CGAffineTransform transform;
};

/// A filter: its inputs besides the image, and what it makes of an image (which may be that image
/// itself when the values change nothing).
struct FilterDescription {
  std::string_view name;
  std::span<const FilterInput> inputs;
  std::shared_ptr<const CIImage> (*apply)(const CIImage& image, const FilterValues& values);
};

/// Null for an unknown name.
const FilterDescription* filterDescription(std::string_view name);
