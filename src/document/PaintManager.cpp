#include "document/PaintManager.h"

#include <algorithm>

#include "document/DrawGroup.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/NSGraphicsContext.h"

const NSClass PaintManager::kClass{"PaintManager", &NSObject::kClass, NSAllocate<PaintManager>};

void PaintManager::setSize(NSSize size) {
  size_ = size;
  clearMemeryBuffer();
}

void PaintManager::setBackgroundColor(std::shared_ptr<NSColor> color) {
  if (color == _backgroundColor) return;
  _backgroundColor = std::move(color);
  _imageRefreshControl = kRebuildBuffer;
}

void PaintManager::setMaskBackground(bool mask) {
  if (mask != bMaskWithBackground_) raiseRefreshControl(kRefreshFullImage);
  bMaskWithBackground_ = mask;
}

std::shared_ptr<DrawBase> PaintManager::toppestDraw() const {
  return aryDraw_.empty() ? nullptr : aryDraw_.back();
}

DrawArray PaintManager::visibleDraws() const {
  DrawArray result;
  for (const auto& draw : aryDraw_) {
    if (!draw->visible()) continue;
    const auto* group = dynamic_cast<const DrawGroup*>(draw.get());
    if (group != nullptr ? group->hasVisibleDraw() : draw->opacity() != 0) result.push_back(draw);
  }
  return result;
}

void PaintManager::eraseDraw(const DrawBase* draw) {
  std::erase_if(aryDraw_, [draw](const auto& d) { return d.get() == draw; });
}

void PaintManager::setBackgroundDraw(std::shared_ptr<DrawImage2> draw) {
  if (draw != nullptr) {
    takeOutOfGroup(draw);
    eraseDraw(draw.get());
  }
  if (drawBackground_ != nullptr) eraseDraw(drawBackground_.get());
  if (draw != nullptr) aryDraw_.insert(aryDraw_.begin(), draw);
  drawBackground_ = std::move(draw);
  _imageRefreshControl = kRebuildBuffer;
}

DrawGroup* PaintManager::groupForDraw(const DrawBase* draw) const {
  if (draw == nullptr || containsDraw(draw)) return nullptr;
  for (const auto& candidate : aryDraw_) {
    auto* group = dynamic_cast<DrawGroup*>(candidate.get());
    if (group != nullptr && group->indexOfDraw(draw) != DrawGroup::kNotFound) return group;
  }
  return nullptr;
}

void PaintManager::takeOutOfGroup(const std::shared_ptr<DrawBase>& draw) {
  auto* group = dynamic_cast<DrawGroup*>(draw->group());
  if (group == nullptr) return draw->setGroup(nullptr);
  respondToChangeOfDraws({&draw, 1});
  group->removeDraw(draw.get());
}

bool PaintManager::addDraw(const std::shared_ptr<DrawBase>& draw) {
  if (draw == nullptr || containsDraw(draw.get())) return false;
  if (!aryDraw_.empty() && imageBuffer_ != nullptr && toppestDraw()->visible()) {
    // The old topmost draw joins the buffer before the new one covers it.
    const ZTFocusScope focus(imageBuffer_);
    NSGraphicsContext::currentContext()->setCompositingOperation(
        NSCompositingOperation::sourceOver);
    toppestDraw()->drawInImage(imageBuffer_.get());
  }
  takeOutOfGroup(draw);
  aryDraw_.push_back(draw);
  raiseRefreshControl(kRefreshFullImage);
  return true;
}

bool PaintManager::insertDraw(const std::shared_ptr<DrawBase>& draw, uint64_t index) {
  if (draw == nullptr || containsDraw(draw.get())) return false;
  if (index > aryDraw_.size() || (index == 0 && drawBackground_ != nullptr)) return false;
  if (index == aryDraw_.size()) return addDraw(draw);
  takeOutOfGroup(draw);
  aryDraw_.insert(aryDraw_.begin() + static_cast<std::ptrdiff_t>(index), draw);
  respondToChangeOfDraws({&draw, 1});
  return true;
}

bool PaintManager::removeDraw(const std::shared_ptr<DrawBase>& draw) {
  if (draw == nullptr) return false;
  if (containsDraw(draw.get())) {
    eraseDraw(draw.get());
    if (draw == drawBackground_) setBackgroundDraw(nullptr);
  } else {
    DrawGroup* group = groupForDraw(draw.get());
    if (group == nullptr || !group->removeDraw(draw.get())) return false;
  }
  if (imageBuffer_ != nullptr) _imageRefreshControl = kRebuildBuffer;
  return true;
}

void PaintManager::raiseRefreshControl(int64_t control) {
  // A change of the topmost draw does not undo that something below it changed before.
  _imageRefreshControl = std::max(_imageRefreshControl, control);
}

void PaintManager::respondToChangeOfDraws(std::span<const std::shared_ptr<DrawBase>> draws) {
  if (draws.size() == 1 && draws[0] != nullptr && draws[0] == toppestDraw()) {
    raiseRefreshControl(kRefreshFullImage);
    return;
  }
  const auto isTopLevel = [this](const auto& draw) { return containsDraw(draw.get()); };
  if (std::any_of(draws.begin(), draws.end(), isTopLevel)) {
    raiseRefreshControl(kRebuildBuffer);
    return;
  }
  bool anyGroup = false;
  for (const auto& draw : draws) {
    const DrawGroup* group = groupForDraw(draw.get());
    if (group == nullptr) continue;
    if (group != toppestDraw().get()) {
      raiseRefreshControl(kRebuildBuffer);
      return;
    }
    anyGroup = true;
  }
  if (anyGroup) raiseRefreshControl(kRefreshFullImage);
}

void PaintManager::clearMemeryBuffer() {
  imageBuffer_ = nullptr;
  image_ = nullptr;
}
