#include "draw/shapes/ShapeDrawClasses.h"

#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/shapes/DrawRectangle.h"

namespace {

constexpr std::string_view archivedName(PresetShape shape) {
  constexpr std::string_view kNames[] = {
      "DrawRectPolygon",   "DrawRectStar",     "DrawRectHeart",     "DrawRectWaterDrip",
      "DrawRectLocation",  "DrawRectBookmark", "DrawRectCloud",     "DrawRectLightning",
      "DrawRectPerson",    "DrawRectMail",     "DrawRectiMac",      "DrawRectAppleLogo",
      "DrawRectButterfly", "DrawRectCamera",   "DrawRectEye",       "DrawRectHome",
      "DrawRectRefresh",   "DrawRectFolder",   "DrawRectPicture",   "DrawRectClock",
      "DrawRectSignal",    "DrawRectMessage",  "DrawEllipseMessage"};
  return kNames[static_cast<size_t>(shape)];
}

}  // namespace

template <PresetShape kShape>
const NSClass DrawPresetShape<kShape>::kClass{archivedName(kShape), &DrawRectShape::kClass,
                                              NSAllocate<DrawPresetShape<kShape>>};

namespace {

template <size_t... kIndex>
void registerPresetShapes(std::index_sequence<kIndex...>) {
  static const NSClass* const kClasses[] = {
      &DrawPresetShape<static_cast<PresetShape>(kIndex)>::kClass...};
  NSRegisterClasses(kClasses);
}

}  // namespace

void registerShapeDrawClasses() {
  static const NSClass* const kClasses[] = {&DrawRectangle::kClass,   &DrawRoundRectangle::kClass,
                                            &DrawEllipse::kClass,     &DrawGradient::kClass,
                                            &DrawRectShape::kClass,   &DrawLine::kClass,
                                            &DrawCurve::kClass,       &DrawBrokenLine::kClass,
                                            &DrawFreePolygon::kClass, &DrawBezierPath::kClass};
  NSRegisterClasses(kClasses);
  constexpr size_t kPresetShapes = static_cast<size_t>(PresetShape::ellipseMessage) + 1;
  registerPresetShapes(std::make_index_sequence<kPresetShapes>());
}
