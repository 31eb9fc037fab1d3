#include "platform/pictures/NSSVGImageRep.h"

#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass _NSSVGImageRep::kClass{"_NSSVGImageRep", &NSObject::kClass, nullptr};

std::shared_ptr<_NSSVGImageRep> _NSSVGImageRep::initWithData(
    const std::shared_ptr<const NSData>& data) {
  auto document = CGSVGDocumentCreateFromData(data);
  if (document == nullptr) return nullptr;
  auto image = std::make_shared<_NSSVGImageRep>();
  image->document_ = std::move(document);
  return image;
}

void _NSSVGImageRep::drawInRect(const NSRect& rect) const {
  const NSSize own = size();
  if (NSGraphicsContext::currentContext() == nullptr || !(own.width > 0 && own.height > 0)) return;
  const NSGraphicsStateScope state;
  CGContext& port = *NSGraphicsContext::currentContext()->graphicsPort();
  port.concatenate({rect.size.width / own.width, 0, 0, rect.size.height / own.height, NSMinX(rect),
                    NSMinY(rect)});
  CGContextDrawSVGDocument(port, document_);
}
