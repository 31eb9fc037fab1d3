#include "platform/graphics/record/DrawingRecord.h"

#include <utility>

#include "platform/graphics/context/OffscreenCanvas.h"
#include "platform/graphics/record/RecordPlayer.h"

RecordedNodes& DrawingRecord::innermost() {
  if (open_.empty()) return nodes_;
  auto& node = open_.back().content;
  if (auto* layer = std::get_if<RecordedLayer>(&node)) return layer->nodes;
  return std::get<RecordedDraw>(node).nodes;
}

void DrawingRecord::add(const GraphicsState& state, GraphicsOperation operation) {
  innermost().push_back({RecordedOperation{state, std::move(operation)}});
}

void DrawingRecord::beginLayer(const GraphicsState& state, const std::optional<NSRect>& content) {
  open_.push_back({RecordedLayer{state, content, {}}});
}

void DrawingRecord::beginDraw(const std::string& className, const std::string& title) {
  open_.push_back({RecordedDraw{className, title, {}}});
}

void DrawingRecord::close() {
  RecordedNode node = std::move(open_.back());
  open_.pop_back();
  innermost().push_back(std::move(node));
}

void DrawingRecord::discardLayer() noexcept {
  open_.pop_back();
}

GraphicsRecorder::Offscreen DrawingRecord::offscreen(const NSRect& area, NSPoint origin,
                                                     const CGAffineTransform& transform) {
  auto record = std::make_shared<DrawingRecord>(area.size);
  auto picture = std::make_shared<OffscreenPicture>(record, area, origin, transform);
  return {std::move(record), std::move(picture)};
}

std::shared_ptr<NSBitmapImageRep> OffscreenPicture::bitmap(CGFloat scale) const {
  const OffscreenCanvas canvas(area_, {scale, NSZeroPoint, {}}, {});
  playRecord(*record_);
  return canvas.bitmap();
}
