// The sheets of docs/, at points worked out by hand. The cells are 100 pixels wide, the background
// is 247, red is (230, 51, 38), blue (38, 89, 217), green (51, 166, 77), dark (38, 38, 51).
#include <gtest/gtest.h>

#include <span>
#include <string>

#include "document/PaintManager.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"

namespace {

/// What one pixel of a sheet shows, x from the left and y from the top.
struct Point {
  int64_t x;
  int64_t y;
  int red;
  int green;
  int blue;
  const char* what;
};

constexpr int kGround = 247;

void expectPoints(const std::string& sheet, std::span<const Point> points) {
  const auto document = madeDocument("sheets/" + sheet);
  ASSERT_NE(document, nullptr);
  const auto image = document->fullImage();
  ASSERT_NE(image, nullptr);
  for (const Point& p : points) {
    const Pixel pixel = pixelAt(*image, p.x, p.y);
    EXPECT_NEAR(pixel[0], p.red, 2) << p.what;
    EXPECT_NEAR(pixel[1], p.green, 2) << p.what;
    EXPECT_NEAR(pixel[2], p.blue, 2) << p.what;
    EXPECT_EQ(pixel[3], 255) << p.what;
  }
}

}  // namespace

TEST(Sheets, Shadows) {
  // Squares span 22 to 78 of their cell, drop shadows lie 8 lower and further right.
  const Point points[] = {
      {50, 50, 230, 51, 38, "a square lies over its shadow"},
      {82, 84, 74, 74, 74, "black at 0.7"},
      {82, 28, kGround, kGround, kGround, "above the hard shadow"},
      {86, 60, kGround, kGround, kGround, "beyond the hard shadow"},
      // Weights exp(-k^2 / 12.5), |k| <= 5: 0.932 of them lie left of 3.5, 0.148 right of 2.5.
      {282, 60, 86, 86, 86, "blur 5, three pixels inside the edge"},
      {288, 60, 221, 221, 221, "blur 5, three pixels outside the edge"},
      {50, 150, 51, 166, 77, "an ellipse"},
      {24, 250, 93, 43, 8, "a hard inner shadow, 0.9 of it"},
      {50, 225, 93, 43, 8, "along the upper edge too"},
      {35, 250, 242, 204, 77, "away from the inner shadow"},
      {50, 275, 242, 204, 77, "along the lower edge"},
      {550, 312, 255, 255, 255, "in the corner of a turned square"},
      {525, 325, kGround, kGround, kGround, "where the square's own corner would be"},
  };
  expectPoints("shadows", points);
}

TEST(Sheets, Gradients) {
  // From red by way of (1, 0.9, 0.3) in the middle to blue; the first rows' boxes are 80 wide.
  const Point points[] = {
      {30, 50, 243, 142, 58, "0 degrees at 0.256"},
      {70, 50, 144, 158, 148, "0 degrees at 0.756"},
      {450, 70, 242, 138, 57, "90 degrees at 0.244"},
      {630, 50, 149, 161, 145, "180 degrees at 0.744"},
      {50, 250, 230, 55, 39, "radial, the middle"},
      {78, 250, 253, 228, 78, "radial, 28.5 of 56.6 away"},
      // |p - 40 t (1, 1)| = 113.1 t
      {450, 250, 230, 54, 39, "centre in the corner, where the circles begin"},
      {411, 289, 49, 96, 210, "centre in the corner, the opposite corner"},
      {50, 330, 193, 207, 239, "blue at 0.256"},
      {126, 350, 230, 51, 38, "a hard edge, before"},
      {174, 350, 51, 166, 77, "a hard edge, after"},
  };
  expectPoints("gradients", points);
}

TEST(Sheets, Reflections) {
  // Rectangles end 50 below the cell's top, half a pixel more with their lines. The strip is 41
  // high times the strength.
  const Point points[] = {
      {150, 55, 238, 143, 136, "strength 0.5: 0.7 fading to 0 over 20.5"},
      {150, 75, kGround, kGround, kGround, "strength 0.5: nothing below the strip"},
      {450, 70, 234, 99, 89, "strength 1.5: 1 fading to 0.5 over 41"},
      {150, 159, kGround, kGround, kGround, "distance 15: the gap"},
      {150, 169, 237, 137, 129, "distance 15: four pixels into the strip"},
      {450, 99, 233, 94, 84, "distance -60: shows above the draw"},
      {550, 170, 238, 147, 140, "a distance below -60 in a file counts as 0"},
  };
  expectPoints("reflections", points);
}

TEST(Sheets, Lines) {
  const Point points[] = {
      {647, 350, kGround, kGround, kGround, "left of a line of width 5"},
      {648, 350, 230, 51, 38, "its first column"},
      {652, 350, 230, 51, 38, "its last column"},
      {653, 350, kGround, kGround, kGround, "right of it"},
      // 5 and 15 along the direction (35, 60) from (15, 20).
      {317, 375, 38, 38, 51, "the first dash"},
      {322, 366, kGround, kGround, kGround, "the first gap"},
  };
  expectPoints("lines", points);
}

TEST(Sheets, OneBitmapShowsWhatTwoDo) {
  for (const char* name : {"sheets/shadows", "sheets/reflections", "background", "fills",
                           "all classes", "nested groups", "empty"}) {
    const auto document = madeDocument(name);
    ASSERT_NE(document, nullptr) << name;
    const auto image = document->composedImage();
    ASSERT_NE(image, nullptr) << name;
    EXPECT_EQ(document->imageWithoutRefreshing(), nullptr) << name;
    EXPECT_EQ(maxDifference(*image, *document->fullImage()), 0) << name;
  }
}
