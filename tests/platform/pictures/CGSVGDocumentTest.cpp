#include <gtest/gtest.h>

#include "platform/foundation/values/NSData.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/pictures/CGSVGDocument.h"
#include "platform/pictures/NSSVGImageRep.h"
#include "support/Bitmaps.h"

namespace {

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};
constexpr Pixel kNothing{};

// Four by two: the upper row red, the lower one blue.
std::shared_ptr<NSData> flag() {
  constexpr std::string_view kText =
      "<svg xmlns='http://www.w3.org/2000/svg' width='4' height='2'>"
      "<rect width='4' height='1' fill='red'/><rect y='1' width='4' height='1' fill='blue'/></svg>";
  return NSData::dataWithBytes({reinterpret_cast<const uint8_t*>(kText.data()), kText.size()});
}

/// Columns of a bitmap as letters, rows from the top: r, b, and "." for nothing.
std::string lettersOf(const NSBitmapImageRep& bitmap) {
  std::string letters;
  for (int64_t y = 0; y < bitmap.pixelsHigh(); ++y) {
    for (int64_t x = 0; x < bitmap.pixelsWide(); ++x) {
      const Pixel pixel = pixelAt(bitmap, x, y);
      letters += pixel == kRed ? 'r' : pixel == kBlue ? 'b' : pixel == kNothing ? '.' : '?';
    }
    letters += '\n';
  }
  return letters;
}

}  // namespace

TEST(CGSVGDocument, DrawsThroughTheContextsTransformAndClip) {
  CGSVGDocumentRef document = CGSVGDocumentCreateFromData(flag());
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(CGSVGDocumentGetCanvasSize(document), NSMakeSize(4, 2));
  const struct {
    const char* name;
    CGAffineTransform transform;
    NSRect clip;
    const char* expected;
  } kCases[] = {
      {"at the origin", {1, 0, 0, 1, 0, 0}, {{0, 0}, {6, 4}}, "......\n......\nrrrr..\nbbbb..\n"},
      {"moved", {1, 0, 0, 1, 3, 1}, {{0, 0}, {6, 4}}, "......\n...rrr\n...bbb\n......\n"},
      {"larger", {1, 0, 0, 2, 1, 0}, {{0, 0}, {6, 4}}, ".rrrr.\n.rrrr.\n.bbbb.\n.bbbb.\n"},
      {"upside down", {1, 0, 0, -1, 0, 2}, {{0, 0}, {6, 4}}, "......\n......\nbbbb..\nrrrr..\n"},
      {"turned to the left",
       {0, 1, -1, 0, 2, 0},
       {{0, 0}, {6, 4}},
       "rb....\nrb....\nrb....\nrb....\n"},
      {"clipped", {1, 0, 0, 1, 0, 0}, {{1, 1}, {2, 9}}, "......\n......\n.rr...\n......\n"},
      {"outside", {1, 0, 0, 1, 50, 0}, {{0, 0}, {6, 4}}, "......\n......\n......\n......\n"},
      {"flat", {1, 0, 0, 0, 0, 0}, {{0, 0}, {6, 4}}, "......\n......\n......\n......\n"}};
  for (const auto& [name, transform, clip, expected] : kCases) {
    const auto bitmap = NSBitmapImageRep::create(6, 4);
    CGContext context(bitmap);
    context.clip(clip);
    context.concatenate(transform);
    CGContextDrawSVGDocument(context, document);
    EXPECT_EQ(lettersOf(*bitmap), expected) << name;
  }
  CGSVGDocumentRelease(document);
  EXPECT_EQ(document, nullptr);
}

TEST(CGSVGDocument, WhatIsNone) {
  PictureFailure failure = PictureFailure::none;
  EXPECT_EQ(CGSVGDocumentCreateFromData(nullptr, SVGEngine::system, &failure), nullptr);
  EXPECT_EQ(failure, PictureFailure::unreadable);
  EXPECT_EQ(CGSVGDocumentCreateFromData(std::make_shared<NSData>()), nullptr);
  EXPECT_EQ(CGSVGDocumentGetCanvasSize(nullptr), NSZeroSize);
  CGContext context(NSBitmapImageRep::create(1, 1));
  CGContextDrawSVGDocument(context, nullptr);
}

TEST(NSSVGImageRep, IsDrawnIntoRectangles) {
  const auto image = _NSSVGImageRep::initWithData(flag());
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->size(), NSMakeSize(4, 2));
  const auto bitmap = NSBitmapImageRep::create(4, 4);
  {
    const ZTFocusScope focus(bitmap);
    image->drawInRect(NSMakeRect(1, 0, 2, 4));
  }
  EXPECT_EQ(lettersOf(*bitmap), ".rr.\n.rr.\n.bb.\n.bb.\n");
  EXPECT_EQ(_NSSVGImageRep::initWithData(nullptr), nullptr);
}
