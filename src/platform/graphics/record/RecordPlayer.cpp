#include "platform/graphics/record/RecordPlayer.h"

#include <memory>
#include <vector>

#include "platform/graphics/context/OffscreenCanvas.h"
#include "platform/graphics/record/DrawingRecord.h"

namespace {

using Clip = std::shared_ptr<const RecordedClip>;

/// Plays nodes into a context whose clip they take for the whole canvas.
class NodePlayer {
 public:
  explicit NodePlayer(CGContext& context) : context_(context), whole_(context) {}
  NodePlayer(const NodePlayer&) = delete;
  NodePlayer& operator=(const NodePlayer&) = delete;
  ~NodePlayer() { leaveClip(); }

  void play(const RecordedNodes& nodes) {
    for (const RecordedNode& node : nodes) {
      std::visit([this](const auto& content) { play(content); }, node.content);
    }
  }

 private:
  void play(const RecordedOperation& recorded);
  void play(const RecordedLayer& layer);
  void play(const RecordedDraw& draw) { play(draw.nodes); }

  void paint(const FillOperation& fill) { context_.fill(fill.path, fill.winding); }
  void paint(const StrokeOperation& stroke) { context_.stroke(stroke.path, stroke.style); }
  void paint(const GradientOperation& gradient);
  void paint(const PictureOperation& picture);
  void paint(const PixelOperation& pixels);
  void paint(const GlyphOperation& glyphs) { glyphs.glyphs->paint(context_); }

  /// Neighbours mostly have the same clip, which is made once for them.
  void enterClip(const Clip& clip);
  void leaveClip();
  void clipTo(const RecordedClip& clip);
  void setState(const GraphicsState& state);

  CGContext& context_;
  CGContextStateScope whole_;
  Clip clip_;  ///< in force, on a saved state of its own
};

void NodePlayer::leaveClip() {
  if (clip_ != nullptr) context_.restoreGState();
  clip_ = nullptr;
}

void NodePlayer::enterClip(const Clip& clip) {
  if (clip == clip_) return;
  leaveClip();
  if (clip == nullptr) return;
  context_.saveGState();
  clip_ = clip;
  clipTo(*clip);
}

void NodePlayer::clipTo(const RecordedClip& clip) {
  std::vector<const RecordedClip*> clips;
  for (const RecordedClip* c = &clip; c != nullptr; c = c->before.get()) clips.push_back(c);
  for (auto c = clips.rbegin(); c != clips.rend(); ++c) {
    context_.setTransform((*c)->transform);
    context_.setShouldAntialias((*c)->antialias);
    context_.clip((*c)->path, (*c)->winding);
  }
}

void NodePlayer::setState(const GraphicsState& state) {
  context_.setTransform(state.transform);
  context_.setAlpha(state.alpha);
  context_.setOperation(state.operation);
  context_.setShadow(state.shadow);
  context_.setShouldAntialias(state.antialias);
  context_.setInterpolation(state.interpolation);
  context_.setFillColor(state.fillColor);
  context_.setStrokeColor(state.strokeColor);
}

void NodePlayer::play(const RecordedOperation& recorded) {
  enterClip(recorded.state.recordedClip);
  const CGContextStateScope scope(context_);
  setState(recorded.state);
  std::visit([this](const auto& operation) { paint(operation); }, recorded.operation);
}

void NodePlayer::play(const RecordedLayer& layer) {
  enterClip(layer.state.recordedClip);
  const CGContextStateScope scope(context_);
  setState(layer.state);
  std::optional<CGTransparencyLayerScope> open;
  if (layer.content) {
    open.emplace(context_, *layer.content);
  } else {
    open.emplace(context_);
  }
  NodePlayer(context_).play(layer.nodes);
  open->end();
}

void NodePlayer::paint(const GradientOperation& gradient) {
  std::visit(
      [&](const auto& axis) {
        if (gradient.path) {
          context_.fill(*gradient.path, gradient.winding, gradient.gradient, axis);
        } else {
          context_.draw(gradient.gradient, axis, gradient.extent);
        }
      },
      gradient.axis);
}

void NodePlayer::paint(const PixelOperation& pixels) {
  context_.replacePixels({pixels.mask.data(), pixels.box.width(), pixels.box}, pixels.pixel);
}

/// A picture as it is drawn: made for the pixels of the context.
struct MadePicture {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  NSRect destination;
};

/// The bitmap of an offscreen picture shows a little more than its area: whole pixels.
MadePicture made(const OffscreenPicture& picture, const NSRect& destination, CGContext& context) {
  OffscreenGrid grid;
  {
    const CGContextStateScope scope(context);
    context.setTransform(picture.transform());
    grid = offscreenGridAt(picture.origin());
  }
  const OffscreenCanvas canvas(picture.area(), grid, {});
  playRecord(picture.record());
  const NSRect& area = picture.area();
  NSRect shown = NSOffsetRect(destination, NSMinX(canvas.rect()) - NSMinX(area),
                              NSMinY(canvas.rect()) - NSMinY(area));
  shown.size = canvas.rect().size;
  return {canvas.bitmap(), shown};
}

void NodePlayer::paint(const PictureOperation& picture) {
  MadePicture shown{nullptr, picture.destination};
  if (const auto* offscreen = dynamic_cast<const OffscreenPicture*>(picture.picture.get())) {
    shown = made(*offscreen, picture.destination, context_);
  } else {
    shown.bitmap = bitmapToDraw(picture.picture);
  }
  if (shown.bitmap == nullptr) return;
  const GraphicsState state = context_.state();
  if (picture.manner == PictureOperation::Manner::replace) {
    context_.drawReplacing(*shown.bitmap, shown.destination, state.alpha);
  } else {
    context_.draw(*shown.bitmap, shown.destination, picture.source, state.operation, state.alpha);
  }
}

}  // namespace

void playRecord(const DrawingRecord& record) {
  const auto context = NSGraphicsContext::currentContext();
  if (context == nullptr) return;
  NodePlayer(*context->graphicsPort()).play(record.nodes());
}
