#include "document/PaintManager.h"

#include <algorithm>
#include <unordered_set>

#include "document/DrawGroup.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass PaintManager::kClass{"PaintManager", &NSObject::kClass, NSAllocate<PaintManager>};

void PaintManager::setSize(NSSize size) {
  size_ = size;
  clearMemeryBuffer();
}

void PaintManager::setBackgroundColor(std::shared_ptr<NSColor> color) {
  if (color == _backgroundColor) return;
  _backgroundColor = std::move(color);
  raiseRefreshControl(kRebuildBuffer);
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
  raiseRefreshControl(kRebuildBuffer);
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
  takeOutOfGroup(draw);
  paintToppestDrawIntoBuffer();
  aryDraw_.push_back(draw);
  raiseRefreshControl(kRefreshFullImage);
  return true;
}

void PaintManager::paintToppestDrawIntoBuffer() {
  // A buffer that will be rebuilt may hold it already.
  const bool stale = _imageRefreshControl == kRebuildBuffer;
  if (aryDraw_.empty() || imageBuffer_ == nullptr || stale) return;
  const auto draw = toppestDraw();
  if (draw->visible()) {
    const ZTFocusScope focus(imageBuffer_);
    NSGraphicsContext::currentContext()->setCompositingOperation(
        NSCompositingOperation::sourceOver);
    draw->drawInImage(imageBuffer_.get());
  }
  areas_.didPaint(*draw);
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
  std::shared_ptr<DrawBase> changed = draw;
  if (containsDraw(draw.get())) {
    eraseDraw(draw.get());
    if (draw == drawBackground_) setBackgroundDraw(nullptr);
  } else {
    DrawGroup* group = groupForDraw(draw.get());
    if (group == nullptr || !group->removeDraw(draw.get())) return false;
    changed = aryDraw_[*indexOfDraw(group)];
  }
  if (imageBuffer_ != nullptr) raiseRefreshControl(kRebuildBuffer, {&changed, 1});
  return true;
}

void PaintManager::setImageRefreshControl(int64_t control) {
  if (control == kRebuildBuffer) areas_.noteChangeOfAll();
  _imageRefreshControl = control;
}

void PaintManager::raiseRefreshControl(int64_t control) {
  if (control == kRebuildBuffer) areas_.noteChangeOfAll();
  raiseRefreshControl(control, {});
}

void PaintManager::raiseRefreshControl(int64_t control, Selection changed) {
  // A change of the topmost draw does not undo that something below it changed before.
  _imageRefreshControl = std::max(_imageRefreshControl, control);
  // Also the topmost draw, which may be in a buffer that is stale already.
  for (const auto& draw : changed) areas_.noteChange(draw);
}

void PaintManager::respondToChangeOfDraws(std::span<const std::shared_ptr<DrawBase>> draws) {
  if (draws.size() == 1 && draws[0] != nullptr && draws[0] == toppestDraw()) {
    raiseRefreshControl(kRefreshFullImage, draws);
    return;
  }
  std::unordered_set<const DrawBase*> given, holders;
  for (const auto& draw : draws) {
    if (draw == nullptr) continue;
    given.insert(draw.get());
    for (const DrawBase* g = draw->group(); g != nullptr; g = g->group()) holders.insert(g);
  }
  // The top-level draws that changed: those given, and the groups of those given, however deep.
  DrawArray changed;
  bool listed = false;
  for (const auto& draw : aryDraw_) {
    const bool isGiven = given.contains(draw.get());
    if (isGiven || holders.contains(draw.get())) changed.push_back(draw);
    listed = listed || isGiven;
  }
  const auto isTopmost = [this](const auto& draw) { return draw == aryDraw_.back(); };
  const bool onTop = !listed && std::all_of(changed.begin(), changed.end(), isTopmost);
  if (!changed.empty()) raiseRefreshControl(onTop ? kRefreshFullImage : kRebuildBuffer, changed);
}

void PaintManager::clearMemeryBuffer() {
  imageBuffer_ = nullptr;
  image_ = nullptr;
  areas_.forget();
}
