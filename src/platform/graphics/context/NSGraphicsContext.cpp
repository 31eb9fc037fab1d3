#include "platform/graphics/context/NSGraphicsContext.h"

#include <limits>
#include <utility>
#include <vector>

#include "platform/graphics/context/CurrentContext.h"

namespace {

struct ThreadContexts {
  std::shared_ptr<NSGraphicsContext> current;
  std::vector<std::shared_ptr<NSGraphicsContext>> saved;
};

ThreadContexts& threadContexts() {
  thread_local ThreadContexts contexts;
  return contexts;
}

}  // namespace

NSGraphicsContext::NSGraphicsContext(const std::shared_ptr<NSBitmapImageRep>& bitmap)
    : port_(bitmap) {}

std::shared_ptr<NSGraphicsContext> NSGraphicsContext::graphicsContextWithBitmapImageRep(
    const std::shared_ptr<NSBitmapImageRep>& bitmap) {
  return std::make_shared<NSGraphicsContext>(bitmap);
}

const std::shared_ptr<NSGraphicsContext>& NSGraphicsContext::currentContext() {
  return threadContexts().current;
}

void NSGraphicsContext::setCurrentContext(std::shared_ptr<NSGraphicsContext> context) {
  threadContexts().current = std::move(context);
}

void NSGraphicsContext::saveGraphicsState() {
  ThreadContexts& contexts = threadContexts();
  contexts.saved.push_back(contexts.current);
  if (contexts.current == nullptr) return;
  try {
    contexts.current->graphicsPort()->saveGState();
  } catch (...) {
    contexts.saved.pop_back();  // what is not saved must not be restored
    throw;
  }
}

void NSGraphicsContext::restoreGraphicsState() {
  ThreadContexts& contexts = threadContexts();
  if (contexts.saved.empty()) return;
  contexts.current = std::move(contexts.saved.back());
  contexts.saved.pop_back();
  if (contexts.current != nullptr) contexts.current->graphicsPort()->restoreGState();
}

void ZTLockFocus(const std::shared_ptr<NSBitmapImageRep>& bitmap) {
  auto context = NSGraphicsContext::graphicsContextWithBitmapImageRep(bitmap);
  NSGraphicsContext::saveGraphicsState();
  NSGraphicsContext::setCurrentContext(std::move(context));
}

void ZTUnlockFocus(const std::shared_ptr<NSBitmapImageRep>&) {
  NSGraphicsContext::restoreGraphicsState();
}

ZTFocusScope::ZTFocusScope(std::shared_ptr<NSBitmapImageRep> bitmap) : bitmap_(std::move(bitmap)) {
  ZTLockFocus(bitmap_);
}

ZTFocusScope::ZTFocusScope(std::shared_ptr<NSBitmapImageRep> bitmap, const CanvasView& view)
    : bitmap_(std::move(bitmap)) {
  auto context = std::make_shared<NSGraphicsContext>(bitmap_, view);
  NSGraphicsContext::saveGraphicsState();
  NSGraphicsContext::setCurrentContext(std::move(context));
}

ZTFocusScope::ZTFocusScope(std::shared_ptr<GraphicsRecorder> recorder, NSSize canvas) {
  auto context = std::make_shared<NSGraphicsContext>(std::move(recorder), canvas);
  NSGraphicsContext::saveGraphicsState();
  NSGraphicsContext::setCurrentContext(std::move(context));
}

ZTFocusScope::~ZTFocusScope() {
  ZTUnlockFocus(bitmap_);
}

bool isRecordingDrawing() {
  const CGContext* const port = currentPort();
  return port != nullptr && port->recorder() != nullptr;
}

std::shared_ptr<NSBitmapImageRep> bitmapToDraw(std::shared_ptr<const BitmapSource> source) {
  const CGContext* const port = currentPort();
  if (!isRecordingDrawing()) return source->bitmap(port == nullptr ? 1 : port->scale());
  auto bitmap = NSBitmapImageRep::create(1, 1);
  bitmap->setSource(std::move(source));
  return bitmap;
}

bool InitImageRep(const NSSize& size, std::shared_ptr<NSBitmapImageRep>* bitmap) {
  constexpr auto kLargest = static_cast<CGFloat>(std::numeric_limits<uint32_t>::max());
  const bool valid =
      size.width >= 0 && size.height >= 0 && size.width <= kLargest && size.height <= kLargest;
  *bitmap = valid ? NSBitmapImageRep::create(static_cast<int64_t>(size.width),
                                             static_cast<int64_t>(size.height))
                  : nullptr;
  return *bitmap != nullptr;
}

void NSRectFill(const NSRect& rect) {
  NSRectFillUsingOperation(rect, NSCompositingOperation::copy);
}

void NSRectFillUsingOperation(const NSRect& rect, NSCompositingOperation operation) {
  if (CGContext* port = currentPort()) port->fill(rect, operation);
}

void NSRectClip(const NSRect& rect) {
  if (CGContext* port = currentPort()) port->clip(rect);
}

void drawInRect(const NSBitmapImageRep& bitmap, const NSRect& destination) {
  if (CGContext* port = currentPort()) port->draw(bitmap, destination);
}

void drawInRect(const NSBitmapImageRep& bitmap, const NSRect& destination, const NSRect& fromRect,
                NSCompositingOperation operation, CGFloat fraction) {
  if (CGContext* port = currentPort()) {
    port->draw(bitmap, destination, fromRect, operation, fraction);
  }
}
