// Documents whose values no writer means: they decode, and drawing them ends.
#include <gtest/gtest.h>

#include <filesystem>

#include "document/PaintManager.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/text/fonts/FontRegistry.h"
#include "support/Documents.h"
#include "support/Fixtures.h"

TEST(HostileDocuments, AreDrawnOrLeftOut) {
  FontRegistry::useFontFiles({sourcePath("tests/fixtures/fonts/Box.ttf")});
  const std::string folder = std::string(PAINT_BINARY_DIR) + "/fixtures/documents/hostile";
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = "hostile/" + entry.path().stem().string();
    SCOPED_TRACE(name);
    const auto document = madeDocument(name);
    ASSERT_NE(document, nullptr);
    const auto image = document->fullImage();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixelsWide(), 64);
    // Premultiplied pixels stay premultiplied, whatever was drawn.
    for (int64_t y = 0; y < 64; ++y) {
      const uint8_t* row = image->row(y);
      for (int64_t x = 0; x < 64; ++x) {
        const uint8_t alpha = row[4 * x + 3];
        ASSERT_TRUE(row[4 * x] <= alpha && row[4 * x + 1] <= alpha && row[4 * x + 2] <= alpha)
            << x << ", " << y;
      }
    }
    ++count;
    // What was read can be written and read again. Once is enough for the large ones.
    if (entry.file_size() > size_t{1} << 24) continue;
    ASSERT_NE(
        PaintManager::paintMgrWithPaintData(document->paintDataWithResolution(0), nullptr, nullptr),
        nullptr);
  }
  EXPECT_GT(count, 120);
}
