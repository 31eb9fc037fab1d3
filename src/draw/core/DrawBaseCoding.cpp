// The archived record that every draw shares, and the archives of lists of draws.
#include <algorithm>

#include "draw/core/DrawBase.h"
#include "draw/core/DrawClasses.h"
#include "draw/core/PaintManagerContext.h"
#include "draw/core/ReflectionLimits.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"

namespace {

constexpr CGFloat kDefaultGradientDegree = 90;

constexpr const char* kDrawBaseVersion = "DrawBaseVersion";
constexpr const char* kPaintDraws = "PaintDraws";

bool decodeBool(NSCoder& coder, const char* key, bool absent) {
  return coder.containsValueForKey(key) ? coder.decodeBoolForKey(key) : absent;
}

float decodeFloat(NSCoder& coder, const char* key, CGFloat absent) {
  return coder.containsValueForKey(key) ? coder.decodeFloatForKey(key) : static_cast<float>(absent);
}

std::shared_ptr<NSShadow> makeShadow(CGFloat white, CGFloat alpha, CGFloat blur, NSSize offset) {
  auto shadow = std::make_shared<NSShadow>();
  shadow->setShadowColor(NSColor::colorWithCalibratedWhite(white, alpha));
  shadow->setShadowBlurRadius(blur);
  shadow->setShadowOffset(offset);
  return shadow;
}

}  // namespace

void DrawBase::encodeStroke(NSCoder& coder) const {
  coder.encodeBool(bEnableStroke_, "EnableStroke");
  if (bEnableStroke_) {
    coder.encodeBool(bStrokeWithGdt_, "IsStrokeWithGdt");
    if (bStrokeWithGdt_) {
      coder.encodeBool(bStrokeRadialGdt_, "IsStrokeRadialGdt");
      coder.encodeFloat(fStrokeGdtDegree_, "StrokeGdtDegree");
      coder.encodePoint(ptStrokeGdtCenter_, "StrokeGdtCenter");
      if (gradientStroke_) coder.encodeObject(gradientStroke_, "StrokeGradient");
    } else if (colorStroke_) {
      coder.encodeObject(colorStroke_, "ForeColor");
    }
  }
  if (_enableStrokeOutline) {
    coder.encodeBool(true, "EnableStrokeOutline");
    coder.encodeFloat(_strokeOutlineWidth, "StrokeOutlineWidth");
    if (_strokeOutlineColor) coder.encodeObject(_strokeOutlineColor, "StrokeOutlineColor");
  }
}

void DrawBase::encodeFill(NSCoder& coder) const {
  coder.encodeBool(bEnableFill_, "EnableFill");
  if (!bEnableFill_) return;
  coder.encodeBool(bFillWithGdt_, "IsFillWithGdt");
  if (bFillWithGdt_) {
    coder.encodeBool(bFillRadialGdt_, "IsFillRadialGdt");
    coder.encodeFloat(fFillGdtDegree_, "FillGdtDegree");
    coder.encodePoint(ptFillGdtCenter_, "FillGdtCenter");
    if (gradientFill_) coder.encodeObject(gradientFill_, "FillGradient");
  } else if (colorFill_) {
    coder.encodeObject(colorFill_, "BackColor");
  }
}

void DrawBase::encodeEffects(NSCoder& coder) const {
  if (bEnableShadow_) {
    coder.encodeBool(true, "EnableShadow");
    if (shadow_) coder.encodeObject(shadow_, "Shadow");
  }
  if (bEnableInnerShadow_) {
    coder.encodeBool(true, "EnableInnerShadow");
    if (shadowInner_) coder.encodeObject(shadowInner_, "InnerShadow");
  }
  if (bEnableReflection_) {
    coder.encodeBool(true, "EnableReflection");
    coder.encodeFloat(fReflection_, "Reflection");
    coder.encodeFloat(fReflectionDis_, "ReflectionDis");
  }
}

void DrawBase::encodeWithCoder(NSCoder& coder) const {
  if (bezierPath_) coder.encodeObject(bezierPath_, "BezierPath");
  encodeStroke(coder);
  encodeFill(coder);
  encodeEffects(coder);
  if (fRotateDegree_ != 0) coder.encodeFloat(fRotateDegree_, "RotateDegree");
  if (!bVisible_) coder.encodeBool(false, "Visible");
  if (!bSmooth_) coder.encodeBool(false, "SmoothLine");
  if (strLayerTitle_) coder.encodeString(*strLayerTitle_, "LayerTitle");
  if (bLocked_) coder.encodeBool(true, "Locked");
  coder.encodeInt32(static_cast<int32_t>(opacity()), "Alpha");
}

void DrawBase::decodeStroke(NSCoder& coder) {
  bEnableStroke_ = decodeBool(coder, "EnableStroke", classDrawStroke());
  colorStroke_ = coder.decodeObjectOfClass<NSColor>("ForeColor");
  if (bEnableStroke_ && colorStroke_ == nullptr) colorStroke_ = NSColor::blackColor();
  bStrokeWithGdt_ = decodeBool(coder, "IsStrokeWithGdt", false);
  gradientStroke_ = coder.decodeObjectOfClass<NSGradient>("StrokeGradient");
  if (bEnableStroke_ && gradientStroke_ == nullptr) bStrokeWithGdt_ = false;
  bStrokeRadialGdt_ = decodeBool(coder, "IsStrokeRadialGdt", false);
  fStrokeGdtDegree_ = decodeFloat(coder, "StrokeGdtDegree", kDefaultGradientDegree);
  ptStrokeGdtCenter_ = coder.decodePointForKey("StrokeGdtCenter");
  _enableStrokeOutline = coder.decodeBoolForKey("EnableStrokeOutline");
  if (!_enableStrokeOutline) return;
  _strokeOutlineWidth = coder.decodeFloatForKey("StrokeOutlineWidth");
  _strokeOutlineColor = coder.decodeObjectOfClass<NSColor>("StrokeOutlineColor");
}

void DrawBase::decodeFill(NSCoder& coder) {
  bEnableFill_ = decodeBool(coder, "EnableFill", classDrawFill());
  bFillWithGdt_ = decodeBool(coder, "IsFillWithGdt", false);
  colorFill_ = coder.decodeObjectOfClass<NSColor>("BackColor");
  gradientFill_ = coder.decodeObjectOfClass<NSGradient>("FillGradient");
  if (bEnableFill_ && gradientFill_ == nullptr) bFillWithGdt_ = false;
  bFillRadialGdt_ = decodeBool(coder, "IsFillRadialGdt", false);
  fFillGdtDegree_ = decodeFloat(coder, "FillGdtDegree", kDefaultGradientDegree);
  ptFillGdtCenter_ = coder.decodePointForKey("FillGdtCenter");
  if (bEnableFill_ && !bFillWithGdt_ && colorFill_ == nullptr) colorFill_ = NSColor::blackColor();
}

void DrawBase::decodeEffects(NSCoder& coder) {
  bEnableShadow_ = coder.decodeBoolForKey("EnableShadow");
  shadow_ = coder.decodeObjectOfClass<NSShadow>("Shadow");
  if (bEnableShadow_ && shadow_ == nullptr) shadow_ = makeShadow(0, 0.85, 8, {8, -8});
  bEnableInnerShadow_ = coder.decodeBoolForKey("EnableInnerShadow");
  shadowInner_ = coder.decodeObjectOfClass<NSShadow>("InnerShadow");
  if (bEnableInnerShadow_ && shadowInner_ == nullptr) shadowInner_ = makeShadow(0.3, 1, 6, {6, -6});
  bEnableReflection_ = coder.decodeBoolForKey("EnableReflection");
  fReflection_ = coder.decodeFloatForKey("Reflection");
  fReflectionDis_ = decodeFloat(coder, "ReflectionDis", kUnsetReflectionDistance);
  if (bEnableReflection_ && fReflectionDis_ < kLowestReflectionDistance) fReflectionDis_ = 0;
}

bool DrawBase::initWithCoder(NSCoder& coder) {
  // A path that is there but cannot be decoded leaves the draw without one: it draws nothing.
  bezierPath_ = coder.containsValueForKey("BezierPath")
                    ? coder.decodeObjectOfClass<NSBezierPath>("BezierPath")
                    : NSBezierPath::bezierPath();
  decodeStroke(coder);
  decodeFill(coder);
  decodeEffects(coder);
  fRotateDegree_ = normalizedDegree(coder.decodeFloatForKey("RotateDegree"));
  bVisible_ = decodeBool(coder, "Visible", true);
  bSmooth_ = decodeBool(coder, "SmoothLine", true);
  strLayerTitle_ = coder.decodeStringForKey("LayerTitle");
  bLocked_ = coder.decodeBoolForKey("Locked");
  opacity_ = 100;
  if (coder.containsValueForKey("Alpha")) {
    opacity_ = static_cast<uint8_t>(std::clamp(coder.decodeInt32ForKey("Alpha"), 0, 100));
  }
  return true;
}

std::shared_ptr<NSData> DrawBase::encodedDataWithDraws(const DrawArray& draws) {
  if (draws.empty()) return nullptr;
  auto data = std::make_shared<NSMutableData>();
  NSKeyedArchiver archiver(data);
  archiver.setOutputFormat(NSPropertyListBinaryFormat_v1_0);
  archiver.encodeInteger(version(), kDrawBaseVersion);
  archiver.encodeObject(NSArray::arrayWithObjects(NSArray::Objects(draws.begin(), draws.end())),
                        kPaintDraws);
  archiver.finishEncoding();
  return data;
}

namespace {

std::shared_ptr<NSArray> decodedList(const std::shared_ptr<const NSData>& data) {
  NSKeyedUnarchiver unarchiver(data);
  if (!unarchiver.containsValueForKey(kPaintDraws)) {
    return std::dynamic_pointer_cast<NSArray>(NSKeyedUnarchiver::unarchiveObjectWithData(data));
  }
  if (unarchiver.containsValueForKey(kDrawBaseVersion)) {
    auto context = std::make_shared<PaintManagerContext>();
    context->setSavedVersion(unarchiver.decodeIntegerForKey(kDrawBaseVersion));
    setPaintMangerContext(unarchiver, std::move(context));
  }
  return unarchiver.decodeObjectOfClass<NSArray>(kPaintDraws);
}

/// The list in an archive of draws; null when it is empty or cannot be read.
std::shared_ptr<NSArray> listFromEncodedData(const std::shared_ptr<const NSData>& data) {
  if (data == nullptr || data->length() == 0) return nullptr;
  registerDrawClasses();
  try {
    auto list = decodedList(data);
    return list != nullptr && list->count() > 0 ? list : nullptr;
  } catch (const NSException&) {
    return nullptr;
  }
}

}  // namespace

std::optional<DrawArray> DrawBase::drawsFromEncodedData(const std::shared_ptr<const NSData>& data) {
  const auto list = listFromEncodedData(data);
  if (list == nullptr) return std::nullopt;
  DrawArray draws;
  for (const auto& object : *list) {
    if (auto draw = std::dynamic_pointer_cast<DrawBase>(object)) draws.push_back(std::move(draw));
  }
  return draws;
}

std::shared_ptr<DrawBase> DrawBase::drawFromEncodedData(const std::shared_ptr<const NSData>& data) {
  const auto list = listFromEncodedData(data);
  return list != nullptr ? std::dynamic_pointer_cast<DrawBase>(*list->begin()) : nullptr;
}

std::shared_ptr<NSObject> DrawBase::bezierPathData() const {
  return bezierPath_ ? NSKeyedArchiver::archivedDataWithRootObject(bezierPath_) : nullptr;
}

void DrawBase::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  const auto archive = std::dynamic_pointer_cast<NSData>(data);
  if (archive == nullptr) return;
  registerDrawClasses();
  try {
    auto path = std::dynamic_pointer_cast<NSBezierPath>(
        NSKeyedUnarchiver::unarchiveObjectWithData(archive));
    if (path != nullptr) bezierPath_ = std::move(path);
  } catch (const NSException&) {
    // Not what bezierPathData answered.
  }
}
