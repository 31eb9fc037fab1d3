// What 1,000 draws of one picture cost on top of the painting itself: a document whose draws hold
// the picture as a file, against the same draws with the bitmap already in their hands.
#include <memory>
#include <string>

#include "Ratio.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "draw/image/DrawSVG.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

namespace {

constexpr int kDraws = 1000;
constexpr int64_t kSide = 64;

NSRect place(int i) {
  return NSMakeRect(i % 40 * 24, i / 40 * 36, kSide, kSide);
}

/// `make` makes one of the draws.
template <class Make>
PaintManager documentOf(Make make) {
  PaintManager document;
  document.setSize({1024, 1024});
  for (int i = 0; i < kDraws; ++i) {
    const std::shared_ptr<DrawImage2> draw = make();
    draw->setBezierPathWithBounds(place(i));
    document.addDraw(draw);
  }
  return document;
}

/// A copy of a document remembers no pictures.
void composeAnew(const PaintManager& document) {
  PaintManager copy = document;
  benchmark::DoNotOptimize(copy.composedImage());
}

void runAsMultipleOfPainting(benchmark::State& state, const PaintManager& document,
                             const PaintManager& painted) {
  const double painting = bestSeconds(5, [&] { composeAnew(painted); });
  runAsMultiple(state, "x_painting", painting, [&] { composeAnew(document); });
}

std::shared_ptr<NSData> svgData() {
  std::string text =
      "<svg xmlns='http://www.w3.org/2000/svg' width='64' height='64'>"
      "<circle cx='32' cy='32' r='30' fill='#c33'/><path d='M8 50L32 8L56 50Z' fill='#39c'/></svg>";
  return NSData::dataWithVector({text.begin(), text.end()});
}

void BM_ThousandDrawsOfOnePicture(benchmark::State& state) {
  const auto bitmap = NSBitmapImageRep::create(4 * kSide, 4 * kSide);
  uint8_t* const pixels = bitmap->writableRows(0, bitmap->pixelsHigh());
  for (int64_t i = 0; i < bitmap->pixelsWide() * bitmap->pixelsHigh() * 4; ++i) {
    pixels[i] = static_cast<uint8_t>(i % 4 == 3 ? 255 : i * 2654435761U >> 24);
  }
  const auto file = NSData::dataWithVector(encodePNG(*bitmap));
  const auto painted = documentOf([&] { return DrawImage2::initWithImage(bitmap); });
  const auto encoded = documentOf([&] {
    auto draw = DrawImage2::initWithImage(nullptr);
    draw->setEncodedImage(std::make_shared<EncodedBitmap>(file));
    return draw;
  });
  runAsMultipleOfPainting(state, encoded, painted);
}
BENCHMARK(BM_ThousandDrawsOfOnePicture)->Iterations(5)->Unit(benchmark::kMillisecond);

/// The helper's time is not counted: each round trip costs this process some too.
void BM_ThousandDrawsOfOneSVG(benchmark::State& state) {
  const auto data = svgData();
  const auto first = DrawSVG::drawWithSVGData(data);
  const auto bitmap = first == nullptr ? nullptr : first->image();
  if (bitmap == nullptr) return state.SkipWithError("no SVG picture can be drawn");
  const auto painted = documentOf([&] { return DrawImage2::initWithImage(bitmap); });
  const auto drawn = documentOf([&]() -> std::shared_ptr<DrawImage2> {
    auto draw = DrawSVG::drawWithSVGData(data);
    draw->setImage(nullptr);
    return draw;
  });
  runAsMultipleOfPainting(state, drawn, painted);
}
BENCHMARK(BM_ThousandDrawsOfOneSVG)->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
