#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "support/Bitmaps.h"
#include "svg/ZTSVGTool.h"
#include "svg/draw/Base64.h"

namespace {

std::shared_ptr<NSData> dataOf(std::string_view text) {
  return NSData::dataWithBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

std::shared_ptr<NSBitmapImageRep> image(std::string_view text, const NSSize& size,
                                        bool keepAspectRatio) {
  return ZTSVGTool::imageWithNativeSVGData(dataOf(text).get(), size, keepAspectRatio);
}

// A red picture of 200 by 100 with a blue upper left quarter.
constexpr std::string_view kFlag =
    "<svg width='200' height='100'><rect width='200' height='100' fill='red'/>"
    "<rect width='100' height='50' fill='blue'/></svg>";
// The same in the language's own terms.
constexpr std::string_view kFlagOfXML =
    "<svg xmlns='http://www.w3.org/2000/svg' width='200' height='100'>"
    "<rect width='200' height='100' fill='red'/><rect width='100' height='50' fill='blue'/></svg>";
constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};
constexpr Pixel kNothing{};

TEST(ZTSVGToolTest, DetectionLooksForTheClosingTagNearTheEnd) {
  const auto detected = [](const std::string& text) {
    return ZTSVGTool::isSVGFormatData(dataOf(text).get());
  };
  EXPECT_FALSE(ZTSVGTool::isSVGFormatData(nullptr));
  EXPECT_FALSE(detected(""));
  EXPECT_FALSE(detected("<svg>"));
  EXPECT_FALSE(detected("<svg/>"));
  EXPECT_FALSE(detected("</svg"));
  EXPECT_TRUE(detected("</svg>"));
  EXPECT_TRUE(detected("anything</svg>\n"));
  EXPECT_TRUE(detected("</svg>" + std::string(94, ' ')));
  EXPECT_FALSE(detected("</svg>" + std::string(95, ' ')));
  EXPECT_TRUE(detected(std::string(1000, '\xff') + "</svg>" + std::string(50, '\0')));
  EXPECT_FALSE(detected("</SVG>"));
}

TEST(ZTSVGToolTest, NaturalSize) {
  const auto size = [](std::string_view text) {
    return ZTSVGTool::originalSizeOfNativeSVG(dataOf(text).get());
  };
  EXPECT_EQ(size(kFlag), NSMakeSize(200, 100));
  EXPECT_EQ(size("<svg width='20.9' height='0'></svg>"), NSMakeSize(20, 0));
  EXPECT_EQ(size("<svg viewBox='0 0 3 4'></svg>"), NSMakeSize(3, 4));
  EXPECT_EQ(size("<svg width='5' height='5'>"), NSZeroSize);
  EXPECT_EQ(size("<svg width='5' height='5' fill='#'></svg>"), NSZeroSize);
  EXPECT_EQ(size("<svg width='5' height='5'>\xff</svg>"), NSZeroSize);
  EXPECT_EQ(size("<svg width='5' height='5'>\xed\xa0\x80</svg>"), NSZeroSize);
  EXPECT_EQ(size("<svg width='5' height='5'>\xc3\xa4</svg>"), NSMakeSize(5, 5));
  EXPECT_EQ(size("no xml</svg>"), NSZeroSize);
  EXPECT_EQ(ZTSVGTool::originalSizeOfNativeSVG(nullptr), NSZeroSize);
}

TEST(ZTSVGToolTest, OwnSize) {
  for (const NSSize& size :
       {NSZeroSize, NSMakeSize(-5, 0.5), NSMakeSize(std::numeric_limits<double>::quiet_NaN(), 0)}) {
    const auto bitmap = image(kFlag, size, true);
    ASSERT_NE(bitmap, nullptr);
    ASSERT_EQ(bitmap->size(), NSMakeSize(200, 100));
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), kBlue);
    EXPECT_EQ(pixelAt(*bitmap, 99, 49), kBlue);
    EXPECT_EQ(pixelAt(*bitmap, 100, 49), kRed);
    EXPECT_EQ(pixelAt(*bitmap, 99, 50), kRed);
    EXPECT_EQ(pixelAt(*bitmap, 199, 99), kRed);
  }
}

TEST(ZTSVGToolTest, Stretched) {
  const auto bitmap = image(kFlag, NSMakeSize(40, 80), false);
  ASSERT_NE(bitmap, nullptr);
  ASSERT_EQ(bitmap->size(), NSMakeSize(40, 80));
  EXPECT_EQ(pixelAt(*bitmap, 19, 39), kBlue);
  EXPECT_EQ(pixelAt(*bitmap, 20, 39), kRed);
  EXPECT_EQ(pixelAt(*bitmap, 0, 40), kRed);
  EXPECT_EQ(pixelAt(*bitmap, 39, 79), kRed);
  // One dimension given.
  EXPECT_EQ(image(kFlag, NSMakeSize(40, 0), false)->size(), NSMakeSize(40, 100));
}

TEST(ZTSVGToolTest, KeepingTheAspectRatioCentres) {
  const auto tall = image(kFlag, NSMakeSize(100, 100), true);
  ASSERT_EQ(tall->size(), NSMakeSize(100, 100));
  EXPECT_EQ(pixelAt(*tall, 0, 24), kNothing);
  EXPECT_EQ(pixelAt(*tall, 0, 25), kBlue);
  EXPECT_EQ(pixelAt(*tall, 49, 49), kBlue);
  EXPECT_EQ(pixelAt(*tall, 50, 49), kRed);
  EXPECT_EQ(pixelAt(*tall, 99, 74), kRed);
  EXPECT_EQ(pixelAt(*tall, 99, 75), kNothing);
  const auto wide = image(kFlag, NSMakeSize(300, 100), true);
  EXPECT_EQ(pixelAt(*wide, 49, 0), kNothing);
  EXPECT_EQ(pixelAt(*wide, 50, 0), kBlue);
  EXPECT_EQ(pixelAt(*wide, 249, 99), kRed);
  EXPECT_EQ(pixelAt(*wide, 250, 99), kNothing);
}

// What lies outside the picture's own area is not drawn into the room around it.
TEST(ZTSVGToolTest, TheRoomAroundStaysTransparent) {
  const auto bitmap =
      image("<svg width='20' height='10'><rect x='-50' y='-50' width='200' height='200'/></svg>",
            NSMakeSize(20, 20), true);
  EXPECT_EQ(pixelAt(*bitmap, 10, 4), kNothing);
  EXPECT_EQ(pixelAt(*bitmap, 10, 5), (Pixel{0, 0, 0, 255}));
  EXPECT_EQ(pixelAt(*bitmap, 10, 15), kNothing);
}

TEST(ZTSVGToolTest, NoPicture) {
  EXPECT_EQ(ZTSVGTool::imageWithNativeSVGData(nullptr, NSZeroSize, false), nullptr);
  EXPECT_EQ(image("", NSMakeSize(5, 5), false), nullptr);
  EXPECT_EQ(image("<svg width='5' height='5'/>", NSMakeSize(5, 5), false), nullptr);
  EXPECT_EQ(image("<svg width='0' height='5'></svg>", NSMakeSize(5, 5), false), nullptr);
  EXPECT_EQ(image("<svg width='5' height='-5'></svg>", NSMakeSize(5, 5), false), nullptr);
  EXPECT_EQ(image("<svg width='5' height='5' fill='#'></svg>", NSMakeSize(5, 5), false), nullptr);
  EXPECT_EQ(image("<svg width='5' height='5'>\xff</svg>", NSMakeSize(5, 5), false), nullptr);
  EXPECT_EQ(image("<html width='5' height='5'></html><!--</svg>-->", NSMakeSize(5, 5), false),
            nullptr);
  // Bitmaps that are too large.
  EXPECT_EQ(image("<svg width='1e9' height='1e9'></svg>", NSZeroSize, false), nullptr);
  EXPECT_EQ(image(kFlag, NSMakeSize(1e300, 5), false), nullptr);
  EXPECT_EQ(image(kFlag, NSMakeSize(std::numeric_limits<double>::infinity(), 5), true), nullptr);
}

TEST(ZTSVGToolTest, DamagedPicturesKeepWhatTheyShow) {
  const auto bitmap =
      image("<svg width='4' height='4'><rect width='2' height='4' fill='red'/><rect <x></svg>",
            NSZeroSize, false);
  ASSERT_NE(bitmap, nullptr);
  EXPECT_EQ(pixelAt(*bitmap, 0, 0), kRed);
  EXPECT_EQ(pixelAt(*bitmap, 3, 3), kNothing);
}

// An upright picture: its upper half is red, its lower half half-transparent blue.
TEST(ZTSVGToolTest, EmbeddedPictures) {
  const auto picture = makeBitmap(4, 4, [](int64_t, int64_t y) {
    return y < 2 ? Pixel{255, 0, 0, 255} : Pixel{0, 0, 128, 128};
  });
  const std::vector<uint8_t> png = encodePNG(*picture);
  const std::string base64 = base64_encode(png.data(), static_cast<uint32_t>(png.size()));
  const auto drawn = [&](const std::string& prefix) {
    return image("<svg width='8' height='8'><image x='2' y='2' width='4' height='4' href='" +
                     prefix + base64 + "'/></svg>",
                 NSZeroSize, false);
  };
  const auto bitmap = drawn("data:image/png;base64,");
  ASSERT_NE(bitmap, nullptr);
  EXPECT_EQ(pixelAt(*bitmap, 1, 2), kNothing);
  EXPECT_EQ(pixelAt(*bitmap, 2, 2), kRed);
  EXPECT_EQ(pixelAt(*bitmap, 5, 3), kRed);
  EXPECT_EQ(pixelAt(*bitmap, 2, 4), (Pixel{0, 0, 128, 128}));
  EXPECT_EQ(pixelAt(*bitmap, 5, 5), (Pixel{0, 0, 128, 128}));
  EXPECT_EQ(pixelAt(*bitmap, 6, 6), kNothing);
  // A PNG file that says it is a JPEG one is no picture.
  EXPECT_EQ(pixelAt(*drawn("data:image/jpeg;base64,"), 3, 3), kNothing);
}

// Both renderers, in a process of their own.
TEST(ZTSVGToolTest, SystemRenderer) {
  const auto data = dataOf(kFlagOfXML);
  ASSERT_TRUE(ZTSVGTool::canUseSystemSVGFramework());
  EXPECT_TRUE(ZTSVGTool::supportsVectorSVGImage());
  EXPECT_EQ(ZTSVGTool::originalSizeOfSVG(data.get()), NSMakeSize(200, 100));
  EXPECT_EQ(ZTSVGTool::originalSizeOfSVG(nullptr), NSZeroSize);
  const auto own = ZTSVGTool::imageWithSVGData(data.get(), NSZeroSize, false);
  ASSERT_NE(own, nullptr);
  EXPECT_EQ(maxDifference(*own, *image(kFlag, NSZeroSize, false)), 0);
  for (const bool keeps : {false, true}) {
    const auto stretched = ZTSVGTool::imageWithSVGData(data.get(), NSMakeSize(100, 100), keeps);
    ASSERT_NE(stretched, nullptr);
    EXPECT_EQ(maxDifference(*stretched, *image(kFlag, NSMakeSize(100, 100), keeps)), 0) << keeps;
  }
  EXPECT_NE(ZTSVGTool::vectorImageWithSVGData(data), nullptr);
  EXPECT_EQ(ZTSVGTool::vectorImageWithSVGData(nullptr), nullptr);
  // A side below 1.
  const auto thin = dataOf("<svg xmlns='http://www.w3.org/2000/svg' width='.5' height='9'></svg>");
  EXPECT_EQ(ZTSVGTool::originalSizeOfSVG(thin.get()), NSMakeSize(0.5, 9));
  for (const NSSize& size : {NSZeroSize, NSMakeSize(5, 5)}) {
    EXPECT_EQ(ZTSVGTool::imageWithSVGData(thin.get(), size, false), nullptr);
  }
}

TEST(ZTSVGToolTest, TheBuiltInEngineIsChosenForADocument) {
  PictureSession session;
  session.setEngine(SVGEngine::builtIn);
  const PictureSessionScope scope(session);
  EXPECT_FALSE(ZTSVGTool::canUseSystemSVGFramework());
  EXPECT_EQ(ZTSVGTool::imageWithSVGData(dataOf(kFlagOfXML).get(), NSZeroSize, false), nullptr);
  const auto drawn = ZTSVGTool::imageWithSVGData(dataOf(kFlag).get(), NSMakeSize(50, 50), false,
                                                 SVGEngine::builtIn);
  ASSERT_NE(drawn, nullptr);
  EXPECT_EQ(maxDifference(*drawn, *image(kFlag, NSMakeSize(50, 50), false)), 0);
  // There the arc costs its picture only.
  const auto arc = dataOf("<svg width='9' height='9'><path d='M0 0A1 2 0 0 0 5 5'/></svg>");
  PictureFailure failure = PictureFailure::none;
  EXPECT_EQ(ZTSVGTool::originalSizeOfSVG(arc.get(), SVGEngine::builtIn, &failure), NSZeroSize);
  EXPECT_EQ(failure, PictureFailure::crashed);
}

TEST(ZTSVGToolDeathTest, UnsupportedArcsEndTheProcess) {
  EXPECT_EXIT(
      image("<svg width='9' height='9'><path d='M0 0A1 2 0 0 0 5 5'/></svg>", NSZeroSize, false),
      testing::KilledBySignal(SIGABRT), "radiusX == radiusY");
  EXPECT_EXIT(
      image("<svg width='9' height='9'><path d='M0 0A1 1 9 0 0 5 5'/></svg>", NSZeroSize, false),
      testing::KilledBySignal(SIGABRT), "angle == 0");
}

}  // namespace
