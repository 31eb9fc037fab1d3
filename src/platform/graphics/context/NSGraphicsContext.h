#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/context/CGContext.h"

/// The drawing context that calls without a context argument draw into. Each thread has its own
/// current context and its own stack of saved ones.
class NSGraphicsContext {
 public:
  static std::shared_ptr<NSGraphicsContext> graphicsContextWithBitmapImageRep(
      const std::shared_ptr<NSBitmapImageRep>& bitmap);

  /// The calling thread's current context; null when there is none.
  static const std::shared_ptr<NSGraphicsContext>& currentContext();
  static void setCurrentContext(std::shared_ptr<NSGraphicsContext> context);

  /// Saves the current context's state, and which context is current. May be called without a
  /// current context.
  static void saveGraphicsState();
  /// Undoes what happened since the last saveGraphicsState on this thread that was not undone yet;
  /// nothing without one.
  static void restoreGraphicsState();

  explicit NSGraphicsContext(const std::shared_ptr<NSBitmapImageRep>& bitmap);
  NSGraphicsContext(const std::shared_ptr<NSBitmapImageRep>& bitmap, const CanvasView& view)
      : port_(bitmap, view) {}
  NSGraphicsContext(std::shared_ptr<GraphicsRecorder> recorder, NSSize canvas)
      : port_(std::move(recorder), canvas) {}

  CGContext* graphicsPort() { return &port_; }

  NSCompositingOperation compositingOperation() const { return port_.state().operation; }
  void setCompositingOperation(NSCompositingOperation operation) { port_.setOperation(operation); }
  void setShouldAntialias(bool antialias) { port_.setShouldAntialias(antialias); }
  void setImageInterpolation(NSImageInterpolation quality) { port_.setInterpolation(quality); }

 private:
  CGContext port_;
};

/// Saves the graphics state for the length of a scope.
class NSGraphicsStateScope {
 public:
  NSGraphicsStateScope() { NSGraphicsContext::saveGraphicsState(); }
  NSGraphicsStateScope(const NSGraphicsStateScope&) = delete;
  NSGraphicsStateScope& operator=(const NSGraphicsStateScope&) = delete;
  ~NSGraphicsStateScope() { NSGraphicsContext::restoreGraphicsState(); }
};

/// Saves the graphics state and makes a new context on the bitmap current.
void ZTLockFocus(const std::shared_ptr<NSBitmapImageRep>& bitmap);
/// Restores the state saved by ZTLockFocus. The argument names the bitmap that loses the focus.
void ZTUnlockFocus(const std::shared_ptr<NSBitmapImageRep>& bitmap);

/// Locks the focus on a bitmap for the length of a scope.
class ZTFocusScope {
 public:
  explicit ZTFocusScope(std::shared_ptr<NSBitmapImageRep> bitmap);
  /// Of a bitmap that shows a part of a canvas (see CGContext).
  ZTFocusScope(std::shared_ptr<NSBitmapImageRep> bitmap, const CanvasView& view);
  /// Of no bitmap: what is drawn goes to a recorder.
  ZTFocusScope(std::shared_ptr<GraphicsRecorder> recorder, NSSize canvas);
  ZTFocusScope(const ZTFocusScope&) = delete;
  ZTFocusScope& operator=(const ZTFocusScope&) = delete;
  ~ZTFocusScope();

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_;
};

/// Whether what is drawn now is recorded.
bool isRecordingDrawing();

/// What to draw for a picture that is made from something: the bitmap at the scale of the current
/// context, or what stands for it in a record. Null when it cannot be made.
std::shared_ptr<NSBitmapImageRep> bitmapToDraw(std::shared_ptr<const BitmapSource> source);

/// Makes a transparent bitmap of the size truncated to whole pixels. Null, and false, for sides
/// that are negative or not finite and where NSBitmapImageRep::create gives none.
bool InitImageRep(const NSSize& size, std::shared_ptr<NSBitmapImageRep>* bitmap);

// The calls below draw into the current context, and do nothing without one.

/// Fills with the fill colour in copy mode, whatever the context's operation.
void NSRectFill(const NSRect& rect);
void NSRectFillUsingOperation(const NSRect& rect, NSCompositingOperation operation);
/// Intersects the clip with the rectangle.
void NSRectClip(const NSRect& rect);

/// Draws the whole bitmap stretched over `destination`, with the context's operation and alpha.
void drawInRect(const NSBitmapImageRep& bitmap, const NSRect& destination);

/// Draws part of a bitmap stretched over `destination`. The zero rectangle as `fromRect` means
/// the whole bitmap. `fraction` (0..1; above 1 counts as 1) takes the place of the context's
/// alpha.
void drawInRect(const NSBitmapImageRep& bitmap, const NSRect& destination, const NSRect& fromRect,
                NSCompositingOperation operation, CGFloat fraction);
