// A page of text, laid out and drawn, against the desktop's text library.
#include <pango/pangocairo.h>

#include <memory>
#include <string>

#include "Ratio.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/text/drawing/TextDrawing.h"
#include "platform/text/host/NSLayoutManager.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/host/TextAttributes.h"

namespace {

constexpr int kWidth = 600;
constexpr int kHeight = 800;
constexpr double kSize = 12;
constexpr size_t kCharacters = 3000;

/// Sentences, repeated with a number in each, so that no two lines are alike.
std::string page() {
  std::string text;
  for (int i = 1; text.size() < kCharacters; ++i) {
    text += "The quick brown fox no. " + std::to_string(i * 37) +
            " jumps over the lazy dog, \"VAT\" included (fifty waffles, 12.50 each). ";
    if (i % 5 == 0) text += '\n';
  }
  text.resize(kCharacters);
  return text;
}

NSTextStorage& storage() {
  static NSTextStorage& text = *[] {
    auto attributes = std::make_shared<NSMutableDictionary>();
    attributes->setObject(std::make_shared<NSFont>("ArialMT", kSize), NSFontAttributeName);
    return new NSTextStorage(page(), attributes);
  }();
  return text;
}

void layOutAndDraw(NSBitmapImageRep& bitmap, CGContext& context) {
  bitmap.clear();
  const auto manager = std::make_shared<NSLayoutManager>();
  const auto container = std::make_shared<NSTextContainer>(NSMakeSize(kWidth, 2 * kHeight));
  container->setLineFragmentPadding(0);
  manager->addTextContainer(container);
  storage().addLayoutManager(manager);
  const NSRange glyphs = manager->glyphRangeForTextContainer(*container);
  drawTextGlyphs(manager->layout(), glyphs, NSZeroPoint, context);
  storage().removeLayoutManager(manager);
}

struct PangoPage {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight);
  cairo_t* cairo = cairo_create(surface);
  std::string text = page();

  void layOutAndDraw() {
    cairo_set_operator(cairo, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
    PangoLayout* layout = pango_cairo_create_layout(cairo);
    PangoFontDescription* font = pango_font_description_from_string("Liberation Sans");
    pango_font_description_set_absolute_size(font, kSize * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    pango_layout_set_width(layout, kWidth * PANGO_SCALE);
    pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
    cairo_move_to(cairo, 0, 0);
    pango_cairo_show_layout(cairo, layout);
    cairo_surface_flush(surface);
    pango_font_description_free(font);
    g_object_unref(layout);
  }
};

}  // namespace

static void pageAgainstPango(benchmark::State& state) {
  PangoPage pango;
  pango.layOutAndDraw();
  const double theirs = bestSeconds(50, [&] { pango.layOutAndDraw(); });
  const auto bitmap = NSBitmapImageRep::create(kWidth, kHeight);
  CGContext context(bitmap);
  context.concatenate({1, 0, 0, -1, 0, kHeight});
  layOutAndDraw(*bitmap, context);
  runAsMultiple(state, "pango", theirs, [&] { layOutAndDraw(*bitmap, context); });
  state.counters["pango_ms"] = theirs * 1e3;
}
BENCHMARK(pageAgainstPango)->Iterations(50)->Unit(benchmark::kMillisecond);

static void pageLayout(benchmark::State& state) {
  for (auto _ : state) {
    const auto layout = layoutText(makeStyledText(storage()), {{kWidth, 1e9}, 0});
    benchmark::DoNotOptimize(layout.lines.data());
  }
}
BENCHMARK(pageLayout)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
