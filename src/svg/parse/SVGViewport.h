#pragma once

#include <optional>
#include <string_view>

#include "svg/draw/SVGRenderer.h"

/// How a "viewBox" is laid into a viewport (SVG 1.1, chapter 7).
namespace SVGNative {

enum class Alignment : uint8_t { min, mid, max };

struct AspectRatio {
  enum class Scaling : uint8_t { stretch, meet, slice };
  Alignment x = Alignment::mid;
  Alignment y = Alignment::mid;
  Scaling scaling = Scaling::meet;
  bool operator==(const AspectRatio&) const = default;
};

/// An unknown alignment is centred.
AspectRatio parseAspectRatio(std::string_view text);

struct ViewBox {
  float x = 0.0f;
  float y = 0.0f;
  float width = 0.0f;
  float height = 0.0f;
  bool operator==(const ViewBox&) const = default;
};

/// x' = scaleX x + x, y' = scaleY y + y.
struct ViewBoxMapping {
  float scaleX = 1.0f;
  float scaleY = 1.0f;
  float x = 0.0f;
  float y = 0.0f;
};

/// Maps the box into the viewport. Nothing when either has no area, or when the result leaves the
/// range of single precision: nothing is to be drawn then.
std::optional<ViewBoxMapping> mapViewBox(const ViewBox& box, const ViewBox& viewport,
                                         const AspectRatio& ratio);

/// The viewport of an "svg" or "symbol" element.
struct Viewport {
  ViewBox frame;               ///< in the coordinates around it
  std::optional<ViewBox> box;  ///< without one the frame's size counts
  AspectRatio ratio;
};

/// What a viewport's content is drawn with: both styles, one inside the other.
struct ViewportStyles {
  GraphicStyleImpl clip;     ///< to the viewport
  GraphicStyleImpl content;  ///< moved and scaled into the viewport
};

/// Nothing when there is nothing to draw.
std::optional<ViewportStyles> viewportStyles(const Viewport& viewport, SVGRenderer& renderer);

}  // namespace SVGNative
