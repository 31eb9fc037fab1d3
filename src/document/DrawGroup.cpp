#include "document/DrawGroup.h"

#include <algorithm>
#include <cmath>

#include "draw/core/DrawPainting.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass DrawGroup::kClass{"DrawGroup", &DrawBase::kClass, NSAllocate<DrawGroup>};

namespace {
constexpr const char* kDraws = "Draws";
}

DrawGroup::~DrawGroup() {
  // Sub-draws may outlive their group.
  for (const auto& draw : aryDraws_) draw->setGroup(nullptr);
}

std::shared_ptr<DrawGroup> DrawGroup::initWithDraws(DrawArray draws) {
  auto group = std::make_shared<DrawGroup>();
  group->init();
  group->setDraws(std::move(draws));
  return group;
}

void DrawGroup::adopt(const std::shared_ptr<DrawBase>& draw) {
  auto* other = dynamic_cast<DrawGroup*>(draw->group());
  if (other != nullptr && other != this) other->removeDraw(draw.get());
  draw->setGroup(this);
}

bool DrawGroup::isInside(const DrawBase* draw) const {
  for (const DrawBase* holder = this; holder != nullptr; holder = holder->group()) {
    if (holder == draw) return true;
  }
  return false;
}

void DrawGroup::setDraws(DrawArray draws) {
  std::erase_if(draws, [this](const auto& draw) { return isInside(draw.get()); });
  for (const auto& draw : aryDraws_) draw->setGroup(nullptr);
  aryDraws_ = std::move(draws);
  for (const auto& draw : aryDraws_) adopt(draw);
}

bool DrawGroup::insertDraw(const std::shared_ptr<DrawBase>& draw, uint64_t index) {
  if (draw == nullptr || index > aryDraws_.size() || indexOfDraw(draw.get()) != kNotFound ||
      isInside(draw.get())) {
    return false;
  }
  adopt(draw);
  aryDraws_.insert(aryDraws_.begin() + static_cast<std::ptrdiff_t>(index), draw);
  return true;
}

bool DrawGroup::removeDraw(const DrawBase* draw) {
  const size_t index = indexOfDraw(draw);
  if (index == kNotFound) return false;
  aryDraws_[index]->setGroup(nullptr);
  aryDraws_.erase(aryDraws_.begin() + static_cast<std::ptrdiff_t>(index));
  return true;
}

void DrawGroup::removeAllDraws() {
  for (const auto& draw : aryDraws_) draw->setGroup(nullptr);
  aryDraws_.clear();
}

size_t DrawGroup::indexOfDraw(const DrawBase* draw) const {
  const auto found = std::find_if(aryDraws_.begin(), aryDraws_.end(),
                                  [draw](const auto& d) { return d.get() == draw; });
  return found == aryDraws_.end() ? kNotFound
                                  : static_cast<size_t>(std::distance(aryDraws_.begin(), found));
}

bool DrawGroup::replaceDraw(const DrawBase* draw, std::shared_ptr<DrawBase> withDraw) {
  const size_t index = indexOfDraw(draw);
  if (index == kNotFound || withDraw == nullptr || indexOfDraw(withDraw.get()) != kNotFound ||
      isInside(withDraw.get())) {
    return false;
  }
  aryDraws_[index]->setGroup(nullptr);
  adopt(withDraw);
  aryDraws_[index] = std::move(withDraw);
  return true;
}

bool DrawGroup::hasVisibleDraw() const {
  return std::any_of(aryDraws_.begin(), aryDraws_.end(),
                     [](const auto& d) { return d->visible() && d->opacity() != 0; });
}

uint64_t DrawGroup::opacity() const {
  for (const auto& draw : aryDraws_) {
    if (draw->canAdjustOpacity()) return draw->opacity();
  }
  return 100;
}

NSRect DrawGroup::drawRect() const {
  NSRect rect;
  for (const auto& draw : aryDraws_) {
    if (draw->visible()) rect = NSUnionRect(rect, draw->drawRect());
  }
  return rect;
}

NSRect DrawGroup::renderedRect() const {
  NSRect rect;
  for (const auto& draw : aryDraws_) {
    if (draw->visible()) rect = NSUnionRect(rect, draw->renderedRect());
  }
  return rect;
}

void DrawGroup::drawInImage(NSBitmapImageRep* image) {
  // Sub-draws carry their own rotation; only a turn in progress is the group's.
  if (!bRotating_) return drawSubDraws(image);
  const NSGraphicsStateScope state;
  if (const auto& context = NSGraphicsContext::currentContext()) {
    context->graphicsPort()->concatenate(transform().transformStruct());
  }
  drawSubDraws(image);
}

void DrawGroup::_draw(CastShadow) {
  drawInImage(nullptr);
}

void DrawGroup::drawSubDraws(NSBitmapImageRep* image) {
  for (const auto& draw : aryDraws_) {
    if (draw->visible()) paintDraw(*draw, image);
  }
}

void DrawGroup::moveByX(CGFloat x, CGFloat y) {
  for (const auto& draw : aryDraws_) draw->moveByX(x, y);
}

void DrawGroup::scaleByX(CGFloat x, CGFloat y, NSPoint withCenter,
                         ResizeLineWidth resizeLineWidth) {
  for (const auto& draw : aryDraws_) draw->scaleByX(x, y, withCenter, resizeLineWidth);
}

bool DrawGroup::canBeRotated() const {
  if (!visibleWithGroup() || !hasVisibleDraw()) return false;
  return std::all_of(aryDraws_.begin(), aryDraws_.end(),
                     [](const auto& d) { return !d->visible() || d->canBeRotated(); });
}

bool DrawGroup::canBeResized() const {
  return visibleWithGroup() && std::any_of(aryDraws_.begin(), aryDraws_.end(), [](const auto& d) {
           return d->visible() && d->canBeResized();
         });
}

bool DrawGroup::canBeResizedFreely() const {
  constexpr float kTolerance = 1e-6F;
  const auto isQuarterTurned = [](float degree) {
    const float quarters = degree / 90;
    return std::fabs(quarters - std::round(quarters)) * 90 < kTolerance;
  };
  return canBeResized() && std::all_of(aryDraws_.begin(), aryDraws_.end(), [&](const auto& d) {
           return !d->visible() || !d->canBeResized() || isQuarterTurned(d->rotateDegree());
         });
}

bool DrawGroup::canBeFliped() const {
  return visibleWithGroup() && hasVisibleDraw();
}

bool DrawGroup::initWithCoder(NSCoder& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  DrawArray draws;
  if (const auto array = coder.decodeObjectOfClass<NSArray>(kDraws)) {
    for (const auto& object : *array) {
      auto draw = std::dynamic_pointer_cast<DrawBase>(object);
      // A draw has one place: a file that shares one between groups would multiply the work.
      if (draw == nullptr || draw->group() != nullptr) continue;
      draw->setGroup(this);
      draws.push_back(std::move(draw));
    }
  }
  setDraws(std::move(draws));
  return true;
}

void DrawGroup::encodeWithCoder(NSCoder& coder) const {
  DrawBase::encodeWithCoder(coder);
  if (aryDraws_.empty()) return;
  coder.encodeObject(
      std::make_shared<NSMutableArray>(NSArray::Objects(aryDraws_.begin(), aryDraws_.end())),
      kDraws);
}
