#include "platform/filters/CIFilter.h"

#include <algorithm>
#include <cmath>

#include "platform/filters/FilterCatalogue.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSValue.h"
#include "platform/graphics/path/NSAffineTransform.h"

namespace {

constexpr NSPoint kDefaultCenter{150, 150};
/// The default of a clamp's transform; callers set the identity.
constexpr CGAffineTransform kDefaultTransform{0.4, 0, 0, 0.4, 0, 0};
/// Grids are placed relative to their centre; beyond this nothing is left of pixel accuracy.
constexpr double kFarthestCenter = 1e6;

double clampedCoordinate(double x, double fallback) {
  return std::isnan(x) ? fallback : std::clamp(x, -kFarthestCenter, kFarthestCenter);
}

}  // namespace

std::shared_ptr<CIFilter> CIFilter::filterWithName(std::string_view name) {
  const FilterDescription* description = filterDescription(name);
  return description != nullptr ? std::make_shared<CIFilter>(*description) : nullptr;
}

CIFilter::CIFilter(const FilterDescription& description) : description_(description) {
  setDefaults();
}

void CIFilter::setDefaults() {
  numbers_.clear();
  for (const FilterInput& input : description_.inputs) numbers_.push_back(input.standard);
  center_ = kDefaultCenter;
  transform_ = kDefaultTransform;
}

std::vector<std::string_view> CIFilter::inputKeys() const {
  std::vector<std::string_view> keys{"inputImage"};
  for (const FilterInput& input : description_.inputs) keys.push_back(input.key);
  return keys;
}

void CIFilter::setValue(const std::shared_ptr<const NSObject>& value, std::string_view forKey) {
  if (forKey == "inputImage") {
    if (auto image = std::dynamic_pointer_cast<const CIImage>(value)) image_ = std::move(image);
    return;
  }
  const auto input = std::find_if(description_.inputs.begin(), description_.inputs.end(),
                                  [&](const FilterInput& i) { return i.key == forKey; });
  if (input == description_.inputs.end()) return;
  if (const auto* number = dynamic_cast<const NSNumber*>(value.get())) {
    const double x = number->doubleValue();
    if (input->kind == FilterInputKind::kNumber && !std::isnan(x)) {
      numbers_[static_cast<size_t>(input - description_.inputs.begin())] =
          std::clamp(x, input->least, input->most);
    }
  } else if (const auto* geometry = dynamic_cast<const NSValue*>(value.get())) {
    const auto* point = std::get_if<NSPoint>(&geometry->content());
    if (input->kind != FilterInputKind::kPoint || point == nullptr) return;
    center_ = {clampedCoordinate(point->x, center_.x), clampedCoordinate(point->y, center_.y)};
  } else if (const auto* transform = dynamic_cast<const NSAffineTransform*>(value.get())) {
    if (input->kind == FilterInputKind::kTransform) transform_ = transform->transformStruct();
  }
}

std::shared_ptr<const CIImage> CIFilter::outputImage() const {
  if (image_ == nullptr) return nullptr;
  return description_.apply(*image_, {numbers_, center_, transform_});
}
