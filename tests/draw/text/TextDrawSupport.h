#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "document/DocumentClasses.h"
#include "draw/text/DrawText.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/fonts/NSFont.h"
#include "platform/text/host/NSAttributedString.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Fixtures.h"

inline const Pixel kNone{0, 0, 0, 0};
inline const Pixel kBlack{0, 0, 0, 255};
inline const Pixel kRed{255, 0, 0, 255};
inline const Pixel kGreen{0, 255, 0, 255};
inline const Pixel kBlue{0, 0, 255, 255};

/// Makes the font whose letters are boxes the only one. At a size of 20 a letter covers columns 1
/// to 8 of an advance of 10, and rows 2 to 15 of a line 20 high.
class BoxTextTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    registerDocumentClasses();
    useBoxFont();
  }
  static void useBoxFont() {
    FontRegistry::useFontFiles({sourcePath("tests/fixtures/fonts/Box.ttf")});
  }
};

inline NSAttributedString boxText(std::string_view text, double size = 20) {
  auto attributes = std::make_shared<NSMutableDictionary>();
  attributes->setObject(std::make_shared<NSFont>("Box-Regular", size), NSFontAttributeName);
  return NSAttributedString(text, attributes);
}

/// A draw on a canvas of its own; rows are counted from the top.
struct DrawnDraw {
  explicit DrawnDraw(DrawBase& draw, int64_t width = 200, int64_t height = 100)
      : bitmap(NSBitmapImageRep::create(width, height)) {
    const ZTFocusScope focus(bitmap);
    draw.draw();
  }
  Pixel at(int64_t x, int64_t y) const { return pixelAt(*bitmap, x, y); }
  int alpha(int64_t x, int64_t y) const { return at(x, y)[3]; }

  std::shared_ptr<NSBitmapImageRep> bitmap;
};
