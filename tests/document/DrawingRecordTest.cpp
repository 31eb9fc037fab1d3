// What composing paints, recorded and painted from the record.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "document/PaintManager.h"
#include "draw/image/BitmapSources.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/record/DrawingRecord.h"
#include "platform/graphics/record/RecordPlayer.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/RandomDraws.h"

namespace {

std::shared_ptr<NSBitmapImageRep> played(const DrawingRecord& record, double scale) {
  const NSSize canvas = record.canvas();
  const auto side = [scale](double units) {
    return static_cast<int64_t>(std::ceil(units * scale - 1e-6));
  };
  auto bitmap = NSBitmapImageRep::create(side(canvas.width), side(canvas.height));
  CanvasView view{canvas, scale};
  view.fillsLastPixels = scale != 1;
  const ZTFocusScope focus(bitmap, view);
  playRecord(record);
  return bitmap;
}

void expectSamePixels(PaintManager& document, const std::string& name) {
  const auto record = document.recordedDrawing();
  for (const double scale : {1.0, 0.5}) {
    const auto direct = document.composedImage(scale);
    const auto indirect = played(*record, scale);
    ASSERT_EQ(direct->size(), indirect->size()) << name;
    ASSERT_EQ(maxDifference(*direct, *indirect), 0) << name << " at " << scale;
  }
}

/// All operations below some nodes, with those of offscreen pictures.
void collect(const RecordedNodes& nodes, std::vector<const GraphicsOperation*>& found,
             std::vector<std::string>& draws) {
  for (const RecordedNode& node : nodes) {
    if (const auto* draw = std::get_if<RecordedDraw>(&node.content)) {
      draws.push_back(draw->className + " " + draw->title);
      collect(draw->nodes, found, draws);
    } else if (const auto* layer = std::get_if<RecordedLayer>(&node.content)) {
      collect(layer->nodes, found, draws);
    } else {
      const auto& operation = std::get<RecordedOperation>(node.content).operation;
      found.push_back(&operation);
      const auto* picture = std::get_if<PictureOperation>(&operation);
      const auto* offscreen = picture == nullptr
                                  ? nullptr
                                  : dynamic_cast<const OffscreenPicture*>(picture->picture.get());
      if (offscreen != nullptr) collect(offscreen->record().nodes(), found, draws);
    }
  }
}

}  // namespace

TEST(DrawingRecord, PlaysToTheSamePixels) {
  for (const std::string& name : paintedDocuments()) {
    const auto document = madeDocument(name);
    ASSERT_NE(document, nullptr) << name;
    expectSamePixels(*document, name);
  }
  for (unsigned seed = 1; seed <= 200; ++seed) {
    expectSamePixels(*randomDocument(seed, 0.04), "random " + std::to_string(seed));
    if (HasFailure()) return;
  }
}

TEST(DrawingRecord, NamesWhatIsPainted) {
  struct Case {
    const char* document;
    std::vector<std::string> draws;  ///< some of them: class and title
    std::u16string text;             ///< of the first glyphs; may be empty
  };
  const Case cases[] = {
      {"nested groups", {"DrawGroup ", "DrawImage2 one deep"}, u""},
      {"text boxes", {"DrawText plain", "DrawText turned"}, u"aaa"},
      {"curved text", {"DrawBezierText centred"}, u"aaa"},
  };
  for (const Case& c : cases) {
    const auto record = madeDocument(c.document)->recordedDrawing();
    std::vector<const GraphicsOperation*> operations;
    std::vector<std::string> draws;
    collect(record->nodes(), operations, draws);
    for (const std::string& draw : c.draws) EXPECT_THAT(draws, testing::Contains(draw));
    std::u16string text;
    for (const GraphicsOperation* operation : operations) {
      if (const auto* glyphs = std::get_if<GlyphOperation>(operation))
        text += glyphs->glyphs->text();
    }
    EXPECT_TRUE(text.starts_with(c.text)) << c.document;
  }
}

TEST(DrawingRecord, HoldsWhatPicturesAreMadeFrom) {
  std::vector<const GraphicsOperation*> operations;
  std::vector<std::string> draws;
  int encoded = 0, filtered = 0, pages = 0, vectors = 0, replaced = 0;
  std::vector<std::shared_ptr<const DrawingRecord>> records;
  for (const char* name : {"pictures", "filters", "fills", "left out pictures"}) {
    records.push_back(madeDocument(name)->recordedDrawing());
    collect(records.back()->nodes(), operations, draws);
  }
  for (const GraphicsOperation* operation : operations) {
    replaced += std::holds_alternative<PixelOperation>(*operation) ? 1 : 0;
    const auto* picture = std::get_if<PictureOperation>(operation);
    if (picture == nullptr) continue;
    const BitmapSource* const source = picture->picture.get();
    encoded += dynamic_cast<const EncodedPicture*>(source) != nullptr ? 1 : 0;
    filtered += dynamic_cast<const FilteredPicture*>(source) != nullptr ? 1 : 0;
    pages += dynamic_cast<const PDFPicture*>(source) != nullptr ? 1 : 0;
    vectors += dynamic_cast<const SVGPicture*>(source) != nullptr ? 1 : 0;
  }
  EXPECT_GT(encoded, 0);
  EXPECT_GT(filtered, 0);
  EXPECT_GT(pages, 0);
  EXPECT_GT(vectors, 0);
  EXPECT_GT(replaced, 0);
}
