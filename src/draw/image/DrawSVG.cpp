#include "draw/image/DrawSVG.h"

#include <utility>

#include "draw/image/BitmapSources.h"
#include "draw/image/RasterizedPicture.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "svg/ZTSVGTool.h"

const NSClass DrawSVG::kClass{"DrawSVG", &DrawImage2::kClass, NSAllocate<DrawSVG>};

namespace {

constexpr const char* kSVGData = "SVGData";

}  // namespace

std::shared_ptr<DrawSVG> DrawSVG::drawWithSVGData(const std::shared_ptr<NSData>& data) {
  if (!ZTSVGTool::isSVGFormatData(data.get())) return nullptr;
  auto draw = std::make_shared<DrawSVG>();
  draw->init();
  draw->_svgData = data;
  draw->bezierPath()->setLineWidth(0);
  const NSSize size = draw->originalSVGSize();
  if (!(size.width >= 1 && size.height >= 1)) return nullptr;
  draw->setBezierPathWithBounds({NSZeroPoint, size});
  return draw->image() == nullptr ? nullptr : draw;
}

bool DrawSVG::useSVGNative() const {
  if (!_useSVGNative) _useSVGNative = !ZTSVGTool::canUseSystemSVGFramework();
  return *_useSVGNative;
}

SVGEngine DrawSVG::engine() const {
  return useSVGNative() ? SVGEngine::builtIn : SVGEngine::system;
}

NSSize DrawSVG::originalSVGSize() const {
  if (!ZTSVGTool::isSVGFormatData(_svgData.get())) return NSZeroSize;
  return ZTSVGTool::originalSizeOfSVG(_svgData.get(), engine());
}

std::shared_ptr<NSBitmapImageRep> DrawSVG::makeImage(CGFloat scale, PictureFailure* failure) const {
  if (_svgData == nullptr) return nullptr;
  *failure = PictureFailure::unreadable;
  if (!ZTSVGTool::isSVGFormatData(_svgData.get())) return nullptr;
  const NSSize size = rasterSize(pathBounds(), scale);
  const SVGEngine svg = engine();
  return rememberedRaster(PictureKey::Kind::svg, _svgData, size, static_cast<int64_t>(svg), [&] {
    return ZTSVGTool::imageWithSVGData(_svgData.get(), size, false, svg, failure);
  });
}

std::shared_ptr<const BitmapSource> DrawSVG::pictureSource() const {
  if (keepsImage() || _svgData == nullptr) return DrawImage2::pictureSource();
  return std::make_shared<SVGPicture>(_svgData, engine(), pathBounds());
}

void DrawSVG::flip(bool horizontal) {
  DrawImage2::flip(horizontal);
  bool& flag = horizontal ? _flipHorizontal : _flipVertical;
  flag = !flag;
}

void DrawSVG::setBezierPathWithBounds(NSRect bounds) {
  const NSRect old = pathBounds();
  DrawImage2::setBezierPathWithBounds(bounds);
  respondToBoundsChangeFromOldBounds(old);
}

void DrawSVG::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  const NSRect old = pathBounds();
  DrawImage2::setBezierPathWithData(data);
  respondToBoundsChangeFromOldBounds(old);
}

void DrawSVG::mapGeometry(const AxisMap& map) {
  const NSRect old = pathBounds();
  DrawImage2::mapGeometry(map);
  respondToBoundsChangeFromOldBounds(old);
}

bool DrawSVG::fitsCachedImage() const {
  const auto cached = cachedImage();
  return cached == nullptr || cached->size() == pathBounds().size;
}

void DrawSVG::respondToBoundsChangeFromOldBounds(const NSRect& oldBounds) {
  if (bResizingByDragging_ && useSVGNative()) return;
  if (pathBounds().size != oldBounds.size && !fitsCachedImage()) setImage(nullptr);
}

void DrawSVG::setResizingByDragging(bool dragging) {
  DrawImage2::setResizingByDragging(dragging);
  if (!dragging && !fitsCachedImage()) setImage(nullptr);
}

bool DrawSVG::initWithCoder(NSCoder& coder) {
  if (!DrawImage2::initWithCoder(coder)) return false;
  _flipHorizontal = coder.decodeBoolForKey(kFlipHorizontal);
  _flipVertical = coder.decodeBoolForKey(kFlipVertical);
  auto data = coder.decodeDataForKey(kSVGData);
  if (data != nullptr && data->length() > 0) _svgData = std::move(data);
  return true;
}

void DrawSVG::encodeWithCoder(NSCoder& coder) const {
  DrawImage2::encodeWithCoder(coder);
  if (_svgData != nullptr) coder.encodeObject(_svgData, kSVGData);
  if (_flipHorizontal) coder.encodeBool(true, kFlipHorizontal);
  if (_flipVertical) coder.encodeBool(true, kFlipVertical);
}
