#include <gtest/gtest.h>

#include "draw/image/DrawPDF.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/pictures/PDFDocument.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Fixtures.h"

namespace {

constexpr Pixel kRed{255, 0, 0, 255};

std::shared_ptr<DrawPDF> archived(const std::string& name) {
  static const auto document = madeDocument("pictures");
  return std::dynamic_pointer_cast<DrawPDF>(drawTitled(*document, "pdf, " + name));
}

std::shared_ptr<DrawImage2> drawWithFile(const std::string& name) {
  return DrawImage2::drawWithData(
      NSData::dataWithVector(readFile(PAINT_BINARY_DIR "/fixtures/pdfs/" + name + ".pdf")));
}

}  // namespace

TEST(DrawPDF, ArchivedPagesAreDrawnAtTheSizeOfTheirDraw) {
  const auto draw = archived("rotated");
  EXPECT_EQ(draw->originalPDFSize(), (NSSize{20, 40}));
  EXPECT_EQ(draw->image()->size(), (NSSize{4, 2}));
  EXPECT_EQ(pixelAt(*draw->image(), 3, 0), kRed);
  EXPECT_EQ(pixelAt(*draw->image(), 3, 1), Pixel{});
  draw->setBezierPathWithBounds(NSMakeRect(2, 2, 99.5, 9.4));
  EXPECT_EQ(draw->image()->size(), (NSSize{100, 9}));
  EXPECT_EQ(pixelAt(*draw->image(), 99, 3), kRed);
  draw->setBezierPathWithBounds(NSMakeRect(2, 2, 1e6, 1e6));
  EXPECT_EQ(draw->image(), nullptr);
}

TEST(DrawPDF, FilesBecomeDrawsOfTheirPagesSize) {
  const auto draw = std::dynamic_pointer_cast<DrawPDF>(drawWithFile("cropped"));
  ASSERT_NE(draw, nullptr);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(0, 0, 30, 20));
  EXPECT_EQ(draw->lineWidth(), 0);
  EXPECT_EQ(draw->opacity(), 100U);
  EXPECT_EQ(pixelAt(*draw->image(), 9, 19), kRed);
  EXPECT_EQ(drawWithFile("encrypted"), nullptr);
  EXPECT_EQ(drawWithFile("no pages"), nullptr);
}

TEST(DrawPDF, FlipsAreNotedAndLastUntilTheDrawIsReadAgain) {
  const auto draw = archived("plain");
  EXPECT_FALSE(draw->flipHorizontal());
  EXPECT_TRUE(draw->flipVertical());
  EXPECT_EQ(pixelAt(*draw->image(), 0, 0), kRed);
  draw->flip(true);
  draw->flip(false);
  EXPECT_TRUE(draw->flipHorizontal());
  EXPECT_FALSE(draw->flipVertical());
  EXPECT_EQ(pixelAt(*draw->image(), 0, 0), Pixel{});
  EXPECT_EQ(pixelAt(*draw->image(), 3, 0), kRed);

  const auto read = std::dynamic_pointer_cast<DrawPDF>(
      DrawBase::drawFromEncodedData(DrawBase::encodedData(draw)));
  EXPECT_TRUE(read->flipHorizontal());
  EXPECT_FALSE(read->flipVertical());
  EXPECT_EQ(read->originalPDFSize(), (NSSize{40, 20}));
  EXPECT_EQ(pixelAt(*read->image(), 0, 0), kRed);
}

TEST(DrawPDF, DamagedFilesDrawNothingAndStayInTheDocument) {
  for (const char* name : {"encrypted", "no pages", "mark and noise"}) {
    const auto draw = archived(name);
    ASSERT_NE(draw, nullptr) << name;
    EXPECT_EQ(draw->pdfPage(), nullptr) << name;
    EXPECT_EQ(draw->originalPDFSize(), NSZeroSize) << name;
    EXPECT_EQ(draw->image(), nullptr) << name;
    EXPECT_NE(DrawBase::encodedData(draw), nullptr) << name;
  }
}
