#include <gtest/gtest.h>

#include "extension/ThumbnailProvider.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "support/FailingAllocations.h"

namespace {

std::shared_ptr<QLThumbnailReply> replyFor(const std::string& path, NSSize maximum) {
  std::shared_ptr<QLThumbnailReply> result;
  int calls = 0;
  ThumbnailProvider().provideThumbnailForFileRequest({NSURL::fileURLWithPath(path), maximum},
                                                     [&](auto reply, std::error_code error) {
                                                       EXPECT_FALSE(error);
                                                       result = std::move(reply);
                                                       ++calls;
                                                     });
  EXPECT_EQ(calls, 1);
  return result;
}

std::string made(const std::string& name) {
  return std::string(PAINT_BINARY_DIR) + "/fixtures/documents/" + name + ".paintdoc";
}

}  // namespace

TEST(ThumbnailProvider, ContextSize) {
  struct Case {
    NSSize canvas, maximum, expected;
  };
  const Case cases[] = {
      {{400, 300}, {512, 512}, {400, 300}},    // never larger
      {{2000, 1000}, {500, 500}, {500, 250}},  // wide
      {{2000, 1001}, {500, 500}, {500, 250}},  // rounded down
      {{1000, 2000}, {500, 500}, {500, 500}},  // high: a square
      {{10, 2000}, {500, 500}, {500, 500}},
      {{1000, 1000}, {500, 500}, {500, 500}},  // as high as wide
      {{512, 512}, {512, 512}, {512, 512}},    // exactly as large
      {{512, 100}, {512, 512}, {512, 100}},
      {{100, 512}, {512, 512}, {512, 512}},
      {{3000, 1}, {128, 128}, {128, 0}},  // too thin to show
      {{0, 0}, {128, 128}, {0, 0}},
      {{0, 100}, {128, 128}, {0, 100}},
      {{0, 2000}, {500, 500}, {0, 500}},  // nothing to stretch
      {{2000, 0}, {500, 500}, {500, 0}},
      {{400, 300}, {200, 100}, {100, 100}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ThumbnailProvider::contextSize(c.canvas, c.maximum), c.expected)
        << c.canvas.width << " x " << c.canvas.height;
  }
}

TEST(ThumbnailProvider, DocumentsAreDrawnOverTheWholeContext) {
  const auto reply = replyFor(made("red"), {64, 64});
  EXPECT_EQ(reply->contextSize(), NSMakeSize(64, 32));
  const auto bitmap = reply->drawnBitmap();
  ASSERT_NE(bitmap, nullptr);
  for (int64_t y = 0; y < 32; ++y) {
    for (int64_t x = 0; x < 64; ++x) {
      const uint8_t* p = bitmap->row(y) + x * 4;
      ASSERT_TRUE(p[0] == 255 && p[1] == 0 && p[2] == 0 && p[3] == 255) << x << ", " << y;
    }
  }
  const auto stretched = replyFor(made("tall"), {50, 50})->drawnBitmap();
  ASSERT_NE(stretched, nullptr);
  EXPECT_EQ(stretched->pixelsWide(), 50);
  EXPECT_EQ(stretched->row(25)[49 * 4 + 2], 255);
}

TEST(ThumbnailProvider, CanvasesWithoutAreaHaveNoThumbnail) {
  for (const char* name : {"high empty canvas", "wide empty canvas", "high negative canvas"}) {
    EXPECT_EQ(replyFor(made(name), {64, 64})->drawnBitmap(), nullptr) << name;
  }
}

TEST(ThumbnailProvider, WhatIsNoDocumentGetsAnEmptyReply) {
  for (const char* name : {"version 23", "too large canvas", "inner is no archive", "missing",
                           "no canvas size", "negative canvas"}) {
    const auto reply = replyFor(made(name), {64, 64});
    ASSERT_NE(reply, nullptr) << name;
    EXPECT_EQ(reply->contextSize(), NSZeroSize) << name;
    EXPECT_EQ(reply->drawnBitmap(), nullptr) << name;
  }
}

TEST(ThumbnailProvider, CallsTheHandlerOnceWithoutMemoryToo) {
  const NSSize maximum{64, 64};
  const QLFileThumbnailRequest request(NSURL::fileURLWithPath(made("all classes")), maximum);
  const NSSize whole = replyFor(made("all classes"), maximum)->contextSize();
  int replies[3] = {};  // of errors, without and with a picture
  for (int64_t allowed = 0; replies[2] == 0; allowed = allowed * 5 / 4 + 1) {
    int calls = 0;
    std::shared_ptr<QLThumbnailReply> reply;
    std::error_code error;
    const ThumbnailProvider::CompletionHandler handler = [&](auto given, auto code) {
      ++calls;
      reply = std::move(given);
      error = code;
    };
    {
      const FailingAllocations memory(allowed);
      ThumbnailProvider().provideThumbnailForFileRequest(request, handler);
    }
    ASSERT_EQ(calls, 1) << allowed;
    ASSERT_EQ(reply == nullptr, static_cast<bool>(error)) << allowed;
    const NSSize size = reply == nullptr ? NSZeroSize : reply->contextSize();
    ASSERT_TRUE(size == NSZeroSize || size == whole) << allowed;
    ++replies[error ? 0 : size == NSZeroSize ? 1 : 2];
  }
  EXPECT_GT(replies[0], 0);
  EXPECT_GT(replies[1], 5);
}
