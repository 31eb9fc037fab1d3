#include "support/RandomDraws.h"

#include <cmath>

#include "document/DrawGroup.h"
#include "draw/image/DrawFilter2.h"
#include "draw/image/DrawImage2.h"
#include "draw/raster/DrawBrushes.h"
#include "draw/raster/DrawFill.h"
#include "draw/raster/ImageMask.h"
#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawMessages.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/shapes/FixedOutlines.h"
#include "draw/text/DrawBezierText.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/text/host/NSAttributedString.h"
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
  const unsigned most = oneIn(3) ? 50 : 10;
  const double dx = static_cast<double>(below(2 * most + 1)) - most;
  shadow->setShadowOffset({dx * unit_, (static_cast<double>(below(2 * most + 1)) - most) * unit_});
  shadow->setShadowBlurRadius(below(4) * 3.5 * unit_);
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
      rounded->setXRadius(static_cast<float>(5 * unit_), static_cast<float>(7 * unit_));
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
  draw->setBezierPathWithBounds(bounds());
  return draw;
}

NSRect RandomDraws::bounds() {
  const NSPoint origin = point();
  const double width = 3.0 + below(60);
  return {origin, {width * unit_, (3 + below(600) / 10.0) * unit_}};
}

std::shared_ptr<DrawBase> RandomDraws::clearedArea() {
  auto draw = made<DrawClear>();
  const NSPoint origin = point();
  const double width = 3.0 + below(60);
  draw->bezierPath()->appendBezierPathWithOvalInRect({origin, {width * unit_, 20 * unit_}});
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
    const CGFloat x = below(100);
    const NSPoint p{x * unit_, static_cast<CGFloat>(below(100)) * unit_};
    draw->bezierPath()->moveToPoint(p);
    draw->bezierPath()->lineToPoint(p);
  }
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::picture() {
  const auto draw = DrawImage2::initWithImage(
      randomBitmap(1 + below(30), 1 + below(30), static_cast<unsigned>(random_())));
  if (oneIn(2)) draw->setXRadius(static_cast<float>(4 * unit_), static_cast<float>(6 * unit_));
  draw->setBezierPathWithBounds(bounds());
  return draw;
}

void RandomDraws::addPaint(DrawBase& draw) {
  draw.setEnableStroke(!oneIn(3));
  draw.setStrokeColor(color());
  draw.setLineWidth((below(4) == 0 ? 1 : 1 + below(100) / 10.0) * unit_);
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
    draw.setReflectionDis(static_cast<float>((below(201) - 100.0) * unit_));
  }
  if (oneIn(6)) {
    draw.setEnableStrokeOutline(true);
    draw.setStrokeOutlineWidth(static_cast<float>((below(5) + 0.5) * unit_));
    draw.setStrokeOutlineColor(color());
  }
}

std::shared_ptr<DrawBase> RandomDraws::next() {
  const unsigned kind = below(9);
  const auto draw = kind < 4 ? box() : kind < 7 ? polyline() : kind < 8 ? spray() : picture();
  addPaint(*draw);
  addEffects(*draw);
  describe(*draw);
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::nextOfAll() {
  std::shared_ptr<DrawBase> draw;
  switch (below(10)) {
    case 0:
      draw = text();
      break;
    case 1:
      draw = curvedText();
      break;
    case 2:
      draw = fill();
      break;
    case 3:
      draw = filter();
      break;
    case 4:
      draw = group();
      break;
    default:
      return next();
  }
  if (dynamic_cast<const DrawGroup*>(draw.get()) == nullptr) addEffects(*draw);
  describe(*draw);
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::text() {
  auto draw = made<DrawText>();
  addPaint(*draw);
  draw->setBezierPathWithBounds(NSInsetRect(bounds(), -20 * unit_, -10 * unit_));
  draw->setAttributedString(NSAttributedString("Sphinx of black quartz, judge my vow. 1234567890"));
  draw->setTextFontSize((6 + below(20)) * unit_);
  draw->setTextColor(color());
  if (oneIn(3)) draw->setTextOutlineWidth(3, color());
  if (oneIn(3)) {
    draw->setUseGradualText(true);
    draw->setTextGradient(gradient());
  }
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::curvedText() {
  auto guide = made<DrawCurve>();
  const NSPoint start = point(), c1 = point(), c2 = point();
  guide->setStartPoint(start, c1, c2, point());
  auto draw = made<DrawBezierText>();
  draw->setAttributedString(NSAttributedString("Round and round the ragged rock"));
  draw->setTextFontSize((6 + below(12)) * unit_);
  draw->setTextColor(color());
  draw->setBezierDraw(guide);
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::fill() {
  const NSRect area = NSIntegralRect(bounds());
  std::shared_ptr<DrawFill> draw;
  if (oneIn(2)) {
    const auto width = static_cast<int64_t>(area.size.width);
    const auto height = static_cast<int64_t>(area.size.height);
    std::vector<uint8_t> inside(static_cast<size_t>(width * height));
    for (int64_t i = 0; i < width * height; ++i) {
      const double x = static_cast<double>(i % width) / area.size.width - 0.5;
      const double y = static_cast<double>(i / width) / area.size.height - 0.5;
      inside[static_cast<size_t>(i)] = std::abs(x) + y * y * 3 < 0.4;
    }
    draw = DrawFill::initWithImageMask(
        ImageMask::initWithData(std::move(inside), static_cast<int64_t>(area.origin.x),
                                static_cast<int64_t>(area.origin.y), width, height));
  } else {
    draw = DrawFill::initWithBezierPath(*NSBezierPath::bezierPathWithOvalInRect(area));
  }
  draw->setFillColor(color());
  draw->setEnableFill(true);
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::filter() {
  const auto bitmap = randomBitmap(20, 15, static_cast<unsigned>(random_()));
  auto draw = DrawFilter2::initWithImage(bitmap, nullptr, 1 + below(8));
  draw->setBezierPathWithBounds(bounds());
  return draw;
}

std::shared_ptr<DrawBase> RandomDraws::group() {
  DrawArray inside;
  for (unsigned n = 2 + below(2); n > 0; --n) inside.push_back(next());
  return DrawGroup::initWithDraws(std::move(inside));
}

void RandomDraws::describe(const DrawBase& drawn) {
  const DrawBase* const draw = &drawn;
  description_ = std::string(draw->className()) + (draw->enableShadow() ? " shadow" : "") +
                 (draw->enableInnerShadow() ? " inner" : "") +
                 (draw->enableReflection() ? " reflection" : "") +
                 (draw->useGradualStroke() ? " stroke gradient" : "") +
                 (draw->useGradualFill() ? " fill gradient" : "") +
                 (draw->lineDashStyle().empty() ? "" : " dash");
}

std::shared_ptr<PaintManager> randomDocument(unsigned seed, double megapixels) {
  const double unit = std::sqrt(megapixels * 1e6 / (160 * 120));
  RandomDraws draws(seed, 160, unit);
  auto document = PaintManager::initWithSize({std::floor(160 * unit), std::floor(120 * unit)});
  if (draws.oneIn(2)) document->setBackgroundColor(NSColor::whiteColor());
  for (unsigned n = 1 + draws.below(5); n > 0; --n) document->addDraw(draws.nextOfAll());
  return document;
}
