// What can be done to a draw, by the kind of draw it is. Attribute dictionaries and editing ask;
// rendering never does.
#include <algorithm>

#include "draw/core/DrawBase.h"
#include "draw/core/ZTBezierPathExtension.h"

bool DrawBase::isKindOf(std::initializer_list<std::string_view> classNames) const {
  for (const NSClass* c = &classInfo(); c != nullptr; c = c->superclass) {
    if (std::find(classNames.begin(), classNames.end(), c->name) != classNames.end()) return true;
  }
  return false;
}

bool DrawBase::isExactly(std::initializer_list<std::string_view> classNames) const {
  return std::find(classNames.begin(), classNames.end(), className()) != classNames.end();
}

bool DrawBase::visibleWithGroup() const {
  return bVisible_ && (group_ == nullptr || group_->visible());
}

bool DrawBase::shouldDrawBorderWhenCreating() const {
  if (isKindOf({"DrawPen", "DrawAirbrush"})) return false;
  return isKindOf({"DrawFreePolygon"}) || hasBorder();
}

bool DrawBase::shouldDrawKnobWhenCreating() const {
  return isKindOf({"DrawBezierPath", "DrawBrokenLine", "DrawFreePolygon", "DrawPolygonSelection",
                   "DrawOldPolygonSelection"});
}

bool DrawBase::shouldFocusedWhenAdded() const {
  return !isKindOf({"DrawPen", "DrawFill", "DrawClear", "DrawAirbrush"});
}

bool DrawBase::canBeSelectedByClick() const {
  return !bLocked_ && !isKindOf({"DrawEraser", "DrawClear"});
}

bool DrawBase::canSetStrokeColor() const {
  return !isSelectTool() && !isKindOf({"DrawEraser"}) && classDrawStroke();
}

bool DrawBase::canSetStrokeGradient() const {
  return !isKindOf({"DrawAirbrush", "DrawPen"}) && canSetStrokeColor();
}

bool DrawBase::canToggleStrokeType() const {
  return canSetStrokeColor() && canSetStrokeGradient();
}

bool DrawBase::canToggleFill() const {
  return !isSelectTool() && !isKindOf({"DrawImage2", "DrawClear", "DrawBezierText"}) &&
         classDrawFill();
}

bool DrawBase::canToggleFillType() const {
  return !isSelectTool() && canSetFillColor() && canSetFillGradient();
}

bool DrawBase::canSetFillColor() const {
  if (isSelectTool() || isKindOf({"DrawClear", "DrawGradient"})) return false;
  return isKindOf({"DrawFill"}) || classDrawBezierPathFill();
}

bool DrawBase::canSetFillGradient() const {
  return !isSelectTool() && !isKindOf({"DrawClear", "DrawFill"}) && classDrawBezierPathFill();
}

bool DrawBase::canSetLineWidth() const {
  return !isSelectTool() && !isKindOf({"DrawAirbrush"}) && classDrawBezierPath() &&
         classDrawStroke();
}

bool DrawBase::canSetStrokeOutline() const {
  if (isExactly({"DrawLine", "DrawCurve", "DrawBrokenLine"})) return bEnableStroke_;
  return isExactly({"DrawBezierPath"}) && bEnableStroke_ && !hasClosedPath();
}

bool DrawBase::canSetDashStyle() const {
  return !isSelectTool() && !isKindOf({"DrawEraser", "DrawAirbrush"}) && canSetLineWidth();
}

bool DrawBase::canSetShadow() const {
  return !isSelectTool() && !copyWhenComposite() && (classDrawStroke() || classDrawFill());
}

bool DrawBase::canSetInnerShadow() const {
  return !isSelectTool() && isKindOf({"DrawRectangle", "DrawFreePolygon"}) && classDrawFill();
}

bool DrawBase::canToggleSmooth() const {
  if (isSelectTool() || isKindOf({"DrawFill", "DrawAirbrush"})) return false;
  return isKindOf({"DrawText", "DrawClear", "DrawEraser"}) || canSetStrokeColor();
}

bool DrawBase::canSetCapStyle() const {
  if (isSelectTool()) return false;
  if (isKindOf({"DrawLine", "DrawCurve", "DrawBrokenLine"})) return true;
  return isExactly({"DrawBezierPath"}) && !hasClosedPath();
}

bool DrawBase::canBeResized() const {
  return visibleWithGroup() && !isKindOf({"DrawMagicSelection"});
}

bool DrawBase::isPathClosed() const {
  return !isKindOf(
      {"DrawLine", "DrawCurve", "DrawBrokenLine", "DrawPen", "DrawAirbrush", "DrawEraser"});
}

bool DrawBase::canCreateBezierText() const {
  if (isKindOf({"DrawLine", "DrawCurve", "DrawBezierPath", "DrawBrokenLine"})) return true;
  if (isExactly({"DrawEllipse", "DrawRectangle"})) return true;
  if (isKindOf({"DrawRoundRectangle"})) return !isKindOf({"DrawText"});
  return isKindOf({"DrawFreePolygon", "DrawRectPolygon", "DrawRectHeart"});
}

bool DrawBase::canAdjustOpacity() const {
  if (!visibleWithGroup() || isKindOf({"DrawEraser", "DrawClear"})) return false;
  if (isSelectTool()) return !isKindOf({"DrawCrop", "DrawMagicSelection"});
  if (isKindOf({"DrawImage2", "DrawText"})) return true;
  if (classDrawFill() && bEnableFill_) return true;
  return classDrawStroke() && bEnableStroke_;
}

bool DrawBase::canCopyDrawAttributes() const {
  return !isSelectTool() && !isKindOf({"DrawGroup", "DrawClear", "DrawEraser"});
}

bool DrawBase::hasClosedPath() const {
  return bezierPath_ != nullptr && ::isPathClosed(*bezierPath_);
}
