#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/context/GraphicsRecorder.h"

struct RecordedNode;
using RecordedNodes = std::vector<RecordedNode>;

/// An operation and the state that it was painted with. Of the state `clip` says nothing:
/// `recordedClip` does.
struct RecordedOperation {
  GraphicsState state;
  GraphicsOperation operation;
};

/// A transparency layer, painted as a whole with the state at its beginning.
struct RecordedLayer {
  GraphicsState state;
  std::optional<NSRect> content;  ///< in the state's user space: nothing outside of it is painted
  RecordedNodes nodes;
};

/// What a drawing object paints.
struct RecordedDraw {
  std::string className;
  std::string title;
  RecordedNodes nodes;
};

struct RecordedNode {
  std::variant<RecordedOperation, RecordedLayer, RecordedDraw> content;
};

/// What was painted, as a tree of operations: for those who want a picture in another form than
/// pixels. Holds on to what pictures are made from, not to their pixels.
class DrawingRecord final : public GraphicsRecorder {
 public:
  /// Of a canvas in canvas units.
  explicit DrawingRecord(NSSize canvas) : canvas_(canvas) {}

  NSSize canvas() const { return canvas_; }
  /// In the order of painting.
  const RecordedNodes& nodes() const { return nodes_; }

  void add(const GraphicsState& state, GraphicsOperation operation) override;
  void beginLayer(const GraphicsState& state, const std::optional<NSRect>& content) override;
  void endLayer() override { close(); }
  void discardLayer() noexcept override;
  void beginDraw(const std::string& className, const std::string& title) override;
  void endDraw() override { close(); }
  Offscreen offscreen(const NSRect& area, NSPoint origin,
                      const CGAffineTransform& transform) override;

 private:
  RecordedNodes& innermost();
  /// Puts the innermost open node into the one around it.
  void close();

  NSSize canvas_;
  RecordedNodes nodes_;
  RecordedNodes open_;  ///< layers and draws that have begun and not ended, outermost first
};

/// A picture that was drawn: what was painted into an offscreen bitmap.
class OffscreenPicture final : public BitmapSource {
 public:
  OffscreenPicture(std::shared_ptr<const DrawingRecord> record, const NSRect& area, NSPoint origin,
                   const CGAffineTransform& transform)
      : record_(std::move(record)), area_(area), origin_(origin), transform_(transform) {}

  /// The operations, in a space whose lower left corner is that of the area.
  const DrawingRecord& record() const { return *record_; }
  /// The part of the draw's space that it shows.
  const NSRect& area() const { return area_; }
  /// Where the origin of that space lies in a user space, and the transform of that one.
  NSPoint origin() const { return origin_; }
  const CGAffineTransform& transform() const { return transform_; }

  std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat scale) const override;

 private:
  std::shared_ptr<const DrawingRecord> record_;
  NSRect area_;
  NSPoint origin_;
  CGAffineTransform transform_;
};
