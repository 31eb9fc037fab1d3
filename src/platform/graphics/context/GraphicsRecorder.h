#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/bitmap/BitmapSource.h"
#include "platform/graphics/context/GraphicsState.h"
#include "platform/graphics/gradient/CGGradient.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/graphics/pixels/outline/StrokeStyle.h"
#include "platform/graphics/pixels/paint/GradientSource.h"

class CGContext;

// What a context is told to paint, as data. Geometry is in the user space of the state that it is
// painted with, lengths that no transform reaches in canvas units.

/// The inside of a path, with the state's fill colour.
struct FillOperation {
  PathData path;
  WindingRule winding = WindingRule::nonZero;
};

/// The line along a path, with the state's stroke colour.
struct StrokeOperation {
  PathData path;
  StrokeStyle style;
};

/// A gradient inside a path, or over the whole clip without one.
struct GradientOperation {
  CGGradient gradient;
  std::variant<LinearAxis, RadialAxis> axis;
  GradientExtent extent = GradientExtent::both;
  std::optional<PathData> path;
  WindingRule winding = WindingRule::nonZero;
};

/// A picture stretched over a rectangle.
struct PictureOperation {
  enum class Manner : uint8_t { paint, replace };

  std::shared_ptr<const BitmapSource> picture;
  NSRect destination;
  NSRect source;  ///< in its pixels, from the bottom left; the zero rectangle for all of it
  Manner manner = Manner::paint;  ///< as CGContext::draw, or as CGContext::drawReplacing
};

/// Canvas pixels that get one value, as it is.
struct PixelOperation {
  std::vector<uint8_t> mask;  ///< a byte a pixel, rows top first, not 0 for those that get it
  PixelBox box;               ///< canvas pixels, rows from the top
  uint32_t pixel = 0;
};

/// Glyphs of one face. Text has classes of its own for them, which know face, glyphs and text.
class GlyphRun {
 public:
  virtual ~GlyphRun() = default;
  /// Paints them with the state of a context.
  virtual void paint(CGContext& context) const = 0;
  /// The text that they show.
  virtual std::u16string_view text() const = 0;
};

struct GlyphOperation {
  std::shared_ptr<const GlyphRun> glyphs;
};

using GraphicsOperation = std::variant<FillOperation, StrokeOperation, GradientOperation,
                                       PictureOperation, PixelOperation, GlyphOperation>;

/// What takes down what a context is told to paint, in the order of painting. Layers and draws
/// enclose operations, and each other.
class GraphicsRecorder {
 public:
  virtual ~GraphicsRecorder() = default;

  virtual void add(const GraphicsState& state, GraphicsOperation operation) = 0;

  /// A transparency layer, with the state that it is painted with; limited to `content` if that is
  /// set. Operations inside have a clip of their own.
  virtual void beginLayer(const GraphicsState& state, const std::optional<NSRect>& content) = 0;
  virtual void endLayer() = 0;
  /// Drops the layer with all that is inside.
  virtual void discardLayer() noexcept = 0;

  /// The drawing object that paints what follows.
  virtual void beginDraw(const std::string& className, const std::string& title) = 0;
  virtual void endDraw() = 0;

  /// Something drawn to be a picture, see OffscreenCanvas.
  struct Offscreen {
    std::shared_ptr<GraphicsRecorder> recorder;
    std::shared_ptr<const BitmapSource> picture;
  };
  /// A picture of `area` of a space whose origin is at `origin` in a user space with a transform.
  virtual Offscreen offscreen(const NSRect& area, NSPoint origin,
                              const CGAffineTransform& transform) = 0;
};
