#include "platform/text/host/NSLayoutManager.h"

#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/text/drawing/TextDrawing.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/host/TextAttributes.h"
#include "platform/text/layout/LineMetrics.h"

namespace {

LineMetrics metricsOf(const NSFont& font, FontLeading leading) {
  TextStyle style;
  style.font = std::make_shared<NSFont>(font.fontName(), font.pointSize());
  return lineMetrics(*style.font->resolved(), style, leading);
}

}  // namespace

NSLayoutManager::~NSLayoutManager() {
  for (const auto& container : containers_) container->layoutManager_ = nullptr;
}

void NSLayoutManager::setTextStorage(NSTextStorage* storage) {
  textStorage_ = storage;
  invalidate();
}

void NSLayoutManager::addTextContainer(std::shared_ptr<NSTextContainer> container) {
  container->layoutManager_ = this;
  containers_.push_back(std::move(container));
  invalidate();
}

void NSLayoutManager::setUsesFontLeading(bool uses) {
  leading_ = uses ? FontLeading::used : FontLeading::ignored;
  invalidate();
}

bool NSLayoutManager::serves(const NSTextContainer& container) const {
  return !containers_.empty() && containers_.front().get() == &container;
}

const TextLayout& NSLayoutManager::layout() {
  if (layout_ == nullptr) {
    auto layout = std::make_unique<TextLayout>();
    if (textStorage_ != nullptr && !containers_.empty()) {
      const NSTextContainer& container = *containers_.front();
      *layout = layoutText(makeStyledText(*textStorage_),
                           {container.containerSize(), container.lineFragmentPadding(), leading_});
    }
    layout_ = std::move(layout);
  }
  return *layout_;
}

NSRange NSLayoutManager::glyphRangeForTextContainer(const NSTextContainer& container) {
  return serves(container) ? NSRange{0, layout().end} : NSRange{};
}

NSRect NSLayoutManager::usedRectForTextContainer(const NSTextContainer& container) {
  return serves(container) ? layout().used : NSZeroRect;
}

CGFloat NSLayoutManager::defaultLineHeightForFont(const NSFont& font) const {
  return metricsOf(font, leading_).height();
}

CGFloat NSLayoutManager::defaultBaselineOffsetForFont(const NSFont& font) const {
  return metricsOf(font, leading_).baseline();
}

void NSLayoutManager::drawBackgroundForGlyphRange(const NSRange& range, NSPoint atPoint) {
  if (const auto& context = NSGraphicsContext::currentContext()) {
    drawTextBackground(layout(), range, atPoint, *context->graphicsPort());
  }
}

void NSLayoutManager::drawGlyphsForGlyphRange(const NSRange& range, NSPoint atPoint) {
  if (const auto& context = NSGraphicsContext::currentContext()) {
    drawTextGlyphs(layout(), range, atPoint, *context->graphicsPort());
  }
}
