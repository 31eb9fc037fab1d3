// Changing one draw in a document of 10,000: `of_whole` is the time until the picture is current
// again as a part of the time for composing all of it. The change and the document's bookkeeping
// are included.
#include <functional>
#include <random>
#include <vector>

#include "Ratio.h"
#include "document/PaintManager.h"
#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectangle.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"

namespace {

constexpr size_t kDraws = 10000;
constexpr CGFloat kSide = 2000;
constexpr int kCalls = 15;

/// Rectangles, ellipses and lines of 10 to 60 units, everywhere.
PaintManager makeDocument() {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> at(0, kSide - 60), size(10, 60);
  PaintManager document;
  document.setSize({kSide, kSide});
  for (size_t i = 0; i < kDraws; ++i) {
    const NSPoint p{at(random), at(random)};
    const NSSize box{size(random), size(random)};
    std::shared_ptr<DrawBase> draw;
    if (i % 3 == 0) {
      auto line = std::make_shared<DrawLine>();
      line->init();
      line->setStartPoint(p, {p.x + box.width, p.y + box.height});
      draw = line;
    } else {
      auto shape = i % 3 == 1 ? std::make_shared<DrawRectangle>() : std::make_shared<DrawEllipse>();
      shape->init();
      shape->setBezierPathWithBounds({p, box});
      shape->setEnableFill(true);
      shape->setFillColor(NSColor::redColor());
      draw = shape;
    }
    document.addDraw(draw);
  }
  return document;
}

/// Calls `change` with the index of another draw each time, and brings the picture up to date.
void measure(benchmark::State& state,
             const std::function<void(PaintManager&, const std::shared_ptr<DrawBase>&)>& change) {
  PaintManager document = makeDocument();
  const double whole = bestSeconds(kCalls, [&] {
    document.setImageRefreshControl(kRebuildBuffer);
    benchmark::DoNotOptimize(document.fullImage());
  });
  size_t index = 0;
  double best = 1e9;
  for (auto _ : state) {
    best = std::min(best, bestSeconds(kCalls, [&] {
                      index = (index + 1237) % (kDraws - 1);
                      change(document, document.allDraws()[index]);
                      benchmark::DoNotOptimize(document.fullImage());
                    }));
  }
  state.counters["of_whole"] = best / whole;
  state.counters["us"] = best * 1e6;
  state.counters["whole_us"] = whole * 1e6;
}

void move(PaintManager& document, const std::shared_ptr<DrawBase>& draw) {
  draw->moveByX(3, 2);
  document.respondToChangeOfDraws({&draw, 1});
}

void BM_MoveOne(benchmark::State& state) {
  measure(state, move);
}
BENCHMARK(BM_MoveOne)->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_MoveTheTopmost(benchmark::State& state) {
  measure(state, [](PaintManager& document, const std::shared_ptr<DrawBase>&) {
    move(document, document.toppestDraw());
  });
}
BENCHMARK(BM_MoveTheTopmost)->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_OneStepUp(benchmark::State& state) {
  measure(state, [](PaintManager& document, const std::shared_ptr<DrawBase>& draw) {
    document.moveUpDraws(DrawArray{draw});
  });
}
BENCHMARK(BM_OneStepUp)->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_OneToTheFront(benchmark::State& state) {
  measure(state, [](PaintManager& document, const std::shared_ptr<DrawBase>& draw) {
    document.moveDrawsToFront(DrawArray{draw});
  });
}
BENCHMARK(BM_OneToTheFront)->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_RemoveAndInsert(benchmark::State& state) {
  measure(state, [](PaintManager& document, const std::shared_ptr<DrawBase>& draw) {
    const auto removed = draw;
    document.removeDraw(removed);
    document.insertDraw(removed, kDraws / 2);
  });
}
BENCHMARK(BM_RemoveAndInsert)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
