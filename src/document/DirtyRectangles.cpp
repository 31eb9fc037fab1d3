#include "document/DirtyRectangles.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "document/DrawGroup.h"
#include "draw/core/PaintedBounds.h"
#include "draw/image/DrawPDF.h"
#include "draw/image/DrawSVG.h"
#include "draw/raster/DrawBrushes.h"
#include "draw/raster/DrawFill.h"
#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectShape.h"

namespace {

/// Beyond this many changed draws everything is painted again.
constexpr size_t kMaxChanged = 64;

/// Draws that paint their path, its stroke and its effects, and nothing else.
bool paintsAroundItsPath(const DrawBase& draw) {
  static const NSClass* const kClasses[] = {&DrawRectangle::kClass,  &DrawRoundRectangle::kClass,
                                            &DrawEllipse::kClass,    &DrawGradient::kClass,
                                            &DrawLine::kClass,       &DrawCurve::kClass,
                                            &DrawBrokenLine::kClass, &DrawFreePolygon::kClass,
                                            &DrawBezierPath::kClass, &DrawPen::kClass,
                                            &DrawEraser::kClass,     &DrawAirbrush::kClass,
                                            &DrawImage2::kClass,     &DrawPDF::kClass,
                                            &DrawSVG::kClass,        &DrawClear::kClass};
  return draw.isKindOfClass(DrawRectShape::kClass) ||
         std::any_of(std::begin(kClasses), std::end(kClasses),
                     [&](const NSClass* c) { return draw.isMemberOfClass(*c); });
}

/// Whether the draw may replace pixels by a layer, which does so all over the canvas.
bool copiesLayers(const DrawBase& draw) {
  return draw.copyWhenComposite() && (draw.hasStrokeOutline() || draw.enableShadow() ||
                                      draw.enableInnerShadow() || draw.enableReflection());
}

NSRect boundsOf(const std::vector<NSRect>& rects) {
  return std::accumulate(rects.begin(), rects.end(), NSZeroRect, NSUnionRect);
}

/// Adds a rectangle to rectangles that do not overlap.
void addDisjoint(std::vector<NSRect>& rects, NSRect rect) {
  constexpr size_t kMaxRects = 16;
  if (NSIsEmptyRect(rect)) return;
  for (size_t i = 0; i < rects.size();) {
    if (NSIsEmptyRect(NSIntersectionRect(rects[i], rect))) {
      ++i;
      continue;
    }
    // What was beside the rectangle may overlap the union.
    rect = NSUnionRect(rects[i], rect);
    rects.erase(rects.begin() + static_cast<std::ptrdiff_t>(i));
    i = 0;
  }
  rects.push_back(rect);
  if (rects.size() > kMaxRects) rects = {boundsOf(rects)};
}

}  // namespace

std::optional<NSRect> DirtyRectangles::areaOf(const DrawBase& draw) {
  if (!draw.visible()) return NSZeroRect;
  if (draw.isMemberOfClass(DrawGroup::kClass)) {
    NSRect area;
    for (const auto& sub : static_cast<const DrawGroup&>(draw).draws()) {
      const auto part = areaOf(*sub);
      if (!part) return std::nullopt;
      area = NSUnionRect(area, *part);
    }
    return area;
  }
  if (copiesLayers(draw) || !paintsAroundItsPath(draw)) return std::nullopt;
  if (draw.bezierPath() == nullptr || draw.bezierPath()->isEmpty()) return NSZeroRect;
  const NSRect area = NSIntegralRect(paintedBounds(draw));
  const bool finite = std::isfinite(NSMinX(area)) && std::isfinite(NSMaxX(area)) &&
                      std::isfinite(NSMinY(area)) && std::isfinite(NSMaxY(area));
  return finite ? std::optional(area) : std::nullopt;
}

void DirtyRectangles::noteChange(const std::shared_ptr<DrawBase>& draw) {
  if (all_ || (!changed_.empty() && changed_.back() == draw)) return;
  changed_.push_back(draw);
  if (changed_.size() > kMaxChanged) noteChangeOfAll();
}

void DirtyRectangles::forget() {
  painted_.clear();
  inOrder_.clear();
  changed_.clear();
  all_ = true;
  known_ = false;
}

std::optional<std::vector<NSRect>> DirtyRectangles::takeStaleRects(const DrawArray& draws) {
  if (all_ || !known_) return std::nullopt;
  std::vector<NSRect> stale;
  for (const auto& draw : changed_) {
    const auto found = painted_.find(draw.get());
    if (found == painted_.end()) continue;
    if (!found->second.area) return std::nullopt;
    addDisjoint(stale, *found->second.area);
    // What comes next takes it for a draw that is new.
    painted_.erase(found);
  }
  changed_.clear();
  inOrder_.clear();
  ++round_;
  for (size_t i = 0; i + 1 < draws.size(); ++i) {
    const auto [entry, isNew] = painted_.try_emplace(draws[i].get());
    Record& record = entry->second;
    if (isNew) record.area = areaOf(*draws[i]);
    // Whatever a draw of unknown extent shows may follow from what lies beneath it.
    if (!record.area) return std::nullopt;
    if (isNew) addDisjoint(stale, *record.area);
    record.seen = round_;
    inOrder_.push_back(&record);
  }
  if (painted_.size() == inOrder_.size()) return stale;
  // The rest has left the buffer.
  bool known = true;
  std::erase_if(painted_, [&](const auto& entry) {
    const auto& [area, seen] = entry.second;
    if (seen == round_) return false;
    known = known && area.has_value();
    if (area) addDisjoint(stale, *area);
    return true;
  });
  return known ? std::optional(stale) : std::nullopt;
}

bool DirtyRectangles::touches(size_t index, std::span<const NSRect> rects) const {
  const NSRect& area = *inOrder_[index]->area;
  return std::any_of(rects.begin(), rects.end(), [&](const NSRect& rect) {
    return NSMinX(area) < NSMaxX(rect) && NSMinX(rect) < NSMaxX(area) &&
           NSMinY(area) < NSMaxY(rect) && NSMinY(rect) < NSMaxY(area);
  });
}

void DirtyRectangles::didPaintAll(const DrawArray& draws) {
  const bool again = paintedBefore_;
  forget();
  all_ = false;
  paintedBefore_ = true;
  known_ = again;
  for (size_t i = 0; i + 1 < draws.size(); ++i) didPaint(*draws[i]);
}

void DirtyRectangles::didPaint(const DrawBase& draw) {
  if (known_) painted_[&draw] = {areaOf(draw), round_};
}
