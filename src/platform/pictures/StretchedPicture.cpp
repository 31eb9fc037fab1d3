#include "platform/pictures/StretchedPicture.h"

#include "platform/foundation/Limits.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/pictures/PictureHelper.h"

namespace {

PictureFailure drawStretched(const HelperPicture& picture, const NSSize& size, const NSRect& rect,
                             CGFloat leastSide, std::shared_ptr<NSBitmapImageRep>* bitmap) {
  // Sides that are no numbers are none.
  if (!(size.width >= 1 && size.height >= 1)) return PictureFailure::unreadable;
  constexpr auto kMost = static_cast<CGFloat>(limits::kMaxCanvasPixels);
  if (size.width > kMost || size.height > kMost) return PictureFailure::tooLarge;
  const auto height = static_cast<int64_t>(size.height);
  // Rows are counted from the top.
  const CGAffineTransform transform{rect.size.width,
                                    0,
                                    0,
                                    rect.size.height,
                                    NSMinX(rect),
                                    static_cast<CGFloat>(height) - NSMaxY(rect)};
  NSSize natural;
  const PictureFailure failure = PictureHelper::shared().draw(
      picture, transform, static_cast<int64_t>(size.width), height, bitmap, &natural);
  if (failure != PictureFailure::none) return failure;
  const bool isPicture = natural.width >= leastSide && natural.height >= leastSide;
  return isPicture ? PictureFailure::none : PictureFailure::unreadable;
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> stretchedPicture(const HelperPicture& picture, const NSSize& size,
                                                   const NSRect& rect, CGFloat leastSide,
                                                   PictureFailure* failure) {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  const PictureFailure reason = drawStretched(picture, size, rect, leastSide, &bitmap);
  if (failure != nullptr) *failure = reason;
  return reason == PictureFailure::none ? bitmap : nullptr;
}
