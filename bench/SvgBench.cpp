// Reading SVG text as a multiple of parsing it as XML alone, the memory of a document per byte of
// its text, and drawing at 1,000 by 1,000 pixels as a multiple of librsvg.
#include <benchmark/benchmark.h>
#include <librsvg/rsvg.h>
#include <libxml/parser.h>
#include <malloc.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>

#include "Ratio.h"
#include "platform/foundation/values/NSData.h"
#include "svg/CGSVGRenderer.h"
#include "svg/ZTSVGTool.h"
#include "svg/tree/SVGDocument.h"

namespace {

class TextWriter {
 public:
  explicit TextWriter(unsigned seed) : random_(seed) {}

  TextWriter& operator<<(const std::string& text) {
    text_ += text;
    return *this;
  }
  /// A number with up to two digits after the point.
  TextWriter& number(double low, double high) {
    const double value = std::uniform_real_distribution<double>(low, high)(random_);
    char digits[32];
    std::snprintf(digits, sizeof digits, "%g", std::round(value * 100) / 100);
    return *this << digits;
  }
  TextWriter& color() {
    char digits[8];
    std::snprintf(digits, sizeof digits, "#%06x", static_cast<unsigned>(random_() & 0xffffff));
    return *this << digits;
  }
  std::string text() const {
    return "<svg xmlns='http://www.w3.org/2000/svg' width='1000' height='1000' "
           "viewBox='0 0 1000 1000'>" +
           text_ + "</svg>";
  }

 private:
  std::mt19937 random_;
  std::string text_;
};

/// Closed curves of some 100 units, half of them stroked too: what drawing programs export.
std::string pathsText() {
  TextWriter out(1);
  for (int i = 0; i < 2000; ++i) {
    out << "<path fill=\"";
    out.color() << "\"";
    if (i % 2 == 0) out << " stroke=\"#333\" stroke-width=\"2\"";
    out << " d=\"M";
    out.number(0, 1000) << " ";
    out.number(0, 1000);
    for (int k = 0; k < 8; ++k) {
      out << (k % 2 == 0 ? "c" : "l");
      for (int n = 0; n < (k % 2 == 0 ? 3 : 1); ++n) {
        out << " ";
        out.number(-60, 60) << ",";
        out.number(-60, 60);
      }
    }
    out << "z\"/>\n";
  }
  return out.text();
}

/// 200 large shapes, each with a gradient of its own.
std::string gradientsText() {
  TextWriter out(2);
  for (int i = 0; i < 200; ++i) {
    const bool linear = i % 2 == 0;
    const std::string id = "g" + std::to_string(i);
    out << (linear ? "<linearGradient x2='.7' y2='1'" : "<radialGradient fx='.3'") << " id='" << id
        << "'>";
    for (const char* offset : {"0", ".4", "1"}) {
      out << "<stop offset='" << offset << "' stop-color='";
      out.color() << "' stop-opacity='";
      out.number(0.5, 1) << "'/>";
    }
    out << (linear ? "</linearGradient>" : "</radialGradient>");
    out << (linear ? "<rect width='300' height='200' x='" : "<ellipse rx='150' ry='110' cx='");
    out.number(0, 700) << (linear ? "' y='" : "' cy='");
    out.number(0, 700) << "' fill='url(#" << id << ")'/>\n";
  }
  return out.text();
}

/// Small elements with many attributes, in groups.
std::string shapesText() {
  TextWriter out(3);
  for (int i = 0; i < 5000; ++i) {
    if (i % 10 == 0) out << "<g transform='translate(3 4)' stroke-width='2'>";
    out << "<rect id='r" << std::to_string(i) << "' x='";
    out.number(0, 900) << "' y='";
    out.number(0, 900) << "' width='20' height='10' rx='2' fill='";
    out.color() << "' stroke='navy' opacity='.9'/>\n";
    if (i % 10 == 9) out << "</g>";
  }
  return out.text();
}

void readXML(const std::string& text) {
  xmlDoc* document =
      xmlReadDoc(reinterpret_cast<const xmlChar*>(text.c_str()), nullptr, nullptr, 1);
  benchmark::DoNotOptimize(document);
  xmlFreeDoc(document);
}

std::unique_ptr<SVGNative::SVGDocument> readSVG(const std::string& text) {
  return SVGNative::SVGDocument::CreateSVGDocument(text,
                                                   std::make_shared<SVGNative::CGSVGRenderer>());
}

void parse(benchmark::State& state, const std::string& text) {
  const double xml = bestSeconds(15, [&] { readXML(text); });
  runAsMultiple(state, "xmlReadDoc", xml, [&] { benchmark::DoNotOptimize(readSVG(text)); });
  const size_t before = mallinfo2().uordblks;
  const auto document = readSVG(text);
  state.counters["bytesPerByte"] =
      static_cast<double>(mallinfo2().uordblks - before) / static_cast<double>(text.size());
}

void drawWithLibrsvg(const std::string& text) {
  GError* error = nullptr;
  RsvgHandle* handle =
      rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(text.data()), text.size(), &error);
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1000, 1000);
  cairo_t* context = cairo_create(surface);
  const RsvgRectangle viewport{0, 0, 1000, 1000};
  if (rsvg_handle_render_document(handle, context, &viewport, &error) == 0) std::abort();
  cairo_destroy(context);
  cairo_surface_destroy(surface);
  g_object_unref(handle);
}

void draw(benchmark::State& state, const std::string& text) {
  const auto data =
      NSData::dataWithBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  const double theirs = bestSeconds(7, [&] { drawWithLibrsvg(text); });
  runAsMultiple(state, "librsvg", theirs, [&] {
    benchmark::DoNotOptimize(
        ZTSVGTool::imageWithNativeSVGData(data.get(), NSMakeSize(1000, 1000), false));
  });
}

BENCHMARK_CAPTURE(parse, paths, pathsText())->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, gradients, gradientsText())->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, shapes, shapesText())->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(draw, paths2000, pathsText())->Iterations(7)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(draw, gradients200, gradientsText())
    ->Iterations(7)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
