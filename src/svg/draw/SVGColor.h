#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace SVGNative {

/// Red, green, blue, alpha, each 0..1, not premultiplied, sRGB.
using ColorArray = std::array<float, 4>;

inline constexpr ColorArray kOpaqueBlack{0.0f, 0.0f, 0.0f, 1.0f};

/// A custom-property reference. The texts are apart and shared: such references are rare, and would
/// make every colour several times as large.
class ColorVariable {
 public:
  ColorVariable(std::string_view name, std::string_view fallback)
      : texts_(std::make_shared<const Texts>(name, fallback)) {}

  /// The property's name, "--" included.
  const std::string& name() const { return texts_->first; }
  /// The text to use when the property has no value; empty when the reference gives none.
  const std::string& fallback() const { return texts_->second; }

  bool operator==(const ColorVariable& other) const { return *texts_ == *other.texts_; }

 private:
  using Texts = std::pair<std::string, std::string>;

  std::shared_ptr<const Texts> texts_;
};

/// Colours that are only known from the element that uses them.
enum class ColorKeys : uint8_t { currentcolor };

using Color = std::variant<ColorArray, ColorVariable, ColorKeys>;

}  // namespace SVGNative
