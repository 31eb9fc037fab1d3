// What the engine costs on top of the painting itself: 10,000 small rectangles as draws of a
// document, against the same rectangles filled directly in a drawing context. The counter
// "overhead_us" is the difference per draw, in microseconds of processor time.
#include <benchmark/benchmark.h>

#include <ctime>

#include "document/PaintManager.h"
#include "draw/shapes/DrawRectangle.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"

namespace {

constexpr int kDraws = 10000;
constexpr CGFloat kCanvas = 1000;

NSRect rectangle(int i) {
  return NSMakeRect(i * 37 % 980, i * 71 % 980, 5 + i % 15, 5 + i % 13);
}

double processorSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

PaintManager makeDocument() {
  PaintManager document;
  document.setSize({kCanvas, kCanvas});
  for (int i = 0; i < kDraws; ++i) {
    auto draw = std::make_shared<DrawRectangle>();
    draw->init();
    draw->setBezierPathWithBounds(rectangle(i));
    draw->setEnableStroke(false);
    draw->setEnableFill(true);
    draw->setFillColor(NSColor::redColor());
    document.addDraw(draw);
  }
  return document;
}

double secondsToCompose(PaintManager& document) {
  document.setImageRefreshControl(kRebuildBuffer);
  const double start = processorSeconds();
  benchmark::DoNotOptimize(document.fullImage());
  return processorSeconds() - start;
}

double secondsToFill(const std::shared_ptr<NSBitmapImageRep>& bitmap,
                     const std::vector<std::shared_ptr<NSBezierPath>>& paths) {
  const double start = processorSeconds();
  const ZTFocusScope focus(bitmap);
  NSColor::redColor()->set();
  for (const auto& path : paths) path->fill();
  return processorSeconds() - start;
}

void BM_TenThousandRectangles(benchmark::State& state) {
  PaintManager document = makeDocument();
  std::vector<std::shared_ptr<NSBezierPath>> paths;
  for (int i = 0; i < kDraws; ++i) paths.push_back(NSBezierPath::bezierPathWithRect(rectangle(i)));
  const auto bitmap = NSBitmapImageRep::create(1000, 1000);
  double composed = 1e9;
  double filled = 1e9;
  for (auto _ : state) {
    composed = std::min(composed, secondsToCompose(document));
    filled = std::min(filled, secondsToFill(bitmap, paths));
  }
  state.counters["overhead_us"] = (composed - filled) / kDraws * 1e6;
  state.counters["paint_us"] = filled / kDraws * 1e6;
}
BENCHMARK(BM_TenThousandRectangles)->Iterations(20)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
