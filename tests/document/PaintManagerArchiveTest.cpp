#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/core/PaintManagerContext.h"
#include "draw/image/DrawImage2.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Archives.h"
#include "support/Documents.h"

namespace {

int64_t errorOf(const std::shared_ptr<NSData>& data) {
  int64_t error = -1;
  const auto document = PaintManager::paintMgrWithPaintData(data, nullptr, &error);
  EXPECT_EQ(document != nullptr, error == kPaintDataSuccess);
  return error;
}

}  // namespace

TEST(PaintManagerArchive, ErrorCodes) {
  struct Case {
    const char* name;
    int64_t error;
  };
  const Case cases[] = {
      {"empty", kPaintDataSuccess},
      {"version 22", kPaintDataSuccess},
      {"no version", kPaintDataSuccess},
      {"version -1", kPaintDataSuccess},
      {"version 23", kPaintDataNewerFormat},
      {"version 23 and broken", kPaintDataNewerFormat},
      {"version text", kPaintDataUnreadable},
      {"largest canvas", kPaintDataSuccess},
      {"thin canvas", kPaintDataSuccess},
      {"too large canvas", kPaintDataCanvasTooLarge},
      {"negative canvas", kPaintDataSuccess},
      {"nan canvas", kPaintDataSuccess},
      {"huge numbers canvas", kPaintDataCanvasTooLarge},
      {"canvas beyond 32 bits", kPaintDataCanvasTooLarge},
      {"no canvas beyond 32 bits", kPaintDataSuccess},
      {"no paint data", kPaintDataUnreadable},
      {"inner is no archive", kPaintDataUnreadable},
      {"inner is an outer archive", kPaintDataUnreadable},
      {"inner root of another class", kPaintDataUnreadable},
      {"inner root of an unknown class", kPaintDataUnreadable},
      {"unknown draw", kPaintDataUnreadable},
      {"group chain 40", kPaintDataSuccess},
      {"group chain 10000", kPaintDataUnreadable},
      {"group bomb", kPaintDataSuccess},
      {"self containing group", kPaintDataSuccess},
  };
  for (const Case& c : cases) EXPECT_EQ(errorOf(madeDocumentData(c.name)), c.error) << c.name;

  EXPECT_EQ(errorOf(nullptr), kPaintDataUnreadable);
  EXPECT_EQ(errorOf(std::make_shared<NSData>()), kPaintDataUnreadable);
  const std::string text = "bplist00 is how it begins, but not how it goes on";
  EXPECT_EQ(errorOf(NSData::dataWithVector({text.begin(), text.end()})), kPaintDataUnreadable);
}

TEST(PaintManagerArchive, TruncatedFilesAreUnreadable) {
  const auto whole = madeDocumentData("all classes");
  for (size_t length = 0; length < whole->length(); length += 16) {
    EXPECT_EQ(errorOf(whole->subdataWithRange({0, length})), kPaintDataUnreadable) << length;
  }
  std::vector<uint8_t> trailing(whole->bytes().begin(), whole->bytes().end());
  trailing.push_back(0);
  EXPECT_EQ(errorOf(NSData::dataWithVector(trailing)), kPaintDataUnreadable);
}

TEST(PaintManagerArchive, Detection) {
  EXPECT_TRUE(PaintManager::detectPaintData(madeDocumentData("empty")));
  EXPECT_TRUE(PaintManager::detectPaintData(madeDocumentData("version 23")));
  EXPECT_TRUE(PaintManager::detectPaintData(madeDocumentData("inner is no archive")));
  EXPECT_FALSE(PaintManager::detectPaintData(madeDocumentData("no paint data")));
  EXPECT_FALSE(PaintManager::detectPaintData(nullptr));
  EXPECT_EQ(PaintManager::factsOfPaintData(madeDocumentData("version 23"))->version, 23);
  EXPECT_EQ(PaintManager::factsOfPaintData(madeDocumentData("no version"))->version, 0);
  EXPECT_FALSE(PaintManager::factsOfPaintData(madeDocumentData("no paint data")));
}

TEST(PaintManagerArchive, CanvasSizeIsTruncatedText) {
  EXPECT_EQ(madeDocument("empty")->size(), NSMakeSize(100, 50));
  EXPECT_EQ(madeDocument("fractional canvas")->size(), NSMakeSize(100, 50));
  EXPECT_EQ(madeDocument("no canvas size")->size(), NSZeroSize);
  EXPECT_EQ(madeDocument("negative canvas")->size(), NSMakeSize(-100, 50));
  EXPECT_EQ(madeDocument("nan canvas")->size(), NSZeroSize);
  EXPECT_EQ(madeDocument("no canvas beyond 32 bits")->size(), NSMakeSize(2147483647, 0));
}

TEST(PaintManagerArchive, ResolutionIsStoredOnlyWhenNotZero) {
  const auto resolutionOf = [](const char* name) {
    double resolution = 72;
    PaintManager::paintMgrWithPaintData(madeDocumentData(name), &resolution, nullptr);
    return resolution;
  };
  EXPECT_EQ(resolutionOf("resolution 144"), 144);
  EXPECT_EQ(resolutionOf("resolution 0"), 72);
  EXPECT_EQ(resolutionOf("empty"), 72);
  EXPECT_TRUE(std::isnan(resolutionOf("resolution nan")));
  EXPECT_EQ(resolutionOf("resolution of a damaged file"), 144);
}

TEST(PaintManagerArchive, EveryDrawClassDecodesAsItself) {
  const auto document = madeDocument("all classes");
  std::vector<std::string> names;
  for (const auto& draw : document->allDraws()) names.emplace_back(draw->className());
  // The two legacy classes have been replaced.
  const std::vector<std::string> expected = {"DrawAirbrush",
                                             "DrawBase",
                                             "DrawBezierPath",
                                             "DrawBezierText",
                                             "DrawBrokenLine",
                                             "DrawClear",
                                             "DrawCrop",
                                             "DrawCurve",
                                             "DrawEllipse",
                                             "DrawEllipseMessage",
                                             "DrawEllipseSelection",
                                             "DrawEraser",
                                             "DrawFill",
                                             "DrawFilter2",
                                             "DrawFilter2",
                                             "DrawFreePolygon",
                                             "DrawGradient",
                                             "DrawGroup",
                                             "DrawImage2",
                                             "DrawImage2",
                                             "DrawLassoSelection",
                                             "DrawLine",
                                             "DrawMagicSelection",
                                             "DrawOldPolygonSelection",
                                             "DrawPDF",
                                             "DrawPen",
                                             "DrawPolygonSelection",
                                             "DrawRectAppleLogo",
                                             "DrawRectBookmark",
                                             "DrawRectButterfly",
                                             "DrawRectCamera",
                                             "DrawRectClock",
                                             "DrawRectCloud",
                                             "DrawRectEye",
                                             "DrawRectFolder",
                                             "DrawRectHeart",
                                             "DrawRectHome",
                                             "DrawRectLightning",
                                             "DrawRectLocation",
                                             "DrawRectMail",
                                             "DrawRectMessage",
                                             "DrawRectPerson",
                                             "DrawRectPicture",
                                             "DrawRectPolygon",
                                             "DrawRectRefresh",
                                             "DrawRectSelection",
                                             "DrawRectShape",
                                             "DrawRectSignal",
                                             "DrawRectStar",
                                             "DrawRectWaterDrip",
                                             "DrawRectangle",
                                             "DrawRectiMac",
                                             "DrawRoundRectangle",
                                             "DrawSVG",
                                             "DrawText"};
  EXPECT_EQ(names, expected);
  for (const auto& draw : document->allDraws()) {
    EXPECT_EQ(draw->pathBounds(), NSMakeRect(8, 8, 16, 16)) << draw->className();
  }
}

TEST(PaintManagerArchive, ClassChainsOfDrawsAreTheFormats) {
  struct Case {
    const char* name;
    const char* superclass;
  };
  const Case cases[] = {{"DrawRoundRectangle", "DrawRectangle"},
                        {"DrawText", "DrawRoundRectangle"},
                        {"DrawBezierText", "DrawText"},
                        {"DrawImage2", "DrawRoundRectangle"},
                        {"DrawImage", "DrawRectangle"},
                        {"DrawFilter", "DrawImage"},
                        {"DrawFilter2", "DrawImage2"},
                        {"DrawPDF", "DrawImage2"},
                        {"DrawSVG", "DrawImage2"},
                        {"DrawEraser", "DrawPen"},
                        {"DrawCrop", "DrawRectSelection"},
                        {"DrawRectStar", "DrawRectShape"},
                        {"DrawEllipseMessage", "DrawRectShape"},
                        {"DrawLine", "DrawBase"},
                        {"DrawEllipseSelection", "DrawEllipse"},
                        {"DrawGradient", "DrawRectangle"},
                        {"DrawPolygonSelection", "DrawBezierPath"},
                        {"DrawOldPolygonSelection", "DrawFreePolygon"}};
  madeDocument("empty");  // makes the classes known
  for (const Case& c : cases) {
    const NSClass* found = NSClassFromString(c.name);
    ASSERT_NE(found, nullptr) << c.name;
    EXPECT_EQ(found->superclass->name, c.superclass) << c.name;
  }
  EXPECT_EQ(NSClassFromString("PaintManagerContext"), nullptr) << "is never archived";
}

TEST(PaintManagerArchive, BackgroundIsTheFirstDrawWhenItIsAPicture) {
  const auto document = madeDocument("background");
  ASSERT_NE(document->backgroundDraw(), nullptr);
  EXPECT_EQ(document->backgroundDraw(), document->allDraws()[0]);
  EXPECT_EQ(document->allDraws().size(), 2U);
  EXPECT_NE(madeDocument("background in a text")->backgroundDraw(), nullptr) << "a subclass counts";
  EXPECT_EQ(madeDocument("background flag off")->backgroundDraw(), nullptr);
  EXPECT_EQ(madeDocument("background of another class")->backgroundDraw(), nullptr);
}

TEST(PaintManagerArchive, LegacyPicturesAreConvertedOneGroupDeep) {
  const auto document = madeDocument("nested groups");
  EXPECT_EQ(document->allDraws()[0]->className(), "DrawImage2");
  EXPECT_EQ(document->allDraws()[0]->layerTitle(), "top");
  const auto* group = dynamic_cast<const DrawGroup*>(document->allDraws()[1].get());
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->draws()[0]->className(), "DrawImage2");
  EXPECT_EQ(group->draws()[0]->group(), group);
  EXPECT_EQ(group->draws()[0]->pathBounds(), NSMakeRect(0, 0, 8, 8));
  const auto* inner = dynamic_cast<const DrawGroup*>(group->draws()[1].get());
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(inner->draws()[0]->className(), "DrawImage");
}

TEST(PaintManagerArchive, EveryDrawHasOnePlace) {
  const auto cyclic = madeDocument("self containing group");
  ASSERT_EQ(cyclic->allDraws().size(), 1U);
  const auto* group = dynamic_cast<const DrawGroup*>(cyclic->allDraws()[0].get());
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->draws().size(), 1U);

  const auto bomb = madeDocument("group bomb");
  size_t depth = 0;
  for (const auto* draws = &bomb->allDraws(); draws->size() == 1; ++depth) {
    const auto* inner = dynamic_cast<const DrawGroup*>((*draws)[0].get());
    if (inner == nullptr) break;
    draws = &inner->draws();
  }
  EXPECT_EQ(depth, 9U);
}

TEST(PaintManagerArchive, WritesWhatItReads) {
  auto document = madeDocument("records");
  document->setBackgroundColor(NSColor::colorWithCalibratedRed(0.25, 0.5, 1, 0.5));
  document->setMaskBackground(true);
  const auto data = document->paintDataWithResolution(300);

  double resolution = 0;
  const auto again = PaintManager::paintMgrWithPaintData(data, &resolution, nullptr);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(resolution, 300);
  EXPECT_EQ(again->size(), document->size());
  EXPECT_TRUE(again->maskBackground());
  ASSERT_NE(again->backgroundColor(), nullptr);
  EXPECT_EQ(again->backgroundColor()->alphaComponent(), 0.5);
  ASSERT_EQ(again->allDraws().size(), document->allDraws().size());
  // What was written and read once is written the same from then on, byte for byte.
  const auto inner = [](const std::shared_ptr<const NSData>& outer) {
    return NSKeyedUnarchiver(outer).decodeObjectOfClass<NSData>("PaintData");
  };
  const auto second = again->paintDataWithResolution(300);
  const auto third = PaintManager::paintMgrWithPaintData(second, nullptr, nullptr);
  EXPECT_TRUE(inner(second)->isEqual(*inner(third->paintDataWithResolution(300))));
}

TEST(PaintManagerArchive, DrawsLearnWhatSavedTheFile) {
  struct Case {
    std::optional<double> scale;
    std::optional<int64_t> version;
    double expectedScale;
    int64_t expectedVersion;
  };
  const Case cases[] = {{2.0, 19, 2, 19}, {2.0, {}, 2, 22}, {{}, 19, 1, 19}};
  for (const Case& c : cases) {
    std::shared_ptr<PaintManagerContext> context;
    const SampleCoding coding(
        [&](Sample&, NSCoder& coder) {
          EXPECT_EQ(paintMangerContext(coder), nullptr);
          PaintManager().initWithCoder(coder);
          context = paintMangerContext(coder);
          return true;
        },
        [&](NSCoder& coder) {
          if (c.scale) coder.encodeDouble(*c.scale, "BackingScale");
          if (c.version) coder.encodeInteger(*c.version, "Version");
        });
    NSKeyedUnarchiver::unarchiveObjectWithData(
        NSKeyedArchiver::archivedDataWithRootObject(std::make_shared<Sample>()));
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(context->savedBackingScale(), c.expectedScale);
    EXPECT_EQ(context->savedVersion(), c.expectedVersion);
  }
}

TEST(PaintManagerArchive, OuterArchiveHasTheKindsThatOtherReadersExpect) {
  const auto document = madeDocument("red");
  const std::string listing = describeArchive(document->paintDataWithResolution(0)->bytes());
  for (const char* part : {"PaintData: ->", "Version: int8 22", "ObjectsCount: int8 0",
                           "SavedDate: real64", "CannvasSize: ->", "'{100, 50}'", "AppName: ->"}) {
    EXPECT_NE(listing.find(part), std::string::npos) << part << " in\n" << listing;
  }
  EXPECT_EQ(listing.find("Resolution"), std::string::npos);
}
