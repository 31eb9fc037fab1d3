#include <gtest/gtest.h>

#include <limits>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/thumbnails/QLThumbnailReply.h"

TEST(QLThumbnailReply, BlockPaintsIntoABitmapOfTheContextSize) {
  const auto reply = QLThumbnailReply::replyWithContextSize({7.9, 3}, [] {
    NSGraphicsContext::currentContext()->graphicsPort()->setFillColor({1, 0, 0, 1});
    NSRectFill(NSMakeRect(0, 0, 7, 1));
    return true;
  });
  const auto bitmap = reply->drawnBitmap();
  ASSERT_NE(bitmap, nullptr);
  EXPECT_EQ(bitmap->pixelsWide(), 7);
  EXPECT_EQ(bitmap->pixelsHigh(), 3);
  EXPECT_EQ(bitmap->row(2)[0], 255) << "the bottom row is painted";
  EXPECT_EQ(bitmap->row(1)[3], 0) << "and nothing else";
  EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr) << "the context is not left current";
}

TEST(QLThumbnailReply, NothingToShowGivesNoBitmap) {
  const auto refused = QLThumbnailReply::replyWithContextSize({4, 4}, [] { return false; });
  EXPECT_EQ(refused->drawnBitmap(), nullptr);
  for (const double side : {-1.0, 1e9, std::numeric_limits<double>::quiet_NaN()}) {
    const auto reply = QLThumbnailReply::replyWithContextSize({side, side}, [] { return true; });
    EXPECT_EQ(reply->drawnBitmap(), nullptr) << side;
  }
}
