// The rendering pipeline every draw goes through: opacity, reflection, rotation, fill, shadows,
// stroke, outline, arrow heads.
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "draw/core/DrawBase.h"
#include "draw/core/ReflectionLimits.h"
#include "draw/core/ZTBezierPathExtension.h"
#include "platform/graphics/NSColor.h"
#include "platform/graphics/NSGradient.h"
#include "platform/graphics/NSGraphicsContext.h"
#include "platform/graphics/NSShadow.h"

namespace {

/// A colour fainter than this paints nothing.
constexpr CGFloat kFaintestAlpha = 0.01;

/// Never null here: drawing without a current context returns at the entry.
CGContext& port() {
  return *NSGraphicsContext::currentContext()->graphicsPort();
}

bool isVisibleColor(const NSColor* color) {
  return color != nullptr && color->alphaComponent() >= kFaintestAlpha;
}

}  // namespace

bool DrawBase::drawStroke() const {
  if (!classDrawStroke() || !bEnableStroke_) return false;
  if (copyWhenComposite()) return true;
  if (opacity() == 0 && shouldApplyOpacityToStokeAndFill()) return false;
  return bStrokeWithGdt_ ? gradientStroke_ != nullptr : isVisibleColor(colorStroke_.get());
}

bool DrawBase::drawFill() const {
  if (!classDrawFill() || !bEnableFill_) return false;
  if (copyWhenComposite()) return true;
  if (opacity() == 0) return false;
  return bFillWithGdt_ ? gradientFill_ != nullptr : isVisibleColor(colorFill_.get());
}

void DrawBase::drawInImage(NSBitmapImageRep*) {
  if (isSelectTool() || bezierPath_ == nullptr || bezierPath_->isEmpty()) return;
  const bool appliesOpacity = shouldApplyOpacityToStokeAndFill();
  if (opacity() == 0 && appliesOpacity && !copyWhenComposite()) return;
  if (NSGraphicsContext::currentContext() == nullptr) return;
  const NSGraphicsStateScope state;
  port().setAlpha(appliesOpacity ? static_cast<CGFloat>(opacity()) / 100 : 1);
  _draw();
}

void DrawBase::_draw() {}
