#include "platform/pictures/CGSVGDocument.h"

#include <cmath>
#include <utility>

#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/CGContext.h"
#include "platform/pictures/PictureHelper.h"
#include "platform/pictures/StretchedPicture.h"

namespace {

std::shared_ptr<const HelperPicture> pictureOf(const std::shared_ptr<const NSData>& data,
                                               SVGEngine engine) {
  return std::make_shared<const HelperPicture>(
      engine == SVGEngine::system ? PictureKind::systemSVG : PictureKind::builtInSVG, data);
}

}  // namespace

CGSVGDocumentRef CGSVGDocumentCreateFromData(const std::shared_ptr<const NSData>& data,
                                             SVGEngine engine, PictureFailure* failure) {
  PictureFailure reason = PictureFailure::unreadable;
  CGSVGDocumentRef document;
  if (data != nullptr && data->length() > 0) {
    auto made = std::make_shared<CGSVGDocument>();
    made->picture = pictureOf(data, engine);
    reason = PictureHelper::shared().measure(*made->picture, &made->canvasSize);
    if (reason == PictureFailure::none) document = std::move(made);
  }
  if (failure != nullptr) *failure = reason;
  return document;
}

NSSize CGSVGDocumentGetCanvasSize(const CGSVGDocumentRef& document) {
  return document == nullptr ? NSZeroSize : document->canvasSize;
}

void CGContextDrawSVGDocument(CGContext& context, const CGSVGDocumentRef& document) {
  if (document == nullptr) return;
  const NSSize size = document->canvasSize;
  // User space counts upwards from the picture's lower edge.
  const CGAffineTransform toDevice =
      CGAffineTransformConcat({1, 0, 0, -1, 0, size.height}, context.deviceTransform());
  const PixelBox& clip = context.state().clip.box();
  const NSRect shown =
      NSIntersectionRect(CGRectApplyAffineTransform({NSZeroPoint, size}, toDevice),
                         NSMakeRect(clip.x0, clip.y0, clip.x1 - clip.x0, clip.y1 - clip.y0));
  const auto x = static_cast<int64_t>(std::floor(NSMinX(shown)));
  const auto y = static_cast<int64_t>(std::floor(NSMinY(shown)));
  const auto width = static_cast<int64_t>(std::ceil(NSMaxX(shown))) - x;
  const auto height = static_cast<int64_t>(std::ceil(NSMaxY(shown))) - y;
  std::shared_ptr<NSBitmapImageRep> bitmap;
  const CGAffineTransform fromFractions =
      CGAffineTransformConcat(CGAffineTransformMakeScale(size.width, size.height), toDevice);
  const CGAffineTransform toPart = CGAffineTransformConcat(
      fromFractions,
      CGAffineTransformMakeTranslation(-static_cast<CGFloat>(x), -static_cast<CGFloat>(y)));
  if (PictureHelper::shared().draw(*document->picture, toPart, width, height, &bitmap) ==
      PictureFailure::none) {
    context.drawInDeviceSpace(*bitmap, x, y);
  }
}

void CGSVGDocumentRelease(CGSVGDocumentRef& document) {
  document = nullptr;
}

std::shared_ptr<NSBitmapImageRep> bitmapOfSVGDocument(const CGSVGDocumentRef& document,
                                                      const NSSize& size, const NSRect& rect,
                                                      PictureFailure* failure) {
  return document == nullptr ? nullptr
                             : stretchedPicture(*document->picture, size, rect, 1, failure);
}

std::shared_ptr<NSBitmapImageRep> stretchedSVG(const std::shared_ptr<const NSData>& data,
                                               SVGEngine engine, const NSSize& size,
                                               PictureFailure* failure) {
  const NSRect whole{NSZeroPoint, {std::trunc(size.width), std::trunc(size.height)}};
  return stretchedPicture(*pictureOf(data, engine), size, whole, 1, failure);
}
