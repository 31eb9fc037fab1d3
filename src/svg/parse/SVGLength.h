#pragma once

#include <optional>

#include "svg/parse/SVGAttributes.h"
#include "svg/parse/SVGViewport.h"

namespace SVGNative {

/// Which length a percentage is a part of.
enum class LengthType { horizontal, vertical, diagonal };

/// Reads lengths inside the view box of the nearest viewport.
class LengthContext {
 public:
  LengthContext() = default;
  explicit LengthContext(const ViewBox& box) : box_(box) {}

  const ViewBox& Box() const { return box_; }
  void UpdateViewBox(const ViewBox& box) { box_ = box; }

  /// What 100 % are. The diagonal is the plain one, without the division by the square root of two
  /// that SVG has: pictures look as they always did in this application.
  float RelativeLength(LengthType type) const;

  /// The attribute's value in user units; nothing when it is missing or invalid.
  std::optional<float> ParseLength(const AttributeSet& attributes, Attribute attribute,
                                   LengthType type) const;
  /// The same with a default.
  float ParseLengthFromAttr(const AttributeSet& attributes, Attribute attribute, LengthType type,
                            float defaultValue) const {
    return ParseLength(attributes, attribute, type).value_or(defaultValue);
  }

 private:
  ViewBox box_;
};

}  // namespace SVGNative
