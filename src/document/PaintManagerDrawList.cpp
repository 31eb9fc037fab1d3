// Editing the draw list: order, groups, replacement, cropping.
#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "platform/foundation/Limits.h"

namespace {

using DrawSet = std::unordered_set<const DrawBase*>;

DrawSet setOf(PaintManager::Selection draws) {
  DrawSet set;
  for (const auto& draw : draws) set.insert(draw.get());
  return set;
}

DrawGroup* asGroup(const std::shared_ptr<DrawBase>& draw) {
  return dynamic_cast<DrawGroup*>(draw.get());
}

/// What an order does to the part of a list from `lowest` on; answers whether that changed it.
/// Selected draws and the others keep their order among themselves.
bool gatherAtEnd(DrawArray& list, size_t lowest, const DrawSet& selected) {
  const DrawArray before = list;
  std::stable_partition(list.begin() + static_cast<std::ptrdiff_t>(lowest), list.end(),
                        [&](const auto& d) { return !selected.contains(d.get()); });
  return list != before;
}

bool gatherAtStart(DrawArray& list, size_t lowest, const DrawSet& selected) {
  const DrawArray before = list;
  std::stable_partition(list.begin() + static_cast<std::ptrdiff_t>(lowest), list.end(),
                        [&](const auto& d) { return selected.contains(d.get()); });
  return list != before;
}

bool stepUp(DrawArray& list, size_t lowest, const DrawSet& selected) {
  bool changed = false;
  for (size_t i = list.size(); i-- > lowest + 1;) {
    if (selected.contains(list[i - 1].get()) && !selected.contains(list[i].get())) {
      std::swap(list[i - 1], list[i]);
      changed = true;
    }
  }
  return changed;
}

bool stepDown(DrawArray& list, size_t lowest, const DrawSet& selected) {
  bool changed = false;
  for (size_t i = lowest + 1; i < list.size(); ++i) {
    if (selected.contains(list[i].get()) && !selected.contains(list[i - 1].get())) {
      std::swap(list[i - 1], list[i]);
      changed = true;
    }
  }
  return changed;
}

/// Whether some selected draw from `lowest` on has an unselected one directly above (below) it.
bool canStepUp(const DrawArray& list, size_t lowest, const DrawSet& selected) {
  for (size_t i = lowest; i + 1 < list.size(); ++i) {
    if (selected.contains(list[i].get()) && !selected.contains(list[i + 1].get())) return true;
  }
  return false;
}

bool canStepDown(const DrawArray& list, size_t lowest, const DrawSet& selected) {
  for (size_t i = lowest + 1; i < list.size(); ++i) {
    if (selected.contains(list[i].get()) && !selected.contains(list[i - 1].get())) return true;
  }
  return false;
}

template <class Query>
bool anyList(const DrawArray& draws, size_t lowest, const DrawSet& selected, const Query& query) {
  if (query(draws, lowest, selected)) return true;
  return std::any_of(draws.begin(), draws.end(), [&](const auto& draw) {
    const DrawGroup* group = asGroup(draw);
    return group != nullptr && !selected.contains(group) && query(group->draws(), 0, selected);
  });
}

}  // namespace

bool PaintManager::containsDraw(const DrawBase* draw) const {
  return indexOfDraw(draw).has_value();
}

std::optional<size_t> PaintManager::indexOfDraw(const DrawBase* draw) const {
  const auto found = std::find_if(aryDraw_.begin(), aryDraw_.end(),
                                  [draw](const auto& d) { return d.get() == draw; });
  if (found == aryDraw_.end()) return std::nullopt;
  return static_cast<size_t>(found - aryDraw_.begin());
}

bool PaintManager::canMoveDrawsUp(Selection draws) const {
  return anyList(aryDraw_, lowestIndex(), setOf(draws), canStepUp);
}

bool PaintManager::canMoveDrawsDown(Selection draws) const {
  return anyList(aryDraw_, lowestIndex(), setOf(draws), canStepDown);
}

template <class Order>
bool PaintManager::reorder(Selection selection, size_t lowest, const Order& order) {
  if (selection.empty() || aryDraw_.size() <= lowest) return false;
  const DrawSet selected = setOf(selection);
  int64_t stale = order(aryDraw_, lowest, selected) ? kRebuildBuffer : kImagesCurrent;
  for (const auto& draw : aryDraw_) {
    DrawGroup* group = asGroup(draw);
    if (group == nullptr || selected.contains(group)) continue;
    DrawArray inside = group->draws();
    if (!order(inside, 0, selected)) continue;
    group->setDraws(std::move(inside));
    // What lies beneath the topmost draw stays as it is when only that one changes.
    stale = std::max<int64_t>(stale, draw == aryDraw_.back() ? kRefreshFullImage : kRebuildBuffer);
  }
  raiseRefreshControl(stale);
  return stale != kImagesCurrent;
}

bool PaintManager::moveDrawsToFront(Selection draws) {
  return reorder(draws, lowestIndex(), gatherAtEnd);
}

bool PaintManager::moveDrawsToBack(Selection draws) {
  return reorder(draws, lowestIndex(), gatherAtStart);
}

bool PaintManager::moveUpDraws(Selection draws) {
  return reorder(draws, 0, stepUp);
}

bool PaintManager::moveDownDraws(Selection draws) {
  return reorder(draws, lowestIndex(), stepDown);
}

bool PaintManager::canGroupDraws(Selection draws) const {
  const DrawSet selected = setOf(draws);
  return selected.size() >= 2 && !selected.contains(drawBackground_.get()) &&
         std::all_of(draws.begin(), draws.end(),
                     [this](const auto& draw) { return containsDraw(draw.get()); });
}

std::shared_ptr<DrawGroup> PaintManager::groupDraws(Selection draws) {
  if (!canGroupDraws(draws)) return nullptr;
  const DrawSet selected = setOf(draws);
  DrawArray inside, list;
  size_t place = 0;
  for (const auto& draw : aryDraw_) {
    if (selected.contains(draw.get())) {
      inside.push_back(draw);
      place = list.size();
    } else {
      list.push_back(draw);
    }
  }
  auto group = DrawGroup::initWithDraws(std::move(inside));
  list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), group);
  aryDraw_ = std::move(list);
  raiseRefreshControl(kRebuildBuffer);
  return group;
}

bool PaintManager::canUnGroupDraws(Selection draws) const {
  return std::any_of(draws.begin(), draws.end(), [this](const auto& draw) {
    return asGroup(draw) != nullptr && containsDraw(draw.get());
  });
}

bool PaintManager::unGroupDraws(Selection draws) {
  if (!canUnGroupDraws(draws)) return false;
  const DrawSet selected = setOf(draws);
  DrawArray list;
  for (const auto& draw : aryDraw_) {
    DrawGroup* group = selected.contains(draw.get()) ? asGroup(draw) : nullptr;
    if (group == nullptr) {
      list.push_back(draw);
      continue;
    }
    const DrawArray inside = group->draws();
    group->removeAllDraws();
    list.insert(list.end(), inside.begin(), inside.end());
  }
  aryDraw_ = std::move(list);
  raiseRefreshControl(kRebuildBuffer);
  return true;
}

bool PaintManager::replaceDraw(const std::shared_ptr<DrawBase>& draw,
                               const std::shared_ptr<DrawBase>& withDraw) {
  if (draw == nullptr || withDraw == nullptr || containsDraw(withDraw.get()) ||
      withDraw->group() != nullptr) {
    return false;
  }
  if (draw == drawBackground_) {
    auto background = std::dynamic_pointer_cast<DrawImage2>(withDraw);
    if (background == nullptr) return false;
    setBackgroundDraw(std::move(background));
    return true;
  }
  if (const auto index = indexOfDraw(draw.get())) {
    aryDraw_[*index] = withDraw;
  } else {
    DrawGroup* group = groupForDraw(draw.get());
    if (group == nullptr || !group->replaceDraw(draw.get(), withDraw)) return false;
  }
  respondToChangeOfDraws({&withDraw, 1});
  return true;
}

bool PaintManager::cropWithRect(const NSRect& rect) {
  const NSSize size{std::trunc(NSWidth(rect)), std::trunc(NSHeight(rect))};
  const CGFloat pixels = size.width * size.height;
  if (!(size.width >= 1 && size.height >= 1 &&
        pixels <= static_cast<CGFloat>(limits::kMaxCanvasPixels))) {
    return false;
  }
  if (!std::isfinite(NSMinX(rect)) || !std::isfinite(NSMinY(rect))) return false;
  for (const auto& draw : aryDraw_) draw->moveByX(-NSMinX(rect), -NSMinY(rect));
  setSize(size);
  raiseRefreshControl(kRebuildBuffer);
  return true;
}
