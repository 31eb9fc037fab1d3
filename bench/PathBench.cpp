// Paths to pixels against two other renderers drawing the same things in the same run. The counters
// are ratios of best CPU times: `of_cairo` and `of_agg` with compositing, `geometry` the coverage
// alone (nothing painted) as a part of Cairo's whole time.
#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_scanline.h>
#include <agg_scanline_p.h>
#include <cairo.h>

#include <functional>
#include <random>
#include <vector>

#include "Ratio.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"
#include "platform/graphics/pixels/paint/SpanCompositor.h"

namespace {

constexpr int32_t kWidth = 2000;
constexpr int32_t kHeight = 1500;
constexpr PixelBox kCanvas{0, 0, kWidth, kHeight};
constexpr CGAffineTransform kIdentity;

/// What is drawn, and how often.
struct Scene {
  std::vector<PathData> paths;
  bool stroked = false;
  StrokeStyle style;
  PathData clip;  ///< none when empty
  uint8_t alpha = 255;
};

/// A closed curve of four cubics around `c`, between half of `r` and all of it away.
PathData blob(NSPoint c, double r, std::mt19937& random) {
  std::uniform_real_distribution<double> part(0.5, 1);
  const auto at = [&](double angle) {
    const double distance = r * part(random);
    return NSPoint{c.x + distance * std::cos(angle), c.y + distance * std::sin(angle)};
  };
  PathData path;
  const NSPoint start = at(0);
  path.move(start);
  for (int i = 0; i < 4; ++i) {
    const double a = i * M_PI / 2;
    const NSPoint c1 = at(a + 0.5), c2 = at(a + 1), end = i == 3 ? start : at(a + M_PI / 2);
    path.cubic(c1, c2, end);
  }
  path.close();
  return path;
}

std::vector<PathData> blobs(int count, double r) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> x(r, kWidth - r), y(r, kHeight - r);
  std::vector<PathData> paths;
  for (int i = 0; i < count; ++i) {
    const NSPoint c{x(random), y(random)};
    paths.push_back(blob(c, r, random));
  }
  return paths;
}

/// Open curves of `cubics` pieces within boxes of the given size.
std::vector<PathData> curves(int count, int cubics, double size) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> x(0, kWidth - size), y(0, kHeight - size), in(0, size);
  std::vector<PathData> paths(static_cast<size_t>(count));
  for (PathData& path : paths) {
    const NSPoint o{x(random), y(random)};
    const auto at = [&] { return NSPoint{o.x + in(random), o.y + in(random)}; };
    path.move(at());
    for (int i = 0; i < cubics; ++i) {
      const NSPoint c1 = at(), c2 = at(), end = at();
      path.cubic(c1, c2, end);
    }
  }
  return paths;
}

std::vector<PathData> rectangles(int count, double side) {
  std::mt19937 random(3);
  std::uniform_int_distribution<int> x(0, kWidth - 100), y(0, kHeight - 100);
  std::vector<PathData> paths(static_cast<size_t>(count));
  for (PathData& path : paths) {
    const double left = x(random), top = y(random);
    path.move({left, top});
    path.line({left + side, top});
    path.line({left + side, top + side});
    path.line({left, top + side});
    path.close();
  }
  return paths;
}

Scene fills(std::vector<PathData> paths, uint8_t alpha = 255) {
  Scene scene;
  scene.paths = std::move(paths);
  scene.alpha = alpha;
  return scene;
}

Scene strokes(std::vector<PathData> paths, double width, LineJoin join = LineJoin::miter,
              std::vector<double> dash = {}) {
  Scene scene = fills(std::move(paths));
  scene.stroked = true;
  scene.style.width = width;
  scene.style.join = join;
  scene.style.cap = join == LineJoin::round ? LineCap::round : LineCap::butt;
  scene.style.dash = std::move(dash);
  return scene;
}

Scene clippedFills() {
  Scene scene = fills(blobs(20, 700));
  std::mt19937 random(4);
  scene.clip = blob({kWidth / 2.0, kHeight / 2.0}, 800, random);
  return scene;
}

uint32_t premultiplied(uint8_t alpha) {
  const uint32_t level = static_cast<uint32_t>(alpha) / 2;
  return level | level << 8 | level << 16 | static_cast<uint32_t>(alpha) << 24;
}

class NullSink final : public CoverageSink {
 public:
  void row(int32_t y, std::span<const CoverageRun> runs) override {
    benchmark::DoNotOptimize(y);
    benchmark::DoNotOptimize(runs.data());
  }
};

class Ours {
 public:
  void draw(const Scene& scene) {
    SpanCompositor compositor(surface_, NSCompositingOperation::sourceOver,
                              SpanPaint::solid(premultiplied(scene.alpha)));
    drawTo(scene, compositor);
  }
  void drawNothing(const Scene& scene) {
    NullSink sink;
    drawTo(scene, sink);
  }

 private:
  void drawTo(const Scene& scene, CoverageSink& sink) {
    ClipRegion clip(kCanvas);
    if (!scene.clip.empty()) {
      clip = renderer_.clipToPath(scene.clip, WindingRule::nonZero, kIdentity, Antialias::on, clip);
    }
    for (const PathData& path : scene.paths) {
      if (scene.stroked) {
        renderer_.strokePath(path, scene.style, kIdentity, Antialias::on, clip, sink);
      } else {
        renderer_.fillPath(path, WindingRule::nonZero, kIdentity, Antialias::on, clip, sink);
      }
    }
  }

  PixelSurface surface_{std::make_shared<PixelBuffer>(kWidth, kHeight), 0, 0};
  PathRenderer renderer_;
};

class Cairo {
 public:
  Cairo()
      : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight)),
        context_(cairo_create(surface_)) {}
  Cairo(const Cairo&) = delete;
  ~Cairo() {
    cairo_destroy(context_);
    cairo_surface_destroy(surface_);
  }

  void draw(const Scene& scene) {
    cairo_save(context_);
    if (!scene.clip.empty()) {
      add(scene.clip);
      cairo_clip(context_);
    }
    cairo_set_source_rgba(context_, 0.5, 0.5, 0.5, scene.alpha / 255.0);
    const StrokeStyle& style = scene.style;
    cairo_set_line_width(context_, style.width);
    cairo_set_line_cap(context_, static_cast<cairo_line_cap_t>(style.cap));
    cairo_set_line_join(context_, static_cast<cairo_line_join_t>(style.join));
    cairo_set_dash(context_, style.dash.data(), static_cast<int>(style.dash.size()), 0);
    for (const PathData& path : scene.paths) {
      add(path);
      scene.stroked ? cairo_stroke(context_) : cairo_fill(context_);
    }
    cairo_restore(context_);
  }

 private:
  void add(const PathData& path) {
    const NSPoint* p = path.points.data();
    for (const PathVerb verb : path.verbs) {
      if (verb == PathVerb::move) cairo_move_to(context_, p[0].x, p[0].y);
      if (verb == PathVerb::line) cairo_line_to(context_, p[0].x, p[0].y);
      if (verb == PathVerb::cubic) {
        cairo_curve_to(context_, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
      }
      if (verb == PathVerb::close) cairo_close_path(context_);
      p += pointCount(verb);
    }
  }

  cairo_surface_t* surface_;
  cairo_t* context_;
};

class Agg {
 public:
  Agg()
      : pixels_(size_t{kWidth} * kHeight * 4),
        buffer_(pixels_.data(), kWidth, kHeight, kWidth * 4),
        format_(buffer_),
        base_(format_) {
    rasterizer_.clip_box(0, 0, kWidth, kHeight);
  }

  void draw(const Scene& scene) {
    color_ = agg::rgba8(127, 127, 127, scene.alpha).premultiply();
    for (const PathData& path : scene.paths) {
      agg::path_storage storage;
      add(path, storage);
      agg::conv_curve<agg::path_storage> curve(storage);
      curve.approximation_scale(2);
      if (!scene.stroked) {
        fill(curve);
      } else if (scene.style.dash.empty()) {
        agg::conv_stroke<decltype(curve)> stroke(curve);
        strokeWith(stroke, scene.style);
      } else {
        agg::conv_dash<decltype(curve)> dash(curve);
        dash.add_dash(scene.style.dash[0], scene.style.dash[1]);
        agg::conv_stroke<decltype(dash)> stroke(dash);
        strokeWith(stroke, scene.style);
      }
    }
  }

 private:
  using Format = agg::pixfmt_rgba32_pre;

  template <class Stroke>
  void strokeWith(Stroke& stroke, const StrokeStyle& style) {
    stroke.width(style.width);
    stroke.inner_join(agg::inner_jag);
    stroke.line_join(style.join == LineJoin::round ? agg::round_join : agg::miter_join_revert);
    stroke.line_cap(style.cap == LineCap::round ? agg::round_cap : agg::butt_cap);
    fill(stroke);
  }

  template <class Source>
  void fill(Source& source) {
    rasterizer_.reset();
    rasterizer_.add_path(source);
    agg::render_scanlines_aa_solid(rasterizer_, scanline_, base_, color_);
  }

  static void add(const PathData& path, agg::path_storage& out) {
    const NSPoint* p = path.points.data();
    for (const PathVerb verb : path.verbs) {
      if (verb == PathVerb::move) out.move_to(p[0].x, p[0].y);
      if (verb == PathVerb::line) out.line_to(p[0].x, p[0].y);
      if (verb == PathVerb::cubic) out.curve4(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
      if (verb == PathVerb::close) out.close_polygon();
      p += pointCount(verb);
    }
  }

  std::vector<uint8_t> pixels_;
  agg::rendering_buffer buffer_;
  Format format_;
  agg::renderer_base<Format> base_;
  agg::rasterizer_scanline_aa<> rasterizer_;
  agg::scanline32_p8 scanline_;
  agg::rgba8 color_;
};

/// Draws the scene with everyone, in turns.
void compare(benchmark::State& state, const Scene& scene) {
  Ours ours;
  Cairo cairo;
  Agg agg;
  double best[4] = {1e9, 1e9, 1e9, 1e9};
  const auto measure = [&](int index, const std::function<void()>& draw) {
    best[index] = std::min(best[index], bestSeconds(1, draw));
  };
  for (auto _ : state) {
    measure(0, [&] { ours.draw(scene); });
    measure(1, [&] { ours.drawNothing(scene); });
    measure(2, [&] { cairo.draw(scene); });
    if (scene.clip.empty()) measure(3, [&] { agg.draw(scene); });
  }
  state.counters["of_cairo"] = best[0] / best[2];
  state.counters["geometry"] = best[1] / best[2];
  if (scene.clip.empty()) state.counters["of_agg"] = best[0] / best[3];
  state.counters["us_each"] = best[0] * 1e6 / static_cast<double>(scene.paths.size());
}

}  // namespace

BENCHMARK_CAPTURE(compare, small_fills, fills(blobs(2000, 20)))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, small_fills_translucent, fills(blobs(2000, 20), 128))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, small_strokes, strokes(curves(2000, 1, 60), 2))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, small_closed_strokes, strokes(blobs(2000, 20), 2))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, dashed_strokes,
                  strokes(curves(200, 4, 400), 4, LineJoin::miter, {12, 8}))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, wide_strokes, strokes(curves(200, 4, 400), 24, LineJoin::round))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, big_fills, fills(blobs(20, 700)))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, big_fills_translucent, fills(blobs(20, 700), 128))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, big_fills_under_path_clip, clippedFills())
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, rectangles, fills(rectangles(2000, 80)))->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
