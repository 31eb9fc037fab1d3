#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "support/Bitmaps.h"
#include "svg/CGSVGRenderer.h"
#include "svg/tree/SVGDocument.h"

using namespace SVGNative;

namespace {

class CGSVGRendererTest : public testing::Test {
 protected:
  // Bitmap rows count downwards like pictures do, so that the context is turned first.
  void useContext() {
    bitmap_ = NSBitmapImageRep::create(40, 40);
    context_ = std::make_shared<CGContext>(bitmap_);
    context_->concatenate({1, 0, 0, -1, 0, 40});
    renderer_->SetGraphicsContext(context_);
  }
  void draw(const std::string& content) {
    const auto document = SVGDocument::CreateSVGDocument(
        "<svg width='40' height='40'>" + content + "</svg>", renderer_);
    ASSERT_NE(document, nullptr);
    document->Render();
  }
  Pixel at(int64_t x, int64_t y) const { return pixelAt(*bitmap_, x, y); }

  std::shared_ptr<CGSVGRenderer> renderer_ = std::make_shared<CGSVGRenderer>();
  std::shared_ptr<NSBitmapImageRep> bitmap_;
  std::shared_ptr<CGContext> context_;
};

using CGSVGRendererDeathTest = CGSVGRendererTest;

TEST_F(CGSVGRendererDeathTest, SaveWithoutAContext) {
  EXPECT_EXIT(renderer_->Save({}), testing::KilledBySignal(SIGABRT),
              "CGSVGRenderer: .*context_ != nullptr");
}

TEST_F(CGSVGRendererDeathTest, DrawingAnImageWithoutAContext) {
  const auto image = renderer_->CreateImageData("", ImageEncoding::png);
  EXPECT_EXIT(renderer_->DrawImage(*image, {}, {}, {}), testing::KilledBySignal(SIGABRT),
              "CGSVGRenderer: .*context_ != nullptr");
}

TEST_F(CGSVGRendererTest, DrawingAPathWithoutAContextDoesNothing) {
  const auto path = renderer_->CreatePath();
  path->Rect(0, 0, 10, 10);
  renderer_->DrawPath(*path, {}, {}, {});
}

TEST_F(CGSVGRendererTest, ContextsAreKeptUntilTheNextOne) {
  useContext();
  EXPECT_EQ(context_.use_count(), 2);
  renderer_->SetGraphicsContext(nullptr);
  EXPECT_EQ(context_.use_count(), 1);
}

TEST_F(CGSVGRendererTest, MeasuringIsNotSupported) {
  const auto document =
      SVGDocument::CreateSVGDocument("<svg><rect width='1' height='1'/></svg>", renderer_);
  Rect bounds;
  try {
    document->GetBoundingBox(bounds);
    FAIL() << "should have thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Bound calculation functionality not implemented in this port");
  }
  EXPECT_THROW(document->GetBoundingBox("id", bounds), std::runtime_error);
}

TEST_F(CGSVGRendererTest, LeavesTheContextAsItWas) {
  useContext();
  const CGAffineTransform before = context_->state().transform;
  context_->setAlpha(0.25);
  draw(
      "<g opacity='.5' transform='scale(2)'><rect width='9' height='9' stroke='red' "
      "opacity='.5'/><circle r='5' clip-path='url(#c)'/></g><clipPath id='c'/>");
  EXPECT_EQ(context_->state().transform, before);
  EXPECT_EQ(context_->state().alpha, 0.25);
  EXPECT_EQ(context_->state().clip.box(), (PixelBox{0, 0, 40, 40}));
}

// The shape as a whole is translucent: its fill does not show through its stroke.
TEST_F(CGSVGRendererTest, OpacityAppliesToFillAndStrokeTogether) {
  const std::string style =
      "width='20' height='20' fill='red' stroke='blue' stroke-width='8' opacity='.5'/>";
  for (const std::string place :
       {"x='10' y='10' ", "x='-20' y='-20' transform='translate(30 30)' "}) {
    useContext();
    draw("<rect " + place + style);
    EXPECT_EQ(at(20, 20), (Pixel{128, 0, 0, 128})) << place;
    EXPECT_EQ(at(12, 20), (Pixel{0, 0, 128, 128})) << place;
    EXPECT_EQ(at(8, 8), (Pixel{0, 0, 128, 128})) << place;
    EXPECT_EQ(at(4, 4), Pixel{}) << place;
  }
}

// The clip's edge cuts a pixel in half. Whatever is painted below, only what is on top shows there.
TEST_F(CGSVGRendererTest, NothingBelowShinesThroughWhereAClipCutsPixels) {
  const std::string red = "<rect width='40' height='40' fill='red'/>";
  const std::string blue = "<rect width='40' height='40' fill='blue'/>";
  const std::string cases[] = {
      "<g clip-path='url(#c)'>" + red + blue + "</g>",
      "<g clip-path='url(#c)'><g><g>" + red + blue + "</g></g></g>",
      "<g clip-path='url(#c)'>" + red + "<g>" + red + blue + "</g></g>",
      "<defs><g id='g'>" + red + blue + "</g></defs><use href='#g' clip-path='url(#c)'/>",
      "<svg x='10.5' y='10' width='20' height='20' viewBox='5 5 20 20'>" + red + blue + "</svg>",
      "<rect x='5' y='5' width='30' height='30' fill='red' stroke='blue' stroke-width='20' "
      "clip-path='url(#c)'/>",
      "<g clip-path='url(#c)'><rect x='9' y='10' width='9' height='9' fill='red' stroke='blue' "
      "stroke-width='10'/></g>"};
  for (const std::string& content : cases) {
    useContext();
    draw(content + "<clipPath id='c'><rect x='10.5' y='10' width='20' height='20'/></clipPath>");
    EXPECT_EQ(at(10, 12), (Pixel{0, 0, 128, 128})) << content;
    EXPECT_EQ(at(9, 12), Pixel{}) << content;
  }
}

TEST_F(CGSVGRendererTest, MitersReachBeyondTheShapeOfTheLayer) {
  useContext();
  // A miter reaches far beyond the path; the layer of the pair must hold it.
  draw("<path d='M10 30L20 20 30 30' fill='red' stroke='blue' stroke-width='10' opacity='.5'/>");
  EXPECT_EQ(at(20, 14)[3], 128);
  EXPECT_EQ(at(20, 10), Pixel{});
}

// Fifty groups are layers; those inside them would make the picture vanish.
TEST_F(CGSVGRendererTest, GroupsNestedTooDeepAreDrawnWithoutTheirOpacity) {
  useContext();
  std::string text = "<rect width='40' height='40' fill='red'/>";
  for (int i = 0; i < 60; ++i) {
    text = (i < 10 ? "<g opacity='0'>" : "<g opacity='.9999'>") + text + "</g>";
  }
  draw(text);
  EXPECT_EQ(at(20, 20), (Pixel{255, 0, 0, 255}));
}

TEST_F(CGSVGRendererTest, NothingComesOfSingularAndEndlessTransforms) {
  useContext();
  draw(
      "<linearGradient id='g' gradientTransform='scale(0)'><stop/><stop offset='1'/>"
      "</linearGradient>"
      "<rect width='40' height='40' transform='scale(0)'/>"
      "<rect width='40' height='40' transform='scale(1e38)scale(1e38)scale(1e38)scale(1e38)"
      "scale(1e38)scale(1e38)scale(1e38)scale(1e38)scale(1e38)'/>"
      "<rect width='40' height='40' fill='url(#g)'/>"
      "<rect width='40' height='40' fill='none' stroke='url(#g)'/>"
      "<g transform='matrix(0 0 0 0 0 0)' opacity='.5'><rect width='40' height='40'/></g>");
  EXPECT_TRUE(bitmap_->usedRows().empty() || at(20, 20) == Pixel{});
}

TEST_F(CGSVGRendererTest, PathsOutliveTheirRendererAndEachOther) {
  std::vector<std::shared_ptr<Path>> paths;
  for (int i = 0; i < 200; ++i) {
    const auto path = renderer_->CreatePath();
    path->Rect(static_cast<float>(i), 0.0f, 5.0f, 10.0f);
    if (i % 50 == 1) paths.push_back(path);
  }
  renderer_.reset();
  for (size_t i = 0; i < paths.size(); ++i) {
    EXPECT_EQ(paths[i]->Bounds(), Rect::FromSize(50.0f * static_cast<float>(i) + 1.0f, 0, 5, 10));
  }
}

TEST_F(CGSVGRendererTest, PathsOfOneRectangleAreKnownAsSuch) {
  CGSVGPath path;
  EXPECT_EQ(path.asRect(), std::nullopt);
  path.Rect(1, 2, 3, 4);
  EXPECT_EQ(path.asRect(), NSMakeRect(1, 2, 3, 4));
  path.Rect(1, 2, 3, 4);
  EXPECT_EQ(path.asRect(), std::nullopt);
  CGSVGPath lines;
  for (int i = 0; i < 5; ++i) lines.MoveTo(0, 0);
  EXPECT_EQ(lines.asRect(), std::nullopt);
}

}  // namespace
