// Attribute dictionaries: how attributes travel from one draw to another.
#include "draw/core/DrawAttributes.h"
#include "draw/core/DrawBase.h"
#include "draw/core/DrawClasses.h"
#include "platform/foundation/values/NSString.h"
#include "platform/foundation/values/NSValue.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"

namespace {
constexpr const char* kClassName = "DAKeyClassName";
}

std::shared_ptr<NSDictionary> DrawBase::drawAttributes() const {
  AttributeWriter out;
  out.put(kClassName, NSString::stringWithString(className()));
  out.put("DAKeyOpacity", NSNumber::numberWithUnsignedInteger(opacity()));
  if (canToggleSmooth()) out.put("DAKeySmooth", bSmooth_);
  if (classDrawStroke()) putStrokeAttributes(out);
  if (classDrawFill()) putFillAttributes(out);
  if (canSetInnerShadow()) {
    out.put("DAKeyEnableInnerShadow", bEnableInnerShadow_);
    out.put("DAKeyInnerShadow", shadowInner_);
  }
  if (canSetShadow()) {
    out.put("DAKeyEnableShadow", bEnableShadow_);
    out.put("DAKeyShadow", shadow_);
  }
  return out.take();
}

void DrawBase::putStrokeAttributes(AttributeWriter& out) const {
  if (canSetStrokeColor() || canSetStrokeGradient()) out.put("DAKeyEnableStroke", bEnableStroke_);
  if (canToggleStrokeType()) out.put("DAKeyStrokeWithGradient", bStrokeWithGdt_);
  if (canSetStrokeColor()) out.put("DAKeyStrokeColor", colorStroke_);
  if (canSetStrokeGradient() && gradientStroke_ != nullptr) {
    out.put("DAKeyStrokeGradient", gradientStroke_);
    out.put("DAKeyStrokeRadialGradient", bStrokeRadialGdt_);
    out.put("DAKeyStrokeGdtCenter", NSValue::valueWithPoint(ptStrokeGdtCenter_));
    out.put("DAKeyStrokeGdtDegree", fStrokeGdtDegree_);
  }
  if (canSetLineWidth()) out.put("DAKeyStrokeWidth", NSNumber::numberWithDouble(lineWidth()));
  constexpr size_t kShortestDash = 3;
  if (const std::string dash = lineDashStyle(); canSetDashStyle() && dash.size() >= kShortestDash) {
    out.put("DAKeyStrokeDash", NSString::stringWithString(dash));
  }
  if (canSetStrokeOutline()) {
    out.put("DAKeyEnableStrokeOutline", _enableStrokeOutline);
    out.put("DAKeyStrokeOutlineWidth", _strokeOutlineWidth);
    out.put("DAKeyStrokeOutlineColor", _strokeOutlineColor);
  }
}

void DrawBase::putFillAttributes(AttributeWriter& out) const {
  if (canToggleFill()) out.put("DAKeyEnableFill", bEnableFill_);
  if (canToggleFillType()) out.put("DAKeyFillWithGradient", bFillWithGdt_);
  if (canSetFillColor()) out.put("DAKeyFillColor", colorFill_);
  if (canSetFillGradient() && gradientFill_ != nullptr) {
    out.put("DAKeyFillGradient", gradientFill_);
    out.put("DAKeyFillRadialGradient", bFillRadialGdt_);
    out.put("DAKeyFillGdtCenter", NSValue::valueWithPoint(ptFillGdtCenter_));
    out.put("DAKeyFillGdtDegree", fFillGdtDegree_);
  }
}

bool DrawBase::canSetDrawAttributes(const NSDictionary* attributes) const {
  if (attributes == nullptr || isSelectTool()) return false;
  if (isKindOf({"DrawClear", "DrawGroup", "DrawEraser"})) return false;
  const auto name = attributes->objectOfClass<NSString>(kClassName);
  if (name == nullptr) return true;
  registerDrawClasses();
  const NSClass* sourceClass = NSClassFromString(name->string());
  if (sourceClass == nullptr) return false;
  if (isMemberOfClass(*sourceClass)) return true;
  if (isKindOf({"DrawGradient", "DrawFill", "DrawAirbrush"})) return false;
  const auto source = std::dynamic_pointer_cast<DrawBase>(sourceClass->alloc());
  if (source == nullptr) return false;
  source->init();
  if (isExactly({"DrawText"})) return source->isKindOf({"DrawText", "DrawRectangle"});
  if (isKindOf({"DrawBezierText"})) return source->isKindOf({"DrawText"});
  if (isKindOf({"DrawImage2"})) return source->isKindOf({"DrawImage2"});
  if (source->isKindOf({"DrawText", "DrawImage2"}) || !classDrawBezierPath()) return false;
  return classDrawBezierPathFill() == source->classDrawBezierPathFill() &&
         classDrawStroke() == source->classDrawStroke();
}

bool DrawBase::setDrawAttributes(const NSDictionary& attributes) {
  if (!canSetDrawAttributes(&attributes)) return false;
  AttributeReader in(attributes);
  in.number("DAKeyOpacity", [this](const NSNumber& n) { setOpacity(n.unsignedIntegerValue()); });
  if (canToggleSmooth()) in.boolean("DAKeySmooth", [this](bool on) { setSmooth(on); });
  if (classDrawStroke()) applyStrokeAttributes(in);
  if (classDrawFill()) applyFillAttributes(in);
  if (canSetInnerShadow()) {
    in.boolean("DAKeyEnableInnerShadow", [this](bool on) { setEnableInnerShadow(on); });
    in.object<NSShadow>("DAKeyInnerShadow", [this](const auto& s) { setInnerShadow(s); });
  }
  if (canSetShadow()) {
    in.boolean("DAKeyEnableShadow", [this](bool on) { setEnableShadow(on); });
    in.object<NSShadow>("DAKeyShadow", [this](const auto& s) { setShadow(s); });
  }
  return in.applied();
}

void DrawBase::applyStrokeAttributes(AttributeReader& in) {
  if (canSetStrokeColor() || canSetStrokeGradient()) {
    in.boolean("DAKeyEnableStroke", [this](bool on) { setEnableStroke(on); });
  }
  if (canToggleStrokeType()) {
    in.boolean("DAKeyStrokeWithGradient", [this](bool on) { setUseGradualStroke(on); });
  }
  if (canSetStrokeColor()) {
    in.object<NSColor>("DAKeyStrokeColor", [this](const auto& c) { setStrokeColor(c); });
  }
  if (canSetStrokeGradient()) {
    in.object<NSGradient>("DAKeyStrokeGradient", [this](const auto& g) { setStrokeGradient(g); });
    in.boolean("DAKeyStrokeRadialGradient", [this](bool on) { setUseRadialStrokeGradient(on); });
    in.object<NSValue>("DAKeyStrokeGdtCenter",
                       [this](const auto& v) { setStrokeGradientCenter(v->pointValue()); });
    in.number("DAKeyStrokeGdtDegree",
              [this](const NSNumber& n) { setStrokeGradientDegree(n.floatValue()); });
  }
  if (canSetLineWidth()) {
    in.number("DAKeyStrokeWidth", [this](const NSNumber& n) { setLineWidth(n.doubleValue()); });
  }
  if (canSetDashStyle()) {
    in.object<NSString>("DAKeyStrokeDash",
                        [this](const auto& text) { setLineDashStyle(text->string()); });
  }
  if (canSetStrokeOutline()) {
    in.boolean("DAKeyEnableStrokeOutline", [this](bool on) { setEnableStrokeOutline(on); });
    in.number("DAKeyStrokeOutlineWidth",
              [this](const NSNumber& n) { setStrokeOutlineWidth(n.floatValue()); });
    in.object<NSColor>("DAKeyStrokeOutlineColor",
                       [this](const auto& c) { setStrokeOutlineColor(c); });
  }
}

void DrawBase::applyFillAttributes(AttributeReader& in) {
  if (canToggleFill()) in.boolean("DAKeyEnableFill", [this](bool on) { setEnableFill(on); });
  if (canToggleFillType()) {
    in.boolean("DAKeyFillWithGradient", [this](bool on) { setUseGradualFill(on); });
  }
  if (canSetFillColor()) {
    in.object<NSColor>("DAKeyFillColor", [this](const auto& c) { setFillColor(c); });
  }
  if (canSetFillGradient()) {
    in.object<NSGradient>("DAKeyFillGradient", [this](const auto& g) { setFillGradient(g); });
    in.boolean("DAKeyFillRadialGradient", [this](bool on) { setUseRadialFillGradient(on); });
    in.object<NSValue>("DAKeyFillGdtCenter",
                       [this](const auto& v) { setFillGradientCenter(v->pointValue()); });
    in.number("DAKeyFillGdtDegree",
              [this](const NSNumber& n) { setFillGradientDegree(n.floatValue()); });
  }
}
