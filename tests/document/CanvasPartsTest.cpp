// A part of the canvas composed alone has the pixels that it has in the whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "document/PaintManager.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "support/Documents.h"
#include "support/RandomDraws.h"

namespace {

/// Composes the canvas in squares, from its lower left corner on, and compares each with the whole.
void expectPartsOfTheWhole(PaintManager& document, int64_t side, const std::string& name) {
  const auto whole = document.composedImage();
  ASSERT_NE(whole, nullptr) << name;
  for (int64_t y = 0; y < whole->pixelsHigh(); y += side) {
    for (int64_t x = 0; x < whole->pixelsWide(); x += side) {
      const auto length = static_cast<CGFloat>(side);
      const auto part = document.composedImage(
          NSMakeRect(static_cast<CGFloat>(x), static_cast<CGFloat>(y), length, length));
      ASSERT_NE(part, nullptr) << name;
      ASSERT_EQ(part->pixelsWide(), std::min(side, whole->pixelsWide() - x)) << name;
      ASSERT_EQ(part->pixelsHigh(), std::min(side, whole->pixelsHigh() - y)) << name;
      const int64_t top = whole->pixelsHigh() - y - part->pixelsHigh();
      for (int64_t row = 0; row < part->pixelsHigh(); ++row) {
        ASSERT_EQ(std::memcmp(part->row(row), whole->row(top + row) + x * 4, part->bytesPerRow()),
                  0)
            << name << " in squares of " << side << ", row " << top + row << " from column " << x;
      }
    }
  }
}

}  // namespace

TEST(CanvasParts, AreThoseOfTheWhole) {
  for (const std::string& name : paintedDocuments()) {
    const auto document = madeDocument(name);
    ASSERT_NE(document, nullptr);
    for (const int64_t side : {37, 100}) expectPartsOfTheWhole(*document, side, name);
  }
}

TEST(CanvasParts, OfRandomDrawsToo) {
  constexpr double kSide = 160;
  RandomDraws draws(4, kSide);
  for (int i = 0; i < 300; ++i) {
    PaintManager document;
    document.setSize({kSide, kSide});
    for (int k = 0; k < 2; ++k) document.addDraw(draws.next());
    expectPartsOfTheWhole(document, 20 + draws.below(90),
                          std::to_string(i) + ", " + draws.description());
    if (HasFailure()) return;
  }
}

TEST(CanvasParts, OutsideOfTheCanvasThereIsNothing) {
  const auto document = madeDocument("red");
  const NSSize size = document->size();
  for (const NSRect& part : {NSMakeRect(-9, 0, 9, 9), NSMakeRect(size.width, 0, 5, 5), NSZeroRect,
                             NSMakeRect(0, 0, -5, 5), NSMakeRect(NAN, 0, 5, 5)}) {
    EXPECT_EQ(document->composedImage(part), nullptr) << part.origin.x;
  }
  const auto larger = document->composedImage(NSMakeRect(-1e300, -50, 2e300, 1e9));
  ASSERT_NE(larger, nullptr);
  EXPECT_EQ(larger->size(), size);
}
