#include "draw/text/DrawBezierText.h"

#include <algorithm>
#include <utility>

#include "draw/core/StrokeOutline.h"
#include "draw/core/ZTBezierPathExtension.h"
#include "draw/shapes/DrawLines.h"
#include "draw/text/CurvedText.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/context/OffscreenCanvas.h"
#include "platform/text/host/NSTextStorage.h"

const NSClass DrawBezierText::kClass{"DrawBezierText", &DrawText::kClass,
                                     NSAllocate<DrawBezierText>};

namespace {

constexpr const char* kVersionKey = "Version";
constexpr const char* kGuideKey = "BezierDraw";

/// Smallest rectangle around both; a rectangle without extent in one direction counts.
NSRect around(const NSRect& a, const NSRect& b) {
  const CGFloat x = std::min(NSMinX(a), NSMinX(b)), y = std::min(NSMinY(a), NSMinY(b));
  return NSMakeRect(x, y, std::max(NSMaxX(a), NSMaxX(b)) - x, std::max(NSMaxY(a), NSMaxY(b)) - y);
}

/// The band along the path, as high as the text.
std::shared_ptr<NSBezierPath> bandAround(const NSBezierPath& path, CGFloat height) {
  const auto line = path.copy();
  line->setLineWidth(height);
  line->setLineJoinStyle(LineJoin::round);
  line->setLineCapStyle(LineCap::butt);
  return strokeOutlinePath(*line);
}

}  // namespace

DrawBezierText::DrawBezierText() = default;
DrawBezierText::~DrawBezierText() {
  if (auto* path = dynamic_cast<DrawBezierPath*>(bezierDraw_.get())) path->setMaster(nullptr);
}

void DrawBezierText::init() {
  DrawText::init();
  _version = kVersion;
  bezierPath_->setLineWidth(0);
}

void DrawBezierText::setBezierDraw(std::shared_ptr<DrawBase> guide) {
  if (auto* path = dynamic_cast<DrawBezierPath*>(bezierDraw_.get())) path->setMaster(nullptr);
  bezierDraw_ = std::move(guide);
  if (auto* path = dynamic_cast<DrawBezierPath*>(bezierDraw_.get())) path->setMaster(this);
  updateBounds();
}

// ---- The text image.

std::shared_ptr<const CurvedText> DrawBezierText::setAlongGuide(TextImageOption option) const {
  if (textStorage()->length() == 0) return nullptr;
  const auto path = bezierPathForDrawTexts();
  if (path->isEmpty()) return nullptr;
  const auto text = textForImage(option);
  if (text == nullptr) return nullptr;
  auto set = std::make_shared<CurvedText>(*text, *path, textAlignment());
  return set->isEmpty() ? nullptr : set;
}

void DrawBezierText::invalidTextImage() const {
  DrawText::invalidTextImage();
  set_ = nullptr;
}

std::optional<ConvertTextToImageResult> DrawBezierText::convertTextToImageWithOption(
    TextImageOption option, const WantedImage& wanted) const {
  ConvertTextToImageResult result;
  std::shared_ptr<const CurvedText> set;
  if (option == TextImageOption::text && set_ != nullptr) {
    // The text was set for the bounds already.
    set = std::exchange(set_, nullptr);
    result = {nullptr, {}, {}, _textsHeight, _textsWidth, _bezierBorderPath, _textDrawPath};
  } else {
    set = setAlongGuide(option);
    if (set == nullptr) return {};
    result = geometryOf(*set);
  }
  const NSPoint origin = pathBounds().origin;
  result.textDrawRect = NSOffsetRect(NSIntegralRect(set->drawnRect()), -origin.x, -origin.y);
  const OffscreenCanvas canvas(result.textDrawRect, wanted.grid, wanted.part);
  canvas.context().setShouldAntialias(smooth());
  canvas.context().concatenate(CGAffineTransformMakeTranslation(-origin.x, -origin.y));
  set->draw(canvas.context());
  result.textImageRep = canvas.bitmap();
  result.imageRect = canvas.rect();
  return result;
}

ConvertTextToImageResult DrawBezierText::geometryOf(const CurvedText& set) const {
  ConvertTextToImageResult result;
  result.textsHeight = set.height();
  result.textsWidth = set.end() - set.start();
  result.textDrawPath = subPathWithLengthFrom(*bezierPathForDrawTexts(), set.start(), set.end());
  result.bezierBorderPath = bandAround(*result.textDrawPath, set.height());
  return result;
}

void DrawBezierText::storeGeometry(const ConvertTextToImageResult& result) const {
  _textsHeight = result.textsHeight;
  _textsWidth = result.textsWidth;
  _bezierBorderPath = result.bezierBorderPath;
  _textDrawPath = result.textDrawPath;
}

void DrawBezierText::storeTextImage(const ConvertTextToImageResult& result) const {
  DrawText::storeTextImage(result);
  storeGeometry(result);
}

void DrawBezierText::updateBounds() {
  invalidTextImage();
  const auto path = bezierPathForDrawTexts();
  if (path->isEmpty()) return;
  NSRect bounds = path->bounds();
  auto set = setAlongGuide(TextImageOption::text);
  storeGeometry(set != nullptr ? geometryOf(*set) : ConvertTextToImageResult{});
  if (_bezierBorderPath != nullptr && !_bezierBorderPath->isEmpty()) {
    bounds = around(bounds, _bezierBorderPath->bounds());
  }
  if (bezierPath_ == nullptr) bezierPath_ = NSBezierPath::bezierPath();
  bezierPath_->removeAllPoints();
  bezierPath_->appendBezierPathWithRect(bounds);
  bezierPath_->setLineWidth(0);
  set_ = std::move(set);
}

void DrawBezierText::textChanged() {
  updateBounds();
}

// ---- Geometry.

void DrawBezierText::setRotateDegree(float degrees) {
  if (bezierDraw_ == nullptr) return;
  bezierDraw_->setRotateDegree(degrees);
  updateBounds();
}

void DrawBezierText::moveByX(CGFloat x, CGFloat y) {
  if (bezierDraw_ == nullptr) return;
  bezierDraw_->moveByX(x, y);
  updateBounds();
}

void DrawBezierText::scaleByX(CGFloat x, CGFloat y, NSPoint withCenter,
                              ResizeLineWidth resizeLineWidth) {
  if (bezierDraw_ == nullptr) return;
  bezierDraw_->scaleByX(x, y, withCenter, resizeLineWidth);
  updateBounds();
}

void DrawBezierText::applyNewBoundsToBezierDraw(const NSRect& bounds) {
  const NSRect old = pathBounds();
  if (bezierDraw_ == nullptr || NSIsEmptyRect(old) || NSIsEmptyRect(bounds)) return;
  bezierDraw_->scaleByX(NSWidth(bounds) / NSWidth(old), NSHeight(bounds) / NSHeight(old),
                        old.origin, ResizeLineWidth::no);
  bezierDraw_->moveByX(NSMinX(bounds) - NSMinX(old), NSMinY(bounds) - NSMinY(old));
  updateBounds();
}

std::shared_ptr<NSObject> DrawBezierText::bezierPathData() const {
  return bezierDraw_ == nullptr ? nullptr : bezierDraw_->bezierPathData();
}

void DrawBezierText::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  if (bezierDraw_ == nullptr) return;
  bezierDraw_->setBezierPathWithData(data);
  updateBounds();
}

// ---- Drawing.

bool DrawBezierText::guideIsDrawn() const {
  return bezierDraw_ != nullptr && bezierDraw_->visible() && bezierDraw_->drawStroke();
}

void DrawBezierText::_draw(CastShadow cast) {
  if (isNewCreated()) return;
  if (guideIsDrawn()) bezierDraw_->draw();
  drawTextPart(cast);
}

NSRect DrawBezierText::drawRect() const {
  const NSRect text = DrawText::drawRect();
  return guideIsDrawn() ? NSUnionRect(text, bezierDraw_->drawRect()) : text;
}

// ---- Archives.

void DrawBezierText::encodeWithCoder(NSCoder& coder) const {
  DrawText::encodeWithCoder(coder);
  if (bezierDraw_ == nullptr) return;
  coder.encodeInteger(_version, kVersionKey);
  coder.encodeObject(bezierDraw_, kGuideKey);
}

bool DrawBezierText::initWithCoder(NSCoder& coder) {
  if (!DrawText::initWithCoder(coder)) return false;
  _version = coder.containsValueForKey(kVersionKey) ? coder.decodeIntegerForKey(kVersionKey) : 0;
  auto guide = coder.decodeObjectOfClass<DrawBase>(kGuideKey);
  // A guide that leads back to this draw would own it.
  if (guide != nullptr && coder.isDecoding(*guide)) guide = nullptr;
  setEnableFill(false);
  takeRotationTo(guide.get());
  if (bezierPath_ != nullptr) bezierPath_->setLineWidth(0);
  setBezierDraw(std::move(guide));
  return true;
}

/// The guide is turned, not the draw around it.
void DrawBezierText::takeRotationTo(DrawBase* guide) {
  if (guide != nullptr && guide->rotateDegree() == 0) guide->setRotateDegree(fRotateDegree_);
  fRotateDegree_ = 0;
}
