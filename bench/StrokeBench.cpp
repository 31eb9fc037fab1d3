// Brush strokes against plain Cairo drawing the same ones in the same run. `of_cairo` is the ratio
// of best CPU times; `ns_per_segment` should not depend on the number of segments.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "Ratio.h"
#include "draw/raster/DrawBrushes.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"

namespace {

constexpr int kSide = 1000;
constexpr int kCalls = 7;

/// What both draw: strokes from point to point, or a dot at each point.
struct Stroke {
  std::vector<NSPoint> points;
  bool dots = false;
  CGFloat width = 1;
};

/// Dots at whole pixels, as an airbrush sprays them.
Stroke spray(int dots) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> at(100, 899);
  Stroke stroke{{}, true, 1};
  for (int i = 0; i < dots; ++i) {
    const int x = at(random);
    stroke.points.push_back({static_cast<CGFloat>(x), static_cast<CGFloat>(at(random))});
  }
  return stroke;
}

/// A hand that scribbles over the canvas: steps of 5 with a slowly changing direction.
Stroke scribble(int segments, CGFloat width) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> turn(-0.3, 0.3);
  Stroke stroke{{{kSide / 2.0, kSide / 2.0}}, false, width};
  double angle = 0;
  for (int i = 0; i < segments; ++i) {
    NSPoint p = stroke.points.back();
    angle += turn(random) + ((std::hypot(p.x - kSide / 2.0, p.y - kSide / 2.0) > 400) ? 0.4 : 0);
    p.x = std::clamp(p.x + 5 * std::cos(angle), 20.0, kSide - 20.0);
    p.y = std::clamp(p.y + 5 * std::sin(angle), 20.0, kSide - 20.0);
    stroke.points.push_back(p);
  }
  return stroke;
}

std::shared_ptr<DrawBase> ours(const Stroke& stroke) {
  std::shared_ptr<DrawBase> draw;
  if (stroke.dots) {
    draw = std::make_shared<DrawAirbrush>();
  } else {
    draw = std::make_shared<DrawPen>();
  }
  draw->init();
  NSBezierPath& path = *draw->bezierPath();
  path.setLineWidth(stroke.width);
  path.setLineJoinStyle(LineJoin::round);
  for (const NSPoint& p : stroke.points) {
    if (stroke.dots || path.isEmpty()) path.moveToPoint(p);
    if (stroke.dots || path.elementCount() > 0) path.lineToPoint(p);
  }
  draw->setStrokeColor(NSColor::blueColor());
  return draw;
}

double ourSeconds(const Stroke& stroke) {
  const auto draw = ours(stroke);
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  const ZTFocusScope focus(bitmap);
  return bestSeconds(kCalls, [&] { draw->drawInImage(bitmap.get()); });
}

double cairoSeconds(const Stroke& stroke) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSide, kSide);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 0, 0, 1);
  cairo_set_line_width(cr, stroke.width);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  if (stroke.dots) cairo_set_antialias(cr, CAIRO_ANTIALIAS_NONE);
  if (static_cast<int>(stroke.width) % 2 != 0) cairo_translate(cr, 0.5, 0.5);
  const double seconds = bestSeconds(kCalls, [&] {
    bool first = true;
    for (const NSPoint& p : stroke.points) {
      if (stroke.dots || first) cairo_move_to(cr, p.x, p.y);
      if (stroke.dots || !first) cairo_line_to(cr, p.x, p.y);
      first = false;
    }
    cairo_stroke(cr);
    cairo_surface_flush(surface);
  });
  cairo_destroy(cr);
  cairo_surface_destroy(surface);
  return seconds;
}

void compare(benchmark::State& state, const Stroke& stroke) {
  double our = 1e9, cairo = 1e9;
  for (auto _ : state) {
    our = std::min(our, ourSeconds(stroke));
    cairo = std::min(cairo, cairoSeconds(stroke));
  }
  const auto segments = static_cast<double>(stroke.points.size() - (stroke.dots ? 0 : 1));
  state.counters["of_cairo"] = our / cairo;
  state.counters["ns_per_segment"] = our / segments * 1e9;
}

void BM_Dots(benchmark::State& state) {
  compare(state, spray(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_Dots)->Arg(1250)->Arg(2500)->Arg(5000)->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_PenStroke(benchmark::State& state) {
  compare(state, scribble(static_cast<int>(state.range(0)), static_cast<CGFloat>(state.range(1))));
}
BENCHMARK(BM_PenStroke)
    ->ArgsProduct({{5000, 10000, 20000}, {1, 8, 30}})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
