// Filter draws of documents made by the independent writer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "document/DrawGroup.h"
#include "draw/image/BitmapHelpers.h"
#include "draw/image/DrawFilter.h"
#include "draw/image/DrawFilter2.h"
#include "draw/raster/ImageMask.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/color/NSColor.h"
#include "support/Archives.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Masks.h"
#include "support/ReferenceFilters.h"

namespace {

using Bitmap = std::shared_ptr<NSBitmapImageRep>;
using reference::Edge;
using reference::Rgb;
using testing::HasSubstr;
using testing::Not;

class Filters : public testing::Test {
 protected:
  template <class T = DrawFilter2>
  std::shared_ptr<T> titled(const std::string& title) const {
    auto draw = std::dynamic_pointer_cast<T>(drawTitled(*document_, title));
    EXPECT_NE(draw, nullptr) << title;
    return draw;
  }
  Bitmap shown(const std::string& title) const { return titled(title)->imageForDrawing(); }
  Bitmap plain() const { return titled("type 1")->image(); }

  std::shared_ptr<PaintManager> document_ = madeDocument("filters");
};

/// The settings as text, "key value" in the order in which they came.
std::string settingsOf(const ImageFilterMembers& draw) {
  const auto& settings = draw.filterSettings();
  if (settings == nullptr) return "none";
  std::string text;
  for (size_t i = 0; i < settings->count(); ++i) {
    const auto& key = dynamic_cast<const NSString&>(*settings->allKeys()[i]);
    const auto* number = dynamic_cast<const NSNumber*>(settings->allValues()[i].get());
    text += (i > 0 ? ", " : "") + key.string() + " " +
            (number != nullptr ? std::to_string(number->doubleValue()).substr(0, 4) : "?");
  }
  return text;
}

std::shared_ptr<NSDictionary> oneSetting(const char* key, double value) {
  auto settings = std::make_shared<NSMutableDictionary>();
  settings->setObject(NSNumber::numberWithDouble(value), key);
  return settings;
}

template <class T>
std::shared_ptr<T> throughArchive(const std::shared_ptr<T>& draw) {
  return std::dynamic_pointer_cast<T>(DrawBase::drawFromEncodedData(DrawBase::encodedData(draw)));
}

/// What a type with its default settings makes of a picture, and by how many levels the engine may
/// differ: two for what single precision does, more where a filter magnifies that.
struct Expected {
  Bitmap bitmap;
  int tolerance;
};

Expected expectedOf(int64_t type, const NSBitmapImageRep& picture) {
  switch (type) {
    case 0:
      return {reference::runColor(picture,
                                  [](const Rgb& c) {
                                    return Rgb{1 - c[0], 1 - c[1], 1 - c[2]};
                                  }),
              2};
    case 1:
      return {reference::blurred(picture, 4, Edge::kNearest), 2};
    case 2:
      return {reference::sharpened(picture, 0.4), 2};
    case 3:
      return {picture.copy(), 0};
    case 4:
      return {reference::crystallized(picture, 10), 1};
    case 5:
      return {reference::edges(picture, 50), 14};
    case 6:
      return {reference::edgeWork(picture, 0.5), 30};
    case 7:
      return {reference::pixellated(picture, 5), 1};
    case 8:
      return {reference::pointillized(picture, 2), 1};
    default:
      return {reference::runColor(picture,
                                  [](const Rgb& c) { return reference::controls(c, 0, 0, 1); }),
              2};
  }
}

/// Columns of the picture that are not near anything translucent.
Bitmap opaquePart(const Bitmap& bitmap) {
  return CropImage(bitmap, NSMakeRect(0, 0, 44, 48));
}

bool heedsScissor(int64_t type) {
  return type == 1 || type == 4 || (type >= 6 && type <= 8);
}

}  // namespace

TEST_F(Filters, EveryTypeWithItsDefaults) {
  for (int64_t type = 1; type <= 8; ++type) {
    SCOPED_TRACE(type);
    const auto expected = expectedOf(type, *plain());
    const auto result = shown("type " + std::to_string(type));
    EXPECT_LE(maxDifference(*opaquePart(result), *opaquePart(expected.bitmap)), expected.tolerance);
    // Next to translucent pixels, whose straight colours have 8 bits, edge work magnifies that.
    EXPECT_LE(maxDifference(*result, *expected.bitmap), type == 6 ? 100 : expected.tolerance);
    if (type == 3) continue;
    EXPECT_GT(maxDifference(*result, *plain()), 40);
  }
  // Without settings the picture is shown as it is; these two types have none.
  for (const char* title : {"type 0", "type 9", "type 10", "no type", "type -1"}) {
    EXPECT_EQ(maxDifference(*shown(title), *plain()), 0) << title;
  }
  EXPECT_LE(maxDifference(*shown("inverted"), *expectedOf(0, *plain()).bitmap), 2);
  EXPECT_LE(maxDifference(*shown("black and white"), *expectedOf(9, *plain()).bitmap), 2);
  EXPECT_EQ(shown("settings of an unknown type"), nullptr);
  EXPECT_EQ(shown("without picture"), nullptr);
}

TEST_F(Filters, OfferTheSettingsOfTheirType) {
  const auto namesOf = [this](const char* title) {
    std::vector<std::string> names;
    const auto settings = titled(title)->availableSettings();
    for (const auto& object : *settings) {
      const auto& setting = dynamic_cast<const NSDictionary&>(*object);
      names.push_back(setting.objectOfClass<NSString>("SetttingName")->string());
    }
    return names;
  };
  EXPECT_THAT(namesOf("inverted"), testing::IsEmpty());
  EXPECT_THAT(namesOf("type 1"), testing::ElementsAre("inputRadius"));
  EXPECT_THAT(namesOf("type 7"), testing::ElementsAre("inputScale"));
}

TEST_F(Filters, SettingsAsArchived) {
  const auto expect = [this](const char* title, int64_t type, const char* settings) {
    EXPECT_EQ(titled(title)->filterType(), type) << title;
    EXPECT_EQ(settingsOf(*titled(title)), settings) << title;
  };
  expect("type 0", 0, "none");
  expect("type 1", 1, "inputRadius 4.00");
  expect("type 2", 2, "inputSharpness 0.40");
  expect("type 3", 3,
         "inputEV 0.00, inputSaturation 1.00, inputContrast 1.00, inputBrightness 0.00, "
         "inputHighlightAmount 1.00, inputShadowAmount 0.00, inputIntensity 0.00, inputAngle 0.00, "
         "inputPower 1.00");
  expect("type 5", 5, "inputIntensity 50.0");
  expect("type 7", 7, "inputScale 5.00");
  expect("type 9", 9, "none");
  expect("type 10", 10, "none");
  expect("no type", 0, "none");
  expect("type -1", -1, "none");
  expect("inverted", 0, "inputRadius 1.00");
  expect("blur of 2.5", 1, "inputRadius 2.50");
  expect("no settings", 1, "none");
  expect("settings of another class", 1, "none");
  expect("settings of other filters", 7, "inputRadius 9.00, inputEV 2.00, inputScale 6.00");
  expect("texts as settings", 7, "inputScale ?, inputCenter 5.00");

  EXPECT_LE(
      maxDifference(*shown("blur of 2.5"), *reference::blurred(*plain(), 2.5, Edge::kNearest)), 2);
  EXPECT_EQ(maxDifference(*shown("no settings"), *plain()), 0);
  EXPECT_LE(maxDifference(*shown("settings of other filters"), *reference::pixellated(*plain(), 6)),
            1);
  EXPECT_LE(maxDifference(*shown("texts as settings"), *reference::pixellated(*plain(), 8)), 1)
      << "the platform's default";
}

// Six filters that take their own keys from one dictionary, each rounding to 8 bits.
TEST_F(Filters, AdjustColorsIsAChain) {
  const std::function<Rgb(const Rgb&)> stages[] = {
      [](const Rgb& c) {
        const double factor = std::exp2(0.7);
        return Rgb{c[0] * factor, c[1] * factor, c[2] * factor};
      },
      [](const Rgb& c) { return reference::controls(c, 1.4, -0.05, 1.2); },
      [](const Rgb& c) { return reference::highlightShadow(c, 0.6, 0.3); },
      [](const Rgb& c) { return reference::sepia(c, 0.4); },
      [](const Rgb& c) { return reference::hue(c, 0.9); },
      [](const Rgb& c) {
        return Rgb{std::pow(c[0], 0.8), std::pow(c[1], 0.8), std::pow(c[2], 0.8)};
      }};
  Bitmap expected = plain();
  for (const auto& stage : stages) expected = reference::runColor(*expected, stage);
  const auto result = shown("all colours");
  int far = 0;
  for (int64_t y = 0; y < 48; ++y) {
    // Opaque columns: a level of difference in one stage is some levels four stages later.
    for (int64_t x = 0; x < 48; ++x) {
      for (size_t c = 0; c < 3; ++c) {
        const int difference = std::abs(pixelAt(*result, x, y)[c] - pixelAt(*expected, x, y)[c]);
        EXPECT_LE(difference, 6) << x << " " << y;
        far += difference > 1 ? 1 : 0;
      }
    }
  }
  EXPECT_LT(far, 48 * 48 * 3 / 50);
}

// Inside the path the filtered picture, outside nothing, between them in proportion; types that do
// not extend the picture do not heed the path at all.
TEST_F(Filters, PathsAsScissors) {
  for (int64_t type = 0; type <= 9; ++type) {
    SCOPED_TRACE(type);
    const auto result = shown("type " + std::to_string(type) + " in a path");
    const auto expected = expectedOf(type, *plain());
    ASSERT_EQ(result->size(), plain()->size());
    for (int64_t y = 0; y < 48; ++y) {
      for (int64_t x = 0; x < 64; ++x) {
        // From (10.5, 8.5) upwards, 30 by 20.
        const auto covered = [](int64_t at, int64_t first, int64_t last) {
          return at < first || at > last ? 0.0 : (at == first || at == last ? 0.5 : 1.0);
        };
        const double coverage =
            heedsScissor(type) ? covered(x, 10, 40) * covered(47 - y, 8, 28) : 1;
        const Pixel whole = pixelAt(*expected.bitmap, x, y);
        for (size_t c = 0; c < 4; ++c) {
          ASSERT_NEAR(pixelAt(*result, x, y)[c], whole[c] * coverage,
                      coverage == 0 ? 0 : expected.tolerance + (coverage < 1 ? 1 : 0))
              << x << " " << y;
        }
      }
    }
  }
}

TEST_F(Filters, MasksAsScissors) {
  const auto whole = shown("type 1");
  // Twenty by sixteen pixels of the lower left corner; four by six of them are not in the mask.
  const auto inMask = [](int64_t x, int64_t y) {
    return x < 20 && y >= 32 && !(y >= 38 && y < 44 && x >= 8 && x < 12);
  };
  const auto result = shown("blur in a mask");
  ASSERT_EQ(result->size(), NSMakeSize(64, 48));
  const auto expected = makeBitmap(
      64, 48, [&](int64_t x, int64_t y) { return inMask(x, y) ? pixelAt(*whole, x, y) : Pixel{}; });
  EXPECT_EQ(maxDifference(*result, *expected), 0);
  // A draw of the part alone shows the part alone, in whatever size.
  const auto part = titled("blur in a mask");
  part->setBezierPath(NSBezierPath::bezierPathWithRect(NSMakeRect(5, 5, 40, 32)));
  part->setFilterSettings(part->filterSettings().get());
  const auto cropped = CropImage(expected, NSMakeRect(0, 0, 20, 16));
  EXPECT_EQ(maxDifference(*part->imageForDrawing(), *cropped), 0);
  EXPECT_EQ(shown("blur in a mask outside"), nullptr);
  EXPECT_EQ(maxDifference(*shown("edges in a mask"), *shown("type 5")), 0);
  EXPECT_EQ(titled("scissor of another class")->imageScissor(), nullptr);
  EXPECT_EQ(maxDifference(*shown("scissor of another class"), *whole), 0);
}

// On the canvas, with the picture itself below.
TEST(FiltersOnTheCanvas, BlurStaysInsideItsScissorAndSharpenDoesNot) {
  const auto document = [](const char* name) { return madeDocument(name)->fullImage(); };
  const auto plain = document("plain picture");
  const auto blur = document("blur over plain");
  const auto sharpen = document("sharpen over plain");
  int changedInside = 0;
  int changedBySharpen = 0;
  for (int64_t y = 0; y < 48; ++y) {
    for (int64_t x = 0; x < 64; ++x) {
      const Pixel before = pixelAt(*plain, x, y);
      const bool inside = x >= 10 && x <= 40 && 47 - y >= 8 && 47 - y <= 28;
      if (inside) {
        changedInside += pixelAt(*blur, x, y) != before ? 1 : 0;
      } else {
        ASSERT_EQ(pixelAt(*blur, x, y), before) << x << " " << y;
        changedBySharpen += pixelAt(*sharpen, x, y) != before ? 1 : 0;
      }
    }
  }
  EXPECT_GT(changedInside, 200);
  EXPECT_GT(changedBySharpen, 200);
}

TEST_F(Filters, LegacyDrawsConvertWithAllTheyHave) {
  const auto draw = titled("legacy");
  EXPECT_EQ(draw->className(), "DrawFilter2");
  EXPECT_EQ(draw->filterType(), 4);
  EXPECT_EQ(settingsOf(*draw), "inputRadius 8.00");
  ASSERT_NE(dynamic_cast<const NSBezierPath*>(draw->imageScissor().get()), nullptr);
  EXPECT_EQ(draw->opacity(), 60);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(0, 0, 64, 48));
  const auto expected = reference::crystallized(*draw->image(), 8);
  EXPECT_EQ(pixelAt(*draw->imageForDrawing(), 30, 30), pixelAt(*expected, 30, 30));
  EXPECT_EQ(pixelAt(*draw->imageForDrawing(), 5, 30), Pixel{});
  EXPECT_EQ(settingsOf(*titled("legacy with defaults")), "inputScale 5.00");

  // Two groups down it stays what it was, and draws itself.
  const auto& outer = dynamic_cast<const DrawGroup&>(*titled<DrawBase>("groups"));
  const auto& inner = dynamic_cast<const DrawGroup&>(*outer.draws()[0]);
  const auto deep = std::dynamic_pointer_cast<DrawFilter>(inner.draws()[0]);
  ASSERT_NE(deep, nullptr);
  EXPECT_EQ(settingsOf(*deep), "inputScale 6.00");
  EXPECT_EQ(pixelAt(*deep->imageForDrawing(), 30, 30),
            pixelAt(*reference::pixellated(*deep->image(), 6), 30, 30));
  EXPECT_EQ(pixelAt(*deep->imageForDrawing(), 5, 30), Pixel{});
}

TEST_F(Filters, ArchivesGoRound) {
  for (const auto& draw : document_->allDraws()) {
    const auto filter = std::dynamic_pointer_cast<DrawFilter2>(draw);
    if (filter == nullptr) continue;
    SCOPED_TRACE(*filter->layerTitle());
    const auto again = throughArchive(filter);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->filterType(), filter->filterType());
    // Settings that were dropped come back as the type's own.
    if (filter->filterSettings() != nullptr) {
      EXPECT_EQ(settingsOf(*again), settingsOf(*filter));
    }
    EXPECT_EQ(again->imageScissor() == nullptr, filter->imageScissor() == nullptr);
    const auto before = filter->imageForDrawing();
    if (before != nullptr && filter->filterSettings() != nullptr) {
      EXPECT_EQ(maxDifference(*again->imageForDrawing(), *before), 0);
    }
  }
  const auto listing = [this](const char* title) {
    return describeArchive(DrawBase::encodedData(titled(title))->bytes());
  };
  EXPECT_THAT(listing("type 0"), HasSubstr("FilterType: int8 0"));
  EXPECT_THAT(listing("type 0"), Not(HasSubstr("FilterSettings")));
  EXPECT_THAT(listing("type 0"), Not(HasSubstr("ImageScissor")));
  EXPECT_THAT(listing("type 2"), HasSubstr("'inputSharpness'"));
  EXPECT_THAT(listing("type 2"), HasSubstr("real64 0.4"));
  EXPECT_THAT(listing("type 1"), HasSubstr("NSMutableDictionary"));
  EXPECT_THAT(listing("blur in a mask"), HasSubstr("'ImageMask'"));
}

TEST_F(Filters, AttributesTravel) {
  const auto from = titled("blur of 2.5");
  const auto to = titled("type 7");
  const auto attributes = from->drawAttributes();
  EXPECT_EQ(attributes->objectOfClass<NSNumber>("DAKeyFilterType")->integerValue(), 1);
  EXPECT_NE(attributes->objectOfClass<NSDictionary>("DAKeyFilterSettings"), from->filterSettings());
  EXPECT_EQ(titled("type 0")->drawAttributes()->objectForKey("DAKeyFilterSettings"), nullptr);
  const auto before = to->imageForDrawing();
  EXPECT_TRUE(to->setDrawAttributes(*attributes));
  EXPECT_EQ(to->filterType(), 1);
  EXPECT_EQ(settingsOf(*to), "inputRadius 2.50");
  EXPECT_EQ(maxDifference(*to->imageForDrawing(), *from->imageForDrawing()), 0);
  EXPECT_GT(maxDifference(*to->imageForDrawing(), *before), 40);

  DrawFilter legacy;
  legacy.setFilterSettings(oneSetting("inputScale", 3).get());
  DrawFilter other;
  EXPECT_TRUE(other.setDrawAttributes(*legacy.drawAttributes()));
  EXPECT_EQ(settingsOf(other), "inputScale 3.00");
}

TEST_F(Filters, TheEffectIsKeptUntilSomethingChanges) {
  auto picture = randomBitmap(30, 20, 3);
  const auto draw = DrawFilter2::initWithImage(picture, nullptr, 7);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(0, 0, 30, 20));
  EXPECT_EQ(draw->filterName(), "Pixellate");
  const auto* first = draw->imageForDrawing().get();
  EXPECT_EQ(draw->imageForDrawing().get(), first);
  EXPECT_FALSE(draw->isNewSettings(oneSetting("inputScale", 5).get()));
  EXPECT_TRUE(draw->isNewSettings(oneSetting("inputScale", 6).get()));
  EXPECT_TRUE(draw->isNewSettings(oneSetting("inputRadius", 5).get()));
  EXPECT_TRUE(draw->isNewSettings(nullptr));

  draw->setFilterSettings(oneSetting("inputScale", 3).get());
  EXPECT_LE(maxDifference(*draw->imageForDrawing(), *reference::pixellated(*picture, 3)), 2);
  picture = randomBitmap(10, 10, 4);
  draw->setImage(picture);
  EXPECT_LE(maxDifference(*draw->imageForDrawing(), *reference::pixellated(*picture, 3)), 2);
  draw->setFilterSettings(nullptr);
  EXPECT_EQ(draw->imageForDrawing(), picture);
}

TEST_F(Filters, FlippingMirrorsWhatIsShown) {
  const auto picture = randomBitmap(30, 20, 5);
  const auto draw = DrawFilter2::initWithImage(picture, nullptr, 5);
  const auto shown = draw->imageForDrawing();
  draw->flip(true);
  EXPECT_EQ(maxDifference(*draw->image(), *ImageFliped(picture, true)), 0);
  EXPECT_EQ(maxDifference(*draw->imageForDrawing(), *ImageFliped(shown, true)), 0);
  // Edges are not symmetric: filtering the mirrored picture would give another one.
  draw->setFilterSettings(oneSetting("inputIntensity", 50).get());
  EXPECT_GT(maxDifference(*draw->imageForDrawing(), *ImageFliped(shown, true)), 40);
}

TEST_F(Filters, MadeFromBitmapsSelectionsAndDraws) {
  const auto picture = randomBitmap(30, 20, 6);
  const auto path = NSBezierPath::bezierPathWithRect({{2, 2}, {9, 9}});
  EXPECT_EQ(DrawFilter2::initWithImage(picture, path, 1)->imageScissor(), path);
  const auto mask = maskOf({"##", "##"}, 3, 3);
  EXPECT_EQ(DrawFilter2::initWithImage(picture, mask, 1)->imageScissor(), mask);
  EXPECT_EQ(DrawFilter2::initWithImage(picture, picture, 1)->imageScissor(), nullptr);
  EXPECT_EQ(settingsOf(*DrawFilter2::initWithImage(picture, path, 0)), "none");

  const auto source = DrawImage2::initWithImage(picture);
  source->setBezierPathWithBounds({{5, 6}, {60, 40}});
  source->setXRadius(4, 5);
  source->setOpacity(30);
  source->setRotateDegree(25);
  const auto filter = DrawFilter2::initWithDraw(*source, 8);
  EXPECT_EQ(filter->pathBounds(), NSMakeRect(5, 6, 60, 40));
  EXPECT_EQ(filter->xRadius(), 4);
  EXPECT_EQ(filter->yRadius(), 5);
  EXPECT_EQ(filter->opacity(), 30);
  EXPECT_EQ(filter->rotateDegree(), 25);
  EXPECT_EQ(filter->image(), picture);
  EXPECT_EQ(settingsOf(*filter), "inputRadius 2.00");
  // A filter on top of a filter sees what that one shows.
  const auto second = DrawFilter2::initWithDraw(*filter, 3);
  EXPECT_EQ(second->image(), filter->imageForDrawing());
}
