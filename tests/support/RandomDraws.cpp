#include "support/RandomDraws.h"

#include "draw/image/DrawImage2.h"
#include "draw/raster/DrawBrushes.h"
#include "draw/raster/DrawFill.h"
#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawMessages.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/shapes/FixedOutlines.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Bitmaps.h"
#include "support/Draws.h"

std::shared_ptr<NSColor> RandomDraws::color() {
  const double r = below(256) / 255.0, g = below(256) / 255.0, b = below(256) / 255.0;
  return NSColor::colorWithCalibratedRed(r, g, b, oneIn(3) ? 0.4 : 1);
}

std::shared_ptr<NSGradient> RandomDraws::gradient() {
  const auto from = color();
  return NSGradient::initWithStartingColor(from, color());
}

std::shared_ptr<NSShadow> RandomDraws::shadow() {
  auto shadow = std::make_shared<NSShadow>();
  const double dx = below(21) - 10.0;
  shadow->setShadowOffset({dx, below(21) - 10.0});
  shadow->setShadowBlurRadius(below(4) * 3.5);
  shadow->setShadowColor(color());
  return shadow;
}

std::shared_ptr<DrawBase> RandomDraws::box() {
  std::shared_ptr<DrawRectangle> draw;
  switch (below(7)) {
    case 0:
      draw = made<DrawEllipse>();
      break;
    case 1: {
      auto rounded = made<DrawRoundRectangle>();
      rounded->setXRadius(5, 7);
      draw = rounded;
      break;
    }
    case 2:
      draw = made<DrawGradient>();
      break;
    case 3:
      draw = made<DrawRectStar>();
      break;
    case 4:
      draw = made<DrawRectMessage>();
      break;
    case 5:
      draw = std::make_shared<DrawFixedShape>(below(kFixedOutlineCount));
      draw->init();
      break;
    case 6:
      if (oneIn(4)) return clearedArea();
      [[fallthrough]];
    default:
      draw = made<DrawRectangle>();
  }
  const NSPoint origin = point();
  draw->setBezierPathWithBounds({origin, {3.0 + below(60), 3 + below(600) / 10.0}});
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::clearedArea() {
  auto draw = made<DrawClear>();
  const NSPoint origin = point();
  draw->bezierPath()->appendBezierPathWithOvalInRect({origin, {3.0 + below(60), 20}});
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::polyline() {
  std::shared_ptr<DrawBase> draw;
  std::shared_ptr<DrawArrowed> arrowed;
  switch (below(5)) {
    case 0:
      draw = made<DrawPen>();
      break;
    case 1:
      draw = made<DrawEraser>();
      break;
    case 2:
      draw = made<DrawFreePolygon>();
      break;
    case 3:
      draw = arrowed = made<DrawBezierPath>();
      break;
    default:
      draw = arrowed = made<DrawBrokenLine>();
  }
  if (arrowed != nullptr && oneIn(3)) arrowed->setArrowStyle(below(3));
  NSBezierPath& path = *draw->bezierPath();
  path.moveToPoint(point());
  for (unsigned n = below(5) + 1; n > 0; --n) {
    const NSPoint c1 = point(), c2 = point(), end = point();
    if (oneIn(2)) {
      path.lineToPoint(end);
    } else {
      path.curveToPoint(end, c1, c2);
    }
  }
  if (oneIn(3)) path.closePath();
  if (oneIn(3)) path.setLineJoinStyle(LineJoin::miter);
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::spray() {
  auto draw = made<DrawAirbrush>();
  for (unsigned n = below(300) + 2; n > 0; --n) {
    const NSPoint p{static_cast<CGFloat>(below(100)), static_cast<CGFloat>(below(100))};
    draw->bezierPath()->moveToPoint(p);
    draw->bezierPath()->lineToPoint(p);
  }
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::picture() {
  const auto draw = DrawImage2::initWithImage(
      randomBitmap(1 + below(30), 1 + below(30), static_cast<unsigned>(random_())));
  if (oneIn(2)) draw->setXRadius(4, 6);
  const NSPoint origin = point();
  draw->setBezierPathWithBounds({origin, {3.0 + below(60), 3 + below(600) / 10.0}});
  return draw;
}

void RandomDraws::addPaint(DrawBase& draw) {
  draw.setEnableStroke(!oneIn(3));
  draw.setStrokeColor(color());
  draw.setLineWidth(below(4) == 0 ? 1 : 1 + below(100) / 10.0);
  if (oneIn(4)) draw.setLineDashStyle("3:2");
  if (oneIn(4)) {
    draw.setUseGradualStroke(true);
    draw.setStrokeGradient(gradient());
    draw.setUseRadialStrokeGradient(oneIn(2));
  }
  draw.setEnableFill(oneIn(2));
  draw.setFillColor(color());
  if (oneIn(4)) {
    draw.setUseGradualFill(true);
    draw.setFillGradient(gradient());
    draw.setFillGradientDegree(static_cast<float>(below(360)));
    draw.setUseRadialFillGradient(oneIn(2));
    if (oneIn(2)) draw.setFillGradientCenter({0.25, -0.5});
  }
}

void RandomDraws::addEffects(DrawBase& draw) {
  if (oneIn(3)) draw.setOpacity(20 + below(80));
  if (oneIn(3)) draw.setRotateDegree(static_cast<float>(below(360)));
  draw.setSmooth(!oneIn(5));
  if (oneIn(4)) {
    draw.setEnableShadow(true);
    draw.setShadow(shadow());
  }
  if (oneIn(6)) {
    draw.setEnableInnerShadow(true);
    draw.setInnerShadow(shadow());
  }
  if (oneIn(6)) {
    draw.setEnableReflection(true);
    draw.setReflection(static_cast<float>(below(15)) / 10);
    draw.setReflectionDis(static_cast<float>(below(30)) - 10);
  }
  if (oneIn(6)) {
    draw.setEnableStrokeOutline(true);
    draw.setStrokeOutlineWidth(static_cast<float>(below(5)) + 0.5F);
    draw.setStrokeOutlineColor(color());
  }
}

std::shared_ptr<DrawBase> RandomDraws::next() {
  const unsigned kind = below(9);
  const auto draw = kind < 4 ? box() : kind < 7 ? polyline() : kind < 8 ? spray() : picture();
  addPaint(*draw);
  addEffects(*draw);
  description_ = std::string(draw->className()) + (draw->enableShadow() ? " shadow" : "") +
                 (draw->enableInnerShadow() ? " inner" : "") +
                 (draw->enableReflection() ? " reflection" : "") +
                 (draw->useGradualStroke() ? " stroke gradient" : "") +
                 (draw->useGradualFill() ? " fill gradient" : "") +
                 (draw->lineDashStyle().empty() ? "" : " dash");
  return draw;
}
