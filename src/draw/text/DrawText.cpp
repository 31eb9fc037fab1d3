#include "draw/text/DrawText.h"

#include <unordered_map>

#include "draw/core/DrawAttributes.h"
#include "draw/core/PaintManagerContext.h"
#include "draw/text/TextOutlineCache.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSValue.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/text/host/NSTextStorage.h"

const NSClass DrawText::kClass{"DrawText", &DrawRoundRectangle::kClass, NSAllocate<DrawText>};

namespace {

/// The legacy text opacity is not set.
constexpr float kNotSet = 200;
/// Up to this version the text's gradient was kept as the fill gradient of the box.
constexpr int64_t kLastWithoutTextGradient = 19;

constexpr const char* kTextAttributes = "DAKeyTextAttributes";

std::shared_ptr<NSTextStorage> copyOf(const NSAttributedString& text) {
  return std::make_shared<NSTextStorage>(text);
}

}  // namespace

DrawText::DrawText() : textStorage_(std::make_shared<NSTextStorage>()), fTextOpacity_(kNotSet) {}

DrawText::~DrawText() {
  TextOutlineCache::shared().removeObjectForKey(hash());
}

void DrawText::init() {
  DrawRoundRectangle::init();
  setEnableStroke(false);
  setStrokeColor(nullptr);
  setEnableFill(false);
  setFillColor(nullptr);
  textStorage_ = std::make_shared<NSTextStorage>();
  fTextOpacity_ = kNotSet;
  _autoResize = false;
}

// ---- Text.

NSTextStorage& DrawText::editableText() {
  if (textStorage_.use_count() > 1) textStorage_ = copyOf(*textStorage_);
  return *textStorage_;
}

void DrawText::setAttributedString(const NSAttributedString& text) {
  editableText().setAttributedString(text);
  textChanged();
}

void DrawText::setUseGradualText(bool on) {
  if (on == _useGradualText) return;
  _useGradualText = on;
  invalidTextImage();
}

void DrawText::setAutoResize(bool on) {
  if (on == _autoResize) return;
  _autoResize = on;
  textChanged();
}

void DrawText::forceUpdateString() {
  invalidTextImage();
  autoResizeBounds();
}

void DrawText::textChanged() {
  isAutoResize() ? forceUpdateString() : forceUpdateStringAndkeepSize();
}

bool DrawText::shouldCenterTextsVertically() const {
  return !isAutoResize() && (enableFill() || enableStroke());
}

// ---- Bounds.

void DrawText::setBezierPathWithBounds(NSRect bounds) {
  const NSRect old = pathBounds();
  DrawRoundRectangle::setBezierPathWithBounds(bounds);
  respondToBoundsChangeFromOldBounds(old);
}

void DrawText::mapGeometry(const AxisMap& map) {
  const NSRect old = pathBounds();
  DrawRoundRectangle::mapGeometry(map);
  respondToBoundsChangeFromOldBounds(old);
}

// ---- Opacity.

uint64_t DrawText::opacity() const {
  if (!hasLegacyOpacity()) return DrawRoundRectangle::opacity();
  return static_cast<uint64_t>(fTextOpacity_ * 100);
}

void DrawText::setOpacity(uint64_t percent) {
  if (!hasLegacyOpacity()) return DrawRoundRectangle::setOpacity(percent);
  fTextOpacity_ = static_cast<float>(percent) / 100;
}

bool DrawText::shouldApplyOpacityToStokeAndFill() const {
  return !hasLegacyOpacity() && DrawRoundRectangle::shouldApplyOpacityToStokeAndFill();
}

void DrawText::normalizeOpacity() {
  const float legacy = fTextOpacity_;
  const bool set = legacy >= 0 && legacy < 1;
  if (set && (drawStroke() || drawFill())) return;
  fTextOpacity_ = kNotSet;
  if (set) setOpacity(static_cast<uint64_t>(legacy * 100));
}

// ---- Attribute dictionaries.

std::shared_ptr<NSDictionary> DrawText::drawAttributes() const {
  AttributeWriter out(*DrawRoundRectangle::drawAttributes());
  if (hasLegacyOpacity()) out.put("DAKeyTextOpacity", fTextOpacity_);
  out.put("DAKeyUseGradualText", _useGradualText);
  out.put("DAKeyTextGradient", _textGradient);
  out.put("DAKeyUseRadialTextGradient", _isRadialTextGradient);
  out.put("DAKeyTextGdtCenter", NSValue::valueWithPoint(_textGradientCenter));
  out.put("DAKeyTextGdtDegree", _textGradientDegree);
  if (textStorage_->length() > 0) {
    if (const auto attributes = textStorage_->attributesAtIndex(0)) {
      out.put(kTextAttributes, std::make_shared<NSDictionary>(*attributes));
    }
  }
  return out.take();
}

bool DrawText::setDrawAttributes(const NSDictionary& attributes) {
  if (!canSetDrawAttributes(&attributes)) return false;
  const bool applied = DrawRoundRectangle::setDrawAttributes(attributes);
  AttributeReader in(attributes);
  in.number("DAKeyTextOpacity", [this](const NSNumber& n) { fTextOpacity_ = n.floatValue(); });
  in.boolean("DAKeyUseGradualText", [this](bool on) { setUseGradualText(on); });
  in.object<NSGradient>("DAKeyTextGradient", [this](const auto& g) { setTextGradient(g); });
  in.boolean("DAKeyUseRadialTextGradient", [this](bool on) { setIsRadialTextGradient(on); });
  in.object<NSValue>("DAKeyTextGdtCenter",
                     [this](const auto& v) { setTextGradientCenter(v->pointValue()); });
  in.number("DAKeyTextGdtDegree",
            [this](const NSNumber& n) { setTextGradientDegree(n.floatValue()); });
  in.object<NSDictionary>(kTextAttributes, [this](const auto& look) {
    NSTextStorage& text = editableText();
    text.setAttributes(look, {0, text.length()});
    textChanged();
  });
  return applied || in.applied();
}

// ---- Archives.

void DrawText::encodeWithCoder(NSCoder& coder) const {
  DrawRoundRectangle::encodeWithCoder(coder);
  if (isAutoResize()) coder.encodeBool(true, "AutoResize");
  coder.encodeObject(textStorage_, "Text");
  if (fTextOpacity_ >= 0 && fTextOpacity_ < 1) coder.encodeFloat(fTextOpacity_, "Opacity");
  if (!_useGradualText) return;
  coder.encodeBool(true, "UseGradualText");
  coder.encodeBool(_isRadialTextGradient, "IsRadialTextGradient");
  coder.encodeFloat(_textGradientDegree, "TextGdtDegree");
  coder.encodePoint(_textGradientCenter, "TextGdtCenter");
  if (_textGradient != nullptr) coder.encodeObject(_textGradient, "TextGradient");
}

namespace {

constexpr const char* kSharedTexts = "DrawTextSharedTexts";

/// The texts of one archive as text storages. A document may name one text in a thousand boxes: it
/// is copied when one of them changes it.
class SharedTexts : public NSObject {
 public:
  static SharedTexts& of(NSCoder& coder) {
    auto texts = std::dynamic_pointer_cast<SharedTexts>(coder.associatedObject(kSharedTexts));
    if (texts == nullptr) {
      texts = std::make_shared<SharedTexts>();
      coder.setAssociatedObject(kSharedTexts, texts);
    }
    return *texts;
  }

  std::shared_ptr<NSTextStorage> storage(const std::shared_ptr<NSAttributedString>& text) {
    if (auto own = std::dynamic_pointer_cast<NSTextStorage>(text)) return own;
    Entry& entry = entries_[text.get()];
    if (entry.storage == nullptr) entry = {text, copyOf(*text)};
    return entry.storage;
  }

 private:
  struct Entry {
    std::shared_ptr<NSAttributedString> text;  ///< kept: its address is the key
    std::shared_ptr<NSTextStorage> storage;
  };
  std::unordered_map<const NSAttributedString*, Entry> entries_;
};

}  // namespace

bool DrawText::initWithCoder(NSCoder& coder) {
  if (!DrawRoundRectangle::initWithCoder(coder)) return false;
  fTextOpacity_ =
      coder.containsValueForKey("Opacity") ? coder.decodeFloatForKey("Opacity") : kNotSet;
  // The box has the size that its text had where it was saved.
  _autoResize = coder.decodeBoolForKey("AutoResize");
  if (const auto text = coder.decodeObjectOfClass<NSAttributedString>("Text")) {
    textStorage_ = SharedTexts::of(coder).storage(text);
  }
  const auto context = paintMangerContext(coder);
  if (context != nullptr && context->savedVersion() > kLastWithoutTextGradient) {
    decodeTextGradient(coder);
  } else {
    takeTextGradientFromFill();
  }
  normalizeOpacity();
  return true;
}

void DrawText::decodeTextGradient(NSCoder& coder) {
  _useGradualText = coder.decodeBoolForKey("UseGradualText");
  if (!_useGradualText) return;
  _isRadialTextGradient = coder.decodeBoolForKey("IsRadialTextGradient");
  _textGradientCenter = coder.decodePointForKey("TextGdtCenter");
  _textGradientDegree = coder.decodeFloatForKey("TextGdtDegree");
  _textGradient = coder.decodeObjectOfClass<NSGradient>("TextGradient");
}

void DrawText::takeTextGradientFromFill() {
  _useGradualText = useGradualFill();
  _textGradient = fillGradient();
  _isRadialTextGradient = useRadialFillGradient();
  _textGradientDegree = fillGradientDegree();
  _textGradientCenter = fillGradientCenter();
  setUseGradualFill(false);
  setFillGradient(nullptr);
  setUseRadialFillGradient(false);
  setFillGradientDegree(0);
  setFillGradientCenter(NSZeroPoint);
  setEnableFill(false);
  setEnableStroke(false);
}
