#include "support/Documents.h"

#include <gtest/gtest.h>

#include "support/Fixtures.h"

std::shared_ptr<NSData> madeDocumentData(const std::string& name) {
  return NSData::dataWithVector(
      readFile(std::string(PAINT_BINARY_DIR) + "/fixtures/documents/" + name + ".paintdoc"));
}

std::shared_ptr<PaintManager> madeDocument(const std::string& name) {
  int64_t error = -1;
  auto document = PaintManager::paintMgrWithPaintData(madeDocumentData(name), nullptr, &error);
  EXPECT_NE(document, nullptr) << name << ": error " << error;
  return document;
}

std::vector<std::string> paintedDocuments() {
  return {"all classes",
          "pictures",
          "filters",
          "curved text",
          "text boxes",
          "stored sprays",
          "spray 10000",
          "records",
          "brushes",
          "fills",
          "lines",
          "clears",
          "nested groups",
          "masked by background",
          "masked by smaller background",
          "background",
          "half red",
          "sheets/shadows",
          "sheets/text",
          "sheets/gradients",
          "sheets/lines",
          "sheets/reflections",
          "sheets/curved_text",
          "preset shapes"};
}

std::shared_ptr<DrawBase> drawTitled(const PaintManager& document, const std::string& title) {
  for (const auto& draw : document.allDraws()) {
    if (draw->layerTitle() == title) return draw;
  }
  ADD_FAILURE() << "no draw is titled " << title;
  return std::make_shared<DrawBase>();
}
