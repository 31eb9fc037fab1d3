// Editing the draw list: order, groups, replacement.
#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "document/DrawGroup.h"
#include "document/LayerDrawsStatus.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"

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

DrawArray selectedDraws(const DrawArray& list, const DrawSet& selected) {
  DrawArray draws;
  std::copy_if(list.begin(), list.end(), std::back_inserter(draws),
               [&](const auto& draw) { return selected.contains(draw.get()); });
  return draws;
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
  // Draws change their order only with selected ones.
  DrawArray changed = stale == kRebuildBuffer ? selectedDraws(aryDraw_, selected) : DrawArray();
  for (const auto& draw : aryDraw_) {
    DrawGroup* group = asGroup(draw);
    if (group == nullptr || selected.contains(group)) continue;
    DrawArray inside = group->draws();
    if (!order(inside, 0, selected)) continue;
    group->setDraws(std::move(inside));
    changed.push_back(draw);
    // What lies beneath the topmost draw stays as it is when only that one changes.
    stale = std::max<int64_t>(stale, draw == aryDraw_.back() ? kRefreshFullImage : kRebuildBuffer);
  }
  raiseRefreshControl(stale, changed);
  return stale != kImagesCurrent;
}

bool PaintManager::moveDrawsToFront(Selection draws) {
  return reorder(draws, lowestIndex(), gatherAtEnd);
}

bool PaintManager::moveDrawsToBack(Selection draws) {
  const bool moved = reorder(draws, lowestIndex(), gatherAtStart);
  if (moved) raiseRefreshControl(kRebuildBuffer, {});
  return moved;
}

bool PaintManager::moveUpDraws(Selection draws) {
  return reorder(draws, 0, stepUp);
}

bool PaintManager::moveDownDraws(Selection draws) {
  return reorder(draws, lowestIndex(), stepDown);
}

DrawArray PaintManager::drawsInLayerOrder(Selection draws) const {
  const DrawSet selected = setOf(draws);
  DrawArray ordered;
  const auto take = [&](const std::shared_ptr<DrawBase>& draw) {
    if (selected.contains(draw.get())) ordered.push_back(draw);
  };
  for (const auto& draw : aryDraw_) {
    take(draw);
    if (const DrawGroup* group = asGroup(draw)) {
      std::for_each(group->draws().begin(), group->draws().end(), take);
    }
  }
  return ordered;
}

bool PaintManager::rearrange(DrawArray list,
                             const std::vector<std::pair<DrawGroup*, DrawArray>>& inside,
                             Selection changed) {
  int64_t stale = list != aryDraw_ ? kRebuildBuffer : kImagesCurrent;
  for (const auto& [group, draws] : inside) {
    if (draws == group->draws()) continue;
    // What lies beneath the topmost draw stays as it is when only that one changes.
    const bool topmost = group == aryDraw_.back().get();
    stale = std::max<int64_t>(stale, topmost ? kRefreshFullImage : kRebuildBuffer);
  }
  for (const auto& [group, draws] : inside) group->setDraws(draws);
  aryDraw_ = std::move(list);
  raiseRefreshControl(stale, changed);
  return stale != kImagesCurrent;
}

bool PaintManager::moveDraws(Selection draws, const std::shared_ptr<DrawBase>& toDraw,
                             uint64_t atIndex) {
  DrawGroup* const target = asGroup(toDraw);
  if (toDraw != nullptr && (target == nullptr || !containsDraw(target))) return false;
  const uint64_t lowest = target != nullptr ? 0 : lowestIndex();
  const DrawArray& old = target != nullptr ? target->draws() : aryDraw_;
  if (atIndex < lowest || atIndex > old.size()) return false;

  const DrawSet selected = setOf(draws);
  const DrawArray moving = drawsInLayerOrder(draws);
  const bool background = drawBackground_ != nullptr && selected.contains(drawBackground_.get());
  if (selected.empty() || moving.size() != selected.size() || background ||
      (target != nullptr && selected.contains(target))) {
    return false;
  }

  const auto withoutSelected = [&](const DrawArray& from, bool isTarget) {
    DrawArray kept;
    for (size_t i = 0; i <= from.size(); ++i) {
      if (isTarget && i == atIndex) kept.insert(kept.end(), moving.begin(), moving.end());
      if (i < from.size() && !selected.contains(from[i].get())) kept.push_back(from[i]);
    }
    return kept;
  };
  DrawArray changed = moving;
  std::vector<std::pair<DrawGroup*, DrawArray>> inside;
  for (const auto& draw : aryDraw_) {
    DrawGroup* group = asGroup(draw);
    if (group == nullptr) continue;
    inside.emplace_back(group, withoutSelected(group->draws(), group == target));
    if (inside.back().second != group->draws()) changed.push_back(draw);
  }
  return rearrange(withoutSelected(aryDraw_, target == nullptr), inside, changed);
}

namespace {

/// Notes what the groups among the draws hold, down to the innermost.
void noteGroups(const DrawArray& draws, LayerDrawsStatus& status) {
  for (const auto& draw : draws) {
    const auto group = std::dynamic_pointer_cast<DrawGroup>(draw);
    if (group == nullptr) continue;
    status.groups.emplace_back(group, group->draws());
    noteGroups(group->draws(), status);
  }
}

}  // namespace

LayerDrawsStatus PaintManager::savedLayerDrawsStatus() const {
  LayerDrawsStatus status{aryDraw_, drawBackground_, {}};
  noteGroups(aryDraw_, status);
  return status;
}

void PaintManager::restoreFromLayerStatus(const LayerDrawsStatus& status) {
  // Whatever groups hold now, on either side, is let go first: a draw has one place.
  const LayerDrawsStatus now = savedLayerDrawsStatus();
  for (const auto* groups : {&now.groups, &status.groups}) {
    for (const auto& [group, draws] : *groups) group->removeAllDraws();
  }
  for (const auto& draw : status.draws) takeOutOfGroup(draw);
  for (const auto& [group, draws] : status.groups) group->setDraws(draws);
  aryDraw_ = status.draws;
  drawBackground_ = status.background;
  raiseRefreshControl(kRebuildBuffer);
}

bool PaintManager::canGroupDraws(Selection draws) const {
  const DrawSet selected = setOf(draws);
  const auto found = std::count_if(aryDraw_.begin(), aryDraw_.end(),
                                   [&](const auto& draw) { return selected.contains(draw.get()); });
  return selected.size() >= 2 && !selected.contains(drawBackground_.get()) &&
         static_cast<size_t>(found) == selected.size();
}

std::shared_ptr<DrawGroup> PaintManager::groupDraws(Selection draws) {
  const auto group = DrawGroup::initWithDraws({});
  return groupDraws(draws, group) ? group : nullptr;
}

bool PaintManager::groupDraws(Selection draws, const std::shared_ptr<DrawGroup>& withDraw) {
  if (!canGroupDraws(draws) || withDraw == nullptr || containsDraw(withDraw.get()) ||
      withDraw->group() != nullptr) {
    return false;
  }
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
  withDraw->setDraws(inside);
  list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), withDraw);
  return rearrange(std::move(list), {}, inside);
}

bool PaintManager::canUnGroupDraws(Selection draws) const {
  const DrawSet selected = setOf(draws);
  return std::any_of(aryDraw_.begin(), aryDraw_.end(), [&](const auto& draw) {
    return selected.contains(draw.get()) && asGroup(draw) != nullptr;
  });
}

bool PaintManager::unGroupDraws(Selection draws) {
  if (!canUnGroupDraws(draws)) return false;
  const DrawSet selected = setOf(draws);
  DrawArray list, changed;
  for (const auto& draw : aryDraw_) {
    DrawGroup* group = selected.contains(draw.get()) ? asGroup(draw) : nullptr;
    if (group == nullptr) {
      list.push_back(draw);
      continue;
    }
    const DrawArray inside = group->draws();
    group->removeAllDraws();
    list.insert(list.end(), inside.begin(), inside.end());
    changed.push_back(draw);
  }
  return rearrange(std::move(list), {}, changed);
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
    areas_.noteChange(draw);
  } else {
    DrawGroup* group = groupForDraw(draw.get());
    if (group == nullptr || !group->replaceDraw(draw.get(), withDraw)) return false;
  }
  respondToChangeOfDraws({&withDraw, 1});
  return true;
}
