#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/pictures/CGSVGDocument.h"

/// An SVG picture that is drawn anew wherever it is shown. The name is the host's.
class _NSSVGImageRep : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  /// Null when the data is no picture that the system's renderer can draw.
  static std::shared_ptr<_NSSVGImageRep> initWithData(const std::shared_ptr<const NSData>& data);

  NSSize size() const { return CGSVGDocumentGetCanvasSize(document_); }
  /// Stretches the picture over a rectangle in the current context's user space. Nothing without a
  /// context, and when the picture cannot be drawn.
  void drawInRect(const NSRect& rect) const;

 private:
  CGSVGDocumentRef document_;
};
