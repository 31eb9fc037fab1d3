// Painting through a drawing context, as multiples of Cairo painting the same; layers and shadows
// as multiples of smaller work of our own.
#include <cairo.h>

#include <cmath>
#include <functional>

#include "Ratio.h"
#include "platform/graphics/context/CGContext.h"
#include "platform/graphics/context/GradientDrawing.h"

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr RGBAColor kColor{0.2, 0.5, 0.9, 1};

/// The same canvas for both, already in memory.
struct Canvases {
  Canvases() {
    bitmap = NSBitmapImageRep::create(kWidth, kHeight);
    std::memset(bitmap->writableRows(0, kHeight), 255, bitmap->bytesPerRow() * kHeight);
    surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight);
    cairo = cairo_create(surface);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_paint(cairo);
  }
  ~Canvases() {
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
  }
  std::shared_ptr<NSBitmapImageRep> bitmap;
  cairo_surface_t* surface;
  cairo_t* cairo;
};

using Ours = std::function<void(CGContext&)>;
using Theirs = std::function<void(cairo_t*)>;

/// Takes turns, so that both see the same machine.
void compare(benchmark::State& state, const Ours& ours, const Theirs& theirs) {
  Canvases canvases;
  double ourBest = INFINITY;
  double theirBest = INFINITY;
  for (auto _ : state) {
    theirBest = std::min(theirBest, bestSeconds(1, [&] {
                           cairo_save(canvases.cairo);
                           theirs(canvases.cairo);
                           cairo_restore(canvases.cairo);
                         }));
    ourBest = std::min(ourBest, bestSeconds(1, [&] {
                         CGContext context(canvases.bitmap);
                         ours(context);
                       }));
  }
  state.counters["x_cairo"] = ourBest / theirBest;
  state.counters["ms"] = ourBest * 1e3;
}

double alphaOf(const benchmark::State& state) {
  return state.range(0) != 0 ? 1 : 0.5;
}

PathData oval(const NSRect& r) {
  constexpr double k = 0.5522847498;
  const double a = NSWidth(r) / 2;
  const double b = NSHeight(r) / 2;
  const NSPoint c{NSMidX(r), NSMidY(r)};
  PathData path;
  path.move({c.x + a, c.y});
  path.cubic({c.x + a, c.y + k * b}, {c.x + k * a, c.y + b}, {c.x, c.y + b});
  path.cubic({c.x - k * a, c.y + b}, {c.x - a, c.y + k * b}, {c.x - a, c.y});
  path.cubic({c.x - a, c.y - k * b}, {c.x - k * a, c.y - b}, {c.x, c.y - b});
  path.cubic({c.x + k * a, c.y - b}, {c.x + a, c.y - k * b}, {c.x + a, c.y});
  path.close();
  return path;
}

void addPath(cairo_t* cairo, const PathData& path) {
  const NSPoint* p = path.points.data();
  for (const PathVerb verb : path.verbs) {
    if (verb == PathVerb::move) cairo_move_to(cairo, p[0].x, p[0].y);
    if (verb == PathVerb::line) cairo_line_to(cairo, p[0].x, p[0].y);
    if (verb == PathVerb::cubic) {
      cairo_curve_to(cairo, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
    }
    if (verb == PathVerb::close) cairo_close_path(cairo);
    p += pointCount(verb);
  }
}

void rectangles(benchmark::State& state) {
  const double alpha = alphaOf(state);
  const auto place = [](int i) {
    return NSMakeRect(i * 97 % (kWidth - 80), i * 61 % (kHeight - 80), 80, 80);
  };
  compare(
      state,
      [&](CGContext& context) {
        for (int i = 0; i < 2000; ++i) {
          context.setFillColor({i / 2000.0, 0.5, 0.9, alpha});
          context.fill(place(i));
        }
      },
      [&](cairo_t* cairo) {
        for (int i = 0; i < 2000; ++i) {
          const NSRect r = place(i);
          cairo_set_source_rgba(cairo, i / 2000.0, 0.5, 0.9, alpha);
          cairo_rectangle(cairo, r.origin.x, r.origin.y, 80, 80);
          cairo_fill(cairo);
        }
      });
}

void megapixelFills(benchmark::State& state) {
  const double alpha = alphaOf(state);
  const bool clipped = state.range(1) != 0;
  const PathData clip = oval(NSMakeRect(600, 400, 2800, 2200));
  std::vector<PathData> paths;
  for (int i = 0; i < 20; ++i) {
    paths.push_back(oval(NSMakeRect(i * 137 % 2800, i * 89 % 1900, 1150.5, 1100.25)));
  }
  compare(
      state,
      [&](CGContext& context) {
        if (clipped) context.clip(clip, WindingRule::nonZero);
        context.setFillColor({0.2, 0.5, 0.9, alpha});
        for (const PathData& path : paths) context.fill(path, WindingRule::nonZero);
      },
      [&](cairo_t* cairo) {
        if (clipped) {
          addPath(cairo, clip);
          cairo_clip(cairo);
        }
        cairo_set_source_rgba(cairo, 0.2, 0.5, 0.9, alpha);
        for (const PathData& path : paths) {
          addPath(cairo, path);
          cairo_fill(cairo);
        }
      });
}

CGGradient blueToWhite(double alpha) {
  return CGGradient(
      {{0, {0, 0.2, 0.8, alpha}}, {0.4, {0.9, 0.3, 0.1, alpha}}, {1, {1, 1, 1, alpha}}});
}

void paintPattern(cairo_t* cairo, cairo_pattern_t* pattern, double alpha) {
  cairo_pattern_add_color_stop_rgba(pattern, 0, 0, 0.2, 0.8, alpha);
  cairo_pattern_add_color_stop_rgba(pattern, 0.4, 0.9, 0.3, 0.1, alpha);
  cairo_pattern_add_color_stop_rgba(pattern, 1, 1, 1, 1, alpha);
  cairo_set_source(cairo, pattern);
  cairo_paint(cairo);
  cairo_pattern_destroy(pattern);
}

void linearGradient(benchmark::State& state) {
  const double alpha = alphaOf(state);
  const CGGradient gradient = blueToWhite(alpha);
  const auto angle = static_cast<double>(state.range(1));
  const NSRect canvas = NSMakeRect(0, 0, kWidth, kHeight);
  const LinearAxis axis = *linearAxis(canvas, angle);
  compare(
      state, [&](CGContext& context) { drawGradientInRect(context, gradient, canvas, angle); },
      [&](cairo_t* cairo) {
        paintPattern(
            cairo, cairo_pattern_create_linear(axis.start.x, axis.start.y, axis.end.x, axis.end.y),
            alpha);
      });
}

void radialGradient(benchmark::State& state) {
  const double alpha = alphaOf(state);
  const CGGradient gradient = blueToWhite(alpha);
  const NSPoint center{static_cast<double>(state.range(1)) / 10, 0};
  const NSRect canvas = NSMakeRect(0, 0, kWidth, kHeight);
  const RadialAxis axis = *radialAxis(canvas, center);
  compare(
      state, [&](CGContext& context) { drawGradientInRect(context, gradient, canvas, center); },
      [&](cairo_t* cairo) {
        paintPattern(
            cairo,
            cairo_pattern_create_radial(axis.startCenter.x, axis.startCenter.y, 0, axis.endCenter.x,
                                        axis.endCenter.y, axis.endRadius),
            alpha);
      });
}

/// A layer on the whole canvas clipped to 240 x 240, against the same on a canvas of that size.
void clippedLayer(benchmark::State& state) {
  const auto small = NSBitmapImageRep::create(240, 240);
  const auto large = NSBitmapImageRep::create(kWidth, kHeight);
  const auto draw = [](CGContext& context) {
    context.setFillColor(kColor);
    context.setAlpha(0.5);
    context.setShadow({{5, -5}, 10, {0, 0, 0, 1}});
    CGTransparencyLayerScope layer(context);
    context.fill(NSMakeRect(0, 0, 200, 200));
    context.setOperation(NSCompositingOperation::destinationIn);
    CGTransparencyLayerScope inner(context);
    context.fill(oval(NSMakeRect(0, 0, 200, 200)), WindingRule::nonZero);
    inner.end();
    layer.end();
  };
  const double unit = bestSeconds(50, [&] {
    CGContext context(small);
    draw(context);
  });
  runAsMultiple(state, "x_small_canvas", unit, [&] {
    CGContext context(large);
    context.concatenate(CGAffineTransformMakeTranslation(1000, 1000));
    context.clip(NSMakeRect(0, 0, 240, 240));
    draw(context);
  });
}

void shadow(benchmark::State& state) {
  const double unit = memcpySeconds(size_t{1000} * 1000);
  const auto bitmap = NSBitmapImageRep::create(1400, 1400);
  bitmap->writableRows(0, 1400);
  runAsMultiple(state, "x_memcpy", unit, [&] {
    CGContext context(bitmap);
    context.setFillColor({0, 0, 0, 1});
    context.setShadow({{0, 0}, static_cast<double>(state.range(0)), {0, 0, 0, 1}});
    context.fill(NSMakeRect(200, 200, 1000, 1000));
  });
}

}  // namespace

BENCHMARK(rectangles)->ArgName("opaque")->Arg(1)->Arg(0)->Iterations(20);
BENCHMARK(megapixelFills)
    ->ArgNames({"opaque", "clipped"})
    ->ArgsProduct({{1, 0}, {0, 1}})
    ->Iterations(15);
BENCHMARK(linearGradient)
    ->ArgNames({"opaque", "angle"})
    ->ArgsProduct({{1, 0}, {0, 90, 30}})
    ->Iterations(7);
BENCHMARK(radialGradient)
    ->ArgNames({"opaque", "center"})
    ->ArgsProduct({{1, 0}, {0, 5, 10}})
    ->Iterations(7);
BENCHMARK(clippedLayer)->Iterations(50);
BENCHMARK(shadow)->ArgName("blur")->Arg(5)->Arg(20)->Arg(40)->Arg(100)->Iterations(20);
BENCHMARK_MAIN();
