#include "draw/image/DrawFilter2.h"

#include "draw/image/BitmapHelpers.h"
#include "draw/image/BitmapSources.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass DrawFilter2::kClass{"DrawFilter2", &DrawImage2::kClass, NSAllocate<DrawFilter2>};

std::shared_ptr<DrawFilter2> DrawFilter2::initWithImage(std::shared_ptr<NSBitmapImageRep> image,
                                                        std::shared_ptr<NSObject> selection,
                                                        int64_t filterType) {
  auto draw = std::make_shared<DrawFilter2>();
  draw->initWithBitmap(std::move(image));
  draw->initFilter(filterType, std::move(selection));
  return draw;
}

std::shared_ptr<DrawFilter2> DrawFilter2::initWithDraw(DrawImage2& draw, int64_t filterType) {
  auto filter = initWithImage(draw.imageForDrawing(), nullptr, filterType);
  filter->copyCommonAttributesFrom(draw);
  filter->fXRadius_ = draw.xRadius();
  filter->fYRadius_ = draw.yRadius();
  filter->setOpacity(draw.opacity());
  return filter;
}

void DrawFilter2::setFilterMembers(const ImageFilterMembers& members) {
  static_cast<ImageFilterMembers&>(*this) = members;
}

void DrawFilter2::setImage(std::shared_ptr<NSBitmapImageRep> image) {
  DrawImage2::setImage(std::move(image));
  dropEffect();
}

std::shared_ptr<const BitmapSource> DrawFilter2::pictureSource() const {
  if (auto effect = cachedEffect()) return std::make_shared<HeldPicture>(std::move(effect));
  auto plain = DrawImage2::pictureSource();
  if (plain == nullptr || dicFilterSettings_ == nullptr) return plain;
  return std::make_shared<FilteredPicture>(
      std::move(plain), dFilterType_, std::make_shared<NSMutableDictionary>(*dicFilterSettings_),
      imageScissor_, pathBounds().size);
}

std::shared_ptr<NSBitmapImageRep> DrawFilter2::imageForDrawing() {
  if (isRecordingDrawing()) return image();
  if (auto effect = cachedEffect()) return effect;
  // A picture that is decoded anew for every drawing takes its effect along when it goes.
  return effectOf(image(), pathBounds().size,
                  keepsImage() ? KeepEffect::always : KeepEffect::whileUsed);
}

void DrawFilter2::flip(bool horizontal) {
  const auto effect = cachedEffect();
  DrawImage2::flip(horizontal);
  imageEffect_ = ImageFliped(effect, horizontal);
}

std::shared_ptr<NSDictionary> DrawFilter2::drawAttributes() const {
  auto attributes = std::make_shared<NSMutableDictionary>(*DrawImage2::drawAttributes());
  putFilterAttributes(*attributes);
  return attributes;
}

bool DrawFilter2::setDrawAttributes(const NSDictionary& attributes) {
  if (!canSetDrawAttributes(&attributes)) return false;
  const bool applied = DrawImage2::setDrawAttributes(attributes);
  return applyFilterAttributes(attributes) || applied;
}

bool DrawFilter2::initWithCoder(NSCoder& coder) {
  if (!DrawImage2::initWithCoder(coder)) return false;
  decodeFilter(coder);
  return true;
}

void DrawFilter2::encodeWithCoder(NSCoder& coder) const {
  DrawImage2::encodeWithCoder(coder);
  encodeFilter(coder);
}
