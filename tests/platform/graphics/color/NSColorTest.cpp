#include <gtest/gtest.h>

#include <cmath>

#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/graphics/GraphicsClasses.h"
#include "platform/graphics/color/NSColor.h"
#include "support/Archives.h"

namespace {

using Space = NSColor::Space;

struct Expected {
  const char* key;
  double red, green, blue, alpha;
  Space space;
};

void expectColors(NSCoder& coder, std::span<const Expected> cases, double tolerance) {
  for (const Expected& e : cases) {
    const auto color = coder.decodeObjectOfClass<NSColor>(e.key);
    ASSERT_NE(color, nullptr) << e.key;
    EXPECT_NEAR(color->redComponent(), e.red, tolerance) << e.key;
    EXPECT_NEAR(color->greenComponent(), e.green, tolerance) << e.key;
    EXPECT_NEAR(color->blueComponent(), e.blue, tolerance) << e.key;
    EXPECT_NEAR(color->alphaComponent(), e.alpha, tolerance) << e.key;
    EXPECT_EQ(color->space(), e.space) << e.key;
  }
}

std::shared_ptr<NSColor> throughArchive(const std::shared_ptr<NSColor>& color) {
  return std::dynamic_pointer_cast<NSColor>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(color)));
}

class NSColorArchive : public testing::Test {
 protected:
  void SetUp() override { registerGraphicsClasses(); }
};

}  // namespace

TEST_F(NSColorArchive, SpacesThatShareTheirNumbers) {
  NSKeyedUnarchiver coder(madeArchive("good/colors"));
  constexpr double k23 = 0.6666666667;
  const Expected cases[] = {
      {"calibrated", 0.2784313858, 0.5, 1, 1, Space::kCalibratedRGB},
      {"calibrated alpha", 0.25, 0.5, 0.75, 0.125, Space::kCalibratedRGB},
      {"device", 0.25, 0.5, 0.75, 1, Space::kDeviceRGB},
      {"generic", 0.25, 0.5, 0.75, 1, Space::kCalibratedRGB},
      {"srgb", 0.25, 0.5, 0.75, 0.5, Space::kSRGB},
      {"extended", 1, 0.5, 0, 1, Space::kSRGB},
      {"white", k23, k23, k23, 1, Space::kCalibratedWhite},
      {"device white", 0.5, 0.5, 0.5, 0.25, Space::kDeviceWhite},
      {"gamma22", k23, k23, k23, 0.75, Space::kGamma22White},
      {"clear", 0, 0, 0, 0, Space::kCalibratedWhite},
      {"generic gray", 0.5, 0.5, 0.5, 1, Space::kCalibratedWhite},
      {"extended gray", 0.5, 0.5, 0.5, 1, Space::kGamma22White},
      {"cmyk", 0.375, 0.25, 0.5, 1, Space::kSRGB},
      {"cymk", 0.75, 0.75, 0.75, 0.5, Space::kSRGB},
      {"custom cmyk", 1, 1, 0, 0.5, Space::kSRGB},
      {"no nul", 1, 0.5, 0, 1, Space::kCalibratedRGB},
      {"plain object", 1, 0.5, 0, 1, Space::kCalibratedRGB},
      {"text object", 1, 0.5, 0, 1, Space::kCalibratedRGB},
      {"catalog", 0, 1, 0, 1, Space::kCalibratedRGB},
      {"icc ignored", 0.5, 0.4, 0.3, 1, Space::kSRGB},
  };
  expectColors(coder, cases, 1e-15);
}

TEST_F(NSColorArchive, WideGamuts) {
  // Worked out from the chromaticities by way of XYZ and the rounded matrix of the sRGB standard.
  NSKeyedUnarchiver coder(madeArchive("good/colors"));
  const Expected cases[] = {
      {"p3", 0.519219, 0.395096, 0.284507, 1, Space::kSRGB},
      {"p3 red", 1, 0, 0, 1, Space::kSRGB},
      {"dci", 0.457114, 0.330968, 0.214200, 1, Space::kSRGB},
      {"adobe", 0.538436, 0.400625, 0.289485, 1, Space::kSRGB},
      {"linear", 0.735357, 0.537099, 0, 1, Space::kSRGB},
  };
  expectColors(coder, cases, 2e-4);
}

TEST_F(NSColorArchive, Profiles) {
  NSKeyedUnarchiver coder(madeArchive("good/colors"));
  // The same space as by number, here through its profile; lightness 50 and gamma 1.8 by hand.
  const Expected cases[] = {
      {"icc", 0.538436, 0.400625, 0.289485, 0.5, Space::kSRGB},
      {"icc wrapped", 0.538436, 0.400625, 0.289485, 1, Space::kSRGB},
      {"icc gray", 0.572307, 0.572307, 0.572307, 1, Space::kGamma22White},
      {"icc cmyk", 0.466327, 0.466327, 0.466327, 1, Space::kSRGB},
      // Unusable: the older text is a conversion that can be used.
      {"icc truncated", 0, 1, 0, 1, Space::kCalibratedRGB},
      {"icc header", 0, 1, 0, 1, Space::kCalibratedRGB},
      {"icc empty", 0, 1, 0, 1, Space::kCalibratedRGB},
  };
  expectColors(coder, cases, 2e-3);
}

TEST_F(NSColorArchive, DamagedColors) {
  NSKeyedUnarchiver coder(madeArchive("good/colors"));
  const Expected cases[] = {
      {"tiny", 7.043773371e-05, 0, 1, 1, Space::kCalibratedRGB},
      {"junk", 0.5, 0, 0, 1, Space::kCalibratedRGB},
      {"not numbers", 0, 0, 0.5, 1, Space::kCalibratedRGB},
      {"many", 0.5, 0.5, 0.5, 0.5, Space::kCalibratedRGB},
      {"none", 0, 0, 0, 1, Space::kCalibratedWhite},
      {"empty", 0, 0, 0, 1, Space::kCalibratedWhite},
      {"nothing", 0, 0, 0, 1, Space::kCalibratedWhite},
      {"unknown space", 0.5, 0.5, 0.5, 1, Space::kCalibratedWhite},
      {"wrong key", 0.5, 0.5, 0.5, 1, Space::kCalibratedWhite},
      {"space is text", 0, 1, 0, 1, Space::kCalibratedRGB},
      {"wrong count", 0, 1, 0, 1, Space::kCalibratedRGB},
      {"unknown custom", 0, 1, 0, 1, Space::kCalibratedRGB},
      {"catalog alone", 0, 0, 0, 1, Space::kCalibratedWhite},
      {"catalog light", 1, 1, 1, 1, Space::kCalibratedWhite},
      {"catalog loop", 1, 1, 1, 1, Space::kCalibratedWhite},
  };
  expectColors(coder, cases, 1e-15);
}

TEST_F(NSColorArchive, PatternsKeepTheirPicture) {
  NSKeyedUnarchiver coder(madeArchive("good/colors"));
  const auto color = coder.decodeObjectOfClass<NSColor>("pattern");
  ASSERT_NE(color->patternImage(), nullptr);
  EXPECT_EQ(color->patternImage()->className(), "NSArray");
  const auto again = throughArchive(color);
  EXPECT_EQ(again->space(), Space::kPattern);
  EXPECT_EQ(again->patternImage()->className(), "NSArray");
}

TEST_F(NSColorArchive, FormsOnDisk) {
  const auto rootOf = [](const std::shared_ptr<NSColor>& color) {
    const std::string listing =
        describeArchive(NSKeyedArchiver::archivedDataWithRootObject(color)->bytes());
    const size_t begin = listing.find("  1 ") + 4;
    return listing.substr(begin, listing.find('\n', begin) - begin);
  };
  // "1 0 0", NUL.
  EXPECT_EQ(rootOf(NSColor::redColor()),
            "{NSRGB: data(6) 312030203000, NSColorSpace: int8 1, $class: ->2}");
  // "0.25", blank, "0.5", NUL.
  EXPECT_EQ(rootOf(NSColor::colorWithDeviceWhite(0.25, 0.5)),
            "{NSWhite: data(9) 302e323520302e3500, NSColorSpace: int8 4, $class: ->2}");
  // 71/255 with ten digits: "0.2784313725 0 0".
  EXPECT_EQ(
      rootOf(NSColor::colorWithDeviceRed(71.0 / 255, 0, 0, 1)),
      "{NSRGB: data(17) 302e323738343331333732352030203000, NSColorSpace: int8 2, $class: ->2}");
}

TEST_F(NSColorArchive, CustomSpacesCarryBothTexts) {
  const auto list = [](const std::shared_ptr<NSColor>& color) {
    return describeArchive(NSKeyedArchiver::archivedDataWithRootObject(color)->bytes());
  };
  const std::string srgb = list(NSColor::colorWithSRGBRed(1, 1, 1, 0.5));
  EXPECT_NE(srgb.find("NSCustomColorSpace: ->2, NSComponents: data(9) 312031203120302e35"),
            std::string::npos)
      << srgb;
  EXPECT_NE(srgb.find("2 {NSID: int8 7, $class: ->3}"), std::string::npos) << srgb;
  NSKeyedUnarchiver coder(madeArchive("good/colors"));
  const std::string gray = list(coder.decodeObjectOfClass<NSColor>("gamma22"));
  // A recorded pair: 0.6666666667 in this space stands beside 0.602715373 in the calibrated one
  // (single precision).
  const auto hex = [](const std::string& text) {
    std::string digits;
    for (const char c : text) {
      constexpr char kDigits[] = "0123456789abcdef";
      digits += {kDigits[c >> 4], kDigits[c & 15]};
    }
    return digits;
  };
  EXPECT_NE(gray.find("NSWhite: data(18) " + hex("0.602715")), std::string::npos) << gray;
  EXPECT_NE(gray.find("NSComponents: data(17) " + hex("0.6666666667 0.75")), std::string::npos)
      << gray;
  EXPECT_NE(gray.find("{NSID: int8 9, NSModel: int8 0, "), std::string::npos) << gray;
}

TEST_F(NSColorArchive, RecordedBytes) {
  // Written again, a recorded archive is the same to the last byte.
  const auto recorded = madeArchive("good/recorded_color");
  const auto color =
      std::dynamic_pointer_cast<NSColor>(NSKeyedUnarchiver::unarchiveObjectWithData(recorded));
  EXPECT_TRUE(color->isEqual(*NSColor::redColor()));
  EXPECT_TRUE(NSKeyedArchiver::archivedDataWithRootObject(color)->isEqual(*recorded));
}

TEST_F(NSColorArchive, RoundTrips) {
  const std::shared_ptr<NSColor> colors[] = {
      NSColor::colorWithCalibratedRed(0.25, 0.5, 0.75, 0.5),
      NSColor::colorWithDeviceRed(0.25, 0.5, 0.75, 1),
      NSColor::colorWithSRGBRed(0.125, 0, 1, 1),
      NSColor::colorWithCalibratedWhite(0.375, 1),
      NSColor::colorWithDeviceWhite(0.375, 0),
      NSColor::clearColor(),
  };
  for (const auto& color : colors) EXPECT_TRUE(throughArchive(color)->isEqual(*color));
}

TEST(NSColor, ComponentsAreClipped) {
  const auto color = NSColor::colorWithSRGBRed(-1, 2, NAN, INFINITY);
  EXPECT_EQ(color->redComponent(), 0);
  EXPECT_EQ(color->greenComponent(), 1);
  EXPECT_EQ(color->blueComponent(), 0);
  EXPECT_EQ(color->alphaComponent(), 1);
  EXPECT_EQ(color->colorWithAlphaComponent(0.25)->alphaComponent(), 0.25);
  EXPECT_EQ(color->alphaComponent(), 1);
  const auto ink = NSColor::colorWithDeviceCyan(1, 0.5, 0, 0.5, 0.75);
  EXPECT_EQ(ink->redComponent(), 0);
  EXPECT_EQ(ink->greenComponent(), 0.25);
  EXPECT_EQ(ink->blueComponent(), 0.5);
  EXPECT_FALSE(color->isGray());
  EXPECT_TRUE(NSColor::grayColor()->isGray());
  EXPECT_FALSE(NSColor::whiteColor()->isEqual(*NSColor::colorWithDeviceWhite(1, 1)));
}
