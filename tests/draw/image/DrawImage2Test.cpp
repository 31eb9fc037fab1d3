// What embedded pictures are made of, and their archives. Drawing has its own tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "document/DrawGroup.h"
#include "draw/image/DrawImage.h"
#include "draw/image/DrawImage2.h"
#include "draw/image/DrawPDF.h"
#include "draw/image/DrawSVG.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/files/FileWriting.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/pictures/PictureHelper.h"
#include "support/Archives.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Fixtures.h"

namespace {

/// The chart of the made documents, premultiplied: 200 * 102 / 255 = 80, 100 * 102 / 255 = 40.
std::shared_ptr<NSBitmapImageRep> chart(bool opaque = false) {
  return makeBitmap(4, 2, [opaque](int64_t x, int64_t y) {
    if (x == 3 && y == 1) return opaque ? Pixel{200, 100, 0, 255} : Pixel{80, 40, 0, 102};
    return Pixel{static_cast<uint8_t>(60 * x), static_cast<uint8_t>(100 * y), 200, 255};
  });
}

class Pictures : public testing::Test {
 protected:
  template <class T = DrawImage2>
  std::shared_ptr<T> titled(const char* title) const {
    auto draw = std::dynamic_pointer_cast<T>(drawTitled(*document_, title));
    EXPECT_NE(draw, nullptr) << title;
    return draw;
  }
  std::shared_ptr<PaintManager> document_ = madeDocument("pictures");
};

/// The draw after it was archived and read again.
template <class T>
std::shared_ptr<T> throughArchive(const std::shared_ptr<T>& draw) {
  return std::dynamic_pointer_cast<T>(DrawBase::drawFromEncodedData(DrawBase::encodedData(draw)));
}

std::string listed(const std::shared_ptr<DrawBase>& draw) {
  return describeArchive(DrawBase::encodedData(draw)->bytes());
}

/// Hexadecimal form of the first bytes of the data objects that a listing shows.
bool holdsData(const std::string& listing, const char* start) {
  return listing.find(") " + std::string(start)) != std::string::npos;
}

constexpr const char* kPNG = "89504e47";
constexpr const char* kJPEG = "ffd8ff";

NSDictionary attributes(std::shared_ptr<NSObject> opacity) {
  NSMutableDictionary dictionary;
  dictionary.setObject(std::move(opacity), "DAKeyImageOpacity");
  return dictionary;
}

}  // namespace

TEST_F(Pictures, EveryArchivedForm) {
  for (const char* title : {"png", "mutable data", "tiff", "object", "object and data",
                            "another object", "half", "no outline"}) {
    const auto image = titled(title)->image();
    ASSERT_NE(image, nullptr) << title;
    EXPECT_EQ(maxDifference(*image, *chart()), 0) << title;
    EXPECT_TRUE(image->hasAlpha()) << title;
  }
  const auto opaque = titled("opaque png")->image();
  EXPECT_EQ(maxDifference(*opaque, *chart(true)), 0);
  EXPECT_FALSE(opaque->hasAlpha());
  const auto jpeg = titled("jpeg")->image();
  ASSERT_NE(jpeg, nullptr);
  EXPECT_EQ(jpeg->size(), (NSSize{16, 8}));
  EXPECT_EQ(pixelAt(*jpeg, 3, 3), (Pixel{200, 200, 200, 255}));
  EXPECT_EQ(pixelAt(*jpeg, 12, 3), (Pixel{40, 40, 40, 255}));
  for (const char* title : {"nothing", "junk", "text for data", "svg with a bitmap",
                            "pdf with a bitmap", "empty pdf", "pdf, encrypted"}) {
    EXPECT_EQ(titled(title)->image(), nullptr) << title;
    EXPECT_EQ(titled(title)->originalSize(), NSZeroSize) << title;
  }
  EXPECT_EQ(titled("png")->originalSize(), (NSSize{4, 2}));
}

TEST_F(Pictures, DecodedBitmapsAreSharedAndNotKept) {
  const auto draw = titled("png");
  std::weak_ptr<NSBitmapImageRep> seen;
  {
    const auto image = draw->image();
    EXPECT_EQ(draw->image(), image);
    seen = image;
  }
  EXPECT_TRUE(seen.expired());
}

TEST_F(Pictures, OpacityOfPicturesWithoutLineBecomesTheirDraws) {
  struct Case {
    const char* title;
    uint64_t opacity;
    float imageOpacity;
    bool strokes;
  };
  for (const Case& c : {Case{"png", 100, 200, false},
                        {"half", 50, 200, false},
                        {"half with line", 50, 0.5F, true},
                        {"whole with line", 70, 200, true},
                        {"negative with line", 70, 200, true},
                        {"nan with line", 70, 200, true},
                        {"thin line", 100, 200, false},
                        {"no outline", 100, 200, false}}) {
    const auto draw = titled(c.title);
    EXPECT_EQ(draw->opacity(), c.opacity) << c.title;
    EXPECT_EQ(draw->imageOpacity(), c.imageOpacity) << c.title;
    EXPECT_EQ(draw->enableStroke(), c.strokes) << c.title;
    EXPECT_EQ(draw->shouldApplyOpacityToStokeAndFill(), c.imageOpacity == 200) << c.title;
    EXPECT_EQ(throughArchive(draw)->imageOpacity(), c.imageOpacity) << c.title;
  }
}

TEST_F(Pictures, OpacityOfThePictureStandsForTheDraws) {
  const auto draw = titled("half with line");
  draw->setOpacity(29);
  EXPECT_EQ(draw->imageOpacity(), 0.29F);
  EXPECT_EQ(draw->opacity(), 29U);
  EXPECT_EQ(throughArchive(draw)->imageOpacity(), 0.29F);
  // The whole is not written: it would mean the same as none.
  draw->setOpacity(250);
  EXPECT_EQ(draw->imageOpacity(), 1);
  EXPECT_EQ(draw->opacity(), 100U);
  EXPECT_EQ(listed(draw).find("Opacity: "), std::string::npos);

  const auto plain = titled("png");
  plain->setOpacity(30);
  EXPECT_EQ(plain->opacity(), 30U);
  EXPECT_EQ(plain->imageOpacity(), DrawImage2::kNoImageOpacity);
}

TEST_F(Pictures, OpacityTravelsBetweenPicturesThatHaveOne) {
  const auto draw = titled("half with line");
  const auto sent = draw->drawAttributes()->objectOfClass<NSNumber>("DAKeyImageOpacity");
  ASSERT_NE(sent, nullptr);
  EXPECT_EQ(sent->floatValue(), 0.5F);
  EXPECT_EQ(titled("png")->drawAttributes()->objectForKey("DAKeyImageOpacity"), nullptr);

  const auto take = [&](std::shared_ptr<NSObject> value) {
    draw->setDrawAttributes(*std::make_shared<NSDictionary>(attributes(std::move(value))));
    return draw->imageOpacity();
  };
  NSMutableDictionary both(*draw->drawAttributes());
  const auto takeWithOthers = [&](float value) {
    both.setObject(NSNumber::numberWithFloat(value), "DAKeyImageOpacity");
    EXPECT_TRUE(draw->setDrawAttributes(both));
    return draw->imageOpacity();
  };
  both.removeObjectForKey(*NSString::stringWithString("DAKeyOpacity"));
  EXPECT_EQ(takeWithOthers(0.25F), 0.25F);
  EXPECT_EQ(takeWithOthers(1.5F), 0.25F);
  EXPECT_EQ(takeWithOthers(NAN), 0.25F);
  EXPECT_EQ(takeWithOthers(0), 0);
  // A picture that was made invisible keeps its own.
  EXPECT_EQ(takeWithOthers(0.75F), 0);
  // Alone it is no attribute that draws share.
  draw->setOpacity(50);
  EXPECT_EQ(take(NSNumber::numberWithFloat(0.75F)), 0.5F);

  const auto plain = titled("png");
  EXPECT_TRUE(plain->setDrawAttributes(both));
  EXPECT_EQ(plain->imageOpacity(), DrawImage2::kNoImageOpacity);
}

TEST_F(Pictures, BitmapsAreWrittenAsPNGAndWithoutAlphaAsJPEG) {
  const auto picture = titled("tiff");
  const std::string listing = listed(picture);
  EXPECT_TRUE(holdsData(listing, kPNG)) << listing;
  EXPECT_NE(listing.find("HasRerender: bool True"), std::string::npos);
  const auto read = throughArchive(picture);
  EXPECT_EQ(maxDifference(*read->image(), *chart()), 0);
  EXPECT_TRUE(read->image()->hasAlpha());

  // Opaque pixels do not make a bitmap one without alpha, which would be JPEG the next time.
  const auto twice = throughArchive(throughArchive(DrawImage2::initWithImage(chart(true))));
  EXPECT_EQ(maxDifference(*twice->image(), *chart(true)), 0);
  EXPECT_TRUE(twice->image()->hasAlpha());

  const auto gray = throughArchive(titled("jpeg"));
  EXPECT_LE(maxDifference(*gray->image(), *titled("jpeg")->image()), 1);
  const std::string opaque = listed(titled("opaque png"));
  EXPECT_TRUE(holdsData(opaque, kJPEG)) << opaque;

  EXPECT_EQ(listed(titled("nothing")).find("HasRerender"), std::string::npos);
  EXPECT_EQ(listed(titled("svg")).find("HasRerender"), std::string::npos);
}

TEST_F(Pictures, BitmapsWithoutFileFormCannotBeWritten) {
  const auto draw = DrawImage2::initWithImage(NSBitmapImageRep::create(0, 5));
  EXPECT_THROW(DrawBase::encodedData(draw), NSException);
}

TEST_F(Pictures, FlippingMirrorsTheBitmap) {
  const auto draw = titled("png");
  draw->flip(true);
  EXPECT_EQ(pixelAt(*draw->image(), 0, 1), (Pixel{80, 40, 0, 102}));
  draw->flip(false);
  EXPECT_EQ(pixelAt(*draw->image(), 0, 0), (Pixel{80, 40, 0, 102}));
  const auto nothing = titled("nothing");
  nothing->flip(true);
  EXPECT_EQ(nothing->image(), nullptr);
}

TEST_F(Pictures, LegacyPicturesAreConverted) {
  const auto draw = titled("legacy");
  EXPECT_EQ(draw->className(), "DrawImage2");
  EXPECT_EQ(maxDifference(*draw->image(), *chart()), 0);
  EXPECT_EQ(draw->opacity(), 25U);
  EXPECT_EQ(draw->lineWidth(), 0);
  EXPECT_FALSE(draw->enableStroke());
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(0, 0, 4, 2));
  EXPECT_EQ(titled("legacy without picture")->image(), nullptr);
}

TEST_F(Pictures, DeepLegacyPicturesStayAndAreArchived) {
  const auto groups = titled<DrawGroup>("groups");
  const auto inner = std::dynamic_pointer_cast<DrawGroup>(groups->draws()[0]);
  const auto draw = std::dynamic_pointer_cast<DrawImage>(inner->draws()[0]);
  ASSERT_NE(draw, nullptr);
  EXPECT_EQ(draw->width2HeightRatioForShift(), 2);
  EXPECT_EQ(DrawImage().width2HeightRatioForShift(), 1);
  const auto read = throughArchive(draw);
  EXPECT_EQ(maxDifference(*read->image(), *chart()), 0);
  EXPECT_EQ(read->convertedDraw()->opacity(), 50U);
}

TEST_F(Pictures, FilesBecomeDraws) {
  const auto gray = titled("jpeg")->image();
  const struct {
    std::shared_ptr<NSData> data;
    NSSize size;
  } kCases[] = {{chart()->TIFFRepresentation(), {4, 2}},
                {gray->representationUsingType(NSBitmapImageFileType::JPEG), {16, 8}},
                {titled<DrawSVG>("svg")->svgData(), {4, 2}}};
  for (const auto& [data, size] : kCases) {
    const auto draw = DrawImage2::drawWithData(data);
    ASSERT_NE(draw, nullptr);
    EXPECT_EQ(draw->pathBounds(), (NSRect{NSZeroPoint, size}));
    EXPECT_EQ(draw->lineWidth(), 0);
    EXPECT_EQ(draw->image()->size(), size);
  }
  EXPECT_EQ(DrawImage2::drawWithData(nullptr), nullptr);
  EXPECT_EQ(DrawImage2::drawWithData(std::make_shared<NSData>()), nullptr);
  EXPECT_EQ(DrawImage2::drawWithData(NSData::dataWithVector({1, 2, 3})), nullptr);
}

TEST_F(Pictures, VectorPicturesAreDrawnAtTheSizeOfTheirDraw) {
  const auto draw = titled<DrawSVG>("svg");
  EXPECT_FALSE(draw->useSVGNative());
  EXPECT_EQ(draw->originalSVGSize(), (NSSize{4, 2}));
  EXPECT_TRUE(draw->flipHorizontal());
  EXPECT_FALSE(draw->flipVertical());
  constexpr Pixel kRed{255, 0, 0, 255};
  EXPECT_EQ(pixelAt(*draw->image(), 1, 1), kRed);
  EXPECT_EQ(pixelAt(*draw->image(), 2, 1), Pixel{});
  // Stretched whatever the aspect ratio, sides rounded.
  draw->setBezierPathWithBounds(NSMakeRect(3, 3, 19.5, 5.4));
  EXPECT_EQ(draw->image()->size(), (NSSize{20, 5}));
  EXPECT_EQ(pixelAt(*draw->image(), 9, 4), kRed);
  EXPECT_EQ(pixelAt(*draw->image(), 10, 4), Pixel{});
  EXPECT_EQ(titled<DrawSVG>("empty svg")->svgData(), nullptr);
  EXPECT_EQ(titled("empty svg")->image(), nullptr);
}

TEST_F(Pictures, VectorPicturesForgetFlipsWhenDrawnAnew) {
  // The built-in engine draws after dragging only.
  PictureSession session;
  session.setEngine(SVGEngine::builtIn);
  const PictureSessionScope scope(session);
  const auto draw = titled<DrawSVG>("svg");
  draw->flip(true);
  draw->flip(false);
  EXPECT_FALSE(draw->flipHorizontal());
  EXPECT_TRUE(draw->flipVertical());
  const auto flippedPixel = [&] { return pixelAt(*draw->image(), 0, 0)[3]; };
  EXPECT_EQ(flippedPixel(), 0);
  draw->moveByX(5, 5);
  EXPECT_EQ(flippedPixel(), 0);
  EXPECT_FALSE(draw->isResizingByDragging());
  draw->setResizingByDragging(true);
  EXPECT_TRUE(draw->isResizingByDragging());
  draw->setBezierPathWithBounds(NSMakeRect(0, 0, 8, 4));
  EXPECT_EQ(draw->image()->size(), (NSSize{4, 2}));
  EXPECT_EQ(flippedPixel(), 0);
  draw->setResizingByDragging(false);
  EXPECT_EQ(draw->image()->size(), (NSSize{8, 4}));
  EXPECT_EQ(flippedPixel(), 255);

  draw->flip(true);
  EXPECT_EQ(flippedPixel(), 0);
  draw->scaleByX(2, 2, NSZeroPoint, ResizeLineWidth::no);
  EXPECT_EQ(flippedPixel(), 255);

  const auto read = throughArchive(draw);
  EXPECT_TRUE(read->flipHorizontal());
  EXPECT_TRUE(read->flipVertical());
  EXPECT_EQ(read->svgData()->length(), draw->svgData()->length());
}

TEST_F(Pictures, VectorPicturesThatCannotBeDrawnAreRefused) {
  const auto svg = [](const char* attributes) {
    const std::string text = std::string("<svg xmlns='http://www.w3.org/2000/svg' ") + attributes +
                             "><rect width='9' height='9'/></svg>";
    return DrawSVG::drawWithSVGData(NSData::dataWithVector({text.begin(), text.end()}));
  };
  EXPECT_NE(svg("width='1' height='9'"), nullptr);
  EXPECT_EQ(svg("width='0.4' height='9'"), nullptr);
  EXPECT_EQ(svg("width='9' height='0'"), nullptr);
  EXPECT_EQ(svg("width='90000' height='90000'"), nullptr);
  EXPECT_EQ(DrawSVG::drawWithSVGData(chart()->TIFFRepresentation()), nullptr);
}

TEST_F(Pictures, TheRendererIsChosenOnceForADraw) {
  const auto draw = titled<DrawSVG>("svg");
  {
    PictureSession session;
    session.setEngine(SVGEngine::builtIn);
    const PictureSessionScope scope(session);
    EXPECT_TRUE(draw->useSVGNative());
  }
  EXPECT_TRUE(draw->useSVGNative());
  // The system's renderer draws during dragging too.
  const auto other = throughArchive(draw);
  EXPECT_FALSE(other->useSVGNative());
  other->setResizingByDragging(true);
  other->setBezierPathWithBounds(NSMakeRect(0, 0, 8, 4));
  EXPECT_EQ(other->image()->size(), (NSSize{8, 4}));
}

TEST(LeftOutPictures, AreReportedByTitleKindAndReason) {
  const auto document = madeDocument("left out pictures");
  ASSERT_NE(document, nullptr);
  const auto image = document->composedImage();
  std::vector<std::array<std::string, 3>> found;
  for (const LeftOutPicture& picture : document->leftOutPictures()) {
    found.push_back({picture.title, picture.kind, picture.reason});
  }
  const std::string unreadable = "it cannot be read";
  EXPECT_THAT(found,
              testing::ElementsAre(testing::ElementsAre("bitmap", "bitmap", unreadable),
                                   testing::ElementsAre("archived bitmap", "bitmap", unreadable),
                                   testing::ElementsAre("legacy", "bitmap", unreadable),
                                   testing::ElementsAre("in a group", "bitmap", unreadable),
                                   testing::ElementsAre("filtered", "bitmap", unreadable),
                                   testing::ElementsAre("pdf", "PDF page", unreadable),
                                   testing::ElementsAre("svg", "SVG picture", unreadable)));
  // Everything else is drawn: the last draw covers the middle.
  EXPECT_EQ(pixelAt(*image, 2, 1), (Pixel{0, 0, 255, 255}));
  for (const auto& draw : document->allDraws()) {
    const bool isGood = draw->title() == "good" || draw->pictureKind()[0] == '\0';
    EXPECT_EQ(document->pictureFailure(*draw) == PictureFailure::none, isGood) << draw->title();
  }
  // The next composition starts anew.
  document->composedImage();
  EXPECT_EQ(document->leftOutPictures().size(), found.size());
  // A file keeps what could not be read.
  const auto read =
      PaintManager::paintMgrWithPaintData(document->paintDataWithResolution(0), nullptr, nullptr);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->allDraws().size(), document->allDraws().size());
}

TEST(LeftOutPictures, TimeIsSharedByThePicturesOfAComposition) {
  const auto document = PaintManager::paintMgrWithPaintData(
      NSData::dataWithContentsOfFile(sourcePath("examples/pictures.paintdoc")), nullptr, nullptr);
  ASSERT_NE(document, nullptr);
  document->setPictureLimits({.compositionTime = std::chrono::milliseconds(0)});
  document->composedImage();
  ASSERT_FALSE(document->leftOutPictures().empty());
  for (const LeftOutPicture& picture : document->leftOutPictures()) {
    EXPECT_NE(picture.kind, "bitmap");
    EXPECT_EQ(picture.reason, "the pictures before it took all the time");
  }
  document->setPictureLimits({});
  document->composedImage();
  EXPECT_TRUE(document->leftOutPictures().empty());
}

// Reading a document starts nothing; a copy of this process has no helper yet.
TEST(LeftOutPictures, AreFoundWhenTheyAreDrawn) {
  const auto openFiles = [] {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
  };
  const pid_t child = fork();
  if (child == 0) {
    const auto before = openFiles();
    const auto document = madeDocument("pictures");
    const auto afterReading = openFiles();
    document->composedImage();
    const bool isRight = document != nullptr && afterReading == before && openFiles() > before;
    _exit(isRight ? 0 : 1);
  }
  int status = 1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

// A file that is written while there is no helper keeps its PDF pages.
TEST(LeftOutPictures, AMissingHelperLosesNoData) {
  const auto pagesOf = [](const PaintManager& document) {
    return std::count_if(document.allDraws().begin(), document.allDraws().end(),
                         [](const auto& draw) {
                           const auto* pdf = dynamic_cast<const DrawPDF*>(draw.get());
                           return pdf != nullptr && pdf->pdfPage() != nullptr;
                         });
  };
  const std::string path = testing::TempDir() + "/without helper.paintdoc";
  const pid_t child = fork();
  if (child == 0) {
    // A copy of this process starts a helper of its own.
    setPictureHelperPath("/nonexistent");
    const auto data = madeDocument("pictures")->paintDataWithResolution(0);
    _exit(writeFileInPlace(path, data->bytes()) ? 1 : 0);
  }
  int status = 1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
  const auto read =
      PaintManager::paintMgrWithPaintData(NSData::dataWithContentsOfFile(path), nullptr, nullptr);
  ASSERT_NE(read, nullptr);
  EXPECT_GT(pagesOf(*read), 0);
  EXPECT_EQ(pagesOf(*read), pagesOf(*madeDocument("pictures")));
}

TEST(BackgroundPictures, MaskTheCanvas) {
  constexpr Pixel kGreen{0, 255, 0, 255};
  const auto image = [](const char* name) { return madeDocument(name)->fullImage(); };
  const auto whole = image("masked by background");
  EXPECT_EQ(pixelAt(*whole, 0, 0), kGreen);
  EXPECT_EQ(pixelAt(*whole, 3, 1), (Pixel{0, 102, 0, 102}));
  // The background covers the two middle pixels of the lower row.
  const auto smaller = image("masked by smaller background");
  for (int64_t x = 0; x < 4; ++x) {
    EXPECT_EQ(pixelAt(*smaller, x, 0), Pixel{}) << x;
    EXPECT_EQ(pixelAt(*smaller, x, 1)[3] > 0, x == 1 || x == 2) << x;
  }
  EXPECT_EQ(pixelAt(*image("not masked"), 0, 0), kGreen);
}

TEST(BackgroundPictures, AreSetReplacedAndRemoved) {
  const auto document = madeDocument("not masked");
  const auto old = document->backgroundDraw();
  document->setBackgroundImage(chart(true));
  EXPECT_EQ(document->backgroundDraw(), old);
  EXPECT_EQ(old->pathBounds(), NSMakeRect(0, 0, 4, 2));
  EXPECT_EQ(document->imageRefreshControl(), kRebuildBuffer);
  document->removeDraw(document->toppestDraw());
  EXPECT_EQ(maxDifference(*document->fullImage(), *chart(true)), 0);

  document->setBackgroundImage(nullptr);
  EXPECT_EQ(document->backgroundDraw(), nullptr);
  EXPECT_TRUE(document->allDraws().empty());
  document->setBackgroundImage(chart(true));
  ASSERT_NE(document->backgroundDraw(), nullptr);
  EXPECT_EQ(maxDifference(*document->fullImage(), *chart(true)), 0);
}
