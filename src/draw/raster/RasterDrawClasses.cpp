#include "draw/raster/RasterDrawClasses.h"

#include "draw/raster/DrawBrushes.h"
#include "draw/raster/DrawFill.h"
#include "draw/raster/DrawSelections.h"
#include "draw/raster/ImageMask.h"

const NSClass DrawRectSelection::kClass{"DrawRectSelection", &DrawRectangle::kClass,
                                        NSAllocate<DrawRectSelection>};
const NSClass DrawCrop::kClass{"DrawCrop", &DrawRectSelection::kClass, NSAllocate<DrawCrop>};
const NSClass DrawEllipseSelection::kClass{"DrawEllipseSelection", &DrawEllipse::kClass,
                                           NSAllocate<DrawEllipseSelection>};
const NSClass DrawLassoSelection::kClass{"DrawLassoSelection", &DrawBase::kClass,
                                         NSAllocate<DrawLassoSelection>};
const NSClass DrawPolygonSelection::kClass{"DrawPolygonSelection", &DrawBezierPath::kClass,
                                           NSAllocate<DrawPolygonSelection>};
const NSClass DrawOldPolygonSelection::kClass{"DrawOldPolygonSelection", &DrawFreePolygon::kClass,
                                              NSAllocate<DrawOldPolygonSelection>};

void registerRasterDrawClasses() {
  static const NSClass* const kClasses[] = {&DrawPen::kClass,
                                            &DrawEraser::kClass,
                                            &DrawAirbrush::kClass,
                                            &DrawFill::kClass,
                                            &DrawClear::kClass,
                                            &ImageMask::kClass,
                                            &DrawRectSelection::kClass,
                                            &DrawCrop::kClass,
                                            &DrawEllipseSelection::kClass,
                                            &DrawLassoSelection::kClass,
                                            &DrawMagicSelection::kClass,
                                            &DrawPolygonSelection::kClass,
                                            &DrawOldPolygonSelection::kClass};
  NSRegisterClasses(kClasses);
}
