#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "draw/image/DrawFilter2.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"

namespace {

using testing::ElementsAre;

std::string textOf(const std::shared_ptr<NSObject>& object) {
  if (object == nullptr) return "-";
  if (const auto* text = dynamic_cast<const NSString*>(object.get())) return text->string();
  const auto& number = dynamic_cast<const NSNumber&>(*object);
  std::ostringstream out;
  // Integers and reals are different kinds of numbers in an archive.
  if (number.isReal()) {
    out << number.doubleValue() << "r";
  } else {
    out << number.integerValue();
  }
  return out.str();
}

/// Name, display name, greatest, middle, least and default value of each setting; a dash for a key
/// that is not there.
std::vector<std::string> settingsOf(int64_t type) {
  std::vector<std::string> rows;
  const auto settings = DrawFilter2::availableSettingsForFilter(type);
  for (const auto& object : *settings) {
    const auto& setting = dynamic_cast<const NSDictionary&>(*object);
    std::string row;
    for (const char* key : {"SetttingName", "SetttingDisplayName", "SetttingMaxValue",
                            "SetttingMidValue", "SetttingMinValue", "SetttingDefaultValue"}) {
      row += textOf(setting.objectForKey(key)) + "|";
    }
    rows.push_back(row);
  }
  return rows;
}

TEST(FilterCatalogue, Settings) {
  EXPECT_THAT(settingsOf(0), ElementsAre());
  EXPECT_THAT(settingsOf(1), ElementsAre("inputRadius||40|-|-|4|"));
  EXPECT_THAT(settingsOf(2), ElementsAre("inputSharpness||10|-|-|0.4r|"));
  EXPECT_THAT(settingsOf(3),
              ElementsAre("inputEV|Exposure|3|0|-3|0|", "inputSaturation|Saturation|5|1|0.01r|1|",
                          "inputContrast|Contrast|2|1|0.05r|1|",
                          "inputBrightness|Brightness|0.8r|-|-0.8r|0|",
                          "inputHighlightAmount|Highlights|1|-|0|1|",
                          "inputShadowAmount|Shadows|1|-|-1|0|", "inputIntensity|Sepia|5|-|-5|0|",
                          "inputAngle|Hue|6.2r|-|-|0|", "inputPower|Gamma|3|1|0.2r|1|"));
  EXPECT_THAT(settingsOf(4), ElementsAre("inputRadius||100|-|1|10|"));
  EXPECT_THAT(settingsOf(5), ElementsAre("inputIntensity||500|-|0.1r|50|"));
  EXPECT_THAT(settingsOf(6), ElementsAre("inputRadius||3|-|0.01r|0.5r|"));
  EXPECT_THAT(settingsOf(7), ElementsAre("inputScale||20|-|1|5|"));
  EXPECT_THAT(settingsOf(8), ElementsAre("inputRadius||20|-|1|2|"));
  for (const int64_t type : {int64_t{9}, int64_t{10}, int64_t{-1}, INT64_MAX, INT64_MIN}) {
    EXPECT_THAT(settingsOf(type), ElementsAre()) << type;
  }
}

TEST(FilterCatalogue, Defaults) {
  for (int64_t type = -1; type <= 10; ++type) {
    const auto defaults = DrawFilter2::defaultSettingsForFilter(type);
    const auto available = DrawFilter2::availableSettingsForFilter(type);
    ASSERT_EQ(defaults == nullptr, available->count() == 0) << type;
    if (defaults == nullptr) continue;
    EXPECT_EQ(defaults->count(), available->count());
    for (const auto& object : *available) {
      const auto& setting = dynamic_cast<const NSDictionary&>(*object);
      EXPECT_EQ(textOf(defaults->objectForKey(*setting.objectForKey("SetttingName"))),
                textOf(setting.objectForKey("SetttingDefaultValue")));
    }
  }
}

TEST(FilterCatalogue, Names) {
  std::vector<std::string> filters;
  std::vector<std::string> names;
  std::vector<int64_t> extended;
  for (int64_t type = 0; type <= 9; ++type) {
    filters.emplace_back(DrawFilter2::CIFilterNameWithType(type).value_or("nothing"));
    names.push_back(DrawFilter2::nameOfFilterWithType(type));
    if (DrawFilter2::extendImageWhenApplyFilter(type)) extended.push_back(type);
  }
  EXPECT_THAT(filters, ElementsAre("CIInvertColor", "CIGaussianBlur", "CISharpenLuminance",
                                   "CIColorControls", "CICrystallize", "CIEdges", "CIEdgeWork",
                                   "CIPixellate", "CIPointillize", ""));
  EXPECT_THAT(names,
              ElementsAre("Invert Colors", "Blur", "Sharpen", "Adjust Colors", "Crystallize",
                          "Edges", "Edge Work", "Pixellate", "Pointillize", "Black And White"));
  EXPECT_THAT(extended, ElementsAre(1, 4, 6, 7, 8));
  for (const int64_t type : {int64_t{10}, int64_t{-1}, INT64_MAX, INT64_MIN}) {
    EXPECT_EQ(DrawFilter2::CIFilterNameWithType(type), std::nullopt);
    EXPECT_EQ(DrawFilter2::nameOfFilterWithType(type), "Effect");
    EXPECT_FALSE(DrawFilter2::extendImageWhenApplyFilter(type));
  }
}

}  // namespace
