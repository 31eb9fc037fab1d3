#include "draw/image/ImageFilterMembers.h"

#include <cmath>

#include "draw/core/DrawAttributes.h"
#include "draw/image/ImageFilters.h"
#include "draw/raster/ImageMask.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

constexpr const char* kFilterType = "FilterType";
constexpr const char* kImageScissor = "ImageScissor";
constexpr const char* kFilterSettings = "FilterSettings";
constexpr const char* kTypeAttribute = "DAKeyFilterType";
constexpr const char* kSettingsAttribute = "DAKeyFilterSettings";

using Bitmap = std::shared_ptr<NSBitmapImageRep>;

/// Types whose filter is not simply the one that the catalogue names.
enum SpecialType : int64_t { kInvertColors = 0, kAdjustColors = 3, kBlackAndWhite = 9 };

/// What "adjust colours" goes through. Each filter takes its own keys from the common settings.
constexpr std::string_view kColorFilters[] = {
    "CIExposureAdjust", "CIColorControls", "CIHighlightShadowAdjust",
    "CISepiaTone",      "CIHueAdjust",     "CIGammaAdjust"};

std::shared_ptr<NSObject> scissorOrNull(std::shared_ptr<NSObject> object) {
  const bool isScissor = dynamic_cast<const NSBezierPath*>(object.get()) != nullptr ||
                         dynamic_cast<const ImageMask*>(object.get()) != nullptr;
  return isScissor ? std::move(object) : nullptr;
}

Bitmap scissored(const Bitmap& image, const NSObject* scissor) {
  if (const auto* path = dynamic_cast<const NSBezierPath*>(scissor)) {
    return ScissorImage(image, *path);
  }
  if (const auto* mask = dynamic_cast<const ImageMask*>(scissor)) {
    return mask->scissorImage(image.get());
  }
  return image;
}

/// Whether `shown` has the proportions of `whole` rather than those of a part of it.
bool showsWhole(const NSSize& shown, const NSSize& whole, const NSSize& part) {
  const auto distance = [&](const NSSize& size) {
    return std::fabs(std::log(shown.width * size.height / (shown.height * size.width)));
  };
  return !(distance(part) < distance(whole));
}

/// A part of a picture where it lies in the picture, which is transparent elsewhere.
Bitmap placed(const Bitmap& part, const NSSize& whole, const NSRect& maskRect) {
  Bitmap result;
  if (!InitImageRep(whole, &result)) return nullptr;
  const ZTFocusScope focus(result);
  const NSRect inside = NSIntersectionRect(maskRect, {NSZeroPoint, whole});
  drawInRect(*part, {inside.origin, part->size()});
  return result;
}

std::shared_ptr<NSMutableDictionary> mutableCopy(const NSDictionary* dictionary) {
  return dictionary != nullptr ? std::make_shared<NSMutableDictionary>(*dictionary) : nullptr;
}

}  // namespace

void ImageFilterMembers::initFilter(int64_t type, std::shared_ptr<NSObject> selection) {
  dFilterType_ = type;
  dicFilterSettings_ = defaultSettingsForFilter(type);
  imageScissor_ = scissorOrNull(std::move(selection));
  dropEffect();
}

Bitmap ImageFilterMembers::image(const Bitmap& image, int64_t withFilter,
                                 const NSDictionary* settings, const NSObject* scissor) {
  const auto name = CIFilterNameWithType(withFilter);
  if (image == nullptr || !name) return nullptr;
  if (withFilter == kInvertColors) return ImageInvertedColors(image);
  if (withFilter == kBlackAndWhite) return ImageToBlackAndWhite(image);
  if (withFilter == kAdjustColors) {
    return ImageWithFilters(image, kColorFilters, ExtendEdges::no, settings);
  }
  // Without extended edges the whole picture is filtered, whatever the scissor says.
  if (!extendImageWhenApplyFilter(withFilter)) {
    return ImageWithFilter(image, name, ExtendEdges::no, settings);
  }
  return scissored(ImageWithFilter(image, name, ExtendEdges::yes, settings), scissor);
}

Bitmap ImageFilterMembers::effect(const Bitmap& plain, int64_t type, const NSDictionary* settings,
                                  const NSObject* scissor, const NSSize& shown) {
  Bitmap result = image(plain, type, settings, scissor);
  const auto* mask = dynamic_cast<const ImageMask*>(scissor);
  const bool isPart = mask != nullptr && result != nullptr && extendImageWhenApplyFilter(type);
  if (!isPart || !showsWhole(shown, plain->size(), result->size())) return result;
  return placed(result, plain->size(), mask->maskRect());
}

void ImageFilterMembers::setFilterSettings(const NSDictionary* settings) {
  dicFilterSettings_ = mutableCopy(settings);
  dropEffect();
}

bool ImageFilterMembers::isNewSettings(const NSDictionary* settings) const {
  return !IsEqualDrawAttributes(dicFilterSettings_.get(), settings);
}

Bitmap ImageFilterMembers::cachedEffect() const {
  if (dicFilterSettings_ == nullptr) return nullptr;
  return imageEffect_ != nullptr ? imageEffect_ : usedEffect_.lock();
}

Bitmap ImageFilterMembers::effectOf(const Bitmap& plain, const NSSize& shown, KeepEffect keep) {
  if (dicFilterSettings_ == nullptr || plain == nullptr) return plain;
  Bitmap effect = cachedEffect();
  if (effect == nullptr) {
    effect =
        this->effect(plain, dFilterType_, dicFilterSettings_.get(), imageScissor_.get(), shown);
    usedEffect_ = effect;
  }
  if (keep == KeepEffect::always) imageEffect_ = effect;
  return effect;
}

void ImageFilterMembers::dropEffect() {
  imageEffect_ = nullptr;
  usedEffect_.reset();
}

void ImageFilterMembers::decodeFilter(NSCoder& coder) {
  dFilterType_ = coder.decodeIntegerForKey(kFilterType);
  imageScissor_ = scissorOrNull(coder.decodeObjectForKey(kImageScissor));
  if (coder.containsValueForKey(kFilterSettings)) {
    const auto settings = coder.decodeObjectOfClass<NSDictionary>(kFilterSettings);
    const bool any = settings != nullptr && settings->count() > 0;
    dicFilterSettings_ = any ? mutableCopy(settings.get()) : nullptr;
  } else {
    dicFilterSettings_ = defaultSettingsForFilter(dFilterType_);
  }
}

void ImageFilterMembers::encodeFilter(NSCoder& coder) const {
  coder.encodeInteger(dFilterType_, kFilterType);
  if (imageScissor_ != nullptr) coder.encodeObject(imageScissor_, kImageScissor);
  if (dicFilterSettings_ != nullptr) coder.encodeObject(dicFilterSettings_, kFilterSettings);
}

void ImageFilterMembers::putFilterAttributes(NSMutableDictionary& attributes) const {
  attributes.setObject(NSNumber::numberWithInteger(dFilterType_), kTypeAttribute);
  if (dicFilterSettings_ != nullptr) {
    attributes.setObject(mutableCopy(dicFilterSettings_.get()), kSettingsAttribute);
  }
}

bool ImageFilterMembers::applyFilterAttributes(const NSDictionary& attributes) {
  AttributeReader in(attributes);
  in.number(kTypeAttribute, [this](const NSNumber& n) {
    dFilterType_ = n.integerValue();
    dropEffect();
  });
  in.object<NSDictionary>(kSettingsAttribute,
                          [this](const auto& settings) { setFilterSettings(settings.get()); });
  return in.applied();
}
