// Pictures against those of an independent renderer, librsvg's rsvg-convert.
#include <gtest/gtest.h>
#include <png.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/foundation/values/NSData.h"
#include "platform/graphics/codecs/PixelConversion.h"
#include "svg/SVGPictureCases.h"
#include "svg/ZTSVGTool.h"
#include "svg/parse/SVGNamedColors.h"

namespace {

// Premultiplied RGBA, rows from the top.
struct Picture {
  int64_t width = 0;
  int64_t height = 0;
  std::vector<uint8_t> pixels;
  const uint8_t* at(int64_t x, int64_t y) const {
    return pixels.data() + static_cast<size_t>((y * width + x) * 4);
  }
};

std::string wholeText(std::string_view content) {
  const std::string head =
      "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink'";
  if (content.starts_with("<svg w")) return head + std::string(content.substr(4));
  return head + " width='120' height='120' viewBox='0 0 120 120'>" + std::string(content) +
         "</svg>";
}

Picture ours(const std::string& text) {
  const auto data =
      NSData::dataWithBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  const auto bitmap = ZTSVGTool::imageWithNativeSVGData(data.get(), NSZeroSize, false);
  if (bitmap == nullptr) return {};
  const uint8_t* first = bitmap->bitmapData();
  const size_t bytes = bitmap->bytesPerRow() * static_cast<size_t>(bitmap->pixelsHigh());
  return {bitmap->pixelsWide(), bitmap->pixelsHigh(), {first, first + bytes}};
}

bool hasReference() {
  static const bool there = std::system("rsvg-convert --version >/dev/null 2>&1") == 0;
  return there;
}

#define NEEDS_REFERENCE()                                                                 \
  if (!hasReference()) {                                                                  \
    GTEST_SKIP() << "rsvg-convert (librsvg2-bin) is not installed: PICTURES NOT CHECKED"; \
  }

// A folder that goes with the process.
class Scratch {
 public:
  Scratch() {
    char pattern[] = "/tmp/svg-pictures-XXXXXX";
    path_ = mkdtemp(pattern);
  }
  ~Scratch() {
    std::remove((path_ + "/in.svg").c_str());
    std::remove((path_ + "/out.png").c_str());
    rmdir(path_.c_str());
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

Picture reference(const std::string& text) {
  static const Scratch scratch;
  const std::string in = scratch.path() + "/in.svg";
  const std::string out = scratch.path() + "/out.png";
  std::ofstream(in) << text;
  Picture picture;
  if (std::system(("rsvg-convert -o " + out + " " + in).c_str()) != 0) return picture;
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, out.c_str()) == 0) return picture;
  image.format = PNG_FORMAT_RGBA;
  picture.width = image.width;
  picture.height = image.height;
  picture.pixels.resize(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr);
  premultiplyRow(picture.pixels.data(), picture.pixels.data(), picture.pixels.size() / 4);
  return picture;
}

int difference(const uint8_t* a, const uint8_t* b) {
  int greatest = 0;
  for (int i = 0; i < 4; ++i) greatest = std::max(greatest, std::abs(a[i] - b[i]));
  return greatest;
}

// Edges stand out from their neighbours; gradients change by little from pixel to pixel.
bool isEdge(const Picture& picture, int64_t x, int64_t y) {
  constexpr int kStep = 16;
  for (int64_t ny = std::max<int64_t>(0, y - 1); ny <= std::min(picture.height - 1, y + 1); ++ny) {
    for (int64_t nx = std::max<int64_t>(0, x - 1); nx <= std::min(picture.width - 1, x + 1); ++nx) {
      if (difference(picture.at(x, y), picture.at(nx, ny)) > kStep) return true;
    }
  }
  return false;
}

struct Comparison {
  double inside = 0;   // mean difference of the painted pixels that are no edges in either
  double overall = 0;  // mean difference of all painted pixels
  int64_t painted = 0;
  int64_t counted = 0;
};

Comparison compare(const Picture& a, const Picture& b) {
  Comparison result;
  for (int64_t y = 0; y < a.height; ++y) {
    for (int64_t x = 0; x < a.width; ++x) {
      if (a.at(x, y)[3] == 0 && b.at(x, y)[3] == 0) continue;
      const int d = difference(a.at(x, y), b.at(x, y));
      ++result.painted;
      result.overall += d;
      if (isEdge(a, x, y) || isEdge(b, x, y)) continue;
      ++result.counted;
      result.inside += d;
    }
  }
  result.overall /= static_cast<double>(std::max<int64_t>(1, result.painted));
  result.inside /= static_cast<double>(std::max<int64_t>(1, result.counted));
  return result;
}

// Antialiased edges may differ, but not be somewhere else: a whole pixel of offset along the edges
// of the thinnest shape here would exceed the overall limit.
void expectSamePicture(const std::string& ourText, const std::string& referenceText) {
  const Picture a = ours(ourText);
  const Picture b = reference(referenceText);
  ASSERT_GT(b.width, 0);
  ASSERT_EQ(a.width, b.width);
  ASSERT_EQ(a.height, b.height);
  const Comparison result = compare(a, b);
  EXPECT_GT(result.counted, 200);
  EXPECT_LT(result.inside, 2.0);
  EXPECT_LT(result.overall, 3.0);
}

class SVGPictureTest : public testing::TestWithParam<SVGPictureCase> {};

TEST_P(SVGPictureTest, LooksLikeTheReference) {
  NEEDS_REFERENCE();
  const std::string text = wholeText(GetParam().content);
  expectSamePicture(text, text);
}

INSTANTIATE_TEST_SUITE_P(All, SVGPictureTest,
                         testing::ValuesIn(svgPictureCases().begin(), svgPictureCases().end()),
                         [](const auto& picture) { return std::string(picture.param.name); });

class SVGDifferenceTest : public testing::TestWithParam<SVGDifferenceCase> {};

TEST_P(SVGDifferenceTest, IsDrawnOurWay) {
  NEEDS_REFERENCE();
  const std::string text = wholeText(GetParam().content);
  expectSamePicture(text, wholeText(GetParam().equivalent));
  const Picture theirs = reference(text);
  EXPECT_GT(compare(ours(text), theirs).overall, 5.0) << "the renderers agree after all";
}

INSTANTIATE_TEST_SUITE_P(All, SVGDifferenceTest,
                         testing::ValuesIn(svgDifferenceCases().begin(),
                                           svgDifferenceCases().end()),
                         [](const auto& picture) { return std::string(picture.param.name); });

TEST(SVGPictureTest, EveryNamedColour) {
  NEEDS_REFERENCE();
  std::string content;
  int x = 0;
  for (const SVGNative::NamedColor& color : SVGNative::kNamedColors) {
    content += "<rect x='" + std::to_string(x++) + "' width='1' height='1' fill='" +
               std::string(color.name) + "'/>";
  }
  const std::string text = wholeText("<svg width='148' height='1'>" + content + "</svg>");
  const Picture a = ours(text);
  const Picture b = reference(text);
  ASSERT_EQ(a.width, 148);
  ASSERT_EQ(a.pixels.size(), b.pixels.size());
  for (int64_t i = 0; i < a.width; ++i) {
    EXPECT_EQ(difference(a.at(i, 0), b.at(i, 0)), 0)
        << SVGNative::kNamedColors[static_cast<size_t>(i)].name;
  }
}

}  // namespace
